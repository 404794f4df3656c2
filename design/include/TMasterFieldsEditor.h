// TMasterFieldsEditor: the property editor of TCTTable.MasterFields (design layer, unit CTreeReg).
#pragma once

#include "PropertyEditorRegistry.h"
#include "TStringProperty.h"

namespace CTreeReg {

/// Editor of TCTTable's "MasterFields" property: the link editor (paDialog). Edit:
/// ECTreeTableEditorError when the table's MasterSource has no dataset; otherwise
/// UnitDetailEdit::CallDetailEdit with the table and the master dataset, which writes
/// MasterFields (and IndexName) when the user confirms.
/// Works on the first selected component, a CTTables::TCTTable.
class TMasterFieldsEditor : public fw::TStringProperty {
 public:
  using fw::TStringProperty::TStringProperty;
  static const fw::TPropertyEditorClass& EditorClass();
  fw::TPropertyAttributes GetAttributes() const override;
  void Edit() override;
};

}  // namespace CTreeReg
