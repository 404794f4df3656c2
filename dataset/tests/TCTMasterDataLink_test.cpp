// TCTMasterDataLink and TCTTable's master/detail linking over real engine files.
#include "Exception.h"
#include "TDataSource.h"
#include "TField.h"
#include "TWriter.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

// Customers 1..3 (3 has no orders) and orders 10..14 keyed by CUSTNO;ORDNO.
class MasterDetail : public TableTest {
 protected:
  void SetUp() override {
    TCTTable* cust = TableOn("cust");
    cust->FieldDefs()->Add("CUSTNO", fw::ftInteger);
    cust->FieldDefs()->Add("NAME", fw::ftString, 20);
    cust->IndexDefs()->Add("ByNo", "CUSTNO", "", true, false, {fw::ixPrimary, fw::ixUnique});
    cust->CreateTable();
    cust->Open();
    for (int32_t i = 1; i <= 3; ++i) cust->AppendRecord({V(i), V(i == 2 ? "1" : "Name")});
    cust->Close();
    TCTTable* ords = TableOn("ords");
    ords->FieldDefs()->Add("ORDNO", fw::ftInteger);
    ords->FieldDefs()->Add("CUSTNO", fw::ftInteger);
    ords->FieldDefs()->Add("NOTE", fw::ftString, 12);
    ords->IndexDefs()->Add("ByNo", "ORDNO", "", true, false, {fw::ixPrimary, fw::ixUnique});
    ords->IndexDefs()->Add("ByCust", "CUSTNO;ORDNO", "", true, false, {fw::ixUnique});
    ords->CreateTable();
    ords->Open();
    const int32_t owner[] = {2, 1, 2, 1, 2};
    for (int32_t i = 0; i < 5; ++i) ords->AppendRecord({V(10 + i), V(owner[i]), V("x")});
    ords->Close();
    Master = TableOn("cust");
    Master->Open();
    Source = new fw::TDataSource(Owner.get());
    Source->SetDataSet(Master);
    Detail = TableOn("ords");
    Detail->SetIndexName("ByCust");
    Detail->SetMasterSource(Source);
    Detail->SetMasterFields("CUSTNO");
    Detail->Open();
  }

  Ids Orders() {
    Ids ids;
    for (Detail->First(); !Detail->Eof(); Detail->Next()) ids.push_back(Detail->FieldByName("ORDNO")->AsInteger());
    return ids;
  }

  TCTTable* Master = nullptr;
  fw::TDataSource* Source = nullptr;
  TCTTable* Detail = nullptr;
};

TEST_F(MasterDetail, DetailFollowsTheMastersCurrentRecord) {
  EXPECT_EQ(Detail->RangeFlag(), rfMasterDetail);
  EXPECT_EQ(Orders(), (Ids{11, 13}));
  Master->Next();
  EXPECT_EQ(Orders(), (Ids{10, 12, 14}));
  Master->Next();  // a customer without orders
  EXPECT_TRUE(Detail->IsEmpty());
  Master->First();
  Master->SetKey();  // key edits in the master do not move the detail
  Master->FieldByName("CUSTNO")->SetAsInteger(2);
  EXPECT_EQ(Orders(), (Ids{11, 13}));
  Master->Cancel();
  Master->Insert();  // a new master has no details yet
  EXPECT_TRUE(Detail->IsEmpty());
  Master->Cancel();
  EXPECT_EQ(Orders(), (Ids{11, 13}));
  EXPECT_TRUE(Detail->IsLinkedTo(Source));
  auto* own = new fw::TDataSource(Owner.get());
  own->SetDataSet(Detail);
  EXPECT_THROW(Master->SetMasterSource(own), fw::EDatabaseError);  // the chain would close
  EXPECT_EQ(Master->MasterSource(), nullptr);
}

TEST_F(MasterDetail, DetailEditsArePostedAndNewDetailsTakeTheMasterKey) {
  Master->Next();
  Detail->Insert();
  EXPECT_EQ(Detail->FieldByName("CUSTNO")->AsInteger(), 2);
  Detail->FieldByName("ORDNO")->SetAsInteger(20);
  Master->Next();  // posts the pending detail record first
  EXPECT_EQ(Detail->State(), fw::dsBrowse);
  Master->Prior();
  EXPECT_EQ(Orders(), (Ids{10, 12, 14, 20}));
  Detail->SetFiltered(true);
  Detail->SetOnFilterRecord([](fw::TDataSet* d, bool& accept) { accept = d->FieldByName("ORDNO")->AsInteger() > 11; });
  EXPECT_EQ(Orders(), (Ids{12, 14, 20}));
  Master->First();
  EXPECT_EQ(Orders(), (Ids{13}));
}

TEST_F(MasterDetail, ClosedOrFreedMasterLeavesTheDetailUnrestricted) {
  Master->Close();
  EXPECT_EQ(Detail->RangeFlag(), rfNone);
  EXPECT_EQ(Orders(), (Ids{11, 13, 10, 12, 14}));
  Master->Open();
  EXPECT_EQ(Orders(), (Ids{11, 13}));
  delete Master;
  EXPECT_EQ(Orders(), (Ids{11, 13, 10, 12, 14}));
  Master = TableOn("cust");
  Master->Open();
  Source->SetDataSet(Master);
  EXPECT_EQ(Orders(), (Ids{11, 13}));
  delete Source;
  EXPECT_EQ(Detail->MasterSource(), nullptr);
  EXPECT_EQ(Orders(), (Ids{11, 13, 10, 12, 14}));
}

