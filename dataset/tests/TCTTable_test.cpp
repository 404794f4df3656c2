// TCTTable: opening, browsing, editing, bookmarks and record numbers over real engine files.
#include <algorithm>
#include <filesystem>

#include "TableTestSupport.h"
#include "TField.h"
#include "TFloatField.h"
#include "TNumericField.h"
#include "TClassInfo.h"
#include "TReader.h"
#include "TStringField.h"

namespace CTTables::testing {
namespace {

// A form's root class for the form-file test.
class TPeopleForm : public fw::TComponent {
 public:
  explicit TPeopleForm(fw::TComponent* AOwner) : fw::TComponent(AOwner) {}
  static const fw::TClassInfo& StaticClass() {
    static const fw::TClassInfo info =
        fw::TClassBuilder<TPeopleForm>("TPeopleForm", &fw::TComponent::StaticClass()).Creatable().Build();
    return info;
  }
  const fw::TClassInfo& ClassType() const override { return StaticClass(); }
};

using Table = TableTest;

std::vector<int32_t> SortedIds() {
  std::vector<int32_t> ids;
  for (const Person& p : People()) ids.push_back(p.Id);
  std::sort(ids.begin(), ids.end());
  return ids;
}

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

  table->Last();
  std::vector<int32_t> backwards;
  while (!table->Bof()) {
    backwards.push_back(table->FieldByName("ID")->AsInteger());
    table->Prior();
  }
  std::vector<int32_t> expected = SortedIds();
  std::reverse(expected.begin(), expected.end());
  EXPECT_EQ(backwards, expected);

  table->First();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Arvid");
  EXPECT_EQ(table->FieldByName("CITY")->AsString(), "Bergen");
  EXPECT_DOUBLE_EQ(table->FieldByName("AMOUNT")->AsFloat(), 10);
  EXPECT_EQ(Conn->DataSetCount(), 1);
  table->Close();
  EXPECT_EQ(table->OpenFlag(), Ctdb::ofClosed);
  EXPECT_EQ(Conn->DataSetCount(), 0);
}

TEST_F(Table, SwitchesIndexWhileOpenAndByFieldNames) {
  FillPeople();
  TCTTable* table = NewTable();
  table->Open();
  table->SetIndexName("ByName");
  EXPECT_EQ(table->IndexName(), "ByName");
  table->First();
  std::vector<std::string> names;
  while (!table->Eof()) {
    names.push_back(table->FieldByName("NAME")->AsString());
    table->Next();
  }
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  EXPECT_EQ(names.size(), 10u);

  table->SetIndexFieldNames("CITY;ID");
  EXPECT_EQ(table->IndexName(), "ByCity");
  EXPECT_EQ(table->IndexFieldNames(), "CITY;ID");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), (std::vector<int32_t>{1, 3, 8, 2, 4, 7, 10, 5, 6, 9}));
  EXPECT_THROW(table->SetIndexFieldNames("AMOUNT"), fw::EDatabaseError);

  // An unknown name leaves the order alone and the name empty.
  table->SetIndexName("NoSuchIndex");
  EXPECT_EQ(table->IndexName(), "");
  table->First();
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 1);
}

TEST_F(Table, IndexNameOfAClosedTableIsUsedAtOpen) {
  FillPeople();
  TCTTable* table = NewTable();
  table->SetIndexName("ByCity");
  table->Open();
  EXPECT_EQ(table->FieldByName("CITY")->AsString(), "Bergen");
  table->Close();
  table->SetIndexName("Missing");  // opens without switching index: physical order, no name
  table->Open();
  EXPECT_EQ(table->IndexName(), "");
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), People().front().Id);
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
  FillPeople();
  TCTTable* table = NewTable();
  table->Open();
  ASSERT_TRUE(table->FindKey({fw::Variant(int32_t{4})}));
  table->Edit();
  EXPECT_EQ(table->InsertType(), Ctdb::isNone);
  table->FieldByName("NAME")->SetAsString("Don");
  table->Post();
  table->Edit();
  table->FieldByName("NAME")->SetAsString("Nobody");
  table->Cancel();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Don");

  ASSERT_TRUE(table->FindKey({fw::Variant(int32_t{5})}));
  const fw::TBookmark deleted = table->GetBookmark();
  table->Delete();
  EXPECT_FALSE(table->BookmarkValid(deleted));
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 6);  // the next record becomes current
  table->Close();

  table->Open();
  EXPECT_EQ(table->RecordCount(), 9);
  ASSERT_TRUE(table->FindKey({fw::Variant(int32_t{4})}));
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Don");
  EXPECT_FALSE(table->FindKey({fw::Variant(int32_t{5})}));
}

