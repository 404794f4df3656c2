// Format: the framework's printf-like formatting over an open array of variants.
#include <cstdint>
#include <vector>

#include "Exception.h"
#include "StringUtils.h"

namespace fw {

namespace {

[[noreturn]] void Invalid(std::string_view fmt) {
  throw EConvertError("Format '" + std::string(fmt) + "' invalid or incompatible with argument");
}

bool IsIntegral(const Variant& v) {
  switch (v.Type()) {
    case varSmallint: case varInteger: case varShortInt: case varByte: case varWord:
    case varLongWord: case varInt64: case varBoolean:
      return true;
    default:
      return false;
  }
}

class Formatter {
 public:
  Formatter(std::string_view fmt, std::initializer_list<Variant> args) : FFmt(fmt), FArgs(args) {}

  std::string Run() {
    std::string out;
    std::size_t i = 0;
    while (i < FFmt.size()) {
      const char c = FFmt[i++];
      if (c != '%') {
        out += c;
        continue;
      }
      if (i < FFmt.size() && FFmt[i] == '%') {
        out += '%';
        ++i;
        continue;
      }
      out += Specifier(i);
    }
    return out;
  }

 private:
  // Reads a number or '*' at position i; -1 when there is none.
  int Number(std::size_t& i) {
    if (i < FFmt.size() && FFmt[i] == '*') {
      ++i;
      return static_cast<int>(Next().AsInt64());
    }
    int n = -1;
    while (i < FFmt.size() && FFmt[i] >= '0' && FFmt[i] <= '9') {
      n = (n < 0 ? 0 : n) * 10 + (FFmt[i++] - '0');
      if (n > 100000) Invalid(FFmt);
    }
    return n;
  }

  const Variant& Next() {
    if (FNext >= FArgs.size()) Invalid(FFmt);
    const Variant& v = FArgs.begin()[FNext++];
    if (v.IsNull() || v.IsArray()) Invalid(FFmt);
    return v;
  }

  std::string Specifier(std::size_t& i) {
    // An argument index "n:" (digits only, so that a '*' width is not consumed here).
    std::size_t j = i;
    int index = 0;
    while (j < FFmt.size() && FFmt[j] >= '0' && FFmt[j] <= '9' && index < 100000) index = index * 10 + (FFmt[j++] - '0');
    if (j > i && j < FFmt.size() && FFmt[j] == ':') {
      FNext = static_cast<std::size_t>(index);
      i = j + 1;
    }
    bool left = false;
    if (i < FFmt.size() && FFmt[i] == '-') {
      left = true;
      ++i;
    }
    const int width = Number(i);
    int prec = -1;
    if (i < FFmt.size() && FFmt[i] == '.') {
      ++i;
      prec = Number(i);
      if (prec < 0) prec = 0;
    }
    if (i >= FFmt.size()) Invalid(FFmt);
    const char type = FFmt[i++];
    const Variant& arg = Next();
    std::string s;
    switch (type) {
      case 'd': case 'D': case 'u': case 'U': case 'x': case 'X': {
        if (!IsIntegral(arg)) Invalid(FFmt);
        int64_t n = arg.AsInt64();
        const bool neg = (type == 'd' || type == 'D') && n < 0;
        if (type == 'u' || type == 'U') n = n < 0 ? static_cast<int64_t>(static_cast<uint32_t>(n)) : n;
        if (type == 'x' || type == 'X') {
          s = IntToHex(n, 0);
          if (n < 0 && arg.Type() != varInt64) s = s.substr(8);
        } else {
          s = neg ? IntToStr(n).substr(1) : IntToStr(n);
        }
        if (prec > 0 && static_cast<int>(s.size()) < prec) s.insert(0, prec - s.size(), '0');
        if (neg) s.insert(0, 1, '-');
        break;
      }
      case 's': case 'S':
        s = arg.AsString();
        if (prec >= 0 && static_cast<int>(s.size()) > prec) s.resize(prec);
        break;
      case 'f': case 'F': case 'n': case 'N': case 'e': case 'E': case 'g': case 'G': case 'm': case 'M': {
        if (!VarIsNumeric(arg) && arg.Type() != varDate) Invalid(FFmt);
        const double v = arg.AsDouble();
        const char t = static_cast<char>(type | 0x20);
        if (t == 'f') s = FloatToStrF(v, ffFixed, 18, prec < 0 ? 2 : prec);
        else if (t == 'n' || t == 'm') s = FloatToStrF(v, ffNumber, 18, prec < 0 ? 2 : prec);
        else if (t == 'e') s = FloatToStrF(v, ffExponent, prec < 0 ? 15 : prec, 3);
        else s = FloatToStrF(v, ffGeneral, prec < 0 ? 15 : prec, 0);
        break;
      }
      default:
        Invalid(FFmt);
    }
    if (width > static_cast<int>(s.size())) {
      if (left) s.append(width - s.size(), ' ');
      else s.insert(0, width - s.size(), ' ');
    }
    return s;
  }

  std::string_view FFmt;
  std::initializer_list<Variant> FArgs;
  std::size_t FNext = 0;
};

}  // namespace

std::string Format(std::string_view fmt, std::initializer_list<Variant> args) {
  return Formatter(fmt, args).Run();
}

}  // namespace fw
