// FilterProgram: a Filter text analysed once and evaluated for each record (dataset, unit CTTables).
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace CTTables {

/// The table's Filter text, prepared for evaluation record after record. The text evaluator
/// (UnitFilterParser) normalises and re-reads the whole substituted text for every record; this
/// class does that work once, on the text with its field references as placeholders, and keeps
/// the grouping of tokens it finds. A record's values can only change that grouping when they
/// hold blanks, operator characters or parentheses, or form a whole AND, OR or lone quote token:
/// such records (and texts the analysis does not cover) are evaluated by the text evaluator, so
/// every answer and every exception is the one ParseFilter gives for the substituted text.
class FilterProgram {
 public:
  /// Analyses `Filter`: the field references (tokens beginning with a double quote) and the
  /// token structure of the substituted text.
  explicit FilterProgram(std::string_view Filter);
  ~FilterProgram();

  /// The names of the field references in the order they appear, as written between the quotes.
  const std::vector<std::string>& FieldNames() const { return FFieldNames; }
  /// The substituted text: tokens joined without separators, each field reference replaced by
  /// `Values[i]` (one per FieldNames entry) and each NULL by "*NULL*".
  std::string Substitute(const std::vector<std::string>& Values) const;
  /// ParseFilter(Substitute(Values)): the same result, raising the same exceptions. Not for
  /// concurrent use: it keeps its working space between calls.
  bool Evaluate(const std::vector<std::string>& Values);
  /// Whether the analysis is used for records whose values are plain (false: every Evaluate goes
  /// through the text evaluator).
  bool Analysed() const { return FTree != nullptr; }

  struct Tree;

 private:
  struct Piece {
    std::string Text;
    int Slot = -1;  // index into the values, or -1 for literal text
  };
  void Analyse();
  bool EvaluateByText(const std::vector<std::string>& Values) const;

  std::vector<std::string> FFieldNames;
  std::vector<Piece> FPieces;
  std::unique_ptr<Tree> FTree;
  // Working space of Evaluate, kept so that a record costs no allocation.
  std::vector<std::string_view> FDynamicTexts;
  std::vector<std::string> FJoined;
};

}  // namespace CTTables
