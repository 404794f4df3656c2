// Engine_test: records, keys, navigation and contexts through the loaded library.
#include <algorithm>
#include <functional>

#include "EngineFixture.h"

extern "C" int ct_c_round_trip(const char* libpath);

namespace {

using Engine = EngineTest;

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
  const auto positions = Collect(dat, [&](const Customer&) { return api.GETCURP(dat); });
  EXPECT_EQ(LastError(), INOT_ERR);
  EXPECT_EQ(std::adjacent_find(positions.begin(), positions.end(), std::greater_equal<>()), positions.end());
  EXPECT_EQ(Ids(dat), std::vector<int>(std::begin(ids), std::end(ids)));
  EXPECT_EQ(Ids(dat + 1), (std::vector<int>{-40, -3, 0, 5, 7, 12}));
  EXPECT_EQ(Collect(dat + 2, [](const Customer& c) { return std::string(c.city) + "/" + c.name; }, true),
            (std::vector<std::string>{"Paris/n2", "Paris/n0", "Oslo/n4", "Oslo/n1", "Bern/n3", "Athens/n5"}));
}

TEST_F(Engine, UniqueClashReturns2AndWritesNothing) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "a", "X"), 0);
  EXPECT_EQ(Add(dat, 1, "b", "Y"), KDUP_ERR);
  EXPECT_EQ(api.DATENT(dat), 1);
  EXPECT_EQ(api.IDXENT(dat + 2), 1);
  EXPECT_EQ(Collect(dat + 2, [](const Customer& c) { return std::string(c.name); }), std::vector<std::string>{"a"});
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
  std::string target = IdKey(dat + 1, 20);
  ASSERT_EQ(target.size(), 4u);
  Customer c{};
  const std::pair<decltype(api.EQLREC), int> at20[] = {
      {api.EQLREC, 20}, {api.GTREC, 30}, {api.LTREC, 10}, {api.GTEREC, 20}, {api.LTEREC, 20}};
  for (const auto& [search, id] : at20) {
    ASSERT_EQ(search(dat + 1, target.data(), &c), 0) << id;
    EXPECT_EQ(c.id, id);
  }
  uint8_t found[4];
  target = IdKey(dat + 1, 25);
  EXPECT_EQ(api.EQLREC(dat + 1, target.data(), &c), INOT_ERR);
  EXPECT_NE(api.GTEKEY(dat + 1, target.data(), found), 0);
  EXPECT_EQ(IdOfKey(found), 30);
  EXPECT_NE(api.LTEKEY(dat + 1, target.data(), found), 0);
  EXPECT_EQ(IdOfKey(found), 20);
  target = IdKey(dat + 1, 99);
  EXPECT_EQ(api.GTKEY(dat + 1, target.data(), found), 0);
  EXPECT_EQ(LastError(), INOT_ERR);
  EXPECT_NE(api.LTKEY(dat + 1, target.data(), found), 0);
  EXPECT_EQ(IdOfKey(found), 30);
}

TEST_F(Engine, RewriteMovesOnlyChangedKeysAndRefusesClashes) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 1, "ann", "Oslo"), 0);
  ASSERT_EQ(Add(dat, 2, "bob", "Oslo"), 0);
  Customer c{};
  ASSERT_EQ(Find(dat + 1, 1, c), 0);
  std::strcpy(c.city, "Rome");
  ASSERT_EQ(api.RWTREC(dat, &c), 0);
  Customer hi = MakeCustomer(0, "", "Oslo");
  std::memset(hi.name, 0xFF, sizeof hi.name);
  EXPECT_EQ(api.RNGENT(dat + 2, KeyOf(dat + 2, MakeCustomer(0, "", "Oslo")).data(), KeyOf(dat + 2, hi, 0x7FFFFFFF).data()), 1);
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
  ISEG s0[1] = {{0, 4, INTSEG}}, s1[1] = {{54, 8, FLTSEG | DSCSEG}}, s2[1] = {{4, 30, UREGSEG}};
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
  EXPECT_EQ(Ids(dat + 1), (std::vector<int>{0, 3, 200, -1}));  // -1 is the largest unsigned value
  EXPECT_EQ(Collect(dat + 2, [](const Customer& c) { return c.balance; }), (std::vector<double>{1e9, 10.0, -0.0001, -2.5}));
  const auto names = Collect(dat + 3, [](const Customer& c) { return std::string(c.name); });
  EXPECT_EQ(names[2], "bob");
  EXPECT_EQ(names[3], "Cy");
  const std::string key = KeyOf(dat + 3, MakeCustomer(0, "aB", ""), 0x01020304);
  EXPECT_EQ(key.substr(0, 2), "AB");
  EXPECT_EQ(key[30], 1);
  EXPECT_EQ(key[33], 4);
}

