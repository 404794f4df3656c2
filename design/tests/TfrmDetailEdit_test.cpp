// TfrmDetailEdit and CallDetailEdit: the link editor's choices and what they write.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DesignTestSupport.h"
#include "TDataSource.h"
#include "TField.h"

namespace CTreeReg::testing {
namespace {

using ::testing::ElementsAre;
using UnitDetailEdit::TfrmDetailEdit;

// Customers and their orders; orders have two indexes that can follow a customer.
class DetailEditTest : public DesignTest {
 protected:
  DetailEditTest() {
    CreateTable("customers.dat", {"CUSTNO", "REGION", "NAME:text"}, {},
                {{1, 10}, {2, 20}, {3, 10}});
    CreateTable("orders.dat", {"ORDNO", "CUST", "YEAR", "NOTE:text"},
                {{"ByCustomer", "CUST;YEAR;ORDNO"}, {"ByNote", "NOTE"}},
                {{100, 2, 2023}, {101, 1, 2024}, {102, 2, 2024}, {103, 3, 2024}});
    Customers = NewTable("customers.dat");
    Customers->SetName("Customers");
    Orders = NewTable("orders.dat");
    Orders->SetName("Orders");
    auto* source = new fw::TDataSource(Form.get());
    source->SetDataSet(Customers);
    Orders->SetMasterSource(source);
  }

  CTTables::TCTTable* Customers = nullptr;
  CTTables::TCTTable* Orders = nullptr;
};

TEST_F(DetailEditTest, ShowsIndexesFieldsAndTheLinksThatFitTheCurrentIndex) {
  Orders->SetIndexName("ByCustomer");
  Orders->SetMasterFields("CUSTNO=CUST;REGION=ORDNO");  // the second pair skips YEAR: dropped
  TfrmDetailEdit form(*Orders, *Customers);
  EXPECT_THAT(form.Indexes(), ElementsAre("ByFirst", "ByCustomer", "ByNote"));
  EXPECT_EQ(form.IndexName(), "ByCustomer");
  EXPECT_THAT(form.IndexFields(), ElementsAre("CUST", "YEAR", "ORDNO"));
  EXPECT_THAT(form.MasterFieldNames(), ElementsAre("CUSTNO", "REGION", "NAME"));
  ASSERT_EQ(form.Links().size(), 1u);
  EXPECT_EQ(form.Links()[0].MasterField, "CUSTNO");
  EXPECT_THAT(form.DetailFields(), ElementsAre("YEAR", "ORDNO"));
  EXPECT_FALSE(Orders->Active());  // read from its definitions

  Orders->SetIndexName("");  // no index named: the first one
  EXPECT_EQ(TfrmDetailEdit(*Orders, *Customers).IndexName(), "ByFirst");
}

TEST_F(DetailEditTest, RefusedPairsChangeNothing) {
  TfrmDetailEdit form(*Orders, *Customers);
  form.SelectIndex("bycustomer");
  EXPECT_THROW(form.AddLink("NOTE", "NAME"), fw::Exception);     // not a key of the index
  EXPECT_THROW(form.AddLink("YEAR", "REGION"), fw::Exception);   // CUST comes first
  EXPECT_THROW(form.AddLink("CUST", "MISSING"), fw::Exception);  // no such master field
  EXPECT_THROW(form.AddLink("CUST", "NAME"), fw::Exception);     // text cannot seek a number
  EXPECT_TRUE(form.Links().empty());
  form.AddLink("cust", "custno");
  EXPECT_THROW(form.AddLink("CUST", "CUSTNO"), fw::Exception);  // linked already
  EXPECT_THROW(form.SelectIndex("ByDate"), fw::Exception);
  EXPECT_EQ(form.MasterFieldsText(), "CUSTNO=CUST");
}

TEST_F(DetailEditTest, DeletingAPairDropsThoseAfterItAndAnotherIndexStartsAfresh) {
  TfrmDetailEdit form(*Orders, *Customers);
  form.SelectIndex("ByCustomer");
  form.AddLink("CUST", "CUSTNO");
  form.AddLink("YEAR", "REGION");
  EXPECT_EQ(form.MasterFieldsText(), "CUSTNO=CUST;REGION=YEAR");
  form.DeleteLink(0);
  EXPECT_TRUE(form.Links().empty());
  EXPECT_THROW(form.DeleteLink(0), fw::EListError);

  form.AddLink("CUST", "CUSTNO");
  form.SelectIndex("ByCustomer");  // the same index keeps the pairs
  EXPECT_EQ(form.Links().size(), 1u);
  form.SelectIndex("ByFirst");
  EXPECT_TRUE(form.Links().empty());
  EXPECT_THAT(form.DetailFields(), ElementsAre("ORDNO"));
}

TEST_F(DetailEditTest, ConfirmedLinkMakesTheDetailFollowItsMaster) {
  Designer->DetailEdit = [](TfrmDetailEdit& form) {
    form.SelectIndex("ByCustomer");
    form.AddLink("CUST", "CUSTNO");
    return true;
  };
  EXPECT_TRUE(UnitDetailEdit::CallDetailEdit(Orders, Customers));
  EXPECT_EQ(Orders->IndexName(), "ByCustomer");
  EXPECT_EQ(Orders->MasterFields(), "CUSTNO=CUST");

  Customers->Open();
  Orders->Open();
  Customers->Locate("CUSTNO", fw::Variant(2), {});
  std::vector<int32_t> orders;
  for (Orders->First(); !Orders->Eof(); Orders->Next())
    orders.push_back(Orders->FieldByName("ORDNO")->AsInteger());
  EXPECT_THAT(orders, ElementsAre(100, 102));
}

TEST_F(DetailEditTest, CancelWritesNothingAndAFormWithoutDesignerCannotShowIt) {
  Orders->SetMasterFields("CUSTNO=CUST");
  Designer->DetailEdit = [](TfrmDetailEdit& form) {
    form.SelectIndex("ByNote");
    return false;
  };
  EXPECT_FALSE(UnitDetailEdit::CallDetailEdit(Orders, Customers));
  EXPECT_EQ(Orders->MasterFields(), "CUSTNO=CUST");
  EXPECT_EQ(Orders->IndexName(), "");

  fw::SetRootDesigner(Form.get(), nullptr);
  EXPECT_THROW(UnitDetailEdit::CallDetailEdit(Orders, Customers), fw::Exception);
  EXPECT_THROW(UnitDetailEdit::CallDetailEdit(Orders, nullptr), fw::Exception);
}

}  // namespace
}  // namespace CTreeReg::testing
