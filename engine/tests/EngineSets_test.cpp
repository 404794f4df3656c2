// EngineSets_test: sets (FRSSET .. MIDVSET, several sets) and batches (BATSET) through the loaded
// library.
#include <cstring>

#include "EngineFixture.h"

namespace {

class EngineSets : public EngineTest {
 protected:
  // Customers in three cities; the city index (keyno dat+2) holds city (20 bytes) + name.
  void SetUp() override {
    EngineTest::SetUp();
    dat = CreateCustomers();
    const char* cities[] = {"Oslo", "Paris", "Bern", "Paris", "Oslo", "Paris"};
    for (int i = 0; i < 6; ++i) ASSERT_EQ(Add(dat, i + 1, ("n" + std::to_string(i)).c_str(), cities[i]), 0);
  }

  static std::vector<char> City(const char* city) {
    std::vector<char> key(54, 0);
    std::strncpy(key.data(), city, 20);
    return key;
  }

  // Ids met walking the active set with step until it fails; the failure is checked to be 101.
  std::vector<int> Walk(COUNT (*step)(COUNT, pVOID), COUNT keyno, std::vector<int> ids) {
    Customer c{};
    COUNT rc;
    while ((rc = step(keyno, &c)) == 0) ids.push_back(c.id);
    EXPECT_EQ(rc, INOT_ERR);
    return ids;
  }

