// Shared fixture of the design-layer tests.
#include "DesignTestSupport.h"

#include <unistd.h>

#include "CTreeReg.h"

namespace CTreeReg::testing {

bool ScriptedDesigner::ExecuteOpenDialog(fw::TOpenDialog& dialog) {
  ++DialogsShown;
  ShownFilter = dialog.Filter();
  ShownFileName = dialog.FileName();
  if (ChosenFile.empty()) return false;
  dialog.SetFileName(ChosenFile);
  return true;
}

bool ScriptedDesigner::ShowDetailEdit(UnitDetailEdit::TfrmDetailEdit& form) {
  ++DialogsShown;
  return DetailEdit && DetailEdit(form);
}

DesignTest::DesignTest() {
  CTreeReg::Register();
  char pattern[] = "/tmp/design_test_XXXXXX";
  Dir = mkdtemp(pattern);
  OldDir = std::filesystem::current_path();
  std::filesystem::current_path(Dir);
  Form.reset(new fw::TDataModule(nullptr));
  Form->SetDesigning(true);
  Designer = std::make_unique<ScriptedDesigner>(Form.get());
  fw::SetRootDesigner(Form.get(), Designer.get());
  Conn = new Ctdb::TCTConnection(Form.get());
  Conn->SetName("Db");
  Conn->SetDataExt(".dat");
  Conn->SetActive(true);
}

DesignTest::~DesignTest() {
  fw::SetRootDesigner(Form.get(), nullptr);
  Form.reset();
  std::filesystem::current_path(OldDir);
  std::error_code ignored;
  std::filesystem::remove_all(Dir, ignored);
}

CTTables::TCTTable* DesignTest::NewTable(const std::string& tableName, bool connected) {
  auto* table = new CTTables::TCTTable(Form.get());
  if (connected) table->SetConnection(Conn);
  table->SetDatabase(Dir.string());
  table->SetTableName(tableName);
  return table;
}

void DesignTest::CreateTable(const std::string& tableName, const std::vector<std::string>& fields,
                             const std::vector<std::pair<std::string, std::string>>& indexes,
                             const std::vector<std::vector<int32_t>>& rows,
                             const std::string& superFile) {
  fw::TComponentPtr<CTTables::TCTTable> table(new CTTables::TCTTable(nullptr));
  table->SetConnection(Conn);
  // A super-file table's Database names the super file and its TableName the member.
  table->SetIsSuperFile(!superFile.empty());
  table->SetDatabase((superFile.empty() ? Dir : Dir / superFile).string());
  table->SetTableName(tableName);
  for (const std::string& f : fields) {
    const bool text = f.ends_with(":text");
    table->FieldDefs()->Add(f.substr(0, f.find(':')), text ? fw::ftString : fw::ftInteger,
                            text ? 20 : 0);
  }
  table->IndexDefs()->Add("ByFirst", fields.front().substr(0, fields.front().find(':')), "", true,
                          false, {fw::ixPrimary, fw::ixUnique});
  for (const auto& [name, keys] : indexes) table->IndexDefs()->Add(name, keys, "", true, false, {});
  table->CreateTable();
  if (rows.empty()) return;
  table->Open();
  for (const auto& row : rows) {
    std::vector<fw::Variant> values;
    for (int32_t v : row) values.emplace_back(v);
    while (values.size() < fields.size()) values.emplace_back(std::string("x"));
    table->AppendRecord(values);
  }
}

std::unique_ptr<fw::TPropertyEditor> DesignTest::EditorFor(fw::TComponent* component,
                                                           const std::string& prop) {
  const fw::TPropInfo* info = component->ClassType().FindProperty(prop);
  EXPECT_NE(info, nullptr) << prop;
  return fw::GetPropertyEditor(*Designer, {component}, *info);
}

std::vector<std::string> DesignTest::ValuesOf(fw::TPropertyEditor& editor) {
  std::vector<std::string> values;
  editor.GetValues([&](const std::string& v) { values.push_back(v); });
  return values;
}

}  // namespace CTreeReg::testing
