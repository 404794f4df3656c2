// TNumericField and the integer field classes (framework layer).
#include "TNumericField.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TClassInfo.h"

namespace fw {

namespace {

/// Pascal Round: halves go to the even neighbour.
double RoundHalfEven(double Value) { return std::nearbyint(Value); }

}  // namespace

// --- TNumericField ------------------------------------------------------------------------------

TNumericField::TNumericField(TComponent* AOwner) : TField(AOwner) { SetAlignment(taRightJustify); }

void TNumericField::SetDisplayFormat(const std::string& Value) {
  if (Value == FDisplayFormat) return;
  FDisplayFormat = Value;
  PropertyChanged(true);
}

void TNumericField::SetEditFormat(const std::string& Value) {
  if (Value == FEditFormat) return;
  FEditFormat = Value;
  PropertyChanged(true);
}

const std::string& TNumericField::FormatFor(bool DisplayText) const {
  return DisplayText || FEditFormat.empty() ? FDisplayFormat : FEditFormat;
}

void TNumericField::SetIntegerFromFloat(double Value) {
  const double rounded = RoundHalfEven(Value);
  if (!(rounded >= -9.2e18 && rounded <= 9.2e18))
    DatabaseError(FmtMsg(SFieldRangeError, {FloatToStr(Value), DisplayName(), "", ""}));
  SetAsLargeInt(static_cast<int64_t>(rounded));
}

void TNumericField::SetIntegerFromText(const std::string& Value) {
  if (Value.empty()) {
    Clear();
    return;
  }
  int64_t value = 0;
  if (!TryStrToInt64(Trim(Value), value))
    DatabaseError(FmtMsg(SInvalidIntegerValue, {Value, DisplayName()}));
  SetAsLargeInt(value);
}

// --- TIntegerField ------------------------------------------------------------------------------

TIntegerField::TIntegerField(TComponent* AOwner) : TNumericField(AOwner) { SetDataType(ftInteger); }

int TIntegerField::DataSize() const { return DataType() == ftSmallint || DataType() == ftWord ? 2 : 4; }

bool TIntegerField::GetValue(int32_t& Value) const {
  switch (DataType()) {
    case ftSmallint: {
      int16_t v = 0;
      if (!GetData(&v)) return false;
      Value = v;
      return true;
    }
    case ftWord: {
      uint16_t v = 0;
      if (!GetData(&v)) return false;
      Value = v;
      return true;
    }
    default:
      return GetData(&Value);
  }
}

int32_t TIntegerField::GetAsInteger() const {
  int32_t value = 0;
  return GetValue(value) ? value : 0;
}

std::string TIntegerField::GetAsString() const {
  int32_t value = 0;
  return GetValue(value) ? IntToStr(value) : std::string();
}

Variant TIntegerField::GetAsVariant() const {
  int32_t value = 0;
  return GetValue(value) ? Variant(value) : Null();
}

void TIntegerField::CheckRange(int64_t Value) const {
  int64_t low = FMinValue;
  int64_t high = FMaxValue;
  if (low == 0 && high == 0) {
    switch (DataType()) {
      case ftSmallint:
        low = std::numeric_limits<int16_t>::min();
        high = std::numeric_limits<int16_t>::max();
        break;
      case ftWord:
        low = 0;
        high = std::numeric_limits<uint16_t>::max();
        break;
      default:
        low = std::numeric_limits<int32_t>::min();
        high = std::numeric_limits<int32_t>::max();
        break;
    }
  }
  if (Value < low || Value > high)
    DatabaseError(FmtMsg(SFieldRangeError, {IntToStr(Value), DisplayName(), IntToStr(low), IntToStr(high)}));
}

void TIntegerField::SetAsInteger(int32_t Value) { SetAsLargeInt(Value); }

void TIntegerField::SetAsLargeInt(int64_t Value) {
  CheckRange(Value);
  switch (DataType()) {
    case ftSmallint: {
      const auto v = static_cast<int16_t>(Value);
      SetData(&v);
      break;
    }
    case ftWord: {
      const auto v = static_cast<uint16_t>(Value);
      SetData(&v);
      break;
    }
    default: {
      const auto v = static_cast<int32_t>(Value);
      SetData(&v);
      break;
    }
  }
}

void TIntegerField::SetAsFloat(double Value) { SetIntegerFromFloat(Value); }

void TIntegerField::SetAsString(const std::string& Value) { SetIntegerFromText(Value); }

void TIntegerField::SetVarValue(const Variant& Value) { SetAsLargeInt(Value.AsInt64()); }

void TIntegerField::GetText(std::string& Text, bool DisplayText) const {
  int32_t value = 0;
  if (!GetValue(value)) {
    Text.clear();
    return;
  }
  const std::string& pattern = FormatFor(DisplayText);
  Text = pattern.empty() ? IntToStr(value) : FormatFloat(pattern, value);
}

TSmallintField::TSmallintField(TComponent* AOwner) : TIntegerField(AOwner) { SetDataType(ftSmallint); }
TWordField::TWordField(TComponent* AOwner) : TIntegerField(AOwner) { SetDataType(ftWord); }
TAutoIncField::TAutoIncField(TComponent* AOwner) : TIntegerField(AOwner) { SetDataType(ftAutoInc); }

// --- TLargeintField -----------------------------------------------------------------------------

TLargeintField::TLargeintField(TComponent* AOwner) : TNumericField(AOwner) { SetDataType(ftLargeint); }

int64_t TLargeintField::GetAsLargeInt() const {
  int64_t value = 0;
  return GetData(&value) ? value : 0;
}

std::string TLargeintField::GetAsString() const {
  int64_t value = 0;
  return GetData(&value) ? IntToStr(value) : std::string();
}

Variant TLargeintField::GetAsVariant() const {
  int64_t value = 0;
  return GetData(&value) ? Variant(static_cast<long long>(value)) : Null();
}

void TLargeintField::SetAsLargeInt(int64_t Value) {
  if ((FMinValue != 0 || FMaxValue != 0) && (Value < FMinValue || Value > FMaxValue))
    DatabaseError(FmtMsg(SFieldRangeError, {IntToStr(Value), DisplayName(), IntToStr(FMinValue), IntToStr(FMaxValue)}));
  SetData(&Value);
}

void TLargeintField::SetAsFloat(double Value) { SetIntegerFromFloat(Value); }

void TLargeintField::SetAsString(const std::string& Value) { SetIntegerFromText(Value); }

void TLargeintField::SetVarValue(const Variant& Value) { SetAsLargeInt(Value.AsInt64()); }

void TLargeintField::GetText(std::string& Text, bool DisplayText) const {
  int64_t value = 0;
  if (!GetData(&value)) {
    Text.clear();
    return;
  }
  const std::string& pattern = FormatFor(DisplayText);
  Text = pattern.empty() ? IntToStr(value) : FormatFloat(pattern, static_cast<double>(value));
}

// --- Class tables -------------------------------------------------------------------------------

const TClassInfo& TNumericField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TNumericField>("TNumericField", &TField::StaticClass())
          .Property("DisplayFormat", &TNumericField::DisplayFormat, &TNumericField::SetDisplayFormat, "")
          .Property("EditFormat", &TNumericField::EditFormat, &TNumericField::SetEditFormat, "")
          .Build();
  return info;
}

const TClassInfo& TIntegerField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TIntegerField>("TIntegerField", &TNumericField::StaticClass())
          .Creatable()
          .Property("MaxValue", &TIntegerField::MaxValue, &TIntegerField::SetMaxValue, 0)
          .Property("MinValue", &TIntegerField::MinValue, &TIntegerField::SetMinValue, 0)
          .Build();
  return info;
}

const TClassInfo& TSmallintField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TSmallintField>("TSmallintField", &TIntegerField::StaticClass()).Creatable().Build();
  return info;
}

const TClassInfo& TWordField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TWordField>("TWordField", &TIntegerField::StaticClass()).Creatable().Build();
  return info;
}

const TClassInfo& TAutoIncField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TAutoIncField>("TAutoIncField", &TIntegerField::StaticClass()).Creatable().Build();
  return info;
}

const TClassInfo& TLargeintField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TLargeintField>("TLargeintField", &TNumericField::StaticClass())
          .Creatable()
          .Property("MaxValue", &TLargeintField::MaxValue, &TLargeintField::SetMaxValue, 0)
          .Property("MinValue", &TLargeintField::MinValue, &TLargeintField::SetMinValue, 0)
          .Build();
  return info;
}

}  // namespace fw
