// EngineDamage_test: files damaged behind the engine's back give CT_EDAMAGED, never a crash.
#include <lmdb.h>
#include <sys/stat.h>

#include <fstream>

#include "EngineFixture.h"

namespace {

using EngineDamage = EngineTest;

// Overwrites (or deletes, when value is null) one entry of a named database of an engine file,
// with LMDB directly.
void Tamper(const char* file, const char* db, const void* key, size_t klen, const void* value, size_t vlen,
            unsigned flags = 0) {
  MDB_env* env = nullptr;
  ASSERT_EQ(mdb_env_create(&env), 0);
  mdb_env_set_maxdbs(env, 16);
  ASSERT_EQ(mdb_env_open(env, file, MDB_NOSUBDIR, 0644), 0);
  MDB_txn* txn = nullptr;
  ASSERT_EQ(mdb_txn_begin(env, nullptr, 0, &txn), 0);
  MDB_dbi dbi;
  ASSERT_EQ(mdb_dbi_open(txn, db, flags, &dbi), 0);
  MDB_val k{klen, const_cast<void*>(key)}, v{vlen, const_cast<void*>(value)};
  ASSERT_EQ(value ? mdb_put(txn, dbi, &k, &v, 0) : mdb_del(txn, dbi, &k, nullptr), 0);
  ASSERT_EQ(mdb_txn_commit(txn), 0);
  mdb_env_close(env);
}

// The stored bytes of one entry of a named database (empty when absent).
std::string Peek(const char* file, const char* db, const void* key, size_t klen, unsigned flags = 0) {
  MDB_env* env = nullptr;
  mdb_env_create(&env);
  mdb_env_set_maxdbs(env, 16);
  std::string out;
  MDB_txn* txn = nullptr;
  MDB_dbi dbi;
  MDB_val k{klen, const_cast<void*>(key)}, v{};
  if (mdb_env_open(env, file, MDB_NOSUBDIR | MDB_RDONLY, 0644) == 0 && mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn) == 0) {
    if (mdb_dbi_open(txn, db, flags, &dbi) == 0 && mdb_get(txn, dbi, &k, &v) == 0)
      out.assign(static_cast<const char*>(v.mv_data), v.mv_size);
    mdb_txn_abort(txn);
  }
  mdb_env_close(env);
  return out;
}

// Rewrites the format version in the header of an engine file.
void SetVersion(const char* file, uint32_t version) {
  std::string hdr = Peek(file, "meta", "hdr", 3);
  ASSERT_EQ(hdr.size(), 32u);
  std::memcpy(hdr.data() + 8, &version, 4);
  Tamper(file, "meta", "hdr", 3, hdr.data(), hdr.size());
}

constexpr uint32_t kFirstPos = 128;

// Files of the first layout store records as given; files of the current one store them
// shorter. Both read back the same records, and are maintained in their own layout.
TEST_F(EngineDamage, BothRecordLayoutsReadBackTheSameRecords) {
  for (uint32_t version : {1u, 2u}) {
    SCOPED_TRACE(version);
    COUNT dat = CreateCustomers(EXCLUSIVE);
    ASSERT_EQ(api.CLRFIL(dat), 0);
    SetVersion("customers.dat", version);
    ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", EXCLUSIVE), 0);
    ASSERT_EQ(Add(0, 7, "Ada Quill", "Brindlemoor", 2.5), 0);
    ASSERT_EQ(Add(0, 8, "Bo Fenwick", "Alderwyn"), 0);
    Customer c{};
    uint8_t key[4] = {0x80, 0, 0, 7};
    ASSERT_EQ(api.EQLREC(1, key, &c), 0);
    c.balance = 4.0;
    ASSERT_EQ(api.RWTREC(0, &c), 0);
    ASSERT_EQ(api.CLRFIL(0), 0);
    const size_t stored = Peek("customers.dat", "rec", &kFirstPos, 4, MDB_INTEGERKEY).size();
    EXPECT_EQ(stored == sizeof(Customer), version == 1) << stored;
    ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", EXCLUSIVE), 0);
    ASSERT_EQ(api.FRSREC(2, &c), 0);  // city order: Alderwyn first
    EXPECT_EQ(c.id, 8);
    EXPECT_STREQ(c.name, "Bo Fenwick");
    ASSERT_EQ(api.NXTREC(2, &c), 0);
    EXPECT_EQ(c.id, 7);
    EXPECT_STREQ(c.city, "Brindlemoor");
    EXPECT_EQ(double{c.balance}, 4.0);
    EXPECT_EQ(int32_t{c.date}, 0);
    ASSERT_EQ(api.DELRFIL(0), 0);
  }
}

