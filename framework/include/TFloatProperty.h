// TFloatProperty: the editor of floating-point and currency properties (framework layer, design
// time).
#pragma once

#include "TPropertyEditor.h"

namespace fw {

/// Number text (the format settings' decimal separator) for pkFloat and pkCurrency properties;
/// text that is not a number raises EConvertError.
class TFloatProperty : public TPropertyEditor {
 public:
  using TPropertyEditor::TPropertyEditor;
  std::string GetValue() const override;
  void SetValue(const std::string& value) override;
};

}  // namespace fw
