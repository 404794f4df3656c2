// Txn: one transaction of an Env (its read snapshot or a write transaction) and the reads and
// writes of records, keys and meta entries made in it.
#pragma once

#include <cstdint>

#include "Bytes.h"
#include "Cursor.h"
#include "Db.h"

namespace cte {

// How Put treats a key that is already stored.
enum class PutMode {
  kReplace,  // overwrite its value
  kNew,      // refuse it (Put returns false)
  kAppend,   // refuse it, and any key not above the database's last one (Put returns false)
};

// Owned by its Env (Snapshot, BeginWrite, BeginUngated) and ended through it (Commit, Abort);
// callers hold plain pointers for the duration of one call. Writes made while the Env holds a
// lock set's transaction are remembered so that Env::Abort can undo the call alone. Every
// method throws Fail for a storage failure (CT_EDISKFULL when the file is full, CT_EDAMAGED,
// CT_EREADONLY, CT_EIO); a refused or missing key is a result, not a failure.
class Txn {
 public:
  // The value stored under key in db; false when there is none.
  virtual bool Get(Db db, Bytes key, Bytes& value) = 0;
  // Stores value under key; false when mode refuses the key (nothing written).
  virtual bool Put(Db db, Bytes key, Bytes value, PutMode mode = PutMode::kReplace) = 0;
  // Removes key; false when it was not stored.
  virtual bool Del(Db db, Bytes key) = 0;
  // Removes every key of db; with remove, db itself too (its handle is then dead).
  virtual void Drop(Db db, bool remove) = 0;
  // The number of keys in db.
  virtual uint64_t Count(Db db) = 0;
  // A cursor on db in this transaction, unpositioned; Close it before the transaction ends.
  virtual Cursor* OpenCursor(Db db) = 0;

 protected:
  ~Txn() = default;
};

}  // namespace cte
