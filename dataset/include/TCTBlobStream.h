// TCTBlobStream: the stream on one blob field of one record buffer of a table (dataset, unit
// CTTables).
#pragma once

#include <cstdint>

#include "DataSetTypes.h"
#include "TStream.h"

namespace fw {
class TBlobField;
}

namespace CTTables {

class TCTRecordBuffer;
class TCTTable;

/// Reads and writes memo or binary field `Field` of record buffer `Buffer` through the
/// connection's blob routines, which keep the content in the buffer's stream for that field until
/// the record is posted (Cancel discards it). TCTTable::CreateBlobStream hands these out. Driver
/// failures (47, 1113, 1127, 1112 for a blob longer than its field's length prefix can count,
/// 1117 for a damaged blob in the record) raise CTDbIntf::ECtreeException.
///
/// Written content (or a stream opened in bmWrite) marks the field Modified when the stream is
/// committed or destroyed, and then sends the dataset deFieldChange for it. A Modified field's
/// content is not reloaded from the record by later streams.
class TCTBlobStream : public fw::TStream {
 public:
  /// `Field` must belong to a TCTTable (EDatabaseError otherwise). With a null `Buffer` the
  /// stream is closed: it reads nothing, writes nothing and has size 0. Otherwise, unless the
  /// field is already Modified, a mode other than bmRead requires the table in one of
  /// fw::dsWriteModes (1121) and a field that is not ReadOnly (1122), and the blob is loaded from
  /// the record (its unsaved changes are dropped); bmWrite then empties it at once.
  TCTBlobStream(fw::TBlobField* Field, fw::TBlobStreamMode Mode, TCTRecordBuffer* Buffer);
  /// Commits when still pending; errors raised while committing here are dropped (a destructor
  /// cannot raise): call Commit() first to see them.
  ~TCTBlobStream() override;

  /// Up to `count` bytes from the position, which advances by the bytes read (0 past the end).
  int64_t Read(void* buffer, int64_t count) override;
  /// Writes `count` bytes at the position (a gap after the end is zero-filled) and advances it.
  /// Returns `count`, or 0 on a closed stream or at a negative position.
  int64_t Write(const void* buffer, int64_t count) override;
  /// soBeginning: `offset`; soCurrent: position + `offset`; soEnd: `offset` + size. Not
  /// clamped; returns the new position.
  int64_t Seek(int64_t offset, fw::TSeekOrigin origin) override;
  /// GetBlobSize.
  int64_t Size() override;
  /// Cuts or extends the blob to `newSize` bytes (the position is kept within it).
  void SetSize(int64_t newSize) override;
  /// Marks the field Modified and sends deFieldChange when anything was written since the last
  /// commit; may raise what the field's OnChange and the dataset's calculations raise.
  void Commit() override;

  /// Cuts the blob at the position.
  void Truncate();
  /// The blob's size in bytes; 0 on a closed stream.
  int32_t GetBlobSize();

 private:
  /// Raises a failed change after putting the field back to its content in the record.
  void CheckChange(int32_t result);

  fw::TBlobField* FField;
  TCTTable* FDataSet;
  TCTRecordBuffer* FBuffer;
  fw::TBlobStreamMode FMode;
  int32_t FFieldNo;
  bool FOpened = false;
  bool FModified = false;
  int64_t FPosition = 0;
};

}  // namespace CTTables
