// Tests of the field classes: native buffer formats, conversions, validation and change events,
// calculated and lookup fields (framework layer).
#include <gtest/gtest.h>

#include <cstring>

#include "DataSetFixture.h"
#include "DateTime.h"
#include "StringUtils.h"
#include "TBinaryField.h"
#include "TBooleanField.h"
#include "TDateTimeField.h"
#include "TFloatField.h"
#include "TNumericField.h"
#include "TStringField.h"

namespace fwtest {
namespace {

using namespace fw;

/// One record with a column of every in-record type.
class FieldTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Table = TComponentPtr<TMemDataSet>(new TMemDataSet(
        nullptr, {{"S", ftString, 5},     {"SI", ftSmallint},   {"I", ftInteger},   {"W", ftWord},
                  {"L", ftLargeint},      {"F", ftFloat},       {"C", ftCurrency},  {"B", ftBoolean},
                  {"D", ftDate},          {"T", ftTime},        {"DT", ftDateTime}, {"BY", ftBytes, 3},
                  {"VB", ftVarBytes, 4},  {"AI", ftAutoInc}}));
    Table->Open();
    Table->Append();
  }
  TField* F(const char* name) { return Table->FieldByName(name); }
  template <class T>
  T Native(const char* name) {
    T value{};
    EXPECT_TRUE(F(name)->GetData(&value));
    return value;
  }

  TComponentPtr<TMemDataSet> Table;
};

TEST_F(FieldTest, DefaultFieldsGetTheFrameworkClassesAndSizes) {
  const char* const classes[] = {"TStringField",   "TSmallintField", "TIntegerField", "TWordField",
                                 "TLargeintField", "TFloatField",    "TCurrencyField", "TBooleanField",
                                 "TDateField",     "TTimeField",     "TDateTimeField", "TBytesField",
                                 "TVarBytesField", "TAutoIncField"};
  const int sizes[] = {6, 2, 4, 2, 8, 8, 8, 2, 4, 4, 8, 3, 6, 4};
  for (int i = 0; i < Table->FieldCount(); ++i) {
    EXPECT_EQ(Table->Fields()->Fields(i)->ClassName(), classes[i]) << i;
    EXPECT_EQ(Table->Fields()->Fields(i)->DataSize(), sizes[i]) << i;
  }
  EXPECT_EQ(F("I")->Alignment(), taRightJustify);
  EXPECT_EQ(F("S")->DisplayWidth(), 5);
}

TEST_F(FieldTest, StringFieldsTruncateAndKeepEmptyTextNonNull) {
  F("S")->SetAsString("abcdefgh");
  EXPECT_EQ(F("S")->AsString(), "abcde");
  char raw[6];
  ASSERT_TRUE(F("S")->GetData(raw));
  EXPECT_EQ(std::memcmp(raw, "abcde\0", 6), 0);
  F("S")->SetAsString("");
  EXPECT_FALSE(F("S")->IsNull());
  EXPECT_TRUE(VarIsStr(F("S")->Value()));
  F("S")->SetAsString("12");
  EXPECT_EQ(F("S")->AsInteger(), 12);
  F("S")->SetAsString("yes");
  EXPECT_TRUE(F("S")->AsBoolean());
  F("S")->SetAsString("x1");
  EXPECT_THROW(F("S")->AsInteger(), EConvertError);
  F("S")->Clear();
  EXPECT_TRUE(F("S")->IsNull());
  EXPECT_TRUE(VarIsNull(F("S")->Value()));
}

TEST_F(FieldTest, IntegerFieldsCheckTheirRangeAndClearOnEmptyText) {
  F("SI")->SetAsInteger(-32768);
  EXPECT_EQ(Native<int16_t>("SI"), -32768);
  EXPECT_THROW(F("SI")->SetAsInteger(32768), EDatabaseError);
  EXPECT_EQ(F("SI")->AsInteger(), -32768);
  EXPECT_THROW(F("W")->SetAsInteger(-1), EDatabaseError);
  F("W")->SetAsInteger(65535);
  EXPECT_EQ(Native<uint16_t>("W"), 65535);
  auto* i = static_cast<TIntegerField*>(F("I"));
  i->SetMinValue(1);
  i->SetMaxValue(10);
  EXPECT_THROW(i->SetAsInteger(11), EDatabaseError);
  i->SetAsFloat(2.5);  // half to even
  EXPECT_EQ(i->AsInteger(), 2);
  i->SetAsString(" 7 ");
  EXPECT_EQ(i->Value().Type(), varInteger);
  EXPECT_EQ(i->AsString(), "7");
  EXPECT_THROW(i->SetAsString("7a"), EDatabaseError);
  i->SetAsString("");
  EXPECT_TRUE(i->IsNull());
  EXPECT_THROW(i->AsDateTime(), EDatabaseError);
  F("L")->SetValue(Variant(static_cast<long long>(1) << 40));
  EXPECT_EQ(Native<int64_t>("L"), int64_t{1} << 40);
  EXPECT_EQ(F("L")->Value().Type(), varInt64);
}