TEST_F(Table, DuplicateKeyOnPostKeepsTheInsertPending) {
  FillPeople();
  TCTTable* table = NewTable();
  table->Open();
  table->Insert();
  EXPECT_EQ(table->InsertType(), Ctdb::isInsert);
  table->FieldByName("ID")->SetAsInteger(3);
  table->FieldByName("NAME")->SetAsString("Copy");
  EXPECT_EQ(ErrorOf([&] { table->Post(); }), 2);
  EXPECT_EQ(table->State(), fw::dsInsert);
  table->FieldByName("ID")->SetAsInteger(11);
  table->Post();
  EXPECT_EQ(table->InsertType(), Ctdb::isNone);
  EXPECT_EQ(table->RecordCount(), 11);
}

TEST_F(Table, SharedTableLocksTheEditedRecordAndPosts) {
  FillPeople();
  TCTTable* table = NewTable(false);
  table->Open();
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
  ASSERT_TRUE(table->FindKey({fw::Variant(int32_t{10})}));
  EXPECT_DOUBLE_EQ(table->FieldByName("AMOUNT")->AsFloat(), 1.25);
  EXPECT_TRUE(table->FindKey({fw::Variant(int32_t{42})}));
}

TEST_F(Table, PostedRecordsAppearInEveryIndex) {
  MakePeople();
  TCTTable* table = NewTable();
  table->Open();
  for (const Person& p : People())
    table->AppendRecord({fw::Variant(p.Id), fw::Variant(p.Name), fw::Variant(p.City), fw::Variant(p.Amount)});
  EXPECT_EQ(table->RecordCount(), 10);
  table->SetIndexName("ByCity");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), (std::vector<int32_t>{1, 3, 8, 2, 4, 7, 10, 5, 6, 9}));
  table->SetIndexName("ByName");
  EXPECT_TRUE(table->FindKey({fw::Variant(std::string("Kalle"))}));
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 9);
}

TEST_F(Table, FieldWritesAreCheckedInOrder) {
  FillPeople();
  TCTTable* table = NewTable();
  table->Open();
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

TEST_F(Table, ReadOnlyTableRefusesEditing) {
  FillPeople();
  TCTTable* table = NewTable(false);
  table->SetReadOnly(true);
  table->Open();
  EXPECT_FALSE(table->CanModify());
  EXPECT_THROW(table->Edit(), fw::EDatabaseError);
  EXPECT_EQ(table->State(), fw::dsBrowse);
}

TEST_F(Table, BookmarksReturnToTheirRecords) {
  FillPeople();
  TCTTable* table = NewTable();
  table->Open();
  table->MoveBy(3);
  fw::TBookmark mark = table->GetBookmark();
  ASSERT_EQ(mark.size(), 4u);
  const int32_t id = table->FieldByName("ID")->AsInteger();
  table->Last();
  fw::TBookmark last = table->GetBookmark();
  EXPECT_TRUE(table->BookmarkValid(mark));
  table->GotoBookmark(mark);
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), id);
  EXPECT_EQ(table->CompareBookmarks(mark, mark), 0);
  EXPECT_EQ(table->CompareBookmarks(mark, fw::TBookmark()), -1);
  EXPECT_NE(table->CompareBookmarks(mark, last), 0);
  table->FreeBookmark(mark);
  EXPECT_TRUE(mark.empty());
  table->GotoBookmark(last);
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 10);
  EXPECT_FALSE(table->BookmarkValid(fw::TBookmark(4, std::byte{0x7F})));
}

TEST_F(Table, RecNoFollowsTheIndexAndSetRecNoPositions) {
  FillPeople();
  TCTTable* table = NewTable();
  table->Open();
  table->MoveBy(4);
  EXPECT_EQ(table->RecNo(), 5);
  table->SetRecNo(8);
  EXPECT_EQ(table->RecNo(), 8);
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 8);
  table->SetRecNo(1);
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 1);
  table->SetIndexName("ByCity");
  table->SetRange({fw::Variant("Oslo")}, {fw::Variant("Oslo")});
  table->SetRecNo(3);
  EXPECT_EQ(table->RecNo(), 3);
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 7);
  table->SetRange({fw::Variant("Paris")}, {fw::Variant("Paris")});
  table->SetRecNo(2);  // an empty range: nothing to position on
  EXPECT_TRUE(table->IsEmpty());
}

