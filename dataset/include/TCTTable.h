// TCTTable: the dataset of one c-tree table, with its indexes, key seeks and ranges (dataset, unit CTTables).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "BatchCopyTypes.h"
#include "CTFldDesc.h"
#include "CTIdxDesc.h"
#include "CtdbTypes.h"
#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "TCTCustomDataSet.h"
#include "TCTFilter.h"
#include "TCTIndexDefs.h"
#include "TCTRecordBuffer.h"
#include "TFieldDefs.h"
#include "TStringList.h"
#include "Variant.h"

namespace CTTables {

class TCTTable;
class TCTMasterDataLink;
class FilterProgram;
class LocateMatch;

/// What the range buffers mean: the driver's flag, one type for both units. rfNone (no range) is
/// the initial value.
using Ctdb::TRangeFlag;
using Ctdb::rfMasterDetail;
using Ctdb::rfNone;
using Ctdb::rfRangeEnd;
using Ctdb::rfRangeStart;

/// OnIndexRecord(DataSet, IndexName, Accept): asked while keys of a package-maintained index are
/// added or rebuilt whether the record (readable through the table's fields) belongs in the index.
using TCTIndexRecordEvent =
    std::function<void(Ctdb::TCTCustomDataSet* DataSet, const std::string& IndexName, bool& Accept)>;

/// The dataset of one c-tree table. Open it with Connection and TableName set (Database is the
/// directory given to the connection as it is). Every storage failure is raised as
/// CTDbIntf::ECtreeException with the driver's number; framework misuse raises the framework's
/// EDatabaseError. Implementation: TCTTable.cpp (life cycle, properties), TCTTable.records.cpp
/// (record protocol, editing, bookmarks), TCTTable.indexes.cpp (indexes, keys, ranges),
/// TCTTable.restructure.cpp and TCTTable.rebuild.cpp (files and layout), TCTTable.locks.cpp.
class TCTTable : public Ctdb::TCTCustomDataSet {
 public:
  /// A closed table with no connection, owned by `AOwner` (may be null).
  explicit TCTTable(fw::TComponent* AOwner);
  ~TCTTable() override;
  /// The class's streaming information: its published properties in their order.
  static const fw::TClassInfo& StaticClass();
  const fw::TClassInfo& ClassType() const override { return StaticClass(); }

