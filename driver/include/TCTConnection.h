// TCTConnection: the c-tree session component and storage driver (driver, unit Ctdb).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <memory>
#include <optional>
#include <vector>

#include "CTCurProps.h"
#include "CTDbIntf.h"
#include "CTFldDesc.h"
#include "CTIdxDesc.h"
#include "CTTblDesc.h"
#include "IfilDefinition.h"
#include "CtdbTypes.h"
#include "DataSetTypes.h"
#include "TComponent.h"

namespace fw {
class TDataSet;
}

namespace Ctdb {

class TCTCursorDesc;
class TCTCustomRecordBuffer;

/// A test of one record's bytes (the record and its length) for TCTConnection::ScanRecords.
using TCTRecordTest = std::function<bool(const uint8_t* record, int32_t length)>;

/// The connection: holds the session settings, opens and closes the c-tree ISAM session, keeps
/// the datasets open on it and is the storage driver for them. Storage methods return 0 or an
/// error number (47 inactive, 1113 nil cursor, c-tree's own numbers, ...) and never throw;
/// only the guarded setters, activation and GetField on a buffer without a record raise.
class TCTConnection : public fw::TComponent {
 public:
  // ---- published properties (defaults as listed)
  bool Active() const { return FActive; }  ///< False.
  /// While the component is read from a form only remembers `value` (applied in Loaded).
  /// Otherwise nothing happens when `value` equals Active. True loads the Alignment variant and
  /// starts the ISAM session (INTISAMX with MaxBuffers, MaxFiles, MaxSectors, MaxBuffers, user
  /// profile 592, or 529 with a server, UserName, Password, ServerName); 125, a session the
  /// variant already has, is accepted and shared. Raises ECtreeException when the library cannot
  /// be loaded or the session refused (the connection stays inactive). False closes every
  /// registered dataset, last registered first, ends the session (CLISAM, its result ignored)
  /// and unloads the variant.
  void SetActive(bool value);
  CTDbIntf::TLoadAlignment Alignment() const { return FAlignment; }  ///< laByte.
  /// Library variant; raises ECtreeException (ErrorCode 0) while active.
  virtual void SetLoadAlignment(CTDbIntf::TLoadAlignment value);
  ///@{
  /// NullKeys, default false: keys made only of EmptyChar are not stored.
  bool NullKeys() const { return FNullKeys; }
  void SetNullKeys(bool value) { FNullKeys = value; }
  ///@}
  ///@{
  /// MaxBuffers, default 100: index and data buffers of the session; may change while active.
  int16_t MaxBuffers() const { return FMaxBuffers; }
  void SetMaxBuffers(int16_t value) { FMaxBuffers = value; }
  ///@}
  ///@{
  /// MaxFiles, default 50: files the session opens at most; the setter raises fw::Exception
  /// while active.
  int16_t MaxFiles() const { return FMaxFiles; }
  void SetMaxFiles(int16_t value);
  ///@}
  ///@{
  /// MaxSectors, default 16: node sectors; the setter raises fw::Exception while active.
  int16_t MaxSectors() const { return FMaxSectors; }
  void SetMaxSectors(int16_t value);
  ///@}
  ///@{
  /// UserName, default empty: the user the session starts for (with a server).
  const std::string& UserName() const { return FUserName; }
  void SetUserName(const std::string& value) { FUserName = value; }
  ///@}
  ///@{
  /// Password, default empty: given to the server when the session starts, and to the engine
  /// when a file protected by a password is opened.
  const std::string& Password() const { return FPassword; }
  void SetPassword(const std::string& value) { FPassword = value; }
  ///@}
  ///@{
  /// ServerName, default empty: the embedded engine.
  const std::string& ServerName() const { return FServerName; }
  void SetServerName(const std::string& value) { FServerName = value; }
  ///@}
  ///@{
  /// DataDir, default empty: kept and streamed for applications; the connection itself does not
  /// read it (tables take their folder from their own Database).
  const std::string& DataDir() const { return FDataDir; }
  void SetDataDir(const std::string& value) { FDataDir = value; }
  ///@}
  ///@{
  /// TempDir, default empty: kept and streamed for applications; the connection itself does not
  /// read it.
  const std::string& TempDir() const { return FTempDir; }
  void SetTempDir(const std::string& value) { FTempDir = value; }
  ///@}
  ///@{
  /// EmptyChar, default #0: pads text; fields made only of it are blank.
  char EmptyChar() const { return FEmptyChar; }
  void SetEmptyChar(char value) { FEmptyChar = value; }
  ///@}
  ///@{
  /// MaxIndexKey, default 32: the key width of blob fields.
  int32_t MaxIndexKey() const { return FMaxIndexKey; }
  void SetMaxIndexKey(int32_t value) { FMaxIndexKey = value; }
  ///@}
  ///@{
  /// DataExt, default empty: the extension of data files, kept without everything up to and
  /// including its first "." (".dat" and "x.dat" both give "dat").
  const std::string& DataExt() const { return FDataExt; }
  virtual void SetDataExt(const std::string& value);
  ///@}
  ///@{
  /// IndexExt, default empty: the extension of index files, by the rule of DataExt.
  const std::string& IndexExt() const { return FIndexExt; }
  virtual void SetIndexExt(const std::string& value);
  ///@}
  ///@{
  /// SuperFileExt, default empty: the extension of superfiles; the setter deletes only the first
  /// "." itself (".dsf" gives "dsf", "x.dsf" gives "xdsf").
  const std::string& SuperFileExt() const { return FSuperFileExt; }
  void SetSuperFileExt(const std::string& value);
  ///@}

