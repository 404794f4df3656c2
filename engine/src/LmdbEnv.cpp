// LmdbEnv: environment registry, snapshot renewal, map growth, held transactions and their
// call-scope undo.
#include "LmdbEnv.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "IoCounters.h"
#include "LmdbCheck.h"
#include "LmdbPages.h"
#include "LockTable.h"
#include "SetJournal.h"
#include "StorageFiles.h"
#include "ctisam.h"

namespace cte {

namespace {

// Small at first: the map doubles whenever a write finds it full (Env::Grow).
constexpr size_t kInitialMap = size_t{8} << 20;
constexpr unsigned kMaxDbs = 512;
// Room a held transaction (lock set, transaction) may fill before it gives CT_EDISKFULL. The
// map is address space, not disk: the file grows only with the pages written.
constexpr size_t kHeldRoom = size_t{4} << 30;
// Held transactions with at least this many writes are followed by Env::Advance.
constexpr size_t kAdvanceAfter = 1000;
// Base held transactions open in this process: a file that joins while there are some is
// logged (Env::Logged).
size_t heldBases = 0;

struct FileId {
  dev_t dev;
  ino_t ino;
  bool operator<(const FileId& o) const { return dev != o.dev ? dev < o.dev : ino < o.ino; }
};

int writerTimeoutMs = 5000;

std::map<FileId, std::weak_ptr<LmdbEnv>>& Registry() {
  static std::map<FileId, std::weak_ptr<LmdbEnv>> registry;
  return registry;
}

// LMDB reads the commit its meta page with the higher transaction number names, with the page
// size the page gives: both pages must give one sound size, and their numbers must be a pair LMDB
// writes, or a damaged one would make it read an older commit without a word.
// A commit of another process may land between the reads of the two pages: a pair that does not
// agree is read again before it counts as damage.
bool MetasAgree(MDB_env* env, size_t psize) {
  mdb_filehandle_t fd;
  if (!PageSizeSound(psize) || mdb_env_get_fd(env, &fd) != 0) return false;
  std::vector<uint8_t> head(2 * psize);
  for (int attempt = 0; attempt < 3; ++attempt) {
    const ssize_t n = ::pread(fd, head.data(), head.size(), 0);
    if (n == static_cast<ssize_t>(head.size()) && MetaPagesAgree(head.data(), psize)) return true;
  }
  return false;
}

std::string FolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

}  // namespace

void ThrowLmdb(int rc) {
  switch (rc) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
    case MDB_MAP_FULL:
      Throw(CT_EDISKFULL, rc > 0 ? rc : 0);
    case MDB_INVALID:
    case MDB_CORRUPTED:
    case MDB_VERSION_MISMATCH:
    case MDB_PAGE_NOTFOUND:
    case MDB_INCOMPATIBLE:
      Throw(CT_EDAMAGED);
    case ENOENT:
      Throw(FNOP_ERR, rc);
    case EACCES:
    case EROFS:
      // A file the process may read but not write was opened read-only (see Acquire).
      Throw(CT_EREADONLY, rc);
    default:
      Throw(CT_EIO, rc > 0 ? rc : 0);
  }
}

