// TDataSet: the dataset base class, its states, buffer window and record-buffer protocol
// (framework layer). Implementation: TDataSet.cpp (open/close, state, events),
// TDataSet.navigation.cpp (window, navigation, bookmarks), TDataSet.editing.cpp, TDataSet.fields.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "DataSetTypes.h"
#include "Exception.h"
#include "TComponent.h"
#include "TField.h"
#include "TFieldDefs.h"
#include "TFields.h"
#include "Variant.h"

namespace fw {

class TDataSource;
class TStream;

using TDataSetNotifyEvent = std::function<void(TDataSet* DataSet)>;
/// OnPostError/OnEditError/OnDeleteError(DataSet, E, Action): Action starts as daFail.
using TDataSetErrorEvent = std::function<void(TDataSet* DataSet, EDatabaseError& E, TDataAction& Action)>;
/// OnFilterRecord(DataSet, Accept): Accept starts true. The handler must not move the dataset.
using TFilterRecordEvent = std::function<void(TDataSet* DataSet, bool& Accept)>;

/// A dataset presents the records of a cursor one at a time through a window of BufferCount
/// record buffers (plus one spare for fetching). Descendants implement the record-buffer
/// protocol (blocks below); the base class drives navigation, editing, calculated fields and the
/// notifications to data sources. Errors: EDatabaseError, prefixed with the dataset's name.
class TDataSet : public TComponent {
 public:
  explicit TDataSet(TComponent* AOwner);
  /// Detaches every data source and destroys every field, persistent ones included. The base
  /// destructor cannot reach a descendant's InternalClose: every concrete descendant calls
  /// Close() first thing in its own destructor (under csDestroying no close events fire).
  ~TDataSet() override;
  /// Publishes Active, AutoCalcFields, Filter and Filtered (in that order, ahead of a
  /// descendant's own); not creatable.
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
  void Notification(TComponent* AComponent, TOperation Operation) override;
  /// Form streaming: the persistent fields owned by `Root` are written inside the dataset.
  void GetChildren(const std::function<void(TComponent*)>& Proc, TComponent* Root) const override;

  // --- Properties -------------------------------------------------------------------------
  /// State neither dsInactive nor dsOpening.
  bool Active() const { return FState != dsInactive && FState != dsOpening; }
  /// Open (true) or close (false); see Open and Close.
  void SetActive(bool Value);
  TDataSetState State() const { return FState; }
  bool Bof() const { return FBOF; }
  bool Eof() const { return FEOF; }
  bool Modified() const { return FModified; }
  TFields* Fields() const { return FFields.get(); }
  int FieldCount() const { return FFields->Count(); }
  TFieldDefs* FieldDefs() const { return FFieldDefs.get(); }
  /// Fields made from FieldDefs at open (no persistent fields existed).
  bool DefaultFields() const { return FDefaultFields; }
  /// Window size (number of record buffers, without the spare).
  int BufferCount() const { return FBufferCount; }
  /// GetRecordCount(): the descendant's count of records; -1 in the base.
  int RecordCount() const { return GetRecordCount(); }
  /// GetRecNo(): 1-based position, -1 in the base.
  int RecNo() const { return GetRecNo(); }
  /// Descendants position on record `Value` (CheckBrowseMode, position, Resync); base: nothing.
  virtual void SetRecNo(int /*Value*/) {}
  /// GetCanModify(): true in the base.
  bool CanModify() const { return GetCanModify(); }
  bool IsUniDirectional() const { return FIsUniDirectional; }
  int BookmarkSize() const { return FBookmarkSize; }
  /// GetBookmark() / GotoBookmark().
  TBookmark Bookmark() { return GetBookmark(); }
  void SetBookmark(const TBookmark& Value) { GotoBookmark(Value); }
  /// > 0 requires Active and enters dsBlockRead; 0 returns to dsBrowse.
  int BlockReadSize() const { return FBlockReadSize; }
  void SetBlockReadSize(int Value);
  bool AutoCalcFields() const { return FAutoCalcFields; }
  void SetAutoCalcFields(bool Value) { FAutoCalcFields = Value; }
  /// Filter text, Filtered and FilterOptions are stored here and applied by descendants. Each
  /// setter raises on a unidirectional dataset (Filtered only when set true).
  /// Descendants override the setters to re-apply the filter while open (call the base first).
  const std::string& Filter() const { return FFilterText; }
  void SetFilter(const std::string& Value) { SetFilterText(Value); }
  virtual void SetFilterText(const std::string& Value);
  bool Filtered() const { return FFiltered; }
  virtual void SetFiltered(bool Value);
  TFilterOptions FilterOptions() const { return FFilterOptions; }
  virtual void SetFilterOptions(TFilterOptions Value);
  const TFilterRecordEvent& OnFilterRecord() const { return FOnFilterRecord; }
  virtual void SetOnFilterRecord(const TFilterRecordEvent& Value);
  /// Index of the current row in the window (for data links).
  int ActiveRecord() const { return FActiveRecord; }
  /// The master data source of a detail dataset; null in the base.
  virtual TDataSource* DataSource() const { return nullptr; }
  /// One name: FieldByName(Names)->Value; several ("A;B"): a variant array of the values.
  Variant FieldValues(const std::string& Names) const;
  /// An array assigns element i to field i of the list; a scalar goes to FieldByName(Names).
  void SetFieldValues(const std::string& Names, const Variant& Value);

