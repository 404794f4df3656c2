// EngineMapping_test: index files opened on their own and mapped onto a table (setimap),
// temporary indexes dropped at close, index files deleted with their keys.
#include "EngineFixture.h"

namespace {

class EngineMapping : public EngineTest {
 protected:
  // A closed table "side" of customer records whose index file side.idx holds one index on name.
  void MakeSide() {
    IFIL side = {(pTEXT) "side", -1, sizeof(Customer), 0, EXCLUSIVE, 1, 0, EXCLUSIVE, nameIdx, nullptr, nullptr, -1};
    ASSERT_EQ(api.CREIFIL(&side), 0);
    ASSERT_EQ(api.CLRFIL(side.tfilno), 0);
  }
  // Adds the index on name to the open table dat as a file of its own; returns its number.
  COUNT AddByName(COUNT dat, bool permanent) {
    IFIL add = ByName(dat, EXCLUSIVE);
    EXPECT_EQ(api.TMPIIDXX(&add, 0, nullptr, nullptr), 0);
    if (permanent) {
      EXPECT_EQ(api.PRMIIDX(&add), 0);
    }
    return add.tfilno;
  }
  COUNT Reopen(COUNT dat) {
    EXPECT_EQ(api.CLRFIL(dat), 0);
    EXPECT_EQ(api.OPNRFIL(dat, (pTEXT) "customers.dat", EXCLUSIVE), 0);
    return dat;
  }
};

TEST_F(EngineMapping, MappedIndexFileHasKeysUntilItCloses) {
  MakeSide();
  COUNT dat = Filled(20, EXCLUSIVE);
  const COUNT k = 20;
  ASSERT_EQ(api.OPNFIL(k, (pTEXT) "side.idx", EXCLUSIVE), 0);
  EXPECT_EQ(api.IDXENT(k), 0);
  EXPECT_EQ(LastError(), CT_EUNMAPPED);
  ASSERT_EQ(api.setimap(k, &def_.ifil, dat, 0), 0);
  EXPECT_EQ(api.IDXENT(k), 20);
  EXPECT_EQ(api.GETFIL(k, KEYDUP), 1);
  Customer c{};
  ASSERT_EQ(api.LSTREC(k, &c), 0);
  EXPECT_STREQ(c.name, "n9");
  ASSERT_EQ(Add(dat, 21, "aaa", "Rome"), 0);
  ASSERT_EQ(api.FRSREC(k, &c), 0);
  EXPECT_STREQ(c.name, "aaa");
  EXPECT_EQ(IndexCount(dat), 2);  // a mapped file is not part of the table's IFIL

  // Closing it takes the index out of the table; the file itself stays.
  ASSERT_EQ(api.CLSFIL(k, 0), 0);
  EXPECT_EQ(api.IDXENT(k), 0);
  EXPECT_EQ(LastError(), CT_ENOTOPEN);
  ASSERT_EQ(Add(dat, 22, "bbb", "Rome"), 0);
  EXPECT_EQ(api.IDXENT(dat + 2), 22);
  EXPECT_TRUE(std::filesystem::exists("side.idx"));
  Reopen(dat);
  EXPECT_EQ(api.GETFIL(dat + 3, FILTYP), -1);
  EXPECT_EQ(api.IDXENT(dat + 1), 22);
}

TEST_F(EngineMapping, MappingRefusesBadInputAndChangesNothing) {
  MakeSide();
  COUNT dat = Filled(5, EXCLUSIVE);
  const COUNT k = 20;
  EXPECT_EQ(api.setimap(k, &def_.ifil, dat, 0), CT_ENOTOPEN);
  ASSERT_EQ(api.OPNFIL(k, (pTEXT) "side.idx", EXCLUSIVE), 0);
  EXPECT_EQ(api.setimap(k, &def_.ifil, dat, 1), CT_EBADARG);
  EXPECT_EQ(api.setimap(k, &def_.ifil, dat + 1, 0), CT_ENOTDAT);
  EXPECT_EQ(api.setimap(k, &def_.ifil, 40, 0), CT_ENOTOPEN);
  EXPECT_EQ(api.setimap(k, nullptr, dat, 0), CT_EBADARG);
  IFIL bad = def_.ifil;
  bad.dreclen = 12;
  EXPECT_EQ(api.setimap(k, &bad, dat, 0), CT_EBADDEF);
  bad = def_.ifil;
  bad.pfilnam = nullptr;
  EXPECT_EQ(api.setimap(k, &bad, dat, 0), CT_EBADDEF);
  EXPECT_EQ(api.setimap(dat + 1, &def_.ifil, dat, 0), FUSE_ERR);  // already an index of a table
  EXPECT_EQ(api.setimap(dat, &def_.ifil, dat, 0), CT_ENOTIDX);
  EXPECT_EQ(IndexCount(dat), 2);

  // A file whose index is already part of the table (same name) is refused.
  ASSERT_EQ(api.CLSFIL(k, 0), 0);
  COUNT added = AddByName(dat, true);
  ASSERT_EQ(api.OPNFIL(k, (pTEXT) "side.idx", EXCLUSIVE), 0);
  EXPECT_EQ(api.setimap(k, &def_.ifil, dat, 0), DCRAT_ERR);
  EXPECT_EQ(IndexCount(dat), 3);
  EXPECT_EQ(api.IDXENT(added), 5);
  EXPECT_EQ(api.CLSFIL(k, 0), 0);
}

TEST_F(EngineMapping, TemporaryIndexGoesWhenItsTableCloses) {
  COUNT dat = Filled(8, EXCLUSIVE);
  COUNT k = AddByName(dat, false);
  EXPECT_EQ(api.IDXENT(k), 8);
  EXPECT_TRUE(std::filesystem::exists("byname.idx"));
  Reopen(dat);
  EXPECT_EQ(IndexCount(dat), 2);
  EXPECT_EQ(api.GETFIL(k, FILTYP), -1);
  EXPECT_FALSE(std::filesystem::exists("byname.idx"));
  // The end of the session closes the table too.
  AddByName(dat, false);
  ASSERT_EQ(api.CLISAM(), 0);
  ASSERT_EQ(api.INTISAMX(10, 64, 16, 10, 0, nullptr, nullptr, nullptr), 0);
  EXPECT_FALSE(std::filesystem::exists("byname.idx"));
  ASSERT_EQ(api.OPNRFIL(dat, (pTEXT) "customers.dat", EXCLUSIVE), 0);
  EXPECT_EQ(IndexCount(dat), 2);
  // A permanent one stays.
  k = AddByName(dat, true);
  Reopen(dat);
  EXPECT_EQ(IndexCount(dat), 3);
  EXPECT_EQ(api.IDXENT(dat + 3), 8);
}

TEST_F(EngineMapping, TemporaryIndexesStayWhileAnotherOpenHasTheTable) {
  COUNT dat = Filled(6);
  ASSERT_EQ(api.OPNRFIL(20, (pTEXT) "customers.dat", SHARED), 0);
  COUNT k = AddByName(dat, false);
  ASSERT_EQ(api.CLRFIL(dat), 0);  // the other open still has the table: the index stays
  EXPECT_EQ(IndexCount(20), 3);
  EXPECT_TRUE(std::filesystem::exists("byname.idx"));
  EXPECT_EQ(api.GETFIL(k, FILTYP), -1);
  ASSERT_EQ(Add(20, 7, "aaa", "Rome"), 0);
  ASSERT_EQ(api.CLRFIL(20), 0);  // the last open removes it
  EXPECT_FALSE(std::filesystem::exists("byname.idx"));
  ASSERT_EQ(api.OPNRFIL(dat, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(IndexCount(dat), 2);
  EXPECT_EQ(api.IDXENT(dat + 2), 7);
}

TEST_F(EngineMapping, AnotherOpenFollowsIndexesDroppedThroughTheFirst) {
  COUNT dat = Filled(6);
  COUNT k = AddByName(dat, true);
  ASSERT_EQ(api.OPNRFIL(20, (pTEXT) "customers.dat", SHARED), 0);  // by_name is 23 here
  IIDX two[2] = {def_.idx[0], nameIdx[0]};
  IFIL put = {(pTEXT) "customers", dat, sizeof(Customer), 0, SHARED, 2, 0, SHARED, two, nullptr, nullptr, -1};
  ASSERT_EQ(api.PUTIFIL(&put), 0);
  EXPECT_EQ(api.IDXENT(22), 0);
  EXPECT_EQ(LastError(), CT_ENOTOPEN);
  EXPECT_EQ(api.IDXENT(23), 6);
  ASSERT_EQ(Add(20, 7, "aaa", "Rome"), 0);
  Customer c{};
  ASSERT_EQ(api.FRSREC(23, &c), 0);
  EXPECT_STREQ(c.name, "aaa");
  EXPECT_EQ(api.IDXENT(k), 7);
  EXPECT_EQ(api.IDXENT(21), 7);
}

TEST_F(EngineMapping, DeletingAnIndexFileTakesItsKeysAndMovesLaterIndexesDown) {
  COUNT dat = Filled(10, EXCLUSIVE);
  COUNT k = AddByName(dat, true);
  // customers.idx holds both of the table's own indexes: both go, the added one stays usable.
  ASSERT_EQ(api.DELFIL(dat + 1), 0);
  EXPECT_FALSE(std::filesystem::exists("customers.idx"));
  EXPECT_EQ(api.IDXENT(dat + 2), 0);
  EXPECT_EQ(LastError(), CT_ENOTOPEN);
  EXPECT_EQ(IndexCount(dat), 1);
  EXPECT_EQ(api.IDXENT(k), 10);
  ASSERT_EQ(Add(dat, 11, "aaa", "Rome"), 0);
  Customer c{};
  ASSERT_EQ(api.FRSREC(k, &c), 0);
  EXPECT_STREQ(c.name, "aaa");
  EXPECT_EQ(api.DELFIL(dat + 1), CT_ENOTOPEN);  // deleted twice

  ASSERT_EQ(api.DELFIL(k), 0);
  EXPECT_FALSE(std::filesystem::exists("byname.idx"));
  EXPECT_EQ(IndexCount(dat), 0);
  EXPECT_EQ(api.DATENT(dat), 11);
  Reopen(dat);
  EXPECT_EQ(api.DATENT(dat), 11);
  EXPECT_EQ(api.GETFIL(dat + 1, FILTYP), -1);
}

TEST_F(EngineMapping, IndexFilesAreDeletedOnlyWhenOpenExclusively) {
  MakeSide();
  COUNT dat = Filled(3);
  EXPECT_EQ(api.DELFIL(dat + 1), FMOD_ERR);
  EXPECT_EQ(api.IDXENT(dat + 1), 3);
  ASSERT_EQ(api.OPNFIL(20, (pTEXT) "side.idx", SHARED), 0);
  EXPECT_EQ(api.DELFIL(20), FMOD_ERR);
  ASSERT_EQ(api.CLSFIL(20, 0), 0);
  ASSERT_EQ(api.OPNFIL(20, (pTEXT) "side.idx", EXCLUSIVE), 0);
  ASSERT_EQ(api.DELFIL(20), 0);
  EXPECT_FALSE(std::filesystem::exists("side.idx"));
  EXPECT_EQ(api.DELFIL(20), CT_ENOTOPEN);
  EXPECT_EQ(api.OPNFIL(20, (pTEXT) "side.idx", EXCLUSIVE), FNOP_ERR);
}

TEST_F(EngineMapping, IndexFileMadeMemberByMemberTakesItsSegmentsWhenMapped) {
  COUNT dat = Filled(10, EXCLUSIVE);
  ASSERT_EQ(api.CREIDX(20, (pTEXT) "extra.idx", 4, 0, 0, 1, 0, EXCLUSIVE), 0);
  EXPECT_EQ(api.CREIDX(25, (pTEXT) "extra.idx", 4, 0, 0, 0, 0, EXCLUSIVE), DCRAT_ERR);
  EXPECT_EQ(api.CREIDX(25, (pTEXT) "long.idx", CT_MAXKEYLEN + 1, 0, 0, 0, 0, EXCLUSIVE), CT_EKEYLEN);
  EXPECT_EQ(api.CREIDX(-1, (pTEXT) "neg.idx", 4, 0, 0, 0, 0, EXCLUSIVE), FNUM_ERR);
  EXPECT_EQ(api.CREIDX(dat, (pTEXT) "used.idx", 4, 0, 0, 0, 0, EXCLUSIVE), FUSE_ERR);
  EXPECT_FALSE(std::filesystem::exists("long.idx"));
  EXPECT_EQ(api.setimap(20, &def_.ifil, dat, 0), CT_EBADDEF);  // member 1 not defined yet
  EXPECT_EQ(api.CREMEM(20, 54, 0, 1, 2), CT_EBADARG);
  EXPECT_EQ(api.CREMEM(dat + 1, 54, 0, 1, 1), FUSE_ERR);
  ASSERT_EQ(api.CREMEM(20, 54, 0, 1, 1), 0);
  EXPECT_EQ(api.CREMEM(20, 54, 0, 1, 1), DCRAT_ERR);
  EXPECT_EQ(IndexCount(dat), 2);

  // Member j takes the segments of the IFIL's index j: by id, then by city and name.
  ASSERT_EQ(api.setimap(20, &def_.ifil, dat, 0), 0);
  EXPECT_EQ(api.IDXENT(20), 10);
  EXPECT_EQ(api.IDXENT(21), 10);
  Customer c{};
  ASSERT_EQ(api.LSTREC(20, &c), 0);
  EXPECT_EQ(c.id, 10);
  ASSERT_EQ(api.CLSFIL(21, 0), 0);
  ASSERT_EQ(api.CLSFIL(20, 0), 0);
  EXPECT_EQ(IndexCount(dat), 2);

  // A member whose key length differs from the IFIL's index is refused.
  ASSERT_EQ(api.CREIDX(20, (pTEXT) "wide.idx", 8, 0, 0, 0, 0, EXCLUSIVE), 0);
  EXPECT_EQ(api.setimap(20, &def_.ifil, dat, 0), CT_EBADDEF);
  ASSERT_EQ(api.DELFIL(20), 0);
  EXPECT_FALSE(std::filesystem::exists("wide.idx"));
}

TEST_F(EngineMapping, PutIfilWithFewerIndexesDropsTheOthersWithTheirKeys) {
  COUNT dat = Filled(10, EXCLUSIVE);
  COUNT k = AddByName(dat, true);
  IIDX two[2] = {def_.idx[0], nameIdx[0]};
  IFIL put = {(pTEXT) "customers", dat, sizeof(Customer), 0, EXCLUSIVE, 2, 0, EXCLUSIVE, two, nullptr, nullptr, -1};
  IIDX unknown[1] = {nameIdx[0]};
  unknown[0].ridxnam = (pTEXT) "nope";
  IFIL bad = put;
  bad.dnumidx = 1;
  bad.ix = unknown;
  EXPECT_EQ(api.PUTIFIL(&bad), CT_EBADDEF);
  IIDX four[4] = {def_.idx[0], def_.idx[1], nameIdx[0], nameIdx[0]};
  bad.dnumidx = 4;
  bad.ix = four;
  EXPECT_EQ(api.PUTIFIL(&bad), CT_EBADDEF);
  EXPECT_EQ(IndexCount(dat), 3);

  ASSERT_EQ(api.PUTIFIL(&put), 0);
  EXPECT_EQ(IndexCount(dat), 2);
  EXPECT_EQ(api.IDXENT(dat + 2), 0);
  EXPECT_EQ(LastError(), CT_ENOTOPEN);
  EXPECT_EQ(api.IDXENT(k), 10);
  ASSERT_EQ(Add(dat, 11, "aaa", "Rome"), 0);
  EXPECT_EQ(api.IDXENT(k), 11);
  EXPECT_TRUE(std::filesystem::exists("customers.idx"));
  Reopen(dat);
  EXPECT_EQ(api.IDXENT(dat + 1), 11);
  Customer c{};
  ASSERT_EQ(api.FRSREC(dat + 2, &c), 0);
  EXPECT_STREQ(c.name, "aaa");

  // Keeping only the index on name: customers.idx holds no index any more and goes.
  put.dnumidx = 1;
  put.ix = nameIdx;
  ASSERT_EQ(api.PUTIFIL(&put), 0);
  EXPECT_FALSE(std::filesystem::exists("customers.idx"));
  Reopen(dat);
  EXPECT_EQ(api.IDXENT(dat + 1), 11);
  EXPECT_EQ(api.GETFIL(dat + 2, FILTYP), -1);
}

}  // namespace
