// FormDocument: loading forms for design, adding components, and saving without losing the old
// file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "CTreeReg.h"
#include "Ctdb.h"
#include "Exception.h"
#include "FormDocument.h"
#include "TCTTable.h"

namespace ctdesign {
namespace {

class Document : public FormDocument {
 public:
  using FormDocument::FormDocument;
  bool ExecuteOpenDialog(fw::TOpenDialog&) override { return false; }
};

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

class FormDocumentTest : public ::testing::Test {
 protected:
  FormDocumentTest() {
    CTreeReg::Register();
    char pattern[] = "/tmp/formdoc_test_XXXXXX";
    Dir = mkdtemp(pattern);
  }
  ~FormDocumentTest() override { std::filesystem::remove_all(Dir); }
  std::filesystem::path Dir;
};

TEST_F(FormDocumentTest, NewFormIsNamedAfterItsFileAndReadsBackAsSaved) {
  const std::string file = (Dir / "order-entry.fm").string();
  {
    Document doc(file);
    EXPECT_TRUE(doc.IsNew());
    EXPECT_EQ(doc.Root()->Name(), "Order_entry");
    fw::TComponent* db = doc.AddComponent(Ctdb::TCTConnection::StaticClass());
    fw::TComponent* table = doc.AddComponent(CTTables::TCTTable::StaticClass());
    doc.AddComponent(Ctdb::TCTConnection::StaticClass());
    EXPECT_EQ(db->Name(), "CTConnection1");
    EXPECT_EQ(doc.Selected()->Name(), "CTConnection2");
    EXPECT_TRUE(table->ComponentState().Contains(fw::csDesigning));
    EXPECT_EQ(fw::FindRootDesigner(table), &doc);
    dynamic_cast<CTTables::TCTTable*>(table)->SetConnection(dynamic_cast<Ctdb::TCTConnection*>(db));
    doc.Select(db);
    doc.DeleteSelected();  // the table's reference goes with it
    EXPECT_EQ(dynamic_cast<CTTables::TCTTable*>(table)->Connection(), nullptr);
    EXPECT_TRUE(doc.IsModified());
    doc.Save();
    EXPECT_FALSE(doc.IsModified());
  }
  EXPECT_EQ(ReadFile(file),
            "object Order_entry: TDataModule\n  object CTTable1: TCTTable\n  end\n"
            "  object CTConnection2: TCTConnection\n  end\nend\n");
  Document again(file);
  EXPECT_TRUE(again.LoadError().empty());
  ASSERT_EQ(again.Components().size(), 2u);
  EXPECT_TRUE(again.Components()[0]->ComponentState().Contains(fw::csDesigning));
  EXPECT_EQ(again.AddComponent(CTTables::TCTTable::StaticClass())->Name(), "CTTable2");
}

TEST_F(FormDocumentTest, AProgramsOwnFormClassIsKeptByName) {
  const std::string file = (Dir / "orders.fm").string();
  const std::string text =
      "object Orders: TOrdersModule\n  object Db: TCTConnection\n    MaxFiles = 60\n  end\nend\n";
  std::ofstream(file) << text;
  Document doc(file);
  EXPECT_EQ(doc.LoadError(), "");
  EXPECT_EQ(doc.Root()->ClassName(), "TOrdersModule");
  doc.Save();
  EXPECT_EQ(ReadFile(file), text);
}

TEST_F(FormDocumentTest, AFormThatDoesNotReadIsNeverWrittenBack) {
  const std::string file = (Dir / "broken.fm").string();
  const std::string text =
      "object Broken: TDataModule\n  object Db: TCTConnection\n    MaxFiles = 'many'\n  end\nend\n";
  std::ofstream(file) << text;
  Document doc(file);
  EXPECT_NE(doc.LoadError().find("Line 3"), std::string::npos) << doc.LoadError();
  EXPECT_TRUE(doc.Components().empty());
  EXPECT_THROW(doc.AddComponent(Ctdb::TCTConnection::StaticClass()), fw::Exception);
  EXPECT_THROW(doc.Save(), fw::Exception);
  EXPECT_EQ(ReadFile(file), text);
}

TEST_F(FormDocumentTest, AFailedSaveLeavesTheOldFile) {
  const std::string file = (Dir / "kept.fm").string();
  std::ofstream(file) << "object Kept: TDataModule\nend\n";
  Document doc(file);
  doc.AddComponent(Ctdb::TCTConnection::StaticClass());
  // The new text's file cannot be made: a directory has its name.
  std::filesystem::create_directory(file + ".saving-" + std::to_string(getpid()));
  EXPECT_THROW(doc.Save(), fw::EInOutError);
  EXPECT_EQ(ReadFile(file), "object Kept: TDataModule\nend\n");
  EXPECT_TRUE(doc.IsModified());
}

}  // namespace
}  // namespace ctdesign
