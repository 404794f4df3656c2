// TStringProperty: the editor of string properties, base of the package's text editors (framework
// layer, design time).
#pragma once

#include "TPropertyEditor.h"

namespace fw {

/// Shows and takes the text as it is. Descendants add value lists or dialogs for particular
/// string properties.
class TStringProperty : public TPropertyEditor {
 public:
  using TPropertyEditor::TPropertyEditor;
  std::string GetValue() const override;
  void SetValue(const std::string& value) override;
};

}  // namespace fw