  // --- Published properties (inactive table required for the storage ones) ----------------
  ///@{
  /// Table (file) name; "" by default. Raises EDatabaseError while open.
  const std::string& TableName() const { return FTableName; }
  void SetTableName(const std::string& Value);
  ///@}
  ///@{
  /// Where the table lives. Raises EDatabaseError while open. While the component is read from a
  /// form the text is only kept, and applied in Loaded (after TableName was read). Without
  /// IsSuperFile one text gives both the directory and the table: a text that ends in "/" or
  /// names an existing directory is the directory alone; otherwise its path part ("" for none)
  /// becomes Database and its file-name part TableName ("/data/people.dat" gives "/data/" and
  /// "people.dat"). With IsSuperFile the whole text is kept: a directory, or the superfile
  /// whose member TableName names.
  const std::string& Database() const { return FDatabase; }
  void SetDatabase(const std::string& Value);
  ///@}
  ///@{
  /// Opens with 8 (read only) added to the open mode; record field writes are then ignored
  /// silently, while key, range, calculated and filter values are written as usual.
  bool ReadOnly() const { return FReadOnly; }
  void SetReadOnly(bool Value);
  ///@}
  ///@{
  /// Opens without the shared flag. An exclusive table takes no record locks when editing.
  bool Exclusive() const { return FExclusive; }
  void SetExclusive(bool Value);
  ///@}
  ///@{
  /// Makes both ends of a user range and the GotoNearest comparison exclusive. Default false.
  bool KeyExclusive() const { return FKeyExclusive; }
  void SetKeyExclusive(bool Value) { FKeyExclusive = Value; }
  ///@}
  ///@{
  /// Database names a superfile (a file) rather than a directory: the table is the member
  /// TableName of it, opened, created and deleted as "host!member". A TableName that already has
  /// the "host!member" form is used as it is. Raises while open.
  bool IsSuperFile() const { return FIsSuperFile; }
  void SetIsSuperFile(bool Value);
  ///@}
  ///@{
  /// The current index's name. Setting it on an open table switches the cursor to that index
  /// (an unknown name leaves the cursor's order alone and makes the name empty); on a closed
  /// table it only records the name, looked up at open ("" selects the primary index; a name
  /// the table does not have opens it in the order it has, with the name empty).
  std::string IndexName() const { return FIndexDesc.Name; }
  void SetIndexName(const std::string& Value);
  ///@}
  ///@{
  /// The ";"-separated key fields of the current index (of a closed table: what was set).
  /// Setting it selects the index whose key fields are these (or start with them), on a closed
  /// table when it opens; EDatabaseError when no index matches. "" returns to the primary index.
  std::string IndexFieldNames() const;
  void SetIndexFieldNames(const std::string& Value);
  ///@}
  /// The handler asked whether a record gets a key in an index made with the index-record hook.
  const TCTIndexRecordEvent& OnIndexRecord() const { return FOnIndexRecord; }
  /// Stores the handler and, outside loading and design, installs (or with an empty handler
  /// removes) DoIndexKey as the connection's index-key hook, shared by every table on it.
  void SetOnIndexRecord(const TCTIndexRecordEvent& Value);
  ///@{
  /// The master's data source; while its dataset is active, an open table shows only the
  /// records whose MasterFields match the master's current record (TCTTable.master.cpp). A
  /// source whose master chain leads back to this table raises EDatabaseError; nothing changes.
  fw::TDataSource* MasterSource() const;
  void SetMasterSource(fw::TDataSource* Value);
  ///@}
  ///@{
  /// ";"-separated entries, each "Name" (same field in master and detail) or "Master=Detail".
  /// While loading the text is kept and applied in Loaded. On an open table every detail field
  /// must be a field of the current index, else fw::Exception "Field : <name> not in the current
  /// index" (nothing changes); a master field the master lacks raises EDatabaseError.
  const std::string& MasterFields() const;
  void SetMasterFields(const std::string& Value);
  ///@}
  /// The master source, so that IsLinkedTo follows master chains.
  fw::TDataSource* DataSource() const override;
  ///@{
  /// Told about each record or field that fails while Rebuild copies the records (Sender is this
  /// table); its Continue decides as for TCTBatchCopy::OnCopyError. Unassigned: the first error
  /// ends Rebuild and leaves the table as it was.
  const TCTCopyErrorEvent& OnRebuildError() const { return FOnRebuildError; }
  void SetOnRebuildError(const TCTCopyErrorEvent& Value) { FOnRebuildError = Value; }
  ///@}
  ///@{
  /// Told how Rebuild's copy of the records goes, as TCTBatchCopy::OnProgress (Sender is this
  /// table), for a progress display.
  const TCTProgressEvent& OnRebuildProgress() const { return FOnRebuildProgress; }
  void SetOnRebuildProgress(const TCTProgressEvent& Value) { FOnRebuildProgress = Value; }
  ///@}

  // --- State ------------------------------------------------------------------------------
  /// How the table was last opened (see Ctdb::TOpenFlag).
  Ctdb::TOpenFlag OpenFlag() const { return FOpenFlag; }
  /// Whether the record being inserted goes at the end (Append) or at the cursor (Insert).
  Ctdb::TInsertType InsertType() const { return FInsertType; }
  /// Which range is in force or being entered: none, a user range's start or end, the master's.
  TRangeFlag RangeFlag() const { return FRangeFlag; }
  /// The open table's cursor; null while closed.
  Ctdb::TCTCursorDesc* Cursor() const { return FCursor.get(); }
  /// The table's index definitions (read from the open table by UpdateIndexDefs; owned).
  TCTIndexDefs* IndexDefs() const { return FIndexDefs.get(); }
  /// Names of the fields ever assigned in dsSetKey state; never emptied (its count is the number
  /// of key fields a user range compares).
  const fw::TStringList& KeyFieldNames() const { return *FKeyFieldNames; }

