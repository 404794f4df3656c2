// Engine_test: records, keys, navigation and contexts through the loaded library.
#include <algorithm>
#include <set>

#include "EngineFixture.h"

extern "C" int ct_c_round_trip(const char* libpath);

namespace {

using Engine = EngineTest;

int IdOfKey(const uint8_t* key) {
  uint32_t v = (uint32_t{key[0]} << 24) | (key[1] << 16) | (key[2] << 8) | key[3];
  return static_cast<int32_t>(v ^ 0x80000000u);
}

TEST_F(Engine, CallableFromCThroughTheHeader) {
  EXPECT_EQ(ct_c_round_trip((std::string(CT_LIBRARY_DIR) + "/libctstd32b.so").c_str()), 0);
}

TEST_F(Engine, SessionStartsOnceAndRefusesServers) {
  EXPECT_EQ(api.INTISAMX(10, 64, 16, 10, 0, nullptr, nullptr, nullptr), IINT_ERR);
  EXPECT_EQ(api.CLISAM(), 0);
  EXPECT_EQ(api.DATENT(0), 0);
  EXPECT_EQ(LastError(), FINT_ERR);
  EXPECT_EQ(api.INTISAMX(10, 64, 16, 10, 0, nullptr, nullptr, (pTEXT) "server"), NSRV_ERR);
  EXPECT_EQ(api.INTISAM(10, 64, 16), 0);
}

TEST_F(Engine, AddedRecordsComeBackInPhysicalAndKeyOrder) {
  COUNT dat = CreateCustomers();
  ASSERT_GE(dat, 0);
  const int ids[] = {5, -3, 12, 0, -40, 7};
  const char* cities[] = {"Paris", "Oslo", "Paris", "Bern", "Oslo", "Athens"};
  for (int i = 0; i < 6; ++i) ASSERT_EQ(Add(dat, ids[i], ("n" + std::to_string(i)).c_str(), cities[i]), 0);
  EXPECT_EQ(api.DATENT(dat), 6);
  EXPECT_EQ(api.IDXENT(dat + 1), 6);
  EXPECT_EQ(api.IDXENT(dat + 2), 6);

  Customer c{};
  std::vector<int> physical;
  LONG lastPos = 0;
  for (COUNT rc = api.FRSREC(dat, &c); rc == 0; rc = api.NXTREC(dat, &c)) {
    physical.push_back(c.id);
    LONG pos = api.GETCURP(dat);
    EXPECT_GT(pos, lastPos);
    lastPos = pos;
  }
  EXPECT_EQ(LastError(), INOT_ERR);
  EXPECT_EQ(physical, std::vector<int>(std::begin(ids), std::end(ids)));

  std::vector<int> byId;
  for (COUNT rc = api.FRSREC(dat + 1, &c); rc == 0; rc = api.NXTREC(dat + 1, &c)) byId.push_back(c.id);
  EXPECT_EQ(byId, (std::vector<int>{-40, -3, 0, 5, 7, 12}));

  std::vector<std::string> byCity;
  for (COUNT rc = api.LSTREC(dat + 2, &c); rc == 0; rc = api.PRVREC(dat + 2, &c))
    byCity.push_back(std::string(c.city) + "/" + c.name);
  EXPECT_EQ(byCity, (std::vector<std::string>{"Paris/n2", "Paris/n0", "Oslo/n4", "Oslo/n1", "Bern/n3",
                                               "Athens/n5"}));
}

TEST_F(Engine, UniqueClashReturns2AndWritesNothing) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "a", "X"), 0);
  EXPECT_EQ(Add(dat, 1, "b", "Y"), KDUP_ERR);
  EXPECT_EQ(api.DATENT(dat), 1);
  EXPECT_EQ(api.IDXENT(dat + 2), 1);
  Customer c{};
  ASSERT_EQ(api.FRSREC(dat + 2, &c), 0);
  EXPECT_STREQ(c.name, "a");
}

TEST_F(Engine, KeyDrivenScanWithSetcuriMatchesTheDriversWay) {
  COUNT dat = CreateCustomers();
  for (int i = 0; i < 50; ++i) ASSERT_EQ(Add(dat, 49 - i, "x", i % 2 ? "B" : "A"), 0);
  uint8_t key[54];
  Customer c{};
  int n = 0, last = -1;
  for (LONG pos = api.FRSKEY(dat + 1, key); pos; pos = api.NXTKEY(dat + 1, key)) {
    ASSERT_EQ(api.SETCURI(dat, pos, nullptr, 0), 0);
    ASSERT_EQ(api.RRDREC(dat, &c), 0);
    EXPECT_EQ(c.id, IdOfKey(key));
    EXPECT_GT(c.id, last);
    last = c.id;
    ++n;
  }
  EXPECT_EQ(n, 50);
  EXPECT_EQ(LastError(), INOT_ERR);
}

