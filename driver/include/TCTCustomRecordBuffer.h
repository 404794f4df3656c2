// TCTCustomRecordBuffer: one c-tree record in memory with its field offsets and blobs (driver).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace fw {
class TMemoryStream;
}

namespace Ctdb {

class TCTCursorDesc;

/// One record of an open table: the record bytes, where each field starts in them, the
/// record's bookmark (its 4-byte position in the data file) and one in-memory stream per blob
/// field. A table without blob fields has fixed offsets; in a table with blob fields every
/// field follows the actual length of the variable fields before it, and the offsets are
/// walked again whenever a record is loaded or rebuilt.
///
/// The buffer registers itself with its cursor and removes itself when it goes; when the cursor
/// goes first it detaches the buffer, which then keeps its bytes but reports no fields.
class TCTCustomRecordBuffer {
 public:
  /// Takes the field layout of `cursor` (may be null: a buffer without fields). Holds no record
  /// until InitRecord or SetRecord.
  explicit TCTCustomRecordBuffer(TCTCursorDesc* cursor);
  virtual ~TCTCustomRecordBuffer();
  TCTCustomRecordBuffer(const TCTCustomRecordBuffer&) = delete;
  TCTCustomRecordBuffer& operator=(const TCTCustomRecordBuffer&) = delete;

  TCTCursorDesc* Cursor() const { return FCursor; }
  /// Called by the cursor as it goes: forgets it and every field.
  void DetachCursor();

  /// The record bytes; null when no record is held.
  uint8_t* RecordPtr() { return FHasRecord ? FRecord.data() : nullptr; }
  const uint8_t* RecordPtr() const { return FHasRecord ? FRecord.data() : nullptr; }
  int32_t RecordSize() const { return static_cast<int32_t>(FRecord.size()); }
  int32_t FieldCount() const { return static_cast<int32_t>(FFields.size()); }
  int32_t BlobCount() const { return FBlobCount; }
  /// Record length when every variable part is empty: last field's offset plus its in-record width.
  int32_t FixedSize() const { return FFixedSize; }
  /// Fields the current record holds: 0 after InitRecord, FieldCount after SetRecord.
  int32_t PresentFieldCount() const { return FPresentFieldCount; }

  /// Start of field `fieldNo` (1-based) in the current record; -1 without a cursor or for a
  /// number outside 1..FieldCount.
  int32_t GetFieldOffset(int32_t fieldNo) const;
  /// The 4-byte bookmark (the record's position in the data file).
  uint8_t* GetBookmark() { return FBookmark; }
  /// Copies 4 bytes from `p` into the bookmark.
  void SetBookmark(const void* p);

  /// Bytes field `fieldNo` occupies at `p`, of which `available` bytes belong to the record:
  /// zero-terminated text 146 its length plus 1; prefixed 154/162/170 the prefix value plus 1, 2
  /// or 4; any other field its maximum size. A prefix that lies beyond `available` counts as 0.
  int32_t GetDataSize(int32_t fieldNo, const uint8_t* p, int32_t available) const;
  /// Bytes field `fieldNo` takes when the record is rebuilt: for a blob with an open stream the
  /// stream's size (as far as the prefix can count it) plus its terminator or prefix; for other
  /// blobs GetDataSize at the field's current offset; otherwise the maximum size.
  int32_t GetSize(int32_t fieldNo) const;

  /// Makes an empty record: template offsets, zero-filled bytes of the fixed size (at least the
  /// table's fixed record length), no blob streams.
  void InitRecord();
  /// Loads a record read from c-tree (`len` bytes at `data`): copies it, walks the offsets of a
  /// table with blob fields, frees the blob streams. A null `data` or negative `len` loads an
  /// empty record.
  void SetRecord(const void* data, int32_t len);
  /// The same, taking over the bytes of `data` (left empty) instead of copying them.
  void SetRecord(std::vector<uint8_t>&& data);
  /// Rebuilds the record to be written: every field in order, fixed fields at full width, blob
  /// fields with an open stream written from it (text and a zero byte, or a little-endian length
  /// prefix and the bytes), other blob fields as they stand. Returns false, leaving the buffer
  /// as it was, when the memory cannot be had.
  bool FillRecord();

  /// The stream of blob field `fieldNo`, created empty on first use; null for a field that is
  /// not a blob or a number out of range. Owned by the buffer.
  fw::TMemoryStream* OpenBlob(int32_t fieldNo);
  /// The stream of blob field `fieldNo` when it is open; null otherwise.
  fw::TMemoryStream* BlobStream(int32_t fieldNo) const;
  /// Frees every blob stream.
  void ClearBlobData();

 private:
  struct FieldLayout {
    int32_t Code;
    int32_t TemplateOffset;
    int32_t MaxSize;
    int32_t BlobNo;  // -1 for a fixed field
  };
  int32_t MinimumLength() const;
  void WalkOffsets();
  const FieldLayout* Layout(int32_t fieldNo) const;

  TCTCursorDesc* FCursor;
  std::vector<FieldLayout> FFields;
  std::vector<uint8_t> FRecord;
  bool FHasRecord = false;
  std::vector<int32_t> FOffsets;
  std::vector<std::unique_ptr<fw::TMemoryStream>> FBlobs;
  int32_t FBlobCount = 0;
  int32_t FFixedSize = 0;
  int32_t FPresentFieldCount = 0;
  uint8_t FBookmark[4] = {};
};

}  // namespace Ctdb
