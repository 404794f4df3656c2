// Integers, floats, Currency and booleans as text, both ways.
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "Exception.h"
#include "FormatSettings.h"
#include "StringUtils.h"
#include "DecimalDigits.h"

namespace fw {

TFormatSettings FormatSettings;

namespace {

std::string_view StripBlanks(std::string_view s) {
  while (!s.empty() && static_cast<unsigned char>(s.front()) <= ' ') s.remove_prefix(1);
  while (!s.empty() && static_cast<unsigned char>(s.back()) <= ' ') s.remove_suffix(1);
  return s;
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Parses the whole text as an integer of magnitude at most `limit` for positives (limit + 1
// for negatives), decimal or hexadecimal after "$"/"0x".
bool ParseInt(std::string_view text, uint64_t limit, int64_t& out) {
  std::string_view s = StripBlanks(text);
  bool neg = false;
  if (!s.empty() && (s[0] == '+' || s[0] == '-')) {
    neg = s[0] == '-';
    s.remove_prefix(1);
  }
  int base = 10;
  if (!s.empty() && s[0] == '$') {
    base = 16;
    s.remove_prefix(1);
  } else if (s.size() > 1 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) {
    base = 16;
    s.remove_prefix(2);
  }
  if (s.empty()) return false;
  uint64_t v = 0;
  const uint64_t max = neg ? limit + 1 : limit;
  for (char c : s) {
    const int d = base == 10 ? (c >= '0' && c <= '9' ? c - '0' : -1) : HexValue(c);
    if (d < 0) return false;
    if (v > (max - d) / base) return false;
    v = v * base + d;
  }
  out = neg ? static_cast<int64_t>(0 - v) : static_cast<int64_t>(v);
  return true;
}

[[noreturn]] void NotInteger(std::string_view s) {
  throw EConvertError("'" + std::string(s) + "' is not a valid integer value");
}

}  // namespace

std::string IntToStr(int64_t value) { return std::to_string(value); }

std::string IntToHex(int64_t value, int digits) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%llX", static_cast<unsigned long long>(value));
  std::string s(buf);
  if (static_cast<int>(s.size()) < digits) s.insert(0, digits - s.size(), '0');
  return s;
}

bool TryStrToInt64(std::string_view s, int64_t& value) {
  return ParseInt(s, static_cast<uint64_t>(std::numeric_limits<int64_t>::max()), value);
}

bool TryStrToInt(std::string_view s, int32_t& value) {
  int64_t v;
  if (!ParseInt(s, static_cast<uint64_t>(std::numeric_limits<int32_t>::max()), v)) return false;
  value = static_cast<int32_t>(v);
  return true;
}

int32_t StrToInt(std::string_view s) {
  int32_t v;
  if (!TryStrToInt(s, v)) NotInteger(s);
  return v;
}

int64_t StrToInt64(std::string_view s) {
  int64_t v;
  if (!TryStrToInt64(s, v)) NotInteger(s);
  return v;
}

int32_t StrToIntDef(std::string_view s, int32_t def) {
  int32_t v;
  return TryStrToInt(s, v) ? v : def;
}

bool TryStrToFloat(std::string_view text, double& value) {
  const std::string_view s = StripBlanks(text);
  // Accept: [sign] digits [sep digits] [(e|E) [sign] digits], at least one mantissa digit.
  std::string canon;
  std::size_t i = 0;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) canon += s[i++];
  int mantissaDigits = 0;
  while (i < s.size() && s[i] >= '0' && s[i] <= '9') canon += s[i++], ++mantissaDigits;
  if (i < s.size() && s[i] == FormatSettings.DecimalSeparator) {
    canon += '.';
    ++i;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') canon += s[i++], ++mantissaDigits;
  }
  if (mantissaDigits == 0) return false;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    canon += 'e';
    ++i;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) canon += s[i++];
    int expDigits = 0;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') canon += s[i++], ++expDigits;
    if (expDigits == 0) return false;
  }
  if (i != s.size()) return false;
  errno = 0;
  const double v = std::strtod(canon.c_str(), nullptr);
  if (errno == ERANGE && std::isinf(v)) return false;
  value = v;
  return true;
}

double StrToFloat(std::string_view s) {
  double v;
  if (!TryStrToFloat(s, v)) throw EConvertError("'" + std::string(s) + "' is not a valid floating point value");
  return v;
}

double StrToFloatDef(std::string_view s, double def) {
  double v;
  return TryStrToFloat(s, v) ? v : def;
}

std::string FloatToStr(double value) { return FloatToStrF(value, ffGeneral, 15, 0); }

std::string CurrToStr(Currency value) {
  const bool neg = value < 0;
  const uint64_t mag = neg ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
  std::string s = std::to_string(mag / kCurrencyScale);
  uint64_t frac = mag % kCurrencyScale;
  if (frac != 0) {
    std::string f = std::to_string(frac);
    f.insert(0, 4 - f.size(), '0');
    while (f.back() == '0') f.pop_back();
    s += FormatSettings.DecimalSeparator;
    s += f;
  }
  return neg ? "-" + s : s;
}

bool TryStrToCurr(std::string_view text, Currency& value) {
  DecimalDigits d;
  long long v;
  if (!ParseDecimalDigits(StripBlanks(text), FormatSettings.DecimalSeparator, d) || !DigitsToCurrency(d, v)) return false;
  value = v;
  return true;
}

Currency StrToCurr(std::string_view s) {
  Currency c;
  if (!TryStrToCurr(s, c)) throw EConvertError("'" + std::string(s) + "' is not a valid currency value");
  return c;
}

Currency DoubleToCurr(double value) {
  const double scaled = std::nearbyint(value * static_cast<double>(kCurrencyScale));
  if (!std::isfinite(scaled) || scaled >= 9223372036854775808.0 || scaled < -9223372036854775808.0)
    throw EConvertError("Floating point value out of Currency range");
  return static_cast<Currency>(scaled);
}

double CurrToDouble(Currency value) { return static_cast<double>(value) / static_cast<double>(kCurrencyScale); }

std::string BoolToStr(bool value, bool useBoolStrs) {
  if (useBoolStrs) return value ? "True" : "False";
  return value ? "-1" : "0";
}

bool TryStrToBool(std::string_view text, bool& value) {
  const std::string_view s = StripBlanks(text);
  if (SameText(s, "True")) {
    value = true;
    return true;
  }
  if (SameText(s, "False")) {
    value = false;
    return true;
  }
  double d;
  if (!TryStrToFloat(s, d)) return false;
  value = d != 0;
  return true;
}

bool StrToBool(std::string_view s) {
  bool b;
  if (!TryStrToBool(s, b)) throw EConvertError("'" + std::string(s) + "' is not a valid boolean value");
  return b;
}

}  // namespace fw
