// Tests of the TBcd layout and its conversions.
#include "TBcd.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "Exception.h"

using namespace fw;

TEST(TBcd, CurrToBcdRightAlignsIntoPrecisionDigits) {
  TBcd b;
  ASSERT_TRUE(CurrToBCD(123400, b, 20, 4));  // 12.34
  EXPECT_EQ(b.Precision, 20);
  EXPECT_EQ(b.SignSpecialPlaces, 4);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(b.Fraction[i], 0) << i;
  EXPECT_EQ(b.Fraction[7], 0x12);
  EXPECT_EQ(b.Fraction[8], 0x34);
  EXPECT_EQ(b.Fraction[9], 0x00);
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
  ASSERT_TRUE(CurrToBCD(LLONG_MIN, b, 32, 4));
  EXPECT_EQ(BCDToStr(b), "-922337203685477.5808");
  EXPECT_FALSE(CurrToBCD(LLONG_MAX, b, 18, 4));  // 15 integer digits do not fit 14
  EXPECT_FALSE(CurrToBCD(1, b, 65, 4));
}

TEST(TBcd, FewerDecimalsRoundHalfToEven) {
  TBcd b;
  ASSERT_TRUE(CurrToBCD(125000, b, 10, 1));  // 12.5 -> 12.5
  EXPECT_EQ(BCDToStr(b), "12.5");
  ASSERT_TRUE(CurrToBCD(125000, b, 10, 0));  // 12.5 -> 12
  EXPECT_EQ(BCDToStr(b), "12");
  ASSERT_TRUE(CurrToBCD(135000, b, 10, 0));  // 13.5 -> 14
  EXPECT_EQ(BCDToStr(b), "14");
  ASSERT_TRUE(CurrToBCD(10000, b, 10, 6));
  EXPECT_EQ(BCDToStr(b), "1.000000");
}

TEST(TBcd, BcdToCurrRoundsExtraDecimalsAndRejectsOverflow) {
  Currency c = 7;
  EXPECT_FALSE(BCDToCurr(NullBcd, c));
  EXPECT_EQ(c, 7);
  ASSERT_TRUE(BCDToCurr(StrToBCD("1.00005"), c));
  EXPECT_EQ(c, 10000);
  ASSERT_TRUE(BCDToCurr(StrToBCD("1.00015"), c));
  EXPECT_EQ(c, 10002);
  EXPECT_FALSE(BCDToCurr(StrToBCD("922337203685477.5808"), c));
  ASSERT_TRUE(BCDToCurr(StrToBCD("-922337203685477.5808"), c));
  EXPECT_EQ(c, LLONG_MIN);
  TBcd bad = StrToBCD("12");
  bad.Fraction[0] = 0xA0;
  EXPECT_FALSE(BCDToCurr(bad, c));
  EXPECT_THROW(BCDToStr(bad), EConvertError);
}

TEST(TBcd, StrToBcdNormalizes) {
  TBcd b = StrToBCD("0.001");
  EXPECT_EQ(b.Precision, 3);
  EXPECT_EQ(BCDScale(b), 3);
  b = StrToBCD("1001.1001");
  EXPECT_EQ(b.Precision, 8);
  EXPECT_EQ(BCDScale(b), 4);
  b = StrToBCD(" -1.10 ");
  EXPECT_EQ(b.Precision, 2);
  EXPECT_EQ(BCDScale(b), 1);
  EXPECT_EQ(BCDToStr(b), "-1.1");
  b = StrToBCD("0");
  EXPECT_EQ(b.Precision, 1);
  EXPECT_EQ(BCDToStr(b), "0");
  EXPECT_EQ(BCDToStr(StrToBCD("1.5e3")), "1500");
  EXPECT_EQ(BCDToStr(StrToBCD("-00012.50")), "-12.5");
  EXPECT_THROW(StrToBCD("1.2.3"), EConvertError);
  EXPECT_THROW(StrToBCD(""), EConvertError);
  EXPECT_THROW(StrToBCD("1e70"), EConvertError);
  EXPECT_EQ(StrToBCD(std::string(64, '9')).Precision, 64);
}

TEST(TBcd, CompareByValueAcrossEncodings) {
  TBcd a, b;
  ASSERT_TRUE(CurrToBCD(123400, a, 20, 4));
  b = StrToBCD("12.34");
  EXPECT_EQ(BCDCompare(a, b), 0);
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
