// FilterProgram: the Filter text analysed once, with the text evaluator for what the analysis does not cover (dataset, unit CTTables).
#include "FilterProgram.h"

#include <climits>

#include "FilterLanguage.h"
#include "StringUtils.h"
#include "UnitFilterParser.h"

namespace CTTables {

namespace {

using UnitFilterParser::IsOperatorChar;

// Deeper nesting is left to the text evaluator, which needs no stack for it.
constexpr int kMaxDepth = 64;
constexpr int kLeading = -1;        // on the blank before a token
constexpr int kTrailing = INT_MAX;  // on the blank after a token

// One character of the substituted text, or a whole field value (Slot >= 0).
struct Atom {
  char C = 0;
  int Slot = -1;
};

bool IsOperatorAtom(const Atom* a) { return a != nullptr && a->Slot < 0 && IsOperatorChar(a->C); }

// A token of the normalised text: literal, or holding field values (Dynamic >= 0).
struct Token {
  std::string Text;
  int Dynamic = -1;
};

}  // namespace

// The analysis: the tokens that hold field values and the groups EvaluateGroup forms, each split
// into left operand, operator and right operand as EvaluateComparison splits its text.
struct FilterProgram::Tree {
  struct Part {
    std::string Text;  // literal text when Dynamic and Group are both -1
    int Dynamic = -1;  // a token holding field values
    int Group = -1;    // the truth text of a nested group
  };
  struct Group {
    bool Empty = true;
    std::vector<Part> Left;
    std::string Op;
    std::vector<Part> Right;
  };
  std::vector<std::vector<Piece>> Dynamics;  // the pieces of each value-holding token
  std::vector<Group> Groups;
  int Root = -1;

  bool EvaluateGroup(int index, const std::vector<std::string_view>& dynamics) const;
  std::string_view Side(const std::vector<Part>& parts, const std::vector<std::string_view>& dynamics,
                        std::string& scratch) const;
};

namespace {

// Follows EvaluateGroup over the normalised tokens with positions kept as (token, offset), an
// offset being kLeading, a character index or kTrailing. Field values have no known length, so
// a position that would fall inside a value-holding token (other than on its first character)
// ends the analysis.
class Simulation {
 public:
  Simulation(const std::vector<Token>& tokens, FilterProgram::Tree& tree) : FTokens(tokens), FTree(tree) {}

  bool Run() {
    Position p{0, kLeading};
    FTree.Root = Build(p, false, 0);
    return !FFailed;
  }

 private:
  struct Position {
    std::size_t K;
    int J;
  };
  struct Item {
    std::string Text;
    int Dynamic = -1;
    int Group = -1;
  };

  std::size_t Count() const { return FTokens.size(); }
  int Length(std::size_t k) const { return static_cast<int>(FTokens[k].Text.size()); }
  bool IsDynamic(std::size_t k) const { return FTokens[k].Dynamic >= 0; }

  bool AtEnd(const Position& p) const { return p.K >= Count() || (p.K + 1 == Count() && p.J == kTrailing); }

  // NextToken: the rest of the token at or after `p`; `p` ends on its trailing blank.
  Item Next(Position& p) {
    if (p.J == kTrailing) p = {p.K + 1, kLeading};
    if (p.K >= Count()) return {};
    const int from = p.J == kLeading ? 0 : p.J;
    p.J = kTrailing;
    if (IsDynamic(p.K)) {
      if (from != 0) FFailed = true;
      return {"", FTokens[p.K].Dynamic, -1};
    }
    return {FTokens[p.K].Text.substr(static_cast<std::size_t>(from)), -1, -1};
  }

  // Whether the character after `p` is ")".
  bool Closing(const Position& p) const {
    if (p.K >= Count() || IsDynamic(p.K) || p.J == kTrailing) return false;
    const int next = p.J + 1;
    return next < Length(p.K) && FTokens[p.K].Text[static_cast<std::size_t>(next)] == ')';
  }

  // Pos := Pos + 2.
  void SkipTwo(Position& p) {
    if (p.J == kTrailing) {
      p = {p.K + 1, 0};
      return;
    }
    if (IsDynamic(p.K)) {
      FFailed = true;
      return;
    }
    const int to = p.J + 2;  // from kLeading this is character 1
    if (to < Length(p.K)) p.J = to;
    else if (to == Length(p.K)) p.J = kTrailing;
    else p = {p.K + 1, kLeading};
  }

