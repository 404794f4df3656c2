// EngineProcess_test: several processes on the same files, and a writer killed mid-stream.
// Children load a second variant (libctreebm.so, also byte-packed) so that they open the files
// with an engine instance of their own instead of the one inherited from the parent.
#include <fcntl.h>
#include <lmdb.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <functional>

#include "ChildProcess.h"
#include "EngineFixture.h"

namespace {

using EngineProcess = EngineTest;

TEST_F(EngineProcess, SharedOpenersSeeEachOthersCommits) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "parent", "P"), 0);
  Customer c{};
  ASSERT_EQ(api.FRSREC(dat + 1, &c), 0);  // holds a snapshot from before the child's writes
  pid_t pid = Spawn([](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 1;
    if (e.DATENT(0) != 1) return 2;
    for (int id = 100; id < 200; ++id) {
      Customer r = MakeCustomer(id, "child", "C");
      if (e.ADDREC(0, &r) != 0) return 3;
    }
    return e.CLISAM() == 0 ? 0 : 4;
  });
  ASSERT_EQ(Wait(pid), 0);
  EXPECT_EQ(api.DATENT(dat), 101);
  ASSERT_EQ(api.NXTREC(dat + 1, &c), 0);
  EXPECT_EQ(c.id, 100);
  ASSERT_EQ(api.LSTREC(dat + 1, &c), 0);
  EXPECT_EQ(c.id, 199);
  EXPECT_EQ(Add(dat, 150, "clash", "X"), KDUP_ERR);
}

TEST_F(EngineProcess, KilledWriterLosesNothingItWasToldWasWritten) {
  COUNT dat = CreateCustomers();
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  pid_t pid = Spawn([&](EngineApi& e) {
    close(fds[0]);
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 1;
    for (int32_t id = 0; id < 1000000; ++id) {
      Customer r = MakeCustomer(id, "w", id % 2 ? "odd" : "even");
      if (e.ADDREC(0, &r) != 0) return 2;
      if (write(fds[1], &id, sizeof id) != sizeof id) return 3;
    }
    return 0;
  });
  close(fds[1]);
  int32_t acked = -1, id = 0;
  while (acked < 3000 && read(fds[0], &id, sizeof id) == sizeof id) acked = id;
  kill(pid, SIGKILL);
  Wait(pid);
  while (read(fds[0], &id, sizeof id) == sizeof id) acked = id;
  close(fds[0]);
  ASSERT_GE(acked, 3000);
  LONG n = api.DATENT(dat);
  EXPECT_GE(n, acked + 1);
  EXPECT_LE(n, acked + 2);
  EXPECT_EQ(api.IDXENT(dat + 1), n);
  EXPECT_EQ(api.IDXENT(dat + 2), n);
  Customer c{};
  for (int32_t probe : {0, acked / 2, acked}) {
    ASSERT_EQ(Find(dat + 1, probe, c), 0) << probe;
    EXPECT_EQ(c.id, probe);
  }
  EXPECT_EQ(Add(dat, -1, "after", "crash"), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  pid = Spawn([](EngineApi& e) { return e.OPNRFIL(0, (pTEXT) "customers.dat", EXCLUSIVE); });
  EXPECT_EQ(Wait(pid), 0);
}

TEST_F(EngineProcess, ContendingLockSetsLoseNoUpdate) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "counter", "C", 0), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  constexpr int kRounds = 150;
  auto worker = [](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 1;
    for (int i = 0; i < kRounds; ++i) {
      if (e.LKISAM(ENABLE_BLK) != 0) return 2;
      Customer c{};
      if (::Find(e, 1, 1, c) != 0) return 3;
      c.balance += 1;
      if (e.RWTREC(0, &c) != 0) return 4;
      if (e.LKISAM(FREE) != 0) return 5;
    }
    return 0;
  };
  pid_t a = Spawn(worker), b = Spawn(worker);
  EXPECT_EQ(Wait(a), 0);
  EXPECT_EQ(Wait(b), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  Customer c{};
  ASSERT_EQ(Find(1, 1, c), 0);
  EXPECT_EQ(double{c.balance}, 2 * kRounds);
}