  /// An inactive connection with the defaults above, owned by `owner` (may be null).
  explicit TCTConnection(fw::TComponent* owner);
  /// Deactivates (closing every dataset) before the component goes.
  ~TCTConnection() override;

  /// The class's streaming information: its published properties in their order.
  static const fw::TClassInfo& StaticClass();
  const fw::TClassInfo& ClassType() const override { return StaticClass(); }

  // ---- datasets open on this connection (not owned)
  /// The number of datasets registered with AddDataSet.
  int DataSetCount() const { return static_cast<int>(FDataSets.size()); }
  /// Dataset `index` (0-based, in registration order); std::out_of_range outside the list.
  fw::TDataSet* DataSets(int index) const { return FDataSets.at(static_cast<size_t>(index)); }
  /// Registers an open dataset (once); it is closed when the connection deactivates.
  void AddDataSet(fw::TDataSet* dataSet);
  /// Forgets a dataset; unknown datasets are ignored.
  void RemoveDataSet(fw::TDataSet* dataSet);

  /// Packing (1, 2 or 4) of the definition records of the `Alignment` variant.
  int RecordPacking() const;

  // ---- paths (TCTConnection.cpp)
  /// Full name of a table file: `dir` with a "/" appended when `dir` is not empty and exists or a
  /// server is named (otherwise no directory), then `name`, followed directly by `DataExt` (no
  /// dot) when `name` has no extension. A result ending in "." has that dot replaced by a NUL
  /// character in place, so that as a C string it ends before the dot.
  std::string BuildFullPath(const std::string& dir, const std::string& name) const;
  /// Stores the current directory in `oldDir`; without a server makes the directory of
  /// `fileName` current (raises fw::EInOutError when it cannot).
  void ChangeToFileDir(const std::string& fileName, std::string& oldDir) const;
  /// Whether c-tree cannot create a data file of that name (which it takes as "exists"); a
  /// file created by the probe is deleted again. Requires an active connection.
  bool CheckFileExists(const std::string& fileName) const;
  /// A name from c-tree for a temporary file in the directory of the cursor's table; empty on
  /// failure. The current directory is restored.
  std::string GetTempFileName(const TCTCursorDesc* cursor) const;
  /// c-tree's name of open file `fileNo` in `name` (empty on failure); returns c-tree's result.
  int32_t GetSymbFileName(int16_t fileNo, std::string& name) const;
  /// Saves the cursor's c-tree position in a new context: 0, or 1113 for a nil cursor.
  int32_t SetContext(TCTCursorDesc* cursor);
  /// Closes the cursor's most recent context, restoring the positions it saved: 0, or 1113.
  int32_t RestoreContext(TCTCursorDesc* cursor);

