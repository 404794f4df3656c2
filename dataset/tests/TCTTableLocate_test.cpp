// TCTTable: Locate, Lookup and lookup fields over real engine files.
#include <cstdio>

#include "TField.h"
#include "TNumericField.h"
#include "TStringField.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

using Locate = TableTest;

const fw::TLocateOptions kPartial{fw::loPartialKey};
const fw::TLocateOptions kCaseless{fw::loCaseInsensitive};
const fw::TLocateOptions kBoth{fw::loPartialKey, fw::loCaseInsensitive};

// Appends people through the table (the fixture's ten are added by FillPeople).
void Add(TCTTable* table, int32_t id, const fw::Variant& name, const char* city, const fw::Variant& amount) {
  table->AppendRecord({V(id), name, V(city), amount});
}

TEST_F(Locate, SeeksByIndexAndLeavesIndexAndOrderAlone) {
  TCTTable* table = OpenPeople();
  EXPECT_TRUE(table->Locate("id", V(8), {}));
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Dagmar");
  EXPECT_EQ(table->IndexName(), "ById");
  table->Next();
  EXPECT_EQ(Id(table), 9);

  // Partial text through ByName finds the first in that index's order (Dagmar before Dorit),
  // though the table reads in ID order.
  EXPECT_TRUE(table->Locate("NAME", V("Do"), kPartial));
  EXPECT_EQ(Id(table), 4);
  EXPECT_TRUE(table->Locate("NAME", V("D"), kPartial));
  EXPECT_EQ(Id(table), 8);
  EXPECT_EQ(table->IndexName(), "ById");
  table->Next();
  EXPECT_EQ(Id(table), 9);

  // A single value on a case-sensitive index: the index's comparison decides.
  EXPECT_FALSE(table->Locate("NAME", V("d"), kBoth));
  EXPECT_FALSE(table->Locate("NAME", V("dagmar"), kCaseless));
  // Two fields: ByCity covers both.
  EXPECT_TRUE(table->Locate("CITY;ID", fw::VarArrayOf({V("Tromso"), V(9)}), {}));
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Kalle");
  // The first field from ByCity, the second compared.
  EXPECT_TRUE(table->Locate("CITY;NAME", fw::VarArrayOf({V("Oslo"), V("gr")}), kBoth));
  EXPECT_EQ(Id(table), 7);
}

TEST_F(Locate, FailedSearchesMoveNothing) {
  TCTTable* table = OpenPeople();
  table->SetIndexName("ByName");
  table->Locate("NAME", V("Greta"), {});
  int scrolls = 0;
  table->AfterScroll = [&scrolls](fw::TDataSet*) { ++scrolls; };
  EXPECT_FALSE(table->Locate("NAME", V("Nobody"), {}));
  EXPECT_FALSE(table->Locate("AMOUNT", V(12.5), {}));          // read from the start, nothing
  EXPECT_FALSE(table->Locate("NAME", V("Aino Aaltonen-Virtanen, the first"), {}));  // longer than the field
  EXPECT_THROW(table->Locate("NOPE", V(1), {}), fw::EDatabaseError);
  EXPECT_THROW(table->Locate("ID", V("seven"), {}), std::exception);
  EXPECT_THROW(table->Locate("ID;NAME", V(7), {}), fw::EDatabaseError);
  EXPECT_EQ(scrolls, 0);
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Greta");
  EXPECT_EQ(table->IndexName(), "ByName");
  table->Next();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Kalle");
}

TEST_F(Locate, MoreCoveredFieldsWinAndTiesKeepTheLowerOrdinal) {
  TCTTable* table = OpenPeople();
  // Case-insensitive indexes behind case-sensitive ones: which one ran shows in what is found.
  table->AddIndex("ByNameNoCase", "NAME", "", true, false, {fw::ixCaseInsensitive});
  table->AddIndex("ByNameCityNoCase", "NAME;CITY", "", true, false, {fw::ixCaseInsensitive});
  EXPECT_FALSE(table->Locate("NAME", V("greta"), {}));  // ByName (ordinal 2) beats ByNameNoCase
  EXPECT_TRUE(table->Locate("NAME;CITY", fw::VarArrayOf({V("greta"), V("OSLO")}), {}));
  EXPECT_EQ(Id(table), 7);
}

