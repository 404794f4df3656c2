// TCTConnection: blob fields, moved between the record image and the record buffer's streams
// (driver).
#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "TCTCustomRecordBuffer.h"
#include "TMemoryStream.h"
#include "ctisam.h"

namespace Ctdb {
namespace {

constexpr int32_t kNotABlob = 1127;

// Finds the blob stream of field `fieldNo` after the checks every blob routine makes: 47, 1113,
// 1127 for a field that is not a blob (or a buffer that cannot hold its stream).
int32_t BlobStream(const TCTConnection& conn, TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer,
                   fw::TMemoryStream*& stream) {
  if (!conn.Active()) return kCtNotActive;
  if (cursor == nullptr) return kCtInvalidCursor;
  const TCTFieldDesc* field = cursor->FieldDescByIndex(fieldNo - 1);
  if (field == nullptr || !field->IsBlob || buffer == nullptr) return kNotABlob;
  stream = buffer->OpenBlob(fieldNo);
  return stream == nullptr ? kNotABlob : 0;
}

// The most bytes the on-record form of a blob of c-tree type `code` can count.
int64_t FormLimit(int32_t code) {
  switch (code) {
    case CT_PSTRING: return 0xFF;
    case CT_2STRING: return 0xFFFF;
    default: return std::numeric_limits<int32_t>::max() - 4;
  }
}

// Whether a blob of `size` bytes fits the form of field `fieldNo` (checked after BlobStream).
bool Fits(TCTCursorDesc* cursor, int32_t fieldNo, int64_t size) {
  return size <= FormLimit(cursor->FieldDescByIndex(fieldNo - 1)->FieldType);
}

uint32_t ReadLittleEndian(const uint8_t* p, int width) {
  uint32_t value = 0;
  for (int i = width - 1; i >= 0; --i) value = (value << 8) | p[i];
  return value;
}

}  // namespace

int32_t TCTConnection::OpenBlob(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer, bool& isBlob) {
  isBlob = true;
  fw::TMemoryStream* stream = nullptr;
  if (const int32_t r = BlobStream(*this, cursor, fieldNo, buffer, stream)) return r;
  stream->Clear();
  const uint8_t* record = buffer->RecordPtr();
  const int32_t offset = buffer->GetFieldOffset(fieldNo);
  if (record == nullptr || offset < 0 || offset >= buffer->RecordSize()) return 0;
  // The blob lies at the field's offset in one of the four variable forms. Text without its
  // terminating zero or a length that runs past the record means a damaged record: it is
  // reported, never read beyond the record's end.
  const uint8_t* at = record + offset;
  const size_t room = static_cast<size_t>(buffer->RecordSize() - offset);
  const int32_t code = cursor->FieldDescByIndex(fieldNo - 1)->FieldType;
  size_t start = 0;
  size_t length = 0;
  switch (code) {
    case CT_STRING:
      length = strnlen(reinterpret_cast<const char*>(at), room);
      if (length == room) return kCtRecordCorrupted;
      break;
    case CT_PSTRING: start = 1; break;
    case CT_2STRING: start = 2; break;
    case CT_4STRING: start = 4; break;
    default: return 0;
  }
  if (start > 0) {
    if (room < start) return kCtRecordCorrupted;
    length = ReadLittleEndian(at, static_cast<int>(start));
    if (length > room - start) return kCtRecordCorrupted;
  }
  try {
    if (length > 0) stream->Write(at + start, static_cast<int64_t>(length));
    stream->Seek(0, fw::soBeginning);
  } catch (const std::bad_alloc&) {
    stream->Clear();
    return kCtOutOfMemory;
  }
  return 0;
}

int32_t TCTConnection::GetBlob(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer,
                               int32_t& bytesRead, void* dest, int32_t count, int32_t position) {
  bytesRead = 0;
  fw::TMemoryStream* stream = nullptr;
  if (const int32_t r = BlobStream(*this, cursor, fieldNo, buffer, stream)) return r;
  if (position < 0 || count <= 0 || dest == nullptr) return 0;
  stream->Seek(position, fw::soBeginning);
  bytesRead = static_cast<int32_t>(stream->Read(dest, count));
  return 0;
}

int32_t TCTConnection::PutBlob(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer,
                               int32_t position, int32_t count, const void* src) {
  fw::TMemoryStream* stream = nullptr;
  if (const int32_t r = BlobStream(*this, cursor, fieldNo, buffer, stream)) return r;
  if (position < 0 || count <= 0 || src == nullptr) return 0;
  // A blob longer than its length prefix can count would be cut when the record is built.
  if (!Fits(cursor, fieldNo, static_cast<int64_t>(position) + count)) return kCtOffsetBeyondData;
  try {
    stream->Seek(position, fw::soBeginning);
    stream->Write(src, count);
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  return 0;
}

int32_t TCTConnection::GetBlobSize(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer,
                                   int32_t& size) {
  size = 0;
  fw::TMemoryStream* stream = nullptr;
  if (const int32_t r = BlobStream(*this, cursor, fieldNo, buffer, stream)) return r;
  size = static_cast<int32_t>(stream->Size());
  return 0;
}

int32_t TCTConnection::TruncateBlob(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer,
                                    int32_t newSize) {
  fw::TMemoryStream* stream = nullptr;
  if (const int32_t r = BlobStream(*this, cursor, fieldNo, buffer, stream)) return r;
  if (!Fits(cursor, fieldNo, newSize)) return kCtOffsetBeyondData;
  try {
    stream->SetSize(newSize < 0 ? 0 : newSize);
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  return 0;
}

int32_t TCTConnection::CloseBlob(TCTCursorDesc*, int32_t, TCTCustomRecordBuffer*) { return 0; }

int32_t TCTConnection::OpenAllBlobs(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer) {
  if (cursor == nullptr || buffer == nullptr) return 0;
  for (int32_t i = 0; i < cursor->FieldCount(); ++i) {
    if (!cursor->FieldDescByIndex(i)->IsBlob) continue;
    bool isBlob = false;
    (void)OpenBlob(cursor, i + 1, buffer, isBlob);
  }
  return 0;
}

}  // namespace Ctdb
