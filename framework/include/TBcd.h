// TBcd: the framework's 34-byte binary-coded decimal and its conversions (framework layer).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "SystemTypes.h"

namespace fw {

#pragma pack(push, 1)
/// Byte 0: Precision, the number of digits stored (0..64). Byte 1: bit 7 = negative, bit 6 =
/// special (unused, 0), bits 0..5 = Places (digits after the decimal point). Bytes 2..33: the
/// digits, two per byte, high nibble first; digit k is in Fraction[k / 2], high nibble when k is
/// even. Value = (the Precision digits as an integer) / 10^Places, negated when the sign bit is
/// set. Places may exceed Precision (missing leading fraction digits are zeros). Nibbles after
/// the last digit are ignored. All bytes zero is the null BCD. The same value has many
/// encodings: compare with BCDCompare, never bytewise.
struct TBcd {
  uint8_t Precision;
  uint8_t SignSpecialPlaces;
  uint8_t Fraction[32];
};
#pragma pack(pop)
static_assert(sizeof(TBcd) == 34, "TBcd is a packed 34-byte record");

inline constexpr TBcd NullBcd{};

/// Currency to exactly `precision` digits (1..64), `decimals` of them after the point
/// (0..min(precision, 63)), right-aligned and left-padded with zeros; fewer than 4 decimals
/// round half to even, more append zeros. The whole record is zeroed first. Returns false when
/// the integer part needs more than precision - decimals digits or the arguments are out of
/// range (the record content is then unspecified).
bool CurrToBCD(Currency curr, TBcd& bcd, int precision = 32, int decimals = 4);
/// The framework's older name of CurrToBCD; same parameters and result.
bool CurrToFMTBCD(Currency curr, TBcd& bcd, int precision = 32, int decimals = 4);
/// Value to Currency, decimals beyond 4 rounded half to even. False (curr unchanged) when
/// Precision is 0, the record is malformed (Precision > 64, a digit nibble > 9) or the value is
/// outside the Currency range.
bool BCDToCurr(const TBcd& bcd, Currency& curr);

/// Optional blanks and sign, digits with FormatSettings.DecimalSeparator, optional exponent.
/// Result normalized: no leading integer zeros, no trailing fraction zeros ("0.001" ->
/// precision 3, places 3; "1.10" -> 2, 1); zero is precision 1, places 0. Raises
/// EConvertError on bad text or more than 64 digits / 63 places.
TBcd StrToBCD(std::string_view s);
bool TryStrToBCD(std::string_view s, TBcd& bcd);
/// Optional "-", integer digits without leading zeros (at least "0"), then, when Places > 0,
/// FormatSettings.DecimalSeparator and the fraction digits as stored (trailing zeros kept).
/// Zero prints without sign. Raises EConvertError on a malformed record.
std::string BCDToStr(const TBcd& bcd);

/// Through text: exact for values a double holds to 15 significant digits. DoubleToBCD raises
/// EConvertError for NaN and infinities.
double BCDToDouble(const TBcd& bcd);
TBcd DoubleToBCD(double value);
inline double BcdToDouble(const TBcd& bcd) { return BCDToDouble(bcd); }
inline TBcd DoubleToBcd(double value) { return DoubleToBCD(value); }

/// -1, 0, 1 comparing values (any encodings; null BCD and negative zero equal zero). Raises
/// EConvertError on a malformed record.
int BCDCompare(const TBcd& a, const TBcd& b);
/// Re-encodes `in` with exactly `precision` digits and `places` decimals. Dropped fraction
/// digits are truncated; returns false when a non-zero digit was dropped or the integer part
/// does not fit (`out` then holds the truncated value, or is unspecified when it does not fit).
bool NormalizeBCD(const TBcd& in, TBcd& out, int precision, int places);
/// Significant digits: integer digits without leading zeros plus Places.
int BCDPrecision(const TBcd& bcd);
/// Places.
int BCDScale(const TBcd& bcd);
/// Sign bit set and value non-zero.
bool IsBCDNegative(const TBcd& bcd);

}  // namespace fw