  // --- Indexes ----------------------------------------------------------------------------
  /// Refreshes IndexDefs and fills `List` with the non-empty index names in definition order.
  void GetIndexNames(fw::TStrings& List);
  /// Refills IndexDefs from the table's index descriptors (a closed table is opened briefly).
  void UpdateIndexDefs() override;
  /// Key fields of the current index; 0 without a cursor.
  int GetIndexFieldCount() const;
  /// The field at key position `Index` of the current index. Requires an open table; 1125 for a
  /// position out of range, 1126 when the dataset has no field of that number.
  fw::TField* GetIndexField(int Index) const;
  /// Whether `Field` is a key field of the current index (false without a cursor).
  bool GetIsIndexField(const fw::TField* Field) const;
  /// Fills `Desc` from a descriptor: name (file-name part), key fields by name, expression,
  /// flags and options (see the .cpp for the word-by-word rules).
  void DecodeIndexDesc(const Ctdb::CTIdxDesc& Desc, std::string& Name, std::string& Fields, std::string& Expression,
                       bool& Flag4, bool& Flag5, fw::TIndexOptions& Options) const;
  /// The reverse: a zeroed descriptor with the name, -1/0 flag words, the expression (only with
  /// ixExpression) and at most 256 key fields looked up in FieldDefs (unknown names raise the
  /// framework's error).
  void EncodeIndexDesc(Ctdb::CTIdxDesc& Desc, const std::string& Name, const std::string& Fields,
                       const std::string& Expression, bool Flag4, bool Flag5, fw::TIndexOptions Options) const;

  // --- Keys (open table; each starts with CheckBrowseMode) ---------------------------------
  /// Enters dsSetKey on an empty key buffer; the range flag becomes rfNone.
  void SetKey();
  /// Raises 1121 unless the state is dsSetKey.
  void CheckSetKeyMode() const;
  /// Moves to the first record whose key matches the key buffer (on the key fields assigned
  /// since SetKey); false when none or no key was set (the cursor stays where the search left it).
  bool GotoKey();
  /// Moves to the first record after (Greater) or the last before the key buffer's key, the
  /// key itself included unless KeyExclusive; false when none.
  bool GotoNearest(bool Greater = true);
  /// SetKey, the values assigned to the index fields by position, GotoKey. More values than key
  /// fields raise 1125.
  bool FindKey(const std::vector<fw::Variant>& KeyValues);
  /// SetKey, the values assigned to the index fields by position, GotoNearest(Greater).
  bool FindNearest(const std::vector<fw::Variant>& KeyValues, bool Greater = true);

  // --- Ranges ------------------------------------------------------------------------------
  ///@{
  /// Enter dsSetKey on an emptied start / end buffer (the Edit forms do not keep old values).
  void SetRangeStart();
  void SetRangeEnd();
  void EditRangeStart();
  void EditRangeEnd();
  ///@}
  /// Applies the range buffers to the cursor and moves to the first record; after SetKey (flag
  /// rfNone) it removes the range instead and does not move.
  void ApplyRange();
  /// Removes the range and its buffers.
  void CancelRange();
  /// Start and end values by key position, then ApplyRange.
  void SetRange(const std::vector<fw::Variant>& StartValues, const std::vector<fw::Variant>& EndValues);