// A child that opens the customers table, runs start, adds 50 records, locks the first record,
// reports on the pipe and waits to be killed: afterwards the table is as before and writable.
void KillInside(EngineApi& api, const std::function<int(EngineApi&)>& start) {
  const LONG before = api.DATENT(0);
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  pid_t pid = Spawn([&](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 1;
    if (start(e) != 0) return 2;
    for (int id = 100; id < 150; ++id) {
      Customer r = MakeCustomer(id, "doomed", "D");
      if (e.ADDREC(0, &r) != 0) return 3;
    }
    Customer first{};
    if (e.FRSREC(0, &first) != 0) return 4;
    if (e.LOKREC(0, ENABLE, e.GETCURP(0)) != 0) return 5;
    char ok = 1;
    if (write(fds[1], &ok, 1) != 1) return 6;
    pause();
    return 0;
  });
  close(fds[1]);
  char ok = 0;
  ASSERT_EQ(read(fds[0], &ok, 1), 1) << "the child ended with " << Wait(pid);
  close(fds[0]);
  Customer c{};
  ASSERT_EQ(api.FRSREC(0, &c), 0);
  LONG pos = api.GETCURP(0);
  EXPECT_EQ(api.LOKREC(0, ENABLE, pos), DLOK2_ERR);  // held by the live child
  kill(pid, SIGKILL);
  EXPECT_EQ(Wait(pid), 100 + SIGKILL);
  EXPECT_EQ(api.LOKREC(0, ENABLE, pos), 0);  // a dead process holds no lock
  EXPECT_EQ(api.LOKREC(0, FREE, pos), 0);
  EXPECT_EQ(api.DATENT(0), before);
  EXPECT_EQ(api.IDXENT(1), before);
  Customer after = MakeCustomer(1000 + before, "after", "A");
  EXPECT_EQ(api.ADDREC(0, &after), 0);  // the storage is writable again
  EXPECT_EQ(api.DATENT(0), before + 1);
}

TEST_F(EngineProcess, WriterOfAnotherProcessMaintainsAnIndexAddedMeanwhile) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "first", "F"), 0);
  int ready[2], go[2];
  ASSERT_EQ(pipe(ready), 0);
  ASSERT_EQ(pipe(go), 0);
  pid_t pid = Spawn([&](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 1;
    Customer r = MakeCustomer(2, "before", "B");
    if (e.ADDREC(0, &r) != 0) return 2;
    char c = 1;
    if (write(ready[1], &c, 1) != 1 || read(go[0], &c, 1) != 1) return 3;
    for (int id = 100; id < 150; ++id) {
      r = MakeCustomer(id, "after", "A");
      if (e.ADDREC(0, &r) != 0) return 4;
    }
    return 0;
  });
  char c = 0;
  ASSERT_EQ(read(ready[0], &c, 1), 1);
  IFIL add = ByName(dat);
  ASSERT_EQ(api.TMPIIDXX(&add, 0, nullptr, nullptr), 0);
  ASSERT_EQ(api.PRMIIDX(&add), 0);
  EXPECT_EQ(api.IDXENT(add.tfilno), 2);
  ASSERT_EQ(write(go[1], &c, 1), 1);
  EXPECT_EQ(Wait(pid), 0);
  EXPECT_EQ(api.DATENT(dat), 52);
  EXPECT_EQ(api.IDXENT(add.tfilno), 52);
  for (int fd : {ready[0], ready[1], go[0], go[1]}) close(fd);
}

TEST_F(EngineProcess, KilledInsideTransactionOrLockSetLeavesNothing) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "kept", "K"), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  KillInside(api, [](EngineApi& e) { return e.TRANBEG(ENABLE) > 0 ? 0 : 1; });
  KillInside(api, [](EngineApi& e) { return e.LKISAM(ENABLE); });
}

