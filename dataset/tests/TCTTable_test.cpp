// TCTTable: opening, browsing, index choice, editing, bookmarks and record numbers over real
// engine files.
#include <algorithm>
#include <filesystem>

#include "TDataLink.h"
#include "TDataSource.h"
#include "TField.h"
#include "TFloatField.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

using Table = TableTest;

Ids SortedIds() {
  Ids ids;
  for (const Person& p : People()) ids.push_back(p.Id);
  std::sort(ids.begin(), ids.end());
  return ids;
}

const Ids kByCity = {1, 3, 8, 2, 4, 7, 10, 5, 6, 9};

TEST_F(Table, OpensOnThePrimaryIndexAndBrowsesBothWays) {
  FillPeople();
  TCTTable* table = NewTable();
  EXPECT_EQ(table->OpenFlag(), Ctdb::ofClosed);
  table->Open();
  EXPECT_EQ(table->OpenFlag(), Ctdb::ofOpen);
  EXPECT_EQ(table->IndexName(), "ById");
  EXPECT_EQ(table->FieldCount(), 4);
  EXPECT_EQ(table->FieldByName("NAME")->DataType(), fw::ftString);
  EXPECT_EQ(table->RecordCount(), 10);
  EXPECT_EQ(IdsToEnd(*table), SortedIds());
  EXPECT_EQ(table->RecNo(), 10);  // past the last record the number is the count
  Ids expected = SortedIds();
  std::reverse(expected.begin(), expected.end());
  EXPECT_EQ(IdsBackwards(*table), expected);

  table->First();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Arvid");
  EXPECT_EQ(table->FieldByName("CITY")->AsString(), "Bergen");
  EXPECT_DOUBLE_EQ(table->FieldByName("AMOUNT")->AsFloat(), 10);
  EXPECT_EQ(Conn->DataSetCount(), 1);
  table->Close();
  EXPECT_EQ(table->OpenFlag(), Ctdb::ofClosed);
  EXPECT_EQ(Conn->DataSetCount(), 0);
}

TEST_F(Table, IndexIsChosenByNameOrFieldsWhetherOpenOrClosed) {
  TCTTable* table = OpenPeople();
  table->SetIndexName("ByName");
  EXPECT_EQ(table->IndexName(), "ByName");
  table->First();
  std::vector<std::string> names;
  for (; !table->Eof(); table->Next()) names.push_back(table->FieldByName("NAME")->AsString());
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  EXPECT_EQ(names.size(), 10u);

  table->SetIndexFieldNames("CITY;ID");
  EXPECT_EQ(table->IndexName(), "ByCity");
  EXPECT_EQ(table->IndexFieldNames(), "CITY;ID");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), kByCity);
  EXPECT_THROW(table->SetIndexFieldNames("AMOUNT"), fw::EDatabaseError);
  table->SetIndexFieldNames("");  // back to the primary index
  EXPECT_EQ(table->IndexName(), "ById");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), SortedIds());

  // An unknown name leaves the order alone and the name empty.
  table->SetIndexName("NoSuchIndex");
  EXPECT_EQ(table->IndexName(), "");
  table->First();
  EXPECT_EQ(Id(table), 1);

  // Set on a closed table, the choice is used at open; an unknown one opens in physical order.
  table->Close();
  table->SetIndexFieldNames("CITY");
  EXPECT_EQ(table->IndexFieldNames(), "CITY");
  table->Open();
  EXPECT_EQ(table->IndexName(), "ByCity");
  EXPECT_EQ(Id(table), 1);  // Bergen first
  table->Close();
  table->SetIndexName("Missing");
  table->Open();
  EXPECT_EQ(table->IndexName(), "");
  EXPECT_EQ(Id(table), People().front().Id);
}

TEST_F(Table, OpenFailuresRaiseTheirNumbers) {
  MakePeople();
  TCTTable* table = NewTable();
  table->SetTableName("");
  EXPECT_EQ(ErrorOf([&] { table->Open(); }), 1120);
  auto* orphan = new TCTTable(Owner.get());
  orphan->SetTableName("people");
  EXPECT_EQ(ErrorOf([&] { orphan->Open(); }), 1118);
  table->SetTableName("nobody");
  EXPECT_EQ(ErrorOf([&] { table->Open(); }), 12);
  EXPECT_FALSE(table->Active());
  EXPECT_EQ(Conn->DataSetCount(), 0);
  table->SetTableName("people");
  table->Open();
  EXPECT_TRUE(table->IsEmpty());
  EXPECT_EQ(table->RecordCount(), 0);
}

