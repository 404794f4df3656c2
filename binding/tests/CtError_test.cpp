// Tests of the binding layer's error routines and message table.
#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <regex>
#include <string>
#include <tuple>
#include <vector>

#include "BindingFixture.h"

namespace CTDbIntf {
namespace {

using testing::Raised;

// CtError appends line feed, carriage return and the number to the message (the appended text
// alone when the number has none); CtErrorFmt formats the message and appends nothing; zero
// raises nothing.
TEST(CtErrorTest, CtErrorAppendsTheNumberAndCtErrorFmtFormats) {
  EXPECT_NO_THROW(CtError(0));
  EXPECT_NO_THROW(CtErrorFmt(0, {"x"}));
  const std::pair<std::int32_t, std::string> appended[] = {
      {2, "Key value already exists\n\rCtree Error #2"},
      {1113, "Invalid cursor handle\n\rCtree Error #1113"},
      {1122, "Field '%s' cannot be modified\n\rCtree Error #1122"},
      {1, "\n\rCtree Error #1"}, {1109, "\n\rCtree Error #1109"}, {9999, "\n\rCtree Error #9999"},
      {-5, "\n\rCtree Error #-5"}, {INT32_MAX, "\n\rCtree Error #2147483647"}};
  for (const auto& [code, text] : appended) {
    const ECtreeException e = Raised([code = code] { CtError(code); });
    EXPECT_EQ(e.Message(), text);
    EXPECT_STREQ(e.what(), text.c_str());
    EXPECT_EQ(e.ErrorCode, code);
  }
  const std::tuple<ECtreeException, std::int32_t, std::string> formatted[] = {
      {Raised([] { CtErrorFmt(1136, {"orders.dat"}); }), 1136, "File alignment does not match alignment property: 'orders.dat'"},
      {Raised([] { CtErrorFmt(101, {}); }), 101, "Could not find isam keyno request"},
      {Raised([] { CtErrorFmt(1105, {}); }), 1105, ""}};
  for (const auto& [e, code, text] : formatted) {
    EXPECT_EQ(e.Message(), text);
    EXPECT_EQ(e.ErrorCode, code);
  }
}

TEST(CtErrorTest, HistoricTextsAreKeptByteForByte) {
  const std::pair<std::int32_t, const char*> rows[] = {
      {30012, "Could not open file: not there or locked"},
      {30035, "Seek error:  check sysiocod value"},
      {30039, "No more records availble"},
      {30042, "Could not obtain data record lock"},
      {30047, "c-tree has not been initialized"},
      {30100, "No current record for isam datno"},
      {30125, "c-tree already initialized"},
      {30129, "c-tree not initialized "},
      {30133, "Server is not active"},
      {30156, "timeout error"},
      {30160,
       "Multi-user interefernce: index information updated by the time user got to actual data "
       "record"},
      {31101, "Beginning of the table"},
      {31110, "Procedure %s can not be found in %s"},
      {31111, "Unabled to load %s"},
      {31133, "All files (*.*)|*.*|CTree data files (*.dat)|*.dat"},
      {31137, "Invalid index descriptor"},
  };
  for (const auto& [ident, text] : rows) EXPECT_EQ(CtMessage(ident), text) << ident;
  EXPECT_FALSE(CtMessage(31109).has_value());
  EXPECT_FALSE(CtMessage(31138).has_value());
  EXPECT_FALSE(CtMessage(2).has_value()) << "the table is keyed by 30000 + number";
}

TEST(CtErrorTest, PackageNumbersInUseAllHaveMessages) {
  for (std::int32_t code : {47, 101, 408, 1101, 1102, 1103, 1104})
    EXPECT_TRUE(CtMessage(kMessageBase + code).has_value()) << code;
  for (std::int32_t code = 1110; code <= 1137; ++code)
    EXPECT_TRUE(CtMessage(kMessageBase + code).has_value()) << code;
}

// Reads every "#define NAME number" of the engine header's error block, so that a number added
// to the engine without a message row fails here.
std::vector<std::pair<std::string, std::int32_t>> EngineErrorMacros() {
  std::ifstream header(CTISAM_HEADER);
  EXPECT_TRUE(header.is_open()) << CTISAM_HEADER;
  std::vector<std::pair<std::string, std::int32_t>> macros;
  const std::regex define(R"(^#define\s+(\w+)\s+(\d+)\b)");
  bool inBlock = false;
  std::string line;
  while (std::getline(header, line)) {
    if (line.starts_with("/* ----")) inBlock = line.find("error numbers") != std::string::npos;
    std::smatch m;
    if (inBlock && std::regex_search(line, m, define)) macros.emplace_back(m[1], std::stoi(m[2]));
  }
  return macros;
}

TEST(CtErrorTest, EveryErrorNumberOfTheEngineHeaderHasAMessage) {
  const auto macros = EngineErrorMacros();
  ASSERT_GT(macros.size(), 30u) << "the error block of the engine header was not found";
  EXPECT_EQ(macros.front().first, "NO_ERROR");
  for (const auto& [name, code] : macros) {
    if (code == 0) continue;
    const auto text = CtMessage(kMessageBase + code);
    ASSERT_TRUE(text.has_value()) << name << " (" << code << ") has no message";
    EXPECT_FALSE(text->empty()) << name;
  }
}

}  // namespace
}  // namespace CTDbIntf