  // --- Search by value (TCTTable.locate.cpp) ---------------------------------------------------
  /// Finds the first record whose fields named in `KeyFields` ("A;B", unknown names raise the
  /// framework's field-not-found error) equal `KeyValues`: one value, or a variant array with
  /// one element per field. The search reads past the table's filter, so a record the filter
  /// hides can be found; with a range in force only records inside it qualify. Without a range the index whose leading key fields are the most searched
  /// fields finds them, the rest are compared; otherwise the table is read from its first record
  /// in its current order. Key values are converted to their fields' types first (a value that
  /// cannot be raises the conversion error and nothing moves); a null key finds a null field.
  /// loPartialKey makes the last field, when it holds text, match values that begin with its
  /// key; loCaseInsensitive ignores case in text compared outside an index. Brings the table
  /// into browse mode first. The table keeps its position and index; a search through an index
  /// cancels the table's range (the scan keeps it and reads only the range). With `SyncCursor`
  /// the cursor is then moved to the record found (the window is not resynchronised).
  bool LocateRecord(const std::string& KeyFields, const fw::Variant& KeyValues, fw::TLocateOptions Options,
                    bool SyncCursor);
  /// BeforeScroll, LocateRecord with the cursor moved, and when found Resync([exact, center])
  /// and AfterScroll. Returns whether a record was found.
  bool Locate(const std::string& KeyFields, const fw::Variant& KeyValues, fw::TLocateOptions Options) override;
  /// The values of `ResultFields` (one value, or a variant array for "X;Y") of the first record
  /// LocateRecord finds without options, calculated fields computed; Null when none. Neither
  /// the cursor, its range nor a pending edit is touched, and no scroll event fires.
  fw::Variant Lookup(const std::string& KeyFields, const fw::Variant& KeyValues,
                     const std::string& ResultFields) override;
  // --- Master/detail field lists (TCTTable.master.cpp) ---------------------------------------
  /// Fills `List` with `DataSet`'s fields named by the left sides of the MasterFields entries
  /// (an empty text adds nothing); an unknown name raises the framework's EDatabaseError.
  static void GetMasterFieldList(std::vector<fw::TField*>& List, const std::string& FieldNames,
                                 const fw::TDataSet* DataSet);
  /// The same for the right sides (the detail fields).
  static void GetDetailFieldList(std::vector<fw::TField*>& List, const std::string& FieldNames,
                                 const fw::TDataSet* DataSet);

  // --- Creating and changing the table's files (TCTTable.restructure.cpp) --------------------
  /// Fills `Desc` for a new table's field: Name, logical FieldType and SubType by `DataType`
  /// (strings and variable bytes choose their length-prefix subtype by `Size`), and the unit
  /// counts the type keeps (characters or bytes; 32 and the scale for BCD). Currency becomes BCD
  /// with scale 4 (money would keep whole cents only). Other members are left as they are.
  static void EncodeFieldDesc(Ctdb::CTFldDesc& Desc, const std::string& Name, fw::TFieldType DataType, int Size);
  /// Creates the table's files (directory Database, name TableName) from FieldDefs (filled from
  /// the persistent data fields when empty: calculated and lookup fields are not stored) and
  /// IndexDefs; an existing table of that name is replaced.
  /// Requires an inactive table; raises ECtreeException with the driver's number (e.g. 1115 no
  /// fields, 802 a field with no c-tree form) and the framework's error for an unknown key field.
  void CreateTable();
  /// Closes the table and deletes its files; raises ECtreeException (12 when there is none).
  void DeleteTable();
  /// Adds an index to the open table and builds its keys. The definition is added to IndexDefs
  /// first (1134 for a duplicate name) and stays there when the driver then fails (raised).
  void AddIndex(const std::string& Name, const std::string& Fields, const std::string& Expression, bool Flag4,
                bool Flag5, fw::TIndexOptions Options);
  /// Removes index `Name` from the open table (a name IndexDefs does not hold is ignored). When
  /// it was the current index, the index now at its position (or, failing that, the one at the
  /// cursor's index count) becomes current, or none when the table has no index left.
  void DeleteIndex(const std::string& Name);
  /// Opens the existing index file `IndexFileName` (beside the table when it has no path) for
  /// the open table until it closes, and makes it the current index. Raises EDatabaseError when
  /// the table is closed, ECtreeException with the driver's number (12 no such file, ...).
  void OpenIndex(const std::string& IndexFileName);
  /// Rebuilds the table's files in place: every index is made again from the records. The
  /// table is closed for it (nobody else may have it open) and opened again when it was open.
  /// Raises ECtreeException (FNOP_ERR when the files are in use, 2 when a unique index meets a
  /// duplicate: the keys stay as they were).
  void RebuildLow();
  /// As RebuildLow, and the data file's free space is given back to the file system (the file
  /// is copied). Raises ECtreeException 454 for a superfile member.
  void CompactLow();
  /// Restructures the table into the layout of `NewFieldDefs` and `NewIndexDefs` and keeps its
  /// records: fields are carried over by name (fields the new layout lacks are dropped, new ones
  /// start empty), through a TCTBatchCopy in cmAppend mode into a new table in the same place,
  /// which then takes the table's name. The table is held open exclusively meanwhile, and
  /// returned to its former activity (the open table reads the new files). A record or field
  /// that fails goes to OnRebuildError. When the copy or the exchange of the files fails, the
  /// new files are removed and the table stays as it was, with all its records; the error is
  /// raised. Raises EDatabaseError for a definition that names an unknown key field. The
  /// definitions may be the table's own (its IndexDefs refreshed with UpdateIndexDefs first).
  void Rebuild(const fw::TFieldDefs& NewFieldDefs, const TCTIndexDefs& NewIndexDefs);
  /// The data file the table names, as the connection resolves Database, TableName and
  /// IsSuperFile ("dir/host!member" for a member), made absolute; "" without a connection.
  std::string StorageFileName() const;

