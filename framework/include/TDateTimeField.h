// TDateTimeField, TDateField and TTimeField: date and time fields (framework layer).
#pragma once

#include "DateTime.h"
#include "TField.h"

namespace fw {

/// A date-time field. Native formats (TDateTimeRec): ftDate a 4-byte day number (0001-01-01 is
/// 1), ftTime 4 bytes of milliseconds since midnight, ftDateTime an 8-byte double of
/// milliseconds counted from day 1 (not a TDateTime). The value type is TDateTime, reached
/// through non-native GetData/SetData. Text "" clears the field.
class TDateTimeField : public TField {
 public:
  explicit TDateTimeField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  int DataSize() const override { return DataType() == ftDateTime ? 8 : 4; }
  /// FormatDateTime pattern for display; empty: the class default.
  const std::string& DisplayFormat() const { return FDisplayFormat; }
  void SetDisplayFormat(const std::string& Value);

  void SetAsDateTime(TDateTime Value) override;
  void SetAsFloat(double Value) override { SetAsDateTime(Value); }
  /// "" clears; else StrToDateTime (time fields: StrToTime); bad text raises EConvertError.
  void SetAsString(const std::string& Value) override;

 protected:
  TDateTime GetAsDateTime() const override;
  double GetAsFloat() const override { return GetAsDateTime(); }
  std::string GetAsString() const override;
  Variant GetAsVariant() const override;
  void SetVarValue(const Variant& Value) override;
  void GetText(std::string& Text, bool DisplayText) const override;
  int GetDefaultWidth() const override { return 18; }

 private:
  std::string FDisplayFormat;
};

/// ftDate: a day number.
class TDateField : public TDateTimeField {
 public:
  explicit TDateField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

 protected:
  int GetDefaultWidth() const override { return 10; }
};

/// ftTime: milliseconds since midnight.
class TTimeField : public TDateTimeField {
 public:
  explicit TTimeField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

 protected:
  int GetDefaultWidth() const override { return 10; }
};

}  // namespace fw
