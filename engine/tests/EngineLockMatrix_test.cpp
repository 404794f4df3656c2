// EngineLockMatrix_test: every way of holding a record lock against every way of contending for
// it, from another process and from another handle of the same process.
#include <tuple>

#include "ChildProcess.h"
#include "EngineFixture.h"

namespace {

// How the record is held: by LOKREC, by reading it in a lock set, or in a transaction.
enum Holder { kLokRead, kLokWrite, kSetRead, kSetWrite, kTranRead, kTranWrite };
// How the contender goes for the same record: LOKREC (read, write, waiting write), reading it in
// a lock set or a transaction of each lock mode, or rewriting it.
enum Contender {
  kTryRead,
  kTryWrite,
  kWaitWrite,
  kSetReadFind,
  kSetWriteFind,
  kSetWaitFind,
  kTranReadFind,
  kTranWriteFind,
  kTranWaitFind,
  kRewrite
};

bool HolderWrites(Holder h) { return h == kLokWrite || h == kSetWrite || h == kTranWrite; }
bool ContenderWrites(Contender c) { return c != kTryRead && c != kSetReadFind && c != kTranReadFind; }
bool ContenderWaits(Contender c) { return c == kWaitWrite || c == kSetWaitFind || c == kTranWaitFind; }

// What the contender gets: read and read share; any write conflicts (a rewrite conflicts with
// every lock of another owner); waiting ends in the time-out.
COUNT Expected(Holder h, Contender c) {
  if (!HolderWrites(h) && !ContenderWrites(c)) return 0;
  return ContenderWaits(c) ? DTMO_ERR : DLOK2_ERR;
}

COUNT Hold(EngineApi& api, COUNT dat, LONG pos, Holder h) {
  Customer c{};
  switch (h) {
    case kLokRead: return api.LOKREC(dat, READREC, pos);
    case kLokWrite: return api.LOKREC(dat, ENABLE, pos);
    case kSetRead:
    case kSetWrite:
      if (COUNT rc = api.LKISAM(h == kSetRead ? READREC : ENABLE)) return rc;
      return ::Find(api, dat + 1, 1, c);
    case kTranRead:
    case kTranWrite:
      if (api.TRANBEG(h == kTranRead ? READREC : ENABLE) <= 0) return CT_ETRAN;
      return ::Find(api, dat + 1, 1, c);
  }
  return CT_EBADARG;
}

// Goes for record 1 (at pos) of data file dat (index dat + 1) as c says; returns what the
// decisive call returned. Ends any set it began.
COUNT Contend(EngineApi& api, COUNT dat, LONG pos, Contender c) {
  Customer rec{};
  // Read and made current without a lock, whatever set the session is in.
  if (COUNT rc = api.REDREC(dat, pos, &rec)) return rc;
  if (COUNT rc = api.SETCURI(dat, pos, &rec, sizeof rec)) return rc;
  COUNT rc = 0;
  switch (c) {
    case kTryRead: return api.LOKREC(dat, READREC, pos);
    case kTryWrite: return api.LOKREC(dat, ENABLE, pos);
    case kWaitWrite: return api.LOKREC(dat, ENABLE_BLK, pos);
    case kRewrite: rec.balance += 1; return api.RWTREC(dat, &rec);
    case kSetReadFind:
    case kSetWriteFind:
    case kSetWaitFind:
      if ((rc = api.LKISAM(c == kSetReadFind ? READREC : c == kSetWriteFind ? ENABLE : ENABLE_BLK)) != 0) return rc;
      rc = ::Find(api, dat + 1, 1, rec);
      api.LKISAM(FREE);
      return rc;
    case kTranReadFind:
    case kTranWriteFind:
    case kTranWaitFind:
      if (api.TRANBEG(c == kTranReadFind ? READREC : c == kTranWriteFind ? ENABLE : ENABLE_BLK) <= 0) return CT_ETRAN;
      rc = ::Find(api, dat + 1, 1, rec);
      api.TRANABT();
      return rc;
  }
  return CT_EBADARG;
}

class LockMatrix : public EngineTest, public ::testing::WithParamInterface<std::tuple<Holder, Contender>> {
 protected:
  // Waits end after 100 ms, in this session and in the children it starts.
  void SetUp() override {
    setenv("CTISAM_LOCK_TIMEOUT_MS", "100", 1);
    EngineTest::SetUp();
    dat_ = CreateCustomers();
    ASSERT_EQ(Add(dat_, 1, "one", "X"), 0);
    ASSERT_EQ(Add(dat_, 2, "two", "X"), 0);
    Customer c{};
    ASSERT_EQ(Find(dat_ + 1, 1, c), 0);
    pos_ = api.GETCURP(dat_);
  }
  void TearDown() override {
    EngineTest::TearDown();
    unsetenv("CTISAM_LOCK_TIMEOUT_MS");
  }
  COUNT dat_ = 0;
  LONG pos_ = 0;
};

using LockBetweenProcesses = LockMatrix;
using LockBetweenHandles = LockMatrix;

// The contender runs in a child process; its result is its exit status.
TEST_P(LockBetweenProcesses, ReadLocksShareAndWriteLocksExclude) {
  auto [holder, contender] = GetParam();
  ASSERT_EQ(Hold(api, dat_, pos_, holder), 0);
  pid_t pid = Spawn([&](EngineApi& child) {
    if (child.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 91;
    COUNT rc = Contend(child, 0, pos_, contender);
    // The other record is free whatever happened to the first.
    Customer other{};
    if (::Find(child, 1, 2, other) != 0 || child.LOKREC(0, ENABLE, child.GETCURP(0)) != 0) return 92;
    return static_cast<int>(rc);
  });
  EXPECT_EQ(Wait(pid), Expected(holder, contender));
}

// The contender is a second handle of the same session. The set belongs to the session, so a
// contender that starts a set or a transaction meets only record locks taken with LOKREC.
TEST_P(LockBetweenHandles, ReadLocksShareAndWriteLocksExclude) {
  auto [holder, contender] = GetParam();
  ASSERT_EQ(api.OPNRFIL(20, (pTEXT) "customers.dat", SHARED), 0);
  ASSERT_EQ(Hold(api, dat_, pos_, holder), 0);
  EXPECT_EQ(Contend(api, 20, pos_, contender), Expected(holder, contender));
  if (holder == kSetRead || holder == kSetWrite) EXPECT_EQ(api.LKISAM(FREE), 0);
  if (holder == kTranRead || holder == kTranWrite) EXPECT_EQ(api.TRANEND(FREE), 0);
}

const auto kHolders = ::testing::Values(kLokRead, kLokWrite, kSetRead, kSetWrite, kTranRead, kTranWrite);
const auto kSetContenders =
    ::testing::Values(kSetReadFind, kSetWriteFind, kSetWaitFind, kTranReadFind, kTranWriteFind, kTranWaitFind);
const auto kPlainContenders = ::testing::Values(kTryRead, kTryWrite, kWaitWrite, kRewrite);

INSTANTIATE_TEST_SUITE_P(Plain, LockBetweenProcesses, ::testing::Combine(kHolders, kPlainContenders));
INSTANTIATE_TEST_SUITE_P(Sets, LockBetweenProcesses, ::testing::Combine(kHolders, kSetContenders));
INSTANTIATE_TEST_SUITE_P(Plain, LockBetweenHandles, ::testing::Combine(kHolders, kPlainContenders));
INSTANTIATE_TEST_SUITE_P(Sets, LockBetweenHandles, ::testing::Combine(::testing::Values(kLokRead, kLokWrite), kSetContenders));

}  // namespace
