// Session.locks: lock sets (LKISAM), record locks (LOKREC), held write transactions and the
// transaction calls built on them.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

#include "LockTable.h"
#include "SetJournal.h"
#include "Session.h"

namespace cte {

void Session::Join(Handle& h) {
  Env& env = h.store->env();
  for (HeldEnv& he : held_) {
    if (he.env.get() == &env) {
      he.durable = he.durable || h.store->Durable(CommitMode(h));
      return;
    }
  }
  env.Hold();
  held_.push_back(HeldEnv{h.store->EnvPtr(), savepoints_, h.store->Durable(CommitMode(h))});
}

void Session::EndHeld(bool commit) {
  std::vector<HeldEnv> held = std::move(held_);
  held_.clear();
  savepoints_ = 0;
  std::vector<SetJournal::File> files;
  for (HeldEnv& he : held) files.push_back(SetJournal::File{he.env, he.durable});
  int failure = 0, sys = 0;
  try {
    SetJournal::End(std::move(files), commit, crashBetweenCommits_);
  } catch (const Fail& e) {
    failure = e.code;
    sys = e.sysio;
  }
  // Definitions cached by the stores may have changed inside what was aborted.
  if (!commit || failure) {
    for (auto& f : files_)
      if (f && f->store && !f->isIndex) Refresh(*f->store);
  }
  if (failure) Throw(failure, sys);
}

// Grouped by file, so that each file's lock region is visited once for all the set's keys.
void Session::ReleaseSetLocks() {
  std::stable_sort(setLocks_.begin(), setLocks_.end(),
                   [](const SetLock& a, const SetLock& b) { return a.env.get() < b.env.get(); });
  std::vector<std::pair<uint64_t, int>> keys;
  for (size_t i = 0; i < setLocks_.size();) {
    Env& env = *setLocks_[i].env;
    keys.clear();
    for (; i < setLocks_.size() && setLocks_[i].env.get() == &env; ++i) keys.emplace_back(setLocks_[i].key, setLocks_[i].owner);
    env.Locks().Release(keys);
  }
  setLocks_.clear();
}

void Session::ReleaseLocksOf(Handle& h) {
  if (h.isIndex || !h.store) return;
  Env& env = h.store->env();
  env.Locks().ReleaseOwner(h.self);
  std::erase_if(setLocks_, [&](const SetLock& l) { return l.owner == h.self && l.env.get() == &env; });
}

void Session::TakeLock(Handle& h, uint32_t pos, bool write, bool wait, bool setLock) {
  LockTable& locks = h.store->env().Locks();
  const uint64_t key = h.store->LockKey(pos);
  if (locks.HeldBy(key, h.self, write)) return;
  bool had = locks.HeldBy(key, h.self, false);
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(lockTimeoutMs_);
  auto pause = std::chrono::milliseconds(1);
  // A file open exclusively has no other process to contend with: its locks stay in this process.
  const bool local = !(h.mode & SHARED);
  while (!locks.Acquire(key, h.self, write, local)) {
    if (!wait) Throw(DLOK2_ERR);
    if (std::chrono::steady_clock::now() >= deadline) Throw(DTMO_ERR);
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, std::chrono::milliseconds(20));
  }
  if (setLock && !had) setLocks_.push_back(SetLock{h.store->EnvPtr(), key, h.self});
}

void Session::AutoLock(Handle& h, uint32_t pos, bool forChange) {
  if (lockMode_ == FREE || suspended_) return;
  TakeLock(h, pos, forChange || lockMode_ != READREC, lockMode_ == ENABLE_BLK, true);
}

void Session::CheckChange(Handle& h, uint32_t pos) {
  LockTable& locks = h.store->env().Locks();
  const uint64_t key = h.store->LockKey(pos);
  if (lockMode_ != FREE && !suspended_)
    AutoLock(h, pos, true);
  else if (locks.HeldByOther(key, h.self, !(h.mode & SHARED)))
    Throw(DLOK2_ERR);
  if (((h.mode | h.store->header().filmod) & CHECKLOCK) && !locks.HeldBy(key, h.self, true)) Throw(DLOK_ERR);
}