std::shared_ptr<Env> Env::Acquire(const std::string& path, bool create) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) Throw(FNOP_ERR, errno);
  if (!S_ISREG(st.st_mode)) Throw(CT_EDAMAGED);
  // An empty file would be initialised by LMDB: only a create may do that.
  if (st.st_size == 0 && !create) Throw(CT_EDAMAGED);
  FileId id{st.st_dev, st.st_ino};
  auto& reg = Registry();
  if (auto it = reg.find(id); it != reg.end()) {
    if (auto live = it->second.lock()) return live;
  }
  // A file this process may not write (another user's, a read-only medium) is opened
  // read-only, so that it can still be read; a write then fails with CT_EREADONLY. When the lock
  // file cannot be written either, reads go without LMDB's reader table: they are safe while no
  // other process writes the file, which is the case such a reader is for (documented).
  const bool readOnly = !create && ::access(path.c_str(), W_OK) != 0;
  const std::string lockPath = path + "-lock";
  bool hadLock = FileSize(lockPath) >= 0;
  const bool noLock = readOnly && (hadLock ? ::access(lockPath.c_str(), W_OK) != 0
                                           : ::access(FolderOf(path).c_str(), W_OK) != 0);
  MDB_env* raw = nullptr;
  Check(mdb_env_create(&raw));
  std::shared_ptr<LmdbEnv> env(new LmdbEnv(raw, path, readOnly));
  mdb_env_set_maxdbs(raw, kMaxDbs);
  size_t map = kInitialMap;
  while (map < static_cast<size_t>(st.st_size) * 2) map *= 2;
  mdb_env_set_mapsize(raw, map);
  const unsigned flags = MDB_NOSUBDIR | MDB_NOTLS | MDB_NOSYNC | (readOnly ? MDB_RDONLY : 0u) | (noLock ? MDB_NOLOCK : 0u);
  int rc = mdb_env_open(raw, path.c_str(), flags, 0644);
  if (rc != 0) {
    if (!hadLock) ::unlink((path + "-lock").c_str());
    ThrowLmdb(rc);
  }
  // A truncated file would fault when its missing pages are touched: refuse it here.
  MDB_envinfo info{};
  MDB_stat est{};
  mdb_env_info(raw, &info);
  mdb_env_stat(raw, &est);
  if (!create && static_cast<long long>(info.me_last_pgno + 1) * est.ms_psize > FileSize(path))
    Throw(CT_EDAMAGED);
  if (!create && !MetasAgree(raw, est.ms_psize)) Throw(CT_EDAMAGED);
  // Reader slots left by processes that died are released, so they do not pin old pages.
  int dead = 0;
  mdb_reader_check(raw, &dead);
  reg[id] = env;
  // A set journal left next to the file by a process that died between the commits of a
  // multi-file set is resolved before the file is used (by a process that may write it).
  if (readOnly) return env;
  SetJournal::Sweep(path);
  if (SetJournal::Pending(path)) SetJournal::Settle(*env, false);
  return env;
}

void Env::SetWriterTimeout(int ms) { writerTimeoutMs = ms; }

LmdbEnv::LmdbEnv(MDB_env* env, const std::string& path, bool readOnly) : Env(path, readOnly), env_(env) {}

LmdbEnv::~LmdbEnv() {
  while (!held_.empty()) AbortTop();
  DropSnapshot();
  locks_.reset();
  spare_.clear();
  mdb_env_close(env_);
}

LockTable& LmdbEnv::Locks() {
  if (!locks_) locks_ = std::make_unique<LockTable>(Path() + "-rlock");
  return *locks_;
}

// Ends the read snapshot's use of the map; its LMDB transaction is kept for renewal.
void LmdbEnv::ResetRead() {
  if (rtxnLive_) {
    mdb_txn_reset(read_.raw);
    rtxnLive_ = false;
  }
}

// The map cannot grow while a held transaction is open, so it gets its room before the first.
void LmdbEnv::Reserve(size_t room) {
  MDB_envinfo info{};
  MDB_stat st{};
  mdb_env_info(env_, &info);
  mdb_env_stat(env_, &st);
  size_t used = (info.me_last_pgno + 1) * st.ms_psize;
  if (info.me_mapsize >= used + room) return;
  size_t map = info.me_mapsize;
  while (map < used + room) map *= 2;
  ResetRead();
  Check(mdb_env_set_mapsize(env_, map));
}

void LmdbEnv::Hold() {
  MDB_txn* txn = nullptr;
  if (!held_.empty()) {
    Check(mdb_txn_begin(env_, held_.back()->raw, 0, &txn));
  } else {
    Reserve(kHeldRoom);
    // While the transaction is held it is this process's view of the file, so the read
    // snapshot is let go: kept, it would stop LMDB from reusing the pages that commits since it
    // began have freed, and the file would grow by a copy of every page the transaction touches.
    ResetRead();
    txn = static_cast<LmdbTxn*>(BeginWrite())->raw;
    write_.raw = nullptr;
    writing_ = false;
    if (heldBases > 0) journal_ = std::make_unique<SetJournal>(Path());
    ++heldBases;
  }
  try {
    held_.push_back(std::make_unique<LmdbTxn>(*this, txn));
  } catch (...) {
    mdb_txn_abort(txn);
    if (held_.empty()) {
      EndBase();
      Locks().Region().UnlockWriter();
    }
    throw;
  }
  ++epoch_;
  ++gen_;
}

