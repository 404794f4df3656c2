// Unit CTreeReg: registration of the components and of TCTTable's property editors.
#include "CTreeReg.h"

#include "Ctdb.h"
#include "DesignIntf.h"
#include "TCTBatchCopy.h"
#include "TCTTable.h"

namespace CTreeReg {

void Register() {
  const fw::TClassInfo& table = CTTables::TCTTable::StaticClass();
  fw::RegisterComponents(kPalettePage, {&Ctdb::TCTConnection::StaticClass()});
  fw::RegisterComponents(kPalettePage, {&table});
  fw::RegisterComponents(kPalettePage, {&CTTables::TCTBatchCopy::StaticClass()});
  fw::RegisterPropertyEditor(fw::pkString, &table, "Database", TDatabaseEditor::EditorClass());
  fw::RegisterPropertyEditor(fw::pkString, &table, "TableName", TTableNameEditor::EditorClass());
  fw::RegisterPropertyEditor(fw::pkString, &table, "IndexName", TIndexEditor::EditorClass());
  fw::RegisterPropertyEditor(fw::pkString, &table, "MasterFields",
                             TMasterFieldsEditor::EditorClass());
}

}  // namespace CTreeReg