TEST_F(Engine, KeySearchesFindEqualFollowingAndPreceding) {
  COUNT dat = CreateCustomers();
  for (int id : {10, 20, 30}) ASSERT_EQ(Add(dat, id, "n", "c"), 0);
  Customer probe = MakeCustomer(20, "", "");
  uint8_t target[4], found[4];
  ASSERT_EQ(api.frmkey(dat + 1, (pTEXT) &probe, (pTEXT) target, 0, 0), 4);
  Customer c{};
  ASSERT_EQ(api.EQLREC(dat + 1, target, &c), 0);
  EXPECT_EQ(c.id, 20);
  ASSERT_EQ(api.GTREC(dat + 1, target, &c), 0);
  EXPECT_EQ(c.id, 30);
  ASSERT_EQ(api.LTREC(dat + 1, target, &c), 0);
  EXPECT_EQ(c.id, 10);
  ASSERT_EQ(api.GTEREC(dat + 1, target, &c), 0);
  EXPECT_EQ(c.id, 20);
  ASSERT_EQ(api.LTEREC(dat + 1, target, &c), 0);
  EXPECT_EQ(c.id, 20);
  probe.id = 25;
  api.frmkey(dat + 1, (pTEXT) &probe, (pTEXT) target, 0, 0);
  EXPECT_EQ(api.EQLREC(dat + 1, target, &c), INOT_ERR);
  EXPECT_NE(api.GTEKEY(dat + 1, target, found), 0);
  EXPECT_EQ(IdOfKey(found), 30);
  EXPECT_NE(api.LTEKEY(dat + 1, target, found), 0);
  EXPECT_EQ(IdOfKey(found), 20);
  probe.id = 99;
  api.frmkey(dat + 1, (pTEXT) &probe, (pTEXT) target, 0, 0);
  EXPECT_EQ(api.GTKEY(dat + 1, target, found), 0);
  EXPECT_EQ(LastError(), INOT_ERR);
  EXPECT_NE(api.LTKEY(dat + 1, target, found), 0);
  EXPECT_EQ(IdOfKey(found), 30);
}

TEST_F(Engine, RewriteMovesOnlyChangedKeysAndRefusesClashes) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "ann", "Oslo"), 0);
  ASSERT_EQ(Add(dat, 2, "bob", "Oslo"), 0);
  Customer c{};
  Customer k = MakeCustomer(1, "", "");
  uint8_t target[4];
  api.frmkey(dat + 1, (pTEXT) &k, (pTEXT) target, 0, 0);
  ASSERT_EQ(api.EQLREC(dat + 1, target, &c), 0);
  std::strcpy(c.city, "Rome");
  ASSERT_EQ(api.RWTREC(dat, &c), 0);
  Customer lo = MakeCustomer(0, "", "Oslo"), hi = MakeCustomer(0, "", "Oslo");
  std::memset(hi.name, 0xFF, sizeof hi.name);
  uint8_t low[54], high[54];
  api.frmkey(dat + 2, (pTEXT) &lo, (pTEXT) low, 0, 0);
  api.frmkey(dat + 2, (pTEXT) &hi, (pTEXT) high, 0x7FFFFFFF, 0);
  EXPECT_EQ(api.RNGENT(dat + 2, low, high), 1);
  c.id = 2;
  EXPECT_EQ(api.RWTREC(dat, &c), KDUP_ERR);
  ASSERT_EQ(api.RRDREC(dat, &c), 0);
  EXPECT_EQ(c.id, 1);
  EXPECT_STREQ(c.city, "Rome");
  EXPECT_EQ(api.IDXENT(dat + 1), 2);
}

