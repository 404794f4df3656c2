// RowWriter: one writer per output format, all fed the same rows of texts (tools layer).
#include "RowWriter.h"

#include <nlohmann/json.hpp>

#include <algorithm>

#include "CsvWriter.h"
#include "StringUtils.h"
#include "TablePrinter.h"
#include "ToolError.h"

namespace ctt {

namespace {

std::vector<std::string> Names(const std::vector<Column>& columns) {
  std::vector<std::string> names;
  for (const Column& c : columns) names.push_back(c.Name);
  return names;
}

class DelimitedWriter : public RowWriter {
 public:
  DelimitedWriter(std::ostream& out, const std::vector<Column>& columns, const RowFormat& format, char separator)
      : FWriter(out, separator, format.LineEnd) {
    if (format.Header) FWriter.WriteRow(Names(columns));
  }
  void Row(const std::vector<std::string>& cells) override { FWriter.WriteRow(cells); }
  void End() override {}

 private:
  CsvWriter FWriter;
};

class JsonWriter : public RowWriter {
 public:
  JsonWriter(std::ostream& out, std::vector<Column> columns) : FOut(out), FColumns(std::move(columns)) {}
  void Row(const std::vector<std::string>& cells) override {
    nlohmann::ordered_json record = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < FColumns.size(); ++i)
      record[FColumns[i].Name] = Value(FColumns[i].Kind, i < cells.size() ? cells[i] : std::string());
    FOut << (FRows++ == 0 ? "[\n" : ",\n")
         << record.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
  }
  void End() override { FOut << (FRows == 0 ? "[]\n" : "\n]\n"); }

 private:
  static nlohmann::ordered_json Value(ColumnKind kind, const std::string& text) {
    switch (kind) {
      case ColumnKind::Number:
        if (nlohmann::ordered_json::accept(text)) {
          nlohmann::ordered_json number = nlohmann::ordered_json::parse(text);
          if (number.is_number()) return number;
        }
        return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
      case ColumnKind::Boolean:
        if (fw::SameText(text, "true")) return true;
        if (fw::SameText(text, "false")) return false;
        return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
      case ColumnKind::Temporal:
        return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
      case ColumnKind::Text:
        break;
    }
    return text;
  }

  std::ostream& FOut;
  std::vector<Column> FColumns;
  std::size_t FRows = 0;
};

class MarkdownWriter : public RowWriter {
 public:
  MarkdownWriter(std::ostream& out, const std::vector<Column>& columns, bool header) : FOut(out), FCount(columns.size()) {
    // A Markdown table cannot do without its header line; without --header it is left blank.
    std::vector<std::string> names = header ? Names(columns) : std::vector<std::string>(columns.size());
    Row(names);
    FOut << '|';
    for (const Column& c : columns) FOut << (c.Kind == ColumnKind::Number ? " ---: |" : " --- |");
    FOut << '\n';
  }
  void Row(const std::vector<std::string>& cells) override {
    FOut << '|';
    for (std::size_t i = 0; i < FCount; ++i) FOut << ' ' << Escape(i < cells.size() ? cells[i] : std::string()) << " |";
    FOut << '\n';
  }
  void End() override {}

 private:
  static std::string Escape(const std::string& cell) {
    std::string out;
    for (std::size_t i = 0; i < cell.size(); ++i) {
      const char c = cell[i];
      if (c == '|' || c == '\\') {
        out += '\\';
        out += c;
      } else if (c == '\r') {
        if (i + 1 >= cell.size() || cell[i + 1] != '\n') out += "<br>";
      } else if (c == '\n') {
        out += "<br>";
      } else {
        out += c;
      }
    }
    return out;
  }

  std::ostream& FOut;
  std::size_t FCount;
};

class AlignedWriter : public RowWriter {
 public:
  AlignedWriter(std::ostream& out, const std::vector<Column>& columns, const RowFormat& format)
      : FOut(out), FHeader(format.Header), FPrinter(Names(columns), Aligns(columns), format.MaxWidth) {}
  void Row(const std::vector<std::string>& cells) override { FPrinter.AddRow(cells); }
  void End() override { FPrinter.Print(FOut, FHeader); }

 private:
  static std::vector<TablePrinter::Align> Aligns(const std::vector<Column>& columns) {
    std::vector<TablePrinter::Align> aligns;
    for (const Column& c : columns)
      aligns.push_back(c.Kind == ColumnKind::Number ? TablePrinter::Right : TablePrinter::Left);
    return aligns;
  }

  std::ostream& FOut;
  bool FHeader;
  TablePrinter FPrinter;
};

}  // namespace

OutputFormat ParseOutputFormat(const std::string& text) {
  static const std::pair<const char*, OutputFormat> kFormats[] = {{"csv", OutputFormat::Csv},
                                                                   {"tsv", OutputFormat::Tsv},
                                                                   {"json", OutputFormat::Json},
                                                                   {"table", OutputFormat::Table},
                                                                   {"markdown", OutputFormat::Markdown}};
  for (const auto& [name, format] : kFormats)
    if (fw::SameText(text, name)) return format;
  throw UsageError("--format '" + text + "': choose csv, tsv, json, table or markdown");
}

std::unique_ptr<RowWriter> MakeRowWriter(std::ostream& out, std::vector<Column> columns, const RowFormat& format) {
  switch (format.Format) {
    case OutputFormat::Csv: return std::make_unique<DelimitedWriter>(out, columns, format, format.Separator);
    case OutputFormat::Tsv: return std::make_unique<DelimitedWriter>(out, columns, format, '\t');
    case OutputFormat::Json: return std::make_unique<JsonWriter>(out, std::move(columns));
    case OutputFormat::Markdown: return std::make_unique<MarkdownWriter>(out, columns, format.Header);
    case OutputFormat::Table: break;
  }
  return std::make_unique<AlignedWriter>(out, columns, format);
}

}  // namespace ctt
