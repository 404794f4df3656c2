// Lmdb: RAII ownership of one LMDB environment per physical file, its read snapshot and cursors.
#pragma once

#include <lmdb.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Fail.h"
#include "LockTable.h"
#include "UndoLog.h"

namespace cte {

class SetJournal;

// One LMDB environment in single-file mode. LMDB refuses a second open of the same file in one
// process, so every handle on the file shares one Env (see Env::Acquire). The Env keeps one
// long-lived read transaction, renewed only when some process committed since it began: reads
// then cost no transaction setup, and cursors stay positioned between calls.
class Env {
 public:
  // Opens (or, with create, initialises an empty existing file as) the environment at path.
  // Shares an Env already open in this process. Throws Fail: FNOP_ERR when missing,
  // CT_EDAMAGED for a file LMDB does not recognise, that is truncated or not a regular file.
  static std::shared_ptr<Env> Acquire(const std::string& path, bool create);

  ~Env();
  Env(const Env&) = delete;
  Env& operator=(const Env&) = delete;

  MDB_env* Raw() const { return env_; }
  // The current read snapshot, renewed when another commit happened since it began; Gen()
  // changes whenever the snapshot does, so cursors know when to re-seek.
  MDB_txn* Snapshot();
  uint64_t Gen() const { return gen_; }
  // Opens (or creates, inside txn) the named database; handles are cached by name.
  MDB_dbi Dbi(MDB_txn* txn, const std::string& name, bool create, unsigned flags = 0);
  // Drops a cached handle (its database was dropped); ForgetAll drops every one (handles opened
  // in an aborted transaction are closed by LMDB).
  void Forget(const std::string& name) { dbis_.erase(name); }
  void ForgetAll() { dbis_.clear(); }
  // Begins a write transaction (retrying a map resize done by another process), after any set
  // journal left next to the file has been settled (SetJournal::Settle). A top-level one first
  // takes the file's writer lock (DTMO_ERR after the writer time-out), dropped when the
  // transaction ends. While holding, it begins a call scope in the innermost held transaction
  // instead and returns that transaction: the writes of the call are logged so that Abort undoes
  // them alone (no nested LMDB transaction per call). Throws the held transaction's failure when
  // an earlier write broke it.
  MDB_txn* BeginWrite();
  // Commits txn, flushed to disk when durable is set; while holding, ends the call scope.
  // Throws Fail on failure (txn is gone).
  void Commit(MDB_txn* txn, bool durable);
  // Aborts txn begun by BeginWrite; while holding, undoes the writes of the call scope.
  void Abort(MDB_txn* txn);
  // A plain write transaction that skips the set journal check (used by the journal itself);
  // it takes the writer lock like BeginWrite and is ended by Commit or Abort.
  MDB_txn* BeginUngated();

  // Held transactions: a stack whose base is the write transaction of a lock set or
  // transaction and whose upper levels are save points. Hold pushes a new level (nested when
  // one exists); CommitTop/AbortTop end the innermost. Epoch() changes with every push and pop,
  // so that write cursors opened on an ended level are never touched again.
  bool Holding() const { return !held_.empty(); }
  size_t HeldDepth() const { return held_.size(); }
  void Hold();
  void CommitTop(bool durable);
  void AbortTop();
  uint64_t Epoch() const { return epoch_; }
  const std::string& Path() const { return path_; }
  // True when the file was opened read-only because this process may not write it.
  bool ReadOnly() const { return readOnly_; }

  // A base held transaction begun while another file of this process already held one is
  // logged: the previous state of every key it writes goes to a set journal (spilled to a file
  // when large), so that the set can be undone in this file should a later file fail to commit.
  // The first file of a set is not logged: it commits last, and its transaction is its undo.
  bool Logged() const { return journal_ != nullptr; }
  // Hands the set journal of the base transaction to the caller (SetJournal::End).
  std::unique_ptr<SetJournal> TakeJournal();
  // Writes id as the set id of the base held transaction (nested levels must be committed);
  // SetJournal tells by it whether this file committed a multi-file set. Logged like a call.
  void MarkSet(uint64_t id);
  // The set id of the file's last commit that carried one (0 when none), read in txn or, when
  // txn is null, in a fresh snapshot.
  uint64_t LastSet(MDB_txn* txn = nullptr);
  // Records the state of key in dbi before a write of the open call scope (lookup: read it;
  // otherwise the key is known to be absent).
  void Remember(MDB_txn* txn, MDB_dbi dbi, const MDB_val& key, bool lookup);
  // Records every key of dbi, and the database itself when del, before a drop.
  void RememberAll(MDB_txn* txn, MDB_dbi dbi, bool del);
  // True when txn is the held transaction and a call scope is open (its writes are logged).
  bool InCall(MDB_txn* txn) const { return !marks_.empty() && !held_.empty() && txn == held_.back(); }
  // Notes the result of a write in the held transaction: an LMDB failure other than a refused
  // key leaves it unusable, and the set then fails at its end.
  void Note(int rc);

