// Tests of CsvWriter: quoting where needed, and records that read back unchanged.
#include "CsvWriter.h"

#include <gtest/gtest.h>

#include <sstream>

#include "CsvReader.h"

namespace ctt {
namespace {

std::string Write(const std::vector<std::vector<std::string>>& rows, char separator = ',') {
  std::ostringstream out;
  CsvWriter writer(out, separator);
  for (const auto& row : rows) writer.WriteRow(row);
  return out.str();
}

TEST(CsvWriter, QuotesOnlyFieldsThatNeedIt) {
  EXPECT_EQ(Write({{"plain", "a,b", "say \"x\"", "two\nlines", " pad", ""}}),
            "plain,\"a,b\",\"say \"\"x\"\"\",\"two\nlines\",\" pad\",\r\n");
  EXPECT_EQ(Write({{"a;b", "c,d"}}, ';'), "\"a;b\";c,d\r\n");
}

TEST(CsvWriter, OneEmptyFieldIsNotAnEmptyLine) {
  EXPECT_EQ(Write({{""}}), "\"\"\r\n");
}

TEST(CsvWriter, WhatItWritesReadsBackUnchanged) {
  const std::vector<std::vector<std::string>> rows{
      {"id", "text"}, {"1", "a\r\nb"}, {"2", "\"\"\""}, {"3", ",,,"}, {"", ""}, {"\t", "x\ry"}, {""}};
  std::istringstream in(Write(rows));
  CsvReader reader(in);
  std::vector<std::string> fields;
  for (const auto& row : rows) {
    ASSERT_TRUE(reader.Next(fields));
    EXPECT_EQ(fields, row);
  }
  EXPECT_FALSE(reader.Next(fields));
}

}  // namespace
}  // namespace ctt