  COUNT dat = -1;
};

TEST_F(EngineSets, SetWalksForwardAndBackwardWithinItsPrefix) {
  Customer c{};
  auto paris = City("Paris");
  ASSERT_EQ(api.FRSSET(dat + 2, paris.data(), &c, 20), 0);
  EXPECT_STREQ(c.name, "n1");
  EXPECT_EQ(Walk(api.NXTSET, dat + 2, {c.id}), (std::vector<int>{2, 4, 6}));
  // Leaving the set moved nothing: the last member is still the set's place and current record.
  EXPECT_EQ(api.GETCURP(dat) > 0, true);
  ASSERT_EQ(api.RRDREC(dat, &c), 0);
  EXPECT_EQ(c.id, 6);
  EXPECT_EQ(Walk(api.PRVSET, dat + 2, {}), (std::vector<int>{4, 2}));

  ASSERT_EQ(api.LSTSET(dat + 2, paris.data(), &c, 20), 0);
  EXPECT_EQ(c.id, 6);
  EXPECT_EQ(api.NXTSET(dat + 2, &c), INOT_ERR);
  ASSERT_EQ(api.LSTSET(dat + 2, City("Bern").data(), &c, 20), 0);
  EXPECT_EQ(c.id, 3);
  EXPECT_EQ(api.PRVSET(dat + 2, &c), INOT_ERR);
  EXPECT_EQ(api.NXTSET(dat + 2, &c), INOT_ERR);
}

TEST_F(EngineSets, EmptySetsAndBadCallsChangeNothing) {
  Customer c{};
  EXPECT_EQ(api.NXTSET(dat + 2, &c), ICUR_ERR) << "no set yet";
  ASSERT_EQ(api.FRSREC(dat + 1, &c), 0);
  EXPECT_EQ(api.FRSSET(dat + 2, City("Madrid").data(), &c, 20), INOT_ERR);
  EXPECT_EQ(api.LSTSET(dat + 2, City("Madrid").data(), &c, 20), INOT_ERR);
  EXPECT_EQ(api.LSTSET(dat + 2, City("Zurich").data(), &c, 20), INOT_ERR);
  EXPECT_EQ(api.FRSSET(dat + 2, City("Paris").data(), &c, 55), CT_EBADARG);
  EXPECT_EQ(api.FRSSET(dat + 2, nullptr, &c, 4), CT_EBADARG);
  EXPECT_EQ(api.FRSSET(dat, City("Paris").data(), &c, 4), CT_ENOTIDX);
  ASSERT_EQ(api.RRDREC(dat, &c), 0);
  EXPECT_EQ(c.id, 1) << "the current record stayed where FRSREC put it";
  ASSERT_EQ(api.FRSSET(dat + 2, City("Paris").data(), &c, 20), 0);
  EXPECT_EQ(api.NXTSET(dat + 1, &c), ICUR_ERR) << "the set belongs to another index";

  // A prefix of a single byte ("P") and of none (every key) are sets too.
  EXPECT_EQ(api.FRSSET(dat + 2, City("P").data(), &c, 1), 0);
  EXPECT_EQ(Walk(api.NXTSET, dat + 2, {c.id}), (std::vector<int>{2, 4, 6}));
  ASSERT_EQ(api.LSTSET(dat + 2, City("").data(), &c, 0), 0);
  EXPECT_EQ(Walk(api.PRVSET, dat + 2, {c.id}), (std::vector<int>{6, 4, 2, 5, 1, 3}));
}

TEST_F(EngineSets, AllKeyBytesAtTheTopStillFindTheLastMember) {
  OneIndexDef f("bytes", 4, EXCLUSIVE, {{0, 2, REGSEG}});
  const COUNT bytes = CreateOneIndex(f);
  const unsigned char recs[][4] = {{0xFF, 0x01, 1, 0}, {0xFF, 0xFF, 2, 0}, {0xFE, 0xFF, 3, 0}};
  for (auto& r : recs) ASSERT_EQ(api.ADDREC(bytes, const_cast<unsigned char*>(r)), 0);
  unsigned char target[2] = {0xFF, 0xFF}, got[4];
  ASSERT_EQ(api.LSTSET(bytes + 1, target, got, 1), 0);
  EXPECT_EQ(got[2], 2);
  ASSERT_EQ(api.PRVSET(bytes + 1, got), 0);
  EXPECT_EQ(got[2], 1);
  EXPECT_EQ(api.PRVSET(bytes + 1, got), INOT_ERR);
}

TEST_F(EngineSets, MidsetStartsFromTheCurrentRecordAndSetsKeepTheirOwnPlace) {
  Customer c{};
  unsigned char four[4] = {0x80, 0, 0, 4};
  ASSERT_EQ(api.EQLREC(dat + 1, four, &c), 0);
  ASSERT_EQ(api.MIDSET(dat + 2, &c, 20), 0);
  EXPECT_EQ(c.id, 4);
  EXPECT_EQ(Walk(api.NXTSET, dat + 2, {}), (std::vector<int>{6}));

  ASSERT_EQ(api.ALCSET(2), 0);
  ASSERT_EQ(api.FRSSET(dat + 2, City("Oslo").data(), &c, 20), 0);
  ASSERT_EQ(api.CHGSET(1), 0);
  ASSERT_EQ(api.FRSSET(dat + 2, City("Paris").data(), &c, 20), 0);
  ASSERT_EQ(api.NXTSET(dat + 2, &c), 0);
  EXPECT_EQ(c.id, 4);
  ASSERT_EQ(api.CHGSET(0), 0);
  ASSERT_EQ(api.NXTSET(dat + 2, &c), 0);
  EXPECT_EQ(c.id, 5) << "set 0 goes on from its own place";
  ASSERT_EQ(api.CHGSET(1), 0);
  ASSERT_EQ(api.NXTSET(dat + 2, &c), 0);
  EXPECT_EQ(c.id, 6);
  EXPECT_EQ(api.CHGSET(2), CT_EBADARG);
  EXPECT_EQ(api.ALCSET(0), CT_EBADARG);
  ASSERT_EQ(api.FRESET(), 0);
  EXPECT_EQ(api.NXTSET(dat + 2, &c), ICUR_ERR) << "freed sets are gone";
  EXPECT_EQ(api.CHGSET(1), CT_EBADARG);
}

TEST_F(EngineSets, VariableLengthSetsReportLengths) {
  OneIndexDef f("notes", 8, EXCLUSIVE | VLENGTH, {{0, 4, INTSEG}, {4, 4, INTSEG}});
  const COUNT key = CreateOneIndex(f) + 1;
  for (uint32_t group = 1; group <= 2; ++group) {
    for (uint32_t id = 1; id <= 3; ++id) {
      std::vector<char> r(8 + group * 10 + id, 'x');
      std::memcpy(r.data(), &group, 4);
      std::memcpy(r.data() + 4, &id, 4);
      ASSERT_EQ(api.ADDVREC(key - 1, r.data(), static_cast<LONG>(r.size())), 0);
    }
  }
  unsigned char target[8] = {0, 0, 0, 2};
  char buf[64];
  LONG len = 0;
  // The length the call reports, given room for `room` bytes; minus the error when it fails.
  auto lengthOf = [&](auto call, LONG room = sizeof buf) {
    len = room;
    const COUNT rc = call();
    return rc == 0 ? len : -rc;
  };
  EXPECT_EQ(lengthOf([&] { return api.FRSVSET(key, target, buf, 4, &len); }), 29);
  EXPECT_EQ(lengthOf([&] { return api.NXTVSET(key, buf, &len); }), 30);
  EXPECT_EQ(lengthOf([&] { return api.NXTVSET(key, buf, &len); }, 10), -VBSZ_ERR);
  EXPECT_EQ(lengthOf([&] { return api.LSTVSET(key, target, buf, 4, &len); }), 31);
  EXPECT_EQ(lengthOf([&] { return api.PRVVSET(key, buf, &len); }), 30);
  EXPECT_EQ(lengthOf([&] { return api.MIDVSET(key, buf, 4, &len); }), 30);
  EXPECT_GT(lengthOf([&] { return api.PRVVSET(key, buf, &len); }), 0);
  EXPECT_EQ(lengthOf([&] { return api.PRVVSET(key, buf, &len); }), -INOT_ERR);
}

class EngineBatches : public EngineSets {
 protected:
  KEYREQ Request(const char* city, COUNT siglen = 20) {
    KEYREQ r{};
    std::strncpy(r.target, city, 20);
    r.siglen = siglen;
    return r;
  }
  // Decodes the record entries of one chunk into ids.
  static std::vector<int> Ids(const char* buf, VRLEN used) {
    std::vector<int> ids;
    for (VRLEN at = 0; at < used;) {
      uint32_t len;
      Customer c;
      std::memcpy(&len, buf + at + 4, 4);
      EXPECT_EQ(len, sizeof(Customer));
      std::memcpy(&c, buf + at + 8, sizeof c);
      ids.push_back(c.id);
      at += 8 + len;
    }
    return ids;
  }
};

TEST_F(EngineBatches, ReadSpansSeveralBufferFills) {
  for (int i = 7; i <= 20; ++i) ASSERT_EQ(Add(dat, i, "zz", "Paris"), 0);
  KEYREQ r = Request("Paris");
  char buf[3 * (8 + sizeof(Customer)) + 10];
  ASSERT_EQ(api.BATSET(dat + 2, &r, buf, sizeof buf, BAT_GET), 0);
  EXPECT_EQ(r.btotal, 17);
  EXPECT_EQ(r.bavail, 14);
  EXPECT_EQ(r.breclen, 3 * (8 + sizeof(Customer)));
  std::vector<int> ids = Ids(buf, r.breclen);
  int fills = 1;
  while (api.BATSET(dat + 2, &r, buf, sizeof buf, BAT_NXT) == 0) {
    auto more = Ids(buf, r.breclen);
    ids.insert(ids.end(), more.begin(), more.end());
    ++fills;
  }
  EXPECT_EQ(LastError(), INOT_ERR);
  EXPECT_EQ(fills, 6);
  EXPECT_EQ(r.bavail, 0);
  ASSERT_EQ(ids.size(), 17u);
  EXPECT_EQ(std::vector<int>(ids.begin(), ids.begin() + 3), (std::vector<int>{2, 4, 6}));
  EXPECT_EQ(api.DATENT(dat), 20) << "reading deletes nothing";
}

TEST_F(EngineBatches, PositionsKeysShortBuffersAndCancel) {
  KEYREQ r = Request("Oslo");
  LONG positions[4] = {};
  ASSERT_EQ(api.BATSET(dat + 2, &r, positions, sizeof positions, BAT_GET | BAT_POS), 0);
  EXPECT_EQ(r.btotal, 2);
  EXPECT_EQ(r.breclen, 8u);
  Customer c{};
  ASSERT_EQ(api.REDREC(dat, positions[1], &c), 0);
  EXPECT_EQ(c.id, 5);

  char keys[2 * 58];
  ASSERT_EQ(api.BATSET(dat + 2, &r, keys, sizeof keys, BAT_GET | BAT_KEY), 0);
  EXPECT_EQ(std::string(keys + 4, 4), "Oslo");
  EXPECT_EQ(std::string(keys + 62 + 20, 2), "n4");

  char tiny[20];
  EXPECT_EQ(api.BATSET(dat + 2, &r, tiny, sizeof tiny, BAT_GET), VBSZ_ERR);
  EXPECT_EQ(r.breclen, 8 + sizeof(Customer)) << "the size the first entry needs";
  EXPECT_EQ(r.bavail, 2);
  ASSERT_EQ(api.BATSET(dat + 2, &r, nullptr, 0, BAT_CAN), 0);
  EXPECT_EQ(api.BATSET(dat + 2, &r, tiny, sizeof tiny, BAT_NXT), ICUR_ERR);

  KEYREQ none = Request("Madrid");
  EXPECT_EQ(api.BATSET(dat + 2, &none, tiny, sizeof tiny, BAT_GET), INOT_ERR);
  EXPECT_EQ(none.btotal, 0);
  EXPECT_EQ(api.BATSET(dat + 2, &r, tiny, sizeof tiny, BAT_NXT | BAT_POS), CT_EBADARG);
  EXPECT_EQ(api.BATSET(dat + 2, &r, tiny, sizeof tiny, BAT_GET | BAT_DEL), CT_EBADARG);
  EXPECT_EQ(api.BATSET(dat + 2, nullptr, tiny, sizeof tiny, BAT_GET), CT_EBADARG);
}

TEST_F(EngineBatches, SeveralBatchesKeepTheirOwnProgress) {
  ASSERT_EQ(api.ALCBAT(2), 0);
  KEYREQ paris = Request("Paris"), oslo = Request("Oslo");
  LONG pos[1];
  ASSERT_EQ(api.BATSET(dat + 2, &paris, pos, sizeof pos, BAT_GET | BAT_POS), 0);
  ASSERT_EQ(api.CHGBAT(1), 0);
  ASSERT_EQ(api.BATSET(dat + 2, &oslo, pos, sizeof pos, BAT_GET | BAT_POS), 0);
  ASSERT_EQ(api.CHGBAT(0), 0);
  ASSERT_EQ(api.BATSET(dat + 2, &paris, pos, sizeof pos, BAT_NXT), 0);
  EXPECT_EQ(paris.bavail, 1);
  ASSERT_EQ(api.CHGBAT(1), 0);
  ASSERT_EQ(api.BATSET(dat + 2, &oslo, pos, sizeof pos, BAT_NXT), 0);
  EXPECT_EQ(oslo.bavail, 0);
  EXPECT_EQ(api.CHGBAT(2), CT_EBADARG);
  ASSERT_EQ(api.FREBAT(), 0);
  EXPECT_EQ(api.BATSET(dat + 2, &paris, pos, sizeof pos, BAT_NXT), ICUR_ERR);
}

TEST_F(EngineBatches, DeleteRemovesRecordsWithEveryKeyAtOnce) {
  KEYREQ r = Request("Paris");
  ASSERT_EQ(api.BATSET(dat + 2, &r, nullptr, 0, BAT_DEL), 0);
  EXPECT_EQ(r.btotal, 3);
  EXPECT_EQ(api.DATENT(dat), 3);
  EXPECT_EQ(api.IDXENT(dat + 1), 3);
  EXPECT_EQ(api.IDXENT(dat + 2), 3);
  Customer c{};
  unsigned char two[4] = {0x80, 0, 0, 2}, one[4] = {0x80, 0, 0, 1};
  EXPECT_EQ(api.EQLREC(dat + 1, two, &c), INOT_ERR);
  EXPECT_EQ(api.EQLREC(dat + 1, one, &c), 0);
  EXPECT_EQ(api.BATSET(dat + 2, &r, nullptr, 0, BAT_DEL), INOT_ERR);
  EXPECT_EQ(r.btotal, 0);

  // A record another handle has locked stops the whole batch: nothing is deleted.
  COUNT other = static_cast<COUNT>(dat + 10);
  ASSERT_EQ(api.OPNRFIL(other, (pTEXT) "customers.dat", SHARED), 0);
  ASSERT_EQ(api.FRSSET(other + 2, City("Oslo").data(), &c, 20), 0);
  ASSERT_EQ(api.LOKREC(other, ENABLE, api.GETCURP(other)), 0);
  KEYREQ oslo = Request("Oslo");
  EXPECT_EQ(api.BATSET(dat + 2, &oslo, nullptr, 0, BAT_DEL), DLOK2_ERR);
  EXPECT_EQ(api.DATENT(dat), 3);
  EXPECT_EQ(api.IDXENT(dat + 2), 3);
}

}  // namespace
