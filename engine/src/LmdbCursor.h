// LmdbCursor: the Cursor of the LMDB backend, for one call (LmdbCursor) or kept between calls
// (LmdbKeptCursor).
#pragma once

#include <lmdb.h>

#include <cstdint>

#include "Cursor.h"
#include "Db.h"
#include "LmdbCheck.h"

namespace cte {

class LmdbEnv;

// Moves an LMDB cursor by a neutral operation: false on MDB_NOTFOUND, other failures thrown.
// Inline: every record a scan reads passes here.
inline bool MoveLmdb(MDB_cursor* c, Seek op, Bytes& key, Bytes& value) {
  static constexpr MDB_cursor_op kOps[] = {MDB_FIRST, MDB_LAST, MDB_NEXT, MDB_PREV, MDB_SET_RANGE};
  static_assert(static_cast<int>(Seek::kAtOrAfter) == 4, "kOps follows the order of Seek");
  MDB_val k = ToMdb(key), v = ToMdb(value);
  const int rc = mdb_cursor_get(c, &k, &v, kOps[static_cast<int>(op)]);
  if (rc == MDB_NOTFOUND) return false;
  Check(rc);
  key = FromMdb(k);
  value = FromMdb(v);
  return true;
}

// A cursor for one call (Txn::OpenCursor). Close hands the object back to its Env, which reuses
// it for the next one, so that opening one costs no allocation beyond LMDB's own.
class LmdbCursor final : public Cursor {
 public:
  explicit LmdbCursor(LmdbEnv& env) : env_(env) {}
  ~LmdbCursor() = default;
  bool Move(Seek op, Bytes& key, Bytes& value) override { return MoveLmdb(c_, op, key, value); }
  void Close() override;
  // Opens the LMDB cursor on dbi in txn; throws Fail.
  void Open(MDB_txn* txn, Db dbi);

 private:
  LmdbEnv& env_;
  MDB_cursor* c_ = nullptr;
};

// A cursor bound to an Env's snapshot generation (LmdbEnv::Keep); re-bound, and reported fresh,
// when the snapshot changes. While the Env holds a write transaction the cursor is one opened on
// that transaction (LMDB frees such cursors when their transaction ends, so a cursor of an
// earlier epoch is dropped, never closed). Close deletes it.
class LmdbKeptCursor final : public Cursor {
 public:
  ~LmdbKeptCursor() = default;
  bool Move(Seek op, Bytes& key, Bytes& value) override { return MoveLmdb(active_, op, key, value); }
  void Close() override;
  // Makes the cursor valid in env's current snapshot (see Env::Keep).
  void Bind(LmdbEnv& env, Db dbi, bool& fresh);

 private:
  MDB_cursor* active_ = nullptr;  // the one Bind chose
  MDB_cursor* c_ = nullptr;       // on the read snapshot
  uint64_t gen_ = 0;
  MDB_cursor* w_ = nullptr;       // on the held transaction
  LmdbEnv* wenv_ = nullptr;
  uint64_t wepoch_ = 0, wgen_ = 0;
};

}  // namespace cte
