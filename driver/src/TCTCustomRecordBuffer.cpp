// TCTCustomRecordBuffer: one c-tree record in memory with its field offsets and blobs (driver).
#include "TCTCustomRecordBuffer.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "TCTCursorDesc.h"
#include "TMemoryStream.h"
#include "ctisam.h"

namespace Ctdb {
namespace {

// Width of the length prefix of a blob form (0 for zero-terminated text) and the largest length
// that prefix can count.
int32_t PrefixWidth(int32_t code) {
  switch (code) {
    case CT_PSTRING: return 1;
    case CT_2STRING: return 2;
    case CT_4STRING: return 4;
    default: return 0;
  }
}

int64_t PrefixLimit(int32_t code) {
  switch (code) {
    case CT_PSTRING: return 0xFF;
    case CT_2STRING: return 0xFFFF;
    default: return std::numeric_limits<int32_t>::max() - 4;
  }
}

}  // namespace

TCTCustomRecordBuffer::TCTCustomRecordBuffer(TCTCursorDesc* cursor) : FCursor(cursor) {
  if (cursor == nullptr) return;
  cursor->AddBuffer(this);
  for (const auto& field : cursor->Fields) {
    FFields.push_back({field->FieldType, field->Offset, field->GetMaxSize(), field->IsBlob ? FBlobCount++ : -1});
    FFixedSize = field->Offset + field->GetDefSize();
  }
  FOffsets.resize(FFields.size());
  FBlobs.resize(static_cast<size_t>(FBlobCount));
}

TCTCustomRecordBuffer::~TCTCustomRecordBuffer() {
  if (FCursor != nullptr) FCursor->RemoveBuffer(this);
}

void TCTCustomRecordBuffer::DetachCursor() {
  FCursor = nullptr;
  FFields.clear();
  FOffsets.clear();
  FBlobs.clear();
  FBlobCount = 0;
  FPresentFieldCount = 0;
}

const TCTCustomRecordBuffer::FieldLayout* TCTCustomRecordBuffer::Layout(int32_t fieldNo) const {
  if (FCursor == nullptr || fieldNo < 1 || fieldNo > FieldCount()) return nullptr;
  return &FFields[static_cast<size_t>(fieldNo - 1)];
}

int32_t TCTCustomRecordBuffer::GetFieldOffset(int32_t fieldNo) const {
  if (Layout(fieldNo) == nullptr) return -1;
  return FOffsets[static_cast<size_t>(fieldNo - 1)];
}

void TCTCustomRecordBuffer::SetBookmark(const void* p) {
  if (p != nullptr) std::memcpy(FBookmark, p, sizeof FBookmark);
}

int32_t TCTCustomRecordBuffer::GetDataSize(int32_t fieldNo, const uint8_t* p, int32_t available) const {
  const FieldLayout* layout = Layout(fieldNo);
  if (layout == nullptr) return 0;
  const size_t room = p == nullptr || available < 0 ? 0 : static_cast<size_t>(available);
  switch (layout->Code) {
    case CT_STRING:
      return room == 0 ? 1 : static_cast<int32_t>(strnlen(reinterpret_cast<const char*>(p), room)) + 1;
    case CT_PSTRING:
    case CT_2STRING:
    case CT_4STRING: {
      const int32_t width = PrefixWidth(layout->Code);
      uint32_t length = 0;
      if (room >= static_cast<size_t>(width)) std::memcpy(&length, p, static_cast<size_t>(width));
      return static_cast<int32_t>(std::min<int64_t>(length, PrefixLimit(layout->Code))) + width;
    }
    default: return layout->MaxSize;
  }
}

int32_t TCTCustomRecordBuffer::GetSize(int32_t fieldNo) const {
  const FieldLayout* layout = Layout(fieldNo);
  if (layout == nullptr) return 0;
  if (layout->BlobNo < 0) return layout->MaxSize;
  if (fw::TMemoryStream* stream = FBlobs[static_cast<size_t>(layout->BlobNo)].get()) {
    const int64_t size = std::min<int64_t>(stream->Size(), PrefixLimit(layout->Code));
    return static_cast<int32_t>(size) + std::max(PrefixWidth(layout->Code), 1);
  }
  const int32_t offset = FOffsets[static_cast<size_t>(fieldNo - 1)];
  const int32_t available = offset < RecordSize() ? RecordSize() - offset : 0;
  return GetDataSize(fieldNo, available > 0 ? FRecord.data() + offset : nullptr, available);
}

int32_t TCTCustomRecordBuffer::MinimumLength() const {
  // c-tree reads (and for variable records requires) at least the table's fixed record length.
  return FCursor != nullptr ? std::max(FCursor->FixedRecLength, 0) : 0;
}

void TCTCustomRecordBuffer::WalkOffsets() {
  int64_t position = 0;
  for (size_t i = 0; i < FFields.size(); ++i) {
    FOffsets[i] = static_cast<int32_t>(std::min<int64_t>(position, std::numeric_limits<int32_t>::max()));
    const int64_t available = std::max<int64_t>(RecordSize() - position, 0);
    position += GetDataSize(static_cast<int32_t>(i) + 1,
                            available > 0 ? FRecord.data() + position : nullptr, static_cast<int32_t>(available));
  }
}

void TCTCustomRecordBuffer::InitRecord() {
  FPresentFieldCount = 0;
  for (size_t i = 0; i < FFields.size(); ++i) FOffsets[i] = FFields[i].TemplateOffset;
  ClearBlobData();
  std::vector<uint8_t> record(static_cast<size_t>(std::max(FFixedSize, MinimumLength())), 0);
  FRecord.swap(record);
  FHasRecord = true;
}

void TCTCustomRecordBuffer::SetRecord(const void* data, int32_t len) {
  std::vector<uint8_t> record;
  if (data != nullptr && len > 0) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    record.assign(bytes, bytes + len);
  }
  SetRecord(std::move(record));
}