TEST_F(Table, CalculatedFieldsComeFromTheRecordStore) {
  FillPeople();
  TCTTable* table = NewTable();
  fw::TField* doubled = AddDoubledAmount(*table);
  table->Open();
  std::vector<double> values;
  while (!table->Eof()) {
    values.push_back(table->FieldByName("DOUBLED")->AsFloat());
    table->Next();
  }
  EXPECT_EQ(values, (std::vector<double>{20, 40, 60, 80, 100, 120, 141, 160, 180, 200}));
  table->First();
  table->Edit();
  table->FieldByName("AMOUNT")->SetAsFloat(1.5);
  EXPECT_DOUBLE_EQ(doubled->AsFloat(), 3);  // recomputed on each change
  table->Cancel();
  EXPECT_DOUBLE_EQ(doubled->AsFloat(), 20);
}

TEST_F(Table, FilterRejectingEverythingRunsToTheEnd) {
  FillPeople();
  TCTTable* table = NewTable();
  int seen = 0;
  table->SetOnFilterRecord([&seen](fw::TDataSet*, bool& accept) {
    ++seen;
    accept = false;
  });
  table->SetFiltered(true);
  table->Open();
  EXPECT_TRUE(table->IsEmpty());
  EXPECT_TRUE(table->Eof());
  EXPECT_GE(seen, 10);
}

TEST_F(Table, ConnectionNilClosesButKeepsTheReferenceWhileFreeingClearsIt) {
  FillPeople();
  TCTTable* table = NewTable();
  table->Open();
  table->SetConnection(nullptr);
  EXPECT_FALSE(table->Active());
  EXPECT_EQ(table->Connection(), Conn);
  table->Open();
  Conn->Free();
  EXPECT_FALSE(table->Active());
  EXPECT_EQ(table->Connection(), nullptr);
  Conn = nullptr;
}

TEST_F(Table, DeactivatingTheConnectionClosesTheTable) {
  FillPeople();
  TCTTable* table = NewTable();
  table->Open();
  Conn->SetActive(false);
  EXPECT_FALSE(table->Active());
  EXPECT_EQ(table->OpenFlag(), Ctdb::ofClosed);
}

TEST_F(Table, FormFileConfiguresAndOpensATable) {
  FillPeople();
  fw::RegisterClass(TPeopleForm::StaticClass());
  const std::string form = "object Root: TPeopleForm\n"
                           "  object Db: TCTConnection\n"
                           "  end\n"
                           "  object People: TCTTable\n"
                           "    Connection = Db\n"
                           "    Database = '" + Dir.string() + "'\n"
                           "    TableName = 'people'\n"
                           "    IndexName = 'ByName'\n"
                           "    Exclusive = True\n"
                           "    Active = True\n"
                           "  end\n"
                           "end\n";
  fw::TComponentPtr<fw::TComponent> root(fw::ReadComponentText(form));
  auto* table = dynamic_cast<TCTTable*>(root->FindComponent("People"));
  ASSERT_NE(table, nullptr);
  EXPECT_TRUE(table->Active());
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Aino");
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
  table->Close();

  // Read from a form, the text is applied after TableName, so a file name in it wins.
  fw::RegisterClass(TPeopleForm::StaticClass());
  const std::string form = "object Root: TPeopleForm\n"
                           "  object Db: TCTConnection\n"
                           "  end\n"
                           "  object People: TCTTable\n"
                           "    Connection = Db\n"
                           "    Database = '" + dir + "/people'\n"
                           "    TableName = 'orders'\n"
                           "    Active = True\n"
                           "  end\n"
                           "end\n";
  fw::TComponentPtr<fw::TComponent> root(fw::ReadComponentText(form));
  auto* loaded = dynamic_cast<TCTTable*>(root->FindComponent("People"));
  ASSERT_NE(loaded, nullptr);
  EXPECT_EQ(loaded->TableName(), "people");
  EXPECT_EQ(loaded->Database(), dir + "/");
  EXPECT_EQ(loaded->RecordCount(), 10);
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
  table->AppendRecord({fw::Variant(int32_t{5})});
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
  EXPECT_TRUE(again->FindKey({fw::Variant(int32_t{5})}));
  for (const auto& entry : std::filesystem::directory_iterator(Dir))
    EXPECT_EQ(entry.path().filename().string().rfind("store.sup", 0), 0u) << entry.path();
  again->DeleteTable();
  EXPECT_EQ(ErrorOf([&] { again->Open(); }), 12);
}

}  // namespace
}  // namespace CTTables::testing
