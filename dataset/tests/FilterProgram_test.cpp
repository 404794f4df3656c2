// Differential test of the analysed filter against the text evaluator, on random texts and values.
#include "../src/FilterProgram.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "StringUtils.h"
#include "UnitFilterParser.h"

namespace CTTables {
namespace {

// The substitution as the table describes it: tokens of the normalised text joined without
// separators, field references replaced by the values in order, NULL by "*NULL*".
std::string Substituted(const std::string& filter, const std::vector<std::string>& values) {
  const std::string normal = UnitFilterParser::Encrypter(UnitFilterParser::Spacer(filter));
  std::string out;
  std::size_t pos = 0, next = 0;
  while (pos < normal.size()) {
    const std::string t = UnitFilterParser::NextToken(normal, pos);
    if (t.empty()) continue;
    if (t.front() == '"') out += values[next++];
    else if (fw::UpperCase(fw::Trim(t)) == "NULL") out += "*NULL*";
    else out += t;
  }
  return out;
}

// A result or the class and message of the exception.
template <class F>
std::string Outcome(F&& evaluate) {
  try {
    return evaluate() ? "true" : "false";
  } catch (const UnitFilterParser::EConvertStringError& e) {
    return "EConvertStringError: " + e.Message();
  } catch (const UnitFilterParser::EParserError& e) {
    return "EParserError: " + e.Message();
  } catch (const fw::EConvertError& e) {
    return "EConvertError: " + e.Message();
  }
}

const std::vector<std::string> kPieces = {
    "\"F0\"", "\"F1\"", "\"f2\"", "\"", "'abc'", "'A b'", "'", "5", "12", "007", "0x1F", "-3", "12.5", "TRUE",
    "false", "NULL", "null", "AND", "or", "&", "|", "=", "<>", "<", ">", "<=", ">=", "==", "!", "(", ")", " ", " ",
    "  ", "\t", "\r", "\n", "x", "Oslo", "'oslo'"};

const std::vector<std::string> kValues = {
    "'x'", "''", "'Oslo'", "'OSLO'", "5", "12", "007", "*NULL*", "TRUE", "True", "false", "12.5", "-3", "'A<B'",
    "'a b'", "A<B", "(", ")", "'('", "AND", "and", "OR", "'", "x y", "\t", "'\t'", "", "a\rb", "=", "0x10", "'AND'",
    "99999999999", "'John Smith'", "6", "'abc'"};

class Generator {
 public:
  explicit Generator(unsigned seed) : FRandom(seed) {}

  int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(FRandom); }
  std::string Pick(const std::vector<std::string>& from) { return from[static_cast<std::size_t>(Below(static_cast<int>(from.size())))]; }
  std::string Blank() { return Below(4) == 0 ? "" : Pick({" ", " ", "  ", "\t ", "\n"}); }

  // A soup of the language's pieces.
  std::string Soup() {
    std::string text;
    for (int n = Below(14); n >= 0; --n) text += Pick(kPieces);
    return text;
  }

  // A well-formed comparison or combination of them, blanks chosen at random.
  std::string Expression(int depth) {
    if (depth > 0 && Below(2) == 0) {
      return "(" + Blank() + Expression(depth - 1) + Blank() + ")" + Blank() + Pick({"AND", "OR", "&", "|", "and"}) +
             Blank() + "(" + Blank() + Expression(depth - 1) + Blank() + ")";
    }
    return Operand() + Blank() + Pick({"=", "<>", "<", ">", "<=", ">="}) + Blank() + Operand();
  }
  std::string Operand() { return Pick({"\"F0\"", "\"F1\"", "\"f2\"", "'x'", "'oslo'", "5", "12", "TRUE", "NULL"}); }

  // A value: mostly from the list, sometimes random characters of every class.
  std::string Value() {
    if (Below(4) != 0) return Pick(kValues);
    static const std::string chars = "aZ09 '\t\r\n()<>=&|\"x.-";
    std::string v;
    for (int n = Below(5); n >= 0; --n) v += chars[static_cast<std::size_t>(Below(static_cast<int>(chars.size())))];
    return v;
  }

 private:
  std::mt19937 FRandom;
};

TEST(FilterProgram, AgreesWithTheTextEvaluatorOnRandomTextsAndValues) {
  Generator random(20261123);
  int analysed = 0, accepted = 0, raised = 0;
  const int texts = 3000, recordsPerText = 8;
  for (int i = 0; i < texts; ++i) {
    const std::string filter = i % 2 == 0 ? random.Soup() : random.Expression(random.Below(4));
    FilterProgram program(filter);
    analysed += program.Analysed();
    for (int r = 0; r < recordsPerText; ++r) {
      std::vector<std::string> values;
      for (std::size_t f = 0; f < program.FieldNames().size(); ++f) values.push_back(random.Value());
      const std::string text = Substituted(filter, values);
      ASSERT_EQ(program.Substitute(values), text) << "filter [" << filter << "]";
      const std::string expected = Outcome([&] { return UnitFilterParser::ParseFilter(text); });
      const std::string actual = Outcome([&] { return program.Evaluate(values); });
      ASSERT_EQ(actual, expected) << "filter [" << filter << "] substituted [" << text << "]";
      accepted += expected == "true";
      raised += expected != "true" && expected != "false";
    }
  }
  // The comparison covers the analysed path and every kind of outcome.
  EXPECT_GT(analysed, texts / 3);
  EXPECT_GT(accepted, texts);
  EXPECT_GT(raised, texts);
}

TEST(FilterProgram, ReadsFieldNamesBetweenTheQuotesAsWritten) {
  const FilterProgram program("(\"City\" = 'Oslo') AND (\"AGE\">NULL) OR \"x");
  EXPECT_EQ(program.FieldNames(), (std::vector<std::string>{"City", "AGE", ""}));
  EXPECT_EQ(program.Substitute({"'Oslo'", "3", "1"}), "('Oslo'='Oslo')&(3>*NULL*)|1");
  EXPECT_TRUE(program.Analysed());
}

}  // namespace
}  // namespace CTTables
