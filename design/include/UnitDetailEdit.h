// Unit UnitDetailEdit: the master/detail link editor, its logic and the entry that opens it
// (design layer).
#pragma once

#include "IDetailEditHost.h"
#include "TfrmDetailEdit.h"

namespace UnitDetailEdit {

/// Opens the link editor for detail `table` and `master` through the designer of the table's
/// form (fw::FindRootDesigner, which must implement IDetailEditHost) and, when the user
/// confirms, writes the result (TfrmDetailEdit::Apply). Returns whether it wrote. Raises
/// fw::Exception for a null table or master or when no designer of the form can show the
/// editor, and what TfrmDetailEdit raises.
bool CallDetailEdit(CTTables::TCTTable* table, fw::TDataSet* master);

}  // namespace UnitDetailEdit