TEST_F(Table, EditPostCancelAndDeleteReachTheFile) {
  TCTTable* table = OpenPeople();
  ASSERT_TRUE(table->FindKey({V(4)}));
  table->Edit();
  EXPECT_EQ(table->InsertType(), Ctdb::isNone);
  table->FieldByName("NAME")->SetAsString("Don");
  table->Post();
  table->Edit();
  table->FieldByName("NAME")->SetAsString("Nobody");
  table->Cancel();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Don");

  ASSERT_TRUE(table->FindKey({V(5)}));
  const fw::TBookmark deleted = table->GetBookmark();
  table->Delete();
  EXPECT_FALSE(table->BookmarkValid(deleted));
  EXPECT_EQ(Id(table), 6);  // the next record becomes current
  table->Close();

  table->Open();
  EXPECT_EQ(table->RecordCount(), 9);
  ASSERT_TRUE(table->FindKey({V(4)}));
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Don");
  EXPECT_FALSE(table->FindKey({V(5)}));
}

// A unique key the storage refuses raises its number and keeps the edit or insert pending, in
// an exclusive and in a shared table; with another key the same record posts.
TEST_F(Table, APostTheStorageRefusesRaisesAndKeepsTheRecordPending) {
  FillPeople();
  for (const bool exclusive : {true, false}) {
    for (const bool insert : {false, true}) {
      SCOPED_TRACE(std::string(exclusive ? "exclusive" : "shared") + (insert ? " insert" : " edit"));
      TCTTable* table = NewTable(exclusive);
      table->Open();
      ASSERT_TRUE(table->FindKey({V(4)}));
      if (insert) table->Insert(); else table->Edit();
      EXPECT_EQ(table->InsertType(), insert ? Ctdb::isInsert : Ctdb::isNone);
      table->FieldByName("ID")->SetAsInteger(3);  // taken: the unique primary index refuses it
      table->FieldByName("NAME")->SetAsString("Dora");
      EXPECT_EQ(ErrorOf([&] { table->Post(); }), 2);
      EXPECT_EQ(table->State(), insert ? fw::dsInsert : fw::dsEdit);
      EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Dora");
      table->FieldByName("ID")->SetAsInteger(40);
      table->Post();
      EXPECT_EQ(table->InsertType(), Ctdb::isNone);
      EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Dora");
      EXPECT_EQ(table->RecordCount(), insert ? 11 : 10);
      EXPECT_TRUE(table->FindKey({V(3)}));
      EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Aino");
      table->Close();
      FillPeople();
    }
  }
}

TEST_F(Table, SharedTableLocksTheEditedRecordAndPosts) {
  TCTTable* table = OpenPeople(false);
  table->Last();
  table->Edit();
  table->FieldByName("AMOUNT")->SetAsFloat(1.25);
  table->Post();
  table->Edit();
  table->FieldByName("AMOUNT")->SetAsFloat(99);
  table->Cancel();
  table->Append();
  EXPECT_EQ(table->InsertType(), Ctdb::isAppend);
  table->FieldByName("ID")->SetAsInteger(42);
  table->Post();
  EXPECT_EQ(table->RecordCount(), 11);
  table->Close();
  table->Open();
  ASSERT_TRUE(table->FindKey({V(10)}));
  EXPECT_DOUBLE_EQ(table->FieldByName("AMOUNT")->AsFloat(), 1.25);
  EXPECT_TRUE(table->FindKey({V(42)}));
}

TEST_F(Table, PostedRecordsAppearInEveryIndexAndTheAppendedOneIsCurrent) {
  MakePeople();
  TCTTable* table = NewTable();
  table->SetIndexName("ByName");
  table->Open();
  for (const Person& p : People()) {
    table->AppendRecord({V(p.Id), fw::Variant(p.Name), fw::Variant(p.City), V(p.Amount)});
    EXPECT_EQ(Id(table), p.Id);
  }
  EXPECT_EQ(table->RecordCount(), 10);
  table->AppendRecord({V(11), V("Aase"), V("Oslo"), V(1.0)});
  EXPECT_EQ(Id(table), 11);
  table->Next();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Aino");
  EXPECT_TRUE(table->FindKey({V("Kalle")}));
  EXPECT_EQ(Id(table), 9);
  table->SetIndexName("ByCity");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), (Ids{1, 3, 8, 2, 4, 7, 10, 11, 5, 6, 9}));
}

