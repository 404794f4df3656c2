// EngineIndexes_test: index conditions, indexes added to an open table, rebuild and compaction.
#include <fstream>

#include "EngineFixture.h"

namespace {

class EngineIndexes : public EngineTest {
 protected:
  std::string Condition(COUNT keyno) {
    LONG n = api.GETCIDX(keyno, 0, nullptr);
    if (n <= 0) return "<none>";
    std::string text(n, '\0');
    EXPECT_EQ(api.GETCIDX(keyno, n, text.data()), n);
    return text.c_str();
  }
};

TEST_F(EngineIndexes, ConditionDecidesWhichRecordsHaveKeysOnEveryWrite) {
  COUNT dat = Filled(30);
  EXPECT_EQ(Condition(dat + 2), "<none>");
  EXPECT_EQ(LastError(), NCON_ERR);
  ASSERT_EQ(api.UPDCIDX(dat + 2, (pTEXT) "balance > 100 && city <> 'Oslo'"), 0);
  EXPECT_EQ(Condition(dat + 2), "balance > 100 && city <> 'Oslo'");
  EXPECT_EQ(api.IDXENT(dat + 2), 13);  // ids 11..30 less the seven in Oslo
  Customer c{};
  ASSERT_EQ(api.FRSREC(dat + 2, &c), 0);
  EXPECT_STREQ(c.city, "Paris");
  EXPECT_GT(double{c.balance}, 100);

  ASSERT_EQ(Add(dat, 31, "new", "Rome", 500), 0);    // in
  ASSERT_EQ(Add(dat, 32, "poor", "Rome", 5), 0);     // out
  EXPECT_EQ(api.IDXENT(dat + 2), 14);
  ASSERT_EQ(Find(dat + 1, 32, c), 0);
  c.balance = 1000;
  ASSERT_EQ(api.RWTREC(dat, &c), 0);                  // moves in
  ASSERT_EQ(Find(dat + 1, 31, c), 0);
  std::strcpy(c.city, "Oslo");
  ASSERT_EQ(api.RWTREC(dat, &c), 0);                  // moves out
  EXPECT_EQ(api.IDXENT(dat + 2), 14);
  ASSERT_EQ(Find(dat + 1, 32, c), 0);
  ASSERT_EQ(api.DELREC(dat), 0);
  EXPECT_EQ(api.IDXENT(dat + 2), 13);

  // The condition is stored with the file; an empty one gives every record its key again.
  ASSERT_EQ(api.CLRFIL(dat), 0);
  ASSERT_EQ(api.OPNRFIL(dat, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(Condition(dat + 2), "balance > 100 && city <> 'Oslo'");
  ASSERT_EQ(api.UPDCIDX(dat + 2, (pTEXT) ""), 0);
  EXPECT_EQ(api.IDXENT(dat + 2), api.DATENT(dat));
  EXPECT_EQ(Condition(dat + 2), "<none>");
}

TEST_F(EngineIndexes, ConditionArithmeticTextAndPrecedence) {
  COUNT dat = Filled(12);
  ASSERT_EQ(api.UPDCIDX(dat + 2, (pTEXT) "(id % 4 == 0 || name == 'n1') && !(balance / 10 >= 12)"), 0);
  EXPECT_EQ(api.IDXENT(dat + 2), 3);  // ids 1, 4, 8
  ASSERT_EQ(api.UPDCIDX(dat + 2, (pTEXT) "city + \"!\" = 'Rome!' && -id < -6"), 0);
  EXPECT_EQ(api.IDXENT(dat + 2), 2);  // ids 8 and 11
}

TEST_F(EngineIndexes, MalformedConditionIsRefusedAndChangesNothing) {
  COUNT dat = Filled(10);
  ASSERT_EQ(api.UPDCIDX(dat + 2, (pTEXT) "id > 5"), 0);
  for (const char* bad : {"id >", "nosuch > 1", "name + 1 > 2", "'text'", "id > 'a'", "(id > 1", "id > 1 )",
                          "id >> 1", "city && id"})
    EXPECT_EQ(api.UPDCIDX(dat + 2, (pTEXT) bad), CT_EBADCOND) << bad;
  EXPECT_EQ(Condition(dat + 2), "id > 5");
  EXPECT_EQ(api.IDXENT(dat + 2), 5);
  EXPECT_EQ(api.UPDCIDX(dat, (pTEXT) "id > 1"), CT_ENOTIDX);
}

TEST_F(EngineIndexes, IndexAddedToOpenTableIsFilledMaintainedAndKept) {
  COUNT dat = Filled(20);
  IFIL add = ByName(dat);
  ASSERT_EQ(api.TMPIIDXX(&add, 0, nullptr, nullptr), 0);
  COUNT k = add.tfilno;
  ASSERT_GT(k, dat + 2);
  EXPECT_EQ(api.IDXENT(k), 20);
  ASSERT_EQ(api.PRMIIDX(&add), 0);
  ASSERT_EQ(Add(dat, 21, "aaa", "Rome"), 0);
  EXPECT_EQ(api.IDXENT(k), 21);
  Customer c{};
  ASSERT_EQ(api.FRSREC(k, &c), 0);
  EXPECT_STREQ(c.name, "aaa");

  // Added twice: refused, nothing changes.
  IFIL again = add;
  again.tfilno = -1;
  EXPECT_EQ(api.TMPIIDXX(&again, 0, nullptr, nullptr), DCRAT_ERR);
  again.pfilnam = (pTEXT) "other";
  EXPECT_EQ(api.TMPIIDXX(&again, 0, nullptr, nullptr), DCRAT_ERR);  // same index name
  EXPECT_FALSE(std::filesystem::exists("other.idx"));
  EXPECT_EQ(IndexCount(dat), 3);

  ASSERT_EQ(api.CLRFIL(dat), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(api.IDXENT(3), 21);
  ASSERT_EQ(api.LSTREC(3, &c), 0);
  EXPECT_STREQ(c.name, "n9");
}

TEST_F(EngineIndexes, UniqueClashWhileFillingLeavesTheTableAsItWas) {
  COUNT dat = Filled(6);
  OneIndexDef unique("cities", sizeof(Customer), SHARED, {{34, 20, REGSEG}});
  unique.ifil.dfilno = dat;
  unique.ix[0].ridxnam = (pTEXT) "city_unique";
  EXPECT_EQ(api.TMPIIDXX(&unique.ifil, 0, nullptr, nullptr), KDUP_ERR);
  EXPECT_FALSE(std::filesystem::exists("cities.idx"));
  // The next index added takes the key database the refused one had begun: it must be made anew,
  // not reached through the handle the refusal left behind.
  IFIL add = ByName(dat);
  ASSERT_EQ(api.TMPIIDXX(&add, 0, nullptr, nullptr), 0);
  EXPECT_EQ(api.IDXENT(add.tfilno), 6);
  ASSERT_EQ(Add(dat, 7, "aaa", "Rome"), 0);
  EXPECT_EQ(api.IDXENT(add.tfilno), 7);
  EXPECT_EQ(api.IDXENT(dat + 1), 7);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(api.GETFIL(3, FILTYP), -1);  // the added index was temporary: no third index
}

TEST_F(EngineIndexes, RebuildRepairsADamagedIndexFileAndLostKeys) {
  COUNT dat = Filled(50);
  for (int id = 1; id <= 10; ++id) ASSERT_EQ(api.DELBLD(dat + 1, IdKey(dat + 1, id).data()), 0);
  EXPECT_EQ(api.IDXENT(dat + 1), 40);
  IFIL ifil = def_.ifil;
  ASSERT_EQ(api.CLRFIL(dat), 0);
  { std::ofstream("customers.idx", std::ios::trunc) << std::string(5000, 'x'); }
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), FCRP_ERR);
  ASSERT_EQ(api.RBLIFIL(&ifil), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(api.IDXENT(1), 50);
  EXPECT_EQ(api.IDXENT(2), 50);
  Customer c{};
  ASSERT_EQ(Find(1, 3, c), 0);
  EXPECT_STREQ(c.name, "n3");
  EXPECT_EQ(api.RBLIFIL(&ifil), FNOP_ERR);  // the set is open
}

TEST_F(EngineIndexes, CompactionReclaimsDeletedSpaceAndKeepsRecords) {
  COUNT dat = Filled(3000);
  Customer c{};
  for (COUNT rc = api.FRSREC(dat, &c); rc == 0; rc = api.NXTREC(dat, &c))
    if (c.id % 10) {
      ASSERT_EQ(api.DELREC(dat), 0);
    }
  IFIL ifil = def_.ifil;
  ASSERT_EQ(api.CLRFIL(dat), 0);
  auto before = std::filesystem::file_size("customers.dat");
  ASSERT_EQ(api.CMPIFIL(&ifil), 0);
  EXPECT_LT(std::filesystem::file_size("customers.dat"), before);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(api.DATENT(0), 300);
  EXPECT_EQ(api.IDXENT(2), 300);
  ASSERT_EQ(Find(1, 2990, c), 0);
  EXPECT_EQ(double{c.balance}, 29900);
  EXPECT_EQ(Add(0, 5000, "later", "Oslo"), 0);
}

}  // namespace
