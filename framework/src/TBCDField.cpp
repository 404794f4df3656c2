// TBCDField and TFMTBCDField: decimal fields stored as TBcd (framework layer).
#include "TBCDField.h"

#include <cmath>

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TClassInfo.h"

namespace fw {

namespace {

/// Currency divided by 10000, rounded half to even.
int32_t CurrencyToInteger(Currency Value, const TField* Field) {
  int64_t whole = Value / kCurrencyScale;
  const int64_t rest = Value % kCurrencyScale;
  const int64_t half = kCurrencyScale / 2;
  if (rest > half || (rest == half && (whole & 1) != 0)) ++whole;
  if (rest < -half || (rest == -half && (whole & 1) != 0)) --whole;
  if (whole < INT32_MIN || whole > INT32_MAX)
    DatabaseError(FmtMsg(SFieldRangeError, {CurrToStr(Value), Field->DisplayName(), "", ""}));
  return static_cast<int32_t>(whole);
}

}  // namespace

// --- TBCDField --------------------------------------------------------------------------------

TBCDField::TBCDField(TComponent* AOwner) : TNumericField(AOwner) {
  SetDataType(ftBCD);
  FSize = 4;
}

void TBCDField::CheckSize(int Value) const {
  if (Value < 0 || Value > 4) DatabaseError(SInvalidFieldSize, this);
}

void TBCDField::SetPrecision(int Value) {
  if (Value < 0) Value = 0;
  if (Value == FPrecision) return;
  FPrecision = Value;
  PropertyChanged(false);
}

void TBCDField::SetCurrency(bool Value) {
  if (Value == FCurrency) return;
  FCurrency = Value;
  PropertyChanged(false);
}

fw::Currency TBCDField::GetAsCurrency() const {
  fw::Currency value = 0;
  return GetData(&value, false) ? value : 0;
}

double TBCDField::GetAsFloat() const { return CurrToDouble(GetAsCurrency()); }

int32_t TBCDField::GetAsInteger() const { return CurrencyToInteger(GetAsCurrency(), this); }

std::string TBCDField::GetAsString() const {
  fw::Currency value = 0;
  return GetData(&value, false) ? CurrToStr(value) : std::string();
}

Variant TBCDField::GetAsVariant() const {
  fw::Currency value = 0;
  return GetData(&value, false) ? Variant::FromCurrency(value) : Null();
}

void TBCDField::SetAsCurrency(fw::Currency Value) {
  if ((FMinValue != 0 || FMaxValue != 0) && (Value < FMinValue || Value > FMaxValue))
    DatabaseError(FmtMsg(SFieldRangeError, {CurrToStr(Value), DisplayName(), CurrToStr(FMinValue), CurrToStr(FMaxValue)}));
  SetData(&Value, false);
}

void TBCDField::SetAsFloat(double Value) { SetAsCurrency(DoubleToCurr(Value)); }

void TBCDField::SetAsString(const std::string& Value) {
  if (Value.empty()) {
    Clear();
    return;
  }
  SetAsCurrency(StrToCurr(Trim(Value)));
}

void TBCDField::SetVarValue(const Variant& Value) { SetAsCurrency(Value.AsCurrency()); }

void TBCDField::GetText(std::string& Text, bool DisplayText) const {
  fw::Currency value = 0;
  if (!GetData(&value, false)) {
    Text.clear();
    return;
  }
  const std::string& pattern = FormatFor(DisplayText);
  if (!pattern.empty())
    Text = FormatFloat(pattern, CurrToDouble(value));
  else if (FCurrency)
    Text = FloatToStrF(CurrToDouble(value), DisplayText ? ffCurrency : ffFixed, 15, Size());
  else
    Text = CurrToStr(value);
}

// --- TFMTBCDField -----------------------------------------------------------------------------

TFMTBCDField::TFMTBCDField(TComponent* AOwner) : TNumericField(AOwner) {
  SetDataType(ftFMTBcd);
  FSize = 8;
}

void TFMTBCDField::CheckSize(int Value) const {
  if (Value < 0 || Value > 64) DatabaseError(SInvalidFieldSize, this);
}

TBcd TFMTBCDField::AsBCD() const {
  TBcd value = NullBcd;
  return GetData(&value) ? value : NullBcd;
}

void TFMTBCDField::SetAsBCD(const TBcd& Value) { SetData(&Value); }

void TFMTBCDField::SetAsCurrency(fw::Currency Value) {
  TBcd bcd;
  if (!CurrToBCD(Value, bcd, 32, 4)) DatabaseError(FmtMsg(SBcdOverflow, {DisplayName()}));
  SetAsBCD(bcd);
}

fw::Currency TFMTBCDField::GetAsCurrency() const {
  TBcd bcd = NullBcd;
  if (!GetData(&bcd)) return 0;
  fw::Currency value = 0;
  if (!BCDToCurr(bcd, value)) DatabaseError(FmtMsg(SBcdOverflow, {DisplayName()}));
  return value;
}

double TFMTBCDField::GetAsFloat() const {
  TBcd bcd = NullBcd;
  return GetData(&bcd) ? BCDToDouble(bcd) : 0;
}

int32_t TFMTBCDField::GetAsInteger() const { return CurrencyToInteger(GetAsCurrency(), this); }

std::string TFMTBCDField::GetAsString() const {
  TBcd bcd = NullBcd;
  return GetData(&bcd) ? BCDToStr(bcd) : std::string();
}

Variant TFMTBCDField::GetAsVariant() const {
  if (IsNull()) return Null();
  return Variant::FromCurrency(GetAsCurrency());
}

void TFMTBCDField::SetAsString(const std::string& Value) {
  if (Value.empty()) {
    Clear();
    return;
  }
  SetAsBCD(StrToBCD(Trim(Value)));
}

void TFMTBCDField::SetVarValue(const Variant& Value) {
  if (VarIsStr(Value))
    SetAsString(Value.AsString());
  else
    SetAsCurrency(Value.AsCurrency());
}

// --- Class tables -----------------------------------------------------------------------------

const TClassInfo& TBCDField::StaticClass() {
  static const TClassInfo info = TClassBuilder<TBCDField>("TBCDField", &TNumericField::StaticClass())
                                     .Creatable()
                                     .Property("Currency", &TBCDField::Currency, &TBCDField::SetCurrency, false)
                                     .Property("MaxValue", &TBCDField::MaxValue, &TBCDField::SetMaxValue)
                                     .Property("MinValue", &TBCDField::MinValue, &TBCDField::SetMinValue)
                                     .Property("Precision", &TBCDField::Precision, &TBCDField::SetPrecision, 0)
                                     .Property("Size", &TBCDField::Size, &TBCDField::SetSize, 4)
                                     .Build();
  return info;
}

const TClassInfo& TFMTBCDField::StaticClass() {
  static const TClassInfo info = TClassBuilder<TFMTBCDField>("TFMTBCDField", &TNumericField::StaticClass())
                                     .Creatable()
                                     .Property("Precision", &TFMTBCDField::Precision, &TFMTBCDField::SetPrecision, 0)
                                     .Property("Size", &TFMTBCDField::Size, &TFMTBCDField::SetSize, 8)
                                     .Build();
  return info;
}

}  // namespace fw
