// TEnumProperty: the editor of enumeration and boolean properties (framework layer, design time).
#pragma once

#include "TPropertyEditor.h"

namespace fw {

/// The member names of a pkEnum property ("False" and "True" for pkBoolean), in ordinal order,
/// as a value list. SetValue takes a member name (case-insensitive); any other text raises
/// EConvertError.
class TEnumProperty : public TPropertyEditor {
 public:
  using TPropertyEditor::TPropertyEditor;
  /// The base's plus paValueList.
  TPropertyAttributes GetAttributes() const override;
  std::string GetValue() const override;
  void SetValue(const std::string& value) override;
  void GetValues(const TGetStrProc& proc) override;

 private:
  std::vector<std::string> Names() const;
};

}  // namespace fw
