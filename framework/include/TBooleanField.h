// TBooleanField: a two-byte boolean field (framework layer).
#pragma once

#include "TField.h"

namespace fw {

/// Native format: 2 bytes, 0 false, any other value true; true is written as 0xFFFF.
/// DisplayValues "TrueText;FalseText" (default "True;False") is the text form.
class TBooleanField : public TField {
 public:
  explicit TBooleanField(TComponent* AOwner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  int DataSize() const override { return 2; }
  const std::string& DisplayValues() const { return FDisplayValues; }
  /// "yes;no" style pair; a value without ';' sets only the true text. Empty raises.
  void SetDisplayValues(const std::string& Value);

  void SetAsBoolean(bool Value) override;
  /// "" clears (unless a display text is empty); else a case-insensitive prefix of the true
  /// text, then of the false text; anything else raises "not a valid boolean".
  void SetAsString(const std::string& Value) override;
  void SetAsInteger(int32_t Value) override { SetAsBoolean(Value != 0); }

 protected:
  bool GetAsBoolean() const override;
  std::string GetAsString() const override;
  int32_t GetAsInteger() const override { return GetAsBoolean() ? 1 : 0; }
  Variant GetAsVariant() const override;
  void SetVarValue(const Variant& Value) override;
  int GetDefaultWidth() const override;

 private:
  std::string FDisplayValues = "True;False";
  std::string FTrueText = "True";
  std::string FFalseText = "False";
};

}  // namespace fw
