// TCTConnection: conversion of field values between c-tree records and framework values (driver).
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "TBcd.h"
#include "Ctdb.h"
#include "DateTime.h"
#include "ctisam.h"

namespace Ctdb {
namespace {

constexpr int32_t kFieldOutOfRange = 1125;
constexpr double kMSecsPerDay = 86400000.0;

template <typename T>
T LoadAt(const uint8_t* p) {
  T value;
  std::memcpy(&value, p, sizeof value);
  return value;
}

template <typename T>
void StoreAt(uint8_t* p, T value) {
  std::memcpy(p, &value, sizeof value);
}

// Width of the length prefix of the prefixed string forms (fixed and variable).
int32_t PrefixWidth(int32_t code) {
  switch (code) {
    case CT_PSTRING:
    case CT_FPSTRING: return 1;
    case CT_2STRING:
    case CT_F2STRING: return 2;
    case CT_4STRING:
    case CT_F4STRING: return 4;
    default: return 0;
  }
}

// Bytes GetField looks at before following a length prefix: the value and, for the codes whose
// blankness is judged on their bytes, the field length.
int32_t ReadSpan(int32_t code, int32_t length) {
  switch (code) {
    case CT_CHAR:
    case CT_CHARU:
    case CT_STRING: return 1;
    case CT_MONEY:
    case CT_DATE:
    case CT_TIME:
    case CT_SFLOAT: return std::max(4, length);
    case CT_BCD: return std::max(10, length);
    case CT_TIMES: return std::max(8, length);
    case CT_PSTRING:
    case CT_2STRING:
    case CT_4STRING:
    case CT_FPSTRING:
    case CT_F2STRING:
    case CT_F4STRING: return PrefixWidth(code);
    default: return length;
  }
}

// Bytes SetField writes, not counting the text after a length prefix.
int32_t WriteSpan(int32_t code, int32_t length) {
  switch (code) {
    case CT_CHAR:
    case CT_CHARU: return 1;
    case CT_MONEY:
    case CT_DATE:
    case CT_TIME:
    case CT_SFLOAT: return 4;
    case CT_BCD: return 10;
    case CT_TIMES: return 8;
    case CT_FPSTRING:
    case CT_F2STRING:
    case CT_F4STRING: return std::max(PrefixWidth(code), length);
    default: return length;
  }
}

uint32_t PrefixValue(const uint8_t* p, int32_t width) {
  uint32_t value = 0;
  std::memcpy(&value, p, static_cast<size_t>(width));  // little-endian prefix
  return value;
}

// A 4-byte float shown with the 7 significant digits it holds: 0.1f reads as 0.1, not as
// 0.100000001490116.
double SingleAsShown(float value) {
  char text[32];
  const auto printed = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 7);
  double shown = value;
  std::from_chars(text, printed.ptr, shown);
  return shown;
}

// Money is a 32-bit count of hundredths, rounded half to even as the framework rounds. A value
// outside that range (or not a number) is refused instead of being clamped to its limit.
bool ToCents(double value, int32_t& cents) {
  const double rounded = std::nearbyint(value * 100.0);
  if (!(rounded >= std::numeric_limits<int32_t>::min() && rounded <= std::numeric_limits<int32_t>::max()))
    return false;
  cents = static_cast<int32_t>(rounded);
  return true;
}

}  // namespace

