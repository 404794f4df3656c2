// LmdbTxn: reads and writes of one LMDB transaction; writes of a call scope are remembered.
#include "LmdbTxn.h"

#include "LmdbCheck.h"
#include "LmdbEnv.h"

namespace cte {

bool LmdbTxn::Get(Db db, Bytes key, Bytes& value) {
  MDB_val k = ToMdb(key), v{};
  const int rc = mdb_get(raw, db, &k, &v);
  if (rc == MDB_NOTFOUND) return false;
  Check(rc);
  value = FromMdb(v);
  return true;
}

bool LmdbTxn::Put(Db db, Bytes key, Bytes value, PutMode mode) {
  MDB_val k = ToMdb(key), v = ToMdb(value);
  const unsigned flags = mode == PutMode::kNew ? MDB_NOOVERWRITE : mode == PutMode::kAppend ? MDB_APPEND : 0;
  int rc;
  if (!env_.InCall(this)) {
    rc = mdb_put(raw, db, &k, &v, flags);
  } else {
    // A put that may not overwrite finds the key absent when it succeeds: no lookup needed.
    const bool fresh = mode != PutMode::kReplace;
    if (!fresh) env_.Remember(raw, db, k, true);
    rc = mdb_put(raw, db, &k, &v, flags);
    if (fresh && rc == 0) env_.Remember(raw, db, k, false);
    env_.Note(rc);
  }
  if (rc == MDB_KEYEXIST && mode != PutMode::kReplace) return false;
  Check(rc);
  return true;
}

bool LmdbTxn::Del(Db db, Bytes key) {
  MDB_val k = ToMdb(key);
  int rc;
  if (!env_.InCall(this)) {
    rc = mdb_del(raw, db, &k, nullptr);
  } else {
    env_.Remember(raw, db, k, true);
    rc = mdb_del(raw, db, &k, nullptr);
    env_.Note(rc);
  }
  if (rc == MDB_NOTFOUND) return false;
  Check(rc);
  return true;
}

void LmdbTxn::Drop(Db db, bool remove) {
  if (env_.InCall(this)) {
    env_.RememberAll(raw, db, remove);
    const int rc = mdb_drop(raw, db, remove ? 1 : 0);
    env_.Note(rc);
    Check(rc);
    return;
  }
  Check(mdb_drop(raw, db, remove ? 1 : 0));
}

uint64_t LmdbTxn::Count(Db db) {
  MDB_stat st{};
  Check(mdb_stat(raw, db, &st));
  return st.ms_entries;
}

Cursor* LmdbTxn::OpenCursor(Db db) {
  LmdbCursor* c = env_.TakeCursor();
  try {
    c->Open(raw, db);
  } catch (...) {
    env_.GiveBack(c);
    throw;
  }
  return c;
}

}  // namespace cte
