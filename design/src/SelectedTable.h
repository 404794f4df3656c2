// The table an editor of unit CTreeReg works on (design layer, private).
#pragma once

#include "Exception.h"
#include "TCTTable.h"
#include "TComponent.h"
#include "TPropertyEditor.h"

namespace CTreeReg {

/// The editor's first selected component as the TCTTable it is registered for; fw::Exception
/// should a registration have put the editor on another class.
inline CTTables::TCTTable& SelectedTable(const fw::TPropertyEditor& editor) {
  auto* table = dynamic_cast<CTTables::TCTTable*>(editor.GetComponent(0));
  if (table == nullptr)
    throw fw::Exception("Property " + editor.GetName() + " is edited on tables only");
  return *table;
}

}  // namespace CTreeReg