  // --- Public methods ---------------------------------------------------------------------
  void Open() { SetActive(true); }
  void Close() { SetActive(false); }
  void CheckActive() const;
  void CheckInactive() const;
  void CheckBiDirectional() const;
  /// Posts a modified edit, cancels an untouched one, posts a key entry. Requires Active.
  void CheckBrowseMode();
  void First();
  void Last();
  void Next();
  void Prior();
  /// Moves `Distance` records (negative: backwards); returns the signed number moved.
  int MoveBy(int Distance);
  /// BeforeRefresh; re-read the current record and the window; AfterRefresh.
  void Refresh();
  /// Rebuilds the window around the cursor's current record (see the class's documentation).
  virtual void Resync(TResyncMode Mode);
  void Edit();
  void Insert();
  void Append();
  /// Raises "not in edit or insert mode" outside dsEditModes.
  virtual void Post();
  /// No-op outside dsEdit/dsInsert.
  virtual void Cancel();
  /// Raises on an empty or read-only dataset; in dsInsert it cancels.
  void Delete();
  /// Insert/Append, assign `Values` by position (Unassigned skips, Null clears), Post. More
  /// values than fields raise before anything happens.
  void InsertRecord(const std::vector<Variant>& Values);
  void AppendRecord(const std::vector<Variant>& Values);
  /// Assigns `Values` by position; requires an editing state.
  void SetFields(const std::vector<Variant>& Values);
  /// Requires dsEditModes: empties the active record (calculated fields recomputed).
  void ClearFields();
  /// Requires dsEditModes: sends deUpdateRecord so controls write pending text.
  void UpdateRecord();
  bool IsEmpty() const { return FBOF && FEOF && FState != dsInsert; }
  void DisableControls();
  void EnableControls();
  bool ControlsDisabled() const { return FDisableCount > 0; }
  /// Virtual: descendants may wrap data events; the base does its own work, then broadcasts.
  virtual void DataEvent(TDataEvent Event, intptr_t Info);

  TField* FindField(const std::string& FieldName) const { return FFields->FindField(FieldName); }
  TField* FieldByName(const std::string& FieldName) const { return FFields->FieldByName(FieldName); }
  /// Appends the fields named in "A;B" (trimmed) to `List`; raises on the first unknown name.
  void GetFieldList(std::vector<TField*>& List, const std::string& FieldNames) const;
  std::vector<std::string> GetFieldNames() const { return FFields->GetFieldNames(); }

