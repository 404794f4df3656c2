// EngineDamageSweep_test: every kind of damage at every place of a table's files, each case in
// child processes, counted per family. A case is used twice: straight away (open, read every
// record through the data file and both indexes, add and delete one) and after the page verify.
// No case may hang; no case may crash once the verify passed it; damage the engine checks for
// (truncations, foreign files, lock files, meta pages) must give an error number or read back
// whole without the verify. Damage inside pages, which LMDB trusts, is counted: crashes of the
// unverified use and values read back changed are figures, not failures (FORMAT.md, "Page
// verify and what stays trusted"). Prints "damage: ..." lines (scripts/reliability.sh).
#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <random>

#include "ChildProcess.h"
#include "DamagedFiles.h"
#include "EngineFixture.h"

namespace {

using Bytes = std::string;
using ct::testsupport::kPage;
constexpr int kRecords = 300;

using ct::testsupport::Load;
using ct::testsupport::Store;

Customer Expected(int id) {
  return MakeCustomer(id, ("name" + std::to_string(id)).c_str(), ("city" + std::to_string(id % 7)).c_str(), id);
}

// How one use of a damaged table ended (the child's exit status, or 100 + a signal).
enum Outcome { kWhole, kChanged, kRefused, kFoundByVerify, kErrorLater, kCrash, kHang, kOutcomes };
const char* const kOutcomeNames[] = {"read back whole", "values changed", "refused at open", "found by the verify",
                                     "error while used", "crashed", "hung"};

Outcome Use(bool verify) {
  const pid_t pid = Spawn([verify](EngineApi& api) {
    alarm(30);
    if (api.OPNRFIL(0, (pTEXT) "customers.dat", verify ? EXCLUSIVE : SHARED) != 0) return int{kRefused};
    if (verify && api.GETFIL(0, FILVERIFY) != 0) return int{kFoundByVerify};
    bool changed = false;
    for (COUNT filno = 0; filno <= 2; ++filno) {
      Customer c{};
      int n = 0;
      COUNT rc = api.FRSREC(filno, &c);
      for (; rc == 0 && n <= kRecords; rc = api.NXTREC(filno, &c), ++n) {
        const Customer e = Expected(c.id);
        changed = changed || c.id < 0 || c.id >= kRecords || std::memcmp(&c, &e, sizeof c) != 0;
      }
      if (rc != INOT_ERR) return int{kErrorLater};
      changed = changed || n != kRecords;
    }
    Customer added = Expected(kRecords);
    if (api.ADDREC(0, &added) != 0 || api.DELREC(0) != 0) return int{kErrorLater};
    return int{changed ? kChanged : kWhole};
  });
  const int status = Wait(pid);
  if (status == 100 + SIGALRM) return kHang;
  if (status >= 100) return kCrash;
  return status < kOutcomes ? static_cast<Outcome>(status) : kCrash;
}

struct Case {
  std::string family;
  std::function<void()> damage;
};

class EngineDamageSweep : public EngineTest {
 protected:
  std::vector<Case> Cases(const Bytes& data, const Bytes& index) {
    std::vector<Case> cases;
    auto bytes = [&](const std::string& family, const char* file, const Bytes& sound, std::function<void(Bytes&)> f) {
      cases.push_back({family, [=] {
                         Bytes b = sound;
                         f(b);
                         Store(file, b);
                       }});
    };
    for (size_t cut : {size_t{0}, size_t{1}, size_t{100}, kPage, 2 * kPage, data.size() / 2, data.size() - kPage,
                       data.size() - 1})
      bytes("truncated data file", "customers.dat", data, [cut](Bytes& b) { b.resize(cut); });
    for (size_t cut : {size_t{0}, size_t{1}, kPage, index.size() - 1})
      bytes("truncated index file", "customers.idx", index, [cut](Bytes& b) { b.resize(cut); });
    std::mt19937 random(23);
    Bytes noise(4 * kPage, '\0');
    for (char& c : noise) c = static_cast<char>(random());
    Bytes sqlite(2 * kPage, '\0');
    sqlite.replace(0, 16, Bytes("SQLite format 3\0", 16));
    for (const char* file : {"customers.dat", "customers.idx"}) {
      const std::string family = std::string("foreign file as ") + (file[10] == 'd' ? "data" : "index") + " file";
      for (const Bytes& foreign : {Bytes("id,name,city\n1,Ada Quill,Quenby\n"), sqlite, noise})
        bytes(family, file, foreign, [](Bytes&) {});
      cases.push_back({family, [file] {
                         std::filesystem::remove(file);
                         std::filesystem::create_directory(file);
                       }});
    }
    for (const char* lock : {"customers.dat-lock", "customers.dat-rlock", "customers.idx-lock", "customers.idx-rlock"})
      for (size_t size : {size_t{0}, size_t{1}, size_t{100}, kPage, 40 * kPage})
        cases.push_back({"garbage lock file", [=] { Store(lock, noise.substr(0, std::min(size, noise.size())) + Bytes(size > noise.size() ? size - noise.size() : 0, '\x5a')); }});
    for (size_t page : {size_t{0}, size_t{1}})
      for (size_t at = 0; at < 160; at += 4)
        for (unsigned char mask : {0x01, 0x80, 0xff})
          bytes("meta page byte changed", "customers.dat", data, [=](Bytes& b) { b[page * kPage + at] ^= static_cast<char>(mask); });
    for (size_t page = 2; page < data.size() / kPage; ++page) {
      bytes("data page zeroed", "customers.dat", data, [page](Bytes& b) { std::fill_n(b.begin() + page * kPage, kPage, '\0'); });
      for (size_t at : {0, 8, 10, 11, 12, 14, 16, 18, 20, 22, 100, 2000, 4000, 4090})
        bytes("data page byte changed", "customers.dat", data, [=](Bytes& b) { b[page * kPage + at] ^= 0x5a; });
    }
    for (size_t page = 0; page < index.size() / kPage; ++page) {
      bytes("index page zeroed", "customers.idx", index, [page](Bytes& b) { std::fill_n(b.begin() + page * kPage, kPage, '\0'); });
      for (size_t at : {0, 10, 12, 16, 20, 100, 144, 2000, 4000})
        bytes("index page byte changed", "customers.idx", index, [=](Bytes& b) { b[page * kPage + at] ^= 0x5a; });
    }
    return cases;
  }
};

TEST_F(EngineDamageSweep, NoDamageHangsOrCrashesAVerifiedUseAndEveryCheckedKindIsRefusedOrReadWhole) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  for (int id = 0; id < kRecords; ++id) {
    Customer c = Expected(id);
    ASSERT_EQ(api.ADDREC(dat, &c), 0);
  }
  ASSERT_EQ(api.CLISAM(), 0);
  const Bytes data = Load("customers.dat"), index = Load("customers.idx");
  std::map<std::string, std::array<std::array<int, kOutcomes>, 2>> counts;
  for (const Case& c : Cases(data, index)) {
    for (const char* file : {"customers.dat", "customers.idx", "customers.dat-lock", "customers.dat-rlock",
                             "customers.idx-lock", "customers.idx-rlock"})
      std::filesystem::remove_all(file);
    Store("customers.dat", data);
    Store("customers.idx", index);
    c.damage();
    const Outcome plain = Use(false), verified = Use(true);
    ++counts[c.family][0][plain];
    ++counts[c.family][1][verified];
    const bool inPages = c.family.find("page") != std::string::npos && c.family.find("meta") == std::string::npos;
    EXPECT_NE(plain, kHang) << c.family;
    EXPECT_TRUE(verified != kCrash && verified != kHang) << c.family << ": " << kOutcomeNames[verified];
    if (!inPages) EXPECT_TRUE(plain != kCrash && plain != kChanged) << c.family << ": " << kOutcomeNames[plain];
  }
  for (const auto& [family, byUse] : counts) {
    for (int use = 0; use < 2; ++use) {
      std::string line = "damage: " + family + (use ? ", after the verify:" : ", used straight away:");
      for (int o = 0; o < kOutcomes; ++o)
        if (byUse[use][o]) line += " " + std::string(kOutcomeNames[o]) + " " + std::to_string(byUse[use][o]) + ",";
      line.back() = '\n';
      std::fputs(line.c_str(), stdout);
    }
  }
}

}  // namespace