TEST_F(Locate, ReadsPastTheFilterDropsTheRangeByIndexAndPostsAPendingEdit) {
  TCTTable* table = OpenPeople();
  table->SetOnFilterRecord([](fw::TDataSet* d, bool& accept) { accept = d->FieldByName("ID")->AsInteger() != 5; });
  table->SetFiltered(true);
  // A record the filter hides is found, by the index and by reading the table.
  EXPECT_EQ(table->Lookup("ID", V(5), "ID").AsInteger(), 5);
  EXPECT_EQ(table->Lookup("CITY", V("Tromso"), "ID").AsInteger(), 5);
  EXPECT_EQ(table->Lookup("AMOUNT", V(50.0), "ID").AsInteger(), 5);
  table->SetFiltered(false);

  // A search that reads the table keeps its range and finds only what it shows; a lookup keeps
  // it too; a Locate through an index looks past it and leaves the table without it.
  table->SetRange({V(3)}, {V(6)});
  EXPECT_FALSE(table->Locate("AMOUNT", V(80.0), {}));
  EXPECT_TRUE(table->Locate("AMOUNT", V(40.0), {}));
  EXPECT_EQ(Id(table), 4);
  EXPECT_EQ(table->Lookup("ID", V(8), "ID").AsInteger(), 8);
  EXPECT_EQ(table->RecordCount(), 4);
  EXPECT_EQ(Id(table), 4);
  EXPECT_TRUE(table->Locate("ID", V(8), {}));
  EXPECT_EQ(Id(table), 8);
  EXPECT_EQ(table->RecordCount(), 10);
  table->SetRange({V(3)}, {V(6)});
  EXPECT_FALSE(table->Locate("ID", V(80), {}));
  EXPECT_EQ(table->RecordCount(), 10);
  EXPECT_EQ(Id(table), 3);
  table->Next();

  table->Edit();
  table->FieldByName("NAME")->SetAsString("Donna");
  EXPECT_TRUE(table->Locate("NAME", V("Donna"), {}));  // the edit was posted first
  EXPECT_EQ(Id(table), 4);
  EXPECT_EQ(table->State(), fw::dsBrowse);

  table->SetRange({V(50)}, {V(60)});
  EXPECT_TRUE(table->Locate("NAME", V("Donna"), {}));
  EXPECT_EQ(Id(table), 4);
}

TEST_F(Locate, NullAndBlankKeysFindNullFields) {
  TCTTable* table = OpenPeople();
  Add(table, 11, fw::Null(), "Oslo", fw::Null());
  table->First();
  EXPECT_TRUE(table->Locate("NAME", fw::Null(), {}));
  EXPECT_EQ(Id(table), 11);
  table->First();
  EXPECT_TRUE(table->Locate("NAME", V(""), {}));
  EXPECT_EQ(Id(table), 11);
  table->First();
  EXPECT_TRUE(table->Locate("CITY;NAME", fw::VarArrayOf({V("Oslo"), fw::Null()}), {}));
  EXPECT_EQ(Id(table), 11);
  EXPECT_TRUE(table->Locate("AMOUNT", fw::Variant(), {}));
  EXPECT_EQ(Id(table), 11);
  EXPECT_FALSE(table->Locate("ID", fw::Null(), {}));  // an integer is never null
}

TEST_F(Locate, EmptyTableFindsNothing) {
  MakePeople();
  TCTTable* table = NewTable();
  table->Open();
  EXPECT_FALSE(table->Locate("ID", V(1), {}));
  EXPECT_FALSE(table->Locate("AMOUNT", V(1.0), {}));
  EXPECT_TRUE(table->Lookup("NAME", V("Aino"), "ID").IsNull());
}

