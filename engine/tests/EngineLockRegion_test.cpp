// EngineLockRegion_test: the lock region shared by processes (many locks, a damaged region) and
// the time-out on a file's writer lock.
#include <fstream>

#include "ChildProcess.h"
#include "EngineFixture.h"

namespace {

// Waits of the children end after 100 ms; the parent keeps the fixture's 5 s.
class LockRegion : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    setenv("CTISAM_LOCK_TIMEOUT_MS", "100", 1);
  }
  void TearDown() override {
    unsetenv("CTISAM_LOCK_TIMEOUT_MS");
    EngineTest::TearDown();
  }
  // Position of the n-th record added (0-based) to a fresh customers table.
  static LONG PosOf(int n) { return 128 + n * 68; }
};

TEST_F(LockRegion, ThousandsOfSetLocksExcludeAnotherProcessUntilFree) {
  COUNT dat = CreateCustomers();
  constexpr int kCount = 10000;
  ASSERT_EQ(api.LKISAM(ENABLE), 0);
  for (int id = 0; id < kCount; ++id) ASSERT_EQ(Add(dat, id, "n", "C"), 0);
  auto probe = [](EngineApi& e) {
    if (e.OPNFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 91;
    int refused = 0;
    for (int n : {0, 1, kCount / 2, kCount - 1}) refused += e.LOKREC(0, ENABLE, PosOf(n)) == DLOK2_ERR;
    return refused;
  };
  EXPECT_EQ(Wait(Spawn(probe)), 4);
  ASSERT_EQ(api.LKISAM(FREE), 0);
  EXPECT_EQ(Wait(Spawn(probe)), 0);
  // The table grew for the 10,000 locks; the last program to close the file leaves it empty,
  // and the next one to open it starts afresh.
  EXPECT_GT(std::filesystem::file_size("customers.dat-rlock"), 256u << 10);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  EXPECT_EQ(std::filesystem::file_size("customers.dat-rlock"), 0u);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(api.LOKREC(0, ENABLE, PosOf(1)), 0);
  EXPECT_EQ(Wait(Spawn(probe)), 1);
}

// A record lock freed inside a transaction stays until the transaction ends: released at once,
// it let another program read the record before the change committed and overwrite it after.
TEST_F(LockRegion, ARecordLockFreedInsideATransactionIsHeldUntilItEnds) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 0, "n", "C"), 0);
  auto probe = [](EngineApi& e) {
    if (e.OPNFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 91;
    return e.LOKREC(0, ENABLE, PosOf(0)) == DLOK2_ERR ? 1 : 0;
  };
  ASSERT_GT(api.TRANBEG(0), 0);
  ASSERT_EQ(api.LOKREC(dat, ENABLE, PosOf(0)), 0);
  ASSERT_EQ(api.LOKREC(dat, FREE, PosOf(0)), 0);
  EXPECT_EQ(Wait(Spawn(probe)), 1);
  ASSERT_EQ(api.TRANEND(FREE), 0);
  EXPECT_EQ(Wait(Spawn(probe)), 0);
}

TEST_F(LockRegion, ExclusiveFileKeepsItsRecordLocksInTheProcess) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  ASSERT_EQ(Add(dat, 0, "n", "C"), 0);
  auto before = std::filesystem::file_size("customers.dat-rlock");
  ASSERT_GT(before, 0u);
  ASSERT_GT(api.TRANBEG(ENABLE), 0);
  for (int id = 1; id < 10000; ++id) ASSERT_EQ(Add(dat, id, "n", "C"), 0);
  // Freeing a lock of the transaction is deferred to its end.
  EXPECT_EQ(api.LOKREC(dat, FREE, PosOf(1)), 0);
  EXPECT_EQ(api.LOKREC(dat, FREE, PosOf(1)), 0);
  ASSERT_EQ(api.TRANEND(FREE), 0);
  EXPECT_EQ(api.LOKREC(dat, FREE, PosOf(1)), DLOK_ERR);
  EXPECT_EQ(std::filesystem::file_size("customers.dat-rlock"), before);  // the region never grew
}

TEST_F(LockRegion, DamagedRegionIsRefusedWhileInUseAndRenewedWhenAlone) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "n", "C"), 0);  // attaches this process to the region
  // Written from another process: a close in this one would drop this process's byte locks on
  // the region (fcntl locks belong to the process and go with any of its descriptors).
  EXPECT_EQ(Wait(Spawn([](EngineApi&) {
              std::fstream f("customers.dat-rlock", std::ios::in | std::ios::out | std::ios::binary);
              return f.write("garbage!", 8) ? 0 : 1;
            })),
            0);
  // Exit status 1 for CT_ELOCKFILE (it does not fit in an exit status).
  auto add = [](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 91;
    Customer c = MakeCustomer(2, "child", "C");
    COUNT rc = e.ADDREC(0, &c);
    return rc == CT_ELOCKFILE ? 1 : rc == 0 ? 0 : 92;
  };
  EXPECT_EQ(Wait(Spawn(add)), 1);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  EXPECT_EQ(Wait(Spawn(add)), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(api.DATENT(0), 2);
}