TEST_F(EngineProcess, ReaderFollowsAFileAnotherProcessGrew) {
  OneIndexDef f("big", 8, SHARED | VLENGTH, {{0, 4, SGNSEG}});
  const COUNT dat = CreateOneIndex(f);
  char rec[1000] = {};
  ASSERT_EQ(api.ADDVREC(dat, rec, sizeof rec), 0);
  EXPECT_EQ(api.DATENT(dat), 1);
  pid_t pid = Spawn([](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "big.dat", SHARED) != 0) return 1;
    char r[1000] = {};
    for (int32_t id = 1; id <= 12000; ++id) {
      std::memcpy(r, &id, 4);
      r[999] = static_cast<char>(id);
      if (e.ADDVREC(0, r, sizeof r) != 0) return 2;
    }
    return 0;
  });
  ASSERT_EQ(Wait(pid), 0);
  EXPECT_EQ(api.DATENT(dat), 12001);
  char back[1000];
  LONG len = sizeof back;
  ASSERT_EQ(api.LSTVREC(dat + 1, back, &len), 0);
  int32_t id;
  std::memcpy(&id, back, 4);
  EXPECT_EQ(id, 12000);
  EXPECT_EQ(back[999], static_cast<char>(12000));
  ASSERT_EQ(api.ADDVREC(dat, back, sizeof back), KDUP_ERR);
  std::memset(back, 0x7F, 4);
  EXPECT_EQ(api.ADDVREC(dat, back, sizeof back), 0);
}

TEST_F(EngineProcess, FullDiskIsReportedAndCommittedRecordsStay) {
  OneIndexDef f("full", 8, SHARED | VLENGTH, {{0, 4, SGNSEG}});
  ASSERT_EQ(api.CLRFIL(CreateOneIndex(f)), 0);
  // The child may not grow any file past 256 KiB beyond the table's size: a full disk.
  rlim_t limit = std::filesystem::file_size("full.dat") + (256 << 10);
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  pid_t pid = Spawn([&](EngineApi& e) {
    close(fds[0]);
    signal(SIGXFSZ, SIG_IGN);
    rlimit rl{limit, limit};
    setrlimit(RLIMIT_FSIZE, &rl);
    if (e.OPNRFIL(0, (pTEXT) "full.dat", SHARED) != 0) return 1;
    char r[1000] = {};
    int32_t added = 0;
    COUNT rc = 0;
    for (int32_t id = 0; id < 100000 && rc == 0; ++id) {
      std::memcpy(r, &id, 4);
      rc = e.ADDVREC(0, r, sizeof r);
      added += rc == 0;
    }
    COUNT again = e.ADDVREC(0, r, sizeof r);
    int32_t report[3] = {added, rc, again};
    return write(fds[1], report, sizeof report) == sizeof report ? 0 : 2;
  });
  close(fds[1]);
  int32_t report[3] = {};
  ASSERT_EQ(read(fds[0], report, sizeof report), (ssize_t) sizeof report);
  close(fds[0]);
  ASSERT_EQ(Wait(pid), 0);
  EXPECT_EQ(report[1], CT_EDISKFULL);
  EXPECT_EQ(report[2], CT_EDISKFULL);
  EXPECT_GT(report[0], 50);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "full.dat", SHARED), 0);
  EXPECT_EQ(api.DATENT(0), report[0]);
  EXPECT_EQ(api.IDXENT(1), report[0]);
  char back[1000];
  LONG len = sizeof back;
  ASSERT_EQ(api.LSTVREC(1, back, &len), 0);
  int32_t last;
  std::memcpy(&last, back, 4);
  EXPECT_EQ(last, report[0] - 1);
}

