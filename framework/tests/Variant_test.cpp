// Tests of Variant kinds, arrays and conversions.
#include "Variant.h"

#include <gtest/gtest.h>

#include "Exception.h"

using namespace fw;

TEST(Variant, ConstructorsPickTheFrameworkTypeCodesAndAFreshOneIsUnassigned) {
  Variant v;
  EXPECT_EQ(VarType(v), varEmpty);
  EXPECT_TRUE(VarIsEmpty(v) && VarIsClear(v));
  EXPECT_FALSE(VarIsNull(v));
  EXPECT_EQ(v.AsInteger(), 0);
  EXPECT_EQ(v.AsString(), "");
  EXPECT_FALSE(v.AsBoolean());
  const std::pair<Variant, int> kinds[] = {
      {Variant(int16_t{1}), varSmallint},         {Variant(7), varInteger},     {Variant(uint8_t{7}), varByte},
      {Variant(7.5f), varSingle},                 {Variant(7.5), varDouble},    {Variant(int64_t{7}), varInt64},
      {Variant(true), varBoolean},                {Variant("x"), varString},    {Variant::FromCurrency(15000), varCurrency},
      {Variant::FromDateTime(36526.0), varDate},  {Variant::FromOleStr("w"), varOleStr}, {Null(), varNull}};
  for (const auto& [value, type] : kinds) EXPECT_EQ(VarType(value), type);
}

TEST(Variant, NullRaisesOnEveryConversion) {
  const Variant n = Null();
  EXPECT_THROW(n.AsInteger(), EVariantError);
  EXPECT_THROW(n.AsDouble(), EVariantError);
  EXPECT_THROW(n.AsBoolean(), EVariantError);
  EXPECT_THROW(n.AsDateTime(), EVariantError);
  EXPECT_THROW(n.AsCurrency(), EVariantError);
  EXPECT_THROW(n.AsString(), EVariantError);
  EXPECT_EQ(VarToStr(n), "");
}

// Text and doubles become integers rounding half to even, within the target's range.
TEST(Variant, NumbersFromTextAndDoublesRoundHalfToEvenAndCheckTheRange) {
  const std::pair<Variant, int32_t> integers[] = {{Variant("42"), 42}, {Variant("2.5"), 2},  {Variant("3.5"), 4},
                                                  {Variant(2.5), 2},    {Variant(-2.5), -2}};
  for (const auto& [value, integer] : integers) EXPECT_EQ(value.AsInteger(), integer) << VarToStr(value);
  EXPECT_DOUBLE_EQ(Variant("2.5").AsDouble(), 2.5);
  EXPECT_EQ(Variant("12.3456").AsCurrency(), 123456);
  EXPECT_THROW(Variant("abc").AsInteger(), EVariantError);
  EXPECT_THROW(Variant("1,5").AsDouble(), EVariantError);
  EXPECT_THROW(Variant("").AsDouble(), EVariantError);
  EXPECT_EQ(Variant(3.5).AsInt64(), 4);
  EXPECT_THROW(Variant(3e9).AsInteger(), EVariantError);
  EXPECT_EQ(Variant(3e9).AsInt64(), 3000000000);
  EXPECT_THROW(Variant(1e300).AsInt64(), EVariantError);
  EXPECT_THROW(Variant(int64_t{1} << 40).AsInteger(), EVariantError);
}

TEST(Variant, BooleanConversionsFollowTheFramework) {
  EXPECT_EQ(Variant(true).AsInteger(), -1);
  EXPECT_EQ(Variant(false).AsInteger(), 0);
  EXPECT_EQ(Variant(true).AsString(), "True");
  for (const Variant& yes : {Variant("tRUE"), Variant("2"), Variant(0.5)}) EXPECT_TRUE(yes.AsBoolean()) << VarToStr(yes);
  EXPECT_FALSE(Variant("False").AsBoolean());
  EXPECT_THROW(Variant("yes").AsBoolean(), EVariantError);
}

