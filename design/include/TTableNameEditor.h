// TTableNameEditor: the property editor of TCTTable.TableName (design layer, unit CTreeReg).
#pragma once

#include "PropertyEditorRegistry.h"
#include "TStringProperty.h"

namespace CTreeReg {

/// Editor of TCTTable's "TableName" property: the table names found where Database points
/// (paValueList, paSortList). GetValues, checked in this order: fw::Exception "The connection
/// property must be assigned first" without connection, "Please specify a DataExt in the CTree
/// Connection component" when DataExt is empty, "Please configure and activate the CTree
/// Connection component " when the connection is inactive. A super-file table lists the members
/// of the super file Database names, without index members (names containing ".idx"), and
/// nothing when it does not open. Otherwise it lists the files of the directory Database (the
/// current directory when empty) matching "*.<DataExt>" (DataExt as it stands when it holds a
/// "."), names as found.
/// Works on the first selected component, a CTTables::TCTTable.
class TTableNameEditor : public fw::TStringProperty {
 public:
  using fw::TStringProperty::TStringProperty;
  static const fw::TPropertyEditorClass& EditorClass();
  fw::TPropertyAttributes GetAttributes() const override;
  void GetValues(const fw::TGetStrProc& proc) override;
};

}  // namespace CTreeReg
