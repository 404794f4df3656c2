// EngineContention_test: processes that increment shared counters through the engine's own lock
// calls (record locks, lock sets, transactions) lose no increment and never hang, and two
// transactions or lock sets taking two records in opposite order both end. The figures are
// printed on standard output; CT_CRASH_CYCLES of 1,000 or more runs the long form.
#include <signal.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "ChildProcess.h"
#include "EngineFixture.h"

namespace {

constexpr int kCounters = 10;

// How a process holds the counter it increments: a record lock (LOKREC) around the read and the
// rewrite, a lock set that locks what it reads, or a transaction with a lock set.
enum Hold { kRecordLock, kLockSet, kTransaction };
const char* const kHoldNames[] = {"record locks", "lock sets", "transactions"};

// What one process met: its refusals by number; written to the parent through a pipe.
struct Tally {
  int32_t locked = 0;    // DLOK2_ERR: another process holds the record
  int32_t timedOut = 0;  // DTMO_ERR: a wait for it ran out
  int32_t other = 0;     // any other failure (the process stops at once)
  int32_t lastOther = 0;
};

// Adds 1 to the balance of customer id, holding it as `hold` says; `wait` asks for ENABLE_BLK
// instead of ENABLE. 0, or the number that refused it (everything undone then).
COUNT Increment(EngineApi& e, Hold hold, bool wait, int id) {
  const COUNT mode = wait ? ENABLE_BLK : ENABLE;
  Customer c{};
  COUNT rc = 0;
  switch (hold) {
    case kRecordLock: {
      if ((rc = ::Find(e, 1, id, c)) != 0) return rc;
      const LONG pos = e.GETCURP(0);
      if ((rc = e.LOKREC(0, mode, pos)) != 0) return rc;
      // Read again under the lock: the first read may predate another process's rewrite.
      if ((rc = e.RRDREC(0, &c)) == 0) {
        c.balance += 1;
        rc = e.RWTREC(0, &c);
      }
      const COUNT freed = e.LOKREC(0, FREE, pos);
      return rc != 0 ? rc : freed;
    }
    case kLockSet:
      if ((rc = e.LKISAM(mode)) != 0) return rc;
      if ((rc = ::Find(e, 1, id, c)) == 0) {
        c.balance += 1;
        rc = e.RWTREC(0, &c);
      }
      if (rc != 0) {
        // A refused set is given up: a set that wrote nothing commits nothing at FREE.
        e.LKISAM(FREE);
        return rc;
      }
      return e.LKISAM(FREE);
    case kTransaction:
      if (e.TRANBEG(mode) <= 0) return CT_ETRAN;
      if ((rc = ::Find(e, 1, id, c)) == 0) {
        c.balance += 1;
        rc = e.RWTREC(0, &c);
      }
      if (rc != 0) {
        e.TRANABT();
        return rc;
      }
      return e.TRANEND(FREE);
  }
  return CT_EBADARG;
}

// Starts a process that makes `count` increments of the counters in turn, trying again after
// each refusal; its tally goes to fd.
pid_t StartIncrementer(Hold hold, int index, int count, int fd) {
  return Spawn([=](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 91;
    Tally tally;
    const bool wait = index % 2 == 1;  // half the processes wait for locks, half are refused at once
    for (int done = 0; done < count;) {
      const COUNT rc = Increment(e, hold, wait, 1 + (done + index) % kCounters);
      if (rc == 0) {
        ++done;
      } else if (rc == DLOK2_ERR) {
        ++tally.locked;
        std::this_thread::yield();
      } else if (rc == DTMO_ERR) {
        ++tally.timedOut;
      } else {
        ++tally.other;
        tally.lastOther = rc;
        break;
      }
    }
    return write(fd, &tally, sizeof tally) == static_cast<ssize_t>(sizeof tally) ? 0 : 92;
  });
}

// Waits of the children end after 200 ms, so that a time-out is met often.
class EngineContention : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    setenv("CTISAM_LOCK_TIMEOUT_MS", "200", 1);
  }
  void TearDown() override {
    unsetenv("CTISAM_LOCK_TIMEOUT_MS");
    EngineTest::TearDown();
  }

  // The sum of the balances of the counters, read afresh.
  double Sum() {
    double sum = 0;
    Customer c{};
    for (int id = 1; id <= kCounters; ++id) {
      EXPECT_EQ(Find(1, id, c), 0) << id;
      sum += c.balance;
    }
    return sum;
  }
};