TEST_F(FieldTest, FloatAndCurrencyFieldsHoldDoubles) {
  F("C")->SetAsCurrency(123450);  // 12.345
  EXPECT_DOUBLE_EQ(Native<double>("C"), 12.345);
  F("F")->SetAsString("1.5");
  EXPECT_EQ(F("F")->AsInteger(), 2);
  F("F")->SetAsFloat(3.5);
  EXPECT_EQ(F("F")->AsInteger(), 4);
  EXPECT_THROW(F("F")->SetAsString("abc"), EDatabaseError);
  EXPECT_DOUBLE_EQ(F("F")->AsFloat(), 3.5);
  F("F")->SetAsString("");
  EXPECT_TRUE(F("F")->IsNull());
  EXPECT_EQ(F("F")->AsString(), "");
}

TEST_F(FieldTest, BooleanFieldsStoreWordBoolsAndParseDisplayValues) {
  F("B")->SetAsBoolean(true);
  EXPECT_EQ(Native<uint16_t>("B"), 0xFFFF);
  auto* b = static_cast<TBooleanField*>(F("B"));
  b->SetAsString("f");
  EXPECT_EQ(Native<uint16_t>("B"), 0);
  EXPECT_EQ(b->AsString(), "False");
  b->SetDisplayValues("Yes;No");
  b->SetAsString("YE");
  EXPECT_TRUE(b->AsBoolean());
  EXPECT_EQ(b->DisplayText(), "Yes");
  EXPECT_THROW(b->SetAsString("maybe"), EDatabaseError);
  EXPECT_THROW(b->SetDisplayValues(""), EDatabaseError);
  const uint16_t other = 7;  // any non-zero value reads as true
  b->SetData(&other);
  EXPECT_TRUE(b->AsBoolean());
  EXPECT_EQ(b->Value().Type(), varBoolean);
  b->SetAsString("");
  EXPECT_TRUE(b->IsNull());
}

TEST_F(FieldTest, DateAndTimeFieldsUseTheNativeDayAndMillisecondCounts) {
  const TDateTime noon = EncodeDate(2000, 1, 1) + 0.5;
  F("D")->SetAsDateTime(noon);
  EXPECT_EQ(Native<int32_t>("D"), 730120);
  EXPECT_EQ(F("D")->AsDateTime(), EncodeDate(2000, 1, 1));
  F("T")->SetAsDateTime(noon);
  EXPECT_EQ(Native<int32_t>("T"), 43200000);
  EXPECT_EQ(F("T")->AsDateTime(), 0.5);
  F("DT")->SetAsDateTime(noon);
  EXPECT_EQ(Native<double>("DT"), 63082411200000.0);
  EXPECT_EQ(F("DT")->AsDateTime(), noon);
  EXPECT_EQ(F("DT")->Value().Type(), varDate);
  F("DT")->SetAsString("");
  EXPECT_TRUE(F("DT")->IsNull());
  EXPECT_THROW(F("D")->SetAsString("not a date"), EConvertError);
  EXPECT_THROW(F("D")->AsInteger(), EDatabaseError);
}

TEST_F(FieldTest, ByteFieldsPadAndCarryTheirLength) {
  F("BY")->SetAsString("ab");
  char raw[3];
  ASSERT_TRUE(F("BY")->GetData(raw));
  EXPECT_EQ(std::memcmp(raw, "ab\0", 3), 0);
  EXPECT_EQ(F("BY")->Value().Type(), varArray | varByte);
  F("VB")->SetValue(VarByteArrayOf("xyz", 3));
  unsigned char var[6];
  ASSERT_TRUE(F("VB")->GetData(var));
  EXPECT_EQ(var[0], 3);
  EXPECT_EQ(var[1], 0);
  EXPECT_EQ(F("VB")->AsString(), "xyz");
  F("VB")->SetAsString("123456");
  EXPECT_EQ(F("VB")->AsString(), "1234");
}

