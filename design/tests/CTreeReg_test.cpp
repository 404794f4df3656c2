// CTreeReg: the palette registration and the four property editors of TCTTable.
#include <gtest/gtest.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "CTreeReg.h"
#include "DesignTestSupport.h"
#include "TCTBatchCopy.h"
#include "TDataSource.h"

namespace CTreeReg::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

std::string MessageOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const fw::Exception& e) {
    return e.Message();
  }
  return "(nothing raised)";
}

using CTreeRegTest = DesignTest;

TEST_F(CTreeRegTest, RegisterFillsThePageAndTheEditorsInOrderOnce) {
  CTreeReg::Register();  // the fixture registered already: nothing is added twice
  const fw::TPalettePage* page = fw::ComponentPalette().FindPage("CTree");
  ASSERT_NE(page, nullptr);
  EXPECT_THAT(page->Classes,
              ElementsAre(&Ctdb::TCTConnection::StaticClass(), &CTTables::TCTTable::StaticClass(),
                          &CTTables::TCTBatchCopy::StaticClass()));
  EXPECT_EQ(fw::GetClass("TCTTable"), &CTTables::TCTTable::StaticClass());

  std::vector<std::string> registered;
  for (const fw::TPropertyEditorEntry& e : fw::RegisteredPropertyEditors())
    if (e.ComponentClass == &CTTables::TCTTable::StaticClass() && e.PropertyType == fw::pkString)
      registered.push_back(e.PropertyName + ":" + e.EditorClass->Name);
  EXPECT_THAT(registered,
              ElementsAre("Database:TDatabaseEditor", "TableName:TTableNameEditor",
                          "IndexName:TIndexEditor", "MasterFields:TMasterFieldsEditor"));

  // The attributes a designer goes by; other string properties keep the plain editor.
  CTTables::TCTTable* table = NewTable("t.dat");
  EXPECT_EQ(EditorFor(table, "Database")->GetAttributes(), fw::TPropertyAttributes{fw::paDialog});
  EXPECT_EQ(EditorFor(table, "TableName")->GetAttributes(),
            (fw::TPropertyAttributes{fw::paValueList, fw::paSortList}));
  EXPECT_EQ(EditorFor(table, "IndexName")->GetAttributes(),
            (fw::TPropertyAttributes{fw::paValueList, fw::paSortList}));
  EXPECT_EQ(EditorFor(table, "MasterFields")->GetAttributes(),
            fw::TPropertyAttributes{fw::paDialog});
  EXPECT_TRUE(EditorFor(table, "Filter")->GetAttributes().IsEmpty());
}

TEST_F(CTreeRegTest, DatabaseDialogNeedsAConnectionAndOffersTheFilesOfTheKind) {
  CTTables::TCTTable* table = NewTable("t.dat", false);
  table->SetDatabase("/srv/ledger/old.dat");
  EXPECT_EQ(MessageOf([&] { EditorFor(table, "Database")->Edit(); }),
            "Please select a connection first");
  EXPECT_EQ(Designer->DialogsShown, 0);

  table->SetConnection(Conn);
  Conn->SetSuperFileExt(".sup");
  EditorFor(table, "Database")->Edit();  // cancelled
  EXPECT_EQ(Designer->ShownFilter, "DataFiles|*.dat");
  EXPECT_EQ(Designer->ShownFileName, "/srv/ledger/*.dat");
  // A Database text naming a file gives the table its folder and its name.
  EXPECT_EQ(table->Database(), "/srv/ledger/");
  EXPECT_EQ(table->TableName(), "old.dat");

  table->SetIsSuperFile(true);
  Designer->ChosenFile = "/srv/ledger/books.sup";
  EditorFor(table, "Database")->Edit();
  EXPECT_EQ(Designer->ShownFilter, "SuperFiles|*.sup");
  EXPECT_EQ(Designer->ShownFileName, "/srv/ledger/*.sup");
  EXPECT_EQ(table->Database(), "/srv/ledger/books.sup");
  EXPECT_EQ(Designer->ModifiedCount, 1);
}

// Each check of the table-name list stops it before anything is listed, in this order.
struct ConnectionProblem {
  const char* Name;
  bool Connected;
  std::function<void(Ctdb::TCTConnection&)> Arrange;
  const char* Message;
};

class TableNameRefusal : public DesignTest,
                         public ::testing::WithParamInterface<ConnectionProblem> {};

TEST_P(TableNameRefusal, ExplainsWhatToSetUp) {
  CTTables::TCTTable* table = NewTable("t.dat", GetParam().Connected);
  Conn->SetActive(false);
  GetParam().Arrange(*Conn);
  EXPECT_EQ(MessageOf([&] { ValuesOf(*EditorFor(table, "TableName")); }), GetParam().Message);
}