TEST_F(EngineContention, ProcessesIncrementingSharedCountersLoseNoIncrementAndNeverHang) {
  const COUNT dat = CreateCustomers();
  ASSERT_EQ(dat, 0);
  for (int id = 1; id <= kCounters; ++id) ASSERT_EQ(Add(dat, id, "counter", "C"), 0);
  const char* given = std::getenv("CT_CRASH_CYCLES");
  const int each = given != nullptr && std::atoi(given) >= 1000 ? 500 : 60;
  double expected = 0;
  for (int processes : {2, 4, 8}) {
    for (Hold hold : {kRecordLock, kLockSet, kTransaction}) {
      int fds[2];
      ASSERT_EQ(pipe(fds), 0);
      std::vector<pid_t> children;
      for (int p = 0; p < processes; ++p) children.push_back(StartIncrementer(hold, p, each, fds[1]));
      close(fds[1]);
      int hangs = 0, failures = 0;
      for (pid_t pid : children) {
        const int status = ct::testsupport::WaitChildWithin(pid, std::chrono::seconds(120));
        hangs += status == -1;
        failures += status != 0 && status != -1;
      }
      Tally sum, one;
      while (read(fds[0], &one, sizeof one) == static_cast<ssize_t>(sizeof one)) {
        sum.locked += one.locked;
        sum.timedOut += one.timedOut;
        sum.other += one.other;
        if (one.other != 0) sum.lastOther = one.lastOther;
      }
      close(fds[0]);
      expected += static_cast<double>(processes) * each;
      const double got = Sum();
      std::printf("engine contention: %d processes with %s, %d increments each: %.0f lost, %d refused with 42, "
                  "%d timed out with 156, %d other refusals, %d hangs, %d failed processes\n",
                  processes, kHoldNames[hold], each, expected - got, sum.locked, sum.timedOut, sum.other, hangs,
                  failures);
      EXPECT_EQ(got, expected) << processes << " processes with " << kHoldNames[hold];
      EXPECT_EQ(sum.other, 0) << "last other refusal: " << sum.lastOther;
      EXPECT_EQ(hangs, 0);
      EXPECT_EQ(failures, 0);
      expected = got;  // a failed round does not fail every later one too
    }
  }
}

// Two processes each take one record and then go for the other's, waiting (ENABLE_BLK): neither
// waits for ever, at least one gives up with 156, and the counters hold exactly the rewrites that
// were kept (a transaction that gave up keeps none; a lock set keeps those made before).
class OppositeOrder : public EngineContention, public ::testing::WithParamInterface<Hold> {};

TEST_P(OppositeOrder, TwoHoldersTakingTwoRecordsInOppositeOrderBothEnd) {
  const COUNT dat = CreateCustomers();
  ASSERT_EQ(dat, 0);
  for (int id = 1; id <= 2; ++id) ASSERT_EQ(Add(dat, id, "counter", "C"), 0);
  const Hold hold = GetParam();
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  auto taker = [hold, fd = fds[1]](int first) {
    return Spawn([=](EngineApi& e) {
      if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 91;
      if ((hold == kLockSet ? e.LKISAM(ENABLE_BLK) : (e.TRANBEG(ENABLE_BLK) > 0 ? 0 : CT_ETRAN)) != 0) return 92;
      COUNT rc = 0;
      int32_t rewrites = 0;
      for (int id : {first, 3 - first}) {
        Customer c{};
        if ((rc = ::Find(e, 1, id, c)) != 0) break;
        c.balance += 1;
        if ((rc = e.RWTREC(0, &c)) != 0) break;
        ++rewrites;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
      }
      COUNT ended = 0;
      if (hold == kLockSet) {
        ended = e.LKISAM(FREE);
      } else if (rc != 0) {
        ended = e.TRANABT();
        rewrites = 0;
      } else {
        ended = e.TRANEND(FREE);
      }
      if (write(fd, &rewrites, sizeof rewrites) != static_cast<ssize_t>(sizeof rewrites)) return 93;
      return static_cast<int>(rc != 0 ? rc : ended);
    });
  };
  const pid_t one = taker(1), two = taker(2);
  close(fds[1]);
  const int first = ct::testsupport::WaitChildWithin(one, std::chrono::seconds(30));
  const int second = ct::testsupport::WaitChildWithin(two, std::chrono::seconds(30));
  EXPECT_TRUE(first == 0 || first == DTMO_ERR) << first;
  EXPECT_TRUE(second == 0 || second == DTMO_ERR) << second;
  EXPECT_TRUE(first == DTMO_ERR || second == DTMO_ERR) << "neither waited for the other";
  int32_t kept = 0, rewrites = 0;
  while (read(fds[0], &rewrites, sizeof rewrites) == static_cast<ssize_t>(sizeof rewrites)) kept += rewrites;
  close(fds[0]);
  Customer a{}, b{};
  ASSERT_EQ(Find(1, 1, a), 0);
  ASSERT_EQ(Find(1, 2, b), 0);
  EXPECT_EQ(double{a.balance} + double{b.balance}, kept);
  if (hold == kTransaction) EXPECT_EQ(double{a.balance}, double{b.balance}) << "a transaction kept half its work";
}

INSTANTIATE_TEST_SUITE_P(Holds, OppositeOrder, ::testing::Values(kLockSet, kTransaction),
                         [](const auto& info) { return info.param == kLockSet ? "LockSets" : "Transactions"; });

}  // namespace
