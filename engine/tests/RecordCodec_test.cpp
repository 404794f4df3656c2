// RecordCodec_test: stored records decode to the bytes that were encoded; malformed ones are
// refused.
#include "RecordCodec.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using cte::RecordCodec;
using Bytes = std::vector<uint8_t>;

Bytes Pattern(std::initializer_list<std::pair<size_t, uint8_t>> runs) {
  Bytes b;
  for (const auto& [count, value] : runs) b.insert(b.end(), count, value);
  return b;
}

class RecordCodecRoundTrip : public ::testing::TestWithParam<Bytes> {};

TEST_P(RecordCodecRoundTrip, DecodesToTheEncodedBytes) {
  const Bytes& rec = GetParam();
  Bytes stored;
  RecordCodec::Encode(rec.data(), rec.size(), stored);
  EXPECT_LE(stored.size(), rec.size() + rec.size() / 128 + 1);
  Bytes back(rec.size(), 0xEE);
  ASSERT_TRUE(RecordCodec::Decode(stored.data(), stored.size(), back.data(), back.size()));
  EXPECT_EQ(back, rec);
}

const char* const kShapeNames[] = {"Empty", "AllZeros", "OneByte", "LongCopy", "ShortZeroRuns", "LongZeroRun",
                                   "TokenLimits"};

INSTANTIATE_TEST_SUITE_P(Shapes, RecordCodecRoundTrip,
                         ::testing::Values(Bytes{}, Pattern({{72, 0}}), Pattern({{1, 7}}), Pattern({{300, 0x41}}),
                                           Pattern({{1, 1}, {1, 0}, {1, 2}, {2, 0}, {1, 3}, {3, 0}, {1, 4}}),
                                           Pattern({{4, 9}, {300, 0}, {1, 5}, {10, 0}}),
                                           Pattern({{128, 0x7F}, {3, 0}, {129, 0xFF}, {2, 0}})),
                         [](const ::testing::TestParamInfo<Bytes>& info) { return kShapeNames[info.index]; });

TEST(RecordCodec, PaddedTextShrinks) {
  // A customer record: id, a 30-byte name and a 20-byte city padded with zeros, a double, and
  // ten bytes of slack.
  Bytes rec = Pattern({{4, 0x11}, {11, 'n'}, {19, 0}, {6, 'c'}, {14, 0}, {8, 0x40}, {10, 0}});
  Bytes stored;
  RecordCodec::Encode(rec.data(), rec.size(), stored);
  EXPECT_EQ(stored.size(), 34u);
}

TEST(RecordCodec, RefusesTokensPastTheInputOrTheRecord) {
  uint8_t out[8];
  std::memset(out, 0xAB, sizeof out);
  const uint8_t shortCopy[] = {0x03, 1, 2};          // four bytes announced, two given
  const uint8_t longZeros[] = {0x88};                // nine zeros into eight bytes
  const uint8_t longCopy[] = {0x08, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_FALSE(RecordCodec::Decode(shortCopy, sizeof shortCopy, out, sizeof out));
  EXPECT_FALSE(RecordCodec::Decode(longZeros, sizeof longZeros, out, sizeof out));
  EXPECT_FALSE(RecordCodec::Decode(longCopy, sizeof longCopy, out, sizeof out));
  for (uint8_t b : out) EXPECT_EQ(b, 0xAB);
}

}  // namespace
