// Tests of the binding layer's error routines and message table.
#include <gtest/gtest.h>

#include <limits>

#include "CTDbIntf.h"
#include "ctisam.h"

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
  for (std::int32_t code : {1, 1103, 9999, -5, std::numeric_limits<std::int32_t>::max()}) {
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
      {30100, "No current record for isam datno"},
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
  EXPECT_FALSE(CtMessage(31103).has_value());
  EXPECT_FALSE(CtMessage(31138).has_value());
  EXPECT_FALSE(CtMessage(2).has_value()) << "the table is keyed by 30000 + number";
}

TEST(CtErrorTest, PackageNumbersInUseAllHaveMessages) {
  for (std::int32_t code = 1110; code <= 1137; ++code)
    EXPECT_TRUE(CtMessage(kMessageBase + code).has_value()) << code;
  for (std::int32_t code : {47, 101, 408})
    EXPECT_TRUE(CtMessage(kMessageBase + code).has_value()) << code;
}

TEST(CtErrorTest, EveryNumberTheEngineReturnsHasAMessage) {
  const std::int32_t engineNumbers[] = {
      KDUP_ERR,   FNOP_ERR,     FCRP_ERR,     DCRAT_ERR,   FNUM_ERR,   DLOK_ERR,    DLOK2_ERR,
      FUSE_ERR,   FINT_ERR,     FMOD_ERR,     ICUR_ERR,    INOT_ERR,   IINT_ERR,    NSRV_ERR,
      VBSZ_ERR,   DTMO_ERR,     NCON_ERR,     RNOT_ERR,    NSUP_ERR,   BPWD_ERR,    CT_EALIGN,
      CT_EBADDEF, CT_EDAMAGED,  CT_EDISKFULL, CT_EKEYLEN,  CT_EBADARG, CT_ENOTOPEN, CT_ENOTIDX,
      CT_ENOTDAT, CT_EREADONLY, CT_EIO,       CT_EBADCOND, CT_ENOCTX,  CT_ERESDUP,
      CT_ETRAN,   CT_EUNMAPPED, CT_ELOCKFILE, CT_EBADPARM};
  for (std::int32_t code : engineNumbers) {
    const auto text = CtMessage(kMessageBase + code);
    ASSERT_TRUE(text.has_value()) << code;
    EXPECT_FALSE(text->empty()) << code;
  }
}

}  // namespace
}  // namespace CTDbIntf
