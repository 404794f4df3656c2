// The seam between the tool's commands and the table layer that does their storage work.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ConnectionOptions.h"
#include "FieldDefinition.h"
#include "IndexDefinition.h"

namespace ctt {

/// Which table a command works on: `Name` in directory `Directory` (empty: the current one),
/// or, when `SuperFile` is not empty, member `Name` of that superfile (in `Directory`).
struct TableRef {
  std::string Directory;
  std::string Name;
  std::string SuperFile;

  /// "dir/name" or "dir/host!name", for messages.
  std::string Display() const;
};

/// What `info` shows of an open table.
struct TableInfo {
  std::vector<FieldDefinition> Fields;
  std::vector<IndexDefinition> Indexes;
  std::int64_t RecordCount = 0;    ///< every record of the table, whatever its indexes hold
  std::vector<std::string> Files;  ///< data file first, then the index file(s)
  /// Keys in each index, in the order of Indexes; empty when unknown. An index made with NullKeys
  /// off leaves out the records whose key is blank, so it may count fewer than RecordCount.
  std::vector<std::int64_t> IndexKeys;
};

/// How import reads texts: which one means a blank field, which spell true and false (in
/// addition to "true"/"false", "yes"/"no" and "1"/"0", any case), and what becomes of text
/// longer than its field (sizes are bytes of UTF-8).
struct ValueSpellings {
  std::string Null;                ///< a cell equal to this leaves the field blank ("" always does)
  std::vector<std::string> True;   ///< further texts for true
  std::vector<std::string> False;  ///< further texts for false
  bool Truncate = false;           ///< cut long text at a character boundary instead of rejecting it
};

/// Values for the leading fields of an index key, as text (the way a field's text setter takes
/// them). Fewer values than the index has fields give a partial key.
using KeyValues = std::vector<std::string>;

/// One open table. Every failure raises: storage errors as CTDbIntf::ECtreeException (through the
/// package's CtError, so with the number and its message), bad values as the framework's
/// exceptions. A failed call leaves the table open and its records as they were.
class TableCursor {
 public:
  virtual ~TableCursor() = default;

  /// The table's fields, indexes, record count and files.
  virtual TableInfo Info() = 0;
  /// Makes `name` the index records are read in (empty: the table's first index). Clears any
  /// range. Raises for a name the table does not have.
  virtual void UseIndex(const std::string& name) = 0;
  /// Restricts reading to keys from `from` to `to`, both ends included; an empty KeyValues leaves
  /// that end open. Positions before the first record of the range.
  virtual void SetRange(const KeyValues& from, const KeyValues& to) = 0;
  /// Shows only the records for which `text` (the table's Filter language) is true; empty: all.
  /// Clears any range: set the filter first. A text the filter cannot evaluate raises when a
  /// record is read (the parser's exceptions, or the framework's for an unknown field).
  virtual void SetFilter(const std::string& text) = 0;
  /// Positions before the first record (of the range, when one is set).
  virtual void First() = 0;
  /// Positions so that the next Read returns the first record whose key is equal to or after
  /// `key` (the nearest key). Returns false when there is no such record.
  virtual bool FindNearest(const KeyValues& key) = 0;
  /// Reads the record at the position as one text per field (the texts and blank values of
  /// FieldText) and moves on. Returns false at the end (of the range).
  virtual bool Read(std::vector<std::string>& values) = 0;

  /// Adds a record: `values[i]` is the text for field i, read with `spellings`; nullopt leaves it
  /// blank. Raises when the record is rejected (a duplicate key, a value that does not convert);
  /// nothing is added then.
  virtual void Append(const std::vector<std::optional<std::string>>& values, const ValueSpellings& spellings) = 0;

  /// Whether the three calls below work. Without them every Append is durable on its own.
  virtual bool HasTransactions() const = 0;
  /// Batches of appends: work between StartTransaction and Commit becomes durable together,
  /// Rollback undoes all of it.
  virtual void StartTransaction() = 0;
  virtual void Commit() = 0;
  virtual void Rollback() = 0;

  /// Adds an index to the table and builds its keys from the records present.
  virtual void AddIndex(const IndexDefinition& index) = 0;
  /// Deletes the index `name`. Raises for a name the table does not have.
  virtual void DeleteIndex(const std::string& name) = 0;