  // --- Record locks (TCTTable.locks.cpp; open table) -----------------------------------------
  /// Write-locks the active record against every other user (other programs, and other opens of
  /// the table in this one) until Unlock, and returns its handle: a block owned by the table
  /// that holds the record's position. Locking a record twice gives the same handle. An edit of
  /// a record locked here keeps the lock. Posts a pending edit first. Raises ECtreeException
  /// (42 when another user holds the record, 100 for an empty table).
  int32_t* Lock();
  /// Frees the lock `Handle` holds and the handle. A null handle or one holding position 0 is
  /// left alone. Posts a pending edit first; raises ECtreeException when the storage refuses.
  void Unlock(int32_t* Handle);
  /// Frees every handle of the lock list, the last first, without asking the storage to unlock
  /// anything: the locks stay until the table closes. Closing the table does this too.
  void FreeLocks();
  /// The handles Lock handed out and Unlock has not freed, in the order taken.
  ///@{
  int LockCount() const { return static_cast<int>(FLocks.size()); }
  int32_t* Locks(int Index) const { return FLocks.at(static_cast<size_t>(Index)).get(); }
  ///@}

  // --- Filtering (TCTTable.filter.cpp; the Filter language: UnitFilterParser.h) ------------
  /// Each writer stores the value, then (controls disabled) closes and opens the table, even for
  /// an unchanged value or while Filtered is false: a closed table opens (after loading, when
  /// loading). Raises what Open raises. Assigning OnFilterRecord, even an empty handler, also
  /// sets Filtered to true through SetFiltered.
  ///@{
  void SetFilterText(const std::string& Value) override;
  void SetFiltered(bool Value) override;
  void SetOnFilterRecord(const fw::TFilterRecordEvent& Value) override;
  ///@}
  /// Filter with each "FIELD" replaced by the value read in the current state's buffer (text
  /// kinds in single quotes, others as their text or "*NULL*" when empty) and NULL by "*NULL*",
  /// tokens joined without separators. An unknown field raises the framework's error.
  std::string BuildparsString();
  /// Whether the record in `Buffer` is shown: in dsFilter state on `Buffer`, OnFilterRecord first,
  /// then (if accepted and Filter is not empty) the Filter text. State and filter buffer are
  /// restored before an exception leaves. RecordFilter, which the fetch calls, answers with it.
  bool DoRecordFilter(TCTRecordBuffer* Buffer);
  /// Appends a condition to the condition list, which nothing reads (the view does not change).
  void AddFilterCondition(const std::string& FieldName, int32_t FieldIndex, TCTFilterComp Comp,
                          const fw::Variant& Value);
  /// Frees every condition, the last first.
  void ClearFilter();
  /// The conditions AddFilterCondition appended, in order.
  const std::vector<std::unique_ptr<TCTFilter>>& FilterConditions() const { return FFilterConditions; }

