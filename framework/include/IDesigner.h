// IDesigner: what a form designer does for the property editors, and the designer of each form
// (framework layer, design time).
#pragma once

namespace fw {

class TComponent;
class TOpenDialog;

/// Implemented by a designer host for the form it edits. Property editors reach the screen only
/// through it (and through further interfaces the host may implement, found with
/// dynamic_cast), so that they run without one in tests.
class IDesigner {
 public:
  virtual ~IDesigner() = default;
  /// The form being designed (owner of its components); never null while the form is open.
  virtual TComponent* Root() const = 0;
  /// Tells the designer that a property editor changed the form.
  virtual void Modified() = 0;
  /// Shows `dialog` to the user; true when the user confirmed a file, whose name is then in
  /// `dialog.FileName()`. False on cancel (the dialog is left as it was).
  virtual bool ExecuteOpenDialog(TOpenDialog& dialog) = 0;
};

/// Records `designer` as the designer of form `root` (nullptr forgets it). The record is
/// dropped by itself when `root` is destroyed; the host forgets it before the designer goes.
void SetRootDesigner(TComponent* root, IDesigner* designer);
/// The designer of the form that owns `component` (or of `component` itself when it is a form
/// root); nullptr when none is recorded or `component` is null.
IDesigner* FindRootDesigner(const TComponent* component);

}  // namespace fw
