// FloatToStrF and FormatFloat: floating-point values as text.
//
// Digits are taken from the correctly rounded 17-digit decimal form of the double and then
// rounded half away from zero, as the framework's float-to-text conversion does (2.5 with no
// decimals prints "3", unlike printf's binary rounding).
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "DecimalDigits.h"
#include "FormatSettings.h"
#include "StringUtils.h"

namespace fw {

namespace {

std::string NonFinite(double v) {
  if (std::isnan(v)) return "NAN";
  return v < 0 ? "-INF" : "INF";
}

// Digit `i` of `d` (0-based from the first significant digit), '0' beyond the stored ones.
char DigitAt(const DecimalDigits& d, int i) {
  return i >= 0 && i < static_cast<int>(d.Digits.size()) ? d.Digits[i] : '0';
}

std::string Group(const std::string& intPart) {
  if (FormatSettings.ThousandSeparator == '\0') return intPart;
  std::string out;
  const int n = static_cast<int>(intPart.size());
  for (int i = 0; i < n; ++i) {
    if (i > 0 && (n - i) % 3 == 0) out += FormatSettings.ThousandSeparator;
    out += intPart[i];
  }
  return out;
}

// Integer and fraction digits of a rounded value: `decimals` fraction digits exactly.
void SplitFixed(const DecimalDigits& d, int decimals, std::string& intPart, std::string& frac) {
  intPart.clear();
  for (int i = 0; i < d.Exp; ++i) intPart += DigitAt(d, i);
  if (intPart.empty()) intPart = "0";
  frac.clear();
  for (int i = 0; i < decimals; ++i) frac += DigitAt(d, d.Exp + i);
}

std::string ExponentText(int e, bool alwaysSign, int minDigits) {
  std::string digits = std::to_string(std::abs(e));
  if (static_cast<int>(digits.size()) < minDigits) digits.insert(0, minDigits - digits.size(), '0');
  if (e < 0) return "-" + digits;
  return alwaysSign ? "+" + digits : digits;
}

std::string Scientific(const DecimalDigits& d, int mantissaDigits, bool stripZeros, bool alwaysSign, int minExp) {
  std::string m(1, DigitAt(d, 0));
  std::string frac;
  for (int i = 1; i < mantissaDigits; ++i) frac += DigitAt(d, i);
  if (stripZeros)
    while (!frac.empty() && frac.back() == '0') frac.pop_back();
  if (!frac.empty()) m += FormatSettings.DecimalSeparator + frac;
  const int e = d.Digits.empty() ? 0 : d.Exp - 1;
  return (d.Negative ? "-" : "") + m + "E" + ExponentText(e, alwaysSign, minExp);
}

}  // namespace

std::string FloatToStrF(double value, TFloatFormat format, int precision, int digits) {
  if (!std::isfinite(value)) return NonFinite(value);
  precision = std::clamp(precision, 1, 18);
  DecimalDigits d = DoubleToDigits(value);
  switch (format) {
    case ffExponent: {
      RoundDigits(d, precision, false);
      return Scientific(d, precision, false, true, std::clamp(digits, 0, 4));
    }
    case ffFixed:
    case ffNumber:
    case ffCurrency: {
      if (d.Exp > precision) return FloatToStrF(value, ffGeneral, precision, 0);
      digits = std::clamp(digits, 0, 18);
      RoundDigits(d, std::min(precision, d.Exp + digits), false);
      std::string intPart, frac;
      SplitFixed(d, digits, intPart, frac);
      if (format != ffFixed) intPart = Group(intPart);
      std::string out = (d.Negative ? "-" : "") + intPart;
      if (digits > 0) out += FormatSettings.DecimalSeparator + frac;
      return out;
    }
    case ffGeneral:
    default: {
      RoundDigits(d, precision, false);
      if (d.Digits.empty()) return "0";
      if (d.Exp > precision || d.Exp < -3) return Scientific(d, precision, true, false, digits);
      std::string intPart, frac;
      SplitFixed(d, std::max(0, static_cast<int>(d.Digits.size()) - d.Exp), intPart, frac);
      std::string out = (d.Negative ? "-" : "") + intPart;
      if (!frac.empty()) out += FormatSettings.DecimalSeparator + frac;
      return out;
    }
  }
}

namespace {

// One section of a FormatFloat pattern, analysed.
struct Pattern {
  std::string Prefix, Suffix;  // literal text before the first and after the last placeholder
  int IntZeros = 0;            // '0' placeholders before the decimal point (minimum digits)
  int MinDecimals = 0;         // '0' after the point
  int MaxDecimals = 0;         // '0' and '#' after the point
  bool Grouping = false;
  bool HasExponent = false;
  bool ExpAlwaysSign = false;
  int ExpDigits = 0;
};

Pattern Analyse(std::string_view s) {
  Pattern p;
  bool seenPlaceholder = false, afterPoint = false, done = false;
  for (std::size_t i = 0; i < s.size(); ++i) {
    const char c = s[i];
    std::string literal;
    if (c == '\'' || c == '"') {
      const std::size_t end = s.find(c, i + 1);
      literal = std::string(s.substr(i + 1, end == std::string_view::npos ? end : end - i - 1));
      i = end == std::string_view::npos ? s.size() : end;
    } else if (!done && (c == '0' || c == '#')) {
      seenPlaceholder = true;
      if (afterPoint) {
        ++p.MaxDecimals;
        if (c == '0') p.MinDecimals = p.MaxDecimals;
      } else if (c == '0') {
        ++p.IntZeros;
      }
      continue;
    } else if (!done && c == '.') {
      afterPoint = seenPlaceholder = true;
      continue;
    } else if (!done && c == ',') {
      p.Grouping = true;
      continue;
    } else if (!done && seenPlaceholder && (c == 'E' || c == 'e') && i + 1 < s.size() &&
               (s[i + 1] == '+' || s[i + 1] == '-')) {
      p.HasExponent = true;
      p.ExpAlwaysSign = s[i + 1] == '+';
      i += 2;
      while (i < s.size() && s[i] == '0') ++p.ExpDigits, ++i;
      --i;
      done = true;
      continue;
    } else {
      literal = std::string(1, c);
    }
    if (seenPlaceholder) {
      done = true;
      p.Suffix += literal;
    } else {
      p.Prefix += literal;
    }
  }
  return p;
}

std::string ApplyPattern(const Pattern& p, double value, bool withSign) {
  DecimalDigits d = DoubleToDigits(value);
  std::string body;
  if (p.HasExponent) {
    const int intDigits = std::max(1, p.IntZeros);
    RoundDigits(d, intDigits + p.MaxDecimals, false);
    const int e = d.Digits.empty() ? 0 : d.Exp - intDigits;
    DecimalDigits m = d;
    m.Exp = d.Digits.empty() ? 0 : intDigits;
    std::string intPart, frac;
    SplitFixed(m, p.MaxDecimals, intPart, frac);
    while (static_cast<int>(frac.size()) > p.MinDecimals && frac.back() == '0') frac.pop_back();
    body = intPart + (frac.empty() ? "" : std::string(1, FormatSettings.DecimalSeparator) + frac) + "E" +
           ExponentText(e, p.ExpAlwaysSign, p.ExpDigits);
  } else {
    RoundDigits(d, d.Exp + p.MaxDecimals, false);
    std::string intPart, frac;
    SplitFixed(d, p.MaxDecimals, intPart, frac);
    if (intPart == "0" && p.IntZeros == 0) intPart.clear();
    if (static_cast<int>(intPart.size()) < p.IntZeros) intPart.insert(0, p.IntZeros - intPart.size(), '0');
    if (p.Grouping) intPart = Group(intPart);
    while (static_cast<int>(frac.size()) > p.MinDecimals && frac.back() == '0') frac.pop_back();
    body = intPart + (frac.empty() ? "" : std::string(1, FormatSettings.DecimalSeparator) + frac);
  }
  const bool neg = withSign && d.Negative;
  return p.Prefix + (neg ? "-" : "") + body + p.Suffix;
}

}  // namespace

std::string FormatFloat(std::string_view pattern, double value) {
  if (!std::isfinite(value)) return NonFinite(value);
  if (pattern.empty()) return FloatToStr(value);
  std::vector<std::string_view> sections;
  std::size_t start = 0;
  char quote = 0;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == ';' && sections.size() < 2) {
      sections.push_back(pattern.substr(start, i - start));
      start = i + 1;
    }
  }
  sections.push_back(pattern.substr(start));
  if (value == 0 && sections.size() == 3 && !sections[2].empty())
    return ApplyPattern(Analyse(sections[2]), value, false);
  if (value < 0 && sections.size() >= 2 && !sections[1].empty())
    return ApplyPattern(Analyse(sections[1]), -value, false);
  return ApplyPattern(Analyse(sections[0]), value, true);
}

}  // namespace fw