TEST_F(Locate, LookupReadsWithoutMoving) {
  TCTTable* table = OpenPeople();
  table->SetIndexName("ByCity");
  table->Locate("ID", V(6), {});
  int scrolls = 0;
  table->BeforeScroll = [&scrolls](fw::TDataSet*) { ++scrolls; };
  EXPECT_EQ(table->Lookup("NAME", V("Kalle"), "CITY").AsString(), "Tromso");
  const fw::Variant both = table->Lookup("CITY;ID", fw::VarArrayOf({V("Bergen"), V(8)}), "NAME;AMOUNT");
  EXPECT_EQ(both[0].AsString(), "Dagmar");
  EXPECT_EQ(both[1].AsDouble(), 80.0);
  EXPECT_TRUE(table->Lookup("NAME", V("kalle"), "ID").IsNull());  // no options: case counts
  EXPECT_EQ(scrolls, 0);
  EXPECT_EQ(Id(table), 6);
  EXPECT_EQ(table->IndexName(), "ByCity");
  table->Next();
  EXPECT_EQ(Id(table), 9);

  // A pending edit is neither posted nor disturbed.
  table->Edit();
  table->FieldByName("NAME")->SetAsString("Kalleman");
  EXPECT_EQ(table->Lookup("ID", V(9), "NAME").AsString(), "Kalle");
  EXPECT_EQ(table->State(), fw::dsEdit);
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Kalleman");
  table->Post();
  EXPECT_EQ(table->Lookup("ID", V(9), "NAME").AsString(), "Kalleman");
}

// The bulk scan (no index, no range) and the record-by-record reading (a range covering every
// record) must find the same record for every search; each case also names the record expected.
struct ScanCase {
  const char* Fields;
  fw::Variant Values;
  fw::TLocateOptions Options;
  int32_t Expected;  // 0: none
};

class ScanAgreement : public TableTest, public ::testing::WithParamInterface<int> {};

std::vector<ScanCase> ScanCases() {
  return {
      {"NAME", V("aino"), {}, 12},
      {"NAME", V("AINO"), kCaseless, 3},
      {"NAME", V("Aino"), kPartial, 3},
      {"NAME", V("aino"), kBoth, 3},
      {"NAME", V("Aino "), {}, 13},
      {"NAME", V("Aino L"), kPartial, 0},
      {"NAME", V(""), kPartial, 1},
      {"NAME", V(""), {}, 11},
      {"NAME", fw::Null(), {}, 11},
      {"NAME", V("Ainoline"), kCaseless, 14},
      {"NAME", V("AINOLINEX"), kBoth, 0},
      {"AMOUNT", V(0.0), {}, 11},
      {"AMOUNT", fw::Null(), {}, 11},
      {"AMOUNT", V(-2.5), {}, 13},
      {"AMOUNT", V("70.5"), {}, 7},
      {"AMOUNT", V(70), {}, 0},
      {"NAME;AMOUNT", fw::VarArrayOf({V("aino"), V(30.0)}), kCaseless, 3},
      {"NAME;AMOUNT", fw::VarArrayOf({V("aino"), V(1.0)}), kBoth, 12},
      {"AMOUNT;NAME", fw::VarArrayOf({V(-2.5), V("Aino")}), kPartial, 13},
  };
}

TEST_P(ScanAgreement, BulkScanAndRecordByRecordReadingAgree) {
  TCTTable* table = OpenPeople();
  table->UpdateIndexDefs();
  table->DeleteIndex("ByName");
  Add(table, 11, V(""), "Oslo", V(0.0));
  Add(table, 12, V("aino"), "Oslo", V(1.0));
  Add(table, 13, V("Aino "), "Oslo", V(-2.5));
  Add(table, 14, V("ainoLINE"), "Oslo", V(3.0));
  const ScanCase c = ScanCases()[static_cast<size_t>(GetParam())];
  SCOPED_TRACE(std::string(c.Fields) + " = " + (c.Values.IsArray() ? c.Values[0].AsString() : c.Values.IsNull() ? "null" : c.Values.AsString()));

  table->First();
  const bool bulk = table->Locate(c.Fields, c.Values, c.Options);
  const int32_t bulkId = bulk ? Id(table) : 0;
  table->SetRange({V(0)}, {V(1000)});
  const bool single = table->Locate(c.Fields, c.Values, c.Options);
  const int32_t singleId = single ? Id(table) : 0;
  EXPECT_EQ(bulkId, c.Expected);
  EXPECT_EQ(singleId, c.Expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, ScanAgreement, ::testing::Range(0, static_cast<int>(ScanCases().size())));

TEST_F(Locate, LongScansFindTheFirstRecordInIndexOrder) {
  TCTTable* table = OpenPeople();
  // The matches lie past the head of the index, where the table is read in physical order:
  // there they lie in the reverse of their name order, and the first one has a blank name,
  // which ByName (storing no blank keys) does not hold.
  table->DisableControls();
  Add(table, 99, V(""), "Oslo", V(7.0));
  for (int32_t i = 0; i < 3000; ++i) {
    char name[8];
    std::snprintf(name, sizeof name, "N%04d", 2999 - i);
    Add(table, 100 + i, V(name), "Oslo", V(2999 - i >= 2500 ? 7.0 : 1.0));
  }
  table->EnableControls();
  table->SetIndexName("ByName");
  EXPECT_TRUE(table->Locate("AMOUNT", V(7.0), {}));
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "N2500");
  table->SetOnFilterRecord([](fw::TDataSet* d, bool& accept) { accept = d->FieldByName("ID")->AsInteger() != 599; });
  table->SetFiltered(true);
  EXPECT_EQ(table->Lookup("AMOUNT", V(7.0), "NAME").AsString(), "N2500");  // past the filter
  table->SetFiltered(false);
  table->SetRange({V("A")}, {V("Z")});  // read record by record, in index order
  EXPECT_TRUE(table->Locate("AMOUNT", V(7.0), {}));
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "N2500");
}

