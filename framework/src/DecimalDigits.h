// Decimal digit strings: the exact decimal form of text and doubles, and digit rounding.
#pragma once

#include <string>
#include <string_view>

namespace fw {

/// A decimal number as significant digits: value = 0.Digits x 10^Exp, negated when Negative.
/// Digits has no leading zeros; an empty Digits is zero.
struct DecimalDigits {
  bool Negative = false;
  std::string Digits;
  int Exp = 0;
};

/// Parses "[sign] digits [sep digits] [(e|E) [sign] digits]" (no blanks, at least one mantissa
/// digit) exactly. False on anything else or an exponent beyond +-100000.
bool ParseDecimalDigits(std::string_view s, char decimalSeparator, DecimalDigits& out);
/// The finite double `v` to 17 significant digits (correctly rounded), trailing zeros dropped.
DecimalDigits DoubleToDigits(double v);
/// Keeps the first `count` digits (count may be zero or negative: the value then rounds to zero
/// or to one unit at position `count`), rounding the dropped part half to even (`halfEven`) or
/// half away from zero; a carry may raise Exp. Trailing zeros are dropped; zero loses its sign.
void RoundDigits(DecimalDigits& d, int count, bool halfEven);

/// The value rounded half to even to 4 decimals as Currency (value x 10000); false when it is
/// outside the Currency range.
bool DigitsToCurrency(DecimalDigits d, long long& value);

}  // namespace fw