  // --- Framework overrides callable by applications ----------------------------------------
  /// The framework's Post; a post the storage refuses raises its error and leaves the table in
  /// dsEdit or dsInsert with the values, to be corrected or cancelled.
  void Post() override;
  /// The framework's Cancel; also frees the record lock Edit took.
  void Cancel() override;
  ///@{
  /// Bookmarks are record positions; the table remembers those it handed out (FreeBookmarks).
  fw::TBookmark GetBookmark() override;
  void FreeBookmark(fw::TBookmark& Bookmark) override;
  ///@}
  /// Forgets every bookmark handed out.
  void FreeBookmarks();
  /// Positions near record `Value` by the key's percentile, then corrects by counting.
  void SetRecNo(int Value) override;
  bool BookmarkValid(const fw::TBookmark& Bookmark) override;
  int CompareBookmarks(const fw::TBookmark& Bookmark1, const fw::TBookmark& Bookmark2) override;
  /// A TCTBlobStream on blob field `Field` (a TBlobField, else EDatabaseError) of the buffer the
  /// current state reads and writes (TCTTable.blobs.cpp). Raises as the stream's constructor.
  std::unique_ptr<fw::TStream> CreateBlobStream(fw::TField* Field, fw::TBlobStreamMode Mode) override;

 protected:
  // --- The framework's record-buffer protocol over the table's cursor -------------------------
  ///@{
  /// The framework's record-buffer protocol (see fw::TDataSet), carried out on the table's
  /// cursor through the connection.
  fw::TGetResult GetRecord(fw::TRecordBuffer Buffer, fw::TGetMode GetMode, bool DoCheck) override;
  void InternalOpen() override;
  void InternalClose() override;
  void InternalInitFieldDefs() override;
  bool IsCursorOpen() const override { return FCursor != nullptr; }
  fw::TRecordBuffer AllocRecordBuffer() override;
  void FreeRecordBuffer(fw::TRecordBuffer& Buffer) override;
  void InternalInitRecord(fw::TRecordBuffer Buffer) override;
  int GetRecordSize() const override;
  void ClearCalcFields(fw::TRecordBuffer Buffer) override;
  bool GetFieldData(fw::TField* Field, void* Buffer) override;
  void SetFieldData(fw::TField* Field, const void* Buffer) override;
  using fw::TDataSet::GetFieldData;
  using fw::TDataSet::SetFieldData;
  void GetBookmarkData(fw::TRecordBuffer Buffer, void* Data) override;
  void SetBookmarkData(fw::TRecordBuffer Buffer, const void* Data) override;
  fw::TBookmarkFlag GetBookmarkFlag(fw::TRecordBuffer Buffer) override;
  void SetBookmarkFlag(fw::TRecordBuffer Buffer, fw::TBookmarkFlag Value) override;
  void InternalFirst() override;
  void InternalLast() override;
  void InternalGotoBookmark(const void* Bookmark) override;
  void InternalSetToRecord(fw::TRecordBuffer Buffer) override;
  void InternalEdit() override;
  void InternalInsert() override;
  void InternalCancel() override;
  void InternalPost() override;
  void InternalAddRecord(fw::TRecordBuffer Buffer, bool Append) override;
  void InternalDelete() override;
  void InternalHandleException() override {}
  int GetRecordCount() const override;
  int GetRecNo() const override;
  bool GetCanModify() const override;
  void Loaded() override;
  void DoAfterOpen() override;
  void DoOnNewRecord() override;
  ///@}

