// TIndexEditor: the property editor of TCTTable.IndexName (design layer, unit CTreeReg).
#pragma once

#include "PropertyEditorRegistry.h"
#include "TStringProperty.h"

namespace CTreeReg {

/// Editor of TCTTable's "IndexName" property: the index names of the table (paValueList,
/// paSortList). GetValues opens a closed table (its controls disabled meanwhile) and closes it
/// again afterwards, also when listing fails; the names are those of the index descriptors by
/// ordinal from 0. Raises what opening the table raises.
/// Works on the first selected component, a CTTables::TCTTable.
class TIndexEditor : public fw::TStringProperty {
 public:
  using fw::TStringProperty::TStringProperty;
  static const fw::TPropertyEditorClass& EditorClass();
  fw::TPropertyAttributes GetAttributes() const override;
  void GetValues(const fw::TGetStrProc& proc) override;
};

}  // namespace CTreeReg
