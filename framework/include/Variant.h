// Variant: the framework's dynamically typed value (framework layer).
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "SystemTypes.h"

namespace fw {

/// Type codes returned by `VarType`. Arrays carry `varArray` or-ed with the element type.
using TVarType = uint16_t;
inline constexpr TVarType varEmpty = 0x0000;
inline constexpr TVarType varNull = 0x0001;
inline constexpr TVarType varSmallint = 0x0002;
inline constexpr TVarType varInteger = 0x0003;
inline constexpr TVarType varSingle = 0x0004;
inline constexpr TVarType varDouble = 0x0005;
inline constexpr TVarType varCurrency = 0x0006;
inline constexpr TVarType varDate = 0x0007;
inline constexpr TVarType varOleStr = 0x0008;
inline constexpr TVarType varDispatch = 0x0009;
inline constexpr TVarType varError = 0x000A;
inline constexpr TVarType varBoolean = 0x000B;
inline constexpr TVarType varVariant = 0x000C;
inline constexpr TVarType varUnknown = 0x000D;
inline constexpr TVarType varDecimal = 0x000E;
inline constexpr TVarType varShortInt = 0x0010;
inline constexpr TVarType varByte = 0x0011;
inline constexpr TVarType varWord = 0x0012;
inline constexpr TVarType varLongWord = 0x0013;
inline constexpr TVarType varInt64 = 0x0014;
inline constexpr TVarType varString = 0x0100;
inline constexpr TVarType varTypeMask = 0x0FFF;
inline constexpr TVarType varArray = 0x2000;
inline constexpr TVarType varByRef = 0x4000;

/// A value of one of the types above. A fresh Variant is Unassigned (`varEmpty`: "no value";
/// converts to 0, "" and false). `Null()` is SQL null: every conversion of it raises.
///
/// Supported kinds: Empty, Null, the integer kinds (ShortInt, Byte, Smallint, Word, Integer,
/// LongWord, Int64), Single, Double, Currency (int64 x 10000), Date (TDateTime), Boolean, String
/// and OleStr (both 8-bit byte strings, no transcoding), one-dimensional arrays of variants
/// (`varArray | varVariant`, bounds 0..n-1) and byte arrays (`varArray | varByte`).
///
/// Conversions (the `As...` members) raise `EVariantError` when they cannot succeed: Null to
/// anything, text that is not a number/boolean/date, values out of the target's range, arrays to
/// scalars. Floating values go to integers and Currency rounding half to even.
class Variant {
 public:
  Variant() = default;
  Variant(bool v) : FType(varBoolean), FInt(v ? 1 : 0) {}
  Variant(int8_t v) : FType(varShortInt), FInt(v) {}
  Variant(uint8_t v) : FType(varByte), FInt(v) {}
  Variant(int16_t v) : FType(varSmallint), FInt(v) {}
  Variant(uint16_t v) : FType(varWord), FInt(v) {}
  Variant(int32_t v) : FType(varInteger), FInt(v) {}
  Variant(uint32_t v) : FType(varLongWord), FInt(v) {}
  Variant(long v) : FType(varInt64), FInt(v) {}
  Variant(long long v) : FType(varInt64), FInt(v) {}
  Variant(float v) : FType(varSingle), FFloat(v) {}
  Variant(double v) : FType(varDouble), FFloat(v) {}
  Variant(char v) : FType(varString), FStr(1, v) {}
  Variant(const char* v) : FType(varString), FStr(v != nullptr ? v : "") {}
  Variant(std::string v) : FType(varString), FStr(std::move(v)) {}
  Variant(std::string_view v) : FType(varString), FStr(v) {}

  /// Typed constructors for kinds that share a C++ type with another kind.
  static Variant FromCurrency(Currency value);
  static Variant FromDateTime(TDateTime value);
  static Variant FromOleStr(std::string value);
  static Variant MakeNull();