  // ---- schema and descriptors (TCTConnection.schema.cpp); 47 inactive, 1113 nil cursor
  /// Builds `cursor->Fields` from the data file's DODA; 408 when it is missing or unreadable.
  int32_t ReadFieldsDescriptions(TCTCursorDesc* cursor);
  /// Reads the data file's IFIL into the cursor (and its index count); 408 when missing or
  /// unreadable.
  int32_t LoadIFIL(TCTCursorDesc* cursor);
  /// For a table with blob fields opens (building it first when needed) the companion ".dsf"
  /// file holding copies of the IFIL and DODA; sets `SchemaFileNo`. 0 for other tables.
  int32_t OpenSchemaFile(TCTCursorDesc* cursor);
  /// Deletes the cursor table's ".dsf" file (DeleteTable's result).
  int32_t DeleteSchemaFile(TCTCursorDesc* cursor);
  /// Refills `cursor->Indexes` from the IFIL, one descriptor per index.
  int32_t InitIndexes(TCTCursorDesc* cursor);
  /// Descriptor of the index at `ordinal` from the cursor's IFIL; 1114 without indexes, 1137
  /// for an ordinal out of range. Marks serial-number key fields `AutoInc`.
  int32_t GetIndexDesc(TCTCursorDesc* cursor, int32_t ordinal, CTIdxDesc& desc);
  /// The framework view of every field, in order; `list` (may be null: nothing is done) is
  /// resized to the field count.
  int32_t GetFieldDescs(TCTCursorDesc* cursor, TFieldDescList* list);
  /// Properties of the open table; also sizes the cursor's key buffer to the current index.
  int32_t GetCursorProps(TCTCursorDesc* cursor, CTCurProps& props);
  /// Makes the index `desc` names (by `IndexId`, else by name) current, clears the range and
  /// copies the stored descriptor into `desc`; 1137 for a null `desc`. With `reposition` the
  /// new index is placed on the data file's current record.
  int32_t SwitchToIndex(TCTCursorDesc* cursor, CTIdxDesc* desc, bool reposition);
  /// Finds an unused index file name for `tablePath` in `directory`: the base name cut to eight
  /// characters (after any "!"), then base names ending in 1, 2, ... 999. `number` is the first
  /// number to try and ends one past the number used.
  void FindIndexName(const std::string& tablePath, const std::string& directory, std::string& fileName,
                     int32_t& number) const;

  // ---- table files (TCTConnection.tables.cpp)
  /// Opens the data file `name` (exactly as named) and the indexes its IFIL names, in c-tree
  /// mode `mode`, as consecutive free file numbers; `fileNo` receives the data file's number.
  /// Returns c-tree's result (12 missing, 408 without IFIL, 455 wrong password, ...), or 1136
  /// when the files were made by a library of another alignment.
  int32_t OpenTableFiles(const std::string& name, int16_t mode, int16_t& fileNo);
  /// Deletes a table's data and index files (`BuildFullPath(dir, name)`, opened exclusively with
  /// their resources); returns c-tree's result (12 when the table is not there).
  int32_t DeleteTable(const std::string& dir, const std::string& name);
  /// Re-reads the cursor's current record into `data` (fixed or variable length). 47, 1113, or
  /// c-tree's result (100 without a current record).
  int32_t ReadRecord(TCTCursorDesc* cursor, std::vector<uint8_t>& data);
  /// The names of the tables in superfile `path` (its members other than index members, whose
  /// names hold ".idx"), in the superfile's order; empty when `path` does not open as one.
  std::vector<std::string> SuperFileMembers(const std::string& path);