TEST_F(Table, FieldWritesAreCheckedInOrder) {
  TCTTable* table = OpenPeople();
  EXPECT_EQ(ErrorOf([&] { table->FieldByName("NAME")->SetAsString("x"); }), 1121);
  table->FieldByName("NAME")->SetReadOnly(true);
  table->Edit();
  EXPECT_EQ(ErrorOf([&] { table->FieldByName("NAME")->SetAsString("x"); }), 1122);
  table->Cancel();
  table->SetKey();
  EXPECT_EQ(ErrorOf([&] { table->FieldByName("NAME")->SetAsString("x"); }), 1124);
  table->FieldByName("ID")->SetAsInteger(2);  // an index field may be written in dsSetKey
  EXPECT_TRUE(table->GotoKey());
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Brita");
}

TEST_F(Table, AReadOnlyTableRefusesEditingButIsSearchedRangedAndCalculated) {
  FillPeople();
  TCTTable* table = NewTable(false);
  table->SetReadOnly(true);
  fw::TField* doubled = AddDoubledAmount(*table);
  table->Open();
  EXPECT_FALSE(table->CanModify());
  EXPECT_THROW(table->Edit(), fw::EDatabaseError);
  EXPECT_EQ(table->State(), fw::dsBrowse);
  EXPECT_EQ(doubled->AsFloat(), 20);
  table->SetIndexName("ByCity");
  table->SetRange({V("Tromso")}, {V("Tromso")});
  EXPECT_EQ(IdsToEnd(*table), (Ids{5, 6, 9}));
  table->CancelRange();
  table->SetIndexName("ById");
  ASSERT_TRUE(table->FindKey({V(2)}));
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Brita");
}

TEST_F(Table, BookmarksReturnToTheirRecords) {
  TCTTable* table = OpenPeople();
  table->MoveBy(3);
  fw::TBookmark mark = table->GetBookmark();
  ASSERT_EQ(mark.size(), 4u);
  const int32_t id = Id(table);
  table->Last();
  fw::TBookmark last = table->GetBookmark();
  EXPECT_TRUE(table->BookmarkValid(mark));
  table->GotoBookmark(mark);
  EXPECT_EQ(Id(table), id);
  EXPECT_EQ(table->CompareBookmarks(mark, mark), 0);
  EXPECT_EQ(table->CompareBookmarks(mark, fw::TBookmark()), -1);
  EXPECT_NE(table->CompareBookmarks(mark, last), 0);
  table->FreeBookmark(mark);
  EXPECT_TRUE(mark.empty());
  table->GotoBookmark(last);
  EXPECT_EQ(Id(table), 10);
  EXPECT_FALSE(table->BookmarkValid(fw::TBookmark(4, std::byte{0x7F})));
}

TEST_F(Table, RecNoFollowsTheIndexAndSetRecNoPositions) {
  TCTTable* table = OpenPeople();
  table->MoveBy(4);
  EXPECT_EQ(table->RecNo(), 5);
  table->SetRecNo(8);
  EXPECT_EQ(table->RecNo(), 8);
  EXPECT_EQ(Id(table), 8);
  table->SetRecNo(1);
  EXPECT_EQ(Id(table), 1);
  table->SetIndexName("ByCity");
  table->SetRange({V("Oslo")}, {V("Oslo")});
  table->SetRecNo(3);
  EXPECT_EQ(table->RecNo(), 3);
  EXPECT_EQ(Id(table), 7);
  table->SetRange({V("Paris")}, {V("Paris")});
  table->SetRecNo(2);  // an empty range: nothing to position on
  EXPECT_TRUE(table->IsEmpty());
}

TEST_F(Table, ReadingRecNoInsideTheWindowLeavesTheStorageCursor) {
  FillPeople();
  TCTTable* table = NewTable();
  auto* source = new fw::TDataSource(Owner.get());
  source->SetDataSet(table);
  fw::TDataLink grid;
  grid.SetBufferCount(4);
  grid.SetDataSource(source);
  table->SetIndexName("ByName");
  table->Open();  // the window holds rows 1-4 and the storage stands on the 4th
  int32_t before = 0, after = 0;
  ASSERT_EQ(Conn->GetBookMark(table->Cursor(), before), 0);
  EXPECT_EQ(table->RecNo(), 1);
  ASSERT_EQ(Conn->GetBookMark(table->Cursor(), after), 0);
  EXPECT_EQ(after, before);
  EXPECT_EQ(IdsToEnd(*table), (Ids{3, 1, 2, 8, 4, 5, 7, 9, 10, 6}));
}

TEST_F(Table, CalculatedFieldsComeFromTheRecordStore) {
  FillPeople();
  TCTTable* table = NewTable();
  fw::TField* doubled = AddDoubledAmount(*table);
  table->Open();
  std::vector<double> values;
  for (; !table->Eof(); table->Next()) values.push_back(table->FieldByName("DOUBLED")->AsFloat());
  EXPECT_EQ(values, (std::vector<double>{20, 40, 60, 80, 100, 120, 141, 160, 180, 200}));
  table->First();
  table->Edit();
  table->FieldByName("AMOUNT")->SetAsFloat(1.5);
  EXPECT_DOUBLE_EQ(doubled->AsFloat(), 3);  // recomputed on each change
  table->Cancel();
  EXPECT_DOUBLE_EQ(doubled->AsFloat(), 20);
}

