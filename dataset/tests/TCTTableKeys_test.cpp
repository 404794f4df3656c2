// TCTTable: index definitions, key seeks and ranges over real engine files.
#include "TStringList.h"
#include "TableTestSupport.h"
#include "TField.h"

namespace CTTables::testing {
namespace {

using Keys = TableTest;

TEST_F(Keys, IndexDefsDescribeEveryIndexAndRefuseDuplicates) {
  FillPeople();
  TCTTable* table = NewTable();
  fw::TStringList names;
  table->GetIndexNames(names);  // a closed table is opened briefly
  ASSERT_EQ(names.Count(), 3);
  EXPECT_EQ(names.Strings(0), "ById");
  EXPECT_EQ(names.Strings(1), "ByCity");
  EXPECT_FALSE(table->Active());
  TCTIndexDefs* defs = table->IndexDefs();
  EXPECT_EQ(defs->Items(1)->Fields(), "CITY;ID");
  EXPECT_TRUE(defs->Items(0)->Options().Contains(fw::ixPrimary));
  EXPECT_TRUE(defs->Items(0)->Options().Contains(fw::ixUnique));
  EXPECT_FALSE(defs->Items(2)->Options().Contains(fw::ixUnique));
  EXPECT_EQ(ErrorOf([&] { defs->Add("BYNAME", "NAME", "", false, false, {}); }), 1134);
  EXPECT_EQ(defs->Count(), 3);

  TCTIndexDefs copy(nullptr);
  copy.Assign(*defs);
  EXPECT_EQ(copy.Count(), 3);
  EXPECT_EQ(copy.Items(1)->GetFields(), "CITY;ID");
  EXPECT_TRUE(copy.Items(0)->Flag4());

  table->Open();
  table->IndexDefs()->Add("", "NAME", "", false, false, {});  // the framework names it
  names.Clear();
  table->GetIndexNames(names);  // unnamed definitions are skipped
  EXPECT_EQ(names.Count(), 3);
}

TEST_F(Keys, DescriptorCodingRoundTrips) {
  TCTTable* table = OpenPeople();
  Ctdb::CTIdxDesc desc;
  fw::TIndexOptions options{fw::ixUnique, fw::ixDescending, fw::ixExpression};
  table->EncodeIndexDesc(desc, "dir/ByTwo", "CITY; NAME", "CITY+NAME", true, false, options);
  EXPECT_EQ(desc.FieldsInKey, 2);
  EXPECT_EQ(desc.KeyFields[0], 3);
  EXPECT_EQ(desc.KeyFields[1], 2);
  EXPECT_EQ(desc.DescendingFields[1], 1);
  EXPECT_EQ(desc.Unique, -1);
  EXPECT_EQ(desc.Primary, 0);
  EXPECT_EQ(desc.Maintained, -1);
  std::string name, fields, expression;
  bool flag4 = false, flag5 = true;
  fw::TIndexOptions decoded;
  table->DecodeIndexDesc(desc, name, fields, expression, flag4, flag5, decoded);
  EXPECT_EQ(name, "ByTwo");
  EXPECT_EQ(fields, "CITY;NAME");
  EXPECT_EQ(expression, "CITY+NAME");
  EXPECT_TRUE(flag4);
  EXPECT_FALSE(flag5);
  EXPECT_TRUE(decoded == options);
  EXPECT_THROW(table->EncodeIndexDesc(desc, "x", "CITY;NOPE", "", false, false, {}), fw::EDatabaseError);
}

TEST_F(Keys, IndexFieldsFollowTheCurrentIndex) {
  FillPeople();
  TCTTable* table = NewTable();
  EXPECT_EQ(table->GetIndexFieldCount(), 0);
  table->SetIndexName("ByCity");
  EXPECT_EQ(table->IndexName(), "ByCity");
  table->Open();
  ASSERT_EQ(table->GetIndexFieldCount(), 2);
  EXPECT_EQ(table->GetIndexField(0)->FieldName(), "CITY");
  EXPECT_EQ(table->GetIndexField(1)->FieldName(), "ID");
  EXPECT_EQ(ErrorOf([&] { table->GetIndexField(2); }), 1125);
  EXPECT_EQ(ErrorOf([&] { table->GetIndexField(-1); }), 1125);
  EXPECT_TRUE(table->GetIsIndexField(table->FieldByName("ID")));
  EXPECT_FALSE(table->GetIsIndexField(table->FieldByName("NAME")));
  EXPECT_EQ(ErrorOf([&] { table->CheckSetKeyMode(); }), 1121);
  table->SetKey();
  table->CheckSetKeyMode();
}

TEST_F(Keys, FindKeyExactPartialAndTooLongAndFindNearestEitherWay) {
  TCTTable* table = OpenPeople(true, "ByCity");
  EXPECT_FALSE(table->GotoKey());  // no key set yet
  EXPECT_TRUE(table->FindKey({V("Oslo"), V(4)}));
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Dorit");
  EXPECT_FALSE(table->FindKey({V("Oslo"), V(5)}));
  // Only the leading field: the first Tromso record.
  EXPECT_TRUE(table->FindKey({V("Tromso")}));
  EXPECT_EQ(Id(table), 5);
  EXPECT_FALSE(table->FindKey({V("Paris")}));
  EXPECT_EQ(ErrorOf([&] { table->FindKey({V("Oslo"), V(4), V(1)}); }), 1125);
  table->Cancel();
  EXPECT_EQ(table->State(), fw::dsBrowse);

  // FindNearest honours its direction and KeyExclusive.
  table->SetIndexName("ById");
  EXPECT_TRUE(table->FindNearest({V(4)}));
  EXPECT_EQ(Id(table), 4);
  EXPECT_TRUE(table->FindNearest({V(4)}, false));
  EXPECT_EQ(Id(table), 4);
  table->SetKeyExclusive(true);
  EXPECT_TRUE(table->FindNearest({V(4)}));
  EXPECT_EQ(Id(table), 5);
  EXPECT_TRUE(table->FindNearest({V(4)}, false));
  EXPECT_EQ(Id(table), 3);
  EXPECT_FALSE(table->FindNearest({V(10)}));
  EXPECT_FALSE(table->FindNearest({V(1)}, false));
}

TEST_F(Keys, SetRangeWalksOneCityCancelRangeRestoresAllAndKeyExclusiveNarrowsBothEnds) {
  TCTTable* table = OpenPeople(true, "ByCity");
  table->SetRange({V("Oslo")}, {V("Oslo")});
  EXPECT_EQ(table->RangeFlag(), Ctdb::rfRangeEnd) << "the table's flag is the driver's";
  EXPECT_EQ(IdsToEnd(*table), (Ids{2, 4, 7, 10}));
  EXPECT_EQ(table->RecordCount(), 4);
  EXPECT_FALSE(table->FindKey({V("Bergen"), V(1)}));  // outside the range
  table->CancelRange();
  EXPECT_EQ(table->RangeFlag(), rfNone);
  EXPECT_EQ(table->RecordCount(), 10);
  table->First();
  EXPECT_EQ(IdsToEnd(*table).size(), 10u);

  // KeyExclusive makes both ends of a user range exclusive.
  table->SetIndexName("ById");
  table->SetKeyExclusive(true);
  table->SetRange({V(3)}, {V(7)});
  EXPECT_EQ(IdsToEnd(*table), (Ids{4, 5, 6}));
  table->SetKeyExclusive(false);
  table->ApplyRange();
  EXPECT_EQ(IdsToEnd(*table), (Ids{3, 4, 5, 6, 7}));
}

TEST_F(Keys, RangeEditingStartsEmptyAndPostKeepsTheBuffers) {
  TCTTable* table = OpenPeople();
  table->SetRangeStart();
  table->FieldByName("ID")->SetAsInteger(8);
  table->SetRangeEnd();
  table->FieldByName("ID")->SetAsInteger(9);
  table->Post();  // ends key editing, keeps the buffers; nothing applied yet
  EXPECT_EQ(table->State(), fw::dsBrowse);
  EXPECT_EQ(table->RecordCount(), 10);
  table->ApplyRange();
  EXPECT_EQ(IdsToEnd(*table), (Ids{8, 9}));

  // The edited start begins empty: only the end value given, the start is the lowest key.
  table->EditRangeStart();
  EXPECT_EQ(Id(table), 0);
  table->ApplyRange();
  EXPECT_EQ(IdsToEnd(*table), (Ids{1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

// Key editing ended without values drops an applied range: by Cancel, or by Post and ApplyRange,
// which leaves the current record where it is.
TEST_F(Keys, KeyEditingEndedWithoutValuesDropsTheRange) {
  TCTTable* table = OpenPeople();
  table->SetRange({V(2)}, {V(3)});
  EXPECT_EQ(table->RecordCount(), 2);
  table->EditRangeEnd();
  table->Cancel();
  EXPECT_EQ(table->State(), fw::dsBrowse);
  EXPECT_EQ(table->RangeFlag(), rfNone);
  EXPECT_EQ(table->RecordCount(), 10);

  table->SetRange({V(2)}, {V(6)});
  table->Next();
  table->Next();
  EXPECT_EQ(Id(table), 4);
  table->SetKey();
  table->Post();
  table->ApplyRange();
  EXPECT_EQ(table->RangeFlag(), rfNone);
  EXPECT_EQ(table->RecordCount(), 10);
  EXPECT_EQ(Id(table), 4);
}

TEST_F(Keys, KeyFieldListNeverEmpties) {
  TCTTable* table = OpenPeople(true, "ByCity");
  table->FindKey({V("Oslo"), V(2)});
  EXPECT_EQ(table->KeyFieldNames().Count(), 2);
  table->CancelRange();
  table->SetKey();
  table->Cancel();
  EXPECT_EQ(table->KeyFieldNames().Count(), 2);
  // So a range given only by city still compares two key fields: ID 0 to 0 matches nothing.
  table->SetRange({V("Oslo")}, {V("Oslo")});
  EXPECT_TRUE(table->IsEmpty());
}

TEST_F(Keys, IndexRecordHandlerIsInstalledOnTheConnectionSeesTheOfferedRecordAndDecides) {
  FillPeople();
  TCTTable* table = NewTable();
  table->SetOnIndexRecord([](Ctdb::TCTCustomDataSet*, const std::string&, bool&) {});
  EXPECT_TRUE(static_cast<bool>(Conn->OnIndexKey));
  table->SetOnIndexRecord(nullptr);
  EXPECT_FALSE(static_cast<bool>(Conn->OnIndexKey));
  std::vector<std::string> asked;
  table->SetOnIndexRecord([&asked](Ctdb::TCTCustomDataSet* ds, const std::string& index, bool& accept) {
    asked.push_back(index + ":" + ds->FieldByName("NAME")->AsString());
    EXPECT_EQ(ds->State(), fw::dsFilter);
    accept = ds->FieldByName("CITY")->AsString() != "Oslo";
  });
  table->Open();
  ASSERT_TRUE(table->FindKey({V(4)}));
  TCTRecordBuffer record(table->Cursor());
  ASSERT_EQ(Conn->GetCurrentRecord(table->Cursor(), Ctdb::dbiNOLOCK, &record), 0);
  Ctdb::CTIdxDesc desc = table->Cursor()->GetIndexDesc("ByName");
  bool accept = true;
  Conn->OnIndexKey(table->Cursor(), &desc, record.RecordPtr(), record.RecordSize(), accept);
  EXPECT_FALSE(accept);
  EXPECT_EQ(asked, (std::vector<std::string>{"ByName:Dorit"}));
  EXPECT_EQ(table->State(), fw::dsBrowse);
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Dorit");
  table->Free();
  accept = true;
  Conn->OnIndexKey(nullptr, &desc, record.RecordPtr(), record.RecordSize(), accept);  // the table is gone
  EXPECT_TRUE(accept);
}

}  // namespace
}  // namespace CTTables::testing