void LmdbEnv::EndBase() {
  --heldBases;
  heldWrites_ = 0;
  journal_.reset();
  call_.Clear();
  marks_.clear();
  broken_ = 0;
}

void LmdbEnv::CommitTop(bool durable) {
  if (broken_) {
    int rc = broken_;
    AbortTop();
    ThrowLmdb(rc);
  }
  MDB_txn* txn = held_.back()->raw;
  held_.pop_back();
  ++epoch_;
  ++gen_;
  const size_t writes = heldWrites_;
  if (held_.empty()) EndBase();
  int rc = mdb_txn_commit(txn);
  if (rc == 0 && held_.empty() && writes >= kAdvanceAfter) Advance();
  if (held_.empty()) Locks().Region().UnlockWriter();
  if (rc != 0) {
    dbis_.clear();
    ThrowLmdb(rc);
  }
  if (!held_.empty()) return;
  ++Io().commits;
  if (durable) {
    Check(mdb_env_sync(env_, 1));
    ++Io().flushes;
  }
}

void LmdbEnv::AbortTop() {
  MDB_txn* txn = held_.back()->raw;
  held_.pop_back();
  ++epoch_;
  ++gen_;
  if (held_.empty()) EndBase();
  mdb_txn_abort(txn);
  if (held_.empty()) Locks().Region().UnlockWriter();
  // Handles opened inside the aborted transaction are closed by LMDB; names still open are
  // found again by mdb_dbi_open.
  dbis_.clear();
}

std::unique_ptr<SetJournal> LmdbEnv::TakeJournal() { return std::move(journal_); }

void LmdbEnv::Note(int rc) {
  ++heldWrites_;
  // A refused key or argument changes nothing; any other failure may have left pages half done.
  if (held_.empty() || rc == 0 || rc == MDB_NOTFOUND || rc == MDB_KEYEXIST) return;
  if (rc == MDB_BAD_VALSIZE || rc == EINVAL) return;
  if (!broken_) broken_ = rc;
}

namespace {

// The flags of dbi as undo entries keep them (Db.h). Entries written before the engine named
// its own flags held LMDB's, whose integer-key bit is the same.
static_assert(kIntegerKeys == MDB_INTEGERKEY);
unsigned NeutralFlags(MDB_txn* txn, MDB_dbi dbi) {
  unsigned flags = 0;
  Check(mdb_dbi_flags(txn, dbi, &flags));
  return flags & MDB_INTEGERKEY ? kIntegerKeys : 0;
}

}  // namespace

void LmdbEnv::Remember(MDB_txn* txn, MDB_dbi dbi, const MDB_val& key, bool lookup) {
  auto name = names_.find(dbi);
  if (name == names_.end()) Throw(CT_EIO);
  const unsigned flags = NeutralFlags(txn, dbi);
  MDB_val kv = key, old{};
  int rc = lookup ? mdb_get(txn, dbi, &kv, &old) : MDB_NOTFOUND;
  if (rc != 0 && rc != MDB_NOTFOUND) {
    Note(rc);
    ThrowLmdb(rc);
  }
  call_.Add(rc == 0 ? UndoLog::kExisted : UndoLog::kAbsent, name->second, flags, FromMdb(key), FromMdb(old));
}

void LmdbEnv::RememberAll(MDB_txn* txn, MDB_dbi dbi, bool del) {
  auto name = names_.find(dbi);
  if (name == names_.end()) Throw(CT_EIO);
  const unsigned flags = NeutralFlags(txn, dbi);
  MDB_cursor* c = nullptr;
  Check(mdb_cursor_open(txn, dbi, &c));
  MDB_val k{}, v{};
  for (int rc = mdb_cursor_get(c, &k, &v, MDB_FIRST); rc == 0; rc = mdb_cursor_get(c, &k, &v, MDB_NEXT))
    call_.Add(UndoLog::kExisted, name->second, flags, FromMdb(k), FromMdb(v));
  mdb_cursor_close(c);
  if (del) call_.Add(UndoLog::kDropped, name->second, flags, Bytes{}, Bytes{});
}

