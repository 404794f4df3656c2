// TCTFieldDesc: one field of an open table as c-tree describes it (driver, unit Ctdb).
#include "TCTFieldDesc.h"

#include <algorithm>

#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "ctisam.h"

namespace Ctdb {

TCTFieldDesc::TCTFieldDesc(TCTCursorDesc* cursor, std::string name, int32_t fieldType, int32_t size,
                           int32_t length, int32_t offset)
    : Cursor(cursor),
      Name(std::move(name)),
      FieldType(fieldType),
      Length(length),
      Size(size),
      Offset(offset),
      IsBlob(IsBlobType(fieldType)) {}

bool TCTFieldDesc::IsBlobType(int32_t fieldType) {
  return fieldType == CT_STRING || fieldType == CT_PSTRING || fieldType == CT_2STRING || fieldType == CT_4STRING;
}

bool TCTFieldDesc::IsMoney() const { return FieldType == CT_MONEY; }

int32_t TCTFieldDesc::GetDefSize() const {
  switch (FieldType) {
    case CT_STRING:
    case CT_PSTRING: return 1;
    case CT_2STRING: return 2;
    case CT_4STRING: return 4;
    default: return GetMaxSize();
  }
}

int32_t TCTFieldDesc::GetMaxSize() const {
  switch (FieldType) {
    case CT_BCD: return 10;
    case CT_CHAR:
    case CT_CHARU: return 1;
    case CT_MONEY:
    case CT_SFLOAT: return 4;
    case CT_STRING:
    case CT_PSTRING:
    case CT_2STRING:
    case CT_4STRING:
      if (Cursor != nullptr && Cursor->Connection != nullptr)
        return std::min(Length, Cursor->Connection->MaxIndexKey());
      return Length;
    default: return Length;
  }
}

}  // namespace Ctdb