TEST_F(Engine, DeleteKeepsThePlaceForTheNextStep) {
  COUNT dat = CreateCustomers();
  for (int id = 1; id <= 5; ++id) ASSERT_EQ(Add(dat, id, "n", "c"), 0);
  Customer c{};
  ASSERT_EQ(api.FRSREC(dat + 1, &c), 0);
  ASSERT_EQ(api.NXTREC(dat + 1, &c), 0);
  ASSERT_EQ(api.DELREC(dat), 0);
  EXPECT_EQ(api.RRDREC(dat, &c), ICUR_ERR);
  ASSERT_EQ(api.NXTREC(dat + 1, &c), 0);
  EXPECT_EQ(c.id, 3);
  ASSERT_EQ(api.DELREC(dat), 0);
  ASSERT_EQ(api.PRVREC(dat, &c), 0);
  EXPECT_EQ(c.id, 1);
  EXPECT_EQ(api.DATENT(dat), 3);
  EXPECT_EQ(api.IDXENT(dat + 1), 3);
  EXPECT_EQ(api.IDXENT(dat + 2), 3);
}

TEST_F(Engine, SegmentTransformsOrderValuesLikeTheirTypes) {
  // id as INTSEG (unsigned), balance as descending float, name upper-cased.
  ISEG s0[1] = {{0, 4, INTSEG}};
  ISEG s1[1] = {{54, 8, FLTSEG | DSCSEG}};
  ISEG s2[1] = {{4, 30, UREGSEG}};
  IIDX ix[3] = {{4, 0, 0, 0, 0, 1, s0, nullptr, nullptr, nullptr, nullptr},
                {12, 0, 1, 0, 0, 1, s1, nullptr, nullptr, nullptr, nullptr},
                {34, 0, 1, 0, 0, 1, s2, nullptr, nullptr, nullptr, nullptr}};
  IFIL f = {(pTEXT) "types", -1, sizeof(Customer), 0, EXCLUSIVE, 3, 0, EXCLUSIVE, ix, nullptr, nullptr, -1};
  ASSERT_EQ(api.CREIFIL(&f), 0);
  COUNT dat = f.tfilno;
  ASSERT_EQ(Add(dat, 3, "bob", "", -2.5), 0);
  ASSERT_EQ(Add(dat, -1, "Al", "", 10.0), 0);
  ASSERT_EQ(Add(dat, 200, "al", "", -0.0001), 0);
  ASSERT_EQ(Add(dat, 0, "Cy", "", 1e9), 0);
  Customer c{};
  std::vector<int> ids;
  for (COUNT rc = api.FRSREC(dat + 1, &c); rc == 0; rc = api.NXTREC(dat + 1, &c)) ids.push_back(c.id);
  EXPECT_EQ(ids, (std::vector<int>{0, 3, 200, -1}));  // -1 is the largest unsigned value
  std::vector<double> balances;
  for (COUNT rc = api.FRSREC(dat + 2, &c); rc == 0; rc = api.NXTREC(dat + 2, &c)) balances.push_back(c.balance);
  EXPECT_EQ(balances, (std::vector<double>{1e9, 10.0, -0.0001, -2.5}));
  std::vector<std::string> names;
  for (COUNT rc = api.FRSREC(dat + 3, &c); rc == 0; rc = api.NXTREC(dat + 3, &c)) names.push_back(c.name);
  EXPECT_EQ(names[2], "bob");
  EXPECT_EQ(names[3], "Cy");
  uint8_t key[34];
  Customer probe = MakeCustomer(0, "aB", "");
  api.frmkey(dat + 3, (pTEXT) &probe, (pTEXT) key, 0x01020304, 0);
  EXPECT_EQ(std::string((char*) key, 2), "AB");
  EXPECT_EQ(key[30], 1);
  EXPECT_EQ(key[33], 4);
}

TEST_F(Engine, SchemaSegmentsUseFieldTypesAndNullKeysAreSuppressed) {
  DATOBJ doda[3] = {{(pTEXT) "id", nullptr, CT_INT4, 4, 0},
                    {(pTEXT) "name", nullptr, CT_FPSTRING, 30, 0},
                    {(pTEXT) "rest", nullptr, CT_ARRAY, 32, 0}};
  ISEG s[1] = {{1, 8, SCHSEG}};
  ISEG sid[1] = {{0, 4, SCHSEG}};
  IIDX ix[2] = {{4, 0, 0, 0, 0, 1, sid, nullptr, nullptr, nullptr, nullptr},
                {12, 0, 1, 1, ' ', 1, s, nullptr, nullptr, nullptr, nullptr}};
  IFIL f = {(pTEXT) "pstr", -1, sizeof(Customer), 0, EXCLUSIVE, 2, 0, EXCLUSIVE, ix, nullptr, nullptr, -1};
  ASSERT_EQ(api.CREIFIL(&f), 0);
  COUNT dat = f.tfilno;
  ASSERT_EQ(api.PUTDODA(dat, doda, 3), 0);
  auto add = [&](int id, const char* text) {
    Customer c{};
    c.id = id;
    c.name[0] = static_cast<char>(std::strlen(text));
    std::memcpy(c.name + 1, text, std::strlen(text));
    return api.ADDREC(dat, &c);
  };
  ASSERT_EQ(add(-5, "zed"), 0);
  ASSERT_EQ(add(7, "ab"), 0);
  ASSERT_EQ(add(8, ""), 0);
  EXPECT_EQ(api.IDXENT(dat + 2), 2);  // the empty name is a null key
  uint8_t key[12];
  ASSERT_NE(api.FRSKEY(dat + 2, key), 0);
  EXPECT_EQ(std::string((char*) key, 8), "ab      ");
  ASSERT_NE(api.FRSKEY(dat + 1, key), 0);
  EXPECT_EQ(IdOfKey(key), -5);
}

