// IDetailEditHost: the face a designer gives the link editor (design layer, unit UnitDetailEdit).
#pragma once

namespace UnitDetailEdit {

class TfrmDetailEdit;

/// Implemented by a designer host, on the same object as its fw::IDesigner, to show the link
/// editor; CallDetailEdit finds it through the table's form.
class IDetailEditHost {
 public:
  virtual ~IDetailEditHost() = default;
  /// Lets the user work on `form` until they confirm (true) or cancel (false). The host only
  /// calls the form's choice methods; applying is CallDetailEdit's business.
  virtual bool ShowDetailEdit(TfrmDetailEdit& form) = 0;
};

}  // namespace UnitDetailEdit
