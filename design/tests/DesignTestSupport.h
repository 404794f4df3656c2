// Shared fixture of the design-layer tests: a fresh directory, a form being designed and a
// designer whose dialogs are scripted.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "CTTables.h"
#include "Ctdb.h"
#include "DesignIntf.h"
#include "TDataModule.h"
#include "UnitDetailEdit.h"
#include "Variant.h"

namespace CTreeReg::testing {

/// A designer without a screen: dialogs answer as the test sets them up and are counted.
class ScriptedDesigner : public fw::IDesigner, public UnitDetailEdit::IDetailEditHost {
 public:
  explicit ScriptedDesigner(fw::TComponent* root) : FRoot(root) {}
  fw::TComponent* Root() const override { return FRoot; }
  void Modified() override { ++ModifiedCount; }
  bool ExecuteOpenDialog(fw::TOpenDialog& dialog) override;
  bool ShowDetailEdit(UnitDetailEdit::TfrmDetailEdit& form) override;

  /// The open-file dialog: the settings it was shown with, and the answer (empty: cancel).
  std::string ShownFilter, ShownFileName, ChosenFile;
  /// The link editor: what the user does in it; returns OK (true) or cancel.
  std::function<bool(UnitDetailEdit::TfrmDetailEdit&)> DetailEdit;
  int DialogsShown = 0;
  int ModifiedCount = 0;

 private:
  fw::TComponent* FRoot;
};

/// A temporary directory made current, an active connection with DataExt "dat" on a form in
/// design state, and the designer of that form.
class DesignTest : public ::testing::Test {
 protected:
  DesignTest();
  ~DesignTest() override;

  /// A closed table on the form, in the test directory, on the connection unless `connected` is
  /// false.
  CTTables::TCTTable* NewTable(const std::string& tableName, bool connected = true);
  /// Creates table `tableName` in `Dir`, or as a member of super file `superFile` there. Fields
  /// are integers, or text when written "NAME:text" (text fields come last; rows leave them
  /// "x"); the first field is the unique primary index "ByFirst", `indexes` ("Name", "A;B")
  /// follow.
  void CreateTable(const std::string& tableName, const std::vector<std::string>& fields,
                   const std::vector<std::pair<std::string, std::string>>& indexes,
                   const std::vector<std::vector<int32_t>>& rows = {},
                   const std::string& superFile = "");
  /// The editor the registry gives for property `prop` of `component`.
  std::unique_ptr<fw::TPropertyEditor> EditorFor(fw::TComponent* component,
                                                 const std::string& prop);
  /// The values `editor` lists, in its order.
  static std::vector<std::string> ValuesOf(fw::TPropertyEditor& editor);

  std::filesystem::path Dir;
  std::filesystem::path OldDir;
  fw::TComponentPtr<fw::TDataModule> Form;
  Ctdb::TCTConnection* Conn = nullptr;
  std::unique_ptr<ScriptedDesigner> Designer;
};

}  // namespace CTreeReg::testing