  // ---- type mapping (TCTConnection.types.cpp)
  /// Fills `desc.FieldType`, `SubType` from a c-tree type code.
  static void CTreeFieldsToBDE(int32_t code, CTFldDesc& desc);
  /// The subtype of a c-tree code; `subType` unchanged for codes without one.
  static int16_t CTreeFieldsToBDESubTypes(int32_t code, int16_t subType);
  /// The framework field type of a logical type and subtype.
  static fw::TFieldType BDEToFieldType(int16_t fieldType, int16_t subType);
  /// The c-tree code for a framework field description; -1 for a blob or variable-bytes field
  /// whose subtype names no c-tree form.
  static int32_t BDEFieldsToCTree(const CTFldDesc& desc);
  /// c-tree width of field `fieldNo` (1-based) of `fields`.
  static int32_t GetCTreeFieldLength(int32_t fieldNo, const TFieldDescList& fields);
  /// c-tree record length of the first `count` fields, up to the first blob field.
  static int32_t GetCTreeRecLength(int32_t count, const TFieldDescList& fields);
  /// Copies `count` descriptors from `source` to `dest`; returns 0.
  static int32_t TranslateRecordStructure(const TFieldDescList& source, int32_t count, TFieldDescList& dest);

  // ---- field values (TCTConnection.fields.cpp)
  /// Converts field `fieldNo` (1-based) of the buffer's record into its framework form at `dest`
  /// (may be null: only `isBlank` is computed). 47, 1113, 1125 for a field number out of range,
  /// 1112 when the field lies beyond the record; raises ECtreeException when the buffer holds no
  /// record.
  int32_t GetField(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer, void* dest,
                   bool& isBlank);
  /// Writes the framework value at `src` (null: the field's empty value) into field `fieldNo`.
  /// 47, 1113, 1125, 1112 as GetField (also when the buffer holds no record); 1104, with the
  /// field unchanged, for a BCD value of more than 16 digits or money outside its 32-bit range.
  int32_t SetField(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer, const void* src);

  // ==== storage driver: cursors, records, table and index definition, blobs ====
  // Each returns 0 or a number and never throws: 47 inactive, 1113 nil cursor, 101 no record
  // (end, start, outside the range, key not found), the numbers named below, or c-tree's own.

  /// The index-key hook (a table installs it for OnIndexRecord): asked whether a record belongs
  /// in an index the package maintains itself (`Maintained` 0). Empty: such indexes get no keys
  /// on append and modify.
  TCTIndexKeyEvent OnIndexKey;