TEST_F(Table, TheConnectionClosesTheTableWhenDeactivatedClearedOrFreed) {
  TCTTable* table = OpenPeople();
  Conn->SetActive(false);
  EXPECT_FALSE(table->Active());
  EXPECT_EQ(table->OpenFlag(), Ctdb::ofClosed);
  Conn->SetActive(true);
  table->Open();
  table->SetConnection(nullptr);  // closes, but keeps the reference
  EXPECT_FALSE(table->Active());
  EXPECT_EQ(table->Connection(), Conn);
  table->Open();
  Conn->Free();
  EXPECT_FALSE(table->Active());
  EXPECT_EQ(table->Connection(), nullptr);
  Conn = nullptr;
}

TEST_F(Table, DatabaseTextGivesDirectoryAndTableName) {
  FillPeople();
  TCTTable* table = NewTable();
  const std::string dir = Dir.string();
  table->SetDatabase(dir + "/people.dat");
  EXPECT_EQ(table->Database(), dir + "/");
  EXPECT_EQ(table->TableName(), "people.dat");
  table->SetTableName("people");
  table->SetDatabase(dir);  // an existing directory, without its "/"
  EXPECT_EQ(table->Database(), dir);
  EXPECT_EQ(table->TableName(), "people");
  table->Open();
  EXPECT_THROW(table->SetDatabase(dir + "/"), fw::EDatabaseError);
  EXPECT_THROW(table->SetIsSuperFile(true), fw::EDatabaseError);
  EXPECT_EQ(table->Database(), dir);
}

// A form configures and opens a table; the Database text is applied after TableName, so a file
// name in it wins.
TEST_F(Table, FormFileConfiguresAndOpensATable) {
  FillPeople();
  const std::string dir = Dir.string();
  auto root = ReadForm(FormText(TableText(
      "People", dir, "    TableName = 'people'\n    IndexName = 'ByName'\n    Exclusive = True\n    Active = True\n")));
  auto* table = dynamic_cast<TCTTable*>(root->FindComponent("People"));
  ASSERT_NE(table, nullptr);
  EXPECT_TRUE(table->Active());
  EXPECT_TRUE(table->Exclusive());
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Aino");
  root.reset();
  root = ReadForm(FormText(TableText("People", dir + "/people", "    TableName = 'orders'\n    Active = True\n")));
  table = dynamic_cast<TCTTable*>(root->FindComponent("People"));
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->TableName(), "people");
  EXPECT_EQ(table->Database(), dir + "/");
  EXPECT_EQ(table->RecordCount(), 10);
}

TEST_F(Table, SuperFileTableLivesAsAMemberOfTheFileDatabaseNames) {
  TCTTable* table = NewTable();
  table->SetIsSuperFile(true);
  const std::string host = (Dir / "store.sup").string();
  table->SetDatabase(host);
  EXPECT_EQ(table->Database(), host);  // kept whole
  table->SetTableName("members");
  table->FieldDefs()->Add("ID", fw::ftInteger);
  table->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
  table->CreateTable();
  EXPECT_TRUE(std::filesystem::exists(host));
  table->Open();
  table->AppendRecord({V(5)});
  table->Close();
  EXPECT_FALSE(std::filesystem::exists(Dir / "members"));

  TCTTable* again = NewTable();
  again->SetIsSuperFile(true);
  again->SetDatabase(host);
  again->SetTableName("members");
  again->Open();
  EXPECT_EQ(again->RecordCount(), 1);
  // A member is rebuilt inside its host, here with the table's own index definitions.
  fw::TFieldDefs layout(nullptr);
  layout.Add("ID", fw::ftInteger);
  layout.Add("NOTE", fw::ftString, 10);
  again->UpdateIndexDefs();
  again->Rebuild(layout, *again->IndexDefs());
  EXPECT_EQ(again->RecordCount(), 1);
  EXPECT_NE(again->FindField("NOTE"), nullptr);
  EXPECT_TRUE(again->FindKey({V(5)}));
  for (const auto& entry : std::filesystem::directory_iterator(Dir))
    EXPECT_EQ(entry.path().filename().string().rfind("store.sup", 0), 0u) << entry.path();
  again->DeleteTable();
  EXPECT_EQ(ErrorOf([&] { again->Open(); }), 12);
}

}  // namespace
}  // namespace CTTables::testing