  int Build(Position& p, bool opened, int depth) {
    if (depth > kMaxDepth) FFailed = true;
    std::vector<Item> items;
    while (!FFailed && !AtEnd(p) && items.size() < 3 && !(opened && Closing(p))) {
      Item t = Next(p);
      if (t.Dynamic < 0 && !t.Text.empty() && t.Text.front() == '(') {
        // Back onto the parenthesis, which the nested group opens with and steps over again.
        t.Text.clear();
        t.Group = Build(p, true, depth + 1);
      }
      if (t.Dynamic >= 0 || t.Group >= 0 || (!t.Text.empty() && t.Text.front() != ')')) items.push_back(std::move(t));
    }
    if (FFailed) return -1;
    if (opened && !AtEnd(p)) SkipTwo(p);
    return AddGroup(items);
  }

  // Splits the group's text at its first run of operator characters. Values and truth texts hold
  // none, so the run lies in literal items.
  int AddGroup(const std::vector<Item>& items) {
    FilterProgram::Tree::Group group;
    group.Empty = items.empty();
    int stage = 0;  // 0: left operand, 1: operator, 2: right operand
    auto add = [](std::vector<FilterProgram::Tree::Part>& side, const Item& item, std::string_view text) {
      if (item.Dynamic < 0 && item.Group < 0) {
        if (text.empty()) return;
        if (!side.empty() && side.back().Dynamic < 0 && side.back().Group < 0) {
          side.back().Text += text;
          return;
        }
        side.push_back({std::string(text), -1, -1});
      } else {
        side.push_back({"", item.Dynamic, item.Group});
      }
    };
    for (const Item& item : items) {
      const bool literal = item.Dynamic < 0 && item.Group < 0;
      const std::string_view text = item.Text;
      std::size_t i = 0;
      if (stage == 0) {
        if (literal) {
          while (i < text.size() && !IsOperatorChar(text[i])) ++i;
          add(group.Left, item, text.substr(0, i));
          if (i < text.size()) stage = 1;
        } else {
          add(group.Left, item, text);
        }
        if (stage == 0) continue;
      }
      if (stage == 1) {
        if (literal && i < text.size() && IsOperatorChar(text[i])) {
          const std::size_t start = i;
          while (i < text.size() && IsOperatorChar(text[i])) ++i;
          group.Op += text.substr(start, i - start);
          if (i == text.size()) continue;
        }
        stage = 2;
      }
      add(group.Right, item, literal ? text.substr(i) : text);
    }
    FTree.Groups.push_back(std::move(group));
    return static_cast<int>(FTree.Groups.size()) - 1;
  }

  const std::vector<Token>& FTokens;
  FilterProgram::Tree& FTree;
  bool FFailed = false;
};

bool IsPlainValue(std::string_view value) {
  if (value.empty()) return false;
  for (char c : value)
    if (UnitFilterParser::IsBlankChar(c) || IsOperatorChar(c) || UnitFilterParser::IsParenChar(c)) return false;
  return true;
}

}  // namespace

FilterProgram::FilterProgram(std::string_view Filter) {
  // The tokens of the normalised Filter, as BuildparsString reads them.
  const std::string normal = UnitFilterParser::Encrypter(UnitFilterParser::Spacer(Filter));
  std::size_t pos = 0;
  while (pos < normal.size()) {
    const std::string t = UnitFilterParser::NextToken(normal, pos);
    if (t.empty()) continue;
    if (t.front() == '"') {
      // The name is the token without its first and last character, whatever that last one is.
      FFieldNames.push_back(t.size() >= 2 ? t.substr(1, t.size() - 2) : std::string());
      FPieces.push_back({"", static_cast<int>(FFieldNames.size()) - 1});
      continue;
    }
    const std::string text = fw::UpperCase(fw::Trim(t)) == "NULL" ? std::string("*NULL*") : t;
    if (!FPieces.empty() && FPieces.back().Slot < 0) FPieces.back().Text += text;
    else FPieces.push_back({text, -1});
  }
  Analyse();
}

FilterProgram::~FilterProgram() = default;

void FilterProgram::Analyse() {
  // The substituted text with each value as one operand character: a plain value (no blank,
  // operator character or parenthesis, not empty) splits and joins with its neighbours exactly so.
  std::vector<Atom> atoms;
  std::size_t open = 0, close = 0;
  for (const Piece& piece : FPieces) {
    if (piece.Slot >= 0) {
      atoms.push_back({0, piece.Slot});
      continue;
    }
    for (char c : piece.Text) {
      atoms.push_back({c, -1});
      open += c == '(';
      close += c == ')';
    }
  }
  // Unbalanced literal parentheses: every plain record raises, which the text evaluator does.
  if (open != close) return;

  // Spacer, then the split into tokens (literal text holds no blanks: it was read as tokens).
  std::vector<std::vector<Atom>> spaced(1);
  auto flush = [&spaced]() {
    if (!spaced.back().empty()) spaced.emplace_back();
  };
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    const Atom& a = atoms[i];
    const Atom* prev = i > 0 ? &atoms[i - 1] : nullptr;
    const Atom* next = i + 1 < atoms.size() ? &atoms[i + 1] : nullptr;
    if (a.Slot < 0 && UnitFilterParser::IsParenChar(a.C)) {
      flush();
      spaced.back().push_back(a);
      flush();
    } else if (!IsOperatorAtom(&a)) {
      spaced.back().push_back(a);
    } else if (IsOperatorAtom(next)) {
      flush();
      spaced.back().push_back(a);
    } else if (IsOperatorAtom(prev)) {
      spaced.back().push_back(a);
      flush();
    } else {
      flush();
      spaced.back().push_back(a);
      flush();
    }
  }

