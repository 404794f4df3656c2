// Tests of Format, number text, case routines, file names and the current directory.
#include "StringUtils.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>

#include "Exception.h"
#include "FormatSettings.h"
#include "Raises.h"

using namespace fw;

namespace {
using Texts = std::pair<std::string, std::string>;  // what a routine gave, what it should give
}  // namespace

TEST(Format, FormatsEachSpecifierAndRaisesOnMismatchedOrMissingArguments) {
  EXPECT_EQ(Format("Unabled to load %s", {"libx.so"}), "Unabled to load libx.so");
  EXPECT_EQ(Format("%d|%5d|%-5d|%.3d", {-7, 42, 42, 5}), "-7|   42|42   |005");
  EXPECT_EQ(Format("%x %X %.4x", {255, 255, 10}), "FF FF 000A");
  EXPECT_EQ(Format("%x", {-1}), "FFFFFFFF");
  EXPECT_EQ(Format("%u", {-1}), "4294967295");
  EXPECT_EQ(Format("%.2f|%f|%.0f", {3.14159, 2.5, 2.5}), "3.14|2.50|3");
  EXPECT_EQ(Format("%n", {1234567.891}), "1,234,567.89");
  EXPECT_EQ(Format("%s=%s", {1, true}), "1=True");
  EXPECT_EQ(Format("100%%", {}), "100%");
  EXPECT_EQ(Format("%1:s %0:s", {"a", "b"}), "b a");
  EXPECT_EQ(Format("%*d", {4, 1}), "   1");
  EXPECT_EQ(Format("%.2s", {"abcdef"}), "ab");
  EXPECT_THROW(Format("%d", {"12"}), EConvertError);
  EXPECT_THROW(Format("%d", {1.5}), EConvertError);
  EXPECT_THROW(Format("%f", {"x"}), EConvertError);
  EXPECT_THROW(Format("%s %s", {"one"}), EConvertError);
  EXPECT_THROW(Format("%s", {Null()}), EConvertError);
  EXPECT_THROW(Format("%q", {1}), EConvertError);
  EXPECT_THROW(Format("abc %", {1}), EConvertError);
}

TEST(NumberText, StrToIntAcceptsIntegersOnly) {
  const std::pair<const char*, int32_t> good[] = {
      {" -123 ", -123}, {"$1F", 31}, {"0x10", 16}, {"2147483647", 2147483647}, {"-2147483648", INT32_MIN}};
  for (const auto& [text, value] : good) EXPECT_EQ(StrToInt(text), value) << text;
  for (const char* bad : {"2147483648", "12.5", "01/02/2000", "", "-"}) EXPECT_THROW(StrToInt(bad), EConvertError) << bad;
  EXPECT_EQ(StrToInt64("-9223372036854775808"), INT64_MIN);
  EXPECT_THROW(StrToInt64("9223372036854775808"), EConvertError);
  EXPECT_EQ(StrToIntDef("x", 9), 9);
  EXPECT_EQ(fwtest::MessageOf<EConvertError>([] { StrToInt("12.5"); }), "'12.5' is not a valid integer value");
}

TEST(NumberText, FloatTextRoundTrips) {
  const std::pair<double, const char*> shortest[] = {{0.1, "0.1"},       {-2.5, "-2.5"},     {100, "100"},
                                                     {1e20, "1E20"},     {1.5e-7, "1.5E-7"}, {0.0001, "0.0001"},
                                                     {1.0 / 3, "0.333333333333333"}};
  for (const auto& [value, text] : shortest) EXPECT_EQ(FloatToStr(value), text);
  EXPECT_EQ(FloatToStrF(1.0 / 3, ffGeneral, 7, 0), "0.3333333");
  EXPECT_EQ(FloatToStrF(2.5, ffFixed, 15, 0), "3");  // decimal rounding half away from zero
  EXPECT_EQ(FloatToStrF(-1234.5, ffNumber, 15, 1), "-1,234.5");
  EXPECT_EQ(FloatToStrF(12345, ffExponent, 3, 2), "1.23E+04");
  EXPECT_DOUBLE_EQ(StrToFloat(" -1.25e2 "), -125);
  EXPECT_DOUBLE_EQ(StrToFloat("5"), 5);
  for (const char* bad : {"1.2.3", "e5", "1e999"}) EXPECT_THROW(StrToFloat(bad), EConvertError) << bad;

  const TFormatSettings saved = FormatSettings;  // the decimal separator comes from the settings
  FormatSettings.DecimalSeparator = ',';
  EXPECT_DOUBLE_EQ(StrToFloat("1,5"), 1.5);
  EXPECT_THROW(StrToFloat("1.5"), EConvertError);
  EXPECT_EQ(FloatToStr(1.5), "1,5");
  FormatSettings = saved;
}