TEST_F(Engine, SchemaSegmentsUseFieldTypesAndNullKeysAreSuppressed) {
  DATOBJ doda[3] = {{(pTEXT) "id", nullptr, CT_INT4, 4, 0},
                    {(pTEXT) "name", nullptr, CT_FPSTRING, 30, 0},
                    {(pTEXT) "rest", nullptr, CT_ARRAY, 32, 0}};
  ISEG s[1] = {{1, 8, SCHSEG}}, sid[1] = {{0, 4, SCHSEG}};
  IIDX ix[2] = {{4, 0, 0, 0, 0, 1, sid, nullptr, nullptr, nullptr, nullptr},
                {12, 0, 1, 1, ' ', 1, s, nullptr, nullptr, nullptr, nullptr}};
  IFIL f = {(pTEXT) "pstr", -1, sizeof(Customer), 0, EXCLUSIVE, 2, 0, EXCLUSIVE, ix, nullptr, nullptr, -1};
  ASSERT_EQ(api.CREIFIL(&f), 0);
  COUNT dat = f.tfilno;
  ASSERT_EQ(api.PUTDODA(dat, doda, 3), 0);
  for (auto [id, text] : {std::pair<int, std::string>{-5, "zed"}, {7, "ab"}, {8, ""}}) {
    Customer c{};
    c.id = id;
    c.name[0] = static_cast<char>(text.size());
    std::memcpy(c.name + 1, text.data(), text.size());
    ASSERT_EQ(api.ADDREC(dat, &c), 0) << id;
  }
  EXPECT_EQ(api.IDXENT(dat + 2), 2);  // the empty name is a null key
  uint8_t key[12];
  ASSERT_NE(api.FRSKEY(dat + 2, key), 0);
  EXPECT_EQ(std::string((char*) key, 8), "ab      ");
  ASSERT_NE(api.FRSKEY(dat + 1, key), 0);
  EXPECT_EQ(IdOfKey(key), -5);
}

TEST_F(Engine, SerialSegmentNumbersRecords) {
  OneIndexDef f("serial", sizeof(Customer), EXCLUSIVE, {{62, 4, SRLSEG}});
  const COUNT dat = CreateOneIndex(f);
  Customer c = MakeCustomer(1, "a", "b");
  ASSERT_EQ(api.ADDREC(dat, &c), 0);
  EXPECT_EQ(int32_t{c.date}, 1);
  ASSERT_EQ(api.ADDREC(dat, &c), 0);
  EXPECT_EQ(int32_t{c.date}, 2);
  EXPECT_EQ(api.SERIALNUM(dat), 2);
  EXPECT_EQ(api.IDXENT(dat + 1), 2);
}

TEST_F(Engine, CountsOrdinalsAndPercentiles) {
  COUNT dat = CreateCustomers();
  for (int id = 0; id < 100; ++id) ASSERT_EQ(Add(dat, id, "n", id < 30 ? "A" : "B"), 0);
  std::string low = IdKey(dat + 1, 10), high = IdKey(dat + 1, 19);
  uint8_t key[4];
  EXPECT_EQ(api.RNGENT(dat + 1, low.data(), high.data()), 10);
  EXPECT_EQ(api.ESTKEY(dat + 1, high.data(), low.data()), 10);
  EXPECT_NE(api.ORDKEY(dat + 1, low.data(), 5, key), 0);
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
  OneIndexDef f("var", 8, EXCLUSIVE | VLENGTH, {{0, 4, SGNSEG}});
  const COUNT dat = CreateOneIndex(f);
  char rec[100] = {1};
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
  std::string key = KeyOf(dat + 1, c, pos);
  ASSERT_EQ(api.ADDKEY(dat + 1, key.data(), pos, 0), 0);
  EXPECT_EQ(api.ADDKEY(dat + 1, key.data(), pos, 0), KDUP_ERR);
  EXPECT_EQ(api.EQLKEY(dat + 1, key.data()), pos);
  Customer back{};
  ASSERT_EQ(api.REDREC(dat, pos, &back), 0);
  EXPECT_EQ(back.id, 42);
  EXPECT_EQ(api.DELCHK(dat + 1, key.data(), pos + 4), INOT_ERR);
  ASSERT_EQ(api.DELCHK(dat + 1, key.data(), pos), 0);
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
  for (LONG pos : {first, second}) EXPECT_EQ(api.EQLKEY(dat + 2, KeyOf(dat + 2, c, pos).data()), pos);
  std::string key = KeyOf(dat + 2, c, 0);
  EXPECT_EQ(api.EQLKEY(dat + 2, key.data()), 0);
  EXPECT_EQ(LastError(), INOT_ERR);
  uint8_t found[54];
  EXPECT_EQ(api.GTEKEY(dat + 2, key.data(), found), first);  // the range searches still find it
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