  // ---- cursors and navigation (TCTConnection.cursor.cpp)
  /// Opens `tableName` (host!member for a superfile member) in `database` with c-tree mode
  /// `openFlags` (1 shared, 8 read only): data file, indexes, IFIL, fields, properties; position
  /// cpNone, physical order. On failure `cursor` stays empty and nothing stays open; 1136 for a
  /// file of another alignment, 12 missing, 455 password.
  int32_t OpenCursor(std::unique_ptr<TCTCursorDesc>& cursor, const std::string& tableName,
                     const std::string& database, int32_t openFlags);
  /// Closes OpenIndex's index files, the schema file and the table, frees and empties `cursor`.
  int32_t CloseCursor(std::unique_ptr<TCTCursorDesc>& cursor);
  /// `key` becomes zeros of the current index's key length, which is returned (0: nil cursor).
  int32_t AllocateKey(TCTCursorDesc* cursor, std::vector<uint8_t>& key);
  /// The current index's key of the buffer's record (position suffix 0 on a duplicate index).
  /// 1137 in physical order, 100 when the buffer holds no record.
  int32_t ExtractKey(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, std::vector<uint8_t>& key);
  /// Re-reads the current record into `buffer` (may be null), locking it first for a write or
  /// read lock, and stands the index on it. 1102 at cpEof, 1101 at cpBof, 101 outside the range.
  int32_t GetCurrentRecord(TCTCursorDesc* cursor, CTLockType lockType, TCTCustomRecordBuffer* buffer);
  /// Next record in the current order within the range, read into `buffer` (may be null) with
  /// its bookmark; from cpBof the first, from cpEof 101 at once. Success: cpNone and the sequence
  /// number grows; failure: cpEof and the sequence number is the record count.
  int32_t GetNextRecord(TCTCursorDesc* cursor, CTLockType lockType, TCTCustomRecordBuffer* buffer);
  /// The mirror of GetNextRecord; failure leaves cpBof and sequence number -1.
  int32_t GetPriorRecord(TCTCursorDesc* cursor, CTLockType lockType, TCTCustomRecordBuffer* buffer);
  /// Position cpBof, sequence number 0; nothing is read.
  int32_t SetToBegin(TCTCursorDesc* cursor);
  /// Position cpEof; nothing is read.
  int32_t SetToEnd(TCTCursorDesc* cursor);
  /// The current record's position; 100 without a current record.
  int32_t GetBookMark(TCTCursorDesc* cursor, int32_t& bookmark);
  /// Makes the record at `bookmark` current with the index on it; 101 outside the range.
  int32_t SetToBookMark(TCTCursorDesc* cursor, int32_t bookmark);
  /// After `AppendRecord`: makes the record it wrote current without reading it back (the engine
  /// left it current with every index on its key); 101 when it lies outside the range. Goes
  /// through `SetToBookMark` when the current index may not hold the record (a condition, or
  /// keys the package maintains).
  int32_t SetToAppended(TCTCursorDesc* cursor);
  /// The first record whose key value equals the buffer's (first of its duplicates).
  int32_t GotoKey(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer);
  /// The first record whose key follows the buffer's (or equals it when `inclusive`).
  int32_t GotoGTKey(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, bool inclusive);
  /// The last record whose key precedes the buffer's (or equals it when `inclusive`).
  int32_t GotoLTKey(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, bool inclusive);
  /// Tests `length` key bytes against the range, each end over the shorter length, and sets the
  /// position itself (kept so): cpBof below, cpEof above (101), cpNone inside or without range.
  int32_t IsInRange(TCTCursorDesc* cursor, const void* key, int32_t length);
  /// First key of the range into `key`; returns its record position, 0 when none.
  int32_t GetGKey(TCTCursorDesc* cursor, std::vector<uint8_t>& key);
  /// Last key of the range into `key`; returns its record position, 0 when none.
  int32_t GetLKey(TCTCursorDesc* cursor, std::vector<uint8_t>& key);
  /// Exact record count of the table, index or range; the position is kept.
  int32_t GetRecordCount(TCTCursorDesc* cursor, int32_t& count);
  /// 1-based place of the buffer's record (null: the current key) in the index or range; the
  /// sequence number in physical order.
  int32_t GetAlmostRecordNumber(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, int32_t& number);
  /// Place of the current record in index order (key count at cpEof; 0 at cpBof and in
  /// physical order).
  int32_t GetSeqNo(TCTCursorDesc* cursor, int32_t& seqNo);
  /// Locks (2 write, 5 read) or frees (0) the current record of `dataFileNo`; 100 without one,
  /// 42 when another user holds it.
  int32_t LockData(int16_t dataFileNo, int16_t mode);
  /// Write-locks the current record; `handle` receives its bookmark.
  int32_t LockRecord(TCTCursorDesc* cursor, int32_t& handle);
  /// Frees the lock on the record at `handle` without moving the cursor.
  int32_t UnlockRecord(TCTCursorDesc* cursor, int32_t handle);

  // ---- bulk scans for searches by value (TCTConnection.scan.cpp)
  /// Hands the bytes of every record of the table, from the first in the current order (index
  /// or physical; physical with `physicalOrder`), to `test` until it returns true; `position`
  /// then receives that record's position (inside `test`, GetBookMark gives the position of the
  /// record being tested). Records are read in bulk into one reused buffer, in a c-tree context
  /// of its own, so the table's c-tree position and the cursor stay as they were. Only for a
  /// table without blob fields and without an active range (1137 otherwise, nothing read); 101
  /// when no record passes. An exception from `test` passes through after the context is
  /// restored.
  int32_t ScanRecords(TCTCursorDesc* cursor, const TCTRecordTest& test, int32_t& position,
                      bool physicalOrder = false);

