// TDatabaseEditor: Database chosen in an open-file dialog.
#include "TDatabaseEditor.h"

#include "SelectedTable.h"
#include "StringUtils.h"
#include "TOpenDialog.h"

namespace CTreeReg {

const fw::TPropertyEditorClass& TDatabaseEditor::EditorClass() {
  static const auto cls = fw::MakePropertyEditorClass<TDatabaseEditor>("TDatabaseEditor");
  return cls;
}

fw::TPropertyAttributes TDatabaseEditor::GetAttributes() const { return {fw::paDialog}; }

void TDatabaseEditor::Edit() {
  CTTables::TCTTable& table = SelectedTable(*this);
  const Ctdb::TCTConnection* conn = table.Connection();
  if (conn == nullptr) throw fw::Exception("Please select a connection first");
  fw::TOpenDialog dialog(Designer());
  const std::string dir = fw::ExtractFilePath(table.Database());
  if (table.IsSuperFile()) {
    dialog.SetFilter("SuperFiles|*." + conn->SuperFileExt());
    dialog.SetFileName(dir + "*." + conn->SuperFileExt());
  } else {
    dialog.SetFilter("DataFiles|*." + conn->DataExt());
    dialog.SetFileName(dir + "*." + conn->DataExt());
  }
  if (dialog.Execute()) SetValue(dialog.FileName());
}

}  // namespace CTreeReg
