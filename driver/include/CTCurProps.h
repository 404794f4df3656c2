// CTCurProps: the properties of an open cursor (driver, unit Ctdb).
#pragma once

#include <cstdint>
#include <string>

namespace Ctdb {

/// Properties of an open table, filled by `TCTConnection::GetCursorProps`.
struct CTCurProps {
  /// The table's file name without path and extension; for a superfile member only the member.
  std::string Name;
  std::string TableType;          ///< Always "CTree".
  int16_t FieldCount = 0;
  int16_t RecordSize = 0;         ///< c-tree's record length of the data file.
  int16_t RecordBufferSize = 0;   ///< The same value.
  int16_t Reserved1 = 0;          ///< Not set.
  int16_t IndexCount = 0;
  int16_t BookmarkSize = 0;       ///< Always 4.
  bool ReadOnly = false;          ///< The cursor was opened with mode bit 8 (read only).
  int16_t SeqNums = 0;            ///< Always 1.
};

}  // namespace Ctdb
