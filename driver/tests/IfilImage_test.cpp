// IfilImage: damaged IFIL and DATOBJ images are refused rather than followed. (Well-formed
// images are read back through the engine in every packing by the schema tests.)
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