  bool BookmarkAvailable();
  /// A copy of the active record's bookmark, or empty when none is available.
  virtual TBookmark GetBookmark();
  /// Empty: nothing. Else CheckBrowseMode, BeforeScroll, position, Resync exact+center,
  /// AfterScroll.
  void GotoBookmark(const TBookmark& Bookmark);
  virtual void FreeBookmark(TBookmark& Bookmark) { Bookmark.clear(); }
  /// Whether the record still exists (descendant); false in the base.
  virtual bool BookmarkValid(const TBookmark& /*Bookmark*/) { return false; }
  /// Empty sorts last; else by record order (descendant). Base: 0 for equal bytes, else 1/-1
  /// by the nil rule only.
  virtual int CompareBookmarks(const TBookmark& Bookmark1, const TBookmark& Bookmark2);
  /// Moves to the first record matching `KeyValues` on `KeyFields`; base: bidirectional check,
  /// false.
  virtual bool Locate(const std::string& KeyFields, const Variant& KeyValues, TLocateOptions Options);
  /// Reads `ResultFields` of the first matching record without moving; base: Null.
  virtual Variant Lookup(const std::string& KeyFields, const Variant& KeyValues,
                         const std::string& ResultFields);
  /// A stream on a blob field of the current record, positioned at 0 (bmRead of a null blob:
  /// empty). bmWrite/bmReadWrite require an editing state; written content becomes the field's
  /// value when the stream commits (see TBlobStream). Base: null.
  virtual std::unique_ptr<TStream> CreateBlobStream(TField* Field, TBlobStreamMode Mode);
  /// Native value of `Field` in the current buffer for the state (see the class documentation);
  /// `Buffer` may be null to test for null. Returns false for null. Base: false.
  virtual bool GetFieldData(TField* Field, void* Buffer);
  /// Plain-form variant: reads native and converts with DataConvert when not `NativeFormat`.
  virtual bool GetFieldData(TField* Field, void* Buffer, bool NativeFormat);
  /// Stores `Buffer` (null: set null) as the value of `Field`. Base: raises "not editing"
  /// outside dsWriteModes, otherwise does nothing.
  virtual void SetFieldData(TField* Field, const void* Buffer);
  virtual void SetFieldData(TField* Field, const void* Buffer, bool NativeFormat);
  /// Converts between native and plain forms (dates: TDateTimeRec <-> TDateTime; BCD: TBcd <->
  /// Currency); other types are copied.
  virtual void DataConvert(TField* Field, const void* Source, void* Dest, bool ToNative);
  /// True when `ADataSource` is this dataset's master source or further up the chain.
  bool IsLinkedTo(const TDataSource* ADataSource) const;
  /// Base: true (RecNo meaningful).
  virtual bool IsSequenced() { return true; }
  /// The class created for a field of type `FieldType`; null when there is none.
  virtual TFieldClass GetFieldClass(TFieldType FieldType) const;
  /// Used by FieldDefs.Update(): the descendant's InternalInitFieldDefs, opening the cursor for
  /// definitions only when closed.
  void InitFieldDefs();
  /// Descendant fills IndexDefs from the storage; base: nothing.
  virtual void UpdateIndexDefs() {}
  void CursorPosChanged() { FCurrentRecord = -1; }
  /// Currently computing calculated fields of this buffer.
  TRecordBuffer CalcBuffer() const { return FCalcBuffer; }
  int CalcFieldsSize() const { return FCalcFieldsSize; }
  /// Brings the cursor to the active record.
  void UpdateCursorPos();
  /// Text passed through the dataset's character translation; base copies.
  virtual std::string Translate(const std::string& Src, bool /*ToOem*/) { return Src; }

  // --- Events ------------------------------------------------------------------------------
  TDataSetNotifyEvent BeforeOpen, AfterOpen, BeforeClose, AfterClose, BeforeInsert, AfterInsert,
      BeforeEdit, AfterEdit, BeforePost, AfterPost, BeforeCancel, AfterCancel, BeforeDelete,
      AfterDelete, BeforeScroll, AfterScroll, BeforeRefresh, AfterRefresh, OnCalcFields,
      OnNewRecord;
  TDataSetErrorEvent OnPostError, OnEditError, OnDeleteError;

 protected:
  friend class TDataLink;
  friend class TDataSource;
  friend class TField;
  friend class TFields;
  friend class TFieldDefs;
  friend class TTempState;

  // --- Descendants must implement -----------------------------------------------------------
  /// Loads a record into `Buffer`: gmNext/gmPrior advance to the next/previous record that
  /// passes the filter (grEOF/grBOF at the ends, cursor on the crack); gmCurrent loads the
  /// record under the cursor (grError on a crack, a vanished or a filtered-out record). On grOK
  /// the buffer holds data, bookmark, flag bfCurrent, and calculated fields computed with
  /// GetCalcFields before the filter ran. grError with `DoCheck` raises EDatabaseError.
  virtual TGetResult GetRecord(TRecordBuffer Buffer, TGetMode GetMode, bool DoCheck) = 0;
  /// Opens the storage; usual order: InternalInitFieldDefs(); if (DefaultFields())
  /// CreateFields(); BindFields(true); set FBookmarkSize; InternalFirst().
  virtual void InternalOpen() = 0;
  /// BindFields(false); if (DefaultFields()) DestroyFields(); closes the storage. Must be safe
  /// after a failed or definitions-only open.
  virtual void InternalClose() = 0;
  /// Clears and fills FieldDefs() from the storage (FieldNo 1-based in column order).
  virtual void InternalInitFieldDefs() = 0;
  virtual bool IsCursorOpen() const = 0;

