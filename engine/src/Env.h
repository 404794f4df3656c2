// Env: the storage of one physical file (records, keys, meta entries in named databases), its
// read snapshot, write transactions, lock-set transactions and record locks. The engine's call
// layer reaches storage only through Env, Txn and Cursor; the backend built in (LmdbEnv)
// implements them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Bytes.h"
#include "Cursor.h"
#include "Db.h"
#include "Fail.h"
#include "LockTable.h"
#include "Txn.h"
#include "UndoLog.h"

namespace cte {

class SetJournal;

// One Env per file and process: every handle on the file shares it (Acquire). It keeps one
// long-lived read snapshot, renewed only when some process committed since it began: reads then
// cost no transaction setup, and cursors stay positioned between calls.
class Env {
 public:
  // Opens (or, with create, initialises an empty existing file as) the storage at path; shares
  // an Env already open in this process. A file this process may not write is opened read-only
  // (ReadOnly). Throws Fail: FNOP_ERR when missing, CT_EDAMAGED for a file the backend does not
  // recognise, that is truncated or not a regular file. Defined by the backend.
  static std::shared_ptr<Env> Acquire(const std::string& path, bool create);
  // Longest wait of BeginWrite for another process's write transaction on the same file; after
  // it, BeginWrite throws DTMO_ERR. Set from the session's lock time-out. Defined by the backend.
  static void SetWriterTimeout(int ms);

  virtual ~Env() = default;
  Env(const Env&) = delete;
  Env& operator=(const Env&) = delete;

  const std::string& Path() const { return path_; }
  // True when the file was opened read-only because this process may not write it.
  bool ReadOnly() const { return readOnly_; }

  // Changes whenever the snapshot does, and with every write of a held transaction, so that
  // positions taken from it know when to re-seek (kept by the backend; read on every call).
  uint64_t Gen() const { return gen_; }

  // --- descendants must implement ---

  // The current read snapshot, renewed when another commit happened since it began (while
  // holding: the innermost held transaction).
  virtual Txn* Snapshot() = 0;
  // Opens (or creates, inside the write transaction txn) the named database with flags (Db.h);
  // handles are cached by name. CT_EDAMAGED when it is missing and create is not set.
  virtual Db Dbi(Txn* txn, const std::string& name, bool create, unsigned flags = 0) = 0;
  // Drops a cached handle (its database was dropped); ForgetAll drops every one.
  virtual void Forget(const std::string& name) = 0;
  virtual void ForgetAll() = 0;
  // The names of the file's databases that start with prefix, in name order, as seen in txn.
  virtual std::vector<std::string> DbNames(Txn* txn, const std::string& prefix) = 0;
  // Runs f in a short read transaction of its own (even while holding), whose database handles
  // (Dbi) stay valid after it: handles opened in a held transaction that is then aborted are not.
  virtual void ReadOnce(const std::function<void(Txn*)>& f) = 0;

  // Begins a write transaction, after any set journal left next to the file has been settled
  // (SetJournal::Settle). A top-level one first takes the file's writer lock (DTMO_ERR after
  // the writer time-out), dropped when the transaction ends. While holding, it begins a call
  // scope in the innermost held transaction instead and returns that transaction: the writes of
  // the call are remembered so that Abort undoes them alone. Throws the held transaction's
  // failure when an earlier write broke it.
  virtual Txn* BeginWrite() = 0;
  // Commits txn, flushed to disk when durable is set; while holding, ends the call scope.
  // Throws Fail on failure (txn is gone).
  virtual void Commit(Txn* txn, bool durable) = 0;
  // Aborts txn begun by BeginWrite; while holding, undoes the writes of the call scope.
  virtual void Abort(Txn* txn) = 0;
  // A plain write transaction that skips the set journal check (used by the journal itself);
  // it takes the writer lock like BeginWrite and is ended by Commit or Abort.
  virtual Txn* BeginUngated() = 0;
  // Makes room after a write found the file's storage full (CT_EDISKFULL with no sysio); no
  // transaction of this process may be active. Throws CT_EDISKFULL when none can be made.
  virtual void Grow() = 0;

  // Held transactions: a stack whose base is the write transaction of a lock set or transaction
  // and whose upper levels are save points. Hold pushes a new level (nested when one exists);
  // CommitTop/AbortTop end the innermost.
  virtual bool Holding() const = 0;
  virtual size_t HeldDepth() const = 0;
  virtual void Hold() = 0;
  virtual void CommitTop(bool durable) = 0;
  virtual void AbortTop() = 0;

  // A base held transaction begun while another file of this process already held one is
  // logged: the previous state of every key it writes goes to a set journal, so that the set
  // can be undone in this file should a later file fail to commit. The first file of a set is
  // not logged: it commits last, and its transaction is its undo.
  virtual bool Logged() const = 0;
  // Hands the set journal of the base transaction to the caller (SetJournal::End).
  virtual std::unique_ptr<SetJournal> TakeJournal() = 0;
  // Writes id as the set id of the base held transaction (nested levels must be committed);
  // SetJournal tells by it whether this file committed a multi-file set. Logged like a call.
  virtual void MarkSet(uint64_t id) = 0;
  // The set id of the file's last commit that carried one (0 when none), read in txn or, when
  // txn is null, in a fresh snapshot.
  virtual uint64_t LastSet(Txn* txn = nullptr) = 0;
  // Applies one undo entry (UndoLog) inside the write transaction txn without remembering it:
  // kAbsent removes key from database db, kExisted stores value under it, kCreated drops db,
  // kDropped creates db again with flags.
  virtual void Restore(Txn* txn, UndoLog::Kind kind, const std::string& db, unsigned flags, Bytes key,
                       Bytes value) = 0;

  // A persistent cursor on db valid in the current snapshot (or held transaction), made in slot
  // on first use and kept there until its owner closes it (KeptCursor). Sets fresh when it had
  // to be re-bound: its position was lost.
  virtual Cursor& Keep(Cursor*& slot, Db db, bool& fresh) = 0;
  // Writes a compacted copy of the file's committed state to the new file dest (RBLIFIL/CMPIFIL
  // compaction). Throws Fail.
  virtual void CopyCompact(const std::string& dest) = 0;
  // The record lock table of this file (created on first use).
  virtual LockTable& Locks() = 0;

 protected:
  Env(std::string path, bool readOnly) : path_(std::move(path)), readOnly_(readOnly) {}
  uint64_t gen_ = 1;

 private:
  std::string path_;
  bool readOnly_;
};

}  // namespace cte
