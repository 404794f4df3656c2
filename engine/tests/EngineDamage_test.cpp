// EngineDamage_test: files damaged behind the engine's back give CT_EDAMAGED, never a crash.
#include <lmdb.h>

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
