// TDatabaseEditor: the property editor of TCTTable.Database (design layer, unit CTreeReg).
#pragma once

#include "PropertyEditorRegistry.h"
#include "TStringProperty.h"

namespace CTreeReg {

/// Editor of TCTTable's "Database" property: the data file or super file chosen in an open-file
/// dialog (paDialog). Edit raises fw::Exception "Please select a connection first" when the
/// table has no connection, and then opens no dialog. Otherwise the dialog is filtered to the
/// connection's super files ("SuperFiles|*.<SuperFileExt>") for a super-file table, else to its
/// data files ("DataFiles|*.<DataExt>"), and starts at the directory part of Database followed
/// by that mask. The confirmed file name becomes Database; cancelling changes nothing.
/// Works on the first selected component, a CTTables::TCTTable.
class TDatabaseEditor : public fw::TStringProperty {
 public:
  using fw::TStringProperty::TStringProperty;
  static const fw::TPropertyEditorClass& EditorClass();
  fw::TPropertyAttributes GetAttributes() const override;
  void Edit() override;
};

}  // namespace CTreeReg
