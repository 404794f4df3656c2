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

// The customers record: id int4 @0, name char[30] @4, city char[20] @34, balance double @54,
// date int4 @62; 66 bytes, never padded.
#pragma pack(push, 1)
struct Customer {
  int32_t id;
  char name[30];
  char city[20];
  double balance;
  int32_t date;
};
#pragma pack(pop)
static_assert(sizeof(Customer) == 66);

inline Customer MakeCustomer(int id, const char* name, const char* city, double balance = 0, int date = 0) {
  Customer c{};
  c.id = id;
  std::strncpy(c.name, name, sizeof c.name);
  std::strncpy(c.city, city, sizeof c.city);
  c.balance = balance;
  c.date = date;
  return c;
}

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

  COUNT LastError() {
    COUNT isam = 0, user = 0, sys = 0;
    api.GetCtreeError(&isam, &user, &sys);
    return isam;
  }

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