TEST_F(EngineDamage, NewerFormatAndUndecodableRecordsAreRefused) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  ASSERT_EQ(Add(dat, 1, "Cy Marrow", "Quenby"), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  std::filesystem::copy_file("customers.dat", "newer.dat");
  SetVersion("newer.dat", 3);
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "newer.dat", SHARED), CT_EDAMAGED);
  const uint8_t truncated[] = {0x7F, 'x'};  // announces 128 bytes, holds one
  Tamper("customers.dat", "rec", &kFirstPos, 4, truncated, sizeof truncated, MDB_INTEGERKEY);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  Customer c{};
  EXPECT_EQ(api.FRSREC(0, &c), CT_EDAMAGED);
  EXPECT_EQ(api.FRSREC(1, &c), CT_EDAMAGED);
}

TEST_F(EngineDamage, GarbledDefinitionIsRefusedAtOpen) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  Tamper("customers.dat", "meta", "ifil", 4, "\x01\0\0\0\xff\xff\xff\x7f", 8);
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), CT_EDAMAGED);
  EXPECT_EQ(api.AVLFILNUM(3), 0);  // nothing was left open
}

TEST_F(EngineDamage, MissingHeaderOrIndexFileIsRefused) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  std::filesystem::copy_file("customers.dat", "copy.dat");
  Tamper("copy.dat", "meta", "hdr", 3, nullptr, 0);
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "copy.dat", SHARED), CT_EDAMAGED);
  std::filesystem::remove("customers.idx");
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), FNOP_ERR);
}

// A named pipe would make every open wait for a writer: it is refused at once instead.
TEST_F(EngineDamage, NamedPipeInPlaceOfAFileIsRefusedAtOnce) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  std::filesystem::rename("customers.idx", "customers.idx.saved");
  ASSERT_EQ(mkfifo("customers.idx", 0644), 0);
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), FCRP_ERR);
  ASSERT_EQ(mkfifo("plain.dat", 0644), 0);
  EXPECT_EQ(api.OPNFIL(0, (pTEXT) "plain.dat", SHARED), CT_EDAMAGED);
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "plain.dat", EXCLUSIVE), CT_EDAMAGED);
  EXPECT_EQ(api.AVLFILNUM(3), 0);
  std::filesystem::remove("customers.idx");
  std::filesystem::rename("customers.idx.saved", "customers.idx");
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
}

// Bytes flipped inside LMDB's pages would crash the process that reads them: the verify walks
// the pages in a child and reports 803, and the rebuild runs it before touching the file.
TEST_F(EngineDamage, DamagedPagesAreReportedByTheVerifyInsteadOfACrash) {
  COUNT dat = CreateCustomers();
  for (int id = 0; id < 3000; ++id) ASSERT_EQ(Add(dat, id, "name", "city"), 0);
  EXPECT_EQ(api.GETFIL(dat, FILVERIFY), -1);
  EXPECT_EQ(LastError(), FMOD_ERR);  // open shared: another process could be writing
  ASSERT_EQ(api.CLRFIL(dat), 0);
  ASSERT_EQ(api.OPNRFIL(dat, (pTEXT) "customers.dat", EXCLUSIVE), 0);
  EXPECT_EQ(api.GETFIL(dat, FILVERIFY), 0);
  const auto pages = std::filesystem::file_size("customers.dat") / 4096;
  ASSERT_GT(pages, 20u);
  {
    std::fstream f("customers.dat", std::ios::in | std::ios::out | std::ios::binary);
    const std::string junk(4096, '\x5a');
    for (auto page = pages / 4; page < 3 * pages / 4; ++page) {
      f.seekp(static_cast<std::streamoff>(page * 4096));
      f.write(junk.data(), static_cast<std::streamsize>(junk.size()));
    }
  }
  EXPECT_EQ(api.GETFIL(dat, FILVERIFY), -1);
  EXPECT_EQ(LastError(), CT_EDAMAGED);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  EXPECT_EQ(api.RBLIFIL(&def_.ifil), CT_EDAMAGED);
}

TEST_F(EngineDamage, KeyWithoutItsRecordIsReportedWhenReached) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  for (int id = 1; id <= 3; ++id) ASSERT_EQ(Add(dat, id, "n", "c"), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  uint8_t key[4] = {0x80, 0, 0, 9};
  uint32_t pos = 99999;
  Tamper("customers.dat", "k0", key, 4, &pos, 4);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), 0);
  Customer c{};
  ASSERT_EQ(api.FRSREC(1, &c), 0);
  EXPECT_EQ(c.id, 1);
  EXPECT_EQ(api.LSTREC(1, &c), CT_EDAMAGED);
  ASSERT_EQ(api.NXTREC(1, &c), 0);
  EXPECT_EQ(c.id, 2);
}

}  // namespace
