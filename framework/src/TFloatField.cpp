// TFloatField and TCurrencyField: double-precision fields (framework layer).
#include "TFloatField.h"

#include <cmath>

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TClassInfo.h"

namespace fw {

TFloatField::TFloatField(TComponent* AOwner) : TNumericField(AOwner) { SetDataType(ftFloat); }

TCurrencyField::TCurrencyField(TComponent* AOwner) : TFloatField(AOwner) {
  SetDataType(ftCurrency);
  SetCurrency(true);
}

void TFloatField::SetPrecision(int Value) {
  if (Value < 2 && Value != -1) Value = 2;
  if (Value > 15) Value = 15;
  if (Value == FPrecision) return;
  FPrecision = Value;
  PropertyChanged(false);
}

void TFloatField::SetCurrency(bool Value) {
  if (Value == FCurrency) return;
  FCurrency = Value;
  PropertyChanged(false);
}

double TFloatField::GetAsFloat() const {
  double value = 0;
  return GetData(&value) ? value : 0;
}

int32_t TFloatField::GetAsInteger() const {
  const double rounded = std::nearbyint(GetAsFloat());
  if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0))
    DatabaseError(FmtMsg(SFieldRangeError, {FloatToStr(rounded), DisplayName(), "-2147483648", "2147483647"}));
  return static_cast<int32_t>(rounded);
}

int64_t TFloatField::GetAsLargeInt() const {
  const double rounded = std::nearbyint(GetAsFloat());
  if (!(rounded >= -9.2e18 && rounded <= 9.2e18))
    DatabaseError(FmtMsg(SFieldRangeError, {FloatToStr(rounded), DisplayName(), "", ""}));
  return static_cast<int64_t>(rounded);
}

std::string TFloatField::GetAsString() const {
  double value = 0;
  return GetData(&value) ? FloatToStr(value) : std::string();
}

Variant TFloatField::GetAsVariant() const {
  double value = 0;
  return GetData(&value) ? Variant(value) : Null();
}

void TFloatField::SetAsFloat(double Value) {
  if ((FMinValue != 0 || FMaxValue != 0) && (Value < FMinValue || Value > FMaxValue))
    DatabaseError(FmtMsg(SFieldRangeError,
                         {FloatToStr(Value), DisplayName(), FloatToStr(FMinValue), FloatToStr(FMaxValue)}));
  SetData(&Value);
}

void TFloatField::SetAsString(const std::string& Value) {
  if (Value.empty()) {
    Clear();
    return;
  }
  double value = 0;
  if (!TryStrToFloat(Trim(Value), value)) DatabaseError(FmtMsg(SInvalidFloatValue, {Value, DisplayName()}));
  SetAsFloat(value);
}

void TFloatField::SetVarValue(const Variant& Value) { SetAsFloat(Value.AsDouble()); }

void TFloatField::GetText(std::string& Text, bool DisplayText) const {
  double value = 0;
  if (!GetData(&value)) {
    Text.clear();
    return;
  }
  const std::string& pattern = FormatFor(DisplayText);
  if (!pattern.empty()) {
    Text = FormatFloat(pattern, value);
  } else if (FCurrency) {
    Text = DisplayText ? FloatToStrF(value, ffCurrency, FPrecision, 2) : FloatToStrF(value, ffFixed, FPrecision, 2);
  } else {
    Text = FloatToStrF(value, ffGeneral, FPrecision > 0 ? FPrecision : 15, 0);
  }
}

const TClassInfo& TFloatField::StaticClass() {
  static const TClassInfo info = TClassBuilder<TFloatField>("TFloatField", &TNumericField::StaticClass())
                                     .Creatable()
                                     .Property("Currency", &TFloatField::Currency, &TFloatField::SetCurrency, false)
                                     .Property("MaxValue", &TFloatField::MaxValue, &TFloatField::SetMaxValue, 0.0)
                                     .Property("MinValue", &TFloatField::MinValue, &TFloatField::SetMinValue, 0.0)
                                     .Property("Precision", &TFloatField::Precision, &TFloatField::SetPrecision, 15)
                                     .Build();
  return info;
}

const TClassInfo& TCurrencyField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TCurrencyField>("TCurrencyField", &TFloatField::StaticClass()).Creatable().Build();
  return info;
}

}  // namespace fw
