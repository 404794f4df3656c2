// TComponentProperty: the editor of references to other components (framework layer, design time).
#pragma once

#include "TPropertyEditor.h"

namespace fw {

/// A pkComponent property shown by the referenced component's name ("" for none). The value
/// list holds the named components the designer's root owns whose class fits the property,
/// sorted. SetValue takes such a name or "" (none); a name the root does not own, or a
/// component of another class, raises EConvertError.
class TComponentProperty : public TPropertyEditor {
 public:
  using TPropertyEditor::TPropertyEditor;
  /// The base's plus paValueList and paSortList.
  TPropertyAttributes GetAttributes() const override;
  std::string GetValue() const override;
  void SetValue(const std::string& value) override;
  void GetValues(const TGetStrProc& proc) override;
};

}  // namespace fw
