// TStringField: an 8-bit character field of at most Size characters (framework layer).
#pragma once

#include "TField.h"

namespace fw {

/// Native format: Size + 1 bytes, the characters followed by a zero byte. An empty string is
/// an empty, non-null value. Text longer than Size is truncated on writing.
class TStringField : public TField {
 public:
  explicit TStringField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  int DataSize() const override { return Size() + 1; }
  bool FixedChar() const { return FFixedChar; }
  void SetFixedChar(bool Value) { FFixedChar = Value; }
  /// Text passes through DataSet()->Translate when true.
  bool Transliterate() const { return FTransliterate; }
  void SetTransliterate(bool Value) { FTransliterate = Value; }

  void SetAsString(const std::string& Value) override;
  /// Decimal text.
  void SetAsInteger(int32_t Value) override;
  void SetAsLargeInt(int64_t Value) override;
  /// FloatToStr text.
  void SetAsFloat(double Value) override;
  /// "T" or "F".
  void SetAsBoolean(bool Value) override;
  /// DateTimeToStr text.
  void SetAsDateTime(TDateTime Value) override;

 protected:
  /// The characters up to the terminator, never more than Size; "" when null.
  std::string GetAsString() const override;
  /// Parses the text; EConvertError when it is not a number.
  int32_t GetAsInteger() const override;
  int64_t GetAsLargeInt() const override;
  double GetAsFloat() const override;
  /// True when the text starts with T or Y (any case).
  bool GetAsBoolean() const override;
  /// StrToDateTime of the text (EConvertError when it is no date).
  TDateTime GetAsDateTime() const override;
  Variant GetAsVariant() const override;
  void SetVarValue(const Variant& Value) override;
  int GetDefaultWidth() const override { return Size(); }
  /// Negative sizes raise.
  void CheckSize(int Value) const override;

 private:
  bool FFixedChar = false;
  bool FTransliterate = true;
};

}  // namespace fw
