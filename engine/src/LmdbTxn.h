// LmdbTxn: a Txn of the LMDB backend, one LMDB transaction (read snapshot, write or held).
#pragma once

#include <lmdb.h>

#include "Txn.h"

namespace cte {

class LmdbEnv;

// Owned by its LmdbEnv, which begins and ends the LMDB transaction raw. Writes inside a call
// scope of a held transaction are remembered first (LmdbEnv::Remember), so that the call can be
// undone alone.
class LmdbTxn final : public Txn {
 public:
  explicit LmdbTxn(LmdbEnv& env) : env_(env) {}
  LmdbTxn(LmdbEnv& env, MDB_txn* txn) : raw(txn), env_(env) {}
  ~LmdbTxn() = default;
  LmdbTxn(const LmdbTxn&) = delete;
  LmdbTxn& operator=(const LmdbTxn&) = delete;

  bool Get(Db db, Bytes key, Bytes& value) override;
  bool Put(Db db, Bytes key, Bytes value, PutMode mode) override;
  bool Del(Db db, Bytes key) override;
  void Drop(Db db, bool remove) override;
  uint64_t Count(Db db) override;
  Cursor* OpenCursor(Db db) override;

  // The LMDB transaction; null while none is begun.
  MDB_txn* raw = nullptr;

 private:
  LmdbEnv& env_;
};

}  // namespace cte
