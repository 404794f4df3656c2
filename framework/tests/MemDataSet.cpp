// A small in-memory dataset that drives the TDataSet protocol in the framework's own tests
// (framework layer, tests only).
#include "MemDataSet.h"

#include <algorithm>
#include <cstring>

#include "TBlobStream.h"

namespace fwtest {

using namespace fw;

namespace {

constexpr int kBookmarkSize = 4;

int NativeSize(const MemColumn& c) {
  switch (c.Type) {
    case ftString:
      return c.Size + 1;
    case ftSmallint:
    case ftWord:
    case ftBoolean:
      return 2;
    case ftInteger:
    case ftAutoInc:
    case ftDate:
    case ftTime:
      return 4;
    case ftBytes:
      return c.Size;
    case ftVarBytes:
      return c.Size + 2;
    case ftBCD:
    case ftFMTBcd:
      return 34;
    case ftBlob:
    case ftMemo:
    case ftGraphic:
      return 0;
    default:
      return 8;
  }
}

}  // namespace

TMemDataSet::TMemDataSet(TComponent* AOwner, std::vector<MemColumn> Columns)
    : TDataSet(AOwner), FColumns(std::move(Columns)) {
  for (const MemColumn& c : FColumns) {
    FOffsets.push_back(FRecordSize);
    FRecordSize += 1 + NativeSize(c);
  }
}

TMemDataSet::~TMemDataSet() { Close(); }

// --- Open and close ---------------------------------------------------------------------------

void TMemDataSet::InternalInitFieldDefs() {
  FieldDefs()->Clear();
  for (const MemColumn& c : FColumns) FieldDefs()->Add(c.Name, c.Type, c.Size, c.Required);
}

void TMemDataSet::InternalOpen() {
  InternalInitFieldDefs();
  if (DefaultFields()) CreateFields();
  BindFields(true);
  FBookmarkSize = kBookmarkSize;
  FOpen = true;
  InternalFirst();
}

void TMemDataSet::InternalClose() {
  BindFields(false);
  if (DefaultFields()) DestroyFields();
  FOpen = false;
}

// --- Buffers ----------------------------------------------------------------------------------

TRecordBuffer TMemDataSet::AllocRecordBuffer() {
  ++AllocatedBuffers;
  const std::size_t size = static_cast<std::size_t>(FRecordSize + kBookmarkSize + 1 + CalcFieldsSize());
  auto* buffer = new char[size];
  std::memset(buffer, 0, size);
  return buffer;
}

void TMemDataSet::FreeRecordBuffer(TRecordBuffer& Buffer) {
  --AllocatedBuffers;
  FBufferBlobs.erase(Buffer);
  delete[] Buffer;
  Buffer = nullptr;
}

void TMemDataSet::InternalInitRecord(TRecordBuffer Buffer) {
  std::memset(Buffer, 0, FRecordSize);
  BlobsOf(Buffer).assign(FColumns.size(), std::string());
}

std::vector<std::string>& TMemDataSet::BlobsOf(TRecordBuffer Buffer) {
  std::vector<std::string>& blobs = FBufferBlobs[Buffer];
  blobs.resize(FColumns.size());
  return blobs;
}

void TMemDataSet::ClearCalcFields(TRecordBuffer Buffer) {
  std::memset(Buffer + FRecordSize + kBookmarkSize + 1, 0, static_cast<std::size_t>(CalcFieldsSize()));
}

void TMemDataSet::GetBookmarkData(TRecordBuffer Buffer, void* Data) {
  std::memcpy(Data, Buffer + FRecordSize, kBookmarkSize);
}

void TMemDataSet::SetBookmarkData(TRecordBuffer Buffer, const void* Data) {
  std::memcpy(Buffer + FRecordSize, Data, kBookmarkSize);
}

TBookmarkFlag TMemDataSet::GetBookmarkFlag(TRecordBuffer Buffer) {
  return static_cast<TBookmarkFlag>(Buffer[FRecordSize + kBookmarkSize]);
}

void TMemDataSet::SetBookmarkFlag(TRecordBuffer Buffer, TBookmarkFlag Value) {
  Buffer[FRecordSize + kBookmarkSize] = static_cast<char>(Value);
}

uint32_t TMemDataSet::BufferId(TRecordBuffer Buffer) const {
  uint32_t id = 0;
  std::memcpy(&id, Buffer + FRecordSize, sizeof id);
  return id;
}

int TMemDataSet::IndexOfId(uint32_t Id) const {
  for (std::size_t i = 0; i < FRecords.size(); ++i)
    if (FRecords[i].Id == Id) return static_cast<int>(i);
  return -1;
}

// --- Fetching ---------------------------------------------------------------------------------

bool TMemDataSet::AcceptRecord(TRecordBuffer Buffer) {
  if (!Filtered() || !OnFilterRecord()) return true;
  FFilterBuffer = Buffer;
  TTempState guard(this, dsFilter);
  bool accept = true;
  OnFilterRecord()(this, accept);
  return accept;
}

TGetResult TMemDataSet::GetRecord(TRecordBuffer Buffer, TGetMode GetMode, bool DoCheck) {
  for (;;) {
    switch (GetMode) {
      case gmNext:
        if (FCursor >= StoredCount() - 1) {
          FCursor = StoredCount();
          return grEOF;
        }
        ++FCursor;
        break;
      case gmPrior:
        if (FCursor <= 0) {
          FCursor = -1;
          return grBOF;
        }
        --FCursor;
        break;
      case gmCurrent:
        if (FCursor < 0 || FCursor >= StoredCount()) {
          if (DoCheck) DatabaseError("No current record", this);
          return grError;
        }
        break;
    }
    const Record& record = FRecords[static_cast<std::size_t>(FCursor)];
    std::memcpy(Buffer, record.Data.data(), static_cast<std::size_t>(FRecordSize));
    std::memcpy(Buffer + FRecordSize, &record.Id, kBookmarkSize);
    BlobsOf(Buffer) = record.Blobs;
    SetBookmarkFlag(Buffer, bfCurrent);
    GetCalcFields(Buffer);
    if (AcceptRecord(Buffer)) return grOK;
    if (GetMode == gmCurrent) {
      if (DoCheck) DatabaseError("Record is filtered out", this);
      return grError;
    }
  }
}

// --- Field data -------------------------------------------------------------------------------

TRecordBuffer TMemDataSet::CurrentBuffer() const {
  switch (State()) {
    case dsCalcFields:
      return CalcBuffer();
    case dsFilter:
      return FFilterBuffer;
    case dsOldValue:
      return FOldRecord.empty() ? nullptr : const_cast<char*>(FOldRecord.data());
    case dsBrowse:
      return IsEmpty() ? nullptr : ActiveBuffer();
    case dsInactive:
      return nullptr;
    default:
      return ActiveBuffer();
  }
}

char* TMemDataSet::FieldPlace(TRecordBuffer Buffer, const TField* Field) const {
  if (Field->FieldNo() > 0) return Buffer + FOffsets[static_cast<std::size_t>(Field->FieldNo() - 1)];
  return Buffer + FRecordSize + kBookmarkSize + 1 + Field->Offset();
}

bool TMemDataSet::GetFieldData(TField* Field, void* Buffer) {
  TRecordBuffer record = CurrentBuffer();
  if (record == nullptr) return false;
  if (Field->FieldNo() < 0 && State() == dsOldValue) return false;
  const char* place = FieldPlace(record, Field);
  if (place[0] == 0) return false;
  if (Buffer != nullptr) std::memcpy(Buffer, place + 1, static_cast<std::size_t>(Field->DataSize()));
  return true;
}

void TMemDataSet::SetFieldData(TField* Field, const void* Buffer) {
  if (!dsWriteModes.Contains(State())) DatabaseError("Dataset not in edit or insert mode", this);
  const bool dataField = Field->FieldNo() > 0;
  if (dataField && State() == dsCalcFields) DatabaseError("Data field written while computing", this);
  if (dataField && Field->ReadOnly() && State() != dsSetKey && State() != dsFilter)
    DatabaseError("Field '" + Field->DisplayName() + "' cannot be modified", this);
  if (State() == dsEdit || State() == dsInsert || State() == dsNewValue) Field->Validate(Buffer);
  TRecordBuffer record = CurrentBuffer();
  if (record == nullptr) DatabaseError("No record buffer", this);
  char* place = FieldPlace(record, Field);
  const std::size_t size = static_cast<std::size_t>(Field->DataSize());
  if (Buffer == nullptr) {
    std::memset(place, 0, size + 1);
  } else {
    place[0] = 1;
    std::memcpy(place + 1, Buffer, size);
  }
  if (State() != dsCalcFields && State() != dsFilter && State() != dsNewValue)
    DataEvent(deFieldChange, reinterpret_cast<intptr_t>(Field));
}

// --- Positioning and modification -------------------------------------------------------------

void TMemDataSet::InternalGotoBookmark(const void* Bookmark) {
  uint32_t id = 0;
  std::memcpy(&id, Bookmark, sizeof id);
  const int index = IndexOfId(id);
  if (index < 0) DatabaseError("Bookmark not found", this);
  FCursor = index;
}

void TMemDataSet::InternalSetToRecord(TRecordBuffer Buffer) {
  const int index = IndexOfId(BufferId(Buffer));
  if (index >= 0) FCursor = index;
}

void TMemDataSet::InternalEdit() {
  FOldRecord.assign(ActiveBuffer(), ActiveBuffer() + FRecordSize);
}

void TMemDataSet::InternalPost() {
  if (FailPosts > 0) {
    --FailPosts;
    DatabaseError("Post failed", this);
  }
  TDataSet::InternalPost();
  TRecordBuffer buffer = ActiveBuffer();
  if (State() == dsEdit) {
    Record& record = FRecords[static_cast<std::size_t>(FCursor)];
    std::memcpy(record.Data.data(), buffer, static_cast<std::size_t>(FRecordSize));
    record.Blobs = BlobsOf(buffer);
    FOldRecord.clear();
    return;
  }
  int at = StoredCount();
  const TBookmarkFlag flag = GetBookmarkFlag(buffer);
  if (flag == bfBOF) {
    at = 0;
  } else if (flag == bfInserted) {
    const int before = IndexOfId(BufferId(buffer));
    if (before >= 0) at = before;
  }
  FRecords.insert(FRecords.begin() + at, Record{FNextId++, std::vector<char>(buffer, buffer + FRecordSize), BlobsOf(buffer)});
  FCursor = at;
}

void TMemDataSet::InternalAddRecord(TRecordBuffer Buffer, bool Append) {
  const int at = Append ? StoredCount() : std::max(FCursor, 0);
  FRecords.insert(FRecords.begin() + at, Record{FNextId++, std::vector<char>(Buffer, Buffer + FRecordSize), BlobsOf(Buffer)});
  FCursor = at;
}

void TMemDataSet::InternalDelete() {
  FRecords.erase(FRecords.begin() + FCursor);
  FOldRecord.clear();
}

int TMemDataSet::GetRecNo() const {
  if (State() == dsInsert || IsEmpty()) return 0;
  return IndexOfId(BufferId(ActiveBuffer())) + 1;
}

bool TMemDataSet::BookmarkValid(const TBookmark& Bookmark) {
  if (Bookmark.size() != kBookmarkSize) return false;
  uint32_t id = 0;
  std::memcpy(&id, Bookmark.data(), sizeof id);
  return IndexOfId(id) >= 0;
}

int TMemDataSet::CompareBookmarks(const TBookmark& Bookmark1, const TBookmark& Bookmark2) {
  if (Bookmark1.empty() || Bookmark2.empty()) return TDataSet::CompareBookmarks(Bookmark1, Bookmark2);
  uint32_t a = 0;
  uint32_t b = 0;
  std::memcpy(&a, Bookmark1.data(), sizeof a);
  std::memcpy(&b, Bookmark2.data(), sizeof b);
  const int ia = IndexOfId(a);
  const int ib = IndexOfId(b);
  return ia < ib ? -1 : (ia > ib ? 1 : 0);
}

void TMemDataSet::SetFiltered(bool Value) {
  if (Value == Filtered()) return;
  TDataSet::SetFiltered(Value);
  if (Active()) {
    CheckBrowseMode();
    First();
  }
}

std::unique_ptr<TStream> TMemDataSet::CreateBlobStream(TField* Field, TBlobStreamMode Mode) {
  TRecordBuffer record = CurrentBuffer();
  const std::size_t column = static_cast<std::size_t>(Field->FieldNo() - 1);
  if (record == nullptr || Field->FieldNo() <= 0) {
    if (Mode != bmRead) DatabaseError("Dataset not in edit or insert mode", this);
    return std::make_unique<TBlobStream>(Field, Mode, std::string(), nullptr);
  }
  const std::string content = record[FOffsets[column]] != 0 ? BlobsOf(record)[column] : std::string();
  return std::make_unique<TBlobStream>(Field, Mode, content, [this, record, column](const std::string& value) {
    BlobsOf(record)[column] = value;
    record[FOffsets[column]] = value.empty() ? 0 : 1;
  });
}

// --- Lookup ------------------------------------------------------------------------------

int TMemDataSet::FindRecord(const std::string& KeyFields, const Variant& KeyValues) {
  std::vector<TField*> fields;
  GetFieldList(fields, KeyFields);
  TRecordBuffer scratch = AllocRecordBuffer();
  std::vector<Variant> keys;
  int found = -1;
  try {
    // Convert each key to its field's type by assigning it into a scratch record.
    {
      InternalInitRecord(scratch);
      FFilterBuffer = scratch;
      TTempState guard(this, dsFilter);
      for (std::size_t i = 0; i < fields.size(); ++i) {
        fields[i]->SetValue(fields.size() == 1 && !VarIsArray(KeyValues) ? KeyValues : KeyValues[static_cast<int>(i)]);
        keys.push_back(fields[i]->Value());
      }
    }
    for (int r = 0; r < StoredCount() && found < 0; ++r) {
      std::memcpy(scratch, FRecords[static_cast<std::size_t>(r)].Data.data(), static_cast<std::size_t>(FRecordSize));
      GetCalcFields(scratch);
      if (!AcceptRecord(scratch)) continue;
      FFilterBuffer = scratch;
      TTempState guard(this, dsFilter);
      bool match = true;
      for (std::size_t i = 0; i < fields.size() && match; ++i) {
        const Variant value = fields[i]->Value();
        match = VarIsNull(keys[i]) || VarIsNull(value) ? VarIsNull(keys[i]) && VarIsNull(value)
                                                       : VarSameValue(value, keys[i]);
      }
      if (match) found = r;
    }
  } catch (...) {
    FreeRecordBuffer(scratch);
    throw;
  }
  FreeRecordBuffer(scratch);
  return found;
}

Variant TMemDataSet::Lookup(const std::string& KeyFields, const Variant& KeyValues, const std::string& ResultFields) {
  if (!Active()) return Null();
  const int index = FindRecord(KeyFields, KeyValues);
  if (index < 0) return Null();
  TRecordBuffer scratch = AllocRecordBuffer();
  Variant result;
  try {
    std::memcpy(scratch, FRecords[static_cast<std::size_t>(index)].Data.data(), static_cast<std::size_t>(FRecordSize));
    GetCalcFields(scratch);
    FFilterBuffer = scratch;
    TTempState guard(this, dsFilter);
    result = FieldValues(ResultFields);
  } catch (...) {
    FreeRecordBuffer(scratch);
    throw;
  }
  FreeRecordBuffer(scratch);
  return result;
}

}  // namespace fwtest
