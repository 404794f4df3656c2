// Session: the session's start and end, error state, file numbers and file information.
#include "Session.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "StorageFiles.h"

namespace cte {

Session& TheSession() {
  static Session session;
  return session;
}

Position::Position(size_t nkeys) {
  for (size_t i = 0; i < nkeys; ++i) keys.push_back(std::make_unique<KeyPos>());
}

void Position::CopyFrom(const Position& o) {
  cur = o.cur;
  recAt = false;
  curGen = 0;
  for (size_t i = 0; i < keys.size() && i < o.keys.size(); ++i) {
    std::memcpy(keys[i]->key, o.keys[i]->key, sizeof keys[i]->key);
    keys[i]->pos = o.keys[i]->pos;
    keys[i]->valid = o.keys[i]->valid;
    keys[i]->at = false;
  }
}

void Session::Init(int fils, const char* servname) {
  if (active_) Throw(IINT_ERR);
  if (servname && *servname) Throw(NSRV_ERR);
  if (fils <= 0 || fils > CT_MAXFILES) Throw(CT_EBADARG);
  files_.clear();
  files_.resize(fils);
  contexts_.clear();
  FreeSets();
  FreeBatches();
  ops_ = 0;
  const char* timeout = std::getenv("CTISAM_LOCK_TIMEOUT_MS");
  lockTimeoutMs_ = timeout && std::atoi(timeout) > 0 ? std::atoi(timeout) : 5000;
  Env::SetWriterTimeout(lockTimeoutMs_);
  // Test hook: the process exits right after the first file of a multi-file set committed, as
  // if killed there (recovery tests).
  const char* crash = std::getenv("CTISAM_TEST_CRASH_BETWEEN_COMMITS");
  crashBetweenCommits_ = crash && std::strcmp(crash, "1") == 0;
  active_ = true;
}

// Ends the session: the writes of an open lock set are committed, those of an open transaction
// discarded; every lock is released with the files.
void Session::Close() {
  int failure = 0;
  // As in TranAbort: an aborted transaction's locks go first.
  if (tranActive_) ReleaseSetLocks();
  try {
    EndHeld(!tranActive_);
  } catch (const Fail& e) {
    failure = e.code;
  }
  tranActive_ = false;
  lockMode_ = FREE;
  suspended_ = false;
  for (auto& f : files_)
    if (f && f->store && !f->isIndex) DropTemporaryIfLast(*f);
  ReleaseSetLocks();
  contexts_.clear();
  for (auto& f : files_)
    if (f) ReleaseLocksOf(*f);
  files_.clear();
  active_ = false;
  if (failure) Throw(failure);
}

void Session::SetError(int code, int sys) {
  isamErr = static_cast<int16_t>(code);
  userErr = static_cast<int16_t>(code);
  sysio = static_cast<int16_t>(sys);
  ierr = static_cast<COUNT>(code);
}

Handle& Session::Slot(int filno) {
  if (filno < 0 || filno >= static_cast<int>(files_.size())) Throw(FNUM_ERR);
  if (!files_[filno]) Throw(CT_ENOTOPEN);
  return *files_[filno];
}

Handle& Session::File(int filno) {
  Handle& h = Slot(filno);
  if (h.isIndex && !h.store) Throw(CT_EUNMAPPED);
  return h;
}

Handle& Session::Data(int datno) {
  Handle& h = File(datno);
  if (h.isIndex || h.isHost) Throw(CT_ENOTDAT);
  return h;
}

Handle& Session::Index(int keyno) {
  Handle& h = File(keyno);
  if (!h.isIndex) Throw(CT_ENOTIDX);
  return h;
}

Position& Session::Pos(Handle& data) {
  if (data.active < 0) return *data.base;
  return *contexts_.at(data.active).pos;
}

void Session::CheckWritable(const Handle& h) const {
  if (h.mode & READFIL) Throw(CT_EREADONLY);
}

int Session::AvlFilNum(int n) const {
  if (n <= 0) Throw(CT_EBADARG);
  int run = 0;
  for (int i = 0; i < static_cast<int>(files_.size()); ++i) {
    run = files_[i] ? 0 : run + 1;
    if (run == n) return i - n + 1;
  }
  Throw(FNUM_ERR);
}

int16_t Session::Claim(int filno, int count) {
  if (filno < 0) filno = AvlFilNum(count);
  if (filno + count > static_cast<int>(files_.size())) Throw(FNUM_ERR);
  for (int i = filno; i < filno + count; ++i)
    if (files_[i]) Throw(FUSE_ERR);
  return static_cast<int16_t>(filno);
}

int Session::OpenCount() const {
  int n = 0;
  for (const auto& f : files_) n += f ? 1 : 0;
  return n;
}

void Session::TmpName(char* buf, long len) const {
  if (!buf || len < 16) Throw(CT_EBADARG);
  static unsigned counter = 0;
  for (int tries = 0; tries < 100000; ++tries) {
    char name[32];
    std::snprintf(name, sizeof name, "ct%05u%04u", static_cast<unsigned>(::getpid()) % 100000u,
                  counter++ % 10000u);
    std::string n(name);
    if (FileSize(n) < 0 && FileSize(n + ".dat") < 0 && FileSize(n + ".idx") < 0) {
      std::memcpy(buf, name, n.size() + 1);
      return;
    }
  }
  Throw(DCRAT_ERR);
}

void Session::GetNam(int filno, char* buf, long len) {
  Handle& h = Slot(filno);
  if (!buf || len <= static_cast<long>(h.name.size())) Throw(CT_EBADARG);
  std::memcpy(buf, h.name.c_str(), h.name.size() + 1);
}

long Session::GetFil(int filno, int mode) {
  Handle& h = File(filno);
  if (h.isHost) {
    if (mode == FILMOD) return h.mode;
    if (mode == FILTYP) return 2;
    Throw(CT_ENOTDAT);
  }
  switch (mode) {
    case RECLEN:
      return h.isIndex ? h.store->def().idx[h.ordinal].keylen : h.store->RecLen();
    case FILMOD: return h.mode;
    case KEYTYP: return h.isIndex ? h.store->def().idx[h.ordinal].keytype : 0;
    case KEYDUP: return h.isIndex ? h.store->def().idx[h.ordinal].dup : 0;
    case FILALIGN: return h.store->header().pack;
    case NUMMEMB: {
      if (!h.isIndex) return 0;
      long n = 0;
      for (const IndexDef& ix : h.store->def().idx) n += ix.file == h.store->def().idx[h.ordinal].file;
      return n;
    }
    case FILTYP: return h.isIndex ? 1 : 0;
    case FILVERIFY:
      // The walk reads without taking part in the backend's reader bookkeeping: only a file nobody
      // else can write while it runs (open exclusively) is walked.
      if (h.mode & SHARED) Throw(FMOD_ERR);
      if (Locate(h.path).IsMember()) Throw(NSUP_ERR);
      VerifyFile(h.path);
      return 0;
    default: Throw(CT_EBADARG);
  }
}

void Session::PutFil(int filno, int mode) {
  Handle& h = File(filno);
  if ((mode & ~READFIL) != (h.mode & ~READFIL)) Throw(FMOD_ERR);
  h.mode = mode;
}

void Session::DropContexts(int datno) {
  for (auto it = contexts_.begin(); it != contexts_.end();)
    it = it->second.datno == datno ? contexts_.erase(it) : std::next(it);
}

void Session::Release(int filno) {
  DropContexts(filno);
  ReleaseLocksOf(*files_[filno]);
  files_[filno].reset();
}

}  // namespace cte
