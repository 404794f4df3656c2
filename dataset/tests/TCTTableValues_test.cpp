// TCTTable: values come back as written (BCD, currency, date-times) through fields, keys and
// ranges, and an index on a BCD field is in value order.
#include <string>
#include <vector>

#include "DateTime.h"
#include "StringUtils.h"
#include "TField.h"
#include "TFieldDefs.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

// Amounts of up to 16 digits, in no order; the ids follow their value order.
const std::vector<std::pair<int32_t, std::string>> kAmounts = {
    {6, "1234.56"}, {1, "-12345678901.2345"}, {7, "123456789012.3456"}, {3, "-0.05"},
    {4, "0"},       {5, "99.9999"},           {2, "-1"},
};

class Values : public TableTest {
 protected:
  // "ledger", open and shared: ID integer (primary), AMOUNT bcd(4) indexed with duplicates
  // ("ByAmount"), PRICE currency, AT date-time; filled with kAmounts.
  TCTTable* MakeLedger() {
    TCTTable* table = NewTable(false);
    table->SetTableName("ledger");
    table->FieldDefs()->Add("ID", fw::ftInteger);
    table->FieldDefs()->Add("AMOUNT", fw::ftBCD, 4);
    table->FieldDefs()->Add("PRICE", fw::ftCurrency);
    table->FieldDefs()->Add("AT", fw::ftDateTime);
    table->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
    table->IndexDefs()->Add("ByAmount", "AMOUNT", "", true, false, {});
    table->CreateTable();
    table->Open();
    for (const auto& [id, amount] : kAmounts) {
      table->Append();
      table->FieldByName("ID")->SetAsInteger(id);
      table->FieldByName("AMOUNT")->SetAsString(amount);
      table->Post();
    }
    return table;
  }
};

TEST_F(Values, BcdOfUpTo16DigitsRoundTripsAndItsIndexIsInValueOrder) {
  TCTTable* table = MakeLedger();
  table->Close();
  table->Open();
  for (const auto& [id, amount] : kAmounts) {
    ASSERT_TRUE(table->FindKey({fw::Variant(id)}));
    EXPECT_EQ(table->FieldByName("AMOUNT")->AsCurrency(), fw::StrToCurr(amount)) << amount;
  }
  table->SetIndexName("ByAmount");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), (Ids{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_TRUE(table->FindKey({fw::Variant(1234.56)}));
  EXPECT_EQ(table->FieldByName("ID")->AsInteger(), 6);
  table->SetRange({fw::Variant(-1.0)}, {fw::Variant(99.9999)});
  EXPECT_EQ(IdsToEnd(*table), (Ids{2, 3, 4, 5}));

  // A value beyond 16 digits is refused, not cut.
  table->CancelRange();
  ASSERT_TRUE(table->FindKey({fw::Variant(1234.56)}));
  table->Edit();
  EXPECT_EQ(ErrorOf([&] { table->FieldByName("AMOUNT")->SetAsString("1234567890123.4567"); }), 1104);
  EXPECT_EQ(table->FieldByName("AMOUNT")->AsString(), "1234.56");
  table->Cancel();
}

TEST_F(Values, CurrencyAndDateTimesComeBackAsWritten) {
  TCTTable* table = MakeLedger();
  const fw::TDateTime newYear = fw::EncodeDate(2020, 1, 1);
  const fw::TDateTime evening = fw::EncodeDate(1999, 12, 31) + fw::EncodeTime(23, 59, 58, 999);
  ASSERT_TRUE(table->FindKey({V(1)}));
  table->Edit();
  // Currency is stored in whole hundredths: a finer value is refused, not rounded.
  EXPECT_THROW(table->FieldByName("PRICE")->SetAsFloat(12.3456), fw::Exception);
  table->FieldByName("PRICE")->SetAsFloat(12.34);
  table->FieldByName("AT")->SetAsDateTime(newYear);
  table->Post();
  ASSERT_TRUE(table->FindKey({V(2)}));
  table->Edit();
  table->FieldByName("AT")->SetAsDateTime(evening);
  table->Post();
  table->Close();

  table->Open();
  ASSERT_TRUE(table->FindKey({V(1)}));
  EXPECT_EQ(table->FieldByName("PRICE")->AsString(), "12.34");
  EXPECT_EQ(table->FieldByName("AT")->AsDateTime(), newYear);
  ASSERT_TRUE(table->FindKey({V(2)}));
  EXPECT_EQ(fw::FormatDateTime("yyyy-mm-dd hh:nn:ss.zzz", table->FieldByName("AT")->AsDateTime()),
            "1999-12-31 23:59:58.999");
  ASSERT_TRUE(table->FindKey({V(3)}));
  EXPECT_TRUE(table->FieldByName("AT")->IsNull());
}

}  // namespace
}  // namespace CTTables::testing
