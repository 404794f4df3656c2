// TBooleanField: a two-byte boolean field (framework layer).
#include "TBooleanField.h"

#include <algorithm>

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TClassInfo.h"

namespace fw {

TBooleanField::TBooleanField(TComponent* AOwner) : TField(AOwner) { SetDataType(ftBoolean); }

void TBooleanField::SetDisplayValues(const std::string& Value) {
  if (Value.empty()) DatabaseError(SInvalidBoolDisplayValues, this);
  const std::size_t sep = Value.find(';');
  FTrueText = Value.substr(0, sep);
  FFalseText = sep == std::string::npos ? std::string() : Value.substr(sep + 1);
  FDisplayValues = Value;
  PropertyChanged(true);
}

bool TBooleanField::GetAsBoolean() const {
  uint16_t value = 0;
  return GetData(&value) && value != 0;
}

void TBooleanField::SetAsBoolean(bool Value) {
  const uint16_t native = Value ? 0xFFFF : 0;
  SetData(&native);
}

std::string TBooleanField::GetAsString() const {
  uint16_t value = 0;
  if (!GetData(&value)) return {};
  return value != 0 ? FTrueText : FFalseText;
}

void TBooleanField::SetAsString(const std::string& Value) {
  if (Value.empty()) {
    if (FFalseText.empty())
      SetAsBoolean(false);
    else if (FTrueText.empty())
      SetAsBoolean(true);
    else
      Clear();
    return;
  }
  auto isPrefixOf = [&Value](const std::string& text) {
    return Value.size() <= text.size() && SameText(Value, std::string_view(text).substr(0, Value.size()));
  };
  if (isPrefixOf(FTrueText))
    SetAsBoolean(true);
  else if (isPrefixOf(FFalseText))
    SetAsBoolean(false);
  else
    DatabaseError(FmtMsg(SInvalidBoolValue, {Value, DisplayName()}));
}

Variant TBooleanField::GetAsVariant() const {
  uint16_t value = 0;
  return GetData(&value) ? Variant(value != 0) : Null();
}

void TBooleanField::SetVarValue(const Variant& Value) { SetAsBoolean(Value.AsBoolean()); }

int TBooleanField::GetDefaultWidth() const {
  return static_cast<int>(std::max(FTrueText.size(), FFalseText.size()));
}

const TClassInfo& TBooleanField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TBooleanField>("TBooleanField", &TField::StaticClass())
          .Creatable()
          .Property("DisplayValues", &TBooleanField::DisplayValues, &TBooleanField::SetDisplayValues, "True;False")
          .Build();
  return info;
}

}  // namespace fw