  // --- Descendants may override ------------------------------------------------------------
  virtual TRecordBuffer AllocRecordBuffer() { return nullptr; }
  /// Releases `Buffer` and sets it null.
  virtual void FreeRecordBuffer(TRecordBuffer& Buffer) { Buffer = nullptr; }
  /// Empties a record buffer (all fields null).
  virtual void InternalInitRecord(TRecordBuffer /*Buffer*/) {}
  virtual int GetRecordSize() const { return 0; }
  /// Copy FBookmarkSize bytes of bookmark out of / into a buffer.
  virtual void GetBookmarkData(TRecordBuffer /*Buffer*/, void* /*Data*/) {}
  virtual void SetBookmarkData(TRecordBuffer /*Buffer*/, const void* /*Data*/) {}
  virtual TBookmarkFlag GetBookmarkFlag(TRecordBuffer /*Buffer*/) { return bfCurrent; }
  virtual void SetBookmarkFlag(TRecordBuffer /*Buffer*/, TBookmarkFlag /*Value*/) {}
  /// Cursor to the BOF / EOF crack (no record read).
  virtual void InternalFirst() {}
  virtual void InternalLast() {}
  /// Cursor to the record named by raw bookmark bytes; raises when it cannot.
  virtual void InternalGotoBookmark(const void* /*Bookmark*/) {}
  /// Cursor to the record of a buffer (by its bookmark).
  virtual void InternalSetToRecord(TRecordBuffer /*Buffer*/) {}
  /// Base: raises "field X is required" for every required, writable, non-autoinc data field
  /// that is null. Overrides call it first, then write ActiveBuffer() (dsEdit: over the record
  /// under the cursor; dsInsert: as a new record, appended when its flag is bfEOF).
  virtual void InternalPost();
  /// Writes a new record from `Buffer`.
  virtual void InternalAddRecord(TRecordBuffer /*Buffer*/, bool /*Append*/) {}
  /// Removes the record under the cursor, leaving the cursor where Resync([]) finds the next
  /// record (or the previous one after the last was deleted).
  virtual void InternalDelete() {}
  virtual void InternalEdit() {}
  virtual void InternalCancel() {}
  virtual void InternalInsert() {}
  virtual void InternalRefresh() {}
  virtual void InternalHandleException() {}
  virtual int GetRecordCount() const { return -1; }
  virtual int GetRecNo() const { return -1; }
  virtual bool GetCanModify() const { return true; }
  /// Makes every calculated/lookup field of `Buffer` null.
  virtual void ClearCalcFields(TRecordBuffer /*Buffer*/) {}
  virtual void DoBeforeOpen(), DoAfterOpen(), DoBeforeClose(), DoAfterClose(), DoBeforeInsert(),
      DoAfterInsert(), DoBeforeEdit(), DoAfterEdit(), DoBeforePost(), DoAfterPost(),
      DoBeforeCancel(), DoAfterCancel(), DoBeforeDelete(), DoAfterDelete(), DoBeforeScroll(),
      DoAfterScroll(), DoBeforeRefresh(), DoAfterRefresh(), DoOnCalcFields(), DoOnNewRecord();
  /// Opens the cursor (InfoQuery: definitions only, InternalInitFieldDefs) / closes it.
  virtual void OpenCursor(bool InfoQuery);
  virtual void CloseCursor();
  /// Sets FieldNo/Offset of every field (Binding) or resets them; opens lookup datasets.
  virtual void BindFields(bool Binding);
  /// One field per definition (not ftUnknown), owned by the dataset, in definition order.
  virtual void CreateFields();
  virtual void DestroyFields();
  /// Clears the calculated area (ClearCalcFields), computes lookup fields, fires OnCalcFields.
  virtual void CalculateFields(TRecordBuffer Buffer);
  /// InternalInitRecord + ClearCalcFields + flag bfInserted.
  virtual void InitRecord(TRecordBuffer Buffer);
  /// Next() while BlockReadSize > 0; base: MoveBy(1).
  virtual void BlockReadNext();
  /// Makes the dataset forward-only (window of one buffer, no prior moves, no filters).
  void SetUniDirectional(bool Value) { FIsUniDirectional = Value; }
  void Loaded() override;

