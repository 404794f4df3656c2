// TCTTable: posts that the storage refuses, edits by two users, where the cursor stands after a
// post or a record-number read, what CreateTable stores, and index selection by field names.
#include "TDataLink.h"
#include "TDataSource.h"
#include "TField.h"
#include "TFieldDefs.h"
#include "TFloatField.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

using Editing = TableTest;

constexpr int32_t kLockedByAnother = 42;
constexpr int32_t kDuplicateKey = 2;

TEST_F(Editing, TwoUsersIncrementingTheSameRecordLoseNothing) {
  FillPeople();
  TCTTable* first = NewTable(false);
  TCTTable* second = NewTable(false);
  first->Open();
  second->Open();
  ASSERT_TRUE(first->FindKey({fw::Variant(int32_t{1})}));
  ASSERT_TRUE(second->FindKey({fw::Variant(int32_t{1})}));  // both have read 10
  first->Edit();
  EXPECT_EQ(ErrorOf([&] { second->Edit(); }), kLockedByAnother);
  EXPECT_EQ(second->State(), fw::dsBrowse);
  first->FieldByName("AMOUNT")->SetAsFloat(first->FieldByName("AMOUNT")->AsFloat() + 1);
  first->Post();
  second->Edit();  // locks, then reads what the first one stored
  EXPECT_EQ(second->FieldByName("AMOUNT")->AsFloat(), 11);
  second->FieldByName("AMOUNT")->SetAsFloat(second->FieldByName("AMOUNT")->AsFloat() + 1);
  second->Post();
  first->Close();
  first->Open();
  ASSERT_TRUE(first->FindKey({fw::Variant(int32_t{1})}));
  EXPECT_EQ(first->FieldByName("AMOUNT")->AsFloat(), 12);
}

TEST_F(Editing, APostTheStorageRefusesRaisesAndKeepsTheEdit) {
  FillPeople();
  for (bool exclusive : {true, false}) {
    TCTTable* table = NewTable(exclusive);
    table->Open();
    ASSERT_TRUE(table->FindKey({fw::Variant(int32_t{4})}));
    table->Edit();
    table->FieldByName("ID")->SetAsInteger(3);  // taken: the unique primary index refuses it
    table->FieldByName("NAME")->SetAsString("Dora");
    EXPECT_EQ(ErrorOf([&] { table->Post(); }), kDuplicateKey);
    EXPECT_EQ(table->State(), fw::dsEdit);
    EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Dora");
    table->FieldByName("ID")->SetAsInteger(exclusive ? 40 : 41);
    table->Post();
    EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Dora");
    EXPECT_TRUE(table->FindKey({fw::Variant(int32_t{3})}));
    EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Aino");
    table->Close();
    FillPeople();
  }
}

TEST_F(Editing, AppendRecordLeavesTheNewRecordCurrent) {
  FillPeople();
  TCTTable* table = NewTable();
  table->SetIndexName("ByName");
  table->Open();
  table->AppendRecord({fw::Variant(int32_t{11}), fw::Variant("Aase"), fw::Variant("Oslo"), fw::Variant(1.0)});
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 11);
  table->Next();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Aino");
}

TEST_F(Editing, ReadingRecNoInsideTheWindowLeavesTheStorageCursor) {
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
  EXPECT_EQ(IdsToEnd(*table), (std::vector<int32_t>{3, 1, 2, 8, 4, 5, 7, 9, 10, 6}));
}

TEST_F(Editing, CreateTableStoresOnlyDataFields) {
  TCTTable* table = NewTable();
  table->SetTableName("notes");
  for (const auto& [name, kind] : {std::pair{"ID", fw::fkData}, {"TWICE", fw::fkCalculated}, {"LABEL", fw::fkLookup}}) {
    auto* field = new fw::TFloatField(table);
    field->SetFieldName(name);
    field->SetFieldKind(kind);
    field->SetDataSet(table);
  }
  table->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
  table->CreateTable();
  TCTTable* reader = NewTable();
  reader->SetTableName("notes");
  reader->FieldDefs()->Update();
  ASSERT_EQ(reader->FieldDefs()->Count(), 1);
  EXPECT_EQ(reader->FieldDefs()->Items(0)->Name(), "ID");
}

TEST_F(Editing, IndexFieldNamesSelectAndReturnToThePrimaryIndex) {
  FillPeople();
  TCTTable* table = NewTable();
  table->SetIndexFieldNames("CITY");
  EXPECT_EQ(table->IndexFieldNames(), "CITY");
  table->Open();
  EXPECT_EQ(table->IndexName(), "ByCity");
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 1);  // Bergen first
  table->SetIndexFieldNames("");
  EXPECT_EQ(table->IndexName(), "ById");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST_F(Editing, AReadOnlyTableIsSearchedRangedAndCalculated) {
  FillPeople();
  TCTTable* table = NewTable(false);
  table->SetReadOnly(true);
  fw::TField* doubled = AddDoubledAmount(*table);
  table->Open();
  EXPECT_EQ(doubled->AsFloat(), 20);
  table->SetIndexName("ByCity");
  table->SetRange({fw::Variant("Tromso")}, {fw::Variant("Tromso")});
  EXPECT_EQ(IdsToEnd(*table), (std::vector<int32_t>{5, 6, 9}));
  table->CancelRange();
  table->SetIndexName("ById");
  ASSERT_TRUE(table->FindKey({fw::Variant(int32_t{2})}));
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Brita");
}

}  // namespace
}  // namespace CTTables::testing
