// TIntegerProperty: the editor of integer properties (framework layer, design time).
#pragma once

#include "TPropertyEditor.h"

namespace fw {

/// Decimal text for pkInteger and pkInt64 properties. Text that is not an integer raises
/// EConvertError; a number outside the property's type raises the setter's EConvertError.
class TIntegerProperty : public TPropertyEditor {
 public:
  using TPropertyEditor::TPropertyEditor;
  std::string GetValue() const override;
  void SetValue(const std::string& value) override;
};

}  // namespace fw