  // --- Helpers for descendants --------------------------------------------------------------
  /// The current row's buffer (null while no window is allocated).
  TRecordBuffer ActiveBuffer() const { return FBuffers.empty() ? nullptr : FBuffers[FActiveRecord]; }
  /// The first unused buffer of the window.
  TRecordBuffer TempBuffer() const { return FBuffers[FRecordCount]; }
  TRecordBuffer Buffers(int Index) const { return FBuffers[Index]; }
  /// Assigns the state and broadcasts deUpdateState when it changed (dsBrowse clears Modified).
  void SetState(TDataSetState Value);
  /// Assigns without broadcast (disables controls); pair with RestoreState (see TTempState).
  TDataSetState SetTempState(TDataSetState Value);
  void RestoreState(TDataSetState Value);
  void SetModified(bool Value) { FModified = Value; }
  /// Computes calculated fields of `Buffer` in dsCalcFields when there are any.
  void GetCalcFields(TRecordBuffer Buffer);
  void SetCurrentRecord(int Index);
  bool GetNextRecord();
  bool GetPriorRecord();
  int GetNextRecords();
  int GetPriorRecords();
  void ClearBuffers();
  void ActivateBuffers();
  /// Window size from the links of every data source (at least 1); reallocates while open.
  void UpdateBufferCount();
  void CheckCanModify() const;
  /// Runs `Operation` with UpdateCursorPos before each try; EDatabaseError goes to
  /// `ErrorEvent` which may fail (re-raise), abort (EAbort) or retry.
  void CheckOperation(const std::function<void()>& Operation, const TDataSetErrorEvent& ErrorEvent);

  std::vector<TRecordBuffer> FBuffers;
  int FRecordCount = 0;
  int FActiveRecord = 0;
  int FCurrentRecord = -1;
  bool FBOF = true;
  bool FEOF = true;
  int FBookmarkSize = 0;
  int FCalcFieldsSize = 0;
  bool FInternalCalcFields = false;

 private:
  void DoInternalOpen();
  void OpenCursorComplete();
  void SetBufListSize(int Value);
  void SetBufferCount(int Value);
  /// Forgets pending blob modifications of the fields (end of an edit).
  void FreeFieldBuffers();
  void BeginInsertAppend();
  void EndInsertAppend();
  void InsertOrAppendRecord(const std::vector<Variant>& Values, bool Append);
  void CalculateLookupFields(TRecordBuffer Buffer);
  /// `Recount` false while destroying (the descendant's IsCursorOpen is gone).
  void RemoveDataSource(TDataSource* Source, bool Recount = true);
  void AddDataSource(TDataSource* Source);
  void NotifyEvent(const TDataSetNotifyEvent& Event) { if (Event) Event(this); }

  std::unique_ptr<TFields> FFields;
  std::unique_ptr<TFieldDefs> FFieldDefs;
  std::vector<TDataSource*> FDataSources;
  TDataSetState FState = dsInactive;
  TDataSetState FDisableState = dsInactive;
  TDataEvent FEnableEvent = deDataSetChange;
  int FDisableCount = 0;
  int FBufferCount = 0;
  bool FModified = false;
  bool FDefaultFields = false;
  bool FStreamedActive = false;
  bool FInternalOpenComplete = false;
  bool FInsertedIntoEmpty = false;
  bool FIsUniDirectional = false;
  bool FAutoCalcFields = true;
  bool FFiltered = false;
  std::string FFilterText;
  TFilterOptions FFilterOptions;
  TFilterRecordEvent FOnFilterRecord;
  int FBlockReadSize = 0;
  TRecordBuffer FCalcBuffer = nullptr;
};

/// Temporary state guard: SetTempState on construction, RestoreState on destruction.
class TTempState {
 public:
  TTempState(TDataSet* DataSet, TDataSetState State);
  ~TTempState();
  TTempState(const TTempState&) = delete;
  TTempState& operator=(const TTempState&) = delete;

 private:
  TDataSet* FDataSet;
  TDataSetState FOld;
};

}  // namespace fw
