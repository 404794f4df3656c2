// Tests of the TBcd layout and its conversions.
#include "TBcd.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "Exception.h"

using namespace fw;

namespace {

// The text of currency value `c` stored with `precision` digits and `places` decimals.
std::string CurrText(Currency c, int precision, int places) {
  TBcd b;
  EXPECT_TRUE(CurrToBCD(c, b, precision, places)) << c;
  return BCDToStr(b);
}

}  // namespace

TEST(TBcd, CurrToBcdRightAlignsIntoPrecisionDigits) {
  TBcd b;
  ASSERT_TRUE(CurrToBCD(123400, b, 20, 4));  // 12.34
  EXPECT_EQ(b.Precision, 20);
  EXPECT_EQ(b.SignSpecialPlaces, 4);
  const uint8_t digits[10] = {0, 0, 0, 0, 0, 0, 0, 0x12, 0x34, 0x00};
  EXPECT_EQ(std::memcmp(b.Fraction, digits, sizeof digits), 0);
  EXPECT_EQ(BCDToStr(b), "12.3400");
  TBcd f;
  ASSERT_TRUE(CurrToFMTBCD(123400, f, 20, 4));
  EXPECT_EQ(std::memcmp(&b, &f, sizeof b), 0);
}

TEST(TBcd, NegativeAndMaximalCurrencyValuesRoundTrip) {
  TBcd b;
  Currency back = 0;
  ASSERT_TRUE(CurrToBCD(-15, b));  // -0.0015
  EXPECT_EQ(b.SignSpecialPlaces, 0x84);
  EXPECT_TRUE(IsBCDNegative(b));
  EXPECT_EQ(BCDToStr(b), "-0.0015");
  ASSERT_TRUE(BCDToCurr(b, back));
  EXPECT_EQ(back, -15);
  for (Currency v : {LLONG_MAX, LLONG_MIN, 0LL, 1LL, -10000LL}) {
    ASSERT_TRUE(CurrToBCD(v, b, 19, 4)) << v;
    ASSERT_TRUE(BCDToCurr(b, back)) << v;
    EXPECT_EQ(back, v);
  }
  EXPECT_EQ(BCDToStr(b), "-1.0000");
  EXPECT_EQ(CurrText(LLONG_MIN, 32, 4), "-922337203685477.5808");
  EXPECT_FALSE(CurrToBCD(LLONG_MAX, b, 18, 4));  // 15 integer digits do not fit 14
  EXPECT_FALSE(CurrToBCD(1, b, 65, 4));
}

TEST(TBcd, FewerDecimalsRoundHalfToEven) {
  EXPECT_EQ(CurrText(125000, 10, 1), "12.5");
  EXPECT_EQ(CurrText(125000, 10, 0), "12");
  EXPECT_EQ(CurrText(135000, 10, 0), "14");
  EXPECT_EQ(CurrText(10000, 10, 6), "1.000000");
}

TEST(TBcd, BcdToCurrRoundsExtraDecimalsAndRejectsOverflow) {
  Currency c = 7;
  EXPECT_FALSE(BCDToCurr(NullBcd, c));
  EXPECT_EQ(c, 7);
  for (auto [text, value] : {std::pair<const char*, Currency>{"1.00005", 10000}, {"1.00015", 10002},
                             {"-922337203685477.5808", LLONG_MIN}}) {
    ASSERT_TRUE(BCDToCurr(StrToBCD(text), c)) << text;
    EXPECT_EQ(c, value) << text;
  }
  EXPECT_FALSE(BCDToCurr(StrToBCD("922337203685477.5808"), c));
  TBcd bad = StrToBCD("12");
  bad.Fraction[0] = 0xA0;
  EXPECT_FALSE(BCDToCurr(bad, c));
  EXPECT_THROW(BCDToStr(bad), EConvertError);
}

TEST(TBcd, StrToBcdNormalizes) {
  const struct { const char* text; int precision, scale; const char* back; } cases[] = {
      {"0.001", 3, 3, "0.001"}, {"1001.1001", 8, 4, "1001.1001"}, {" -1.10 ", 2, 1, "-1.1"}, {"0", 1, 0, "0"}};
  for (const auto& c : cases) {
    const TBcd b = StrToBCD(c.text);
    EXPECT_EQ(b.Precision, c.precision) << c.text;
    EXPECT_EQ(BCDScale(b), c.scale) << c.text;
    EXPECT_EQ(BCDToStr(b), c.back);
  }
  EXPECT_EQ(BCDToStr(StrToBCD("1.5e3")), "1500");
  EXPECT_EQ(BCDToStr(StrToBCD("-00012.50")), "-12.5");
  for (const char* bad : {"1.2.3", "", "1e70"}) EXPECT_THROW(StrToBCD(bad), EConvertError) << bad;
  EXPECT_EQ(StrToBCD(std::string(64, '9')).Precision, 64);
}

TEST(TBcd, CompareByValueAcrossEncodings) {
  TBcd a;
  ASSERT_TRUE(CurrToBCD(123400, a, 20, 4));
  EXPECT_EQ(BCDCompare(a, StrToBCD("12.34")), 0);
  EXPECT_EQ(BCDCompare(StrToBCD("-1"), StrToBCD("0.5")), -1);
  EXPECT_EQ(BCDCompare(StrToBCD("-1"), StrToBCD("-2")), 1);
  EXPECT_EQ(BCDCompare(StrToBCD("100"), StrToBCD("99.999")), 1);
  EXPECT_EQ(BCDCompare(NullBcd, StrToBCD("0")), 0);
  TBcd negZero = StrToBCD("0");
  negZero.SignSpecialPlaces |= 0x80;
  EXPECT_EQ(BCDCompare(negZero, NullBcd), 0);
  EXPECT_FALSE(IsBCDNegative(negZero));
}

TEST(TBcd, DoubleConversionsAndNormalize) {
  EXPECT_DOUBLE_EQ(BCDToDouble(StrToBCD("-12.375")), -12.375);
  EXPECT_EQ(BCDToStr(DoubleToBCD(0.1)), "0.1");
  EXPECT_EQ(BCDToStr(DoubleToBCD(-2.5e10)), "-25000000000");
  EXPECT_THROW(DoubleToBCD(1.0 / 0.0), EConvertError);
  TBcd out;
  EXPECT_TRUE(NormalizeBCD(StrToBCD("12.5"), out, 10, 3));
  EXPECT_EQ(BCDToStr(out), "12.500");
  EXPECT_FALSE(NormalizeBCD(StrToBCD("12.56"), out, 10, 1));
  EXPECT_EQ(BCDToStr(out), "12.5");
  EXPECT_FALSE(NormalizeBCD(StrToBCD("12345"), out, 5, 1));
  EXPECT_EQ(BCDPrecision(StrToBCD("0012.50")), 3);
  ASSERT_TRUE(CurrToBCD(125000, out, 20, 4));  // leading zeros are not significant
  EXPECT_EQ(BCDPrecision(out), 6);
}