INSTANTIATE_TEST_SUITE_P(
    CTreeReg, TableNameRefusal,
    ::testing::Values(
        ConnectionProblem{"NoConnection", false, [](Ctdb::TCTConnection& c) { c.SetDataExt(""); },
                          "The connection property must be assigned first"},
        ConnectionProblem{"NoDataExt", true, [](Ctdb::TCTConnection& c) { c.SetDataExt(""); },
                          "Please specify a DataExt in the CTree Connection component"},
        ConnectionProblem{"Inactive", true, [](Ctdb::TCTConnection&) {},
                          "Please configure and activate the CTree Connection component "}),
    [](const auto& info) { return std::string(info.param.Name); });

TEST_F(CTreeRegTest, TableNamesAreTheDataFilesOfTheDirectory) {
  CreateTable("customers.dat", {"CUSTNO"}, {});
  CreateTable("orders.dat", {"ORDNO", "CUSTNO"}, {{"ByCustomer", "CUSTNO;ORDNO"}});
  std::filesystem::create_directory(Dir / "archive.dat");  // a directory is no table
  std::ofstream(Dir / "notes.txt") << "not a table";
  CTTables::TCTTable* table = NewTable("");
  EXPECT_THAT(ValuesOf(*EditorFor(table, "TableName")),
              UnorderedElementsAre("customers.dat", "orders.dat"));

  table->SetDatabase("");  // the current directory
  EXPECT_THAT(ValuesOf(*EditorFor(table, "TableName")),
              UnorderedElementsAre("customers.dat", "orders.dat"));
}

TEST_F(CTreeRegTest, SuperFileListsItsTablesWithoutIndexMembers) {
  CreateTable("customers.dat", {"CUSTNO"}, {}, {}, "books.sup");
  CreateTable("orders.dat", {"ORDNO", "CUSTNO"}, {{"ByCustomer", "CUSTNO;ORDNO"}}, {}, "books.sup");
  CTTables::TCTTable* table = NewTable("");
  table->SetIsSuperFile(true);
  table->SetDatabase((Dir / "books.sup").string());
  EXPECT_THAT(ValuesOf(*EditorFor(table, "TableName")),
              UnorderedElementsAre("customers.dat", "orders.dat"));

  table->SetDatabase((Dir / "missing.sup").string());
  EXPECT_TRUE(ValuesOf(*EditorFor(table, "TableName")).empty());
}

TEST_F(CTreeRegTest, IndexNamesOfAClosedTableLeaveItClosed) {
  CreateTable("orders.dat", {"ORDNO", "CUSTNO"}, {{"ByCustomer", "CUSTNO;ORDNO"}});
  CTTables::TCTTable* table = NewTable("orders.dat");
  int changes = 0;
  fw::TDataSource source(Form.get());
  source.SetDataSet(table);
  source.OnStateChange = [&](fw::TDataSource*) { ++changes; };
  EXPECT_THAT(ValuesOf(*EditorFor(table, "IndexName")), ElementsAre("ByFirst", "ByCustomer"));
  EXPECT_FALSE(table->Active());
  EXPECT_EQ(changes, 0);  // its controls saw nothing of the brief open

  table->Open();
  EXPECT_THAT(ValuesOf(*EditorFor(table, "IndexName")), ElementsAre("ByFirst", "ByCustomer"));
  EXPECT_TRUE(table->Active());

  CTTables::TCTTable* missing = NewTable("missing.dat");
  EXPECT_THROW(ValuesOf(*EditorFor(missing, "IndexName")), CTDbIntf::ECtreeException);
  EXPECT_FALSE(missing->Active());
}

TEST_F(CTreeRegTest, MasterFieldsDialogNeedsAMasterAndWritesWhatTheUserConfirms) {
  CreateTable("customers.dat", {"CUSTNO"}, {});
  CreateTable("orders.dat", {"ORDNO", "CUSTNO"}, {{"ByCustomer", "CUSTNO;ORDNO"}});
  CTTables::TCTTable* orders = NewTable("orders.dat");
  orders->SetName("Orders");
  EXPECT_THROW(EditorFor(orders, "MasterFields")->Edit(), ECTreeTableEditorError);

  CTTables::TCTTable* customers = NewTable("customers.dat");
  auto* source = new fw::TDataSource(Form.get());
  source->SetDataSet(customers);
  orders->SetMasterSource(source);
  Designer->DetailEdit = [](UnitDetailEdit::TfrmDetailEdit& form) {
    form.SelectIndex("ByCustomer");
    form.AddLink("CUSTNO", "CUSTNO");
    return true;
  };
  EditorFor(orders, "MasterFields")->Edit();
  EXPECT_EQ(orders->MasterFields(), "CUSTNO");
  EXPECT_EQ(orders->IndexName(), "ByCustomer");
  EXPECT_EQ(Designer->ModifiedCount, 1);
}

}  // namespace
}  // namespace CTreeReg::testing
