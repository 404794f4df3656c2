// EngineFixture: a session on a fresh temporary directory and a customers table to work on.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "EngineApi.h"
#include "EngineCustomer.h"

// The id a key of the signed 4-byte id segment holds.
inline int IdOfKey(const void* key) {
  const auto* k = static_cast<const uint8_t*>(key);
  return static_cast<int32_t>(((uint32_t{k[0]} << 24) | (k[1] << 16) | (k[2] << 8) | k[3]) ^ 0x80000000u);
}

// Reads the customer with this id through index keyno (on the id) into c: 0 or the error.
inline COUNT Find(EngineApi& api, COUNT keyno, int id, Customer& c) {
  Customer k = MakeCustomer(id, "", "");
  uint8_t key[4];
  api.frmkey(keyno, (pTEXT) &k, (pTEXT) key, 0, 0);
  return api.EQLREC(keyno, key, &c);
}

// A data file with a single index made of the given segments (key length: their lengths, and 4
// more with duplicates); the index file takes the data file's mode without VLENGTH.
struct OneIndexDef {
  OneIndexDef(const char* name, UCOUNT reclen, COUNT mode, std::vector<ISEG> segments, COUNT dup = 0)
      : segs(std::move(segments)) {
    COUNT keylen = dup ? 4 : 0;
    for (const ISEG& s : segs) keylen = static_cast<COUNT>(keylen + s.slength);
    ix[0] = {keylen, 0, dup, 0, 0, static_cast<COUNT>(segs.size()), segs.data(), nullptr, nullptr, nullptr, nullptr};
    ifil = {(pTEXT) name, -1, reclen, 0, mode, 1, 0, static_cast<COUNT>(mode & ~VLENGTH), ix, nullptr, nullptr, -1};
  }
  std::vector<ISEG> segs;
  IIDX ix[1];
  IFIL ifil;
};

// Index 0 on id (signed, unique); index 1 on city + name (duplicates allowed).
struct CustomersDef {
  ISEG idSeg[1] = {{0, 4, SGNSEG}};
  ISEG cityName[2] = {{34, 20, REGSEG}, {4, 30, REGSEG}};
  IIDX idx[2] = {{4, 0, 0, 0, 0, 1, idSeg, (pTEXT) "by_id", nullptr, nullptr, nullptr},
                 {54, 0, 1, 0, 0, 2, cityName, (pTEXT) "by_city", nullptr, nullptr, nullptr}};
  IFIL ifil = {(pTEXT) "customers", -1, sizeof(Customer), 0, SHARED, 2, 0, SHARED, idx, nullptr, nullptr, -1};
};

class EngineTest : public ::testing::Test {
 protected:
  static EngineApi& Api() {
    static EngineApi* api = [] {
      auto* a = new EngineApi();
      if (!a->Load("libctstd32b.so")) std::abort();
      return a;
    }();
    return *api;
  }

  void SetUp() override {
    old_ = std::filesystem::current_path();
    char tmpl[] = "/tmp/ctengine-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
    std::filesystem::current_path(dir_);
    ASSERT_EQ(api.INTISAMX(10, 64, 16, 10, 0, nullptr, nullptr, nullptr), 0);
  }

  void TearDown() override {
    api.CLISAM();
    std::filesystem::current_path(old_);
    std::filesystem::remove_all(dir_);
  }

  // Creates the customers table and returns its data file number.
  COUNT CreateCustomers(COUNT mode = SHARED) {
    def_.ifil.dfilmod = mode;
    def_.ifil.ifilmod = mode;
    EXPECT_EQ(api.CREIFIL(&def_.ifil), 0);
    return def_.ifil.tfilno;
  }

  COUNT Add(COUNT datno, int id, const char* name, const char* city, double balance = 0) {
    Customer c = MakeCustomer(id, name, city, balance);
    return api.ADDREC(datno, &c);
  }
  COUNT Find(COUNT keyno, int id, Customer& c) { return ::Find(api, keyno, id, c); }
  // The customers table with its schema and ids 1..n: names n<id>, cities cycling through Oslo,
  // Paris and Rome from id % 3, balance 10 * id.
  COUNT Filled(int n, COUNT mode = SHARED) {
    COUNT dat = CreateCustomers(mode);
    DATOBJ doda[5] = {{(pTEXT) "id", nullptr, CT_INT4, 4, 0},      {(pTEXT) "name", nullptr, CT_FSTRING, 30, 0},
                      {(pTEXT) "city", nullptr, CT_FSTRING, 20, 0}, {(pTEXT) "balance", nullptr, CT_DFLOAT, 8, 0},
                      {(pTEXT) "date", nullptr, CT_INT4, 4, 0}};
    EXPECT_EQ(api.PUTDODA(dat, doda, 5), 0);
    const char* cities[] = {"Oslo", "Paris", "Rome"};
    for (int id = 1; id <= n; ++id)
      EXPECT_EQ(Add(dat, id, ("n" + std::to_string(id)).c_str(), cities[id % 3], 10.0 * id), 0);
    return dat;
  }
  // Creates a one-index table (see OneIndexDef) and returns its data file number.
  COUNT CreateOneIndex(OneIndexDef& def) {
    EXPECT_EQ(api.CREIFIL(&def.ifil), 0) << def.ifil.pfilnam;
    return def.ifil.tfilno;
  }

