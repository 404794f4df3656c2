// ReadCursor: a cursor on one database of a snapshot, closed when the call that opened it ends.
#pragma once

#include <lmdb.h>

#include "Lmdb.h"

namespace cte {

class ReadCursor {
 public:
  // Opens a cursor on dbi in txn (the snapshot, or the held write transaction); throws Fail.
  ReadCursor(MDB_txn* txn, MDB_dbi dbi) { Check(mdb_cursor_open(txn, dbi, &c_)); }
  ~ReadCursor() { mdb_cursor_close(c_); }
  ReadCursor(const ReadCursor&) = delete;
  ReadCursor& operator=(const ReadCursor&) = delete;
  // mdb_cursor_get, with MDB_NOTFOUND returned and any other failure thrown.
  int Get(MDB_val& k, MDB_val& v, MDB_cursor_op op) {
    int rc = mdb_cursor_get(c_, &k, &v, op);
    if (rc != 0 && rc != MDB_NOTFOUND) Check(rc);
    return rc;
  }

 private:
  MDB_cursor* c_ = nullptr;
};

}  // namespace cte