  /// The type code (`varArray | element type` for arrays).
  TVarType Type() const { return FType; }
  bool IsNull() const { return FType == varNull; }
  bool IsEmpty() const { return FType == varEmpty; }
  bool IsArray() const { return (FType & varArray) != 0; }

  /// Conversions; see the class comment for what raises.
  int32_t AsInteger() const;
  int64_t AsInt64() const;
  double AsDouble() const;
  Currency AsCurrency() const;
  TDateTime AsDateTime() const;
  bool AsBoolean() const;
  /// Numbers in plain decimal (floats with up to 15 significant digits), booleans "True" /
  /// "False", dates with `DateTimeToStr`, Empty as "". Byte arrays give their bytes.
  std::string AsString() const;

  /// Number of elements of an array (raises `EVariantError` on a non-array).
  int ArrayLength() const;
  /// Element `i` (0-based) of an array; raises `EVariantError` when not an array or out of
  /// bounds. Elements of a byte array come back as `varByte` variants.
  Variant operator[](int i) const;
  /// Replaces element `i` of an array of variants (a byte array takes the value as a byte).
  void SetElement(int i, const Variant& value);
  /// The elements of an array of variants (raises on anything else).
  const std::vector<Variant>& Elements() const;
  /// The bytes of a byte array (raises on anything else). Valid while the variant lives.
  std::string_view Bytes() const;

 private:
  friend Variant VarArrayOf(std::vector<Variant> items);
  friend Variant VarByteArrayOf(const void* data, std::size_t size);
  [[noreturn]] void CannotConvert(const char* target) const;

  TVarType FType = varEmpty;
  int64_t FInt = 0;             // integer kinds, Boolean (0/1), Currency (x 10000)
  double FFloat = 0;            // Single, Double, Date
  std::string FStr;             // String, OleStr, byte-array bytes
  std::vector<Variant> FItems;  // array of variants
};

/// SQL null and "no value" (the default of a fresh variant).
Variant Null();
Variant Unassigned();

TVarType VarType(const Variant& v);
bool VarIsNull(const Variant& v);
bool VarIsEmpty(const Variant& v);
/// Empty or Null.
bool VarIsClear(const Variant& v);
bool VarIsArray(const Variant& v);
/// String or OleStr.
bool VarIsStr(const Variant& v);
/// Integer kinds, Single, Double, Currency (not Date, not Boolean).
bool VarIsNumeric(const Variant& v);

/// A one-dimensional array of variants with bounds 0..n-1.
Variant VarArrayOf(std::initializer_list<Variant> items);
Variant VarArrayOf(std::vector<Variant> items);
/// A byte array (`varArray | varByte`) holding a copy of `size` bytes at `data`.
Variant VarByteArrayOf(const void* data, std::size_t size);
/// Bounds of dimension `dim` (only 1 exists); raise `EVariantError` on a non-array or dim != 1.
int VarArrayLowBound(const Variant& v, int dim);
int VarArrayHighBound(const Variant& v, int dim);
/// 1 for arrays, 0 otherwise.
int VarArrayDimCount(const Variant& v);

/// The framework's names for the date conversions: a varDate variant, and AsDateTime().
inline Variant VarFromDateTime(TDateTime value) { return Variant::FromDateTime(value); }
inline TDateTime VarToDateTime(const Variant& v) { return v.AsDateTime(); }

/// Lenient text: Null and Empty give "", everything else `AsString()`.
std::string VarToStr(const Variant& v);
/// Converts to the scalar kind `type` (varEmpty, varNull, an integer kind, varSingle, varDouble,
/// varCurrency, varDate, varBoolean, varString, varOleStr); raises `EVariantError` when the value
/// cannot be converted. Converting to varNull or varEmpty always succeeds and gives that value.
Variant VarAsType(const Variant& v, TVarType type);
/// Value equality: Empty equals Empty, Null equals Null; numbers, dates and booleans compare
/// numerically; strings byte-wise; arrays element by element; other pairs are converted to the
/// left operand's kind and compared, and false when that conversion fails.
bool VarSameValue(const Variant& a, const Variant& b);

}  // namespace fw