void LmdbEnv::Restore(Txn* t, UndoLog::Kind kind, const std::string& db, unsigned flags, Bytes key, Bytes value) {
  MDB_txn* txn = static_cast<LmdbTxn*>(t)->raw;
  if (kind == UndoLog::kCreated) {
    MDB_dbi dbi = 0;
    Forget(db);
    if (mdb_dbi_open(txn, db.c_str(), 0, &dbi) == 0) Check(mdb_drop(txn, dbi, 1));
    return;
  }
  const MDB_dbi dbi = Dbi(t, db, true, flags & kIntegerKeys);
  if (kind == UndoLog::kDropped) return;
  MDB_val k = ToMdb(key), v = ToMdb(value);
  int rc = kind == UndoLog::kExisted ? mdb_put(txn, dbi, &k, &v, 0) : mdb_del(txn, dbi, &k, nullptr);
  if (rc != 0 && rc != MDB_NOTFOUND) ThrowLmdb(rc);
}

void LmdbEnv::MarkSet(uint64_t id) {
  Txn* txn = BeginWrite();
  try {
    Db dbi = Dbi(txn, "setid", true);
    txn->Put(dbi, Bytes{2, "id"}, Bytes{sizeof id, &id});
  } catch (...) {
    Abort(txn);
    throw;
  }
  Commit(txn, false);
}

uint64_t LmdbEnv::LastSet(Txn* t) {
  MDB_txn* own = nullptr;
  MDB_txn* txn = t ? static_cast<LmdbTxn*>(t)->raw : nullptr;
  if (!txn) {
    Check(mdb_txn_begin(env_, nullptr, MDB_RDONLY, &own));
    txn = own;
  }
  MDB_dbi dbi = 0;
  uint64_t id = 0;
  MDB_val k{2, const_cast<char*>("id")}, v{};
  if (mdb_dbi_open(txn, "setid", 0, &dbi) == 0 && mdb_get(txn, dbi, &k, &v) == 0 && v.mv_size == sizeof id)
    std::memcpy(&id, v.mv_data, sizeof id);
  if (own) mdb_txn_abort(own);
  return id;
}

// LMDB hands out the pages a commit freed only from the second write transaction after it on
// (the previous meta page may still be read). A large held transaction frees a copy of every page
// it touched, so one tiny commit right after it lets the next transaction reuse those pages
// instead of growing the file: it rewrites the file header unchanged. Called with the writer lock
// held; a failure only loses the reuse.
void LmdbEnv::Advance() {
  auto meta = std::find_if(dbis_.begin(), dbis_.end(), [](const auto& d) {
    return d.first.size() >= 4 && d.first.compare(d.first.size() - 4, 4, "meta") == 0;
  });
  if (meta == dbis_.end()) return;
  MDB_txn* txn = nullptr;
  if (mdb_txn_begin(env_, nullptr, 0, &txn) != 0) return;
  MDB_val key{3, const_cast<char*>("hdr")}, val{};
  if (mdb_get(txn, meta->second, &key, &val) == 0) {
    std::string same(static_cast<const char*>(val.mv_data), val.mv_size);
    MDB_val copy{same.size(), same.data()};
    if (mdb_put(txn, meta->second, &key, &copy, 0) == 0 && mdb_txn_commit(txn) == 0) return;
  }
  mdb_txn_abort(txn);
}

void LmdbEnv::DropSnapshot() {
  if (read_.raw) mdb_txn_abort(read_.raw);
  read_.raw = nullptr;
  rtxnLive_ = false;
  ++gen_;
}