  /// The buffer field reads and writes go to in the current state (see the .cpp); null when none.
  TCTRecordBuffer* GetActiveRecBuf() const;
  /// Ends key editing: deCheckBrowseMode, without `Commit` the range is reset, back to dsBrowse,
  /// deDataSetChange.
  void PostKeyBuffer(bool Commit);
  /// Applies the range buffers to the cursor by the range flag; returns flag != rfNone.
  bool SetCursorRange();
  /// Frees both range buffers, clears the cursor's range, flag rfNone; returns true.
  bool ResetCursorRange();
  /// Creates `Buffer` for the cursor when null and empties it. With a master and "Master=Detail"
  /// pairs, copies the master's values into the detail fields.
  void CreateRangeBuffer(std::unique_ptr<TCTRecordBuffer>& Buffer, fw::TDataSet* Master,
                         const fw::TStrings* FieldPairs);
  /// Calls OnRebuildError with this table as Sender and the other arguments as they came.
  void DoRebuildError(fw::TComponent* Sender, fw::TField* SrcField, fw::TField* TrgField, const std::exception& E,
                      bool& Continue);
  /// The connection's index-key hook: shows the record to OnIndexRecord in dsFilter state.
  void DoIndexKey(Ctdb::CTIdxDesc* IndexDesc, const void* RecPtr, int32_t RecLen, bool& Accept);
  /// Whether a fetched record passes the filter (OnFilterRecord in dsFilter state).
  virtual bool RecordFilter(TCTRecordBuffer* Buffer);
  ///@{
  /// After the base: lookup fields that show this table's records are brought up to date
  /// (TCTTable.lookup.cpp).
  void DoAfterPost() override;
  void DoAfterDelete() override;
  ///@}
  /// Refills the master field list from MasterFields.
  void SetUpMasterFields();
  /// The master's record changed: restrict to its key (range flag rfMasterDetail) and go to the
  /// first record; a closed master cancels the range.
  void MasterLinkChange(TCTMasterDataLink* Sender);
  /// The link lost its master or fields: cancel the range and refresh.
  void MasterLinkDisable(TCTMasterDataLink* Sender);

 private:
  static TCTRecordBuffer* RecBuf(fw::TRecordBuffer Buffer) { return reinterpret_cast<TCTRecordBuffer*>(Buffer); }
  Ctdb::TCTConnection& Conn() const;
  /// The connection's open mode: 1 shared unless Exclusive, plus 8 when ReadOnly.
  int32_t OpenFlags() const;
  /// SetDatabase outside loading: the directory / table-name rule.
  void ApplyDatabase(const std::string& Value);
  /// The directory and table name given to the connection: Database and TableName, or for a
  /// superfile member the superfile's directory and "host!member".
  void StorageNames(std::string& Directory, std::string& Name) const;
  /// Whether the position `Bookmark` is held by a handle of the lock list.
  bool LockedByHandle(int32_t Bookmark) const;
  /// RebuildLow, or CompactLow when Compact.
  void RebuildFiles(bool Compact);
  /// Rebuild's last step: the new table's files take the table's name (see the .cpp).
  void ExchangeFiles(TCTTable& Rebuilt);
  /// Closes the table and deletes its files; returns the driver's number, raises nothing.
  int32_t DeleteTableFiles() noexcept;
  /// Activates the connection and opens a cursor on the table for definitions only.
  void OpenTemporaryCursor(std::unique_ptr<Ctdb::TCTCursorDesc>& Cursor);
  /// Fills FieldDefs from the cursor's field descriptors.
  void LoadFieldDefs(Ctdb::TCTCursorDesc* Cursor);
  void ClearKeyBuffers();
  void EnterKeyMode(TRangeFlag Flag, std::unique_ptr<TCTRecordBuffer>& Buffer);
  void AssignKeyValues(const std::vector<fw::Variant>& Values);
  bool FindPartialKey(TCTRecordBuffer* Key, int Fields);
  int32_t KeyLengthOf(TCTRecordBuffer* Buffer, std::vector<uint8_t>& Key, int Fields);
  void AfterIndexSwitch();
  /// Writes the text of `Master` into memo field `Detail` of key buffer `Buffer` through a
  /// write-mode TCTBlobStream (TCTTable.blobs.cpp).
  void CopyMemoToKey(TCTRecordBuffer& Buffer, fw::TField* Detail, const fw::TField* Master);
  void UnlockEditedRecord();
  int32_t CountKeysBeforeRange();
  /// At open: with an active master link, fill both range buffers from the master.
  void SetUpMasterRange();
  void ReopenForFilter();
  /// Filter's verdict on the filter buffer's record, through the analysed text (made on first use).
  bool FilterTextAccepts();
  // Search by value (TCTTable.locate.cpp) and lookup fields (TCTTable.lookup.cpp).
  bool FindRecord(const std::string& KeyFields, const fw::Variant& KeyValues, fw::TLocateOptions Options,
                  TCTRecordBuffer& Found, bool& Positioned, bool& ByIndex);
  int ChooseLocateIndex(const LocateMatch& Match, int& BestCount) const;
  bool FindByIndex(LocateMatch& Match, int Ordinal, int BestCount, TCTRecordBuffer& Found, bool& Positioned,
                   bool& ByIndex);
  bool FindByScan(LocateMatch& Match, TCTRecordBuffer& Found);
  /// The physical-order half of FindByScan on a table read in index order (see the .cpp).
  bool FindFirstInIndexOrder(Ctdb::TCTCustomRecordBuffer& Scratch, const Ctdb::TCTRecordTest& Accepts,
                             TCTRecordBuffer& Found, int32_t& Position);
  bool CandidateMatches(const LocateMatch& Match, size_t From, TCTRecordBuffer& Candidate);
  void RefreshLookupClients();
  TCTRecordBuffer& AcquireSearchBuffer();
  void ReleaseSearchBuffer() { --FSearchDepth; }

