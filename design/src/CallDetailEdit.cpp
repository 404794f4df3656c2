// CallDetailEdit: the link editor shown by the designer of the table's form.
#include "IDesigner.h"
#include "TCTTable.h"
#include "UnitDetailEdit.h"

namespace UnitDetailEdit {

bool CallDetailEdit(CTTables::TCTTable* table, fw::TDataSet* master) {
  if (table == nullptr || master == nullptr)
    throw fw::Exception("The link editor needs a detail table and its master");
  auto* host = dynamic_cast<IDetailEditHost*>(fw::FindRootDesigner(table));
  if (host == nullptr)
    throw fw::Exception("No designer of " + table->Name() + "'s form can show the link editor");
  TfrmDetailEdit form(*table, *master);
  if (!host->ShowDetailEdit(form)) return false;
  form.Apply();
  return true;
}

}  // namespace UnitDetailEdit
