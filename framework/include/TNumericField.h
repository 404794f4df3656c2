// TNumericField and the integer field classes (framework layer).
#pragma once

#include "TField.h"

namespace fw {

/// Base of the numeric classes: right-aligned, with display and edit formats (FormatFloat
/// patterns; EditFormat falls back to DisplayFormat).
class TNumericField : public TField {
 public:
  explicit TNumericField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
  const std::string& DisplayFormat() const { return FDisplayFormat; }
  void SetDisplayFormat(const std::string& Value);
  const std::string& EditFormat() const { return FEditFormat; }
  void SetEditFormat(const std::string& Value);

 protected:
  /// Picks the pattern for display or editing; empty when none applies.
  const std::string& FormatFor(bool DisplayText) const;
  /// The integer classes' float and text setters: a float rounds half to even (out of the
  /// 64-bit range raises), text "" clears, other text must be a whole number; both then store
  /// through SetAsLargeInt, which applies the class's range.
  void SetIntegerFromFloat(double Value);
  void SetIntegerFromText(const std::string& Value);

 private:
  std::string FDisplayFormat;
  std::string FEditFormat;
};

/// 32-bit signed integer (ftInteger), and the base of the 16-bit and auto-increment classes:
/// the native size follows DataType (2 bytes for ftSmallint/ftWord, else 4). When MinValue or
/// MaxValue is non-zero, values outside [MinValue, MaxValue] raise; otherwise the type's range
/// applies. Text "" clears the field.
class TIntegerField : public TNumericField {
 public:
  explicit TIntegerField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  int DataSize() const override;
  int32_t MinValue() const { return FMinValue; }
  void SetMinValue(int32_t Value) { FMinValue = Value; }
  int32_t MaxValue() const { return FMaxValue; }
  void SetMaxValue(int32_t Value) { FMaxValue = Value; }

  void SetAsString(const std::string& Value) override;
  /// Range-checked; EDatabaseError outside the range.
  void SetAsInteger(int32_t Value) override;
  void SetAsLargeInt(int64_t Value) override;
  /// Rounds half to even, then SetAsInteger.
  void SetAsFloat(double Value) override;
  void SetAsBoolean(bool Value) override { SetAsInteger(Value ? 1 : 0); }

 protected:
  std::string GetAsString() const override;
  int32_t GetAsInteger() const override;
  int64_t GetAsLargeInt() const override { return GetAsInteger(); }
  double GetAsFloat() const override { return GetAsInteger(); }
  bool GetAsBoolean() const override { return GetAsInteger() != 0; }
  Variant GetAsVariant() const override;
  void SetVarValue(const Variant& Value) override;
  void GetText(std::string& Text, bool DisplayText) const override;
  /// Reads the native value; false when null.
  bool GetValue(int32_t& Value) const;
  void CheckRange(int64_t Value) const;

 private:
  int32_t FMinValue = 0;
  int32_t FMaxValue = 0;
};

/// 16-bit signed integer (ftSmallint), range -32768..32767.
class TSmallintField : public TIntegerField {
 public:
  explicit TSmallintField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
};

/// 16-bit unsigned integer (ftWord), range 0..65535.
class TWordField : public TIntegerField {
 public:
  explicit TWordField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
};

/// Auto-increment integer (ftAutoInc); writable at the field level, the storage decides.
class TAutoIncField : public TIntegerField {
 public:
  explicit TAutoIncField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
};

/// 64-bit signed integer (ftLargeint); AsInteger truncates to 32 bits.
class TLargeintField : public TNumericField {
 public:
  explicit TLargeintField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  int DataSize() const override { return 8; }
  int64_t MinValue() const { return FMinValue; }
  void SetMinValue(int64_t Value) { FMinValue = Value; }
  int64_t MaxValue() const { return FMaxValue; }
  void SetMaxValue(int64_t Value) { FMaxValue = Value; }

  void SetAsString(const std::string& Value) override;
  void SetAsInteger(int32_t Value) override { SetAsLargeInt(Value); }
  void SetAsLargeInt(int64_t Value) override;
  void SetAsFloat(double Value) override;
  void SetAsBoolean(bool Value) override { SetAsLargeInt(Value ? 1 : 0); }

 protected:
  std::string GetAsString() const override;
  int32_t GetAsInteger() const override { return static_cast<int32_t>(GetAsLargeInt()); }
  int64_t GetAsLargeInt() const override;
  double GetAsFloat() const override { return static_cast<double>(GetAsLargeInt()); }
  bool GetAsBoolean() const override { return GetAsLargeInt() != 0; }
  Variant GetAsVariant() const override;
  void SetVarValue(const Variant& Value) override;
  void GetText(std::string& Text, bool DisplayText) const override;

 private:
  int64_t FMinValue = 0;
  int64_t FMaxValue = 0;
};

}  // namespace fw
