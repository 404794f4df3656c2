// Tests of blob fields through blob streams, and of BCD fields (framework layer).
#include <gtest/gtest.h>

#include <cstring>

#include "DataSetFixture.h"
#include "StringUtils.h"
#include "TBCDField.h"
#include "TBlobField.h"
#include "TBlobStream.h"
#include "TMemoryStream.h"

namespace fwtest {
namespace {

using namespace fw;

class BlobFieldTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Table = TComponentPtr<TMemDataSet>(new TMemDataSet(
        nullptr, {{"ID", ftInteger}, {"Memo", ftMemo}, {"Pic", ftGraphic}, {"Price", ftBCD, 2}, {"Exact", ftFMTBcd, 6}}));
    Table->Open();
    Table->AppendRecord({Variant(1), Variant("first note")});
    Table->AppendRecord({Variant(2)});
    Table->First();
    Memo = static_cast<TBlobField*>(Table->FieldByName("Memo"));
  }

  TComponentPtr<TMemDataSet> Table;
  TBlobField* Memo = nullptr;
};

TEST_F(BlobFieldTest, BlobContentTravelsThroughStreams) {
  EXPECT_EQ(Memo->ClassName(), "TMemoField");
  EXPECT_TRUE(Memo->IsBlob());
  EXPECT_EQ(Memo->DataSize(), 0);
  EXPECT_EQ(Memo->AsString(), "first note");
  EXPECT_EQ(Memo->BlobSize(), 10);
  EXPECT_EQ(Memo->DisplayText(), "(MEMO)");
  EXPECT_EQ(Table->FieldByName("Pic")->DisplayText(), "(graphic)");
  EXPECT_TRUE(Table->FieldByName("Pic")->IsNull());
  EXPECT_TRUE(VarIsNull(Table->FieldByName("Pic")->Value()));

  std::unique_ptr<TStream> reader = Table->CreateBlobStream(Memo, bmRead);
  char head[5] = {};
  EXPECT_EQ(reader->Read(head, 5), 5);
  EXPECT_EQ(std::string(head, 5), "first");
  EXPECT_THROW(Table->CreateBlobStream(Memo, bmWrite), EDatabaseError);  // not editing
}

TEST_F(BlobFieldTest, WrittenStreamsBecomeTheValueAndCancelDiscardsThem) {
  std::vector<std::string> changes;
  Memo->OnChange = [&changes](TField* f) { changes.push_back(f->FieldName()); };
  Table->Edit();
  {
    std::unique_ptr<TStream> rw = Table->CreateBlobStream(Memo, bmReadWrite);
    rw->Seek(0, soEnd);
    rw->WriteBuffer("!", 1);
  }
  EXPECT_EQ(Memo->AsString(), "first note!");
  EXPECT_TRUE(Memo->Modified());
  EXPECT_TRUE(Table->Modified());
  EXPECT_EQ(changes, (std::vector<std::string>{"Memo"}));
  Table->Cancel();
  EXPECT_FALSE(Memo->Modified());
  EXPECT_EQ(Memo->AsString(), "first note");

  Table->Edit();
  TMemoryStream source;
  source.WriteBuffer("loaded", 6);
  Memo->LoadFromStream(source);
  Table->Post();
  EXPECT_EQ(Memo->AsString(), "loaded");
  TMemoryStream saved;
  Memo->SaveToStream(saved);
  EXPECT_EQ(saved.Size(), 6);

  Table->Edit();
  { std::unique_ptr<TStream> reader = Table->CreateBlobStream(Memo, bmRead); }
  EXPECT_FALSE(Table->Modified());  // a stream that only read changes nothing
  Memo->Clear();
  EXPECT_TRUE(Memo->IsNull());
  Table->Post();
  EXPECT_TRUE(Memo->IsNull());
  EXPECT_EQ(Memo->AsString(), "");
}

TEST_F(BlobFieldTest, ReadOnlyBlobRefusesWritableStreams) {
  Table->Edit();
  Memo->SetReadOnly(true);
  EXPECT_THROW(Memo->SetAsString("x"), EDatabaseError);
  EXPECT_THROW(Table->CreateBlobStream(Memo, bmReadWrite), EDatabaseError);
  EXPECT_EQ(Memo->AsString(), "first note");
}

TEST_F(BlobFieldTest, BcdFieldsStoreTBcdAndExposeCurrency) {
  auto* price = static_cast<TBCDField*>(Table->FieldByName("Price"));
  EXPECT_EQ(price->DataSize(), 34);
  EXPECT_EQ(price->Size(), 2);
  Table->Edit();
  price->SetAsString("12.34");
  TBcd native;
  ASSERT_TRUE(price->GetData(&native));
  EXPECT_EQ(native.Precision, 32);
  EXPECT_EQ(native.SignSpecialPlaces, 2);
  EXPECT_EQ(BCDToStr(native), "12.34");
  EXPECT_EQ(price->AsCurrency(), 123400);
  EXPECT_EQ(price->Value().Type(), varCurrency);
  price->SetAsFloat(2.5);
  EXPECT_EQ(price->AsInteger(), 2);  // half to even
  price->SetAsCurrency(12345);       // 1.2345 kept with 2 places: rounded
  EXPECT_EQ(price->AsCurrency(), 12300);
  price->SetMaxValue(100 * kCurrencyScale);
  EXPECT_THROW(price->SetAsInteger(101), EDatabaseError);
  EXPECT_THROW(price->SetAsString("abc"), EConvertError);
  EXPECT_EQ(price->AsCurrency(), 12300);
  price->SetAsString("");
  EXPECT_TRUE(price->IsNull());

  auto* exact = static_cast<TFMTBCDField*>(Table->FieldByName("Exact"));
  exact->SetAsString("1001.1001");
  EXPECT_EQ(exact->AsString(), "1001.1001");
  EXPECT_EQ(BCDPrecision(exact->AsBCD()), 8);
  EXPECT_EQ(exact->AsCurrency(), 10011001);
  Table->Post();
  EXPECT_EQ(exact->AsString(), "1001.1001");
}

TEST(BlobStreamTest, StreamWithoutRecordReadsNothing) {
  TComponentPtr<TMemDataSet> table(new TMemDataSet(nullptr, {{"Memo", ftMemo}}));
  table->Open();  // empty: no current record
  TField* memo = table->FieldByName("Memo");
  std::unique_ptr<TStream> reader = table->CreateBlobStream(memo, bmRead);
  char c;
  EXPECT_EQ(reader->Read(&c, 1), 0);
  EXPECT_EQ(reader->Size(), 0);
  EXPECT_EQ(memo->AsString(), "");
  EXPECT_THROW(memo->SetAsString("x"), EDatabaseError);
}

}  // namespace
}  // namespace fwtest