TEST_F(Engine, SerialSegmentNumbersRecords) {
  ISEG s[1] = {{62, 4, SRLSEG}};
  IIDX ix[1] = {{4, 0, 0, 0, 0, 1, s, nullptr, nullptr, nullptr, nullptr}};
  IFIL f = {(pTEXT) "serial", -1, sizeof(Customer), 0, EXCLUSIVE, 1, 0, EXCLUSIVE, ix, nullptr, nullptr, -1};
  ASSERT_EQ(api.CREIFIL(&f), 0);
  Customer c = MakeCustomer(1, "a", "b");
  ASSERT_EQ(api.ADDREC(f.tfilno, &c), 0);
  EXPECT_EQ(c.date, 1);
  ASSERT_EQ(api.ADDREC(f.tfilno, &c), 0);
  EXPECT_EQ(c.date, 2);
  EXPECT_EQ(api.SERIALNUM(f.tfilno), 2);
  EXPECT_EQ(api.IDXENT(f.tfilno + 1), 2);
}

TEST_F(Engine, CountsOrdinalsAndPercentiles) {
  COUNT dat = CreateCustomers();
  for (int id = 0; id < 100; ++id) ASSERT_EQ(Add(dat, id, "n", id < 30 ? "A" : "B"), 0);
  Customer lo = MakeCustomer(10, "", ""), hi = MakeCustomer(19, "", "");
  uint8_t low[4], high[4], key[4];
  api.frmkey(dat + 1, (pTEXT) &lo, (pTEXT) low, 0, 0);
  api.frmkey(dat + 1, (pTEXT) &hi, (pTEXT) high, 0, 0);
  EXPECT_EQ(api.RNGENT(dat + 1, low, high), 10);
  EXPECT_EQ(api.ESTKEY(dat + 1, high, low), 10);
  EXPECT_NE(api.ORDKEY(dat + 1, low, 5, key), 0);
  EXPECT_EQ(IdOfKey(key), 15);
  EXPECT_NE(api.FRCKEY(dat + 1, key, 50), 0);
  EXPECT_EQ(IdOfKey(key), 50);
  EXPECT_NE(api.NXTKEY(dat + 1, key), 0);
  EXPECT_EQ(IdOfKey(key), 51);
  EXPECT_EQ(api.FRCKEY(dat + 1, key, 101), 0);
  EXPECT_EQ(LastError(), CT_EBADARG);
}

TEST_F(Engine, ContextsKeepTheirOwnPositions) {
  COUNT dat = CreateCustomers();
  for (int id = 1; id <= 5; ++id) ASSERT_EQ(Add(dat, id, "n", "c"), 0);
  Customer c{};
  ASSERT_EQ(api.FRSREC(dat + 1, &c), 0);
  ASSERT_EQ(api.NXTREC(dat + 1, &c), 0);  // on 2
  COUNT ctx = api.OPNICON(dat, -1, 0);
  ASSERT_GT(ctx, 0);
  ASSERT_EQ(api.NXTREC(dat + 1, &c), 0);
  ASSERT_EQ(api.NXTREC(dat + 1, &c), 0);
  EXPECT_EQ(c.id, 4);
  ASSERT_EQ(api.CLSICON(ctx), 0);
  ASSERT_EQ(api.NXTREC(dat + 1, &c), 0);
  EXPECT_EQ(c.id, 3);
  EXPECT_EQ(api.CHGICON(ctx), CT_ENOCTX);
}