TEST(Variant, CurrencyKeepsFourDecimalsExactly) {
  const Variant c = Variant::FromCurrency(-12345);  // -1.2345
  EXPECT_EQ(c.AsString(), "-1.2345");
  EXPECT_DOUBLE_EQ(c.AsDouble(), -1.2345);
  EXPECT_EQ(Variant::FromCurrency(25000).AsInteger(), 2);  // 2.5 -> 2
  EXPECT_EQ(Variant::FromCurrency(35000).AsInteger(), 4);
  EXPECT_EQ(Variant(12.5).AsCurrency(), 125000);
  EXPECT_EQ(Variant(int64_t{1} << 62).AsDouble(), 4611686018427387904.0);
  EXPECT_THROW(Variant(1e16).AsCurrency(), EVariantError);
}

TEST(Variant, DateConvertsToDoubleAndText) {
  const Variant d = Variant::FromDateTime(36526.5);
  EXPECT_DOUBLE_EQ(d.AsDouble(), 36526.5);
  EXPECT_EQ(d.AsString(), "2000-01-01 12:00:00");
  EXPECT_DOUBLE_EQ(Variant("2000-01-01").AsDateTime(), 36526.0);
  EXPECT_THROW(Variant("2000-13-01").AsDateTime(), EVariantError);
  EXPECT_THROW(Variant(true).AsDateTime(), EVariantError);
}

TEST(Variant, ArraysHaveZeroBasedBoundsAndByteArraysCarryBinaryValues) {
  const Variant a = VarArrayOf({1, "two", Null()});
  EXPECT_TRUE(VarIsArray(a));
  EXPECT_EQ(VarType(a), varArray | varVariant);
  EXPECT_EQ(VarArrayLowBound(a, 1), 0);
  EXPECT_EQ(VarArrayHighBound(a, 1), 2);
  EXPECT_EQ(a[1].AsString(), "two");
  EXPECT_TRUE(VarIsNull(a[2]));
  EXPECT_THROW(a[3], EVariantError);
  EXPECT_THROW(a.AsInteger(), EVariantError);
  EXPECT_THROW(VarArrayHighBound(a, 2), EVariantError);
  EXPECT_THROW(VarArrayLowBound(Variant(1), 1), EVariantError);

  const char raw[] = {'\0', '\xff', 'A'};
  Variant b = VarByteArrayOf(raw, 3);
  EXPECT_EQ(VarType(b), varArray | varByte);
  EXPECT_EQ(b.Bytes(), std::string_view(raw, 3));
  EXPECT_EQ(b[1].AsInteger(), 255);
  b.SetElement(0, 7);
  EXPECT_EQ(b[0].AsInteger(), 7);
  EXPECT_THROW(b.SetElement(0, 256), EVariantError);
  EXPECT_THROW(Variant("x").Bytes(), EVariantError);
}

TEST(Variant, VarAsTypeChecksTargetRangesAndSameValueComparesByValue) {
  EXPECT_EQ(VarType(VarAsType(Variant("12"), varSmallint)), varSmallint);
  EXPECT_THROW(VarAsType(Variant(70000), varSmallint), EVariantError);
  EXPECT_THROW(VarAsType(Variant(-1), varByte), EVariantError);
  EXPECT_EQ(VarAsType(Variant(1.5), varString).AsString(), "1.5");
  EXPECT_EQ(VarAsType(Variant(2), varCurrency).AsCurrency(), 20000);
  EXPECT_TRUE(VarIsNull(VarAsType(Variant(1), varNull)));

  const std::tuple<Variant, Variant, bool> pairs[] = {
      {Variant(1), Variant(1.0), true},  {Variant(2), Variant::FromCurrency(20000), true},
      {Variant("a"), Variant("A"), false}, {Null(), Null(), true},  {Null(), Variant(), false},
      {Variant(1), Variant("x"), false}, {VarArrayOf({1, "a"}), VarArrayOf({1, "a"}), true}};
  for (const auto& [a, b, same] : pairs) EXPECT_EQ(VarSameValue(a, b), same) << VarToStr(a) << " / " << VarToStr(b);
}
