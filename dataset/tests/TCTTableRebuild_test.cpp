// TCTTable: rebuilding in place and restructuring into a new layout, over real engine files.
#include <filesystem>
#include <set>

#include "TField.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

using Rebuild = TableTest;

std::set<std::string> FilesIn(const std::filesystem::path& dir) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(dir)) names.insert(entry.path().filename().string());
  return names;
}

// The people layout without NAME, with EMAIL added, indexed by ID and by AMOUNT.
void NewLayout(fw::TFieldDefs& fields, TCTIndexDefs& indexes) {
  fields.Add("ID", fw::ftInteger);
  fields.Add("CITY", fw::ftString, 16);
  fields.Add("AMOUNT", fw::ftFloat);
  fields.Add("EMAIL", fw::ftString, 30);
  indexes.Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
  indexes.Add("ByAmount", "AMOUNT", "", true, false, {});
}

TEST_F(Rebuild, NewLayoutKeepsEveryRecordAndTheTableStaysOpen) {
  TCTTable* table = OpenPeople(false);
  const std::set<std::string> files = FilesIn(Dir);
  table->AddIndex("Extra", "CITY;NAME", "", true, false, {});  // an index file of its own
  fw::TFieldDefs fields(nullptr);
  TCTIndexDefs indexes(nullptr);
  NewLayout(fields, indexes);
  table->Rebuild(fields, indexes);

  EXPECT_TRUE(table->Active());
  EXPECT_FALSE(table->Exclusive());  // held exclusively only while rebuilding
  EXPECT_EQ(table->FindField("NAME"), nullptr);
  ASSERT_NE(table->FindField("EMAIL"), nullptr);
  EXPECT_EQ(table->RecordCount(), 10);
  ASSERT_TRUE(table->FindKey({V(7)}));
  EXPECT_EQ(table->FieldByName("CITY")->AsString(), "Oslo");
  EXPECT_DOUBLE_EQ(table->FieldByName("AMOUNT")->AsFloat(), 70.5);
  EXPECT_TRUE(table->FieldByName("EMAIL")->IsNull());
  // The key of the moved field (AMOUNT, third now) orders by AMOUNT, not by what was third.
  table->SetIndexName("ByAmount");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), (Ids{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  fw::TStringList names;
  table->GetIndexNames(names);
  EXPECT_EQ(names.IndexOf("ByName"), -1);
  EXPECT_EQ(FilesIn(Dir), files);  // the added index's file went, and no temporary file is left

  table->Close();
  table->RebuildLow();  // rebuilt in place; a closed table stays closed
  EXPECT_FALSE(table->Active());
  table->Open();
  table->SetIndexName("ByAmount");
  table->Last();
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 10);
}

TEST_F(Rebuild, AFailingCopyLeavesTheTableAsItWasUnlessTheHandlerSkipsRecords) {
  FillPeople();
  TCTTable* table = NewTable();
  const std::set<std::string> files = FilesIn(Dir);
  fw::TFieldDefs fields(nullptr);
  TCTIndexDefs indexes(nullptr);
  NewLayout(fields, indexes);
  indexes.Add("OneByCity", "CITY", "", true, false, {fw::ixUnique});  // three cities, ten people

  EXPECT_EQ(ErrorOf([&] { table->Rebuild(fields, indexes); }), 2);
  EXPECT_FALSE(table->Active());  // it was closed before
  EXPECT_EQ(FilesIn(Dir), files);
  table->Open();
  EXPECT_EQ(table->RecordCount(), 10);
  EXPECT_NE(table->FindField("NAME"), nullptr);
  table->Close();

  std::vector<fw::TComponent*> senders;
  table->SetOnRebuildError([&](fw::TComponent* sender, fw::TField* from, fw::TField*, const std::exception&,
                               bool& proceed) {
    if (from == nullptr) senders.push_back(sender);
    proceed = false;
  });
  table->Rebuild(fields, indexes);
  EXPECT_EQ(senders, std::vector<fw::TComponent*>(7, table));
  table->Open();
  EXPECT_EQ(table->RecordCount(), 3);
}

}  // namespace
}  // namespace CTTables::testing
