// LmdbEnv: the Env of the LMDB backend, one LMDB environment per physical file, with its read
// snapshot, held transactions and the call-scope undo tied to them.
#pragma once

#include <lmdb.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Env.h"
#include "LmdbCursor.h"
#include "LmdbTxn.h"

namespace cte {

// A file in LMDB's single-file mode. LMDB refuses a second open of the same file in one process,
// so every handle on the file shares one LmdbEnv (Env::Acquire).
class LmdbEnv final : public Env {
 public:
  ~LmdbEnv() override;

  Txn* Snapshot() override { return Read(); }
  Db Dbi(Txn* txn, const std::string& name, bool create, unsigned flags = 0) override;
  void Forget(const std::string& name) override { dbis_.erase(name); }
  void ForgetAll() override { dbis_.clear(); }
  std::vector<std::string> DbNames(Txn* txn, const std::string& prefix) override;
  void ReadOnce(const std::function<void(Txn*)>& f) override;
  Txn* BeginWrite() override;
  void Commit(Txn* txn, bool durable) override;
  void Abort(Txn* txn) override;
  Txn* BeginUngated() override { return BeginTop(); }
  void Grow() override;
  bool Holding() const override { return !held_.empty(); }
  size_t HeldDepth() const override { return held_.size(); }
  void Hold() override;
  void CommitTop(bool durable) override;
  void AbortTop() override;
  bool Logged() const override { return journal_ != nullptr; }
  std::unique_ptr<SetJournal> TakeJournal() override;
  void MarkSet(uint64_t id) override;
  uint64_t LastSet(Txn* txn = nullptr) override;
  void Restore(Txn* txn, UndoLog::Kind kind, const std::string& db, unsigned flags, Bytes key,
               Bytes value) override;
  Cursor& Keep(Cursor*& slot, Db db, bool& fresh) override;
  void CopyCompact(const std::string& dest) override;
  LockTable& Locks() override;

  // The current snapshot as the backend's transaction (see Snapshot).
  LmdbTxn* Read();
  // Changes with every push and pop of a held level, so that write cursors opened on an ended
  // level are never touched again.
  uint64_t Epoch() const { return epoch_; }
  // True when txn is the held transaction and a call scope is open (its writes are remembered).
  bool InCall(const LmdbTxn* txn) const {
    return !marks_.empty() && !held_.empty() && txn == held_.back().get();
  }
  // Records the state of key in dbi before a write of the open call scope (lookup: read it;
  // otherwise the key is known to be absent).
  void Remember(MDB_txn* txn, MDB_dbi dbi, const MDB_val& key, bool lookup);
  // Records every key of dbi, and the database itself when del, before a drop.
  void RememberAll(MDB_txn* txn, MDB_dbi dbi, bool del);
  // Notes the result of a write in the held transaction: an LMDB failure other than a refused
  // key leaves it unusable, and the set then fails at its end.
  void Note(int rc);
  // A cursor object for LmdbTxn::OpenCursor, and its return by LmdbCursor::Close.
  LmdbCursor* TakeCursor();
  void GiveBack(LmdbCursor* c) { spare_.emplace_back(c); }

 private:
  friend class Env;
  LmdbEnv(MDB_env* env, const std::string& path, bool readOnly);
  // Grows the map so that at least room bytes are free (no transaction may be active).
  void Reserve(size_t room);
  void ResetRead();
  void DropSnapshot();
  void Advance();
  LmdbTxn* BeginTop();
  void EndBase();
  MDB_env* env_;
  std::vector<std::unique_ptr<LmdbTxn>> held_;
  uint64_t epoch_ = 1;
  std::unique_ptr<LockTable> locks_;
  LmdbTxn read_{*this};   // the read snapshot (its LMDB transaction is reset, not freed)
  bool rtxnLive_ = false;
  LmdbTxn write_{*this};  // the write transaction outside a set, or a held base being begun
  std::map<std::string, MDB_dbi> dbis_;
  std::map<MDB_dbi, std::string> names_;
  std::vector<std::unique_ptr<LmdbCursor>> spare_;  // closed cursor objects for reuse
  UndoLog call_;               // the writes of the open call scope
  std::vector<size_t> marks_;  // where each open call scope begins in call_
  std::unique_ptr<SetJournal> journal_;
  int broken_ = 0;             // the LMDB failure that broke the held transaction
  size_t heldWrites_ = 0;      // writes done in the held transaction so far
  bool writing_ = false;       // a write transaction outside a set is open
  // Names whose handles the open write transaction outside a set opened: LMDB closes those
  // handles when it aborts, so the cache must forget them then.
  std::vector<std::string> openedInWrite_;
  bool settling_ = false;      // a set journal is being settled from Snapshot
};

}  // namespace cte
