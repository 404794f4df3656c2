// DesignerWindow: the full-screen designer of one form: palette, components, properties (tools,
// ctdesign).
#pragma once

#include <string>
#include <vector>

#include "FormDocument.h"
#include "Screen.h"
#include "UnitDetailEdit.h"

namespace ctdesign {

/// The form document with a keyboard-driven face: three panes (the palette's pages and
/// classes, the form's components, the selected component's properties), a message line and a
/// key line; "?" shows every key. It shows the property editors' value lists, text fields and
/// dialogs (open-file dialog, link editor). Errors raised by editors are shown, never fatal.
class DesignerWindow : public FormDocument, public UnitDetailEdit::IDetailEditHost {
 public:
  /// Opens `fileName` (see FormDocument). A Screen must exist while Run runs.
  explicit DesignerWindow(std::string fileName);

  /// Handles keys until the user quits.
  void Run();

  bool ExecuteOpenDialog(fw::TOpenDialog& dialog) override;
  bool ShowDetailEdit(UnitDetailEdit::TfrmDetailEdit& form) override;

 private:
  enum Pane { kPalette, kComponents, kProperties, kPanes };
  struct PaletteItem {
    std::string Text;
    const fw::TClassInfo* Class;  // null for a page caption
  };

  void Draw();
  void DrawProperties(int row, int col, int height, int width);
  /// Handles one key of the main view; false when the user asked to quit.
  bool HandleKey(int key);
  void Activate();  // Enter in the focused pane
  void AddFromPalette();
  void EditProperty(bool typed);
  void Find();
  void DeleteComponent();
  bool ConfirmQuit();
  void ShowHelp();
  void SelectAt(int index);
  void RefreshProperties();
  void Say(const std::string& text, bool error = false);
  int ListHeight() const;

  std::vector<PaletteItem> FPalette;
  std::vector<PropertyRow> FRows;
  ListCursor FCursors[kPanes];
  Pane FFocus = kPalette;
  std::string FMessage;
  bool FMessageIsError = false;
};

}  // namespace ctdesign
