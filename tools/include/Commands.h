// The tool's subcommands, each a function over the table seam (tools layer).
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "ExitCode.h"
#include "RowWriter.h"
#include "TableBackend.h"

namespace ctt {

/// Where a command writes: `Out` for its results, `Err` for progress, rejected rows and
/// warnings. `ErrIsTerminal` decides whether a progress bar is drawn on `Err`.
struct Console {
  std::ostream& Out;
  std::ostream& Err;
  bool ErrIsTerminal = false;
};

struct CreateOptions {
  std::vector<FieldDefinition> Fields;
  std::vector<IndexDefinition> Indexes;
  bool Replace = false;  ///< an existing table of that name is deleted with its records
};

struct ImportOptions {
  std::string File;                  ///< "-" reads standard input
  char Separator = ',';
  std::vector<FieldDefinition> Fields;     ///< when not empty, the table is created first
  std::vector<IndexDefinition> Indexes;    ///< indexes of the table created
  bool Replace = false;                    ///< with Fields: an existing table is replaced
  /// Rows per transaction; 0 (the default): one transaction for all rows, the fastest way, since
  /// every commit writes the pages the batch touched again, and an import that adds all rows or
  /// none.
  std::uint64_t BatchSize = 0;
  std::uint64_t SkipRows = 0;        ///< data rows to pass over first (resuming an import)
  /// A row whose key a unique index of the table already holds is counted as already there
  /// instead of rejected, so that rerunning an import that was killed adds just what is missing.
  /// Needs a unique index (UsageError otherwise).
  bool SkipExisting = false;
  bool StopOnError = false;          ///< the first rejected row rolls back its batch and stops
  ValueSpellings Spellings;          ///< the blank and boolean texts of the CSV
  std::string DateFormat;            ///< the CSV's date order and separator, e.g. "dd.mm.yyyy"
};

struct CopyOptions {
  CopyMode Mode = CopyMode::Copy;
  bool Replace = false;      ///< Copy mode: an existing destination is replaced, its records deleted
  bool StopOnError = false;  ///< the first rejected record ends the copy
};

/// The part of an index an `export` or `list` reads.
struct ReadOptions {
  std::string Index;                 ///< empty: the table's first index
  KeyValues From, To;                ///< range ends; empty: open
  std::vector<std::string> Columns;  ///< fields to show, in this order; empty: all
  std::string Filter;                ///< the table's Filter text; empty: every record
};

struct ExportOptions {
  ReadOptions Read;
  std::string File;                  ///< "-" writes standard output
  RowFormat Format{OutputFormat::Csv, true, "\r\n"};  ///< CSV with CR LF line ends, as RFC 4180 has it
};

struct ListOptions {
  ReadOptions Read;
  KeyValues Find;                    ///< when not empty, start at the nearest key
  std::uint64_t Limit = 50;          ///< rows shown at most; 0: all
  RowFormat Format{OutputFormat::Table};
};

/// Each command returns the exit code of its outcome and raises for failures that end it (the
/// caller turns them into a message and an exit code with DescribeException). Contracts:
/// - create: checks the definitions (at least one field, index fields exist), then creates. An
///   existing table raises ToolError(kExitUsage) unless `Replace` is set; import with fields
///   follows the same rule.
/// - drop: deletes the table's files.
/// - add-index / drop-index: open the table exclusively; drop-index of an index the table does
///   not have raises ToolError(kExitNotFound).
/// - import: see ImportOptions; returns kExitRejected when any row was rejected.
/// - export: writes the CSV to a temporary file beside `File` and renames it when complete, so
///   the file appears whole or not at all.
/// - list, info: print aligned tables on Out; output that cannot be written raises
///   ToolError(kExitFile), as export does.
/// - import: SIGINT and SIGTERM stop it after the current row; the open batch is rolled back,
///   the resume point is printed and the exit code is 128 + the signal's number.
/// - check: opens the table exclusively and has every page of its data file read in a separate
///   process; prints one line when they all read through, raises (number 803) when not.
/// - copy: moves the source's records into the destination as CopyOptions say; Copy mode onto
///   an existing destination raises ToolError(kExitUsage) unless `Replace` is set. Each rejected
///   record is listed with its reason; returns kExitRejected when any was. When a failure ends
///   the copy, the summary says how many records it left in the destination, and the failure's
///   exit code is returned.
/// - rebuild: rebuilds the table's files in place; the table must not be open anywhere.
/// - alter: checks the definitions as create does, then gives the table the new layout with its
///   records. A rejected record or any failure leaves the table unchanged (kExitRejected for a
///   rejected record, else the failure's code).
/// Whether the table's files are there (opening it answers 12 when they are not); other
/// failures of the open are raised.
bool TableExists(TableBackend& backend, const TableRef& table);
/// What create does before it prints: checks the definitions, refuses an existing table unless
/// `options.Replace` is set, then creates the table. Import with fields calls it too.
void CreateTable(TableBackend& backend, const TableRef& table, const CreateOptions& options);
ExitCode RunCreate(TableBackend& backend, const TableRef& table, const CreateOptions& options, Console& console);
ExitCode RunDrop(TableBackend& backend, const TableRef& table, Console& console);
ExitCode RunAddIndex(TableBackend& backend, const TableRef& table, const IndexDefinition& index, Console& console);
ExitCode RunDropIndex(TableBackend& backend, const TableRef& table, const std::string& index, Console& console);
ExitCode RunImport(TableBackend& backend, const TableRef& table, const ImportOptions& options, Console& console);
ExitCode RunExport(TableBackend& backend, const TableRef& table, const ExportOptions& options, Console& console);
ExitCode RunList(TableBackend& backend, const TableRef& table, const ListOptions& options, Console& console);
/// info with `asCreate`: one line, the `ctt create` command that makes a table of the same
/// layout (CreateCommand).
ExitCode RunInfo(TableBackend& backend, const TableRef& table, bool asCreate, Console& console);
/// "ctt create NAME -f a:integer,b:string:20 -x byid:a:primary", quoted for a POSIX shell.
std::string CreateCommand(const std::string& name, const TableInfo& info);
ExitCode RunCheck(TableBackend& backend, const TableRef& table, Console& console);
/// tables: one line per table of `directory` (ListTables) with its record, field and index
/// counts; a superfile's tables show as "superfile!table".
ExitCode RunTables(TableBackend& backend, const std::string& directory, Console& console);
ExitCode RunCopy(TableBackend& backend, const TableRef& source, const TableRef& destination,
                 const CopyOptions& options, Console& console);
/// rebuild: the table's indexes made again from its records; `compact` gives the data file's free
/// space back too and reports the file's size before and after.
ExitCode RunRebuild(TableBackend& backend, const TableRef& table, bool compact, Console& console);
ExitCode RunAlter(TableBackend& backend, const TableRef& table, const std::vector<FieldDefinition>& fields,
                  const std::vector<IndexDefinition>& indexes, Console& console);

}  // namespace ctt