// A process adds, maps and drops indexes and dies without closing: the other process follows
// the dropped index and maintains the others; its close, the last, removes what the dead one left.
TEST_F(EngineProcess, IndexesChangedByAnotherProcessAreFollowedAndItsLeftoversGo) {
  static ISEG citySeg[1] = {{34, 20, REGSEG}};
  static IIDX cityIdx[1] = {{24, 0, 1, 0, 0, 1, citySeg, (pTEXT) "side_city", nullptr, nullptr, nullptr}};
  IFIL side = {(pTEXT) "side", -1, sizeof(Customer), 0, SHARED, 1, 0, SHARED, cityIdx, nullptr, nullptr, -1};
  ASSERT_EQ(api.CREIFIL(&side), 0);
  ASSERT_EQ(api.CLRFIL(side.tfilno), 0);
  COUNT dat = CreateCustomers();
  for (int id = 1; id <= 5; ++id) ASSERT_EQ(Add(dat, id, "n", "C"), 0);
  IFIL ifil = def_.ifil;
  pid_t pid = Spawn([&](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 1;
    IFIL add = ByName(0);
    if (e.TMPIIDXX(&add, 0, nullptr, nullptr) != 0) return 2;
    if (e.OPNFIL(10, (pTEXT) "side.idx", SHARED) != 0 || e.setimap(10, &ifil, 0, 0) != 0) return 3;
    IIDX kept[2] = {ifil.ix[0], nameIdx[0]};
    IFIL put = ifil;
    put.dfilno = 0;
    put.dnumidx = 2;
    put.ix = kept;
    if (e.PUTIFIL(&put) != 0) return 4;
    return 0;  // no close: the temporary and mapped indexes stay in the definition
  });
  ASSERT_EQ(Wait(pid), 0);
  ASSERT_EQ(Add(dat, 6, "n", "C"), 0);
  EXPECT_EQ(api.IDXENT(dat + 2), 0);
  EXPECT_EQ(api.IDXENT(dat + 1), 6);
  EXPECT_EQ(IndexCount(dat), 2);  // the mapped index is not listed
  ASSERT_EQ(api.CLRFIL(dat), 0);
  EXPECT_FALSE(std::filesystem::exists("byname.idx"));
  EXPECT_TRUE(std::filesystem::exists("side.idx"));
  ASSERT_EQ(api.OPNRFIL(dat, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(IndexCount(dat), 1);
  EXPECT_EQ(api.IDXENT(dat + 1), 6);
}

TEST_F(EngineProcess, RebuildRemovesTheTemporaryIndexOfAProcessThatDied) {
  COUNT dat = CreateCustomers();
  for (int id = 1; id <= 5; ++id) ASSERT_EQ(Add(dat, id, "n", "C"), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  pid_t pid = Spawn([&](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 1;
    IFIL add = ByName(0);
    return e.TMPIIDXX(&add, 0, nullptr, nullptr) == 0 ? 0 : 2;
  });
  ASSERT_EQ(Wait(pid), 0);
  EXPECT_TRUE(std::filesystem::exists("byname.idx"));
  ASSERT_EQ(api.RBLIFIL(&def_.ifil), 0);
  EXPECT_FALSE(std::filesystem::exists("byname.idx"));
  ASSERT_EQ(api.OPNRFIL(dat, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(api.GETFIL(dat + 3, FILTYP), -1);
  EXPECT_EQ(api.IDXENT(dat + 2), 5);
}


// The number of named databases in the engine file at path (read behind the engine's back;
// the file must not be open in this process).
size_t NamedDatabases(const char* path) {
  MDB_env* env = nullptr;
  size_t n = 0;
  mdb_env_create(&env);
  MDB_txn* txn = nullptr;
  MDB_stat st{};
  if (mdb_env_open(env, path, MDB_NOSUBDIR | MDB_RDONLY | MDB_NOLOCK, 0644) == 0 &&
      mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn) == 0 && mdb_stat(txn, 0, &st) == 0)
    n = st.ms_entries;
  if (txn) mdb_txn_abort(txn);
  mdb_env_close(env);
  return n;
}

struct DyingSet {
  int (*begin)(EngineApi&);
  int (*end)(EngineApi&);
  bool keepOpen;  // the parent has both files open meanwhile and reads them without reopening
  int bulk;       // records the set adds to the log file (enough spill its journal to disk)
};

// A set that wrote two files, ended in a child that the test hook makes exit right after the
// first file's commit: the next process to touch the files finds both as before the set.
void DieBetweenCommits(EngineApi& api, IFIL& customers, const DyingSet& how) {
  Customer kept = MakeCustomer(1, "kept", "K");
  ASSERT_EQ(api.ADDREC(customers.tfilno, &kept), 0);
  ASSERT_EQ(api.CREDAT(30, (pTEXT) "log.dat", 8, 0, SHARED), 0);
  ASSERT_EQ(api.ADDREC(30, (pTEXT) "kept...."), 0);
  ASSERT_EQ(api.CLIFIL(&customers), 0);
  ASSERT_EQ(api.CLSFIL(30, 0), 0);
  const size_t databases = NamedDatabases("log.dat");
  if (how.keepOpen) {
    ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
    ASSERT_EQ(api.OPNFIL(5, (pTEXT) "log.dat", SHARED), 0);
    EXPECT_EQ(api.DATENT(5), 1);
  }
  setenv("CTISAM_TEST_CRASH_BETWEEN_COMMITS", "1", 1);
  pid_t pid = Spawn([&](EngineApi& e) {
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0) return 1;
    if (e.OPNFIL(5, (pTEXT) "log.dat", SHARED) != 0) return 4;
    if (how.begin(e) != 0) return 2;
    Customer c = MakeCustomer(2, "set", "S");
    if (e.ADDREC(0, &c) != 0) return 3;
    for (int i = 0; i <= how.bulk; ++i)
      if (e.ADDREC(5, (pTEXT) "set.....") != 0) return 3;
    how.end(e);
    return 7;  // the hook did not fire
  });
  unsetenv("CTISAM_TEST_CRASH_BETWEEN_COMMITS");
  ASSERT_EQ(Wait(pid), 0);
  // The journal lies next to the file that committed first (the one that joined the set last).
  EXPECT_TRUE(std::filesystem::exists("log.dat.setlog"));
  if (!how.keepOpen) {
    ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
    ASSERT_EQ(api.OPNFIL(5, (pTEXT) "log.dat", SHARED), 0);
  }
  EXPECT_EQ(api.DATENT(5), 1);
  EXPECT_EQ(api.DATENT(0), 1);
  char rec[8];
  ASSERT_EQ(api.LSTREC(5, rec), 0);
  EXPECT_EQ(std::string(rec, 8), "kept....");
  EXPECT_FALSE(std::filesystem::exists("log.dat.setlog"));
  // The files work normally afterwards, and an uninterrupted two-file set commits both.
  ASSERT_EQ(api.LKISAM(ENABLE), 0);
  Customer c = MakeCustomer(3, "after", "A");
  ASSERT_EQ(api.ADDREC(0, &c), 0);
  ASSERT_EQ(api.ADDREC(5, (pTEXT) "after..."), 0);
  ASSERT_EQ(api.LKISAM(FREE), 0);
  EXPECT_EQ(api.DATENT(0), 2);
  EXPECT_EQ(api.DATENT(5), 2);
  ASSERT_EQ(api.LKISAM(ENABLE), 0);
  ASSERT_EQ(api.ADDREC(0, &kept), KDUP_ERR);
  ASSERT_EQ(api.LKISAM(FREE), 0);
  EXPECT_FALSE(std::filesystem::exists("log.dat.setlog"));
  EXPECT_FALSE(std::filesystem::exists("log.dat.setspill"));
  ASSERT_EQ(api.CLSFIL(5, 0), 0);
  // The undone set dropped the database it had created (its set id) in the log file.
  EXPECT_EQ(NamedDatabases("log.dat"), databases + 1) << "only the committed set's id is new";
}

int LockSetBegin(EngineApi& e) { return e.LKISAM(ENABLE); }
int LockSetEnd(EngineApi& e) { return e.LKISAM(FREE); }
int TranBegin(EngineApi& e) { return e.TRANBEG(ENABLE) > 0 ? 0 : 1; }
int TranEnd(EngineApi& e) { return e.TRANEND(FREE); }
// A transaction without a lock mode takes no record locks.
int TranBeginUnlocked(EngineApi& e) { return e.TRANBEG(0) > 0 ? 0 : 1; }

class DyingSets : public EngineTest, public ::testing::WithParamInterface<DyingSet> {};

TEST_P(DyingSets, SetDyingBetweenFileCommitsIsUndoneForTheNextToTouchTheFiles) {
  CreateCustomers();
  DieBetweenCommits(api, def_.ifil, GetParam());
}

INSTANTIATE_TEST_SUITE_P(EngineProcess, DyingSets,
                         ::testing::Values(DyingSet{LockSetBegin, LockSetEnd, false, 0},
                                           DyingSet{TranBegin, TranEnd, false, 0},
                                           DyingSet{TranBegin, TranEnd, true, 0},
                                           DyingSet{TranBeginUnlocked, TranEnd, true, 40000}));

// One process commits transactions over two files while another opens and closes them in a
// loop: an opener never undoes a set whose writer is alive, so nothing committed is lost and
// the files stay writable.
TEST_F(EngineProcess, OpenersDuringMultiFileCommitsLoseNothing) {
  CreateCustomers();
  ASSERT_EQ(api.CREDAT(30, (pTEXT) "log.dat", 8, 0, SHARED), 0);
  ASSERT_EQ(api.CLIFIL(&def_.ifil), 0);
  ASSERT_EQ(api.CLSFIL(30, 0), 0);
  constexpr int kSets = 150;
  int done[2];
  ASSERT_EQ(pipe(done), 0);
  pid_t writer = Spawn([&](EngineApi& e) {
    close(done[0]);
    if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0 || e.OPNFIL(5, (pTEXT) "log.dat", SHARED) != 0) return 1;
    for (int id = 0; id < kSets; ++id) {
      if (e.TRANBEG(ENABLE) <= 0) return 2;
      Customer c = MakeCustomer(id, "w", "W");
      if (e.ADDREC(5, (pTEXT) "entry...") != 0 || e.ADDREC(0, &c) != 0) return 3;
      if (e.TRANEND(FREE) != 0) return 4;
    }
    return 0;
  });
  pid_t opener = Spawn([&](EngineApi& e) {
    close(done[1]);
    fcntl(done[0], F_SETFL, O_NONBLOCK);
    char b;
    do {
      if (e.OPNRFIL(0, (pTEXT) "customers.dat", SHARED) != 0 || e.OPNFIL(5, (pTEXT) "log.dat", SHARED) != 0) return 1;
      if (e.DATENT(0) < 0) return 3;
      if (e.CLRFIL(0) != 0 || e.CLSFIL(5, 0) != 0) return 2;
    } while (read(done[0], &b, 1) != 0);
    return 0;
  });
  close(done[0]);
  close(done[1]);
  EXPECT_EQ(Wait(writer), 0);
  EXPECT_EQ(Wait(opener), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  ASSERT_EQ(api.OPNFIL(5, (pTEXT) "log.dat", SHARED), 0);
  EXPECT_EQ(api.DATENT(0), kSets);
  EXPECT_EQ(api.DATENT(5), kSets);
  EXPECT_EQ(api.IDXENT(1), kSets);
  EXPECT_EQ(Add(0, kSets, "after", "A"), 0);
  EXPECT_EQ(api.ADDREC(5, (pTEXT) "after..."), 0);
  EXPECT_EQ(api.DATENT(0), kSets + 1);
}

TEST_F(EngineProcess, MillionRecordTransactionCommitsAndAnAbortedOneLeavesNoTrace) {
  LargeTransactionRoundTrip(api, CreateCustomers(), 1000000);
}

}  // namespace
