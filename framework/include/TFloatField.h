// TFloatField and TCurrencyField: double-precision fields (framework layer).
#pragma once

#include "TNumericField.h"

namespace fw {

/// Native format: an 8-byte double (also for ftCurrency). When MinValue or MaxValue is
/// non-zero, values outside [MinValue, MaxValue] raise. Text "" clears the field.
class TFloatField : public TNumericField {
 public:
  explicit TFloatField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  int DataSize() const override { return 8; }
  /// Significant digits of the text form (default 15; values below 2 other than -1 become 2).
  int Precision() const { return FPrecision; }
  void SetPrecision(int Value);
  /// Display as money.
  bool Currency() const { return FCurrency; }
  void SetCurrency(bool Value);
  double MinValue() const { return FMinValue; }
  void SetMinValue(double Value) { FMinValue = Value; }
  double MaxValue() const { return FMaxValue; }
  void SetMaxValue(double Value) { FMaxValue = Value; }

  void SetAsString(const std::string& Value) override;
  void SetAsFloat(double Value) override;
  void SetAsInteger(int32_t Value) override { SetAsFloat(Value); }
  void SetAsLargeInt(int64_t Value) override { SetAsFloat(static_cast<double>(Value)); }
  void SetAsBoolean(bool Value) override { SetAsFloat(Value ? 1 : 0); }

 protected:
  std::string GetAsString() const override;
  double GetAsFloat() const override;
  /// Rounds half to even; out of range raises.
  int32_t GetAsInteger() const override;
  int64_t GetAsLargeInt() const override;
  bool GetAsBoolean() const override { return GetAsFloat() != 0; }
  Variant GetAsVariant() const override;
  void SetVarValue(const Variant& Value) override;
  void GetText(std::string& Text, bool DisplayText) const override;

 private:
  int FPrecision = 15;
  bool FCurrency = false;
  double FMinValue = 0;
  double FMaxValue = 0;
};

/// A float field of type ftCurrency with Currency true.
class TCurrencyField : public TFloatField {
 public:
  explicit TCurrencyField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
};

}  // namespace fw