int32_t TCTConnection::GetField(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer, void* dest,
                                bool& isBlank) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  if (fieldNo < 1 || fieldNo > cursor->FieldCount()) return kFieldOutOfRange;
  if (buffer == nullptr || buffer->RecordPtr() == nullptr)
    throw CTDbIntf::ECtreeException("A Call has been made to " + Name() +
                                    ".GetField routine.  The Record Pointer is nil, and no processing can occur");
  const TCTFieldDesc& field = *cursor->Fields[static_cast<size_t>(fieldNo - 1)];
  const int32_t offset = buffer->GetFieldOffset(fieldNo);
  if (offset < 0 || offset >= buffer->RecordSize()) return kCtOffsetBeyondData;
  const uint8_t* p = buffer->RecordPtr() + offset;
  const int64_t available = buffer->RecordSize() - offset;
  const int32_t code = field.FieldType;
  const int32_t length = std::max(field.Length, 0);
  const int32_t width = PrefixWidth(code);
  if (ReadSpan(code, length) > available) return kCtOffsetBeyondData;
  auto* out = static_cast<uint8_t*>(dest);
  const char empty = FEmptyChar;

  isBlank = false;
  switch (code) {
    // Integers and booleans are never blank: every bit pattern is a value.
    case CT_BOOL:
    case CT_INT2:
    case CT_INT2U:
    case CT_INT4:
    case CT_INT4U:
      if (out != nullptr) std::memcpy(out, p, static_cast<size_t>(length));
      break;
    case CT_CHAR:
    case CT_CHARU:
      isBlank = static_cast<char>(p[0]) == empty;
      if (out != nullptr) out[0] = p[0];
      break;
    case CT_MONEY:
      isBlank = IsBlankBuffer(p, length, empty);
      if (out != nullptr) StoreAt(out, LoadAt<int32_t>(p) / 100.0);
      break;
    case CT_DATE:
      isBlank = IsBlankBuffer(p, length, empty);
      if (out != nullptr) StoreAt(out, isBlank ? LoadAt<int32_t>(p) : LoadAt<int32_t>(p) + kCtDateOffset);
      break;
    case CT_TIME:
      isBlank = IsBlankBuffer(p, length, empty);
      if (out != nullptr) std::memcpy(out, p, 4);
      break;
    case CT_SFLOAT:
      isBlank = IsBlankBuffer(p, length, empty);
      if (out != nullptr) StoreAt(out, SingleAsShown(LoadAt<float>(p)));
      break;
    case CT_BCD:
      isBlank = IsBlankBuffer(p, length, empty);
      if (out != nullptr) {
        fw::TBcd bcd{};
        CTreeBCDtoBDEBCD(p, bcd);
        std::memcpy(out, &bcd, sizeof bcd);
      }
      break;
    case CT_TIMES: {
      // Deliberately not the historic reading, which added the day offset to the millisecond
      // count, so that a time stamp never read back as the value written (2020-01-01 came back
      // as 0320-11-03 00:10:20). The stored layout is unchanged (SetField subtracts the offset
      // from the day); reading adds it back to the day, so every value written comes back as
      // written and files written by other programs read as the dates they hold.
      isBlank = IsBlankBuffer(p, length, empty);
      const int64_t day = int64_t{LoadAt<int32_t>(p)} + (isBlank ? 0 : kCtDateOffset);
      const double msecs = static_cast<double>(day) * kMSecsPerDay + LoadAt<int32_t>(p + 4);
      if (out != nullptr) StoreAt(out, msecs);
      break;
    }
    case CT_FSTRING: {
      isBlank = IsBlankBuffer(p, length, empty);
      if (out != nullptr) {
        const void* end = std::memchr(p, static_cast<unsigned char>(empty), static_cast<size_t>(length));
        const size_t n = end != nullptr ? static_cast<size_t>(static_cast<const uint8_t*>(end) - p)
                                        : static_cast<size_t>(length);
        std::memcpy(out, p, n);
        out[n] = 0;
      }
      break;
    }
    case CT_STRING: isBlank = p[0] == 0; break;
    case CT_PSTRING:
    case CT_2STRING:
    case CT_4STRING: isBlank = PrefixValue(p, width) == 0; break;
    case CT_FPSTRING:
    case CT_F2STRING:
    case CT_F4STRING: {
      // The text after the prefix has length - width bytes, and the caller's buffer room for as
      // many plus a terminator. A prefix claiming more marks a damaged record: reading up to the
      // whole field length, as the historic rule did, would write past the caller's buffer.
      const uint32_t n = PrefixValue(p, width);
      if (n > static_cast<uint32_t>(std::max(length - width, 0))) return kCtRecordCorrupted;
      if (n > available - width) return kCtOffsetBeyondData;
      isBlank = n == 0;
      if (out != nullptr) {
        std::memcpy(out, p + width, n);
        out[n] = 0;
      }
      break;
    }
    default:
      isBlank = IsBlankBuffer(p, length, empty);
      if (out != nullptr) std::memcpy(out, p, static_cast<size_t>(length));
      break;
  }
  return 0;
}