TEST_F(FieldTest, ValidateSeesTheNewValueAndCanRejectIt) {
  F("I")->SetAsInteger(1);
  std::vector<std::string> log;
  F("I")->OnValidate = [&log](TField* f) {
    log.push_back("validate " + f->AsString());
    if (f->AsInteger() < 0) throw EDatabaseError("negative");
  };
  F("I")->OnChange = [&log](TField* f) { log.push_back("change " + f->AsString()); };
  F("I")->SetAsInteger(5);
  EXPECT_THROW(F("I")->SetAsInteger(-5), EDatabaseError);
  EXPECT_EQ(F("I")->AsInteger(), 5);
  EXPECT_EQ(Table->State(), dsInsert);
  EXPECT_EQ(log, (std::vector<std::string>{"validate 5", "change 5", "validate -5"}));
}

TEST_F(FieldTest, TextUsesDisplayAndEditFormats) {
  auto* f = static_cast<TFloatField*>(F("F"));
  f->SetAsFloat(3.5);
  f->SetDisplayFormat("0.00");
  EXPECT_EQ(f->DisplayText(), "3.50");
  EXPECT_EQ(f->Text(), "3.50");  // the edit text falls back to the display format
  f->SetEditFormat("0.0");
  EXPECT_EQ(f->Text(), "3.5");
  EXPECT_EQ(f->AsString(), "3.5");
  F("I")->SetAsInteger(7);
  F("I")->OnGetText = [](TField* field, std::string& text, bool display) {
    text = (display ? "#" : "") + field->AsString();
  };
  EXPECT_EQ(F("I")->DisplayText(), "#7");
  EXPECT_EQ(F("I")->Text(), "7");
  F("I")->OnSetText = [](TField* field, const std::string& text) { field->SetAsInteger(StrToInt(text) * 2); };
  F("I")->SetText("4");
  EXPECT_EQ(F("I")->AsInteger(), 8);
  F("D")->SetAsDateTime(EncodeDate(2000, 1, 31));
  EXPECT_EQ(F("D")->DisplayText(), "2000-01-31");
  static_cast<TDateTimeField*>(F("D"))->SetDisplayFormat("dd/mm/yyyy");
  EXPECT_EQ(F("D")->DisplayText(), "31-01-2000");
  EXPECT_TRUE(F("B")->DisplayText().empty());  // null
}

TEST_F(FieldTest, VariantsConvertOrRaiseDatabaseErrors) {
  F("I")->SetValue(Variant("42"));
  EXPECT_EQ(F("I")->AsInteger(), 42);
  EXPECT_THROW(F("I")->SetValue(Variant("forty")), EDatabaseError);
  F("I")->SetValue(Null());
  EXPECT_TRUE(F("I")->IsNull());
  F("I")->AssignValue(Variant());  // Unassigned leaves the field alone
  EXPECT_TRUE(F("I")->IsNull());
  F("I")->SetValue(Variant());  // but as a value it converts like 0
  EXPECT_EQ(F("I")->AsInteger(), 0);
  F("S")->SetValue(Variant(2.5));
  EXPECT_EQ(F("S")->AsString(), "2.5");
}

TEST_F(FieldTest, ReadOnlyFieldsRefuseWritesAndFieldsKnowTheirDataset) {
  F("S")->SetReadOnly(true);
  EXPECT_FALSE(F("S")->CanModify());
  EXPECT_THROW(F("S")->SetAsString("x"), EDatabaseError);
  EXPECT_TRUE(F("I")->CanModify());
  TStringField loose(nullptr);
  EXPECT_THROW(loose.AsString(), EDatabaseError);
  EXPECT_THROW(F("I")->SetSize(4), EDatabaseError);  // only while the dataset is closed
}