  // The record lock table of this file (created on first use).
  LockTable& Locks();
  // Longest wait of BeginWrite for another process's write transaction on the same file; after
  // it, BeginWrite throws DTMO_ERR. Set from the session's lock time-out.
  static void SetWriterTimeout(int ms);
  // Doubles the map after MDB_MAP_FULL; no transaction of this process may be active.
  void Grow();
 private:
  explicit Env(MDB_env* env);
  // Grows the map so that at least room bytes are free (no transaction may be active).
  void Reserve(size_t room);
  void DropSnapshot();
  void Advance();
  MDB_env* env_;
  std::string path_;
  std::vector<MDB_txn*> held_;
  uint64_t epoch_ = 1;
  std::unique_ptr<LockTable> locks_;
  MDB_txn* rtxn_ = nullptr;
  bool rtxnLive_ = false;
  uint64_t gen_ = 1;
  std::map<std::string, MDB_dbi> dbis_;
  std::map<MDB_dbi, std::string> names_;
  MDB_txn* BeginTop();
  void EndBase();
  UndoLog call_;               // the writes of the open call scope
  std::vector<size_t> marks_;  // where each open call scope begins in call_
  std::unique_ptr<SetJournal> journal_;
  int broken_ = 0;             // the LMDB failure that broke the held transaction
  size_t heldWrites_ = 0;      // writes done in the held transaction so far
  bool writing_ = false;       // a write transaction outside a set is open
  bool settling_ = false;      // a set journal is being settled from Snapshot
  bool readOnly_ = false;
};

// Writes through these are logged inside a call scope of a held transaction (Env::BeginWrite);
// same results as mdb_put, mdb_del and mdb_drop, which engine code does not call directly.
int Put(MDB_txn* txn, MDB_dbi dbi, MDB_val* key, MDB_val* val, unsigned flags);
int Del(MDB_txn* txn, MDB_dbi dbi, MDB_val* key, MDB_val* val);
int Drop(MDB_txn* txn, MDB_dbi dbi, int del);

// A read cursor bound to an Env's snapshot generation; re-bound (and marked unpositioned) when
// the snapshot changes. While the Env holds a write transaction the cursor is one opened on
// that transaction (LMDB frees such cursors when their transaction ends, so a cursor of an
// earlier epoch is dropped, never closed).
class Cursor {
 public:
  Cursor() = default;
  ~Cursor();
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;
  // Returns a cursor on dbi valid in env's current snapshot. Sets fresh when it had to be
  // re-bound (its position was lost).
  MDB_cursor* Get(Env& env, MDB_dbi dbi, bool& fresh);

 private:
  MDB_cursor* c_ = nullptr;
  uint64_t gen_ = 0;
  MDB_cursor* w_ = nullptr;
  Env* wenv_ = nullptr;
  uint64_t wepoch_ = 0, wgen_ = 0;
};

// Advisory whole-file lock that carries the EXCLUSIVE/SHARED open mode across processes and
// across handles of one process (flock locks belong to the open file description).
class FileLock {
 public:
  // Locks path shared or exclusive without waiting; throws Fail FNOP_ERR when missing or
  // refused, CT_EDAMAGED when path is not a regular file (a named pipe, a directory).
  FileLock(const std::string& path, bool exclusive);
  ~FileLock();
  // Makes the lock exclusive without waiting; false when another open holds the file (the lock
  // may then have been given up: only for a file about to be closed).
  bool TryExclusive();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  int fd_ = -1;
};

// Aborts a write transaction that was not committed.
class WriteTxn {
 public:
  explicit WriteTxn(Env& env) : env_(env), txn_(env.BeginWrite()) {}
  ~WriteTxn() {
    if (txn_) env_.Abort(txn_);
  }
  WriteTxn(const WriteTxn&) = delete;
  WriteTxn& operator=(const WriteTxn&) = delete;
  MDB_txn* Get() const { return txn_; }
  void Commit(bool durable) {
    MDB_txn* t = txn_;
    txn_ = nullptr;
    env_.Commit(t, durable);
  }

 private:
  Env& env_;
  MDB_txn* txn_;
};

// Counts of storage work done by this process since the library was loaded (IOPERFORMANCE).
struct IoCounters {
  uint64_t commits = 0;  // write transactions committed to a file (held ones when they end)
  uint64_t flushes = 0;  // commits flushed to disk (WRITETHRU, TRNLOG, OPS_FLUSH)
  uint64_t reads = 0;    // records copied into a caller's buffer (reads, batches)
};
IoCounters& Io();

// Checks an LMDB result and throws the matching Fail.
inline void Check(int rc) {
  if (rc != 0) ThrowLmdb(rc);
}

// The file's size in bytes, or -1 when it does not exist.
long long FileSize(const std::string& path);
// Removes a file with its LMDB lock file and lock region; true when the file itself was removed.
bool RemoveFile(const std::string& path);
// Renames a file with its lock file and lock region; throws Fail DCRAT_ERR when the target exists.
void RenameFile(const std::string& from, const std::string& to);

}  // namespace cte
