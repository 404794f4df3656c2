// WriteTxn: a write transaction of an Env that is aborted unless committed.
#pragma once

#include "Env.h"

namespace cte {

class WriteTxn {
 public:
  // Env::BeginWrite; throws its Fail.
  explicit WriteTxn(Env& env) : env_(env), txn_(env.BeginWrite()) {}
  ~WriteTxn() {
    if (txn_) env_.Abort(txn_);
  }
  WriteTxn(const WriteTxn&) = delete;
  WriteTxn& operator=(const WriteTxn&) = delete;
  Txn* Get() const { return txn_; }
  // Env::Commit; the transaction is gone whether it throws or not.
  void Commit(bool durable) {
    Txn* t = txn_;
    txn_ = nullptr;
    env_.Commit(t, durable);
  }

 private:
  Env& env_;
  Txn* txn_;
};

}  // namespace cte