  std::unique_ptr<Ctdb::TCTCursorDesc> FCursor;
  std::string FTableName;
  std::string FDatabase;
  bool FReadOnly = false;
  bool FExclusive = false;
  bool FKeyExclusive = false;
  bool FIsSuperFile = false;
  Ctdb::TOpenFlag FOpenFlag = Ctdb::ofClosed;
  Ctdb::TInsertType FInsertType = Ctdb::isNone;
  mutable int32_t FRecNoCache = -1;
  mutable int32_t FRecordCountCache = -1;
  mutable bool FRecordCountValid = false;
  std::unique_ptr<TCTRecordBuffer> FOldRecord;
  int32_t FEditLock = 0;  // bookmark of the record locked by InternalEdit, 0 when none
  std::unique_ptr<fw::TStringList> FKeyFieldNames;
  std::unique_ptr<TCTIndexDefs> FIndexDefs;
  Ctdb::CTIdxDesc FIndexDesc;
  std::string FIndexFieldNames;  // set on a closed table; the index is chosen by them at open
  TRangeFlag FRangeFlag = rfNone;
  std::unique_ptr<TCTRecordBuffer> FRangeStart;
  std::unique_ptr<TCTRecordBuffer> FRangeEnd;
  std::unique_ptr<TCTRecordBuffer> FKeyBuffer;
  std::unique_ptr<TCTRecordBuffer> FIndexRecord;
  TCTRecordBuffer* FFilterBuffer = nullptr;
  // Filter analysed for the open table, forgotten when Filter changes or the table closes; the
  // field of each reference (null: no such field) and its substituted text, reused per record.
  std::unique_ptr<FilterProgram> FFilterProgram;
  std::vector<fw::TField*> FFilterFields;
  std::vector<std::string> FFilterValues;
  std::vector<std::unique_ptr<TCTFilter>> FFilterConditions;
  int FKeyFieldsSet = 0;  // leading key positions assigned since the key buffer was emptied
  TCTIndexRecordEvent FOnIndexRecord;
  std::shared_ptr<TCTTable*> FHookToken = std::make_shared<TCTTable*>(this);
  // Positions handed out by GetBookmark; a post that moves a record forwards the old position.
  std::vector<int32_t> FBookmarks;
  std::vector<std::pair<int32_t, int32_t>> FMovedBookmarks;
  // Record buffers of searches in progress, kept for the next ones (a search may run inside
  // another: a lookup field computed for a candidate record).
  std::vector<std::unique_ptr<TCTRecordBuffer>> FSearchBuffers;
  size_t FSearchDepth = 0;
  std::unique_ptr<TCTMasterDataLink> FMasterLink;
  std::unique_ptr<fw::TStringList> FMasterFieldList;  // the raw MasterFields entries
  std::string FPendingMasterFields;                   // MasterFields read while loading
  std::string FPendingDatabase;                       // Database read while loading
  bool FHasPendingDatabase = false;
  TCTCopyErrorEvent FOnRebuildError;
  TCTProgressEvent FOnRebuildProgress;
  std::vector<std::unique_ptr<int32_t>> FLocks;       // the lock list: handles Lock handed out
};

}  // namespace CTTables
