// TIndexEditor: the indexes of the table, which is opened for the list when closed.
#include "TIndexEditor.h"

#include "SelectedTable.h"

namespace CTreeReg {

const fw::TPropertyEditorClass& TIndexEditor::EditorClass() {
  static const auto cls = fw::MakePropertyEditorClass<TIndexEditor>("TIndexEditor");
  return cls;
}

fw::TPropertyAttributes TIndexEditor::GetAttributes() const {
  return {fw::paValueList, fw::paSortList};
}

void TIndexEditor::GetValues(const fw::TGetStrProc& proc) {
  CTTables::TCTTable& table = SelectedTable(*this);
  const bool wasClosed = !table.Active();
  // Controls showing the table would otherwise follow the brief open and close.
  struct Restore {
    CTTables::TCTTable& Table;
    bool Reopened = false;
    ~Restore() {
      if (!Reopened) return;
      Table.Close();
      Table.EnableControls();
    }
  } restore{table};
  if (wasClosed) {
    table.DisableControls();
    restore.Reopened = true;
    table.Open();
  }
  const Ctdb::TCTCursorDesc* cursor = table.Cursor();
  for (int32_t i = 0; cursor != nullptr && i < cursor->GetIndexCount(); ++i)
    proc(cursor->GetIndexes(i).Name);
}

}  // namespace CTreeReg
