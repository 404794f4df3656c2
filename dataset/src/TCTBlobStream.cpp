// TCTBlobStream: the stream on one blob field of one record buffer of a table (dataset, unit
// CTTables).
#include "TCTBlobStream.h"

#include <algorithm>
#include <limits>

#include "CtError.h"
#include "CtdbTypes.h"
#include "TBlobField.h"
#include "TCTConnection.h"
#include "TCTTable.h"

namespace CTTables {

namespace {

constexpr int32_t kNotEditing = 1121;
constexpr int32_t kFieldReadOnly = 1122;
constexpr int64_t kMaxPosition = std::numeric_limits<int32_t>::max();

TCTTable* TableOf(fw::TBlobField* field) {
  auto* table = field != nullptr ? dynamic_cast<TCTTable*>(field->DataSet()) : nullptr;
  if (table == nullptr)
    fw::DatabaseError("Field '" + (field != nullptr ? field->DisplayName() : std::string()) +
                      "' does not belong to a c-tree table");
  return table;
}

Ctdb::TCTConnection& ConnectionOf(const TCTTable* table) {
  if (table->Connection() == nullptr) CTDbIntf::CtError(Ctdb::kCtNotActive);
  return *table->Connection();
}

}  // namespace

TCTBlobStream::TCTBlobStream(fw::TBlobField* Field, fw::TBlobStreamMode Mode,
                             TCTRecordBuffer* Buffer)
    : FField(Field),
      FDataSet(TableOf(Field)),
      FBuffer(Buffer),
      FMode(Mode),
      FFieldNo(Field->FieldNo()) {
  if (FBuffer == nullptr) return;
  if (!FField->Modified()) {
    if (FMode != fw::bmRead) {
      if (!fw::dsWriteModes.Contains(FDataSet->State())) CTDbIntf::CtError(kNotEditing);
      if (FField->ReadOnly())
        CTDbIntf::CtErrorFmt(kFieldReadOnly, {fw::Variant(FField->DisplayName())});
    }
    bool isBlob = false;
    CTDbIntf::CtError(
        ConnectionOf(FDataSet).OpenBlob(FDataSet->Cursor(), FFieldNo, FBuffer, isBlob));
  }
  // A Modified field keeps its stream as it is: its unsaved content must not be reloaded.
  FOpened = true;
  if (FMode == fw::bmWrite) Truncate();
}

TCTBlobStream::~TCTBlobStream() {
  try {
    Commit();
  } catch (...) {
    // Destructors must not raise; callers that care call Commit() themselves.
  }
}

void TCTBlobStream::Commit() {
  if (!FOpened) return;
  const bool written = FModified;
  FModified = false;
  if (written)
    FField->SetModified(true);
  else if (!FField->Modified())
    CTDbIntf::CtError(ConnectionOf(FDataSet).CloseBlob(FDataSet->Cursor(), FFieldNo, FBuffer));
  if (written) FDataSet->DataEvent(fw::deFieldChange, reinterpret_cast<intptr_t>(FField));
}

void TCTBlobStream::CheckChange(int32_t result) {
  if (result == 0) return;
  // A change the blob cannot take (longer than its length prefix counts, memory) puts the field
  // back to its content in the record, as if nothing had been written, so that a later Post
  // cannot store a half-written or emptied blob.
  bool isBlob = false;
  static_cast<void>(ConnectionOf(FDataSet).OpenBlob(FDataSet->Cursor(), FFieldNo, FBuffer, isBlob));
  FField->SetModified(false);
  FModified = false;
  CTDbIntf::CtError(result);
}

int64_t TCTBlobStream::Read(void* buffer, int64_t count) {
  if (!FOpened || count <= 0 || FPosition < 0 || FPosition > kMaxPosition) return 0;
  int32_t read = 0;
  CTDbIntf::CtError(ConnectionOf(FDataSet).GetBlob(
      FDataSet->Cursor(), FFieldNo, FBuffer, read, buffer,
      static_cast<int32_t>(std::min(count, kMaxPosition)), static_cast<int32_t>(FPosition)));
  FPosition += read;
  return read;
}

int64_t TCTBlobStream::Write(const void* buffer, int64_t count) {
  if (!FOpened || count <= 0 || FPosition < 0) return 0;
  // Beyond what a 32-bit position reaches the driver reports the blob as too long (1112).
  const auto position = static_cast<int32_t>(std::min(FPosition, kMaxPosition));
  const auto bytes = static_cast<int32_t>(std::min(count, kMaxPosition));
  CheckChange(ConnectionOf(FDataSet).PutBlob(FDataSet->Cursor(), FFieldNo, FBuffer, position, bytes,
                                             buffer));
  FPosition += count;
  FModified = true;
  return count;
}

int64_t TCTBlobStream::Seek(int64_t offset, fw::TSeekOrigin origin) {
  switch (origin) {
    case fw::soBeginning:
      FPosition = offset;
      break;
    case fw::soCurrent:
      FPosition += offset;
      break;
    case fw::soEnd:
      FPosition = offset + GetBlobSize();
      break;
  }
  return FPosition;
}

int64_t TCTBlobStream::Size() { return GetBlobSize(); }

void TCTBlobStream::SetSize(int64_t newSize) {
  if (!FOpened) return;
  const auto size = static_cast<int32_t>(std::clamp<int64_t>(newSize, 0, kMaxPosition));
  CheckChange(ConnectionOf(FDataSet).TruncateBlob(FDataSet->Cursor(), FFieldNo, FBuffer, size));
  FPosition = std::min<int64_t>(FPosition, size);
  FModified = true;
}

void TCTBlobStream::Truncate() {
  if (!FOpened) return;
  const auto size = static_cast<int32_t>(std::clamp<int64_t>(FPosition, 0, kMaxPosition));
  CheckChange(ConnectionOf(FDataSet).TruncateBlob(FDataSet->Cursor(), FFieldNo, FBuffer, size));
  FModified = true;
}

int32_t TCTBlobStream::GetBlobSize() {
  if (!FOpened) return 0;
  int32_t size = 0;
  CTDbIntf::CtError(
      ConnectionOf(FDataSet).GetBlobSize(FDataSet->Cursor(), FFieldNo, FBuffer, size));
  return size;
}

}  // namespace CTTables
