// FormDocument: the form a designer edits, without a screen: loading, components, property editors,
// saving (tools, ctdesign).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "IDesigner.h"
#include "TClassInfo.h"
#include "TComponent.h"
#include "TPropertyEditor.h"

namespace ctdesign {

/// One published property of the selected component and its editor (null when no editor is
/// registered for its kind: sets, sub-objects, binary values are shown, not edited).
struct PropertyRow {
  const fw::TPropInfo* Info;
  std::unique_ptr<fw::TPropertyEditor> Editor;
};

/// The form file being designed. Its components carry csDesigning; the form is the root that
/// property editors reach through fw::FindRootDesigner. A host adds the screen by implementing
/// the dialogs (ExecuteOpenDialog, and any further design interface such as the link editor's).
///
/// A file that does not exist starts a new form "object <Name>: TDataModule", named after the
/// file. A file that cannot be read (malformed text, an unknown class, ...) leaves an empty
/// form with LoadError() set: nothing can be added to it and Save refuses, so the file is never
/// overwritten by what could not be read.
class FormDocument : public fw::IDesigner {
 public:
  explicit FormDocument(std::string fileName);
  ~FormDocument() override;
  FormDocument(const FormDocument&) = delete;
  FormDocument& operator=(const FormDocument&) = delete;

  const std::string& FileName() const { return FFileName; }
  /// The reader's message ("Line N: ...") when the file could not be read; "" otherwise.
  const std::string& LoadError() const { return FLoadError; }
  /// True when the file did not exist.
  bool IsNew() const { return FNew; }
  /// Whether the form changed since it was read or saved.
  bool IsModified() const { return FModified; }

  fw::TComponent* Root() const override { return FRoot.get(); }
  void Modified() override { FModified = true; }

  /// The form's components in their order.
  std::vector<fw::TComponent*> Components() const;
  /// The selected component (nullptr for none); Select takes a component of the form or nullptr.
  fw::TComponent* Selected() const { return FSelected; }
  void Select(fw::TComponent* component);
  /// Creates a component of `cls` on the form, named after its class ("TCTTable" gives
  /// "CTTable1", or the next free number), and selects it. fw::Exception when the form could
  /// not be read; what the class's constructor raises.
  fw::TComponent* AddComponent(const fw::TClassInfo& cls);
  /// Destroys the selected component (references to it are cleared by their owners); nothing
  /// when none is selected.
  void DeleteSelected();
  /// The selected component's published properties in published order with their editors;
  /// empty without a selection.
  std::vector<PropertyRow> Properties();

  /// Writes the form text to a new file beside FileName() and renames it over the old one, so
  /// that an interrupted save leaves the old file whole. Raises fw::Exception when the form could
  /// not be read, fw::EInOutError when writing fails (the old file is untouched, the new one
  /// removed), and what the form writer raises.
  void Save();

 private:
  void Load();

  std::string FFileName;
  std::string FLoadError;
  bool FNew = false;
  bool FModified = false;
  std::unique_ptr<fw::TClassInfo> FRootClass;  // the class of a stand-in root; outlives it
  fw::TComponentPtr<fw::TComponent> FRoot;
  fw::TComponent* FSelected = nullptr;
};

}  // namespace ctdesign
