// LmdbCursor: neutral cursor moves on LMDB cursors, per call and kept between calls.
#include "LmdbCursor.h"

#include "LmdbCheck.h"
#include "LmdbEnv.h"

namespace cte {

void LmdbCursor::Open(MDB_txn* txn, Db dbi) { Check(mdb_cursor_open(txn, dbi, &c_)); }

void LmdbCursor::Close() {
  mdb_cursor_close(c_);
  c_ = nullptr;
  env_.GiveBack(this);
}

void LmdbKeptCursor::Close() {
  if (c_) mdb_cursor_close(c_);
  if (w_ && wenv_->Holding() && wenv_->Epoch() == wepoch_) mdb_cursor_close(w_);
  delete this;
}

void LmdbKeptCursor::Bind(LmdbEnv& env, Db dbi, bool& fresh) {
  MDB_txn* txn = env.Read()->raw;
  fresh = false;
  if (env.Holding()) {
    if (!w_ || wenv_ != &env || wepoch_ != env.Epoch()) {
      w_ = nullptr;
      Check(mdb_cursor_open(txn, dbi, &w_));
      wenv_ = &env;
      wepoch_ = env.Epoch();
      wgen_ = 0;
    }
    // A write in the same transaction may have moved the cursor's page: re-seek.
    fresh = wgen_ != env.Gen();
    wgen_ = env.Gen();
    active_ = w_;
    return;
  }
  if (!c_ || gen_ != env.Gen()) {
    if (c_) {
      Check(mdb_cursor_renew(txn, c_));
    } else {
      Check(mdb_cursor_open(txn, dbi, &c_));
    }
    gen_ = env.Gen();
    fresh = true;
  }
  active_ = c_;
}

}  // namespace cte
