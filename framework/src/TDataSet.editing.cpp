// TDataSet: editing (Edit, Insert, Append, Post, Cancel, Delete) and browse-mode checks
// (framework layer).
#include <algorithm>

#include "DataSetMessages.h"
#include "TDataSet.h"

namespace fw {

void TDataSet::CheckBrowseMode() {
  CheckActive();
  DataEvent(deCheckBrowseMode, 0);
  switch (FState) {
    case dsEdit:
    case dsInsert:
      UpdateRecord();
      if (FModified)
        Post();
      else
        Cancel();
      break;
    case dsSetKey:
      Post();
      break;
    default:
      break;
  }
}

void TDataSet::UpdateRecord() {
  if (!dsEditModes.Contains(FState)) DatabaseError(SNotEditing, this);
  DataEvent(deUpdateRecord, 0);
}

void TDataSet::CheckOperation(const std::function<void()>& Operation, const TDataSetErrorEvent& ErrorEvent) {
  for (;;) {
    try {
      UpdateCursorPos();
      Operation();
      return;
    } catch (EDatabaseError& e) {
      TDataAction action = daFail;
      if (ErrorEvent) ErrorEvent(this, e, action);
      if (action == daFail) throw;
      if (action == daAbort) Abort();
    }
  }
}

void TDataSet::InitRecord(TRecordBuffer Buffer) {
  InternalInitRecord(Buffer);
  ClearCalcFields(Buffer);
  SetBookmarkFlag(Buffer, bfInserted);
}

void TDataSet::Edit() {
  if (FState == dsEdit || FState == dsInsert) return;
  CheckBrowseMode();
  CheckCanModify();
  if (FRecordCount == 0) {
    Insert();
    return;
  }
  DoBeforeEdit();
  CheckOperation([this] { InternalEdit(); }, OnEditError);
  GetCalcFields(ActiveBuffer());
  SetState(dsEdit);
  DataEvent(deRecordChange, 0);
  DoAfterEdit();
}

void TDataSet::BeginInsertAppend() {
  CheckBrowseMode();
  CheckCanModify();
  DoBeforeInsert();
  DoBeforeScroll();
}

void TDataSet::EndInsertAppend() {
  SetState(dsInsert);
  try {
    DoOnNewRecord();
  } catch (...) {
    UpdateCursorPos();
    FreeFieldBuffers();
    SetState(dsBrowse);
    Resync(TResyncMode{});
    throw;
  }
  // Values set by OnNewRecord are defaults, not edits: an untouched new record is cancelled,
  // not posted, when the user moves away.
  FModified = false;
  DataEvent(deDataSetChange, 0);
  DoAfterInsert();
  DoAfterScroll();
}

void TDataSet::Insert() {
  BeginInsertAppend();
  const TBookmark current = GetBookmark();
  FInsertedIntoEmpty = FRecordCount == 0;
  // The unused buffer moves into the active row; rows from there on move down by one (with a
  // full window the last row drops out into the spare slot).
  std::rotate(FBuffers.begin() + FActiveRecord, FBuffers.begin() + FRecordCount,
              FBuffers.begin() + FRecordCount + 1);
  TRecordBuffer buffer = ActiveBuffer();
  InitRecord(buffer);
  CursorPosChanged();
  if (FRecordCount == 0) {
    SetBookmarkFlag(buffer, bfBOF);
  } else {
    FBOF = false;
    if (!current.empty()) SetBookmarkData(buffer, current.data());
  }
  if (FRecordCount < FBufferCount) ++FRecordCount;
  InternalInsert();
  EndInsertAppend();
}

void TDataSet::Append() {
  BeginInsertAppend();
  ClearBuffers();
  InternalLast();
  GetPriorRecords();
  FInsertedIntoEmpty = FRecordCount == 0;
  if (FRecordCount < FBufferCount)
    ++FRecordCount;
  else
    std::rotate(FBuffers.begin(), FBuffers.begin() + 1, FBuffers.begin() + FRecordCount + 1);
  FActiveRecord = FRecordCount - 1;
  TRecordBuffer buffer = ActiveBuffer();
  InitRecord(buffer);
  SetBookmarkFlag(buffer, bfEOF);
  CursorPosChanged();
  FBOF = false;
  FEOF = true;
  InternalInsert();
  EndInsertAppend();
}

void TDataSet::Post() {
  UpdateRecord();
  if (FState != dsEdit && FState != dsInsert) return;
  DataEvent(deCheckBrowseMode, 0);
  DoBeforePost();
  CheckOperation([this] { InternalPost(); }, OnPostError);
  CursorPosChanged();
  FreeFieldBuffers();
  SetState(dsBrowse);
  Resync(TResyncMode{});
  DoAfterPost();
}

void TDataSet::Cancel() {
  if (FState != dsEdit && FState != dsInsert) return;
  DataEvent(deCheckBrowseMode, 0);
  DoBeforeCancel();
  UpdateCursorPos();
  InternalCancel();
  FreeFieldBuffers();
  if (FState == dsInsert && FInsertedIntoEmpty) {
    FRecordCount = 0;
    FActiveRecord = 0;
    FBOF = true;
    FEOF = true;
    InitRecord(ActiveBuffer());
    SetState(dsBrowse);
    DataEvent(deDataSetChange, 0);
  } else {
    SetState(dsBrowse);
    SetCurrentRecord(FActiveRecord);
    Resync(TResyncMode{});
  }
  DoAfterCancel();
}

void TDataSet::Delete() {
  CheckActive();
  CheckCanModify();
  if (IsEmpty()) DatabaseError(SDataSetEmpty, this);
  if (FState == dsInsert || FState == dsSetKey) {
    Cancel();
    return;
  }
  DataEvent(deCheckBrowseMode, 0);
  DoBeforeDelete();
  DoBeforeScroll();
  CheckOperation([this] { InternalDelete(); }, OnDeleteError);
  FreeFieldBuffers();
  SetState(dsBrowse);
  SetCurrentRecord(FActiveRecord);
  Resync(TResyncMode{});
  DoAfterDelete();
  DoAfterScroll();
}

void TDataSet::InternalPost() {
  for (int i = 0; i < FFields->Count(); ++i) {
    TField* field = FFields->Fields(i);
    if (field->FieldKind() == fkData && field->Required() && !field->ReadOnly() &&
        field->DataType() != ftAutoInc && field->IsNull()) {
      field->FocusControl();
      DatabaseError(FmtMsg(SFieldRequired, {field->DisplayName()}), this);
    }
  }
}

void TDataSet::ClearFields() {
  if (!dsEditModes.Contains(FState)) DatabaseError(SNotEditing, this);
  DataEvent(deCheckBrowseMode, 0);
  FreeFieldBuffers();
  InternalInitRecord(ActiveBuffer());
  if (FState != dsSetKey) GetCalcFields(ActiveBuffer());
  DataEvent(deRecordChange, 0);
}

void TDataSet::SetFields(const std::vector<Variant>& Values) {
  if (!dsEditModes.Contains(FState)) DatabaseError(SNotEditing, this);
  if (static_cast<int>(Values.size()) > FieldCount()) DatabaseError(STooManyValues, this);
  for (std::size_t i = 0; i < Values.size(); ++i)
    FFields->Fields(static_cast<int>(i))->AssignValue(Values[i]);
}

void TDataSet::InsertOrAppendRecord(const std::vector<Variant>& Values, bool Append) {
  if (static_cast<int>(Values.size()) > FieldCount()) DatabaseError(STooManyValues, this);
  if (Append)
    this->Append();
  else
    Insert();
  SetFields(Values);
  Post();
}

void TDataSet::InsertRecord(const std::vector<Variant>& Values) { InsertOrAppendRecord(Values, false); }

void TDataSet::AppendRecord(const std::vector<Variant>& Values) { InsertOrAppendRecord(Values, true); }

}  // namespace fw