/// Orders with a calculated total and a lookup of the customer's name.
class CalcFieldTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Customers = TComponentPtr<TMemDataSet>(new TMemDataSet(nullptr, {{"CustId", ftInteger}, {"CustName", ftString, 10}}));
    Customers->Open();
    Customers->AppendRecord({Variant(1), Variant("Ann")});
    Customers->AppendRecord({Variant(2), Variant("Bob")});
    Customers->First();

    Orders = TComponentPtr<TMemDataSet>(new TMemDataSet(nullptr, {{"Qty", ftInteger}, {"Price", ftFloat}, {"Cust", ftInteger}}));
    Add<TIntegerField>("Qty");
    Add<TFloatField>("Price");
    Add<TIntegerField>("Cust");
    Total = Add<TFloatField>("Total", fkCalculated);
    Name = Add<TStringField>("CustomerName", fkLookup);
    Name->SetLookupDataSet(Customers.get());
    Name->SetKeyFields("Cust");
    Name->SetLookupKeyFields("CustId");
    Name->SetLookupResultField("CustName");
    Orders->OnCalcFields = [this](TDataSet* ds) {
      EXPECT_EQ(ds->State(), dsCalcFields);
      Total->SetAsFloat(ds->FieldByName("Qty")->AsInteger() * ds->FieldByName("Price")->AsFloat());
    };
  }

  // A field of class T on Orders (closed), of the given kind.
  template <class T>
  T* Add(const char* name, TFieldKind kind = fkData) {
    auto* field = new T(Orders.get());
    field->SetFieldName(name);
    field->SetFieldKind(kind);
    field->SetDataSet(Orders.get());
    return field;
  }

  TComponentPtr<TMemDataSet> Customers;
  TComponentPtr<TMemDataSet> Orders;
  TFloatField* Total = nullptr;
  TStringField* Name = nullptr;
};

TEST_F(CalcFieldTest, CalculatedAndLookupFieldsFollowEachRecord) {
  Orders->Open();
  EXPECT_EQ(Total->FieldNo(), -1);
  EXPECT_EQ(Name->Offset(), 9);  // after Total's "has value" byte and 8 data bytes
  EXPECT_EQ(Orders->CalcFieldsSize(), 9 + 22);  // the lookup string has the default Size 20
  Orders->AppendRecord({Variant(2), Variant(1.5), Variant(2)});
  Orders->AppendRecord({Variant(3), Variant(2.0), Variant(9)});
  Orders->First();
  EXPECT_DOUBLE_EQ(Total->AsFloat(), 3.0);
  EXPECT_EQ(Name->AsString(), "Bob");
  Orders->Next();
  EXPECT_DOUBLE_EQ(Total->AsFloat(), 6.0);
  EXPECT_TRUE(Name->IsNull());  // no customer 9
  EXPECT_EQ(Customers->FieldByName("CustId")->AsInteger(), 1);  // lookups do not move the lookup table
  EXPECT_THROW(Total->SetAsFloat(1), EDatabaseError);          // not editing
}

TEST_F(CalcFieldTest, AutoCalcFieldsRecomputesOnEveryDataFieldChange) {
  Orders->Open();
  Orders->AppendRecord({Variant(1), Variant(10.0), Variant(1)});
  Orders->Edit();
  Orders->FieldByName("Qty")->SetAsInteger(4);
  EXPECT_DOUBLE_EQ(Total->AsFloat(), 40.0);
  Orders->FieldByName("Cust")->SetAsInteger(2);
  EXPECT_EQ(Name->AsString(), "Bob");
  Orders->Post();
  Orders->SetAutoCalcFields(false);
  Orders->Edit();
  Orders->FieldByName("Qty")->SetAsInteger(5);
  EXPECT_DOUBLE_EQ(Total->AsFloat(), 40.0);  // stale until the record is read again
  Orders->Post();
  EXPECT_DOUBLE_EQ(Total->AsFloat(), 50.0);
}

TEST_F(CalcFieldTest, LookupCacheAndIncompleteLookupDefinitions) {
  Name->SetLookupCache(true);
  Orders->Open();
  Orders->AppendRecord({Variant(1), Variant(1.0), Variant(1)});
  EXPECT_EQ(Name->AsString(), "Ann");
  Orders->Close();
  Name->SetLookupResultField("");
  EXPECT_THROW(Orders->Open(), EDatabaseError);
  EXPECT_FALSE(Orders->Active());
  Name->SetLookupResultField("CustName");
  Customers.reset();  // the lookup table goes away: the field forgets it
  EXPECT_EQ(Name->LookupDataSet(), nullptr);
}

}  // namespace
}  // namespace fwtest
