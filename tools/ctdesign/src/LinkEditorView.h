// LinkEditorView: the designer's face of the master/detail link editor (tools, ctdesign).
#pragma once

#include "Screen.h"

namespace UnitDetailEdit {
class TfrmDetailEdit;
}

namespace ctdesign {

/// Shows `form` in four columns: the detail's indexes, the key fields still to pair, the
/// master's fields and the pairs made, with the resulting MasterFields below. Tab and Left /
/// Right move between columns, Up and Down within one. Enter on an index chooses it; Enter on a
/// master field (or "a" anywhere) pairs it with the chosen key field; "d" removes the pair
/// chosen in the Links column (elsewhere the last one) and those after it, "c" removes all;
/// "o" confirms, Escape cancels. A refused choice shows why. Returns true when the user
/// confirmed.
bool RunLinkEditor(const Redraw& redraw, UnitDetailEdit::TfrmDetailEdit& form);

}  // namespace ctdesign