  // field(c) of every customer read through file or index keyno in its order, or backwards.
  template <class F>
  auto Collect(COUNT keyno, F field, bool backwards = false) {
    std::vector<decltype(field(Customer{}))> out;
    Customer c{};
    for (COUNT rc = backwards ? api.LSTREC(keyno, &c) : api.FRSREC(keyno, &c); rc == 0;
         rc = backwards ? api.PRVREC(keyno, &c) : api.NXTREC(keyno, &c))
      out.push_back(field(c));
    return out;
  }
  std::vector<int> Ids(COUNT keyno) { return Collect(keyno, [](const Customer& c) { return c.id; }); }

  // The key record c gets in index keyno (pos is the suffix of a duplicate index).
  std::string KeyOf(COUNT keyno, const Customer& c, LONG pos = 0) {
    char key[1024];
    const COUNT n = api.frmkey(keyno, (pTEXT) &c, key, pos, 0);
    EXPECT_GT(n, 0) << "frmkey of index " << keyno;
    return std::string(key, n > 0 ? static_cast<size_t>(n) : 0);
  }
  std::string IdKey(COUNT keyno, int id) { return KeyOf(keyno, MakeCustomer(id, "", "")); }

  // The number of indexes the table's stored definition (IFIL) lists.
  LONG IndexCount(COUNT dat) {
    std::vector<char> image(4096);
    EXPECT_GT(api.GETIFIL(dat, static_cast<LONG>(image.size()), image.data()), 0);
    return reinterpret_cast<IFIL*>(image.data())->dnumidx;
  }

  COUNT LastError() {
    COUNT isam = 0, user = 0, sys = 0;
    api.GetCtreeError(&isam, &user, &sys);
    return isam;
  }

  // The index on name (duplicates allowed) that tests add to the customers table as "byname".
  IFIL ByName(COUNT dat, COUNT mode = SHARED) {
    return {(pTEXT) "byname", dat, sizeof(Customer), 0, mode, 1, 0, mode, nameIdx, nullptr, nullptr, -1};
  }
  ISEG nameSeg[1] = {{4, 30, REGSEG}};
  IIDX nameIdx[1] = {{34, 0, 1, 0, 0, 1, nameSeg, (pTEXT) "by_name", nullptr, nullptr, nullptr}};

  EngineApi& api = Api();
  CustomersDef def_;
  std::filesystem::path old_, dir_;
};

// Every record of data file datno with its position, then every key of its indexes datno+1 ..
// datno+nkeys with the position it names: two equal digests mean the same records and keys.
inline std::string Digest(EngineApi& api, COUNT datno, int nkeys) {
  std::string out;
  std::vector<char> rec(4096);
  for (COUNT rc = api.FRSREC(datno, rec.data()); rc == 0; rc = api.NXTREC(datno, rec.data())) {
    LONG pos = api.GETCURP(datno);
    out.append(reinterpret_cast<const char*>(&pos), sizeof pos);
    out.append(rec.data(), 66);
  }
  for (int k = 1; k <= nkeys; ++k) {
    char key[256];
    for (LONG pos = api.FRSKEY(datno + k, key); pos; pos = api.NXTKEY(datno + k, key)) {
      out.append(reinterpret_cast<const char*>(&pos), sizeof pos);
      out.append(key, static_cast<size_t>(api.GETFIL(datno + k, 1)));
    }
  }
  return out;
}

// One transaction adds n customers and commits; a second one adds n more, rewrites and deletes
// some of the first and is aborted: the table is then record for record and key for key as
// after the first, and the next record gets the position after the last committed one.
inline void LargeTransactionRoundTrip(EngineApi& api, COUNT dat, int n) {
  ASSERT_GT(api.TRANBEG(0), 0);
  for (int id = 0; id < n; ++id) {
    Customer c = MakeCustomer(id, ("n" + std::to_string(id)).c_str(), id % 2 ? "Oslo" : "Bern");
    ASSERT_EQ(api.ADDREC(dat, &c), 0) << id;
  }
  ASSERT_EQ(api.TRANEND(FREE), 0);
  ASSERT_EQ(api.DATENT(dat), n);
  ASSERT_EQ(api.IDXENT(dat + 2), n);
  const std::string before = Digest(api, dat, 2);
  Customer last{};
  ASSERT_EQ(api.LSTREC(dat, &last), 0);
  const LONG lastPos = api.GETCURP(dat);

  ASSERT_GT(api.TRANBEG(0), 0);
  for (int id = n; id < 2 * n; ++id) {
    Customer c = MakeCustomer(id, "doomed", "Rome");
    ASSERT_EQ(api.ADDREC(dat, &c), 0) << id;
  }
  Customer c{};
  ASSERT_EQ(api.FRSREC(dat + 1, &c), 0);
  for (int i = 0; i < n / 4 && api.NXTREC(dat + 1, &c) == 0; ++i) {
    std::strncpy(c.city, i % 2 ? "Moved" : "Gone", sizeof c.city);
    ASSERT_EQ(i % 2 ? api.RWTREC(dat, &c) : api.DELREC(dat), 0) << i;
  }
  EXPECT_EQ(api.DATENT(dat), 2 * n - (n / 4 + 1) / 2);
  ASSERT_EQ(api.TRANABT(), 0);
  EXPECT_EQ(api.DATENT(dat), n);
  EXPECT_TRUE(Digest(api, dat, 2) == before) << "the aborted transaction left a trace";
  Customer next = MakeCustomer(2 * n, "next", "Bern");
  ASSERT_EQ(api.ADDREC(dat, &next), 0);
  EXPECT_EQ(api.GETCURP(dat), lastPos + 68);  // 66 bytes rounded up to 4
}
