// RowWriter: records written as CSV, TSV, JSON, an aligned table or a Markdown table (tools layer).
#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace ctt {

enum class OutputFormat { Csv, Tsv, Json, Table, Markdown };

/// "csv", "tsv", "json", "table" or "markdown" (any case); anything else raises UsageError
/// listing them.
OutputFormat ParseOutputFormat(const std::string& text);

/// What a column holds, which decides how JSON writes it and how tables align it.
enum class ColumnKind {
  Text,     ///< a JSON string; "" stays ""
  Number,   ///< a JSON number when the text is one (else a string); right-aligned in tables
  Boolean,  ///< "true"/"false" become JSON true/false
  Temporal  ///< a date or time: "" is JSON null
};

struct Column {
  std::string Name;
  ColumnKind Kind = ColumnKind::Text;
};

struct RowFormat {
  OutputFormat Format = OutputFormat::Csv;
  bool Header = true;          ///< the first line names the columns (CSV, TSV, table, Markdown)
  std::string LineEnd = "\n";  ///< ends every line of CSV and TSV
  char Separator = ',';        ///< CSV only
  std::size_t MaxWidth = 40;   ///< table only: widest column shown, in screen columns
};

/// Writes rows of texts, one per column, to a stream it does not own. JSON is an array with one
/// object per record, on a line of its own; CSV and TSV quote as RFC 4180 does (so a TSV value
/// holding a tab or a line end is quoted); Markdown escapes "|" and shows line ends as "<br>".
/// The table format gathers the rows and prints them at End, aligned by their width on screen.
class RowWriter {
 public:
  virtual ~RowWriter() = default;
  /// Writes one record; missing cells are empty.
  virtual void Row(const std::vector<std::string>& cells) = 0;
  /// Finishes the output (the closing bracket of JSON, the whole of a table).
  virtual void End() = 0;
};

std::unique_ptr<RowWriter> MakeRowWriter(std::ostream& out, std::vector<Column> columns, const RowFormat& format);

}  // namespace ctt