TEST(NumberText, FormatFloatPatterns) {
  const struct { const char* pattern; double value; const char* text; } cases[] = {
      {"0.00", 3.14159, "3.14"},        {"#,##0.00", 1234567.5, "1,234,567.50"}, {"0.##", 2.5, "2.5"},
      {"000", 7, "007"},                {"#.#", 0.25, ".3"},                     {"0.00;(0.00)", -2, "(2.00)"},
      {"0;-0;'zero'", 0, "zero"},       {"'$'0.00", -1.5, "$-1.50"},             {"0.00E+00", 12345, "1.23E+04"},
      {"", 0.5, "0.5"}};
  for (const auto& c : cases) EXPECT_EQ(FormatFloat(c.pattern, c.value), c.text) << c.pattern;
}

TEST(NumberText, CurrencyTextIsExact) {
  EXPECT_EQ(CurrToStr(123400), "12.34");
  EXPECT_EQ(CurrToStr(-1), "-0.0001");
  EXPECT_EQ(CurrToStr(INT64_MIN), "-922337203685477.5808");
  // Fifth decimals round half to even.
  const std::pair<const char*, Currency> parsed[] = {
      {"12.34", 123400}, {"0.00005", 0}, {"0.00015", 2}, {"-922337203685477.5808", INT64_MIN}};
  for (const auto& [text, value] : parsed) EXPECT_EQ(StrToCurr(text), value) << text;
  for (const char* bad : {"922337203685477.5808", "1x"}) EXPECT_THROW(StrToCurr(bad), EConvertError) << bad;
  EXPECT_EQ(DoubleToCurr(2.5), 25000);
  EXPECT_THROW(DoubleToCurr(1e19), EConvertError);
}

TEST(CaseRoutines, PlainFormsTouchOnlyAsciiAndAnsiFormsFollowTheLocale) {
  EXPECT_EQ(UpperCase("abc\xe9z"), "ABC\xe9Z");
  EXPECT_EQ(LowerCase("ABC"), "abc");
  EXPECT_EQ(CompareText("abc", "ABD"), -1);
  EXPECT_TRUE(SameText("CustNo", "custno"));
  EXPECT_FALSE(SameText("abc", "abcd"));
  EXPECT_LT(CompareStr("B", "a"), 0);
  EXPECT_GT(CompareText("b", "A"), 0);
  // Under the C locale both families agree.
  EXPECT_EQ(AnsiUpperCase("abc"), "ABC");
  EXPECT_TRUE(AnsiSameText("Hello", "hELLO"));
  EXPECT_EQ(AnsiStrLIComp("abcX", "ABCy", 3), 0);
  EXPECT_NE(AnsiStrLComp("abcX", "ABCy", 3), 0);
  EXPECT_LT(AnsiCompareStr("a", "b"), 0);
}

TEST(StringRoutines, TrimQuoteReplace) {
  const Texts cases[] = {{Trim(" \t a b \r\n"), "a b"},    {TrimLeft("  x "), "x "},
                         {TrimRight("  x "), "  x"},       {QuotedStr("it's"), "'it''s'"},
                         {StringReplace("aXbxc", "x", "-", true, true), "a-b-c"},
                         {StringReplace("aXbxc", "x", "-", false), "aXb-c"}};
  for (const auto& [got, want] : cases) EXPECT_EQ(got, want);
}

TEST(FileNames, SplitOnSlash) {
  const Texts cases[] = {
      {ExtractFileName("/data/cust.dat"), "cust.dat"},        {ExtractFileName("cust.dat"), "cust.dat"},
      {ExtractFilePath("/data/cust.dat"), "/data/"},          {ExtractFilePath("cust.dat"), ""},
      {ExtractFileDir("/data/cust.dat"), "/data"},            {ExtractFileDir("/cust.dat"), "/"},
      {ExtractFileExt("/d.x/cust.b.dat"), ".dat"},            {ExtractFileExt("/d.x/cust"), ""},
      {ChangeFileExt("/d.x/cust.dat", ".idx"), "/d.x/cust.idx"}, {ChangeFileExt("/d.x/cust", ".dsf"), "/d.x/cust.dsf"},
      {ChangeFileExt("cust.dat", ""), "cust"},                {IncludeTrailingPathDelimiter("/data"), "/data/"},
      {IncludeTrailingPathDelimiter("/"), "/"},               {ExcludeTrailingPathDelimiter("/data/"), "/data"},
      {ExcludeTrailingPathDelimiter("/"), "/"}};
  for (const auto& [got, want] : cases) EXPECT_EQ(got, want);
}

TEST(CurrentDir, ChangesAndRestores) {
  const std::string before = GetCurrentDir();
  const std::filesystem::path tmp = std::filesystem::temp_directory_path() / ("fwcd_" + std::to_string(::getpid()));
  std::filesystem::create_directories(tmp);
  ASSERT_TRUE(SetCurrentDir(tmp.string()));
  EXPECT_EQ(GetCurrentDir(), std::filesystem::canonical(tmp).string());
  EXPECT_FALSE(SetCurrentDir((tmp / "missing").string()));
  EXPECT_EQ(GetCurrentDir(), std::filesystem::canonical(tmp).string());
  EXPECT_THROW(ChDir((tmp / "missing").string()), EInOutError);
  ChDir(before);
  EXPECT_EQ(GetCurrentDir(), before);
  std::filesystem::remove_all(tmp);
}
