// TCTConnection: mapping between c-tree field type codes and the framework's field types (driver).
#include <algorithm>

#include "TCTConnection.h"
#include "ctisam.h"

namespace Ctdb {

// The mapping keeps a few irregularities that stored tables and applications rely on: code 107
// is BCD like 108, code 119 has a logical type but no framework field type, the 4-byte money and
// float codes are presented as 8-byte floats, and code 136 and unknown codes are unknown.
void TCTConnection::CTreeFieldsToBDE(int32_t code, CTFldDesc& desc) {
  switch (code) {
    case CT_BOOL: desc.FieldType = fldBOOL; break;
    case CT_CHAR:
    case CT_CHARU:
    case CT_ARRAY: desc.FieldType = fldBYTES; break;
    case CT_INT2: desc.FieldType = fldINT16; break;
    case CT_INT2U: desc.FieldType = fldUINT16; break;
    case CT_INT4: desc.FieldType = fldINT32; break;
    case CT_INT4U: desc.FieldType = fldUINT32; break;
    case CT_MONEY:
    case CT_SFLOAT:
    case CT_DFLOAT: desc.FieldType = fldFLOAT; break;
    case CT_DATE: desc.FieldType = fldDATE; break;
    case CT_TIME: desc.FieldType = fldTIME; break;
    case CT_BCDOLD:
    case CT_BCD: desc.FieldType = fldBCD; break;
    case CT_EFLOAT: desc.FieldType = fldFLOATIEEE; break;
    case CT_TIMES: desc.FieldType = fldTIMESTAMP; break;
    case CT_FSTRING:
    case CT_FPSTRING:
    case CT_F2STRING:
    case CT_F4STRING: desc.FieldType = fldZSTRING; break;
    case CT_STRING:
    case CT_PSTRING:
    case CT_2STRING:
    case CT_4STRING: desc.FieldType = fldBLOB; break;
    default: desc.FieldType = fldUNKNOWN; break;
  }
  desc.SubType = CTreeFieldsToBDESubTypes(code, desc.SubType);
}

int16_t TCTConnection::CTreeFieldsToBDESubTypes(int32_t code, int16_t subType) {
  switch (code) {
    case CT_INT2:
    case CT_INT2U: return fldstINT16;
    case CT_MONEY: return fldstMONEY;
    case CT_SFLOAT: return fldstSFLOAT;
    case CT_FSTRING: return fldstFSTRING;
    case CT_FPSTRING: return fldstFPSTRING;
    case CT_F2STRING: return fldstF2STRING;
    case CT_F4STRING: return fldstF4STRING;
    case CT_CHAR: return fldstCHAR;
    case CT_CHARU: return fldstCHARU;
    case CT_STRING: return fldstSTRING;
    case CT_PSTRING: return fldstPSTRING;
    case CT_2STRING: return fldst2STRING;
    case CT_4STRING: return fldst4STRING;
    default: return subType;
  }
}

fw::TFieldType TCTConnection::BDEToFieldType(int16_t fieldType, int16_t subType) {
  switch (fieldType) {
    case fldZSTRING: return fw::ftString;
    case fldDATE: return fw::ftDate;
    case fldBLOB: return subType == fldstSTRING ? fw::ftMemo : fw::ftBlob;
    case fldBOOL: return fw::ftBoolean;
    case fldINT16: return fw::ftSmallint;
    case fldINT32: return fw::ftInteger;
    case fldFLOAT: return fw::ftFloat;
    case fldBCD: return fw::ftBCD;
    case fldBYTES: return subType == fldstCHAR || subType == fldstCHARU ? fw::ftString : fw::ftBytes;
    case fldTIME: return fw::ftTime;
    case fldTIMESTAMP: return fw::ftDateTime;
    case fldUINT16: return fw::ftWord;
    case fldUINT32: return fw::ftInteger;
    case fldVARBYTES: return fw::ftVarBytes;
    default: return fw::ftUnknown;  // fldUNKNOWN, fldFLOATIEEE and anything above fldVARBYTES
  }
}

int32_t TCTConnection::BDEFieldsToCTree(const CTFldDesc& desc) {
  switch (desc.FieldType) {
    case fldZSTRING:
      switch (desc.SubType) {
        case fldstFPSTRING: return CT_FPSTRING;
        case fldstF2STRING: return CT_F2STRING;
        case fldstF4STRING: return CT_F4STRING;
        case fldstCHAR: return CT_CHAR;
        default: return desc.SubType == fldstCHARU || desc.Units1 == 1 ? CT_CHARU : CT_FSTRING;
      }
    case fldDATE: return CT_DATE;
    case fldBLOB:
      switch (desc.SubType) {
        case fldstSTRING: return CT_STRING;
        case fldstPSTRING: return CT_PSTRING;
        case fldst2STRING: return CT_2STRING;
        case fldst4STRING: return CT_4STRING;
        default: return -1;
      }
    case fldBOOL: return CT_BOOL;
    case fldINT16: return CT_INT2;
    case fldINT32: return CT_INT4;
    case fldFLOAT: return desc.SubType == fldstMONEY ? CT_MONEY : desc.SubType == fldstSFLOAT ? CT_SFLOAT : CT_DFLOAT;
    case fldBCD: return CT_BCD;
    case fldBYTES: return desc.SubType == fldstCHAR ? CT_CHAR : desc.SubType == fldstCHARU ? CT_CHARU : CT_ARRAY;
    case fldTIME: return CT_TIME;
    case fldTIMESTAMP: return CT_TIMES;
    case fldUINT16: return CT_INT2U;
    case fldUINT32: return CT_INT4U;
    case fldFLOATIEEE: return CT_EFLOAT;
    case fldVARBYTES:
      switch (desc.SubType) {
        case fldstPSTRING: return CT_PSTRING;
        case fldst2STRING: return CT_2STRING;
        case fldst4STRING: return CT_4STRING;
        default: return -1;
      }
    default: return CT_RESRVD;
  }
}

int32_t TCTConnection::GetCTreeFieldLength(int32_t fieldNo, const TFieldDescList& fields) {
  if (fieldNo < 1 || static_cast<size_t>(fieldNo) > fields.size()) return 0;
  const CTFldDesc& desc = fields[static_cast<size_t>(fieldNo - 1)];
  if (desc.FieldType == fldFLOAT && (desc.SubType == fldstMONEY || desc.SubType == fldstSFLOAT)) return 4;
  if (desc.FieldType == fldDATE) return 4;
  if (desc.FieldType == fldBCD) return 10;
  return desc.Length;
}

int32_t TCTConnection::GetCTreeRecLength(int32_t count, const TFieldDescList& fields) {
  int32_t length = 0;
  for (int32_t i = 0; i < count && static_cast<size_t>(i) < fields.size(); ++i) {
    const CTFldDesc& desc = fields[static_cast<size_t>(i)];
    if (desc.FieldType == fldBLOB || desc.FieldType == fldVARBYTES) break;  // variable parts are not counted
    // Dates count their own length here, unlike in GetCTreeFieldLength.
    length += desc.FieldType == fldDATE ? desc.Length : GetCTreeFieldLength(i + 1, fields);
  }
  return length;
}

int32_t TCTConnection::TranslateRecordStructure(const TFieldDescList& source, int32_t count, TFieldDescList& dest) {
  const size_t n = count < 0 ? 0 : std::min(static_cast<size_t>(count), source.size());
  dest.assign(source.begin(), source.begin() + static_cast<std::ptrdiff_t>(n));
  return 0;
}

}  // namespace Ctdb