  // Encrypter on the literal tokens; value-holding tokens are checked record by record.
  auto tree = std::make_unique<Tree>();
  std::vector<Token> tokens;
  for (const std::vector<Atom>& run : spaced) {
    if (run.empty()) continue;
    std::vector<Piece> pieces;
    bool dynamic = false;
    for (const Atom& a : run) {
      if (a.Slot >= 0) {
        dynamic = true;
        pieces.push_back({"", a.Slot});
      } else if (!pieces.empty() && pieces.back().Slot < 0) {
        pieces.back().Text += a.C;
      } else {
        pieces.push_back({std::string(1, a.C), -1});
      }
    }
    if (dynamic) {
      tokens.push_back({"", static_cast<int>(tree->Dynamics.size())});
      tree->Dynamics.push_back(std::move(pieces));
      continue;
    }
    const std::string& text = pieces.front().Text;
    if (!UnitFilterParser::IsEncrypterKeyword(text)) tokens.push_back({text, -1});
    else if (fw::UpperCase(fw::Trim(text)) == "AND") tokens.push_back({"&", -1});
    else if (fw::UpperCase(fw::Trim(text)) == "OR") tokens.push_back({"|", -1});
  }
  if (Simulation(tokens, *tree).Run()) FTree = std::move(tree);
}

std::string FilterProgram::Substitute(const std::vector<std::string>& Values) const {
  std::string out;
  for (const Piece& piece : FPieces) out += piece.Slot >= 0 ? Values[static_cast<std::size_t>(piece.Slot)] : piece.Text;
  return out;
}

bool FilterProgram::EvaluateByText(const std::vector<std::string>& Values) const {
  return UnitFilterParser::ParseFilter(Substitute(Values));
}

bool FilterProgram::Evaluate(const std::vector<std::string>& Values) {
  if (!FTree) return EvaluateByText(Values);
  for (const std::string& value : Values)
    if (!IsPlainValue(value)) return EvaluateByText(Values);
  std::vector<std::string_view>& dynamics = FDynamicTexts;
  dynamics.resize(FTree->Dynamics.size());
  FJoined.resize(FTree->Dynamics.size());
  for (std::size_t i = 0; i < dynamics.size(); ++i) {
    const std::vector<Piece>& pieces = FTree->Dynamics[i];
    if (pieces.size() == 1) {
      dynamics[i] = Values[static_cast<std::size_t>(pieces.front().Slot)];
    } else {
      std::string& text = FJoined[i];
      text.clear();
      for (const Piece& piece : pieces) text += piece.Slot >= 0 ? Values[static_cast<std::size_t>(piece.Slot)] : piece.Text;
      dynamics[i] = text;
    }
    // A token that reads AND, OR or a lone quote would be rewritten or dropped by Encrypter.
    if (UnitFilterParser::IsEncrypterKeyword(dynamics[i])) return EvaluateByText(Values);
  }
  return FTree->EvaluateGroup(FTree->Root, dynamics);
}

std::string_view FilterProgram::Tree::Side(const std::vector<Part>& parts, const std::vector<std::string_view>& dynamics,
                                           std::string& scratch) const {
  auto text = [&](const Part& part) -> std::string_view {
    if (part.Dynamic >= 0) return dynamics[static_cast<std::size_t>(part.Dynamic)];
    if (part.Group >= 0) return EvaluateGroup(part.Group, dynamics) ? "TRUE" : "FALSE";
    return part.Text;
  };
  if (parts.size() == 1) return text(parts.front());
  scratch.clear();
  for (const Part& part : parts) scratch += text(part);
  return scratch;
}

bool FilterProgram::Tree::EvaluateGroup(int index, const std::vector<std::string_view>& dynamics) const {
  const Group& group = Groups[static_cast<std::size_t>(index)];
  if (group.Empty) UnitFilterParser::EvaluateComparison("");  // raises: nothing to compare
  std::string leftScratch, rightScratch;
  const std::string_view left = Side(group.Left, dynamics, leftScratch);
  const std::string_view right = Side(group.Right, dynamics, rightScratch);
  return UnitFilterParser::CompareParts(left, group.Op, right);
}

}  // namespace CTTables
