// EngineLocks_test: record locks between handles, lock sets and transactions through the library.
#include "EngineFixture.h"

namespace {

using EngineLocks = EngineTest;

TEST_F(EngineLocks, WriteLockOfOneHandleStopsAnotherHandleAndReadLocksShare) {
  COUNT a = CreateCustomers();
  ASSERT_EQ(Add(a, 1, "one", "X", 10), 0);
  ASSERT_EQ(api.OPNRFIL(20, (pTEXT) "customers.dat", SHARED), 0);
  Customer c{};
  ASSERT_EQ(Find(a + 1, 1, c), 0);
  LONG pos = api.GETCURP(a);
  ASSERT_EQ(api.LOKREC(a, ENABLE, pos), 0);
  EXPECT_EQ(api.LOKREC(20, ENABLE, pos), DLOK2_ERR);
  EXPECT_EQ(api.LOKREC(20, READREC, pos), DLOK2_ERR);
  ASSERT_EQ(Find(21, 1, c), 0);
  c.balance = 99;
  EXPECT_EQ(api.RWTREC(20, &c), DLOK2_ERR);
  EXPECT_EQ(api.DELREC(20), DLOK2_ERR);
  EXPECT_EQ(api.DATENT(20), 1);
  ASSERT_EQ(api.RWTREC(a, &c), 0);  // the owner may change it
  ASSERT_EQ(api.LOKREC(a, FREE, pos), 0);
  EXPECT_EQ(api.LOKREC(a, FREE, pos), DLOK_ERR);
  // Read locks share and block a writer; the last reader may take the write lock.
  ASSERT_EQ(api.LOKREC(a, READREC, pos), 0);
  EXPECT_EQ(api.LOKREC(20, READREC, pos), 0);
  EXPECT_EQ(api.LOKREC(20, ENABLE, pos), DLOK2_ERR);
  ASSERT_EQ(api.LOKREC(a, FREE, pos), 0);
  EXPECT_EQ(api.LOKREC(20, ENABLE, pos), 0);
  // Closing the file releases its locks.
  ASSERT_EQ(api.CLRFIL(20), 0);
  EXPECT_EQ(api.LOKREC(a, ENABLE, pos), 0);
}

TEST_F(EngineLocks, BlockingLockTimesOutWith156) {
  setenv("CTISAM_LOCK_TIMEOUT_MS", "150", 1);
  api.CLISAM();
  ASSERT_EQ(api.INTISAM(10, 64, 16), 0);
  unsetenv("CTISAM_LOCK_TIMEOUT_MS");
  COUNT a = CreateCustomers();
  ASSERT_EQ(Add(a, 1, "one", "X"), 0);
  LONG pos = api.GETCURP(a);
  ASSERT_EQ(api.OPNRFIL(20, (pTEXT) "customers.dat", SHARED), 0);
  ASSERT_EQ(api.LOKREC(a, ENABLE, pos), 0);
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(api.LOKREC(20, ENABLE_BLK, pos), DTMO_ERR);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
  ASSERT_EQ(api.LKISAM(ENABLE_BLK), 0);
  Customer c{};
  EXPECT_EQ(api.FRSREC(20, &c), DTMO_ERR);
  EXPECT_EQ(api.GETCURP(20), 0);  // the refused read left no current record
  ASSERT_EQ(api.LKISAM(FREE), 0);
}

TEST_F(EngineLocks, LockSetLocksWhatItReadsAndFreeReleases) {
  COUNT a = CreateCustomers();
  for (int id = 1; id <= 3; ++id) ASSERT_EQ(Add(a, id, "n", "X"), 0);
  ASSERT_EQ(api.OPNRFIL(20, (pTEXT) "customers.dat", SHARED), 0);
  Customer c{};
  ASSERT_EQ(api.LKISAM(ENABLE), 0);
  ASSERT_EQ(Find(a + 1, 2, c), 0);
  LONG pos2 = api.GETCURP(a);
  ASSERT_EQ(Find(21, 2, c), DLOK2_ERR);
  ASSERT_EQ(Find(21, 3, c), 0);  // the other handle is not in a lock set of its own...
  EXPECT_EQ(api.LOKREC(a, ENABLE, api.GETCURP(20)), DLOK2_ERR);  // ...but it shares this one
  ASSERT_EQ(api.LKISAM(SUSPEND), 0);
  ASSERT_EQ(Find(a + 1, 1, c), 0);  // suspended: no lock taken
  EXPECT_EQ(api.LOKREC(20, ENABLE, api.GETCURP(a)), 0);
  ASSERT_EQ(api.LKISAM(RESTORE), 0);
  ASSERT_EQ(api.LKISAM(FREE), 0);
  EXPECT_EQ(api.LOKREC(20, ENABLE, pos2), 0);
  EXPECT_EQ(api.LKISAM(SUSPEND), CT_ETRAN);
}

TEST_F(EngineLocks, LockSetWritesBecomeVisibleTogetherAtFree) {
  COUNT a = CreateCustomers();
  ASSERT_EQ(Add(a, 1, "one", "X", 1), 0);
  ASSERT_EQ(api.LKISAM(ENABLE), 0);
  ASSERT_EQ(Add(a, 2, "two", "Y"), 0);
  Customer c{};
  ASSERT_EQ(Find(a + 1, 1, c), 0);
  c.balance = 5;
  ASSERT_EQ(api.RWTREC(a, &c), 0);
  EXPECT_EQ(Add(a, 2, "dup", "Z"), KDUP_ERR);  // a failed call inside the set writes nothing
  EXPECT_EQ(api.DATENT(a), 2);                   // the set reads its own writes
  ASSERT_EQ(Find(a + 1, 2, c), 0);
  EXPECT_STREQ(c.name, "two");
  ASSERT_EQ(api.LKISAM(FREE), 0);
  EXPECT_EQ(api.DATENT(a), 2);
  EXPECT_EQ(api.IDXENT(a + 2), 2);
  ASSERT_EQ(Find(a + 1, 1, c), 0);
  EXPECT_EQ(double{c.balance}, 5);
}

TEST_F(EngineLocks, TransactionAbortLeavesNoTraceAndSavePointsRollBackPart) {
  COUNT a = CreateCustomers();
  ASSERT_EQ(Add(a, 1, "one", "X"), 0);
  EXPECT_EQ(api.TRANEND(FREE), CT_ETRAN);
  ASSERT_GT(api.TRANBEG(ENABLE), 0);
  EXPECT_EQ(api.TRANBEG(ENABLE), 0);
  EXPECT_EQ(LastError(), CT_ETRAN);
  ASSERT_EQ(Add(a, 2, "two", "X"), 0);
  ASSERT_EQ(api.DELREC(a), 0);
  ASSERT_EQ(api.TRANABT(), 0);
  EXPECT_EQ(api.DATENT(a), 1);
  EXPECT_EQ(api.IDXENT(a + 1), 1);

  ASSERT_GT(api.TRANBEG(0), 0);
  ASSERT_EQ(Add(a, 10, "ten", "X"), 0);
  COUNT sp = api.TRANSAV();
  ASSERT_EQ(sp, 1);
  ASSERT_EQ(Add(a, 11, "eleven", "X"), 0);
  ASSERT_EQ(api.TRANSAV(), 2);
  ASSERT_EQ(Add(a, 12, "twelve", "X"), 0);
  ASSERT_EQ(api.TRANRST(sp), 0);
  EXPECT_EQ(api.DATENT(a), 2);
  ASSERT_EQ(Add(a, 13, "thirteen", "X"), 0);
  EXPECT_EQ(api.TRANRST(2), CT_ETRAN);
  ASSERT_EQ(api.TRANEND(FREE), 0);
  EXPECT_EQ(api.DATENT(a), 3);
  Customer c{};
  EXPECT_EQ(Find(a + 1, 10, c), 0);
  EXPECT_EQ(Find(a + 1, 11, c), INOT_ERR);
  EXPECT_EQ(Find(a + 1, 13, c), 0);
}

TEST_F(EngineLocks, TransactionSpansFilesAndSessionEndDiscardsIt) {
  COUNT a = CreateCustomers();
  ASSERT_EQ(api.CREDAT(30, (pTEXT) "log.dat", 8, 0, SHARED), 0);
  ASSERT_GT(api.TRANBEG(ENABLE), 0);
  ASSERT_EQ(Add(a, 1, "one", "X"), 0);
  char entry[8] = "added1";
  ASSERT_EQ(api.ADDREC(30, entry), 0);
  ASSERT_EQ(api.CLISAM(), 0);
  ASSERT_EQ(api.INTISAM(10, 64, 16), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  ASSERT_EQ(api.OPNFIL(5, (pTEXT) "log.dat", SHARED), 0);
  EXPECT_EQ(api.DATENT(0), 0);
  EXPECT_EQ(api.DATENT(5), 0);
  ASSERT_GT(api.TRANBEG(ENABLE), 0);
  ASSERT_EQ(Add(0, 1, "one", "X"), 0);
  ASSERT_EQ(api.ADDREC(5, entry), 0);
  ASSERT_EQ(api.TRANEND(FREE), 0);
  EXPECT_EQ(api.DATENT(0), 1);
  EXPECT_EQ(api.DATENT(5), 1);
}

TEST_F(EngineLocks, LargeTransactionCommitsAndAnAbortedOneLeavesNoTrace) {
  LargeTransactionRoundTrip(api, CreateCustomers(), 20000);
}

// Each transaction rewrites every record, moving its city key: it copies most pages and frees
// the old copies. The next ones reuse what the one before freed, so the file nearly stops
// growing (without that reuse, two more rewrites grow it by half).
TEST_F(EngineLocks, BackToBackLargeTransactionsReuseThePagesTheOtherFreed) {
  const COUNT dat = CreateCustomers();
  constexpr int kRecords = 6000;
  auto rewriteAll = [&](const char* city) {
    ASSERT_GT(api.TRANBEG(ENABLE), 0);
    Customer c{};
    for (int id = 0; id < kRecords; ++id) {
      ASSERT_EQ(Find(dat + 1, id, c), 0) << id;
      std::strncpy(c.city, (city + std::to_string(id % 97)).c_str(), sizeof c.city);
      ASSERT_EQ(api.RWTREC(dat, &c), 0) << id;
    }
    ASSERT_EQ(api.TRANEND(FREE), 0);
  };
  ASSERT_GT(api.TRANBEG(ENABLE), 0);
  for (int id = 0; id < kRecords; ++id) ASSERT_EQ(Add(dat, id, ("n" + std::to_string(id)).c_str(), "Lima"), 0);
  ASSERT_EQ(api.TRANEND(FREE), 0);
  rewriteAll("Quito");
  const auto grown = std::filesystem::file_size("customers.dat");
  rewriteAll("Cusco");
  rewriteAll("Arica");
  EXPECT_LT(std::filesystem::file_size("customers.dat"), grown + grown / 8);
}

// A call that fails after its first write inside a transaction writes nothing: here the
// unique id index comes after the duplicate-allowing city index, so the city key is written
// before the id clashes.
TEST_F(EngineLocks, CallFailingAfterItsFirstWriteInsideATransactionWritesNothing) {
  std::swap(def_.idx[0], def_.idx[1]);
  COUNT a = CreateCustomers();
  ASSERT_GT(api.TRANBEG(0), 0);
  ASSERT_EQ(Add(a, 1, "one", "Oslo"), 0);
  ASSERT_EQ(Add(a, 2, "two", "Bern"), 0);
  EXPECT_EQ(Add(a, 1, "clash", "Rome"), KDUP_ERR);
  EXPECT_EQ(api.IDXENT(a + 1), 2);
  Customer c{};
  ASSERT_EQ(Find(a + 2, 2, c), 0);
  Customer moved = MakeCustomer(1, "two", "Rome");
  EXPECT_EQ(api.RWTREC(a, &moved), KDUP_ERR);  // the city key moved before the id clashed
  ASSERT_EQ(api.TRANEND(FREE), 0);
  EXPECT_EQ(api.DATENT(a), 2);
  EXPECT_EQ(api.IDXENT(a + 1), 2);
  EXPECT_EQ(api.IDXENT(a + 2), 2);
  std::vector<char> city(54, 0);
  std::strncpy(city.data(), "Rome", 20);
  char found[64];
  EXPECT_EQ(api.GTEKEY(a + 1, city.data(), found), 0) << "no key of Rome was left behind";
  ASSERT_EQ(Find(a + 2, 2, c), 0);
  EXPECT_STREQ(c.city, "Bern");
}

}  // namespace
