// EngineDamageKinds_test: each kind of damage a data file can suffer is refused at open with 803,
// or found by the page verify before anything reads the damaged part; damaged lock files are
// made afresh and the records read back whole.
#include <fstream>
#include <functional>
#include <iterator>

#include "DamagedFiles.h"
#include "EngineFixture.h"

namespace {

using Bytes = std::string;

using ct::testsupport::Load;
using ct::testsupport::Store;

// LMDB's layout, just enough to aim the damage: a page starts with its number (u64) and flags
// (u16 at 10); a meta page holds the free list's and main database's records (48 bytes, the root
// page number at 40) at 40 and 88, the last page at 136 and the transaction number at 144.
using ct::testsupport::kPage;
template <typename T>
T Get(const Bytes& b, size_t at) {
  T v;
  std::memcpy(&v, b.data() + at, sizeof v);
  return v;
}
template <typename T>
void Set(Bytes& b, size_t at, T v) {
  std::memcpy(b.data() + at, &v, sizeof v);
}
size_t NewerMeta(const Bytes& b) { return Get<uint64_t>(b, 144) > Get<uint64_t>(b, kPage + 144) ? 0 : kPage; }
size_t OlderMeta(const Bytes& b) { return kPage - NewerMeta(b); }
size_t MainRoot(const Bytes& b) { return Get<uint64_t>(b, NewerMeta(b) + 88 + 40) * kPage; }
// The first page number listed in the free list (its root must be a leaf holding the list).
size_t FirstFreeEntry(const Bytes& b) {
  const size_t root = Get<uint64_t>(b, NewerMeta(b) + 40 + 40) * kPage;
  EXPECT_EQ(Get<uint16_t>(b, root + 10), 2) << "the free list is not one leaf";
  const size_t node = root + Get<uint16_t>(b, root + 16);
  EXPECT_EQ(Get<uint16_t>(b, node + 4), 0) << "the free list is not held in its leaf";
  return node + 8 + Get<uint16_t>(b, node + 6) + 8;  // past the count
}

// Sets the record length in every copy of the engine's file header (magic "CTLMDB\1\0", the
// length at 16) the file holds.
void SetRecordLength(Bytes& b, uint32_t reclen) {
  const Bytes magic("CTLMDB\1\0", 8);
  for (size_t at = b.find(magic); at != Bytes::npos; at = b.find(magic, at + 1)) Set(b, at + 16, reclen);
}

// Makes the first segment of index by_id 200 bytes long (its key has 4) in every copy of the
// definition image the file holds (FORMAT.md: the index's name, file names, segment count, then
// offset and length).
void LengthenFirstSegment(Bytes& b) {
  const char image[] = "\5\0\0\0by_id\0\0\0\0\x0d\0\0\0customers.idx\1\0\0\0";
  const Bytes seen(image, sizeof image - 1);
  size_t copies = 0;
  for (size_t at = b.find(seen); at != Bytes::npos; at = b.find(seen, at + 1), ++copies)
    Set<uint16_t>(b, at + seen.size() + 2, 200);
  EXPECT_GT(copies, 0u);
}

struct Damage {
  const char* name;
  std::function<void(Bytes&)> apply;
};

const Damage kDamages[] = {
    {"empty", [](Bytes& b) { b.clear(); }},
    {"one page", [](Bytes& b) { b.resize(kPage); }},
    {"half", [](Bytes& b) { b.resize(b.size() / 2); }},
    {"last byte cut", [](Bytes& b) { b.pop_back(); }},
    {"a text file", [](Bytes& b) { b = "id,name,city\n1,Ada Quill,Brindlemoor\n"; }},
    {"another database format", [](Bytes& b) {
       b.assign(8 * kPage, '\0');
       b.replace(0, 16, Bytes("SQLite format 3\0", 16));
     }},
    {"meta pages zeroed", [](Bytes& b) { std::fill(b.begin(), b.begin() + 2 * kPage, '\0'); }},
    {"older meta page claims a later commit",
     [](Bytes& b) { Set(b, OlderMeta(b) + 144, Get<uint64_t>(b, OlderMeta(b) + 144) + 128); }},
    {"newer meta page's commit number changes parity",
     [](Bytes& b) { Set(b, NewerMeta(b) + 144, Get<uint64_t>(b, NewerMeta(b) + 144) ^ 1); }},
    {"newer meta page ends before the older",
     [](Bytes& b) { Set(b, NewerMeta(b) + 136, Get<uint64_t>(b, OlderMeta(b) + 136) - 1); }},
    {"header's record length 0", [](Bytes& b) { SetRecordLength(b, 0); }},
    {"header's record length 2^31", [](Bytes& b) { SetRecordLength(b, 0x80000000u); }},
    {"newer meta page gives a page size of 3", [](Bytes& b) { Set<uint32_t>(b, NewerMeta(b) + 40, 3); }},
    {"main database flagged as holding duplicates", [](Bytes& b) { b[NewerMeta(b) + 88 + 4] |= 0x04; }},
    {"free list flagged as holding duplicates", [](Bytes& b) { b[NewerMeta(b) + 40 + 4] |= 0x04; }},
    {"definition's segment longer than its key", LengthenFirstSegment},
    {"page in use zeroed", [](Bytes& b) { std::fill_n(b.begin() + MainRoot(b), kPage, '\0'); }},
    {"page in use marked as changed in memory", [](Bytes& b) { b[MainRoot(b) + 10] |= 0x10; }},
    {"page in use names another page", [](Bytes& b) { b[MainRoot(b)] ^= 1; }},
    {"node pointing outside its page", [](Bytes& b) { Set<uint16_t>(b, MainRoot(b) + 16, 4095); }},
    {"free list names a page in use", [](Bytes& b) { Set<uint64_t>(b, FirstFreeEntry(b), MainRoot(b) / kPage); }},
};

using EngineDamageKinds = EngineTest;

TEST_F(EngineDamageKinds, EveryDamageIsReportedBeforeTheDamagedPartIsRead) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  for (int id = 0; id < 300; ++id) ASSERT_EQ(Add(dat, id, "name", "city"), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  const Bytes sound = Load("customers.dat");
  for (const Damage& damage : kDamages) {
    SCOPED_TRACE(damage.name);
    Bytes bytes = sound;
    damage.apply(bytes);
    Store("customers.dat", bytes);
    const COUNT opened = api.OPNRFIL(0, (pTEXT) "customers.dat", EXCLUSIVE);
    if (opened == 0) {
      EXPECT_EQ(api.GETFIL(0, FILVERIFY), -1);
      EXPECT_EQ(LastError(), CT_EDAMAGED);
      ASSERT_EQ(api.CLRFIL(0), 0);
    } else {
      EXPECT_EQ(opened, CT_EDAMAGED);
    }
    EXPECT_EQ(api.RBLIFIL(&def_.ifil), CT_EDAMAGED);
  }
}

TEST_F(EngineDamageKinds, GarbageLockFilesAreMadeAfreshAndEveryRecordReadsBack) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  for (int id = 0; id < 50; ++id) ASSERT_EQ(Add(dat, id, "name", "city"), 0);
  const std::string before = Digest(api, dat, 2);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  for (const char* file : {"customers.dat-lock", "customers.dat-rlock", "customers.idx-lock", "customers.idx-rlock"}) {
    for (const Bytes& garbage : {Bytes(), Bytes("\x7f" "ELF garbage"), Bytes(3 * kPage, '\xa5')}) {
      SCOPED_TRACE(std::string(file) + " of " + std::to_string(garbage.size()) + " bytes");
      Store(file, garbage);
      ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
      EXPECT_TRUE(Digest(api, 0, 2) == before);
      Customer c = MakeCustomer(1000, "Odo Venn", "Quenby");
      EXPECT_EQ(api.ADDREC(0, &c), 0);
      EXPECT_EQ(api.DELREC(0), 0);
      ASSERT_EQ(api.CLRFIL(0), 0);
    }
  }
}

}  // namespace