int32_t TCTConnection::SetField(TCTCursorDesc* cursor, int32_t fieldNo, TCTCustomRecordBuffer* buffer,
                                const void* src) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  if (fieldNo < 1 || fieldNo > cursor->FieldCount()) return kFieldOutOfRange;
  if (buffer == nullptr || buffer->RecordPtr() == nullptr) return kCtOffsetBeyondData;
  const TCTFieldDesc& field = *cursor->Fields[static_cast<size_t>(fieldNo - 1)];
  const int32_t offset = buffer->GetFieldOffset(fieldNo);
  if (offset < 0 || offset >= buffer->RecordSize()) return kCtOffsetBeyondData;
  uint8_t* p = buffer->RecordPtr() + offset;
  const int64_t available = buffer->RecordSize() - offset;
  const int32_t code = field.FieldType;
  const int32_t length = std::max(field.Length, 0);
  const int32_t width = PrefixWidth(code);
  if (WriteSpan(code, length) > available) return kCtOffsetBeyondData;
  const auto* in = static_cast<const uint8_t*>(src);
  const auto empty = static_cast<uint8_t>(FEmptyChar);

  switch (code) {
    case CT_CHAR:
    case CT_CHARU: p[0] = in != nullptr ? in[0] : empty; break;
    case CT_MONEY: {
      int32_t cents = 0;
      if (in != nullptr && !ToCents(LoadAt<double>(in), cents)) return kCtValueDoesNotFit;
      StoreAt(p, cents);
      break;
    }
    case CT_DATE: StoreAt(p, in != nullptr ? LoadAt<int32_t>(in) - kCtDateOffset : 0); break;
    case CT_TIME: StoreAt(p, in != nullptr ? LoadAt<int32_t>(in) : 0); break;
    case CT_SFLOAT: StoreAt(p, in != nullptr ? static_cast<float>(LoadAt<double>(in)) : 0.0f); break;
    case CT_BCD:
      if (in != nullptr) {
        fw::TBcd bcd;
        std::memcpy(&bcd, in, sizeof bcd);
        if (!BDEBCDtoCTreeBCD(bcd, p)) return kCtValueDoesNotFit;
      } else {
        std::memset(p, 0, 10);
      }
      break;
    case CT_TIMES: {
      fw::TTimeStamp stamp{0, 0};
      if (in != nullptr) {
        // A value the framework cannot split (negative, too large, not a number) stores day 0
        // and time 0 rather than failing.
        try {
          stamp = fw::MSecsToTimeStamp(std::trunc(LoadAt<double>(in)));
        } catch (const fw::Exception&) {
          stamp = {0, 0};
        }
        if (stamp.Date > 0) stamp.Date -= kCtDateOffset;
      }
      StoreAt(p, stamp.Date);
      StoreAt(p + 4, stamp.Time);
      break;
    }
    case CT_FSTRING: {
      std::memset(p, empty, static_cast<size_t>(length));
      if (in != nullptr)
        std::memcpy(p, in, std::min(std::strlen(reinterpret_cast<const char*>(in)), static_cast<size_t>(length)));
      break;
    }
    case CT_FPSTRING:
    case CT_F2STRING:
    case CT_F4STRING: {
      // The 1-byte form pads with blanks, the wider forms with EmptyChar. The text is cut to the
      // bytes after the prefix, as a fixed string is cut to its field: copying all of it, as the
      // historic rule did, would overwrite the next field and store a prefix that GetField must
      // reject as damaged. The dataset never hands over more than the field size.
      std::memset(p, code == CT_FPSTRING ? ' ' : empty, static_cast<size_t>(length));
      const size_t room = static_cast<size_t>(std::max(length - width, 0));
      const size_t text = in != nullptr ? std::min(std::strlen(reinterpret_cast<const char*>(in)), room) : 0;
      const uint32_t prefix = static_cast<uint32_t>(text);
      std::memcpy(p, &prefix, static_cast<size_t>(width));
      if (text > 0) std::memcpy(p + width, in, text);
      break;
    }
    default:
      std::memset(p, empty, static_cast<size_t>(length));
      if (in != nullptr) std::memcpy(p, in, static_cast<size_t>(length));
      break;
  }
  return 0;
}

}  // namespace Ctdb