// ---- lookup fields ----------------------------------------------------------------------------

// People with a lookup field FIRST: the name of the first person (in ByCity order) of their
// city, read from a second table on the same file.
std::string LookupForm(const std::string& dir, bool cached) {
  const std::string people = "    TableName = 'people'\n    Active = True\n";
  return FormText(TableText("Cities", dir, people) +
                  TableText("People", dir, people +
                  "    object PeopleID: TIntegerField\n      FieldName = 'ID'\n    end\n"
                  "    object PeopleNAME: TStringField\n      FieldName = 'NAME'\n    end\n"
                  "    object PeopleCITY: TStringField\n      FieldName = 'CITY'\n      Size = 16\n    end\n"
                  "    object PeopleFIRST: TStringField\n      FieldKind = fkLookup\n      FieldName = 'FIRST'\n"
                  "      KeyFields = 'CITY'\n      LookupDataSet = Cities\n      LookupKeyFields = 'CITY'\n"
                  "      LookupResultField = 'NAME'\n" + std::string(cached ? "      LookupCache = True\n" : "") +
                  "    end\n"));
}

class LookupFields : public TableTest, public ::testing::WithParamInterface<bool> {};

TEST_P(LookupFields, FollowBrowsingEditingAndChangesOfTheLookupTable) {
  FillPeople();
  fw::RegisterClasses({&fw::TIntegerField::StaticClass(), &fw::TStringField::StaticClass()});
  auto root = ReadForm(LookupForm(Dir.string(), GetParam()));
  auto* people = dynamic_cast<TCTTable*>(root->FindComponent("People"));
  auto* cities = dynamic_cast<TCTTable*>(root->FindComponent("Cities"));
  ASSERT_TRUE(people != nullptr && cities != nullptr && people->Active());
  fw::TField* first = people->FieldByName("FIRST");
  EXPECT_EQ(first->AsString(), "Arvid");  // ID 1, Bergen
  people->Next();
  EXPECT_EQ(first->AsString(), "Brita");  // ID 2, Oslo
  people->Locate("ID", V(5), {});
  EXPECT_EQ(first->AsString(), "Eskil");

  people->Edit();
  people->FieldByName("CITY")->SetAsString("Oslo");
  EXPECT_EQ(first->AsString(), "Brita");
  people->FieldByName("CITY")->SetAsString("Nowhere");
  EXPECT_TRUE(first->IsNull());
  people->Cancel();
  EXPECT_EQ(first->AsString(), "Eskil");

  // The lookup table changes: the value shown follows.
  people->Locate("ID", V(9), {});
  EXPECT_EQ(first->AsString(), "Eskil");
  ASSERT_TRUE(cities->Locate("ID", V(5), {}));
  cities->Edit();
  cities->FieldByName("NAME")->SetAsString("Eskil W.");
  cities->Post();
  EXPECT_EQ(first->AsString(), "Eskil W.");
  cities->Delete();
  EXPECT_EQ(first->AsString(), "Nanna");
  people->Next();  // ID 10: Oslo
  EXPECT_EQ(first->AsString(), "Brita");
}

INSTANTIATE_TEST_SUITE_P(CachedOrNot, LookupFields, ::testing::Bool());

}  // namespace
}  // namespace CTTables::testing