TEST_F(Engine, VariableLengthRecords) {
  ISEG s[1] = {{0, 4, SGNSEG}};
  IIDX ix[1] = {{4, 0, 0, 0, 0, 1, s, nullptr, nullptr, nullptr, nullptr}};
  IFIL f = {(pTEXT) "var", -1, 8, 0, EXCLUSIVE | VLENGTH, 1, 0, EXCLUSIVE, ix, nullptr, nullptr, -1};
  ASSERT_EQ(api.CREIFIL(&f), 0);
  COUNT dat = f.tfilno;
  char rec[100] = {};
  rec[0] = 1;
  std::memset(rec + 8, 'x', 50);
  ASSERT_EQ(api.ADDVREC(dat, rec, 58), 0);
  EXPECT_EQ(api.ADDVREC(dat, rec, 4), CT_EBADARG);
  EXPECT_EQ(api.GETVLEN(dat), 58);
  char small[10];
  EXPECT_EQ(api.REDVREC(dat, small, sizeof small), VBSZ_ERR);
  char back[100] = {};
  LONG len = sizeof back;
  ASSERT_EQ(api.FRSVREC(dat, back, &len), 0);
  EXPECT_EQ(len, 58);
  EXPECT_EQ(std::memcmp(back, rec, 58), 0);
  EXPECT_EQ(api.GTVLEN(dat, api.GETCURP(dat)), 58);
}

TEST_F(Engine, LowLevelRecordsAndKeys) {
  COUNT dat = CreateCustomers();
  LONG pos = api.NEWREC(dat);
  ASSERT_GT(pos, 0);
  Customer c = MakeCustomer(42, "low", "level");
  ASSERT_EQ(api.WRTREC(dat, pos, &c), 0);
  uint8_t key[4];
  api.frmkey(dat + 1, (pTEXT) &c, (pTEXT) key, pos, 0);
  ASSERT_EQ(api.ADDKEY(dat + 1, key, pos, 0), 0);
  EXPECT_EQ(api.ADDKEY(dat + 1, key, pos, 0), KDUP_ERR);
  EXPECT_EQ(api.EQLKEY(dat + 1, key), pos);
  Customer back{};
  ASSERT_EQ(api.REDREC(dat, pos, &back), 0);
  EXPECT_EQ(back.id, 42);
  EXPECT_EQ(api.DELCHK(dat + 1, key, pos + 4), INOT_ERR);
  ASSERT_EQ(api.DELCHK(dat + 1, key, pos), 0);
  EXPECT_EQ(api.IDXENT(dat + 1), 0);
  ASSERT_EQ(api.RETREC(dat, pos), 0);
  EXPECT_EQ(api.REDREC(dat, pos, &back), INOT_ERR);
}

TEST_F(Engine, EqlkeyOnADuplicateIndexMatchesThePositionToo) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "same", "Town"), 0);
  LONG first = api.GETCURP(dat);
  ASSERT_EQ(Add(dat, 2, "same", "Town"), 0);
  LONG second = api.GETCURP(dat);
  Customer c = MakeCustomer(0, "same", "Town");
  uint8_t key[54];
  for (LONG pos : {first, second}) {
    api.frmkey(dat + 2, (pTEXT) &c, (pTEXT) key, pos, 0);
    EXPECT_EQ(api.EQLKEY(dat + 2, key), pos);
  }
  api.frmkey(dat + 2, (pTEXT) &c, (pTEXT) key, 0, 0);
  EXPECT_EQ(api.EQLKEY(dat + 2, key), 0);
  EXPECT_EQ(LastError(), INOT_ERR);
  uint8_t found[54];
  EXPECT_EQ(api.GTEKEY(dat + 2, key, found), first);  // the range searches still find it
}

TEST_F(Engine, CurrentKeyFollowsSetcuriWithARecordImage) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 7, "g", "h"), 0);
  LONG pos = api.GETCURP(dat);
  ASSERT_EQ(api.UPDCURI(dat, 0), 0);
  EXPECT_EQ(api.GETCURP(dat), 0);
  uint8_t key[4];
  EXPECT_EQ(api.GETCURKL(dat + 1, key), ICUR_ERR);
  Customer c = MakeCustomer(7, "g", "h");
  ASSERT_EQ(api.SETCURI(dat, pos, &c, sizeof c), 0);
  LONG len = 0;
  ASSERT_EQ(api.GETCURK(dat + 1, key, &len), 0);
  EXPECT_EQ(len, 4);
  EXPECT_EQ(IdOfKey(key), 7);
  EXPECT_EQ(api.SETCURI(dat, pos + 1000, nullptr, 0), INOT_ERR);
}

}  // namespace