TEST_F(LockRegion, WriterOfAFileHeldInATransactionTimesOut) {
  COUNT dat = CreateCustomers();
  ASSERT_GT(api.TRANBEG(ENABLE), 0);
  ASSERT_EQ(Add(dat, 1, "held", "H"), 0);
  auto add = [](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 91;
    Customer c = MakeCustomer(2, "child", "C");
    return static_cast<int>(e.ADDREC(0, &c));
  };
  EXPECT_EQ(Wait(Spawn(add)), DTMO_ERR);
  ASSERT_EQ(api.TRANEND(FREE), 0);
  EXPECT_EQ(Wait(Spawn(add)), 0);
  EXPECT_EQ(api.DATENT(dat), 2);
}

// The child takes customers then log, the parent log then customers: the child's wait (100 ms)
// ends first with 156, it aborts, and the parent's transaction commits.
TEST_F(LockRegion, TransactionsTakingTwoFilesInOppositeOrderDoNotHang) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(api.CREDAT(30, (pTEXT) "log.dat", 8, 0, SHARED), 0);
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  ASSERT_GT(api.TRANBEG(ENABLE), 0);
  ASSERT_EQ(api.ADDREC(30, (pTEXT) "parent.."), 0);
  pid_t pid = Spawn([&](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0 || e.OPNFIL(5, (pTEXT) "log.dat", SHARED) != 0) return 91;
    if (e.TRANBEG(ENABLE) <= 0) return 92;
    Customer c = MakeCustomer(2, "child", "C");
    if (e.ADDREC(0, &c) != 0) return 93;
    char go = 1;
    if (write(ready[1], &go, 1) != 1) return 94;
    COUNT rc = e.ADDREC(5, (pTEXT) "child...");
    e.TRANABT();
    return static_cast<int>(rc);
  });
  char go = 0;
  ASSERT_EQ(read(ready[0], &go, 1), 1);
  EXPECT_EQ(Add(dat, 1, "parent", "P"), 0);
  EXPECT_EQ(api.TRANEND(FREE), 0);
  EXPECT_EQ(Wait(pid), DTMO_ERR);
  EXPECT_EQ(api.DATENT(dat), 1);
  EXPECT_EQ(api.DATENT(30), 1);
  close(ready[0]);
  close(ready[1]);
}

// Four processes each commit 15 transactions that add to both files in a random order, starting
// again after a time-out: all of them finish and nothing is lost or doubled.
TEST_F(LockRegion, ProcessesDoingTwoFileTransactionsAllFinish) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(api.CREDAT(30, (pTEXT) "log.dat", 8, 0, SHARED), 0);
  constexpr int kProcs = 4, kRounds = 15;
  std::vector<pid_t> pids;
  for (int p = 0; p < kProcs; ++p) {
    pids.push_back(Spawn([p](EngineApi& e) {
      if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0 || e.OPNFIL(5, (pTEXT) "log.dat", SHARED) != 0) return 91;
      srand(static_cast<unsigned>(p + 1));
      for (int i = 0, tries = 0; i < kRounds; ++tries) {
        if (tries > 2000) return 92;
        if (e.TRANBEG(ENABLE_BLK) <= 0) return 93;
        Customer c = MakeCustomer(p * 1000 + i, "w", "W");
        bool customersFirst = rand() % 2;
        COUNT rc = customersFirst ? e.ADDREC(0, &c) : e.ADDREC(5, (pTEXT) "entry...");
        if (rc == 0) rc = customersFirst ? e.ADDREC(5, (pTEXT) "entry...") : e.ADDREC(0, &c);
        if (rc == DTMO_ERR) {
          e.TRANABT();
          usleep(static_cast<useconds_t>(rand() % 20000));
          continue;
        }
        if (rc != 0) return 94;
        if (e.TRANEND(FREE) != 0) return 95;
        ++i;
      }
      return 0;
    }));
  }
  for (pid_t pid : pids) EXPECT_EQ(Wait(pid), 0);
  EXPECT_EQ(api.DATENT(dat), kProcs * kRounds);
  EXPECT_EQ(api.IDXENT(dat + 1), kProcs * kRounds);
  EXPECT_EQ(api.DATENT(30), kProcs * kRounds);
}

}  // namespace
