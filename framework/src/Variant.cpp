// Variant: construction, inspection and conversions.
#include "Variant.h"

#include <cmath>
#include <limits>

#include "DateTime.h"
#include "Exception.h"
#include "StringUtils.h"

namespace fw {

namespace {

bool IsIntegerKind(TVarType t) {
  switch (t) {
    case varSmallint: case varInteger: case varShortInt: case varByte: case varWord:
    case varLongWord: case varInt64: case varBoolean:
      return true;
    default:
      return false;
  }
}

bool IsFloatKind(TVarType t) { return t == varSingle || t == varDouble || t == varDate; }

bool IsStringKind(TVarType t) { return t == varString || t == varOleStr; }

const char* KindName(TVarType t) {
  if (t & varArray) return "Array";
  switch (t) {
    case varEmpty: return "Empty";
    case varNull: return "Null";
    case varSmallint: return "Smallint";
    case varInteger: return "Integer";
    case varSingle: return "Single";
    case varDouble: return "Double";
    case varCurrency: return "Currency";
    case varDate: return "Date";
    case varOleStr: return "OleStr";
    case varBoolean: return "Boolean";
    case varShortInt: return "ShortInt";
    case varByte: return "Byte";
    case varWord: return "Word";
    case varLongWord: return "LongWord";
    case varInt64: return "Int64";
    case varString: return "String";
    default: return "Unknown";
  }
}

// Pascal Round: halves go to the even neighbour.
double RoundHalfEven(double v) { return std::nearbyint(v); }

int64_t DoubleToInt64(double v, const char* target) {
  const double r = RoundHalfEven(v);
  // 2^63 is exactly representable; anything at or beyond it does not fit.
  if (!std::isfinite(r) || r >= 9223372036854775808.0 || r < -9223372036854775808.0)
    throw EVariantError(std::string("Invalid variant type conversion: value out of range for ") + target);
  return static_cast<int64_t>(r);
}

}  // namespace

Variant Variant::FromCurrency(Currency value) {
  Variant v;
  v.FType = varCurrency;
  v.FInt = value;
  return v;
}

Variant Variant::FromDateTime(TDateTime value) {
  Variant v;
  v.FType = varDate;
  v.FFloat = value;
  return v;
}

Variant Variant::FromOleStr(std::string value) {
  Variant v(std::move(value));
  v.FType = varOleStr;
  return v;
}

Variant Variant::MakeNull() {
  Variant v;
  v.FType = varNull;
  return v;
}

void Variant::CannotConvert(const char* target) const {
  if (FType == varNull)
    throw EVariantError(std::string("Could not convert variant of type (Null) into type (") + target + ")");
  if (IsStringKind(FType))
    throw EVariantError("Could not convert variant of type (String) with value '" + FStr + "' into type (" +
                        target + ")");
  throw EVariantError(std::string("Could not convert variant of type (") + KindName(FType) + ") into type (" +
                      target + ")");
}

int64_t Variant::AsInt64() const {
  if (FType == varEmpty) return 0;
  if (FType == varBoolean) return FInt != 0 ? -1 : 0;
  if (IsIntegerKind(FType)) return FInt;
  if (IsFloatKind(FType)) return DoubleToInt64(FFloat, "Int64");
  if (FType == varCurrency) {
    // Currency to integer rounds half to even on the exact fixed-point value.
    int64_t q = FInt / kCurrencyScale;
    const int64_t r = FInt % kCurrencyScale;
    const int64_t twice = 2 * (r < 0 ? -r : r);
    if (twice > kCurrencyScale || (twice == kCurrencyScale && (q % 2) != 0)) q += (r < 0 ? -1 : 1);
    return q;
  }
  if (IsStringKind(FType)) {
    int64_t n;
    if (TryStrToInt64(FStr, n)) return n;
    double d;
    if (TryStrToFloat(FStr, d)) return DoubleToInt64(d, "Int64");
  }
  CannotConvert("Int64");
}

int32_t Variant::AsInteger() const {
  const int64_t n = AsInt64();
  if (n < std::numeric_limits<int32_t>::min() || n > std::numeric_limits<int32_t>::max())
    throw EVariantError("Invalid variant type conversion: " + std::to_string(n) + " out of range for Integer");
  return static_cast<int32_t>(n);
}

double Variant::AsDouble() const {
  if (FType == varEmpty) return 0;
  if (FType == varBoolean) return FInt != 0 ? -1 : 0;
  if (IsIntegerKind(FType)) return static_cast<double>(FInt);
  if (IsFloatKind(FType)) return FFloat;
  if (FType == varCurrency) return CurrToDouble(FInt);
  if (IsStringKind(FType)) {
    double d;
    if (TryStrToFloat(FStr, d)) return d;
  }
  CannotConvert("Double");
}

Currency Variant::AsCurrency() const {
  if (FType == varCurrency) return FInt;
  if (FType == varEmpty) return 0;
  if (IsIntegerKind(FType)) {
    const int64_t n = FType == varBoolean ? (FInt != 0 ? -1 : 0) : FInt;
    if (n > std::numeric_limits<int64_t>::max() / kCurrencyScale ||
        n < std::numeric_limits<int64_t>::min() / kCurrencyScale)
      throw EVariantError("Invalid variant type conversion: value out of range for Currency");
    return n * kCurrencyScale;
  }
  if (IsFloatKind(FType)) {
    try {
      return DoubleToCurr(FFloat);
    } catch (const EConvertError&) {
      throw EVariantError("Invalid variant type conversion: value out of range for Currency");
    }
  }
  if (IsStringKind(FType)) {
    Currency c;
    if (TryStrToCurr(FStr, c)) return c;
  }
  CannotConvert("Currency");
}

TDateTime Variant::AsDateTime() const {
  if (FType == varEmpty) return 0;
  if (FType == varDate || FType == varSingle || FType == varDouble) return FFloat;
  if (FType == varCurrency) return CurrToDouble(FInt);
  if (IsIntegerKind(FType) && FType != varBoolean) return static_cast<double>(FInt);
  if (IsStringKind(FType)) {
    TDateTime dt;
    if (TryStrToDateTime(FStr, dt)) return dt;
  }
  CannotConvert("Date");
}

bool Variant::AsBoolean() const {
  if (FType == varEmpty) return false;
  if (IsIntegerKind(FType) || FType == varCurrency) return FInt != 0;
  if (FType == varSingle || FType == varDouble) return FFloat != 0;
  if (IsStringKind(FType)) {
    bool b;
    if (TryStrToBool(FStr, b)) return b;
  }
  CannotConvert("Boolean");
}

std::string Variant::AsString() const {
  if (FType == varEmpty) return "";
  if (FType == varBoolean) return FInt != 0 ? "True" : "False";
  if (IsIntegerKind(FType)) return IntToStr(FInt);
  if (FType == varSingle) return FloatToStrF(FFloat, ffGeneral, 7, 0);
  if (FType == varDouble) return FloatToStr(FFloat);
  if (FType == varCurrency) return CurrToStr(FInt);
  if (FType == varDate) return DateTimeToStr(FFloat);
  if (IsStringKind(FType)) return FStr;
  if (FType == (varArray | varByte)) return FStr;
  CannotConvert("String");
}

int Variant::ArrayLength() const {
  if (FType == (varArray | varByte)) return static_cast<int>(FStr.size());
  if (FType == (varArray | varVariant)) return static_cast<int>(FItems.size());
  throw EVariantError("Variant is not an array");
}

Variant Variant::operator[](int i) const {
  if (i < 0 || i >= ArrayLength()) throw EVariantError("Variant array index out of bounds: " + std::to_string(i));
  if (FType == (varArray | varByte)) return Variant(static_cast<uint8_t>(FStr[i]));
  return FItems[i];
}

void Variant::SetElement(int i, const Variant& value) {
  if (i < 0 || i >= ArrayLength()) throw EVariantError("Variant array index out of bounds: " + std::to_string(i));
  if (FType == (varArray | varByte)) {
    const int64_t b = value.AsInt64();
    if (b < 0 || b > 255) throw EVariantError("Invalid variant type conversion: value out of range for Byte");
    FStr[i] = static_cast<char>(b);
  } else {
    FItems[i] = value;
  }
}

const std::vector<Variant>& Variant::Elements() const {
  if (FType != (varArray | varVariant)) throw EVariantError("Variant is not an array of variants");
  return FItems;
}

std::string_view Variant::Bytes() const {
  if (FType != (varArray | varByte)) throw EVariantError("Variant is not a byte array");
  return FStr;
}

Variant Null() { return Variant::MakeNull(); }
Variant Unassigned() { return Variant(); }

TVarType VarType(const Variant& v) { return v.Type(); }
bool VarIsNull(const Variant& v) { return v.IsNull(); }
bool VarIsEmpty(const Variant& v) { return v.IsEmpty(); }
bool VarIsClear(const Variant& v) { return v.IsEmpty() || v.IsNull(); }
bool VarIsArray(const Variant& v) { return v.IsArray(); }
bool VarIsStr(const Variant& v) { return IsStringKind(v.Type()); }
bool VarIsNumeric(const Variant& v) {
  const TVarType t = v.Type();
  return (IsIntegerKind(t) && t != varBoolean) || t == varSingle || t == varDouble || t == varCurrency;
}

Variant VarArrayOf(std::initializer_list<Variant> items) { return VarArrayOf(std::vector<Variant>(items)); }

Variant VarArrayOf(std::vector<Variant> items) {
  Variant v;
  v.FType = varArray | varVariant;
  v.FItems = std::move(items);
  return v;
}

Variant VarByteArrayOf(const void* data, std::size_t size) {
  Variant v;
  v.FType = varArray | varByte;
  if (size > 0) v.FStr.assign(static_cast<const char*>(data), size);
  return v;
}

int VarArrayLowBound(const Variant& v, int dim) {
  if (!v.IsArray() || dim != 1) throw EVariantError("Variant array bounds: not an array or bad dimension");
  return 0;
}

int VarArrayHighBound(const Variant& v, int dim) {
  if (!v.IsArray() || dim != 1) throw EVariantError("Variant array bounds: not an array or bad dimension");
  return v.ArrayLength() - 1;
}

int VarArrayDimCount(const Variant& v) { return v.IsArray() ? 1 : 0; }

std::string VarToStr(const Variant& v) { return VarIsClear(v) ? std::string() : v.AsString(); }

Variant VarAsType(const Variant& v, TVarType type) {
  switch (type) {
    case varEmpty: return Variant();
    case varNull: return Null();
    case varSmallint: {
      const int64_t n = v.AsInt64();
      if (n < INT16_MIN || n > INT16_MAX) throw EVariantError("Invalid variant type conversion: out of range for Smallint");
      return Variant(static_cast<int16_t>(n));
    }
    case varShortInt: {
      const int64_t n = v.AsInt64();
      if (n < INT8_MIN || n > INT8_MAX) throw EVariantError("Invalid variant type conversion: out of range for ShortInt");
      return Variant(static_cast<int8_t>(n));
    }
    case varByte: {
      const int64_t n = v.AsInt64();
      if (n < 0 || n > UINT8_MAX) throw EVariantError("Invalid variant type conversion: out of range for Byte");
      return Variant(static_cast<uint8_t>(n));
    }
    case varWord: {
      const int64_t n = v.AsInt64();
      if (n < 0 || n > UINT16_MAX) throw EVariantError("Invalid variant type conversion: out of range for Word");
      return Variant(static_cast<uint16_t>(n));
    }
    case varLongWord: {
      const int64_t n = v.AsInt64();
      if (n < 0 || n > UINT32_MAX) throw EVariantError("Invalid variant type conversion: out of range for LongWord");
      return Variant(static_cast<uint32_t>(n));
    }
    case varInteger: return Variant(v.AsInteger());
    case varInt64: return Variant(static_cast<long long>(v.AsInt64()));
    case varSingle: return Variant(static_cast<float>(v.AsDouble()));
    case varDouble: return Variant(v.AsDouble());
    case varCurrency: return Variant::FromCurrency(v.AsCurrency());
    case varDate: return Variant::FromDateTime(v.AsDateTime());
    case varBoolean: return Variant(v.AsBoolean());
    case varString: return Variant(v.AsString());
    case varOleStr: return Variant::FromOleStr(v.AsString());
    default:
      throw EVariantError("Invalid variant type conversion to type code " + std::to_string(type));
  }
}

bool VarSameValue(const Variant& a, const Variant& b) {
  const TVarType ta = a.Type();
  const TVarType tb = b.Type();
  if (ta == varEmpty || tb == varEmpty || ta == varNull || tb == varNull) return ta == tb;
  if (a.IsArray() || b.IsArray()) {
    if (ta != tb || a.ArrayLength() != b.ArrayLength()) return false;
    if (ta == (varArray | varByte)) return a.Bytes() == b.Bytes();
    for (int i = 0; i < a.ArrayLength(); ++i)
      if (!VarSameValue(a[i], b[i])) return false;
    return true;
  }
  if (IsStringKind(ta) && IsStringKind(tb)) return a.AsString() == b.AsString();
  try {
    if (IsIntegerKind(ta) && IsIntegerKind(tb)) return a.AsInt64() == b.AsInt64();
    if ((IsIntegerKind(ta) || ta == varCurrency) && (IsIntegerKind(tb) || tb == varCurrency))
      return a.AsCurrency() == b.AsCurrency();
    if (IsStringKind(ta)) return a.AsString() == b.AsString();
    return a.AsDouble() == b.AsDouble();
  } catch (const EVariantError&) {
    return false;
  }
}

}  // namespace fw
