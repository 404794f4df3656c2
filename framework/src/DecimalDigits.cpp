// Decimal digit strings: the exact decimal form of text and doubles, and digit rounding.
#include "DecimalDigits.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace fw {

namespace {

void Normalize(DecimalDigits& d) {
  std::size_t lead = 0;
  while (lead < d.Digits.size() && d.Digits[lead] == '0') ++lead;
  d.Digits.erase(0, lead);
  d.Exp -= static_cast<int>(lead);
  while (!d.Digits.empty() && d.Digits.back() == '0') d.Digits.pop_back();
  if (d.Digits.empty()) {
    d.Exp = 0;
    d.Negative = false;
  }
}

}  // namespace

bool ParseDecimalDigits(std::string_view s, char decimalSeparator, DecimalDigits& out) {
  DecimalDigits d;
  std::size_t i = 0;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) d.Negative = s[i++] == '-';
  int intDigits = 0;
  int mantissaDigits = 0;
  while (i < s.size() && s[i] >= '0' && s[i] <= '9') d.Digits += s[i++], ++intDigits, ++mantissaDigits;
  if (i < s.size() && s[i] == decimalSeparator) {
    ++i;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') d.Digits += s[i++], ++mantissaDigits;
  }
  if (mantissaDigits == 0) return false;
  int exponent = 0;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    ++i;
    bool negExp = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) negExp = s[i++] == '-';
    int expDigits = 0;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') {
      if (exponent > 100000) return false;
      exponent = exponent * 10 + (s[i++] - '0');
      ++expDigits;
    }
    if (expDigits == 0) return false;
    if (negExp) exponent = -exponent;
  }
  if (i != s.size()) return false;
  d.Exp = intDigits + exponent;
  Normalize(d);
  out = d;
  return true;
}

DecimalDigits DoubleToDigits(double v) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.16e", v);  // d.dddddddddddddddde[+-]xx: 17 significant digits
  DecimalDigits d;
  const char* p = buf;
  if (*p == '-') {
    d.Negative = true;
    ++p;
  }
  for (; *p != 'e'; ++p)
    if (*p != '.') d.Digits += *p;
  d.Exp = std::atoi(p + 1) + 1;
  Normalize(d);
  return d;
}

void RoundDigits(DecimalDigits& d, int count, bool halfEven) {
  const int size = static_cast<int>(d.Digits.size());
  if (count >= size) return;
  if (count < 0) {
    d = DecimalDigits{};
    return;
  }
  const char first = d.Digits[count];
  bool restNonZero = false;
  for (int i = count + 1; i < size; ++i) restNonZero = restNonZero || d.Digits[i] != '0';
  const bool prevOdd = count > 0 && ((d.Digits[count - 1] - '0') % 2) != 0;
  const bool up = first > '5' || (first == '5' && (restNonZero || !halfEven || prevOdd));
  d.Digits.resize(count);
  if (up) {
    int i = count - 1;
    while (i >= 0 && d.Digits[i] == '9') d.Digits[i--] = '0';
    if (i >= 0) {
      ++d.Digits[i];
    } else {
      d.Digits.insert(d.Digits.begin(), '1');
      ++d.Exp;
    }
  }
  Normalize(d);
}

bool DigitsToCurrency(DecimalDigits d, long long& value) {
  RoundDigits(d, d.Exp + 4, true);
  if (d.Digits.empty()) {
    value = 0;
    return true;
  }
  const int total = d.Exp + 4;  // digits of value x 10000
  if (total > 19) return false;
  unsigned __int128 acc = 0;
  for (int i = 0; i < total; ++i) acc = acc * 10 + (i < static_cast<int>(d.Digits.size()) ? d.Digits[i] - '0' : 0);
  const unsigned __int128 limit = static_cast<unsigned __int128>(INT64_MAX) + (d.Negative ? 1 : 0);
  if (acc > limit) return false;
  value = d.Negative ? static_cast<long long>(0 - static_cast<unsigned long long>(acc)) : static_cast<long long>(acc);
  return true;
}

}  // namespace fw
