// TBcd: encoding, decoding and conversions of the 34-byte BCD record.
#include "TBcd.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "DecimalDigits.h"
#include "Exception.h"
#include "FormatSettings.h"
#include "StringUtils.h"

namespace fw {

namespace {

constexpr uint8_t kSignBit = 0x80;
constexpr uint8_t kPlacesMask = 0x3F;

int Places(const TBcd& b) { return b.SignSpecialPlaces & kPlacesMask; }

// The Precision digits as text; false on a malformed record.
bool StoredDigits(const TBcd& b, std::string& out) {
  if (b.Precision > 64) return false;
  out.clear();
  for (int k = 0; k < b.Precision; ++k) {
    const uint8_t byte = b.Fraction[k / 2];
    const int digit = k % 2 == 0 ? byte >> 4 : byte & 0x0F;
    if (digit > 9) return false;
    out += static_cast<char>('0' + digit);
  }
  return true;
}

bool ToDigits(const TBcd& b, DecimalDigits& d) {
  std::string digits;
  if (!StoredDigits(b, digits)) return false;
  d.Negative = (b.SignSpecialPlaces & kSignBit) != 0;
  d.Digits = digits;
  d.Exp = b.Precision - Places(b);
  // Normalize: drop leading and trailing zeros; zero loses its sign.
  std::size_t lead = 0;
  while (lead < d.Digits.size() && d.Digits[lead] == '0') ++lead;
  d.Digits.erase(0, lead);
  d.Exp -= static_cast<int>(lead);
  while (!d.Digits.empty() && d.Digits.back() == '0') d.Digits.pop_back();
  if (d.Digits.empty()) d = DecimalDigits{};
  return true;
}

DecimalDigits DigitsOrRaise(const TBcd& b) {
  DecimalDigits d;
  if (!ToDigits(b, d)) throw EConvertError("Invalid BCD value");
  return d;
}

// Writes `digits` (exactly `precision` of them) into a zeroed record.
void Store(TBcd& b, const std::string& digits, int places, bool negative) {
  std::memset(&b, 0, sizeof b);
  b.Precision = static_cast<uint8_t>(digits.size());
  b.SignSpecialPlaces = static_cast<uint8_t>(places) | (negative ? kSignBit : 0);
  for (std::size_t k = 0; k < digits.size(); ++k) {
    const uint8_t digit = static_cast<uint8_t>(digits[k] - '0');
    b.Fraction[k / 2] |= k % 2 == 0 ? static_cast<uint8_t>(digit << 4) : digit;
  }
}

// `d` right-aligned into exactly `precision` digits with `places` decimals, the dropped digits
// truncated. False when the integer part does not fit; `lost` tells whether a non-zero digit
// was dropped.
bool Encode(const DecimalDigits& d, TBcd& out, int precision, int places, bool& lost) {
  if (precision < 1 || precision > 64 || places < 0 || places > 63 || places > precision) return false;
  const int intDigits = precision - places;
  if (!d.Digits.empty() && d.Exp > intDigits) return false;
  std::string digits;
  for (int i = 0; i < precision; ++i) {
    const int pos = d.Exp - intDigits + i;  // index into d.Digits
    digits += pos >= 0 && pos < static_cast<int>(d.Digits.size()) ? d.Digits[pos] : '0';
  }
  lost = static_cast<int>(d.Digits.size()) > d.Exp + places;
  Store(out, digits, places, d.Negative);
  return true;
}

}  // namespace

bool CurrToBCD(Currency curr, TBcd& bcd, int precision, int decimals) {
  if (precision < 1 || precision > 64 || decimals < 0 || decimals > 63 || decimals > precision) return false;
  DecimalDigits d;
  ParseDecimalDigits(std::to_string(curr), '.', d);
  d.Exp -= 4;  // curr counts ten-thousandths
  RoundDigits(d, d.Exp + decimals, true);
  bool lost;
  return Encode(d, bcd, precision, decimals, lost);
}

bool CurrToFMTBCD(Currency curr, TBcd& bcd, int precision, int decimals) {
  return CurrToBCD(curr, bcd, precision, decimals);
}

bool BCDToCurr(const TBcd& bcd, Currency& curr) {
  DecimalDigits d;
  long long v;
  if (bcd.Precision == 0 || !ToDigits(bcd, d) || !DigitsToCurrency(d, v)) return false;
  curr = v;
  return true;
}

bool TryStrToBCD(std::string_view s, TBcd& bcd) {
  DecimalDigits d;
  if (!ParseDecimalDigits(Trim(s), FormatSettings.DecimalSeparator, d)) return false;
  if (d.Digits.empty()) {
    Store(bcd, "0", 0, false);
    return true;
  }
  const int places = std::max(0, static_cast<int>(d.Digits.size()) - d.Exp);
  const int intDigits = std::max(0, d.Exp);
  bool lost;
  return intDigits + places <= 64 && places <= 63 && Encode(d, bcd, intDigits + places, places, lost);
}

TBcd StrToBCD(std::string_view s) {
  TBcd bcd;
  if (!TryStrToBCD(s, bcd)) throw EConvertError("'" + std::string(s) + "' is not a valid BCD value");
  return bcd;
}

std::string BCDToStr(const TBcd& bcd) {
  std::string digits;
  if (!StoredDigits(bcd, digits)) throw EConvertError("Invalid BCD value");
  const int places = Places(bcd);
  if (places > static_cast<int>(digits.size())) digits.insert(0, places - digits.size(), '0');
  std::string intPart = digits.substr(0, digits.size() - places);
  const std::string frac = digits.substr(digits.size() - places);
  const std::size_t firstNonZero = intPart.find_first_not_of('0');
  intPart = firstNonZero == std::string::npos ? "0" : intPart.substr(firstNonZero);
  const bool zero = digits.find_first_not_of('0') == std::string::npos;
  std::string out = (bcd.SignSpecialPlaces & kSignBit) != 0 && !zero ? "-" : "";
  out += intPart;
  if (places > 0) out += FormatSettings.DecimalSeparator + frac;
  return out;
}

double BCDToDouble(const TBcd& bcd) {
  const DecimalDigits d = DigitsOrRaise(bcd);
  if (d.Digits.empty()) return 0;
  const std::string text = (d.Negative ? "-0." : "0.") + d.Digits + "e" + std::to_string(d.Exp);
  return std::strtod(text.c_str(), nullptr);
}

TBcd DoubleToBCD(double value) {
  if (!std::isfinite(value)) throw EConvertError("Cannot convert a non-finite value to BCD");
  DecimalDigits d = DoubleToDigits(value);
  RoundDigits(d, 15, false);
  TBcd bcd;
  const int places = std::max(0, static_cast<int>(d.Digits.size()) - d.Exp);
  const int intDigits = std::max(0, d.Exp);
  bool lost;
  if (d.Digits.empty()) Store(bcd, "0", 0, false);
  else if (intDigits + places > 64 || places > 63 || !Encode(d, bcd, intDigits + places, places, lost))
    throw EConvertError("Value " + FloatToStr(value) + " does not fit a BCD");
  return bcd;
}

int BCDCompare(const TBcd& a, const TBcd& b) {
  const DecimalDigits x = DigitsOrRaise(a);
  const DecimalDigits y = DigitsOrRaise(b);
  const int sx = x.Digits.empty() ? 0 : (x.Negative ? -1 : 1);
  const int sy = y.Digits.empty() ? 0 : (y.Negative ? -1 : 1);
  if (sx != sy) return sx < sy ? -1 : 1;
  if (sx == 0) return 0;
  int mag = 0;
  if (x.Exp != y.Exp) {
    mag = x.Exp < y.Exp ? -1 : 1;
  } else {
    const int c = x.Digits.compare(y.Digits);
    mag = c < 0 ? -1 : (c > 0 ? 1 : 0);
  }
  return sx * mag;
}

bool NormalizeBCD(const TBcd& in, TBcd& out, int precision, int places) {
  DecimalDigits d;
  if (!ToDigits(in, d)) return false;
  bool lost = false;
  if (!Encode(d, out, precision, places, lost)) return false;
  return !lost;
}

int BCDPrecision(const TBcd& bcd) {
  const DecimalDigits d = DigitsOrRaise(bcd);
  return std::max(0, d.Exp) + Places(bcd);
}

int BCDScale(const TBcd& bcd) { return Places(bcd); }

bool IsBCDNegative(const TBcd& bcd) {
  DecimalDigits d;
  return ToDigits(bcd, d) && d.Negative && !d.Digits.empty();
}

}  // namespace fw
