// TablePrinter: rows of text printed as aligned columns under a header (tools layer).
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace ctt {

/// Collects rows, then prints them with every column as wide as its widest cell:
///
///     id  name         city
///     --  -----------  ------
///      1  Smith, Anne  Oslo
///
/// Widths count the columns a terminal gives each character: one for most, two for wide ones
/// (CJK ideographs, most emoji), none for combining marks. Control characters in a cell are shown escaped
/// ("\n", "\t", "\r", other bytes below 32 as "\xNN") so that a cell never breaks a line. A cell
/// wider than `maxWidth` characters is cut and ends in "...". Columns are separated by two blanks;
/// trailing blanks are not printed.
class TablePrinter {
 public:
  enum Align { Left, Right };

  /// `headers` fixes the number of columns; `aligns` gives each column's alignment (missing
  /// entries are Left). `maxWidth` below 4 is taken as 4.
  explicit TablePrinter(std::vector<std::string> headers, std::vector<Align> aligns = {},
                        std::size_t maxWidth = 40);

  /// Adds a row. Missing cells print as empty; surplus cells raise std::invalid_argument.
  void AddRow(std::vector<std::string> cells);
  std::size_t RowCount() const { return FRows.size(); }

  /// Prints the header and the rule (when `header` is set) and every row added.
  void Print(std::ostream& out, bool header = true) const;

  /// The number of screen columns `text` (UTF-8) takes; an invalid byte counts as one.
  static std::size_t DisplayWidth(const std::string& text);
  /// `cell` with control characters escaped and cut to `maxWidth` columns as Print shows it.
  static std::string Displayable(const std::string& cell, std::size_t maxWidth);

 private:
  std::vector<std::string> FHeaders;
  std::vector<Align> FAligns;
  std::size_t FMaxWidth;
  std::vector<std::vector<std::string>> FRows;
};

}  // namespace ctt
