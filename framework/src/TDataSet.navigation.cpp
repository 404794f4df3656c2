// TDataSet: the buffer window, record fetching, navigation and bookmarks (framework layer).
//
// The window is FBuffers[0 .. FBufferCount]; rows 0 .. FRecordCount-1 hold consecutive records
// of the cursor, FBuffers[FRecordCount] is the first unused buffer and FBuffers[FBufferCount]
// is always unused (the fetch spare). Fetching never copies record data: buffers are rotated.
#include <algorithm>

#include "DataSetMessages.h"
#include "TDataLink.h"
#include "TDataSet.h"
#include "TDataSource.h"
#include "TStream.h"

namespace fw {

// --- Window -----------------------------------------------------------------------------------

void TDataSet::SetBufListSize(int Value) {
  if (Value < 0) Value = 0;
  if (Value == FBufferCount) return;
  if (Value > FBufferCount) {
    const std::size_t old = FBuffers.size();
    FBuffers.resize(static_cast<std::size_t>(Value) + 1, nullptr);
    for (std::size_t i = old; i < FBuffers.size(); ++i) FBuffers[i] = AllocRecordBuffer();
  } else {
    if (Value > 0 && FActiveRecord > Value - 1) {
      // Keep the active record inside the smaller window: drop rows from the top.
      const int drop = FActiveRecord - (Value - 1);
      std::rotate(FBuffers.begin(), FBuffers.begin() + drop, FBuffers.begin() + FRecordCount);
      FRecordCount -= drop;
      FActiveRecord -= drop;
      FCurrentRecord = FCurrentRecord >= drop ? FCurrentRecord - drop : -1;
    }
    const std::size_t keep = Value > 0 ? static_cast<std::size_t>(Value) + 1 : 0;
    for (std::size_t i = keep; i < FBuffers.size(); ++i) FreeRecordBuffer(FBuffers[i]);
    FBuffers.resize(keep);
    if (FRecordCount > Value) FRecordCount = Value;
    if (FCurrentRecord >= FRecordCount) FCurrentRecord = -1;
    if (FActiveRecord >= std::max(Value, 1)) FActiveRecord = 0;
  }
  FBufferCount = Value;
}

void TDataSet::SetBufferCount(int Value) {
  if (Value == FBufferCount) return;
  SetBufListSize(Value);
  GetNextRecords();
  if (FRecordCount < FBufferCount && !FIsUniDirectional) FActiveRecord += GetPriorRecords();
}

void TDataSet::UpdateBufferCount() {
  if (!IsCursorOpen()) return;
  int count = 1;
  if (!FIsUniDirectional)
    for (TDataSource* source : FDataSources)
      for (TDataLink* link : source->FDataLinks) count = std::max(count, link->BufferCount());
  SetBufferCount(count);
}

void TDataSet::ClearBuffers() {
  FRecordCount = 0;
  FActiveRecord = 0;
  FCurrentRecord = -1;
  FBOF = true;
  FEOF = true;
}

void TDataSet::ActivateBuffers() {
  FRecordCount = 1;
  FActiveRecord = 0;
  FCurrentRecord = 0;
  FBOF = false;
  FEOF = false;
}

void TDataSet::SetCurrentRecord(int Index) {
  if (FCurrentRecord == Index) return;
  if (!FIsUniDirectional) {
    TRecordBuffer buffer = FBuffers[Index];
    switch (GetBookmarkFlag(buffer)) {
      case bfCurrent:
      case bfInserted:
        InternalSetToRecord(buffer);
        break;
      case bfBOF:
        InternalFirst();
        break;
      case bfEOF:
        InternalLast();
        break;
    }
  }
  FCurrentRecord = Index;
}

void TDataSet::UpdateCursorPos() {
  if (FRecordCount > 0) SetCurrentRecord(FActiveRecord);
}

bool TDataSet::GetNextRecord() {
  TGetMode mode = gmNext;
  if (FRecordCount > 0) {
    SetCurrentRecord(FRecordCount - 1);
    // The row being inserted at the bottom carries the bookmark of the record it sits in
    // front of, and the cursor is on that record: it is the next one to show.
    if (FState == dsInsert && FCurrentRecord == FActiveRecord &&
        GetBookmarkFlag(ActiveBuffer()) == bfCurrent)
      mode = gmCurrent;
  }
  const bool ok = GetRecord(FBuffers[FRecordCount], mode, true) == grOK;
  if (!ok) {
    CursorPosChanged();
    return false;
  }
  if (FRecordCount == 0) {
    ActivateBuffers();
  } else if (FRecordCount < FBufferCount) {
    ++FRecordCount;
  } else {
    // Full window: row 0 leaves, the fetched buffer becomes the last row. ActiveRecord keeps
    // its number and so now denotes the following record.
    std::rotate(FBuffers.begin(), FBuffers.begin() + 1, FBuffers.begin() + FRecordCount + 1);
  }
  FCurrentRecord = FRecordCount - 1;
  return true;
}

bool TDataSet::GetPriorRecord() {
  CheckBiDirectional();
  if (FRecordCount > 0) SetCurrentRecord(0);
  const bool ok = GetRecord(FBuffers[FRecordCount], gmPrior, true) == grOK;
  if (!ok) {
    CursorPosChanged();
    return false;
  }
  if (FRecordCount == 0) {
    ActivateBuffers();
  } else {
    // The fetched buffer becomes row 0; with a full window the last row becomes the spare.
    std::rotate(FBuffers.begin(), FBuffers.begin() + FRecordCount, FBuffers.begin() + FRecordCount + 1);
    if (FRecordCount < FBufferCount) ++FRecordCount;
  }
  FCurrentRecord = 0;
  return true;
}

int TDataSet::GetNextRecords() {
  int count = 0;
  while (FRecordCount < FBufferCount && GetNextRecord()) ++count;
  return count;
}

int TDataSet::GetPriorRecords() {
  int count = 0;
  while (FRecordCount < FBufferCount && GetPriorRecord()) ++count;
  return count;
}

void TDataSet::Resync(TResyncMode Mode) {
  if (FIsUniDirectional) return;
  TRecordBuffer spare = FBuffers[FRecordCount];
  if (Mode.Contains(rmExact)) {
    CursorPosChanged();
    if (GetRecord(spare, gmCurrent, true) != grOK) DatabaseError(SRecordNotFound, this);
  } else if (GetRecord(spare, gmCurrent, false) != grOK && GetRecord(spare, gmNext, false) != grOK &&
             GetRecord(spare, gmPrior, false) != grOK) {
    ClearBuffers();
    DataEvent(deDataSetChange, 0);
    return;
  }
  int above = Mode.Contains(rmCenter) ? (FBufferCount - 1) / 2 : FActiveRecord;
  std::swap(FBuffers[0], FBuffers[FRecordCount]);
  ActivateBuffers();
  try {
    while (above > 0 && GetPriorRecord()) {
      --above;
      ++FActiveRecord;
    }
    GetNextRecords();
    FActiveRecord += GetPriorRecords();
  } catch (...) {
    DataEvent(deDataSetChange, 0);
    throw;
  }
  DataEvent(deDataSetChange, 0);
}

// --- Navigation -------------------------------------------------------------------------------

void TDataSet::First() {
  CheckBrowseMode();
  DoBeforeScroll();
  if (!FIsUniDirectional) {
    ClearBuffers();
  } else if (!FBOF) {
    SetActive(false);
    SetActive(true);
  }
  try {
    InternalFirst();
    if (!FIsUniDirectional) GetNextRecords();
  } catch (...) {
    FBOF = true;
    DataEvent(deDataSetChange, 0);
    DoAfterScroll();
    throw;
  }
  FBOF = true;
  DataEvent(deDataSetChange, 0);
  DoAfterScroll();
}

void TDataSet::Last() {
  CheckBiDirectional();
  CheckBrowseMode();
  DoBeforeScroll();
  ClearBuffers();
  try {
    InternalLast();
    GetPriorRecords();
    if (FRecordCount > 0) FActiveRecord = FRecordCount - 1;
  } catch (...) {
    FEOF = true;
    DataEvent(deDataSetChange, 0);
    DoAfterScroll();
    throw;
  }
  FEOF = true;
  DataEvent(deDataSetChange, 0);
  DoAfterScroll();
}

int TDataSet::MoveBy(int Distance) {
  CheckBrowseMode();
  DoBeforeScroll();
  if (Distance == 0 || (Distance > 0 && FEOF) || (Distance < 0 && FBOF)) return 0;
  int moved = 0;
  int shift = 0;  // how far window indices moved (links follow their rows with it)
  auto finish = [&] {
    DataEvent(deDataSetScroll, shift);
    DoAfterScroll();
  };
  try {
    if (Distance > 0) {
      FBOF = false;
      for (; Distance > 0; --Distance, ++moved) {
        if (FActiveRecord < FRecordCount - 1) {
          ++FActiveRecord;
          continue;
        }
        const bool full = FRecordCount == FBufferCount;
        if (!GetNextRecord()) {
          FEOF = true;
          break;
        }
        if (full)
          --shift;
        else
          ++FActiveRecord;
      }
    } else {
      CheckBiDirectional();
      FEOF = false;
      for (; Distance < 0; ++Distance, --moved) {
        if (FActiveRecord > 0) {
          --FActiveRecord;
          continue;
        }
        if (!GetPriorRecord()) {
          FBOF = true;
          break;
        }
        ++shift;
      }
    }
  } catch (...) {
    finish();
    throw;
  }
  finish();
  return moved;
}

void TDataSet::Next() {
  if (FBlockReadSize > 0)
    BlockReadNext();
  else
    MoveBy(1);
}

void TDataSet::Prior() { MoveBy(-1); }

void TDataSet::BlockReadNext() { MoveBy(1); }

void TDataSet::Refresh() {
  CheckBrowseMode();
  DoBeforeRefresh();
  UpdateCursorPos();
  InternalRefresh();
  Resync(TResyncMode{});
  DoAfterRefresh();
}

// --- Bookmarks --------------------------------------------------------------------------------

bool TDataSet::BookmarkAvailable() {
  return (FState == dsBrowse || FState == dsEdit || FState == dsInsert) && !IsEmpty() &&
         !FIsUniDirectional && GetBookmarkFlag(ActiveBuffer()) == bfCurrent;
}

TBookmark TDataSet::GetBookmark() {
  TBookmark result;
  if (!BookmarkAvailable() || FBookmarkSize <= 0) return result;
  result.resize(static_cast<std::size_t>(FBookmarkSize));
  GetBookmarkData(ActiveBuffer(), result.data());
  return result;
}

void TDataSet::GotoBookmark(const TBookmark& Bookmark) {
  if (Bookmark.empty()) return;
  CheckBrowseMode();
  DoBeforeScroll();
  InternalGotoBookmark(Bookmark.data());
  Resync(TResyncMode{rmExact, rmCenter});
  DoAfterScroll();
}

int TDataSet::CompareBookmarks(const TBookmark& Bookmark1, const TBookmark& Bookmark2) {
  if (Bookmark1.empty() && Bookmark2.empty()) return 0;
  if (Bookmark1.empty()) return 1;
  if (Bookmark2.empty()) return -1;
  return Bookmark1 == Bookmark2 ? 0 : (Bookmark1 < Bookmark2 ? -1 : 1);
}

bool TDataSet::Locate(const std::string& KeyFields, const Variant& KeyValues, TLocateOptions Options) {
  CheckBiDirectional();
  return false;
}

Variant TDataSet::Lookup(const std::string& KeyFields, const Variant& KeyValues,
                         const std::string& ResultFields) {
  CheckBiDirectional();
  return Null();
}

std::unique_ptr<TStream> TDataSet::CreateBlobStream(TField* Field, TBlobStreamMode Mode) { return nullptr; }

}  // namespace fw
