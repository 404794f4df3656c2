// TBCDField and TFMTBCDField: decimal fields stored as TBcd (framework layer).
#pragma once

#include "TBcd.h"
#include "TNumericField.h"

namespace fw {

/// Native format: the 34-byte TBcd. The value type is Currency, reached through non-native
/// GetData/SetData (CurrToBCD with 32 digits and Size decimals; a value BCDToCurr cannot
/// represent raises). Size is the number of decimal places (0..4, default 4), Precision the
/// total digits. When MinValue or MaxValue is non-zero, values outside them raise.
class TBCDField : public TNumericField {
 public:
  explicit TBCDField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  int DataSize() const override { return static_cast<int>(sizeof(TBcd)); }
  int Precision() const { return FPrecision; }
  void SetPrecision(int Value);
  bool Currency() const { return FCurrency; }
  void SetCurrency(bool Value);
  fw::Currency MinValue() const { return FMinValue; }
  void SetMinValue(fw::Currency Value) { FMinValue = Value; }
  fw::Currency MaxValue() const { return FMaxValue; }
  void SetMaxValue(fw::Currency Value) { FMaxValue = Value; }

  void SetAsCurrency(fw::Currency Value) override;
  void SetAsFloat(double Value) override;
  void SetAsInteger(int32_t Value) override { SetAsCurrency(static_cast<fw::Currency>(Value) * kCurrencyScale); }
  /// "" clears; else StrToCurr (EConvertError on bad text).
  void SetAsString(const std::string& Value) override;

 protected:
  fw::Currency GetAsCurrency() const override;
  double GetAsFloat() const override;
  /// Rounded half to even.
  int32_t GetAsInteger() const override;
  std::string GetAsString() const override;
  Variant GetAsVariant() const override;
  void SetVarValue(const Variant& Value) override;
  void GetText(std::string& Text, bool DisplayText) const override;
  int GetDefaultWidth() const override { return FPrecision > 0 ? FPrecision + 1 : 10; }
  void CheckSize(int Value) const override;

 private:
  int FPrecision = 0;
  bool FCurrency = false;
  fw::Currency FMinValue = 0;
  fw::Currency FMaxValue = 0;
};

/// Native format and value type: the TBcd itself (ftFMTBcd). Size is the number of decimal
/// places (default 8).
class TFMTBCDField : public TNumericField {
 public:
  explicit TFMTBCDField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  int DataSize() const override { return static_cast<int>(sizeof(TBcd)); }
  int Precision() const { return FPrecision; }
  void SetPrecision(int Value) { FPrecision = Value; }
  /// The stored value; NullBcd when null.
  TBcd AsBCD() const;
  void SetAsBCD(const TBcd& Value);

  void SetAsCurrency(fw::Currency Value) override;
  void SetAsFloat(double Value) override { SetAsBCD(DoubleToBCD(Value)); }
  void SetAsInteger(int32_t Value) override { SetAsCurrency(static_cast<fw::Currency>(Value) * kCurrencyScale); }
  /// "" clears; else StrToBCD (EConvertError on bad text).
  void SetAsString(const std::string& Value) override;

 protected:
  fw::Currency GetAsCurrency() const override;
  double GetAsFloat() const override;
  int32_t GetAsInteger() const override;
  std::string GetAsString() const override;
  /// Currency variant (the closest variant kind), or Null.
  Variant GetAsVariant() const override;
  void SetVarValue(const Variant& Value) override;
  void CheckSize(int Value) const override;

 private:
  int FPrecision = 0;
};

}  // namespace fw
