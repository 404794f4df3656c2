// CTIdxDesc: the description of one index of a table (driver, unit Ctdb).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace Ctdb {

/// One index. The six flags and `CaseInsensitive` are 16-bit Boolean words: -1 true, 0 false.
/// Read from a table's IFIL by `TCTConnection::GetIndexDesc`; filled by the dataset layer for an
/// index to create.
struct CTIdxDesc {
  /// The index name from the IFIL; the decimal ordinal ("0", "1", ...) when the IFIL has none.
  std::string Name;
  /// The c-tree key number (data file number + ordinal + 1); -1 when the descriptor names no index.
  int16_t IndexId = 0;
  std::string Expression;  ///< Index expression text; empty for indexes read from c-tree.
  int16_t Primary = 0;     ///< True for ordinal 0 only.
  int16_t Unique = 0;      ///< True when the index allows no duplicates.
  int16_t Descending = 0;  ///< True when any segment is descending.
  int16_t Maintained = 0;  ///< True when c-tree keeps the keys; false when the package does.
  int16_t Subset = 0;
  int16_t ExpressionIndex = 0;  ///< True when `Condition`/`Expression` must be applied on creation.
  int16_t FieldsInKey = 0;      ///< Entries used in `KeyFields`.
  int16_t KeyLength = 0;        ///< Key length from the IFIL (with a duplicate index's 4 bytes).
  int16_t Reserved1 = 0;        ///< Left alone by the driver.
  int16_t Reserved2 = 0;        ///< Left alone by the driver.
  std::array<int32_t, 256> KeyFields{};        ///< 1-based field numbers of the key, in order.
  std::array<uint8_t, 256> DescendingFields{};  ///< 1 where that segment is descending.
  std::string Condition;                        ///< Conditional-index expression, empty if none.
  int16_t CaseInsensitive = 0;  ///< True when any segment upper-cases its bytes.
  int16_t Reserved3 = 0;        ///< Always 0.
  std::string SymbolicName;     ///< c-tree's symbolic name of the index file.
};

/// The index descriptors of one table, in IFIL order.
using TIndexDescList = std::vector<CTIdxDesc>;

}  // namespace Ctdb
