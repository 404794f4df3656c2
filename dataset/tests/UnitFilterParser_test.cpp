// Tests of the filter parser: normalising, tokenising, the comparison kinds and the errors.
#include "UnitFilterParser.h"

#include <gtest/gtest.h>

#include <string>

namespace UnitFilterParser {
namespace {

TEST(FilterParser, SpacerSeparatesOperatorRunsAndParentheses) {
  EXPECT_EQ(Spacer("A>=5"), "A >= 5");
  EXPECT_EQ(Spacer("(X<>Y)"), " ( X <> Y ) ");
  EXPECT_EQ(Spacer("A<=>B"), "A < => B");  // a run of three splits after its first character
  EXPECT_EQ(Spacer("a  b"), "a  b");
}

TEST(FilterParser, EncrypterRewritesWholeAndOrTokensAndDropsLoneQuotes) {
  EXPECT_EQ(Encrypter("a AND b or c ' Orb"), " a  &  b  |  c  Orb ");
  EXPECT_EQ(Encrypter("x \tAND\t"), " x  & ");  // tab is trimmed before the test
}

TEST(FilterParser, NextTokenDropsLineEndsAndZerosButStopsAtSpaces) {
  const std::string text = std::string("  T\rR\nU") + '\0' + "E\tX  y";
  std::size_t pos = 0;
  EXPECT_EQ(NextToken(text, pos), "TRUE\tX");
  EXPECT_EQ(text[pos], ' ');
  EXPECT_EQ(NextToken(text, pos), "y");
  EXPECT_EQ(NextToken(text, pos), "");
  EXPECT_EQ(pos, text.size());
}

struct Verdict {
  const char* Text;
  bool Expected;
};

class FilterVerdict : public ::testing::TestWithParam<Verdict> {};

TEST_P(FilterVerdict, EvaluatesAsDescribed) { EXPECT_EQ(ParseFilter(GetParam().Text), GetParam().Expected); }

INSTANTIATE_TEST_SUITE_P(
    Texts, FilterVerdict,
    ::testing::Values(Verdict{"TRUE", true}, Verdict{"FALSE", false}, Verdict{"true", true}, Verdict{" tRuE ", true},
                      Verdict{"5 > 3", true}, Verdict{"10 > 9", true}, Verdict{"'10' > '9'", false},
                      Verdict{"5>=5", true}, Verdict{"5 <= 4", false}, Verdict{"5 <> 4", true},
                      Verdict{"'b' > 'A'", true}, Verdict{"'B' = 'b'", true}, Verdict{"'ABC' = ABC", false},
                      Verdict{"'ab' < 'abc'", true}, Verdict{"-5 < 3", true},
                      // only the first three tokens count at the top level
                      Verdict{"5 > 3 AND 1 > 2", true}, Verdict{"(5 > 3) AND (1 > 2)", false},
                      Verdict{"(5 > 3) OR (1 > 2)", true}, Verdict{"(1 > 2) and (5 > 3)", false},
                      Verdict{"(1 > 2) | (5 > 3)", true}, Verdict{"((1 = 1) AND (2 = 2)) AND (3 = 3)", true},
                      Verdict{"((1 = 1) AND (2 = 2)) AND (3 = 4)", false},
                      Verdict{"((1 = 1) AND (2 = 3)) OR (3 = 3)", true}, Verdict{"TRUE = FALSE", false},
                      Verdict{"FALSE < TRUE", true}, Verdict{"false >= true", false},
                      // a literal's blank splits it into tokens joined again without it
                      Verdict{"'John Smith' = 'JohnSmith'", false}, Verdict{"'JohnSmith' = 'John Smith'", false},
                      // tab is an ordinary character, line ends and zeros vanish inside a token
                      Verdict{"'a\tb' = 'A\tB'", true}, Verdict{"TR\r\nUE", true},
                      // a quote separated from its literal is dropped
                      Verdict{"'a' = ' a'", false}, Verdict{"'a = a'", false}, Verdict{"'a' = 'a'", true},
                      // an operator character inside a literal splits it
                      Verdict{"'b>a' = 'b>a'", false}));

struct Failure {
  const char* Text;
  const char* Message;
};

class FilterFailure : public ::testing::TestWithParam<Failure> {};

TEST_P(FilterFailure, RaisesTheParserErrorWithItsMessage) {
  try {
    ParseFilter(GetParam().Text);
    FAIL() << "no exception for " << GetParam().Text;
  } catch (const EParserError& e) {
    EXPECT_EQ(e.Message(), GetParam().Message);
    const bool unknownOperator = std::string(GetParam().Message).rfind("Unknown operator ", 0) == 0;
    EXPECT_EQ(dynamic_cast<const EConvertStringError*>(&e) != nullptr, unknownOperator);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, FilterFailure,
    ::testing::Values(Failure{"(A = 1", "Paren count off \r\nFound 1 (\r\nFound 0 )"},
                      Failure{"((A = 1)", "Paren count off \r\nFound 2 (\r\nFound 1 )"},
                      Failure{"'(' = '('", "Paren count off \r\nFound 2 (\r\nFound 0 )"},
                      Failure{"'x' & 'y'", "Unknown operator &"}, Failure{"3 == 3", "Unknown operator =="},
                      Failure{"3 =< 4", "Unknown operator =<"}, Failure{"TRUE ! FALSE", "Unknown operator "},
                      Failure{"5", "Unknown operator "}, Failure{"5 & 6", "Unknown operator &"},
                      Failure{"()", "Filter expression has an empty group: nothing to compare"},
                      Failure{" \r\n", "Filter expression has an empty group: nothing to compare"}));

TEST(FilterParser, DigitLedOperandsThatAreNoIntegersRaiseTheConversionError) {
  EXPECT_THROW(ParseFilter("12.5 > 3"), fw::EConvertError);
  EXPECT_THROW(ParseFilter("01/02/2000 = 5"), fw::EConvertError);
  EXPECT_THROW(ParseFilter("5 = 99999999999"), fw::EConvertError);
}

TEST(FilterParser, DeepNestingAndLongTextEvaluateWithoutExhaustingTheStack) {
  const std::size_t depth = 200000;
  const std::string nested = std::string(depth, '(') + "1 = 1" + std::string(depth, ')');
  EXPECT_TRUE(ParseFilter(nested));
  EXPECT_THROW(ParseFilter(std::string(depth, '(')), EParserError);
}

}  // namespace
}  // namespace UnitFilterParser