LmdbTxn* LmdbEnv::Read() {
  if (!held_.empty()) return held_.back().get();
  if (rtxnLive_) {
    MDB_envinfo info{};
    mdb_env_info(env_, &info);
    if (info.me_last_txnid == mdb_txn_id(read_.raw)) return &read_;
    ResetRead();
  }
  ++gen_;
  for (int attempt = 0;; ++attempt) {
    int rc = read_.raw ? mdb_txn_renew(read_.raw) : mdb_txn_begin(env_, nullptr, MDB_RDONLY, &read_.raw);
    if (rc == 0) break;
    if (read_.raw) {
      mdb_txn_abort(read_.raw);
      read_.raw = nullptr;
    }
    if (rc == MDB_MAP_RESIZED && attempt < 3) {
      Check(mdb_env_set_mapsize(env_, 0));
      continue;
    }
    ThrowLmdb(rc);
  }
  rtxnLive_ = true;
  // A commit of another process brought a set journal: the set is still committing (wait for
  // it) or its writer died (undo it), so that no half of a multi-file set stays visible.
  if (!settling_ && !writing_ && SetJournal::Pending(Path())) {
    ResetRead();
    settling_ = true;
    try {
      SetJournal::Settle(*this, false);
      LmdbTxn* txn = Read();
      settling_ = false;
      return txn;
    } catch (...) {
      settling_ = false;
      throw;
    }
  }
  return &read_;
}

Db LmdbEnv::Dbi(Txn* t, const std::string& name, bool create, unsigned neutral) {
  if (auto it = dbis_.find(name); it != dbis_.end()) return it->second;
  LmdbTxn* lt = static_cast<LmdbTxn*>(t);
  MDB_txn* txn = lt->raw;
  const unsigned flags = neutral & kIntegerKeys ? MDB_INTEGERKEY : 0;
  MDB_dbi dbi = 0;
  // A database created inside a call of a held transaction is logged, so that undoing the
  // call or the set drops it again.
  const bool logged = create && InCall(lt);
  int rc = mdb_dbi_open(txn, name.c_str(), flags | (create && !logged ? MDB_CREATE : 0), &dbi);
  if (rc == MDB_NOTFOUND && logged) {
    rc = mdb_dbi_open(txn, name.c_str(), flags | MDB_CREATE, &dbi);
    if (rc == 0) call_.Add(UndoLog::kCreated, name, neutral & kIntegerKeys, Bytes{}, Bytes{});
  }
  if (rc == MDB_NOTFOUND) Throw(CT_EDAMAGED);
  Note(rc);
  Check(rc);
  dbis_[name] = dbi;
  names_[dbi] = name;
  if (writing_ && held_.empty() && lt != &read_) openedInWrite_.push_back(name);
  // A read snapshot begun before the handle existed cannot use it: the next one is fresh.
  if (rtxnLive_ && lt != &read_) {
    ResetRead();
    ++gen_;
  }
  return dbi;
}

// The names of the named databases are the keys of the main database.
std::vector<std::string> LmdbEnv::DbNames(Txn* t, const std::string& prefix) {
  MDB_txn* txn = static_cast<LmdbTxn*>(t)->raw;
  MDB_dbi main = 0;
  Check(mdb_dbi_open(txn, nullptr, 0, &main));
  std::vector<std::string> names;
  MDB_cursor* c = nullptr;
  Check(mdb_cursor_open(txn, main, &c));
  MDB_val k{prefix.size(), const_cast<char*>(prefix.data())}, v{};
  for (int rc = mdb_cursor_get(c, &k, &v, MDB_SET_RANGE); rc == 0; rc = mdb_cursor_get(c, &k, &v, MDB_NEXT)) {
    std::string name(static_cast<const char*>(k.mv_data), k.mv_size);
    if (name.compare(0, prefix.size(), prefix) != 0) break;
    names.push_back(name);
  }
  mdb_cursor_close(c);
  return names;
}

// Handles opened in a read transaction that is committed outlive it (those of an aborted one
// would be closed again).
void LmdbEnv::ReadOnce(const std::function<void(Txn*)>& f) {
  LmdbTxn txn(*this);
  Check(mdb_txn_begin(env_, nullptr, MDB_RDONLY, &txn.raw));
  try {
    f(&txn);
  } catch (...) {
    mdb_txn_abort(txn.raw);
    throw;
  }
  Check(mdb_txn_commit(txn.raw));
}