  // ---- record modification (TCTConnection.records.cpp), each inside one lock set
  /// Adds the buffer's record (FillRecord) with its keys; with the hook, keys of package indexes
  /// too. 2 on a unique clash (nothing written), 1116 when the record cannot be rebuilt.
  int32_t AppendRecord(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer);
  /// Rewrites the current record with `buffer` when the stored one still equals `oldBuffer`.
  /// Otherwise nothing changes and 1135 is returned; a rewrite the storage refuses returns its
  /// number (2 for a duplicate key) with the record and its keys as they were. `release` ends
  /// the lock set (its result is returned when everything else succeeded). At cpBof/cpEof:
  /// cpNone and 1101/1102.
  int32_t ModifyRecord(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, TCTCustomRecordBuffer* oldBuffer,
                       bool release);
  /// Deletes the current record and its keys (package indexes too); returns the lock set's end
  /// result (kept so). At cpBof/cpEof: cpNone and 1101/1102.
  int32_t RemoveRecord(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer);
  /// 1135 when the stored record differs from `oldBuffer`'s; when equal, with the hook, moves
  /// package index keys from the stored record to `newBuffer`'s (null: `oldBuffer`'s).
  int32_t CheckRecord(TCTCursorDesc* cursor, TCTCustomRecordBuffer* oldBuffer,
                      TCTCustomRecordBuffer* newBuffer = nullptr);

  // ---- transactions (TCTConnection.transactions.cpp)
  // A transaction groups the record changes made through every dataset open on this connection
  // (and on any other connection of the same Alignment, which shares the engine's session): they
  // become visible to others and durable together at Commit, and Rollback discards all of them.
  // Open datasets stay open across Commit and Rollback; after a Rollback their record buffers
  // may still show records that were rolled back, so move or refresh them before reading on.
  // Record locks taken for changes inside the transaction are held until it ends. Unlike the
  // storage methods above, these four raise, as applications expect of a database component:
  // ECtreeException with the engine's number (47 when the connection is not active, 815 for a
  // transaction already begun or none to end).
  /// Begins a transaction. Raises 47 when inactive, 815 when one is already open.
  void StartTransaction();
  /// Commits the open transaction's changes together and releases its locks. Raises 815 when
  /// there is none; when the engine refuses the commit the changes are discarded, the
  /// transaction is over and the engine's number is raised.
  void Commit();
  /// Discards the open transaction's changes and releases its locks. Raises 815 when none.
  void Rollback();
  /// Whether a transaction begun here is open. Deactivating the connection rolls it back.
  bool InTransaction() const { return FInTransaction; }

  // ---- table and index definition (TCTConnection.definition.cpp)
  /// Creates a table from `desc` in directory `path` (empty: current), or as member host!name
  /// when `path` names a file; `overwrite` deletes an old one first. Index conditions are applied;
  /// a failed create leaves no files. 1115 no fields, 1116, 1137 bad key field, 802 a field with
  /// no c-tree form, 17 exists.
  int32_t CreateTable(const std::string& path, bool overwrite, CTTblDesc& desc);
  /// Rebuilds the closed file set `ifil` in place: RBLIFIL (data file pfilnam + ".dat"), or with
  /// `dataExt` given RBLIFILX with that data extension ("" for a data file named pfilnam).
  int32_t RebuildTable(const IfilDefinition& ifil, const std::optional<std::string>& dataExt = std::nullopt);
  /// As RebuildTable, and the data file's free space is given back too (the file is copied):
  /// CMPIFIL, or CMPIFILX with `dataExt`. 454 for a superfile member.
  int32_t CompactTable(const IfilDefinition& ifil, const std::optional<std::string>& dataExt = std::nullopt);
  /// Asks the hook whether the buffer's record belongs in `index` and adds its key for the
  /// current record if so (0 for a refusal too). 1137 null index.
  int32_t AddIndexKey(TCTCursorDesc* cursor, CTIdxDesc* index, TCTCustomRecordBuffer* buffer);
  /// Removes the buffer's record's key from `index` at the current record; 101 when absent.
  int32_t DeleteIndexKey(TCTCursorDesc* cursor, CTIdxDesc* index, TCTCustomRecordBuffer* buffer);
  /// Adds `index` (segments of GetMaxSize) to the open table, fills it and lists it; 1137 for a
  /// null or fieldless descriptor.
  int32_t AddIndex(TCTCursorDesc* cursor, CTIdxDesc* index);
  /// Opens index file `fileName` (beside the table) for the table, lists it and fills `index`.
  int32_t OpenIndex(TCTCursorDesc* cursor, const std::string& fileName, CTIdxDesc* index);
  /// Removes `index` (by name or IndexId) from the table; 1137 when the cursor has none such.
  int32_t DeleteIndex(TCTCursorDesc* cursor, CTIdxDesc* index);
  /// Rebuilds the table's indexes (the cursor stays open, at cpBof), applies the condition of
  /// `index` again and, with the hook, offers it every record.
  int32_t RebuildIndex(TCTCursorDesc* cursor, CTIdxDesc* index);
  /// Renames the table (exclusive) to `newName` (beside it when without path, keeping its
  /// extension when without one) with its index files and closes it; CloseCursor still follows.
  int32_t RenameTable(TCTCursorDesc* cursor, const std::string& newName);
  /// Creates and closes a plain data file (fixed `recordLength`, c-tree `fileMode`); 17 exists.
  int32_t CreateFile(const std::string& fileName, int32_t recordLength, int16_t fileMode);

