// TDateTimeField, TDateField and TTimeField: date and time fields (framework layer).
#include "TDateTimeField.h"

#include "TClassInfo.h"

namespace fw {

TDateTimeField::TDateTimeField(TComponent* AOwner) : TField(AOwner) { SetDataType(ftDateTime); }
TDateField::TDateField(TComponent* AOwner) : TDateTimeField(AOwner) { SetDataType(ftDate); }
TTimeField::TTimeField(TComponent* AOwner) : TDateTimeField(AOwner) { SetDataType(ftTime); }

void TDateTimeField::SetDisplayFormat(const std::string& Value) {
  if (Value == FDisplayFormat) return;
  FDisplayFormat = Value;
  PropertyChanged(true);
}

TDateTime TDateTimeField::GetAsDateTime() const {
  TDateTime value = 0;
  return GetData(&value, false) ? value : 0;
}

void TDateTimeField::SetAsDateTime(TDateTime Value) { SetData(&Value, false); }

std::string TDateTimeField::GetAsString() const {
  std::string text;
  GetText(text, false);
  return text;
}

void TDateTimeField::SetAsString(const std::string& Value) {
  if (Value.empty()) {
    Clear();
    return;
  }
  SetAsDateTime(DataType() == ftTime ? StrToTime(Value) : StrToDateTime(Value));
}

Variant TDateTimeField::GetAsVariant() const {
  TDateTime value = 0;
  return GetData(&value, false) ? Variant::FromDateTime(value) : Null();
}

void TDateTimeField::SetVarValue(const Variant& Value) { SetAsDateTime(Value.AsDateTime()); }

void TDateTimeField::GetText(std::string& Text, bool DisplayText) const {
  TDateTime value = 0;
  if (!GetData(&value, false)) {
    Text.clear();
    return;
  }
  if (DisplayText && !FDisplayFormat.empty()) {
    Text = FormatDateTime(FDisplayFormat, value);
    return;
  }
  switch (DataType()) {
    case ftDate:
      Text = DateToStr(value);
      break;
    case ftTime:
      Text = TimeToStr(value);
      break;
    default:
      Text = DateTimeToStr(value);
      break;
  }
}

const TClassInfo& TDateTimeField::StaticClass() {
  static const TClassInfo info = TClassBuilder<TDateTimeField>("TDateTimeField", &TField::StaticClass())
                                     .Creatable()
                                     .Property("DisplayFormat", &TDateTimeField::DisplayFormat,
                                               &TDateTimeField::SetDisplayFormat, "")
                                     .Build();
  return info;
}

const TClassInfo& TDateField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TDateField>("TDateField", &TDateTimeField::StaticClass()).Creatable().Build();
  return info;
}

const TClassInfo& TTimeField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TTimeField>("TTimeField", &TDateTimeField::StaticClass()).Creatable().Build();
  return info;
}

}  // namespace fw