LmdbTxn* LmdbEnv::BeginTop() {
  // One write transaction at a time per file and process: LMDB would wait for itself.
  if (write_.raw) Throw(CT_EIO);
  // LMDB's own writer wait has no time-out: the region's writer lock, taken first, has one. It
  // is dropped when the transaction ends (Commit, Abort, CommitTop, AbortTop).
  if (!Locks().Region().LockWriter(writerTimeoutMs)) Throw(DTMO_ERR);
  for (int attempt = 0;; ++attempt) {
    MDB_txn* txn = nullptr;
    int rc = mdb_txn_begin(env_, nullptr, 0, &txn);
    if (rc == 0) {
      write_.raw = txn;
      return &write_;
    }
    if (rc == MDB_MAP_RESIZED && attempt < 3) {
      ResetRead();
      if (mdb_env_set_mapsize(env_, 0) == 0) continue;
    }
    Locks().Region().UnlockWriter();
    ThrowLmdb(rc);
  }
}

Txn* LmdbEnv::BeginWrite() {
  if (!held_.empty()) {
    if (broken_) ThrowLmdb(broken_);
    marks_.push_back(call_.Size());
    return held_.back().get();
  }
  // The journal is looked for while this transaction holds the writer lock: no set can commit
  // this file meanwhile, so a journal found later belongs to a set that began after.
  for (int round = 0;; ++round) {
    LmdbTxn* txn = BeginTop();
    if (round == 3 || !SetJournal::Pending(Path())) {
      writing_ = true;
      return txn;
    }
    Abort(txn);
    SetJournal::Settle(*this, true);
  }
}

void LmdbEnv::Commit(Txn* t, bool durable) {
  if (!held_.empty()) {
    ++gen_;
    marks_.pop_back();
    if (!marks_.empty()) return;
    try {
      if (journal_) journal_->Append(call_.Data(), call_.Size());
    } catch (...) {
      // The journal lacks this call's undo: the set can no longer be undone, so it must fail.
      if (!broken_) broken_ = EIO;
      call_.Clear();
      throw;
    }
    call_.Clear();
    return;
  }
  LmdbTxn* txn = static_cast<LmdbTxn*>(t);
  writing_ = false;
  openedInWrite_.clear();
  int rc = mdb_txn_commit(txn->raw);
  txn->raw = nullptr;
  Locks().Region().UnlockWriter();
  Check(rc);
  ++Io().commits;
  if (durable) {
    Check(mdb_env_sync(env_, 1));
    ++Io().flushes;
  }
}

void LmdbEnv::Abort(Txn* t) {
  if (held_.empty()) {
    LmdbTxn* txn = static_cast<LmdbTxn*>(t);
    writing_ = false;
    // A handle opened in this transaction is closed with it; LMDB may give its number to the
    // next database opened, so a cached copy would reach the wrong one.
    for (const std::string& name : openedInWrite_) {
      if (auto it = dbis_.find(name); it != dbis_.end()) {
        names_.erase(it->second);
        dbis_.erase(it);
      }
    }
    openedInWrite_.clear();
    mdb_txn_abort(txn->raw);
    txn->raw = nullptr;
    Locks().Region().UnlockWriter();
    return;
  }
  ++gen_;
  const size_t from = marks_.back();
  marks_.pop_back();
  try {
    UndoLog::ApplyBackwards(*this, t, call_.Data() + from, call_.Size() - from);
  } catch (const Fail&) {
    if (!broken_) broken_ = MDB_BAD_TXN;
  }
  call_.Truncate(from);
}

void LmdbEnv::Grow() {
  // The map cannot be resized while this process has a write transaction open.
  if (!held_.empty()) Throw(CT_EDISKFULL);
  ResetRead();
  MDB_envinfo info{};
  mdb_env_info(env_, &info);
  Check(mdb_env_set_mapsize(env_, info.me_mapsize * 2));
}

Cursor& LmdbEnv::Keep(Cursor*& slot, Db db, bool& fresh) {
  if (!slot) slot = new LmdbKeptCursor();
  auto& kept = static_cast<LmdbKeptCursor&>(*slot);
  kept.Bind(*this, db, fresh);
  return kept;
}

LmdbCursor* LmdbEnv::TakeCursor() {
  if (spare_.empty()) return new LmdbCursor(*this);
  LmdbCursor* c = spare_.back().release();
  spare_.pop_back();
  return c;
}

void LmdbEnv::CopyCompact(const std::string& dest) {
  Check(mdb_env_copy2(env_, dest.c_str(), MDB_CP_COMPACT));
}

}  // namespace cte
