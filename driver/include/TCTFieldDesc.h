// TCTFieldDesc: one field of an open table as c-tree describes it (driver, unit Ctdb).
#pragma once

#include <cstdint>
#include <string>

namespace Ctdb {

class TCTCursorDesc;

/// One field of an open table, read from the data file's schema (DODA). Owned by the cursor's
/// field list; `Cursor` is the owning cursor (may be null for a free-standing descriptor).
class TCTFieldDesc {
 public:
  TCTCursorDesc* Cursor = nullptr;  ///< Owning cursor, not owned.
  std::string Name;
  int32_t FieldType = 0;  ///< c-tree type code (CT_INT4, CT_FSTRING, ...).
  int32_t Length = 0;     ///< Length from the schema.
  int32_t Size = 0;       ///< Framework size (8 for 4-byte floats and money, 20 for BCD, ...).
  int32_t Offset = 0;     ///< Offset of the field in a record whose variable parts are empty.
  bool IsBlob = false;    ///< Variable-length field (codes 146, 154, 162, 170).
  int32_t BlobNo = 0;     ///< Number of blob fields before this one.
  bool AutoInc = false;   ///< The field is a serial-number segment of some index.

  /// Sets the members; `IsBlob` follows from `fieldType`.
  TCTFieldDesc(TCTCursorDesc* cursor, std::string name, int32_t fieldType, int32_t size, int32_t length,
               int32_t offset);

  /// True for the four variable-length (blob) codes.
  static bool IsBlobType(int32_t fieldType);
  /// True for c-tree money: a 4-byte count of hundredths.
  bool IsMoney() const;

  /// Width of the field's part inside a record whose variable parts are empty: 1 for codes 146
  /// and 154, 2 for 162, 4 for 170, otherwise `GetMaxSize()`.
  int32_t GetDefSize() const;
  /// Bytes the field's value needs: 10 for BCD, 1 for characters, 4 for money and 4-byte floats;
  /// for blobs the smaller of `Length` and the connection's `MaxIndexKey` (just `Length` without
  /// a cursor or connection); otherwise `Length`.
  int32_t GetMaxSize() const;
};

}  // namespace Ctdb
