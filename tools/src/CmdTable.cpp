// The tool's structural subcommands: create, drop, add-index, drop-index, info, check, rebuild, alter (tools layer).
#include <cstdio>
#include <filesystem>
#include <ostream>
#include <system_error>

#include "BatchProgress.h"
#include "Commands.h"
#include "ECtreeException.h"
#include "IsolatedRun.h"
#include "StringUtils.h"
#include "TablePrinter.h"
#include "ToolError.h"

namespace ctt {

namespace {

constexpr std::int32_t kFileNotFound = 12;

std::string Plural(std::size_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

}  // namespace

bool TableExists(TableBackend& backend, const TableRef& table) {
  try {
    (void)backend.Open(table, OpenMode::ReadOnly);
  } catch (const CTDbIntf::ECtreeException& e) {
    if (e.ErrorCode == kFileNotFound) return false;
    throw;
  }
  return true;
}

void CreateTable(TableBackend& backend, const TableRef& table, const CreateOptions& options) {
  if (options.Fields.empty()) throw UsageError("a table needs at least one field (--field name:type[:size])");
  for (const IndexDefinition& index : options.Indexes) CheckIndexFields(index, options.Fields);
  // Creating over an existing table deletes its records: only on request.
  if (!options.Replace && TableExists(backend, table))
    throw UsageError("table " + table.Display() + " already exists; --replace replaces it and deletes its records");
  backend.CreateTable(table, options.Fields, options.Indexes);
}

ExitCode RunCreate(TableBackend& backend, const TableRef& table, const CreateOptions& options, Console& console) {
  CreateTable(backend, table, options);
  console.Out << "created " << table.Display() << " with " << Plural(options.Fields.size(), "field", "fields")
              << " and " << Plural(options.Indexes.size(), "index", "indexes") << '\n';
  return kExitOk;
}

ExitCode RunDrop(TableBackend& backend, const TableRef& table, Console& console) {
  backend.DeleteTable(table);
  console.Out << "dropped " << table.Display() << '\n';
  return kExitOk;
}

ExitCode RunAddIndex(TableBackend& backend, const TableRef& table, const IndexDefinition& index, Console& console) {
  std::unique_ptr<TableCursor> cursor = backend.Open(table, OpenMode::Exclusive);
  const TableInfo info = cursor->Info();
  CheckIndexFields(index, info.Fields);
  for (const IndexDefinition& existing : info.Indexes)
    if (fw::SameText(existing.Name, index.Name))
      throw UsageError("table " + table.Display() + " already has an index '" + existing.Name + "'");
  cursor->AddIndex(index);
  console.Out << "added index " << index.Name << " (" << index.FieldsText() << ") to " << table.Display() << '\n';
  return kExitOk;
}

ExitCode RunDropIndex(TableBackend& backend, const TableRef& table, const std::string& index, Console& console) {
  std::unique_ptr<TableCursor> cursor = backend.Open(table, OpenMode::Exclusive);
  const TableInfo info = cursor->Info();
  const IndexDefinition* found = nullptr;
  for (const IndexDefinition& existing : info.Indexes)
    if (fw::SameText(existing.Name, index)) found = &existing;
  // The table component ignores an unknown name; a script deserves to hear about it.
  if (!found) throw ToolError(kExitNotFound, "table " + table.Display() + " has no index '" + index + "'");
  cursor->DeleteIndex(found->Name);
  console.Out << "dropped index " << found->Name << " from " << table.Display() << '\n';
  return kExitOk;
}

// A page damaged badly enough can end the program that reads it, and opening the table reads
// some before the walk: the open and the walk run in a child process.
ExitCode RunCheck(TableBackend& backend, const TableRef& table, Console& console) {
  const ErrorReport outcome = RunIsolated([&] { backend.Open(table, OpenMode::Exclusive)->Verify(); });
  if (outcome.Code != kExitOk) throw ToolError(outcome.Code, outcome.Message);
  console.Out << "table " << table.Display() << ": every page reads back\n";
  CheckWritten(console.Out, "standard output");
  return kExitOk;
}

ExitCode RunRebuild(TableBackend& backend, const TableRef& table, bool compact, Console& console) {
  if (compact && !table.SuperFile.empty())
    throw UsageError("--compact needs a table with files of its own: " + table.Display() +
                     " is a member of a superfile, whose file its other members share");
  // The data file's size in MB, or a negative number when it is not a file of its own.
  const auto megabytes = [](const TableInfo& info) {
    std::error_code error;
    const auto bytes = info.Files.empty() ? 0 : std::filesystem::file_size(info.Files.front(), error);
    return info.Files.empty() || error ? -1.0 : static_cast<double>(bytes) / 1e6;
  };
  const double before = compact ? megabytes(backend.Open(table, OpenMode::ReadOnly)->Info()) : -1;
  // One storage call does the work: there is no progress to show, only the outcome.
  const BatchProgress clock(console, "rebuild", false);
  backend.RebuildTable(table, compact);
  const TableInfo info = backend.Open(table, OpenMode::ReadOnly)->Info();
  console.Out << "rebuilt " << table.Display() << ": " << Plural(info.Indexes.size(), "index", "indexes")
              << " made anew from " << Plural(static_cast<std::size_t>(info.RecordCount), "record", "records");
  if (const double after = megabytes(info); before >= 0 && after >= 0) {
    char sizes[64];
    std::snprintf(sizes, sizeof sizes, ", data file %.1f MB (was %.1f MB)", after, before);
    console.Out << sizes;
  }
  console.Out << clock.Timing(static_cast<std::uint64_t>(info.RecordCount)) << '\n';
  CheckWritten(console.Out, "standard output");
  return kExitOk;
}

ExitCode RunAlter(TableBackend& backend, const TableRef& table, const std::vector<FieldDefinition>& fields,
                  const std::vector<IndexDefinition>& indexes, Console& console) {
  if (fields.empty()) throw UsageError("a table needs at least one field (--field name:type[:size])");
  for (const IndexDefinition& index : indexes) CheckIndexFields(index, fields);
  // A rejected record stops the change: going on would leave it out of the new table.
  BatchProgress progress(console, "alter", false);
  BatchResult result;
  try {
    backend.AlterTable(table, fields, indexes, progress, result);
  } catch (...) {
    progress.Clear();
    const ErrorReport report = DescribeException(std::current_exception());
    // A rejected record was listed with its reason already, which is the failure raised.
    if (!progress.AnyRejected()) console.Err << "ctt: alter: " << report.Message << '\n';
    console.Err << "ctt: alter: table " << table.Display() << " is unchanged\n";
    return progress.AnyRejected() ? kExitRejected : report.Code;
  }
  progress.Finish();
  console.Out << "altered " << table.Display() << ": " << Plural(result.Written, "record", "records") << " now with "
              << Plural(fields.size(), "field", "fields") << " and " << Plural(indexes.size(), "index", "indexes")
              << progress.Timing(result.Written) << '\n';
  CheckWritten(console.Out, "standard output");
  return kExitOk;
}

ExitCode RunTables(TableBackend& backend, const std::string& directory, Console& console) {
  TablePrinter printer({"table", "records", "fields", "indexes"},
                       {TablePrinter::Left, TablePrinter::Right, TablePrinter::Right, TablePrinter::Right}, 60);
  const std::vector<TableRef> tables = backend.ListTables(directory);
  for (const TableRef& table : tables) {
    const TableInfo info = backend.Open(table, OpenMode::ReadOnly)->Info();
    printer.AddRow({table.SuperFile.empty() ? table.Name : table.SuperFile + "!" + table.Name,
                    std::to_string(info.RecordCount), std::to_string(info.Fields.size()),
                    std::to_string(info.Indexes.size())});
  }
  printer.Print(console.Out);
  console.Out << "(" << Plural(tables.size(), "table", "tables") << ")\n";
  CheckWritten(console.Out, "standard output");
  return kExitOk;
}

std::string CreateCommand(const std::string& name, const TableInfo& info) {
  // Quoted for a POSIX shell when it holds anything but the characters names are made of.
  auto quoted = [](const std::string& word) {
    if (!word.empty() && word.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.,:+/-") ==
                             std::string::npos)
      return word;
    std::string out = "'";
    for (char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
  };
  std::string fields;
  for (const FieldDefinition& f : info.Fields) fields += (fields.empty() ? "" : ",") + f.Name + ":" + FormatFieldDefinition(f);
  std::string command = "ctt create " + quoted(name) + " -f " + quoted(fields);
  for (const IndexDefinition& index : info.Indexes) {
    std::string keys;
    for (const std::string& field : index.Fields) keys += (keys.empty() ? "" : "+") + field;
    const std::string options = index.OptionsText();
    command += " -x " + quoted(index.Name + ":" + keys + (options.empty() ? "" : ":" + options));
  }
  return command;
}

ExitCode RunInfo(TableBackend& backend, const TableRef& table, bool asCreate, Console& console) {
  std::unique_ptr<TableCursor> cursor = backend.Open(table, OpenMode::ReadOnly);
  const TableInfo info = cursor->Info();
  std::ostream& out = console.Out;
  if (asCreate) {
    out << CreateCommand(table.Name, info) << '\n';
    CheckWritten(out, "standard output");
    return kExitOk;
  }
  out << "table    " << table.Display() << '\n';
  for (std::size_t i = 0; i < info.Files.size(); ++i) out << (i == 0 ? "files    " : "         ") << info.Files[i] << '\n';
  out << "records  " << info.RecordCount << "\n\n";

  TablePrinter fields({"#", "field", "type", "size"}, {TablePrinter::Right, TablePrinter::Left, TablePrinter::Left,
                                                       TablePrinter::Right});
  for (std::size_t i = 0; i < info.Fields.size(); ++i) {
    const FieldDefinition& f = info.Fields[i];
    std::string size;
    if (f.DataType == fw::ftBCD && f.Precision > 0)
      size = std::to_string(f.Precision) + "." + std::to_string(f.Size);
    else if (f.Size > 0)
      size = std::to_string(f.Size);
    fields.AddRow({std::to_string(i + 1), f.Name, FieldTypeName(f.DataType), size});
  }
  fields.Print(out);
  out << '\n';
  if (info.Indexes.empty()) {
    out << "no indexes\n";
  } else {
    TablePrinter indexes({"index", "fields", "options"});
    for (const IndexDefinition& index : info.Indexes)
      indexes.AddRow({index.Name, index.FieldsText(), index.OptionsText()});
    indexes.Print(out);
  }
  CheckWritten(out, "standard output");
  return kExitOk;
}

}  // namespace ctt
