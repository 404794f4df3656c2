// TCTTable: filtering by the Filter text and OnFilterRecord, and the condition list, over real engine files.
#include "TField.h"
#include "TReader.h"
#include "TableTestSupport.h"
#include "UnitFilterParser.h"

namespace CTTables::testing {
namespace {

using Filtering = TableTest;

// Adds a person through the table; an empty text leaves the field blank.
void Add(TCTTable& table, int32_t id, const std::string& name, const std::string& amount) {
  table.Append();
  table.FieldByName("ID")->SetAsInteger(id);
  if (!name.empty()) table.FieldByName("NAME")->SetAsString(name);
  table.FieldByName("CITY")->SetAsString("Oslo");
  if (!amount.empty()) table.FieldByName("AMOUNT")->SetAsString(amount);
  table.Post();
}

TEST_F(Filtering, FilterTextSelectsRecordsForwardsBackwardsAndWithinARange) {
  FillPeople();
  TCTTable* table = NewTable();
  table->SetFilter("(\"CITY\" = 'oslo') AND (\"ID\" > 2)");  // opens the closed table
  EXPECT_TRUE(table->Active());
  EXPECT_FALSE(table->Filtered());
  EXPECT_EQ(IdsToEnd(*table).size(), 10u);
  table->SetFiltered(true);
  EXPECT_EQ(IdsToEnd(*table), (Ids{4, 7, 10}));
  EXPECT_EQ(IdsBackwards(*table), (Ids{10, 7, 4}));
  EXPECT_EQ(table->RecordCount(), 10);  // counts come from the unfiltered table

  table->First();
  table->Next();
  const fw::TBookmark seven = table->GetBookmark();
  table->Last();
  table->GotoBookmark(seven);
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 7);

  table->SetIndexName("ByCity");
  table->SetFilter("\"ID\" >= 7");  // re-opening drops a range: set it afterwards
  table->SetRange({fw::Variant(std::string("Oslo"))}, {fw::Variant(std::string("Oslo"))});
  EXPECT_EQ(IdsToEnd(*table), (Ids{7, 10}));
}

TEST_F(Filtering, SettingTheSameFilterAgainStartsFromTheFirstRecord) {
  FillPeople();
  TCTTable* table = NewTable();
  table->SetFilter("\"AMOUNT\" > 40");
  table->SetFiltered(true);
  table->Next();
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 6);
  table->SetFilter("\"AMOUNT\" > 40");
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 5);
}

TEST_F(Filtering, TheHandlerIsAskedFirstAndItsRejectionWins) {
  FillPeople();
  TCTTable* table = NewTable();
  table->SetFilter("\"CITY\" = 'Oslo'");
  std::vector<int32_t> asked;
  table->SetOnFilterRecord([&asked](fw::TDataSet* ds, bool& accept) {
    EXPECT_EQ(ds->State(), fw::dsFilter);
    asked.push_back(ds->FieldByName("ID")->AsInteger());
    accept = ds->FieldByName("ID")->AsInteger() != 7;
  });
  EXPECT_TRUE(table->Filtered());
  EXPECT_EQ(IdsToEnd(*table), (Ids{2, 4, 10}));
  EXPECT_EQ(asked.size(), 10u);
  EXPECT_EQ(table->State(), fw::dsBrowse);

  table->Close();
  table->SetFiltered(false);
  table->SetOnFilterRecord(nullptr);  // clearing the handler switches filtering on as well
  EXPECT_TRUE(table->Active());
  EXPECT_TRUE(table->Filtered());
  EXPECT_EQ(IdsToEnd(*table), (Ids{2, 4, 7, 10}));
  table->SetFilter("");
  EXPECT_EQ(IdsToEnd(*table).size(), 10u);

  // A handler rejecting everything at open runs to the end: an empty table.
  table->Close();
  int seen = 0;
  table->SetOnFilterRecord([&seen](fw::TDataSet*, bool& accept) {
    ++seen;
    accept = false;
  });
  table->Open();
  EXPECT_TRUE(table->IsEmpty());
  EXPECT_TRUE(table->Eof());
  EXPECT_GE(seen, 10);
}

TEST_F(Filtering, NullTextValuesAndValuesWithBlanksFollowTheSubstitution) {
  TCTTable* table = OpenPeople();
  Add(*table, 11, "", "");
  Add(*table, 12, "Van Dyke", "12");
  table->SetFiltered(true);
  const std::vector<std::pair<std::string, std::vector<int32_t>>> cases = {
      {"\"AMOUNT\" = NULL", {11}},          // an empty non-text field
      {"\"NAME\" = null", {}},               // an empty text field arrives as two quotes
      {"\"NAME\" = ''", {11}},
      {"\"NAME\" = 'aino'", {3}},            // text compares without regard to case
      {"\"NAME\" = 'Van Dyke'", {}},        // never equal to a literal with the same blank
      {"\"NAME\" = 'VanDyke'", {}},
      {"(\"ID\" >= 10) OR (\"NAME\" = 'arvid')", {1, 10, 11, 12}},
  };
  for (const auto& [filter, ids] : cases) {
    table->SetFilter(filter);
    EXPECT_EQ(IdsToEnd(*table), ids) << filter;
  }
}

