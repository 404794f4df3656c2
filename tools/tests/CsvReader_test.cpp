// Tests of CsvReader: RFC 4180 records, and bad input reported with its line.
#include "CsvReader.h"

#include <gtest/gtest.h>

#include <sstream>

namespace ctt {
namespace {

using Rows = std::vector<std::vector<std::string>>;

Rows ReadAll(const std::string& text, char separator = ',') {
  std::istringstream in(text);
  CsvReader reader(in, separator);
  Rows rows;
  std::vector<std::string> fields;
  while (reader.Next(fields)) rows.push_back(fields);
  return rows;
}

TEST(CsvReader, PlainAndQuotedFieldsWithEitherLineEnd) {
  EXPECT_EQ(ReadAll("a,b,c\r\n1,,3\n\"x,y\",\"say \"\"hi\"\"\",\"\"\n"),
            (Rows{{"a", "b", "c"}, {"1", "", "3"}, {"x,y", "say \"hi\"", ""}}));
}

TEST(CsvReader, QuotedFieldsKeepLineBreaksAndTheLastLineNeedsNoEnd) {
  EXPECT_EQ(ReadAll("id,note\n1,\"two\nlines\"\n2,\"crlf\r\ninside\"\n3,last"),
            (Rows{{"id", "note"}, {"1", "two\nlines"}, {"2", "crlf\r\ninside"}, {"3", "last"}}));
}

TEST(CsvReader, EmptyLinesAndByteOrderMarkAreSkipped) {
  EXPECT_EQ(ReadAll("\xEF\xBB\xBFh\n\n\r\nv\n\n"), (Rows{{"h"}, {"v"}}));
  EXPECT_EQ(ReadAll(""), Rows{});
  EXPECT_EQ(ReadAll("\n\n"), Rows{});
}

TEST(CsvReader, TrailingSeparatorGivesAnEmptyLastField) {
  EXPECT_EQ(ReadAll("a,\n,b\n,\n"), (Rows{{"a", ""}, {"", "b"}, {"", ""}}));
}

TEST(CsvReader, LoneCarriageReturnIsData) {
  EXPECT_EQ(ReadAll("a\rb,c\n"), (Rows{{"a\rb", "c"}}));
}

TEST(CsvReader, OtherSeparators) {
  EXPECT_EQ(ReadAll("a;\"b;c\"\n", ';'), (Rows{{"a", "b;c"}}));
  EXPECT_EQ(ReadAll("a\tb,c\n", '\t'), (Rows{{"a", "b,c"}}));
}

TEST(CsvReader, RecordLineCountsLinesInsideQuotedFields) {
  std::istringstream in("h\n\"a\nb\nc\"\nnext\n");
  CsvReader reader(in);
  std::vector<std::string> fields;
  ASSERT_TRUE(reader.Next(fields));
  ASSERT_TRUE(reader.Next(fields));
  EXPECT_EQ(reader.RecordLine(), 2);
  ASSERT_TRUE(reader.Next(fields));
  EXPECT_EQ(reader.RecordLine(), 5);
  EXPECT_EQ(fields, std::vector<std::string>{"next"});
  EXPECT_FALSE(reader.Next(fields));
  EXPECT_EQ(reader.BytesRead(), in.str().size());
}

TEST(CsvReader, UnterminatedQuoteIsFatalAndNamesTheLineItOpensOn) {
  std::istringstream in("h1,h2\nok,1\nbad,\"never closed\nmore\n");
  CsvReader reader(in);
  std::vector<std::string> fields;
  ASSERT_TRUE(reader.Next(fields));
  ASSERT_TRUE(reader.Next(fields));
  try {
    reader.Next(fields);
    FAIL() << "no error";
  } catch (const CsvError& e) {
    EXPECT_FALSE(e.Resumable);
    EXPECT_EQ(e.Line, 3);
    EXPECT_STREQ(e.what(), "line 3: quoted field 2 is not terminated (its closing quote is missing)");
  }
  EXPECT_FALSE(reader.Next(fields));
}

TEST(CsvReader, StrayQuotesRejectOneRecordAndReadingGoesOn) {
  std::istringstream in("a,b\"c,d\n\"x\"y,z\nfine,1\n");
  CsvReader reader(in);
  std::vector<std::string> fields;
  try {
    reader.Next(fields);
    FAIL() << "no error";
  } catch (const CsvError& e) {
    EXPECT_TRUE(e.Resumable);
    EXPECT_EQ(e.Line, 1);
    EXPECT_NE(std::string(e.what()).find("quote inside unquoted field 2"), std::string::npos) << e.what();
  }
  try {
    reader.Next(fields);
    FAIL() << "no error";
  } catch (const CsvError& e) {
    EXPECT_TRUE(e.Resumable);
    EXPECT_EQ(e.Line, 2);
    EXPECT_NE(std::string(e.what()).find("text after the closing quote"), std::string::npos) << e.what();
  }
  ASSERT_TRUE(reader.Next(fields));
  EXPECT_EQ(fields, (std::vector<std::string>{"fine", "1"}));
}

TEST(CsvReader, FieldsSpanningTheReadBufferStayWhole) {
  const std::string big(200000, 'x');
  std::string text = "h\n\"" + big + "\"\"" + big + "\"\n" + big + "\n";
  EXPECT_EQ(ReadAll(text), (Rows{{"h"}, {big + "\"" + big}, {big}}));
}

}  // namespace
}  // namespace ctt
