// IfilImage: IFIL and DATOBJ images in the three packings, and refusal of damaged images.
#include "IfilImage.h"

#include <gtest/gtest.h>

#include <cstring>

#include "ctisam.h"

namespace Ctdb {
namespace {

IfilDefinition SampleIfil() {
  IfilDefinition def;
  def.pfilnam = "/data/customers";
  def.dfilno = 7;
  def.dreclen = 128;
  def.dfilmod = SHARED | VLENGTH;
  def.ifilmod = SHARED;
  def.tfilno = -1;
  IidxDefinition first;
  first.ikeylen = 12;
  first.ikeydup = 1;
  first.iempchr = ' ';
  first.seg = {{0, 4, INTSEG}, {4, 4, SCHSEG | DSCSEG}};
  first.ridxnam = "byNumber";
  IidxDefinition second;
  second.ikeylen = 20;
  second.seg = {{8, 20, UREGSEG}};
  second.aidxnam = "/data/extra";
  def.ix = {first, second};
  return def;
}

class PackingTest : public ::testing::TestWithParam<int> {};

TEST_P(PackingTest, IfilSurvivesEncodeAndDecode) {
  const IfilDefinition def = SampleIfil();
  IfilImage image(def, GetParam());
  IfilDefinition back;
  ASSERT_TRUE(DecodeIfilImage(static_cast<const uint8_t*>(image.Data()), image.Size(), GetParam(), back));
  EXPECT_EQ(back.pfilnam, def.pfilnam);
  EXPECT_EQ(back.dfilno, 7);
  EXPECT_EQ(back.dreclen, 128);
  EXPECT_EQ(back.dfilmod, SHARED | VLENGTH);
  EXPECT_EQ(back.tfilno, -1);
  EXPECT_EQ(image.tfilno(), -1);
  ASSERT_EQ(back.ix.size(), 2u);
  EXPECT_EQ(back.ix[0].ridxnam, std::optional<std::string>("byNumber"));
  EXPECT_FALSE(back.ix[0].aidxnam.has_value());
  EXPECT_EQ(back.ix[0].ikeydup, 1);
  EXPECT_EQ(back.ix[0].iempchr, ' ');
  ASSERT_EQ(back.ix[0].seg.size(), 2u);
  EXPECT_EQ(back.ix[0].seg[1].soffset, 4);
  EXPECT_EQ(back.ix[0].seg[1].segmode, SCHSEG | DSCSEG);
  EXPECT_EQ(back.ix[1].aidxnam, std::optional<std::string>("/data/extra"));
  EXPECT_EQ(back.ix[1].seg[0].slength, 20);
}

TEST_P(PackingTest, DodaSurvivesEncodeAndDecode) {
  const std::vector<DodaEntry> fields = {{"id", CT_INT4, 4}, {"name", CT_FSTRING, 30}, {"memo", CT_4STRING, 70000}};
  DodaImage image(fields, GetParam());
  std::vector<DodaEntry> back;
  ASSERT_TRUE(DecodeDodaImage(static_cast<const uint8_t*>(image.Data()), image.Size(), GetParam(), back));
  ASSERT_EQ(back.size(), 3u);
  EXPECT_EQ(back[1].Name, "name");
  EXPECT_EQ(back[1].Type, CT_FSTRING);
  EXPECT_EQ(back[2].Length, 70000u);
}

INSTANTIATE_TEST_SUITE_P(Packings, PackingTest, ::testing::Values(1, 2, 4));

TEST(IfilImageTest, RecordsAreLaidOutInTheRequestedPacking) {
  const IfilDefinition def = SampleIfil();
  IfilImage word(def, 2);
  IFIL_P2 record;
  std::memcpy(&record, word.Data(), sizeof record);
  EXPECT_EQ(record.dreclen, 128);
  EXPECT_EQ(record.dnumidx, 2);
  EXPECT_STREQ(record.pfilnam, "/data/customers");
  IIDX_P2 second;
  std::memcpy(&second, record.ix + 1, sizeof second);
  EXPECT_EQ(second.inumseg, 1);
  EXPECT_STREQ(second.aidxnam, "/data/extra");
}

TEST(IfilImageTest, DamagedIfilImagesAreRefused) {
  IfilImage image(SampleIfil(), 1);
  const auto* data = static_cast<const uint8_t*>(image.Data());
  IfilDefinition out;
  EXPECT_FALSE(DecodeIfilImage(data, sizeof(IFIL_P1) - 1, 1, out)) << "shorter than an IFIL";
  EXPECT_FALSE(DecodeIfilImage(data, sizeof(IFIL_P1) + 8, 1, out)) << "index array cut off";
  EXPECT_FALSE(DecodeIfilImage(nullptr, 100, 1, out));
  EXPECT_FALSE(DecodeIfilImage(data, image.Size(), 3, out)) << "no such packing";

  std::vector<uint8_t> copy(data, data + image.Size());
  IFIL_P1 record;
  std::memcpy(&record, copy.data(), sizeof record);
  record.pfilnam = reinterpret_cast<char*>(0x10);  // points nowhere near the image
  std::memcpy(copy.data(), &record, sizeof record);
  EXPECT_FALSE(DecodeIfilImage(copy.data(), copy.size(), 1, out));

  std::memcpy(&record, data, sizeof record);
  record.dnumidx = -3;
  std::memcpy(copy.data(), &record, sizeof record);
  EXPECT_FALSE(DecodeIfilImage(copy.data(), copy.size(), 1, out));

  // A name running to the end of the image without its terminator.
  std::memcpy(copy.data(), data, copy.size());
  std::memcpy(&record, copy.data(), sizeof record);
  const size_t nameAt = static_cast<size_t>(reinterpret_cast<const uint8_t*>(record.pfilnam) - data);
  EXPECT_FALSE(DecodeIfilImage(copy.data(), nameAt + 3, 1, out));
}

TEST(IfilImageTest, DamagedDodaImagesAreRefused) {
  const std::vector<DodaEntry> fields = {{"id", CT_INT4, 4}, {"name", CT_FSTRING, 30}};
  DodaImage image(fields, 4);
  const auto* data = static_cast<const uint8_t*>(image.Data());
  std::vector<DodaEntry> out;
  EXPECT_FALSE(DecodeDodaImage(data, sizeof(DATOBJ_P4) + 2, 4, out)) << "second record cut off";

  std::vector<uint8_t> copy(data, data + image.Size());
  DATOBJ_P4 record;
  std::memcpy(&record, copy.data(), sizeof record);
  record.fsymb = reinterpret_cast<char*>(copy.data() + 4);  // a name inside the records
  std::memcpy(copy.data(), &record, sizeof record);
  EXPECT_FALSE(DecodeDodaImage(copy.data(), copy.size(), 4, out));

  record.fsymb = nullptr;
  std::memcpy(copy.data(), &record, sizeof record);
  EXPECT_FALSE(DecodeDodaImage(copy.data(), copy.size(), 4, out));
}

}  // namespace
}  // namespace Ctdb
