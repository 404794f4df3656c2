// The tool's reading subcommands: export (CSV) and list (aligned table) (tools layer).
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>

#include "BlobColumns.h"
#include "Commands.h"
#include "FieldText.h"
#include "RowWriter.h"
#include "StringUtils.h"
#include "ToolError.h"

namespace ctt {

namespace {

// The positions of the requested columns among the table's fields (all fields when none).
std::vector<std::size_t> ResolveColumns(const std::vector<std::string>& columns, const TableInfo& info) {
  std::vector<std::size_t> positions;
  if (columns.empty()) {
    for (std::size_t i = 0; i < info.Fields.size(); ++i) positions.push_back(i);
    return positions;
  }
  for (const std::string& name : columns) {
    std::size_t i = 0;
    while (i < info.Fields.size() && !fw::SameText(info.Fields[i].Name, name)) ++i;
    if (i == info.Fields.size()) {
      std::string known;
      for (const FieldDefinition& f : info.Fields) known += (known.empty() ? "" : ", ") + f.Name;
      throw UsageError("'" + name + "' is not a field of the table (fields: " + known + ")");
    }
    positions.push_back(i);
  }
  return positions;
}

// The index records are read in: the one named, or the table's first (null when it has none).
const IndexDefinition* ChosenIndex(const TableRef& table, const ReadOptions& read, const TableInfo& info) {
  for (const IndexDefinition& index : info.Indexes)
    if (read.Index.empty() || fw::SameText(index.Name, read.Index)) return &index;
  if (!read.Index.empty()) throw ToolError(kExitNotFound, "table " + table.Display() + " has no index '" + read.Index + "'");
  return nullptr;
}

std::string Describe(const IndexDefinition& index, const TableInfo& info) {
  std::string fields;
  for (const std::string& name : index.Fields) {
    std::string type;
    for (const FieldDefinition& f : info.Fields)
      if (fw::SameText(f.Name, name)) type = FieldTypeName(f.DataType);
    fields += (fields.empty() ? "" : ", ") + name + (type.empty() ? "" : " (" + type + ")");
  }
  return "index " + index.Name + " has the key fields " + fields;
}

// Key values are the user's to get right: a table without an index, more values than the
// index has fields, or a value a key field cannot take is a usage error naming the fields.
void CheckKey(const char* option, const KeyValues& key, const IndexDefinition* index, const TableRef& table,
              const TableInfo& info) {
  if (key.empty()) return;
  if (index == nullptr)
    throw UsageError(std::string(option) + ": table " + table.Display() + " has no index to find keys in");
  if (key.size() > index->Fields.size())
    throw UsageError(std::string(option) + " gives " + std::to_string(key.size()) + " values; " + Describe(*index, info));
}

template <class Step>
void WithKeyValues(const char* options, const IndexDefinition* index, const TableInfo& info, Step step) {
  try {
    step();
  } catch (const std::exception& e) {
    if (index == nullptr) throw;
    throw UsageError(std::string(options) + ": " + e.what() + "; " + Describe(*index, info));
  }
}

// Opens the table on the chosen index and range, positioned before the first record to read.
std::unique_ptr<TableCursor> OpenForReading(TableBackend& backend, const TableRef& table, const ReadOptions& read,
                                            TableInfo& info) {
  std::unique_ptr<TableCursor> cursor = backend.Open(table, OpenMode::ReadOnly);
  info = cursor->Info();
  const IndexDefinition* index = ChosenIndex(table, read, info);
  cursor->UseIndex(read.Index);
  if (!read.Filter.empty()) cursor->SetFilter(read.Filter);
  CheckKey("--from", read.From, index, table, info);
  CheckKey("--to", read.To, index, table, info);
  if (!read.From.empty() || !read.To.empty())
    WithKeyValues("--from/--to", index, info, [&] { cursor->SetRange(read.From, read.To); });
  cursor->First();
  return cursor;
}

// Empty when the index read holds every record of the table; otherwise why not. An index made
// by a program with NullKeys off leaves out the records whose key is blank.
std::string MissingRecords(const ReadOptions& read, const TableInfo& info) {
  std::size_t i = 0;
  while (i < info.Indexes.size() && !read.Index.empty() && !fw::SameText(info.Indexes[i].Name, read.Index)) ++i;
  if (i >= info.IndexKeys.size() || info.IndexKeys[i] >= info.RecordCount) return {};
  return "index " + info.Indexes[i].Name + " holds " + std::to_string(info.IndexKeys[i]) + " of the table's " +
         std::to_string(info.RecordCount) + " records: it leaves out those whose key is blank; read through an "
         "index that holds them all";
}

std::vector<std::string> Pick(const std::vector<std::string>& values, const std::vector<std::size_t>& positions) {
  std::vector<std::string> row;
  row.reserve(positions.size());
  for (std::size_t p : positions) row.push_back(p < values.size() ? values[p] : std::string());
  return row;
}

std::vector<Column> Columns(const TableInfo& info, const std::vector<std::size_t>& positions) {
  std::vector<Column> columns;
  for (std::size_t p : positions) columns.push_back({info.Fields[p].Name, KindOf(info.Fields[p].DataType)});
  return columns;
}

}  // namespace

ExitCode RunExport(TableBackend& backend, const TableRef& table, const ExportOptions& options, Console& console) {
  TableInfo info;
  std::unique_ptr<TableCursor> cursor = OpenForReading(backend, table, options.Read, info);
  const std::vector<std::size_t> positions = ResolveColumns(options.Read.Columns, info);
  // An export that would silently lack records is refused before anything is written.
  if (const std::string missing = MissingRecords(options.Read, info); !missing.empty())
    throw ToolError(kExitStorage, missing);

  const bool toStdout = options.File.empty() || options.File == "-";
  const std::string temporary = options.File + ".partial";
  std::ofstream file;
  if (!toStdout) {
    file.open(temporary, std::ios::binary | std::ios::trunc);
    if (!file) throw ToolError(kExitFile, "cannot write " + temporary + ": " + std::strerror(errno));
  }
  std::ostream& out = toStdout ? console.Out : file;
  std::uint64_t rows = 0;
  try {
    const std::unique_ptr<RowWriter> writer = MakeRowWriter(out, Columns(info, positions), options.Format);
    std::vector<std::string> values;
    while (cursor->Read(values)) {
      EncodeBinaryColumns(info.Fields, values);
      writer->Row(Pick(values, positions));
      ++rows;
    }
    writer->End();
    out.flush();
    if (!out) throw ToolError(kExitFile, "cannot write " + (toStdout ? std::string("standard output") : temporary));
    if (!toStdout) {
      file.close();
      if (!file || std::rename(temporary.c_str(), options.File.c_str()) != 0)
        throw ToolError(kExitFile, "cannot write " + options.File + ": " + std::strerror(errno));
    }
  } catch (...) {
    if (!toStdout) {
      file.close();
      std::remove(temporary.c_str());
    }
    throw;
  }
  if (!toStdout) console.Err << "exported " << rows << (rows == 1 ? " row" : " rows") << " to " << options.File << '\n';
  return kExitOk;
}

ExitCode RunList(TableBackend& backend, const TableRef& table, const ListOptions& options, Console& console) {
  TableInfo info;
  std::unique_ptr<TableCursor> cursor = OpenForReading(backend, table, options.Read, info);
  const std::vector<std::size_t> positions = ResolveColumns(options.Read.Columns, info);

  const std::unique_ptr<RowWriter> writer = MakeRowWriter(console.Out, Columns(info, positions), options.Format);
  std::uint64_t rows = 0;
  bool more = false;
  const IndexDefinition* index = ChosenIndex(table, options.Read, info);
  CheckKey("--find", options.Find, index, table, info);
  bool found = options.Find.empty();
  if (!found) WithKeyValues("--find", index, info, [&] { found = cursor->FindNearest(options.Find); });
  if (found) {
    std::vector<std::string> values;
    while (cursor->Read(values)) {
      if (options.Limit > 0 && rows == options.Limit) {
        more = true;
        break;
      }
      ShowBinaryColumnsAsSize(info.Fields, values);
      writer->Row(Pick(values, positions));
      ++rows;
    }
  }
  writer->End();
  if (const std::string missing = MissingRecords(options.Read, info); !missing.empty())
    console.Err << "ctt: list: warning: " << missing << '\n';
  // The count follows an aligned table; other formats stay parseable, so a cut-off is said on
  // the error stream.
  const bool aligned = options.Format.Format == OutputFormat::Table;
  std::ostream& note = aligned ? console.Out : console.Err;
  if (more)
    note << "(more records follow; --limit " << options.Limit << " stopped the listing, --limit 0 shows all)\n";
  else if (aligned)
    note << "(" << rows << (rows == 1 ? " record" : " records") << ")\n";
  CheckWritten(console.Out, "standard output");
  return kExitOk;
}

}  // namespace ctt
