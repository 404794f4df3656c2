// TCTTable: the record-buffer protocol, editing, bookmarks and record numbers (dataset, unit CTTables).
#include <algorithm>
#include <cmath>
#include <cstring>

#include "CtError.h"
#include "CtRecords.h"
#include "CtSession.h"
#include "TCTConnection.h"
#include "TCTTable.h"

namespace CTTables {

namespace {

constexpr int32_t kNotEditing = 1121;
constexpr int32_t kFieldReadOnly = 1122;
constexpr int32_t kNoBookmark = 1123;
constexpr int32_t kFieldNotIndexed = 1124;
constexpr int32_t kNoCurrentRecord = 100;
constexpr int32_t kNoRecord = 101;

// A money field holds whole hundredths, and the driver rounds what it is given. A value with a
// finer part (12.3456) would be stored as a different amount without a word, so the table
// refuses it; the tolerance only absorbs the binary form of two-decimal values.
bool FitsMoney(const Ctdb::TCTCursorDesc& Cursor, const fw::TField& Field, const void* Buffer) {
  if (Buffer == nullptr || Field.FieldNo() < 1 || Field.FieldNo() > Cursor.FieldCount()) return true;
  if (!Cursor.Fields[static_cast<size_t>(Field.FieldNo() - 1)]->IsMoney()) return true;
  double value = 0;
  std::memcpy(&value, Buffer, sizeof value);
  const double scaled = value * 100.0;
  return std::fabs(scaled - std::nearbyint(scaled)) <= 1e-6;
}

int32_t BookmarkOf(const void* data) {
  int32_t position = 0;
  std::memcpy(&position, data, sizeof position);
  return position;
}

}  // namespace

// --- Record buffers -------------------------------------------------------------------------

fw::TRecordBuffer TCTTable::AllocRecordBuffer() {
  auto* buffer = new TCTRecordBuffer(FCursor.get());
  // One blank entry per calculated or lookup field, in field order.
  const fw::TFields& fields = *Fields();
  for (int i = 0; i < fields.Count(); ++i) {
    const fw::TField* field = fields.Fields(i);
    if (field->FieldKind() == fw::fkCalculated || field->FieldKind() == fw::fkLookup)
      buffer->CalcFields().AddField(field->FieldName(), 0, nullptr);
  }
  return reinterpret_cast<fw::TRecordBuffer>(buffer);
}

void TCTTable::FreeRecordBuffer(fw::TRecordBuffer& Buffer) {
  delete RecBuf(Buffer);
  Buffer = nullptr;
}

void TCTTable::InternalInitRecord(fw::TRecordBuffer Buffer) { RecBuf(Buffer)->InitRecord(); }

int TCTTable::GetRecordSize() const { return FCursor != nullptr ? FCursor->FixedRecLength : 0; }

void TCTTable::ClearCalcFields(fw::TRecordBuffer Buffer) {
  fw::TDataSet::ClearCalcFields(Buffer);
  RecBuf(Buffer)->CalcFields().ClearFields();
}

TCTRecordBuffer* TCTTable::GetActiveRecBuf() const {
  switch (State()) {
    case fw::dsBrowse:
      return IsEmpty() ? nullptr : RecBuf(ActiveBuffer());
    case fw::dsEdit:
    case fw::dsInsert:
    case fw::dsNewValue:
      return RecBuf(ActiveBuffer());
    case fw::dsSetKey:
      switch (FRangeFlag) {
        case rfRangeStart: return FRangeStart.get();
        case rfRangeEnd: return FRangeEnd.get();
        default: return FKeyBuffer.get();
      }
    case fw::dsCalcFields:
      return RecBuf(CalcBuffer());
    case fw::dsFilter:
      return FFilterBuffer;
    case fw::dsOldValue:
      return FOldRecord.get();
    default:
      return nullptr;
  }
}

// --- Fetching -------------------------------------------------------------------------------

fw::TGetResult TCTTable::GetRecord(fw::TRecordBuffer Buffer, fw::TGetMode GetMode, bool DoCheck) {
  TCTRecordBuffer* buffer = RecBuf(Buffer);
  Ctdb::TCTConnection& conn = Conn();
  fw::TGetResult result = fw::grError;
  int32_t code = 0;
  switch (GetMode) {
    case fw::gmCurrent:
      code = conn.GetCurrentRecord(FCursor.get(), Ctdb::dbiNOLOCK, buffer);
      result = code == 0 ? fw::grOK : fw::grError;
      break;
    case fw::gmNext:
    case fw::gmPrior: {
      const bool forward = GetMode == fw::gmNext;
      for (;;) {
        code = forward ? conn.GetNextRecord(FCursor.get(), Ctdb::dbiNOLOCK, buffer)
                       : conn.GetPriorRecord(FCursor.get(), Ctdb::dbiNOLOCK, buffer);
        if (code == 0) {
          result = fw::grOK;
          // Counted before filtering on purpose: the number follows the cursor, not the view.
          FRecNoCache += forward ? 1 : -1;
        } else if (code == kNoCurrentRecord || code == kNoRecord) {
          result = forward ? fw::grEOF : fw::grBOF;
        } else {
          result = fw::grError;
        }
        if (result != fw::grOK || !Filtered()) break;
        GetCalcFields(Buffer);
        if (RecordFilter(buffer)) break;
      }
      break;
    }
  }
  switch (result) {
    case fw::grOK: {
      int32_t position = 0;
      CTDbIntf::CtError(conn.GetBookMark(FCursor.get(), position));
      buffer->SetBookmark(&position);
      buffer->SetBookmarkFlag(fw::bfCurrent);
      GetCalcFields(Buffer);
      break;
    }
    case fw::grBOF:
      buffer->SetBookmarkFlag(fw::bfBOF);
      FRecNoCache = -1;
      break;
    case fw::grEOF:
      buffer->SetBookmarkFlag(fw::bfEOF);
      FRecNoCache = GetRecordCount();
      break;
    case fw::grError:
      if (DoCheck) CTDbIntf::CtError(code);
      break;
  }
  return result;
}

void TCTTable::InternalFirst() {
  CTDbIntf::CtError(Conn().SetToBegin(FCursor.get()));
  FRecNoCache = -1;
}

void TCTTable::InternalLast() {
  CTDbIntf::CtError(Conn().SetToEnd(FCursor.get()));
  FRecNoCache = GetRecordCount();
}

// --- Field values ---------------------------------------------------------------------------

bool TCTTable::GetFieldData(fw::TField* Field, void* Buffer) {
  TCTRecordBuffer* record = GetActiveRecBuf();
  if (record == nullptr || Field == nullptr) return false;
  if (Field->FieldNo() < 0 || Field->FieldKind() != fw::fkData) {
    if (ComponentState().Contains(fw::csDesigning)) return false;
    bool blank = true;
    record->CalcFields().GetData(Field->FieldName(), Buffer, blank);
    return !blank;
  }
  bool blank = true;
  void* dest = Field->IsBlob() ? nullptr : Buffer;
  CTDbIntf::CtError(Conn().GetField(FCursor.get(), Field->FieldNo(), record, dest, blank));
  return !blank;
}

void TCTTable::SetFieldData(fw::TField* Field, const void* Buffer) {
  if (Field == nullptr) return;
  const fw::TDataSetState state = State();
  // A read-only table ignores record writes silently; key and range values, calculated fields
  // and filter values are still written, so that it can be searched, ranged and calculated.
  if (FReadOnly && (state == fw::dsEdit || state == fw::dsInsert || state == fw::dsNewValue)) return;
  if (!fw::dsWriteModes.Contains(state)) CTDbIntf::CtError(kNotEditing);
  if (state == fw::dsSetKey && GetIndexFieldCount() > 0 && !GetIsIndexField(Field))
    CTDbIntf::CtErrorFmt(kFieldNotIndexed, {fw::Variant(Field->DisplayName())});
  if (Field->ReadOnly() && state != fw::dsSetKey && state != fw::dsFilter)
    CTDbIntf::CtErrorFmt(kFieldReadOnly, {fw::Variant(Field->DisplayName())});
  TCTRecordBuffer* record = GetActiveRecBuf();
  if (record == nullptr) CTDbIntf::CtError(kNotEditing);

  Field->Validate(Buffer);
  if (Field->FieldNo() < 0 || Field->FieldKind() != fw::fkData)
    record->CalcFields().SetData(Field->FieldName(), Field->DataSize(), Buffer);
  else if (!FitsMoney(*FCursor, *Field, Buffer))
    CTDbIntf::CtError(Ctdb::kCtValueDoesNotFit);
  else
    CTDbIntf::CtError(Conn().SetField(FCursor.get(), Field->FieldNo(), record, Buffer));

  if (state != fw::dsCalcFields && state != fw::dsFilter && state != fw::dsNewValue)
    DataEvent(fw::deFieldChange, reinterpret_cast<intptr_t>(Field));
  if (state == fw::dsSetKey) {
    if (FKeyFieldNames->IndexOf(Field->FieldName()) < 0) FKeyFieldNames->Add(Field->FieldName());
    if (FRangeFlag == rfNone) {
      for (int i = 0; i < GetIndexFieldCount(); ++i)
        if (FCursor->GetIndexFields(i + 1) == Field->FieldNo()) FKeyFieldsSet = std::max(FKeyFieldsSet, i + 1);
    }
  }
}

// --- Bookmarks ------------------------------------------------------------------------------

void TCTTable::GetBookmarkData(fw::TRecordBuffer Buffer, void* Data) {
  std::memcpy(Data, RecBuf(Buffer)->GetBookmark(), 4);
}

void TCTTable::SetBookmarkData(fw::TRecordBuffer Buffer, const void* Data) { RecBuf(Buffer)->SetBookmark(Data); }

fw::TBookmarkFlag TCTTable::GetBookmarkFlag(fw::TRecordBuffer Buffer) { return RecBuf(Buffer)->BookmarkFlag(); }

void TCTTable::SetBookmarkFlag(fw::TRecordBuffer Buffer, fw::TBookmarkFlag Value) {
  RecBuf(Buffer)->SetBookmarkFlag(Value);
}

void TCTTable::InternalGotoBookmark(const void* Bookmark) {
  int32_t position = BookmarkOf(Bookmark);
  for (const auto& moved : FMovedBookmarks)
    if (moved.first == position) position = moved.second;
  CTDbIntf::CtError(Conn().SetToBookMark(FCursor.get(), position));
}

void TCTTable::InternalSetToRecord(fw::TRecordBuffer Buffer) {
  if (Buffer == nullptr) CTDbIntf::CtError(kNoBookmark);
  InternalGotoBookmark(RecBuf(Buffer)->GetBookmark());
}

fw::TBookmark TCTTable::GetBookmark() {
  fw::TBookmark bookmark = fw::TDataSet::GetBookmark();
  if (!bookmark.empty()) FBookmarks.push_back(BookmarkOf(bookmark.data()));
  return bookmark;
}

void TCTTable::FreeBookmark(fw::TBookmark& Bookmark) {
  if (!Bookmark.empty()) {
    const auto found = std::find(FBookmarks.begin(), FBookmarks.end(), BookmarkOf(Bookmark.data()));
    if (found != FBookmarks.end()) FBookmarks.erase(found);
  }
  Bookmark.clear();
}

void TCTTable::FreeBookmarks() {
  FBookmarks.clear();
  FMovedBookmarks.clear();
}

bool TCTTable::BookmarkValid(const fw::TBookmark& Bookmark) {
  if (FCursor == nullptr || Bookmark.size() != 4) return false;
  CTDbIntf::CtError(Conn().SetContext(FCursor.get()));
  const bool valid = Conn().SetToBookMark(FCursor.get(), BookmarkOf(Bookmark.data())) == 0 &&
                     Conn().GetCurrentRecord(FCursor.get(), Ctdb::dbiNOLOCK, nullptr) == 0;
  CTDbIntf::CtError(Conn().RestoreContext(FCursor.get()));
  CursorPosChanged();
  return valid;
}

int TCTTable::CompareBookmarks(const fw::TBookmark& Bookmark1, const fw::TBookmark& Bookmark2) {
  if (Bookmark1.empty() || Bookmark2.empty()) return fw::TDataSet::CompareBookmarks(Bookmark1, Bookmark2);
  const int32_t a = BookmarkOf(Bookmark1.data());
  const int32_t b = BookmarkOf(Bookmark2.data());
  return a < b ? -1 : (a > b ? 1 : 0);
}

// --- Editing --------------------------------------------------------------------------------

void TCTTable::InternalEdit() {
  TCTRecordBuffer* active = RecBuf(ActiveBuffer());
  Ctdb::TCTConnection& conn = Conn();
  // The storage cursor may stand on another row of the window: the record edited is the active one.
  InternalSetToRecord(ActiveBuffer());
  // An exclusively opened table is the only writer of its file: it needs no record lock. A
  // shared one locks the record and then reads it again, so that the user edits what is stored
  // now and not what was fetched before another user's change.
  if (!FExclusive && FEditLock == 0) {
    // A record the application holds with Lock needs no lock of the edit's own, which the post
    // would free: the application's lock must outlast the edit.
    if (!LockedByHandle(BookmarkOf(active->GetBookmark()))) {
      int32_t handle = 0;
      CTDbIntf::CtError(conn.LockRecord(FCursor.get(), handle));
      FEditLock = handle;
    }
    const int32_t reread = conn.GetCurrentRecord(FCursor.get(), Ctdb::dbiNOLOCK, active);
    if (reread != 0) {
      UnlockEditedRecord();
      CTDbIntf::CtError(reread);
    }
  }
  FOldRecord = std::make_unique<TCTRecordBuffer>(FCursor.get());
  FOldRecord->Assign(*active);
  static_cast<void>(conn.OpenAllBlobs(FCursor.get(), active));
}

void TCTTable::UnlockEditedRecord() {
  if (FEditLock == 0 || FCursor == nullptr || Connection() == nullptr) {
    FEditLock = 0;
    return;
  }
  // The lock may already have ended with the post's lock set; a second release is harmless.
  static_cast<void>(Connection()->UnlockRecord(FCursor.get(), FEditLock));
  FEditLock = 0;
}

void TCTTable::InternalInsert() {
  FInsertType = GetBookmarkFlag(ActiveBuffer()) == fw::bfEOF ? Ctdb::isAppend : Ctdb::isInsert;
}

void TCTTable::InternalCancel() {
  UnlockEditedRecord();
  FOldRecord.reset();
  FInsertType = Ctdb::isNone;
}

void TCTTable::InternalPost() {
  fw::TDataSet::InternalPost();
  TCTRecordBuffer* active = RecBuf(ActiveBuffer());
  Ctdb::TCTConnection& conn = Conn();
  // The record rewritten is the active one, wherever the storage cursor stood.
  if (State() == fw::dsEdit) InternalSetToRecord(ActiveBuffer());
  int32_t before = 0;
  const bool hadPosition = conn.GetBookMark(FCursor.get(), before) == 0;
  if (State() == fw::dsEdit) {
    // A refused rewrite (a duplicate key, a record changed by another user) raises here and
    // leaves the table in dsEdit with the user's values and the record lock, so that they can
    // be corrected and posted again or cancelled.
    CTDbIntf::CtError(conn.ModifyRecord(FCursor.get(), active, FOldRecord.get(), true));
    UnlockEditedRecord();
    // A rewritten record may move in the file: bookmarks handed out for it follow it.
    int32_t after = 0;
    if (hadPosition && conn.GetBookMark(FCursor.get(), after) == 0 && after != before) {
      for (int32_t& position : FBookmarks)
        if (position == before) position = after;
      FMovedBookmarks.emplace_back(before, after);
    }
  } else {
    CTDbIntf::CtError(conn.AppendRecord(FCursor.get(), active));
    // The new record becomes current (an append started from the end, where the cursor still
    // stands), so that the window is rebuilt around it. A record that falls outside the range
    // cannot become current: the window is then rebuilt where the cursor is.
    static_cast<void>(conn.SetToAppended(FCursor.get()));
  }
  FOldRecord.reset();
  FInsertType = Ctdb::isNone;
  FRecordCountValid = false;
}

void TCTTable::InternalAddRecord(fw::TRecordBuffer Buffer, bool Append) {
  FInsertType = Append ? Ctdb::isAppend : Ctdb::isInsert;
  // Both kinds are the same write: where the record lands is decided by the indexes.
  CTDbIntf::CtError(Conn().AppendRecord(FCursor.get(), RecBuf(Buffer)));
  static_cast<void>(Conn().OpenAllBlobs(FCursor.get(), RecBuf(Buffer)));
  FInsertType = Ctdb::isNone;
  FRecordCountValid = false;
}

void TCTTable::InternalDelete() {
  UnlockEditedRecord();
  CTDbIntf::CtError(Conn().RemoveRecord(FCursor.get(), RecBuf(ActiveBuffer())));
  FRecordCountValid = false;
}

void TCTTable::Post() {
  fw::TDataSet::Post();
  if (State() == fw::dsSetKey) PostKeyBuffer(true);
}

void TCTTable::Cancel() {
  fw::TDataSet::Cancel();
  if (State() == fw::dsSetKey) PostKeyBuffer(false);
}

void TCTTable::PostKeyBuffer(bool Commit) {
  DataEvent(fw::deCheckBrowseMode, 0);
  if (!Commit) ResetCursorRange();
  SetState(fw::dsBrowse);
  DataEvent(fw::deDataSetChange, 0);
}

// --- Counts and record numbers ----------------------------------------------------------------

int TCTTable::GetRecordCount() const {
  if (FCursor == nullptr) return -1;
  int32_t count = 0;
  CTDbIntf::CtError(Conn().GetRecordCount(FCursor.get(), count));
  FRecordCountCache = count;
  FRecordCountValid = true;
  return count;
}

int TCTTable::GetRecNo() const {
  TCTRecordBuffer* record = GetActiveRecBuf();
  if (FCursor == nullptr || record == nullptr || record->BookmarkFlag() != fw::bfCurrent) return -1;
  Ctdb::TCTConnection& conn = Conn();
  // Counting stands the storage cursor on the active record, which need not be the one the
  // window was fetched up to: the position is saved and restored around it, as BookmarkValid
  // does, so that the next fetch continues where it stood.
  CTDbIntf::CtError(conn.SetContext(FCursor.get()));
  int32_t number = 0;
  const int32_t counted = conn.GetAlmostRecordNumber(FCursor.get(), record, number);
  CTDbIntf::CtError(conn.RestoreContext(FCursor.get()));
  CTDbIntf::CtError(counted);
  return number;
}

int32_t TCTTable::CountKeysBeforeRange() {
  // Every key of the index less those from the range's first key to the end of the index.
  std::vector<uint8_t> first;
  if (Conn().GetGKey(FCursor.get(), first) == 0) return 0;
  std::vector<uint8_t> top(first.size(), 0xFF);
  const CTDbIntf::TLoadAlignment a = Conn().Alignment();
  const int32_t total = CTDbIntf::NbrOfKeyEntries(a, FCursor->KeyNo);
  const int32_t fromFirst = CTDbIntf::NbrOfKeysInRange(a, FCursor->KeyNo, first.data(), top.data());
  return std::max<int32_t>(0, total - fromFirst);
}

void TCTTable::SetRecNo(int Value) {
  CheckBrowseMode();
  if (FCursor == nullptr || Value < 1 || IsEmpty()) return;
  Ctdb::TCTConnection& conn = Conn();
  if (FCursor->KeyNo == FCursor->DataFileNo) {
    // Physical order has no key to take a percentile of: step from the start.
    First();
    MoveBy(Value - 1);
    return;
  }
  DisableControls();
  try {
    std::vector<uint8_t> key;
    conn.AllocateKey(FCursor.get(), key);
    key.resize(std::max<size_t>(key.size(), 1024), 0);
    double percent = 0;
    if (!FCursor->RangeActive) {
      const int count = GetRecordCount();
      percent = count > 0 ? static_cast<double>(Value) / count * 100.0 : 0;
    } else {
      int32_t total = CTDbIntf::NbrOfRecords(conn.Alignment(), FCursor->DataFileNo);
      if (total == 0) total = CTDbIntf::NbrOfKeyEntries(conn.Alignment(), FCursor->KeyNo);
      percent = total > 0 ? static_cast<double>(Value + CountKeysBeforeRange()) / total * 100.0 : 0;
    }
    const int16_t percentile = static_cast<int16_t>(std::clamp(std::lround(percent), 0L, 100L));
    const int32_t position = CTDbIntf::KeyAtPercentile(conn.Alignment(), FCursor->KeyNo, key.data(), percentile);
    if (position == 0) {
      const int32_t error = CTDbIntf::GetCtUErrCod(conn.Alignment());
      CTDbIntf::CtError(error);
      CTDbIntf::CtError(conn.SetToBegin(FCursor.get()));  // an empty index: start from the top
    } else if (conn.SetToBookMark(FCursor.get(), position) != kNoRecord) {
      CTDbIntf::CtError(conn.GetCurrentRecord(FCursor.get(), Ctdb::dbiNOLOCK, nullptr));
    }
    if (FCursor->Position != Ctdb::cpNone) {
      // The percentile fell outside the range: start from its nearer end.
      if (FCursor->Position == Ctdb::cpBof)
        CTDbIntf::CtError(conn.GetNextRecord(FCursor.get(), Ctdb::dbiNOLOCK, nullptr));
      else
        CTDbIntf::CtError(conn.GetPriorRecord(FCursor.get(), Ctdb::dbiNOLOCK, nullptr));
    }
    Resync(fw::TResyncMode{});
    MoveBy(Value - GetRecNo());
  } catch (...) {
    EnableControls();
    throw;
  }
  EnableControls();
}

}  // namespace CTTables
