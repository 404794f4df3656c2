// FileDialogView: the designer's face of the open-file dialog (tools, ctdesign).
#pragma once

#include "Screen.h"

namespace fw {
class TOpenDialog;
}

namespace ctdesign {

/// Shows `dialog`: a file-name field (starting with the dialog's FileName, a directory and a
/// mask) over the folders and the files of that directory that match the mask (the field's
/// when it has "*" or "?", else the filter's first). Typing edits the field and lists anew;
/// Up and Down pick from the list, which fills the field; Enter on a folder opens it, on a
/// mask lists it, on a file name confirms it. Escape cancels. Returns true with the chosen
/// file (made absolute) in dialog.FileName().
bool RunFileDialog(const Redraw& redraw, fw::TOpenDialog& dialog);

}  // namespace ctdesign