TEST_F(MasterDetail, BadMasterFieldsRaiseAndChangeNothing) {
  try {
    Detail->SetMasterFields("NOSUCH");
    FAIL() << "unknown master field accepted";
  } catch (const fw::EDatabaseError& e) {
    EXPECT_NE(std::string(e.what()).find("NOSUCH"), std::string::npos);
  }
  EXPECT_EQ(Detail->MasterFields(), "CUSTNO");
  try {
    Detail->SetMasterFields("CUSTNO=NOTE");
    FAIL() << "detail field outside the index accepted";
  } catch (const fw::Exception& e) {
    EXPECT_STREQ(e.what(), "Field : NOTE not in the current index");
  }
  EXPECT_EQ(Detail->MasterFields(), "CUSTNO");
  // A text value that is a number converts; one that is not raises the conversion error.
  Master->Next();
  Detail->SetMasterFields("NAME=CUSTNO");
  EXPECT_EQ(Orders(), (Ids{11, 13}));
  EXPECT_THROW(Master->First(), fw::EConvertError);
  Detail->Close();
  EXPECT_THROW(Detail->SetMasterFields("NOSUCH=CUSTNO"), fw::EDatabaseError);  // the master is open
  EXPECT_EQ(Detail->MasterFields(), "NAME=CUSTNO");
  EXPECT_FALSE(Detail->Active());
}

TEST_F(MasterDetail, FieldListsTakeTheirSideOfEachPair) {
  std::vector<fw::TField*> fields;
  TCTTable::GetMasterFieldList(fields, "CUSTNO=ORDNO;NAME", Master);
  ASSERT_EQ(fields.size(), 2u);
  EXPECT_EQ(fields[1]->FieldName(), "NAME");
  fields.clear();
  TCTTable::GetDetailFieldList(fields, "NAME=CUSTNO;ORDNO ", Detail);
  ASSERT_EQ(fields.size(), 2u);
  EXPECT_EQ(fields[0]->FieldName(), "CUSTNO");
  EXPECT_EQ(fields[1]->FieldName(), "ORDNO");
  fields.clear();
  TCTTable::GetMasterFieldList(fields, "", Master);
  EXPECT_TRUE(fields.empty());
}

// A BCD master value reaches the detail's key with all its digits, and a memo master value is
// read through its blob stream into a text key.
TEST_F(MasterDetail, BcdAndMemoMasterValuesRestrictTheDetail) {
  TCTTable* accounts = TableOn("accounts");
  accounts->FieldDefs()->Add("AMOUNT", fw::ftBCD, 4);
  accounts->FieldDefs()->Add("TAG", fw::ftMemo);
  accounts->CreateTable();
  accounts->Open();
  accounts->AppendRecord({fw::Variant(std::string("123456789012.3456")), V("north")});
  accounts->AppendRecord({fw::Variant(std::string("123456789012.3457")), V("south")});
  TCTTable* entries = TableOn("entries");
  entries->FieldDefs()->Add("AMOUNT", fw::ftBCD, 4);
  entries->FieldDefs()->Add("TAG", fw::ftString, 10);
  entries->FieldDefs()->Add("NO", fw::ftInteger);
  entries->IndexDefs()->Add("ByAmount", "AMOUNT;NO", "", true, false, {fw::ixUnique});
  entries->IndexDefs()->Add("ByTag", "TAG;NO", "", true, false, {fw::ixUnique});
  entries->CreateTable();
  entries->Open();
  entries->AppendRecord({fw::Variant(std::string("123456789012.3456")), V("south"), V(1)});
  entries->AppendRecord({fw::Variant(std::string("123456789012.3457")), V("north"), V(2)});
  entries->AppendRecord({fw::Variant(std::string("123456789012.3457")), V("south"), V(3)});
  entries->Close();
  auto* source = new fw::TDataSource(Owner.get());
  source->SetDataSet(accounts);
  entries->SetMasterSource(source);
  auto numbers = [&] {
    Ids ids;
    for (entries->First(); !entries->Eof(); entries->Next()) ids.push_back(entries->FieldByName("NO")->AsInteger());
    return ids;
  };
  entries->SetIndexName("ByAmount");
  entries->SetMasterFields("AMOUNT");
  entries->Open();
  accounts->First();
  EXPECT_EQ(numbers(), (Ids{1}));
  accounts->Next();
  EXPECT_EQ(numbers(), (Ids{2, 3}));
  entries->Close();
  entries->SetIndexName("ByTag");
  entries->SetMasterFields("TAG");
  entries->Open();
  EXPECT_EQ(numbers(), (Ids{1, 3}));
  accounts->First();
  EXPECT_EQ(numbers(), (Ids{2}));
}

TEST_F(MasterDetail, FormFilesLoadAndSaveTheLink) {
  fw::RegisterClass(fw::TDataSource::StaticClass());
  const std::string dir = Dir.string();
  auto root = ReadForm(FormText(
      TableText("Ords", dir, "    TableName = 'ords'\n    IndexName = 'ByCust'\n    MasterSource = CustSource\n"
                             "    MasterFields = 'CUSTNO'\n    Active = True\n") +
      "  object CustSource: TDataSource\n    DataSet = Cust\n  end\n" +
      TableText("Cust", dir, "    TableName = 'cust'\n    Active = True\n")));
  auto* ords = dynamic_cast<TCTTable*>(root->FindComponent("Ords"));
  ASSERT_NE(ords, nullptr);
  EXPECT_EQ(ords->MasterFields(), "CUSTNO");
  EXPECT_EQ(ords->RangeFlag(), rfMasterDetail);
  EXPECT_EQ(ords->RecordCount(), 2);
  const std::string saved = fw::WriteComponentText(*root);
  EXPECT_NE(saved.find("MasterSource = CustSource"), std::string::npos);
  EXPECT_NE(saved.find("MasterFields = 'CUSTNO'"), std::string::npos);
}

}  // namespace
}  // namespace CTTables::testing
