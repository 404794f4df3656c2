// KeyBuilder_test: byte order of built keys equals value order for each field type and mode.
#include "KeyBuilder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "Fail.h"
#include "ctisam.h"

namespace {

using cte::FieldDef;
using cte::IndexDef;
using cte::KeyLayout;

IndexDef OneSegment(int offset, int length, int mode, int dup = 0) {
  IndexDef ix;
  ix.keylen = static_cast<int16_t>(length + (dup ? 4 : 0));
  ix.dup = static_cast<int16_t>(dup);
  ix.segs.push_back({static_cast<int16_t>(offset), static_cast<int16_t>(length), static_cast<int16_t>(mode)});
  return ix;
}

template <typename T>
std::string KeyOf(const KeyLayout& k, T value) {
  uint8_t rec[16] = {};
  std::memcpy(rec, &value, sizeof value);
  uint8_t out[32];
  k.Build(rec, sizeof rec, 0, out);
  return std::string(reinterpret_cast<char*>(out), k.KeyLen());
}

template <typename T>
void ExpectOrdered(const KeyLayout& k, std::initializer_list<T> ascending) {
  std::string prev;
  bool first = true;
  for (T v : ascending) {
    std::string key = KeyOf(k, v);
    if (!first) {
      EXPECT_LT(prev, key) << +v;
    }
    prev = key;
    first = false;
  }
}

TEST(KeyBuilder, SignedUnsignedAndFloatSegmentsSortByValue) {
  std::vector<FieldDef> none;
  ExpectOrdered<int16_t>(KeyLayout::Compile(OneSegment(0, 2, SGNSEG), none), {-32768, -2, -1, 0, 1, 300, 32767});
  ExpectOrdered<uint32_t>(KeyLayout::Compile(OneSegment(0, 4, INTSEG), none), {0u, 1u, 256u, 65536u, 0xFFFFFFFFu});
  ExpectOrdered<float>(KeyLayout::Compile(OneSegment(0, 4, FLTSEG), none), {-1e30f, -2.5f, -0.0f, 1e-30f, 3.0f, 1e30f});
  ExpectOrdered<double>(KeyLayout::Compile(OneSegment(0, 8, FLTSEG | DSCSEG), none), {1e300, 2.0, 0.5, -0.5, -1e300});
}

TEST(KeyBuilder, SchemaSegmentsFollowFieldTypesAndVariableOffsets) {
  std::vector<FieldDef> fields = {{"d", CT_DATE, 4}, {"s", CT_STRING, 0}, {"p", CT_2STRING, 0}, {"t", CT_TIMES, 8}};
  ExpectOrdered<int32_t>(KeyLayout::Compile(OneSegment(0, 4, SCHSEG), fields), {-5, 0, 109514});
  // Record: date, "hi\0", 2-byte prefixed "abc", timestamp (day -1, ms 5).
  uint8_t rec[32] = {};
  std::memcpy(rec + 4, "hi", 3);
  rec[7] = 3;
  std::memcpy(rec + 9, "abc", 3);
  int32_t day = -1, ms = 5;
  std::memcpy(rec + 12, &day, 4);
  std::memcpy(rec + 16, &ms, 4);
  uint8_t out[16];
  IndexDef text = OneSegment(2, 5, USCHSEG);
  text.empchr = '.';
  KeyLayout::Compile(text, fields).Build(rec, 20, 0, out);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(out), 5), "ABC..");
  KeyLayout::Compile(OneSegment(1, 4, SCHSEG), fields).Build(rec, 20, 0, out);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(out), 4), std::string("hi\0\0", 4));
  KeyLayout::Compile(OneSegment(3, 8, SCHSEG), fields).Build(rec, 20, 0, out);
  EXPECT_EQ(out[0], 0x7F);
  EXPECT_EQ(out[7], 5);
}

// A 10-byte BCD field: precision (the digit count), sign and places, the digits packed from
// byte 2 (a precision beyond the digits given counts trailing zeros, as a writer may leave).
struct Bcd {
  uint8_t bytes[10] = {};
  Bcd(bool negative, int places, const char* digits, int precision = -1) {
    const int count = static_cast<int>(std::strlen(digits));
    bytes[0] = static_cast<uint8_t>(precision < 0 ? count : precision);
    bytes[1] = static_cast<uint8_t>(places | (negative ? 0x80 : 0));
    for (int k = 0; k < count; ++k)
      bytes[2 + k / 2] |= static_cast<uint8_t>((digits[k] - '0') << (k % 2 == 0 ? 4 : 0));
  }
};

TEST(KeyBuilder, BcdSegmentsSortByValueWhateverTheEncoding) {
  std::vector<FieldDef> fields = {{"b", CT_BCD, 10}};
  for (int mode : {SCHSEG, SCHSEG | DSCSEG}) {
    const KeyLayout k = KeyLayout::Compile(OneSegment(0, 10, mode), fields);
    const std::vector<Bcd> ascending = {
        Bcd(true, 0, "9999999999999999"), Bcd(true, 0, "1000"), Bcd(true, 1, "125"), Bcd(true, 2, "5"),
        Bcd(false, 0, "0"),  Bcd(false, 3, "1"),  Bcd(false, 2, "5"), Bcd(false, 1, "5"),
        Bcd(false, 0, "9"),  Bcd(false, 0, "10"), Bcd(false, 2, "1234"), Bcd(false, 0, "9999999999999999")};
    for (size_t i = 1; i < ascending.size(); ++i) {
      const std::string low = KeyOf(k, ascending[i - 1]), high = KeyOf(k, ascending[i]);
      EXPECT_TRUE((mode & DSCSEG) != 0 ? high < low : low < high) << "mode " << mode << ", value " << i;
    }
    // Leading and trailing zeros, zero's sign and the null BCD change the bytes, not the value.
    EXPECT_EQ(KeyOf(k, Bcd(false, 3, "0012340")), KeyOf(k, Bcd(false, 2, "1234")));
    EXPECT_EQ(KeyOf(k, Bcd(false, 2, "5", 3)), KeyOf(k, Bcd(false, 0, "5")));
    EXPECT_EQ(KeyOf(k, Bcd(true, 0, "0")), KeyOf(k, Bcd(false, 0, "")));
  }
}

TEST(KeyBuilder, NullKeysAndDuplicateSuffix) {
  std::vector<FieldDef> none;
  IndexDef ix = OneSegment(0, 4, REGSEG, 1);
  ix.nulkey = 1;
  ix.empchr = ' ';
  KeyLayout k = KeyLayout::Compile(ix, none);
  uint8_t blank[4] = {' ', ' ', ' ', ' '}, word[4] = {'a', ' ', ' ', ' '}, out[8];
  EXPECT_TRUE(k.Build(blank, 4, 0x01020304, out));
  EXPECT_FALSE(k.Build(word, 4, 0x01020304, out));
  EXPECT_EQ(out[4], 1);
  EXPECT_EQ(out[7], 4);
  EXPECT_FALSE(k.Build(word, 2, 7, out));  // a short record is padded
  EXPECT_EQ(out[2], ' ');
}

TEST(KeyBuilder, FieldNumberBeyondTheSchemaIsRefused) {
  std::vector<FieldDef> fields = {{"a", CT_INT4, 4}};
  EXPECT_THROW(KeyLayout::Compile(OneSegment(3, 4, SCHSEG), fields), cte::Fail);
  std::vector<FieldDef> none;
  EXPECT_THROW(KeyLayout::Compile(OneSegment(0, 4, SCHSEG), none), cte::Fail);
}

}  // namespace
