// TMasterFieldsEditor: MasterFields through the master/detail link editor.
#include "TMasterFieldsEditor.h"

#include "ECTreeTableEditorError.h"
#include "IDesigner.h"
#include "SelectedTable.h"
#include "TDataSource.h"
#include "UnitDetailEdit.h"

namespace CTreeReg {

const fw::TPropertyEditorClass& TMasterFieldsEditor::EditorClass() {
  static const auto cls = fw::MakePropertyEditorClass<TMasterFieldsEditor>("TMasterFieldsEditor");
  return cls;
}

fw::TPropertyAttributes TMasterFieldsEditor::GetAttributes() const { return {fw::paDialog}; }

void TMasterFieldsEditor::Edit() {
  CTTables::TCTTable& table = SelectedTable(*this);
  fw::TDataSet* master =
      table.MasterSource() != nullptr ? table.MasterSource()->DataSet() : nullptr;
  if (master == nullptr)
    throw ECTreeTableEditorError("Please select a MasterSource with a dataset for " + table.Name() +
                                 " first");
  if (UnitDetailEdit::CallDetailEdit(&table, master)) Designer().Modified();
}

}  // namespace CTreeReg
