// Unit CTreeReg: the package's design-time registration and the property editors of TCTTable
// (design layer). Start with Register below; the editors are in their own headers.
#pragma once

#include "ECTreeTableEditorError.h"
#include "TDatabaseEditor.h"
#include "TIndexEditor.h"
#include "TMasterFieldsEditor.h"
#include "TTableNameEditor.h"

namespace CTreeReg {

/// The palette page of the package's components.
inline constexpr const char* kPalettePage = "CTree";

/// Called by a designer once, when it loads the package: puts TCTConnection and TCTTable on the
/// palette page "CTree" (in that order; they become readable from form files too), then
/// registers the editors for the string properties of TCTTable named "Database",
/// "TableName", "IndexName" and "MasterFields", in that order. Calling it again changes nothing.
void Register();

}  // namespace CTreeReg