void TCTCustomRecordBuffer::SetRecord(std::vector<uint8_t>&& data) {
  FRecord.swap(data);
  data.clear();
  FHasRecord = true;
  FPresentFieldCount = FieldCount();
  if (FBlobCount == 0) {
    for (size_t i = 0; i < FFields.size(); ++i) FOffsets[i] = FFields[i].TemplateOffset;
  } else {
    WalkOffsets();
  }
  ClearBlobData();
}

bool TCTCustomRecordBuffer::FillRecord() {
  int64_t total = 0;
  for (int32_t fieldNo = 1; fieldNo <= FieldCount(); ++fieldNo) total += GetSize(fieldNo);
  total = std::max<int64_t>(total, MinimumLength());
  if (total > std::numeric_limits<int32_t>::max()) return false;
  std::vector<uint8_t> record;
  try {
    record.assign(static_cast<size_t>(total), 0);
  } catch (const std::bad_alloc&) {
    return false;
  }
  size_t p = 0;
  for (size_t i = 0; i < FFields.size(); ++i) {
    const FieldLayout& layout = FFields[i];
    const auto fieldNo = static_cast<int32_t>(i) + 1;
    fw::TMemoryStream* stream = layout.BlobNo >= 0 ? FBlobs[static_cast<size_t>(layout.BlobNo)].get() : nullptr;
    if (stream != nullptr) {
      const auto size = static_cast<uint32_t>(std::min<int64_t>(stream->Size(), PrefixLimit(layout.Code)));
      const int32_t width = PrefixWidth(layout.Code);
      std::memcpy(record.data() + p, &size, static_cast<size_t>(width));  // little-endian prefix
      p += static_cast<size_t>(width);
      if (size > 0) std::memcpy(record.data() + p, stream->Memory(), size);
      p += size;
      if (width == 0) ++p;  // the zero byte that ends the text
      continue;
    }
    const int32_t size = GetSize(fieldNo);
    const int32_t offset = FOffsets[i];
    if (offset >= 0 && offset < RecordSize()) {
      const auto count = std::min<size_t>(static_cast<size_t>(size), static_cast<size_t>(RecordSize() - offset));
      std::memcpy(record.data() + p, FRecord.data() + offset, count);
    }
    p += static_cast<size_t>(size);
  }
  FRecord.swap(record);
  FHasRecord = true;
  FPresentFieldCount = FieldCount();
  if (FBlobCount > 0) WalkOffsets();
  return true;
}

fw::TMemoryStream* TCTCustomRecordBuffer::OpenBlob(int32_t fieldNo) {
  const FieldLayout* layout = Layout(fieldNo);
  if (layout == nullptr || layout->BlobNo < 0) return nullptr;
  auto& stream = FBlobs[static_cast<size_t>(layout->BlobNo)];
  if (!stream) stream = std::make_unique<fw::TMemoryStream>();
  return stream.get();
}

fw::TMemoryStream* TCTCustomRecordBuffer::BlobStream(int32_t fieldNo) const {
  const FieldLayout* layout = Layout(fieldNo);
  if (layout == nullptr || layout->BlobNo < 0) return nullptr;
  return FBlobs[static_cast<size_t>(layout->BlobNo)].get();
}

void TCTCustomRecordBuffer::ClearBlobData() {
  for (auto& stream : FBlobs) stream.reset();
}

}  // namespace Ctdb
