// CTFldDesc: the framework view of one field of an open or new table (driver, unit Ctdb).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Ctdb {

/// One field as the dataset layer sees it. Filled by `TCTConnection::GetFieldDescs` for an open
/// table, and by the dataset layer for a table to create.
struct CTFldDesc {
  uint16_t FieldNo = 0;   ///< 1-based position of the field.
  std::string Name;       ///< Field name.
  int16_t FieldType = 0;  ///< Logical type (`fldZSTRING`, `fldINT32`, ...).
  int16_t SubType = 0;    ///< Logical subtype (`fldstMONEY`, `fldstFPSTRING`, ...).
  /// Characters of a string or blob (field length minus its length prefix), 32 for BCD,
  /// otherwise the field length.
  int16_t Units1 = 0;
  int16_t Units2 = 0;  ///< 20 for BCD, otherwise 0.
  int16_t Offset = 0;  ///< Offset of the field in the framework's record image.
  int16_t Length = 0;  ///< The field's framework size (`TCTFieldDesc::Size`).
  int16_t Reserved1 = 0;  ///< Always 0.
  int16_t Reserved2 = 0;  ///< Always 0.
};

/// The field descriptors of one table, in field order.
using TFieldDescList = std::vector<CTFldDesc>;

}  // namespace Ctdb
