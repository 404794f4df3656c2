// KeptCursor: a cursor that stays positioned between calls (a context's current key or record).
#pragma once

#include "Cursor.h"
#include "Env.h"

namespace cte {

// Always used with one Env and one database. The backend re-binds it when the snapshot changes
// (and then reports it fresh: its position is lost) and while the Env holds a lock set's
// transaction gives one opened on that transaction.
class KeptCursor {
 public:
  KeptCursor() = default;
  ~KeptCursor() {
    if (c_) c_->Close();
  }
  KeptCursor(const KeptCursor&) = delete;
  KeptCursor& operator=(const KeptCursor&) = delete;
  // The cursor on db valid in env's current snapshot; fresh when it had to be re-bound.
  Cursor& Get(Env& env, Db db, bool& fresh) { return env.Keep(c_, db, fresh); }

 private:
  Cursor* c_ = nullptr;
};

}  // namespace cte
