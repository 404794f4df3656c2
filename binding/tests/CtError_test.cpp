// Tests of the binding layer's error routines and message table.
#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <regex>
#include <string>
#include <vector>

#include "CTDbIntf.h"

namespace CTDbIntf {
namespace {

template <class F>
ECtreeException Raised(F call) {
  try {
    call();
  } catch (const ECtreeException& e) {
    return e;
  }
  ADD_FAILURE() << "no ECtreeException raised";
  return ECtreeException("");
}

TEST(CtErrorTest, ZeroRaisesNothing) {
  EXPECT_NO_THROW(CtError(0));
  EXPECT_NO_THROW(CtErrorFmt(0, {"x"}));
}

TEST(CtErrorTest, AppendsLineFeedCarriageReturnAndNumber) {
  ECtreeException e = Raised([] { CtError(2); });
  EXPECT_EQ(e.Message(), "Key value already exists\n\rCtree Error #2");
  EXPECT_STREQ(e.what(), "Key value already exists\n\rCtree Error #2");
  EXPECT_EQ(e.ErrorCode, 2);

  e = Raised([] { CtError(1113); });
  EXPECT_EQ(e.Message(), "Invalid cursor handle\n\rCtree Error #1113");
  EXPECT_EQ(e.ErrorCode, 1113);

  EXPECT_EQ(Raised([] { CtError(1122); }).Message(),
            "Field '%s' cannot be modified\n\rCtree Error #1122");
}

TEST(CtErrorTest, NumberWithoutMessageGivesOnlyTheAppendedText) {
  for (std::int32_t code : {1, 1109, 9999, -5, std::numeric_limits<std::int32_t>::max()}) {
    const ECtreeException e = Raised([code] { CtError(code); });
    EXPECT_EQ(e.Message(), "\n\rCtree Error #" + std::to_string(code));
    EXPECT_EQ(e.ErrorCode, code);
  }
}

TEST(CtErrorTest, FmtFormatsAndAppendsNothing) {
  ECtreeException e = Raised([] { CtErrorFmt(1136, {"orders.dat"}); });
  EXPECT_EQ(e.Message(), "File alignment does not match alignment property: 'orders.dat'");
  EXPECT_EQ(e.ErrorCode, 1136);

  e = Raised([] { CtErrorFmt(101, {}); });
  EXPECT_EQ(e.Message(), "Could not find isam keyno request");
  EXPECT_EQ(e.ErrorCode, 101);

  e = Raised([] { CtErrorFmt(1105, {}); });
  EXPECT_EQ(e.Message(), "");
  EXPECT_EQ(e.ErrorCode, 1105);
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
