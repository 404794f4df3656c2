// TStringField: an 8-bit character field of at most Size characters (framework layer).
#include "TStringField.h"

#include <cstring>
#include <vector>

#include "DataSetMessages.h"
#include "DateTime.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TDataSet.h"

namespace fw {

TStringField::TStringField(TComponent* AOwner) : TField(AOwner) {
  SetDataType(ftString);
  FSize = 20;
}

void TStringField::CheckSize(int Value) const {
  if (Value < 0) DatabaseError(SInvalidFieldSize, this);
}

std::string TStringField::GetAsString() const {
  std::vector<char> buffer(static_cast<std::size_t>(Size()) + 1, '\0');
  if (!GetData(buffer.data())) return {};
  std::string text(buffer.data(), strnlen(buffer.data(), static_cast<std::size_t>(Size())));
  if (FTransliterate && DataSet() != nullptr) text = DataSet()->Translate(text, false);
  return text;
}

void TStringField::SetAsString(const std::string& Value) {
  std::string text = Value.substr(0, static_cast<std::size_t>(Size()));
  if (FTransliterate && DataSet() != nullptr) text = DataSet()->Translate(text, true);
  std::vector<char> buffer(static_cast<std::size_t>(Size()) + 1, '\0');
  std::memcpy(buffer.data(), text.data(), std::min(text.size(), static_cast<std::size_t>(Size())));
  SetData(buffer.data());
}

int32_t TStringField::GetAsInteger() const { return StrToInt(Trim(GetAsString())); }
int64_t TStringField::GetAsLargeInt() const { return StrToInt64(Trim(GetAsString())); }
double TStringField::GetAsFloat() const { return StrToFloat(Trim(GetAsString())); }

bool TStringField::GetAsBoolean() const {
  const std::string text = GetAsString();
  return !text.empty() && (text[0] == 'T' || text[0] == 't' || text[0] == 'Y' || text[0] == 'y');
}

void TStringField::SetAsInteger(int32_t Value) { SetAsString(IntToStr(Value)); }
void TStringField::SetAsLargeInt(int64_t Value) { SetAsString(IntToStr(Value)); }
void TStringField::SetAsFloat(double Value) { SetAsString(FloatToStr(Value)); }
void TStringField::SetAsBoolean(bool Value) { SetAsString(Value ? "T" : "F"); }
void TStringField::SetAsDateTime(TDateTime Value) { SetAsString(DateTimeToStr(Value)); }
TDateTime TStringField::GetAsDateTime() const { return StrToDateTime(Trim(GetAsString())); }

Variant TStringField::GetAsVariant() const {
  if (IsNull()) return Null();
  return Variant(GetAsString());
}

void TStringField::SetVarValue(const Variant& Value) { SetAsString(Value.AsString()); }

const TClassInfo& TStringField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TStringField>("TStringField", &TField::StaticClass())
          .Creatable()
          .Property("FixedChar", &TStringField::FixedChar, &TStringField::SetFixedChar, false)
          .Property("Size", &TStringField::Size, &TStringField::SetSize, 20)
          .Property("Transliterate", &TStringField::Transliterate, &TStringField::SetTransliterate, true)
          .Build();
  return info;
}

}  // namespace fw
