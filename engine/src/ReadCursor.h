// ReadCursor: a cursor on one database of a transaction, closed when the call that opened it ends.
#pragma once

#include "Cursor.h"
#include "Txn.h"

namespace cte {

class ReadCursor {
 public:
  // Opens a cursor on db in txn (the snapshot, or a write or held transaction); throws Fail.
  ReadCursor(Txn* txn, Db db) : c_(txn->OpenCursor(db)) {}
  ~ReadCursor() { c_->Close(); }
  ReadCursor(const ReadCursor&) = delete;
  ReadCursor& operator=(const ReadCursor&) = delete;
  // Cursor::Move: false when there is none, any failure thrown.
  bool Move(Seek op, Bytes& key, Bytes& value) { return c_->Move(op, key, value); }

 private:
  Cursor* c_;
};

}  // namespace cte