void Session::LockSet(int mode) {
  switch (mode) {
    case ENABLE:
    case ENABLE_BLK:
    case READREC:
      lockMode_ = mode;
      suspended_ = false;
      return;
    case SUSPEND:
    case RESTORE:
      if (lockMode_ == FREE) Throw(CT_ETRAN);
      suspended_ = mode == SUSPEND;
      return;
    case FREE:
    case RESET: {
      // Inside a transaction the locks and the writes stay until it ends.
      if (tranActive_) {
        if (mode == FREE) lockMode_ = FREE;
        return;
      }
      int keep = mode == RESET ? lockMode_ : FREE;
      lockMode_ = FREE;
      suspended_ = false;
      try {
        EndHeld(true);
      } catch (...) {
        ReleaseSetLocks();
        throw;
      }
      ReleaseSetLocks();
      lockMode_ = keep;
      return;
    }
    default: Throw(CT_EBADARG);
  }
}

// Inside a transaction a record lock is part of the transaction: taken as one of its locks and
// freed only when it ends. Freeing it earlier would let another program lock the record and
// read the value from before this transaction's change, then overwrite the change once this
// transaction commits: a lost update.
void Session::LockRecord(int datno, int mode, uint32_t pos) {
  Handle& h = Data(datno);
  switch (mode) {
    case FREE: {
      LockTable& locks = h.store->env().Locks();
      const uint64_t key = h.store->LockKey(pos);
      if (!locks.HeldBy(key, h.self, false)) Throw(DLOK_ERR);
      const auto inSet = [&](const SetLock& l) { return l.owner == h.self && l.key == key && l.env.get() == &h.store->env(); };
      if (tranActive_ && std::any_of(setLocks_.begin(), setLocks_.end(), inSet)) return;
      locks.Release(key, h.self);
      std::erase_if(setLocks_, [&](const SetLock& l) { return l.owner == h.self && l.key == key && l.env.get() == &h.store->env(); });
      return;
    }
    case ENABLE: TakeLock(h, pos, true, false, tranActive_); return;
    case ENABLE_BLK: TakeLock(h, pos, true, true, tranActive_); return;
    case READREC: TakeLock(h, pos, false, false, tranActive_); return;
    default: Throw(CT_EBADARG);
  }
}

long Session::TranBegin(int mode) {
  if (tranActive_) Throw(CT_ETRAN);
  int lock = mode & 7;
  if (lock != 0 && lock != ENABLE && lock != ENABLE_BLK && lock != READREC) Throw(CT_EBADARG);
  tranActive_ = true;
  savepoints_ = 0;
  if (lock) {
    lockMode_ = lock;
    suspended_ = false;
  }
  return ++tranNo_;
}

void Session::TranEnd(int mode) {
  if (!tranActive_) Throw(CT_ETRAN);
  tranActive_ = false;
  try {
    EndHeld(true);
  } catch (...) {
    lockMode_ = FREE;
    ReleaseSetLocks();
    throw;
  }
  if (mode == FREE) {
    lockMode_ = FREE;
    ReleaseSetLocks();
  }
}

void Session::TranAbort() {
  if (!tranActive_) Throw(CT_ETRAN);
  tranActive_ = false;
  lockMode_ = FREE;
  suspended_ = false;
  // The locks go before the abort: the positions of records the transaction added are given out
  // again as soon as the abort frees the file's writer lock, and must not be found locked.
  ReleaseSetLocks();
  EndHeld(false);
}

int Session::TranSave() {
  if (!tranActive_) Throw(CT_ETRAN);
  ++savepoints_;
  for (HeldEnv& he : held_) he.env->Hold();
  return savepoints_;
}

void Session::TranRestore(int savepoint) {
  if (!tranActive_ || savepoint < 1 || savepoint > savepoints_) Throw(CT_ETRAN);
  for (auto it = held_.begin(); it != held_.end();) {
    Env& env = *it->env;
    if (it->joinLevel >= savepoint) {
      while (env.Holding()) env.AbortTop();
      it = held_.erase(it);
      continue;
    }
    size_t depth = 1 + static_cast<size_t>(savepoint - it->joinLevel);
    while (env.HeldDepth() >= depth) env.AbortTop();
    env.Hold();
    ++it;
  }
  savepoints_ = savepoint;
  for (auto& f : files_)
    if (f && f->store && !f->isIndex) Refresh(*f->store);
}

}  // namespace cte