TEST_F(Filtering, ABooleanFieldAloneAcceptsTheRecordsInWhichItIsTrue) {
  TCTTable* table = TableOn("flags", true);
  table->FieldDefs()->Add("ID", fw::ftInteger, 0);
  table->FieldDefs()->Add("ACTIVE", fw::ftBoolean, 0);
  table->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
  table->CreateTable();
  table->Open();
  for (int32_t id = 1; id <= 4; ++id) {
    table->Append();
    table->FieldByName("ID")->SetAsInteger(id);
    table->FieldByName("ACTIVE")->SetAsBoolean(id % 2 == 0);
    table->Post();
  }
  table->SetFiltered(true);
  const std::vector<std::pair<std::string, std::vector<int32_t>>> cases = {
      {"\"ACTIVE\"", {2, 4}},
      {"\"active\" = false", {1, 3}},
      {"\"ACTIVE\" = NULL", {1, 3}},  // a truth text on the left: NULL counts as not true
      {"(\"ACTIVE\" = TRUE) AND (\"ID\" > 2)", {4}}};
  for (const auto& [filter, ids] : cases) {
    table->SetFilter(filter);
    EXPECT_EQ(IdsToEnd(*table), ids) << filter;
  }
}

TEST_F(Filtering, ErrorsOfTheTextRaiseDuringTheFetchWithTheStateRestored) {
  TCTTable* table = OpenPeople();
  table->SetFiltered(true);
  // 70.5 is not an integer: the comparison is numeric because both sides begin with a digit.
  EXPECT_THROW(
      {
        table->SetFilter("\"AMOUNT\" > 5");
        while (!table->Eof()) table->Next();
      },
      fw::EConvertError);
  EXPECT_NE(table->State(), fw::dsFilter);
  EXPECT_THROW(table->SetFilter("\"NOSUCH\" = 1"), fw::EDatabaseError);
  EXPECT_THROW(table->SetFilter("(\"ID\" = 1"), UnitFilterParser::EParserError);
  EXPECT_THROW(table->SetFilter("\"ID\" == 1"), UnitFilterParser::EConvertStringError);
  EXPECT_NE(table->State(), fw::dsFilter);
  table->SetFilter("\"ID\" = 3");
  EXPECT_EQ(IdsToEnd(*table), (Ids{3}));
  // A parenthesis in a value is counted like one in the text.
  Add(*table, 11, "Kim (Jr", "1");
  EXPECT_THROW(
      {
        table->SetFilter("\"NAME\" = 'Kim'");
        while (!table->Eof()) table->Next();
      },
      UnitFilterParser::EParserError);
}

TEST_F(Filtering, BuildparsStringSubstitutesTheFilterBuffersValues) {
  FillPeople();
  TCTTable* table = NewTable();
  std::vector<std::string> texts;
  table->SetOnFilterRecord([&texts, table](fw::TDataSet*, bool&) { texts.push_back(table->BuildparsString()); });
  texts.clear();
  table->SetFilter("(\"name\" = 'x y') and (\"AMOUNT\"<>NULL)");
  ASSERT_FALSE(texts.empty());
  EXPECT_EQ(texts.front(), "('Arvid'='xy')&(10<>*NULL*)");
}

TEST_F(Filtering, AFilterReadFromAFormOpensTheTableOnceLoaded) {
  FillPeople();
  const std::string form = "object Root: TComponent\n"
                           "  object Db: TCTConnection\n"
                           "  end\n"
                           "  object People: TCTTable\n"
                           "    Connection = Db\n"
                           "    Database = '" + Dir.string() + "'\n"
                           "    TableName = 'people'\n"
                           "    IndexName = 'ByName'\n"
                           "    Filtered = True\n"
                           "    Filter = '\"CITY\" = ''Oslo'''\n"
                           "  end\n"
                           "end\n";
  fw::ReadComponentText(form, Owner.get());
  auto* table = dynamic_cast<TCTTable*>(Owner->FindComponent("People"));
  ASSERT_NE(table, nullptr);
  EXPECT_TRUE(table->Active());
  EXPECT_EQ(IdsToEnd(*table), (Ids{2, 4, 7, 10}));
}

TEST_F(Filtering, TheConditionListIsKeptAsDataOnly) {
  TCTTable* table = OpenPeople();
  table->AddFilterCondition("CITY", 42, cfcNotEqual, fw::Variant(std::string("Oslo")));
  table->AddFilterCondition("ID", -1, cfcGTEqual, fw::Variant(3));
  table->SetFiltered(true);
  EXPECT_EQ(IdsToEnd(*table).size(), 10u);
  ASSERT_EQ(table->FilterConditions().size(), 2u);
  const TCTFilter& first = *table->FilterConditions().front();
  EXPECT_EQ(first.FieldName, "CITY");
  EXPECT_EQ(first.FieldIndex, 42);
  EXPECT_EQ(first.Comp, cfcNotEqual);
  EXPECT_EQ(first.Value.AsString(), "Oslo");
  table->ClearFilter();
  EXPECT_TRUE(table->FilterConditions().empty());
}

}  // namespace
}  // namespace CTTables::testing
