// Field value helpers of the driver: blank test, c-tree day numbers, c-tree BCD (unit Ctdb).
#include <cstring>

#include "Ctdb.h"

namespace Ctdb {
namespace {

// c-tree counts days from 2 March 1700 with a 365.25-day year and a 30.6-day month that starts
// in March; this constant moves the epoch of that count to day 0.
constexpr int64_t kCtEpoch = 621049;
constexpr int kBcdBytes = 10;
constexpr int kMonthLength[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

}  // namespace

bool IsBlankBuffer(const void* buffer, int32_t length, char ch) {
  const auto* bytes = static_cast<const char*>(buffer);
  for (int32_t i = 0; i < length; ++i)
    if (bytes[i] != ch) return false;
  return true;
}

// All divisions truncate toward zero, as the stored day numbers were made that way.
fw::TDateTime CTDateToDateTime(int32_t day) {
  if (day == 0) return 0;
  const int64_t d = day + kCtEpoch;
  int64_t y = (d * 100) / 36525;
  const int64_t t = (y * 36525) / 100;
  const int64_t m = ((d - t) * 10) / 306;
  int64_t dayOfMonth = 0;
  int64_t month = 0;
  if (m >= 4) {
    dayOfMonth = d - t - (m * 306) / 10;
    month = m - 1;
  } else {
    const int64_t t2 = ((y - 1) * 36525) / 100;
    const int64_t m2 = ((d - t2) * 10) / 306;
    dayOfMonth = d - t2 - (m2 * 306) / 10;
    month = m2 - 13;
  }
  if (month < 1) {
    month += 12;
    --y;
  }
  if (dayOfMonth == 0) {
    if (--month < 1) {
      month = 12;
      --y;
    }
    dayOfMonth = kMonthLength[month - 1];  // February always 28, as the count has it
  }
  fw::TDateTime result = 0;
  if (y > 0 && dayOfMonth > 0 && dayOfMonth < 32 && month >= 1 && month <= 12 &&
      fw::TryEncodeDate(static_cast<int>(y), static_cast<int>(month), static_cast<int>(dayOfMonth), result))
    return result;
  return 0;
}

int32_t DateTimeToCtDate(fw::TDateTime date) {
  if (date == 0) return 0;
  int year = 0;
  int month = 0;
  int day = 0;
  fw::DecodeDate(date, year, month, day);
  if (month == 0 || month > 12) return 0;
  if (month < 3) {
    --year;
    month += 13;
  } else {
    ++month;
  }
  return static_cast<int32_t>((int64_t{year} * 36525) / 100 + (month * 306) / 10 + day - kCtEpoch);
}

void CTreeBCDtoBDEBCD(const void* ctBcd, fw::TBcd& bcd) {
  bcd = fw::TBcd{};
  std::memcpy(&bcd, ctBcd, kBcdBytes);
}

// The framework right-aligns a value in as many digits as its precision asks for (CurrToBCD with
// precision 32 puts 12.34 in the last digit bytes), so a plain copy of the first 8 digit bytes
// would keep only leading zeros. The digits are normalised first and then packed from the
// first byte; a value that needs more than 16 digits is refused rather than cut.
bool BDEBCDtoCTreeBCD(const fw::TBcd& bcd, void* ctBcd) {
  constexpr uint8_t kNegative = 0x80;
  constexpr uint8_t kPlacesMask = 0x3F;
  const int precision = bcd.Precision;
  int places = bcd.SignSpecialPlaces & kPlacesMask;
  if (precision > 64) return false;
  uint8_t digits[64];
  for (int k = 0; k < precision; ++k) {
    const uint8_t byte = bcd.Fraction[k / 2];
    digits[k] = k % 2 == 0 ? byte >> 4 : byte & 0x0F;
    if (digits[k] > 9) return false;
  }
  int last = precision;  // one past the last digit kept
  while (places > 0 && last > 0 && digits[last - 1] == 0) {
    --last;
    --places;
  }
  // Leading zeros go too, fraction ones included: 0.05 keeps the one digit 5 with 2 places (the
  // framework reads places beyond the precision as leading fraction zeros).
  int first = 0;
  while (first < last && digits[first] == 0) ++first;
  const int count = last - first;
  if (count > kCtBcdDigits) return false;

  uint8_t out[kBcdBytes] = {};
  for (int k = 0; k < count; ++k) {
    const uint8_t digit = digits[first + k];
    out[2 + k / 2] |= static_cast<uint8_t>(k % 2 == 0 ? digit << 4 : digit);
  }
  if (count == 0) {
    out[0] = 1;  // zero: one digit, no places, no sign
  } else {
    out[0] = static_cast<uint8_t>(count);
    out[1] = static_cast<uint8_t>(places | ((bcd.SignSpecialPlaces & kNegative) != 0 ? kNegative : 0));
  }
  std::memcpy(ctBcd, out, kBcdBytes);
  return true;
}

}  // namespace Ctdb