  /// Reads every page of the table's data file (open exclusively) in a separate process and
  /// raises (number 803) when one is damaged; the table stays as it was.
  virtual void Verify() = 0;
};

/// How a table is opened.
enum class OpenMode { ReadOnly, ReadWrite, Exclusive };

/// What a bulk copy does with each source record: Copy creates the destination anew with the
/// source's fields and indexes and adds every record; Append adds every record; Update rewrites
/// the destination record with the same unique key (others are passed over); AppendUpdate
/// rewrites or adds; Delete deletes the destination record with the same unique key.
enum class CopyMode { Copy, Append, Update, AppendUpdate, Delete };

/// Told how a copy or a restructuring goes while it runs.
class BatchObserver {
 public:
  virtual ~BatchObserver() = default;
  /// `done` records of `total` are handled (total 0 when unknown).
  virtual void Progress(std::uint64_t done, std::uint64_t total) = 0;
  /// Record `recordNo` (1-based, in the order the source is read), described by `record` (its
  /// first field, "ID 7"), failed for `reason` and left no trace. Returns whether to go on with
  /// the next record; false ends the batch with that failure raised.
  virtual bool Rejected(std::uint64_t recordNo, const std::string& record, const std::string& reason) = 0;
};

/// What a batch did: records read from the source, records that changed the destination
/// (added, rewritten or deleted), and records rejected.
struct BatchResult {
  std::uint64_t Read = 0;
  std::uint64_t Written = 0;
  std::uint64_t Rejected = 0;
};

/// Creates, deletes and opens tables with the settings it was made with.
class TableBackend {
 public:
  virtual ~TableBackend() = default;

  /// Creates the table's files with these fields and indexes; an existing table of that name is
  /// replaced.
  virtual void CreateTable(const TableRef& table, const std::vector<FieldDefinition>& fields,
                           const std::vector<IndexDefinition>& indexes) = 0;
  /// Deletes the table's files. Raises (number 12) when the table does not exist.
  virtual void DeleteTable(const TableRef& table) = 0;
  /// Opens the table. Raises (number 12) when it does not exist.
  virtual std::unique_ptr<TableCursor> Open(const TableRef& table, OpenMode mode) = 0;

  /// Moves the records of `source` (read in its first index's order) into `destination` as
  /// `mode` says, matching records for Update, AppendUpdate and Delete through a unique index of
  /// the destination and fields by name. Each record that fails goes to `observer`. `result` is
  /// kept up to date, also when the copy raises: changes are committed in batches, and when a
  /// failure ends the copy the records counted as written are exactly those it left in the
  /// destination. Raises for the failure that ends it (1131 when both name the same table, 1132
  /// when the destination has no unique index to match with). The base raises
  /// ToolError(kExitUnavailable).
  virtual void CopyTable(const TableRef& source, const TableRef& destination, CopyMode mode, BatchObserver& observer,
                         BatchResult& result);
  /// Rebuilds the table's data and index files in place (every index made again from the
  /// records); `compact` also gives the data file's free space back (the file is copied). The
  /// table must not be open anywhere. The base raises ToolError(kExitUnavailable).
  virtual void RebuildTable(const TableRef& table, bool compact);
  /// Gives `table` these fields and indexes and keeps its records (fields carried over by name).
  /// The records are copied into new files that replace the table's only when complete: when a
  /// record is rejected (`observer` is told) or anything fails, the table stays as it was and
  /// the failure is raised. `result` as for CopyTable. The base raises
  /// ToolError(kExitUnavailable).
  virtual void AlterTable(const TableRef& table, const std::vector<FieldDefinition>& fields,
                          const std::vector<IndexDefinition>& indexes, BatchObserver& observer, BatchResult& result);
  /// The tables in folder `directory` (empty: the current one), by file name: each data file,
  /// and each table of each superfile (as a member of it). Files that are neither are left out.
  /// The base raises ToolError(kExitUnavailable).
  virtual std::vector<TableRef> ListTables(const std::string& directory);
};

/// The backend of this build: TCTTable tables on a TCTConnection configured by ConnectionSetup
/// from `options` (whose errors it raises).
std::unique_ptr<TableBackend> MakeTableBackend(const ConnectionOptions& options);

}  // namespace ctt