  // ---- blobs (TCTConnection.blobs.cpp); 1127 for a field that is not a blob
  /// Loads blob field `fieldNo` (1-based) of the buffer's record into its stream, discarding the
  /// stream's content. `isBlob` is set true before the blob check. 1117 (the stream left empty)
  /// when the record is damaged: text without its zero byte or a length running past the record.
  int32_t OpenBlob(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer, bool& isBlob);
  /// Reads up to `count` bytes at `position` of the stream; `bytesRead` (0 beyond the end).
  int32_t GetBlob(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer, int32_t& bytesRead,
                  void* dest, int32_t count, int32_t position);
  /// Writes `count` bytes at `position` of the stream, which grows as needed; 1112, writing
  /// nothing, when the blob would grow beyond what the field's length prefix counts (255 bytes
  /// for the 1-byte form, 65535 for the 2-byte form).
  int32_t PutBlob(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer, int32_t position,
                  int32_t count, const void* src);
  /// The stream's size in bytes into `size`; 1127 for a field that is not a blob.
  int32_t GetBlobSize(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer, int32_t& size);
  /// Sets the stream's size (growth is zero bytes); 1112, changing nothing, beyond what the
  /// field's length prefix counts.
  int32_t TruncateBlob(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer, int32_t newSize);
  /// Does nothing (streams are written back by FillRecord when the record is posted); 0.
  int32_t CloseBlob(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer);
  /// OpenBlob for every blob field, in order; results ignored.
  int32_t OpenAllBlobs(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer);
  // ==== end of the storage driver block ====


 protected:
  // ---- descendants may override
  void Loaded() override;
  /// Opens the ISAM session (INTISAMX); raises through CtError for results other than 0, 125.
  virtual void InitDatabase();
  /// Closes the session (CLISAM, which closes every file still open); returns its result.
  virtual int32_t CloseDatabase();

 private:
  std::string EmptyCharText() const { return std::string(1, FEmptyChar); }
  void SetEmptyCharText(const std::string& value) { FEmptyChar = value.empty() ? '\0' : value[0]; }
  int32_t CheckCursor(const TCTCursorDesc* cursor) const;
  int32_t BuildSchemaFile(TCTCursorDesc* cursor, const std::string& schemaPath);
  void RestorePackageKeys(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, TCTCustomRecordBuffer* oldBuffer);

  bool FStreamedActive = false;
  bool FActive = false;
  CTDbIntf::TLoadAlignment FAlignment = CTDbIntf::laByte;
  bool FNullKeys = false;
  int16_t FMaxBuffers = 100;
  int16_t FMaxFiles = 50;
  int16_t FMaxSectors = 16;
  std::string FUserName;
  std::string FPassword;
  std::string FServerName;
  std::string FDataDir;
  std::string FTempDir;
  char FEmptyChar = '\0';
  int32_t FMaxIndexKey = 32;
  std::string FDataExt;
  std::string FIndexExt;
  std::string FSuperFileExt;
  std::vector<fw::TDataSet*> FDataSets;
  bool FInTransaction = false;
};

}  // namespace Ctdb
