// LockTable: in-process owners per key, one kernel byte-range lock per key for the process.
#include "LockTable.h"

#include <fcntl.h>
#include <unistd.h>

#include "Fail.h"
#include "ctisam.h"

namespace cte {

LockTable::LockTable(const std::string& lockPath) {
  fd_ = ::open(lockPath.c_str(), O_RDWR | O_CLOEXEC);
  if (fd_ < 0) Throw(CT_EIO, errno);
}

// Closing the descriptor drops every kernel lock this process holds on the lock file, which is
// what the end of the table means.
LockTable::~LockTable() {
  if (fd_ >= 0) ::close(fd_);
}

bool LockTable::SetKernel(uint64_t key, short type) const {
  struct flock fl {};
  fl.l_type = type;
  fl.l_whence = SEEK_SET;
  fl.l_start = static_cast<off_t>(kLockBase + key);
  fl.l_len = 1;
  return ::fcntl(fd_, F_SETLK, &fl) == 0;
}

bool LockTable::Acquire(uint64_t key, int owner, bool write) {
  Entry& e = entries_[key];
  bool anyWrite = write;
  for (const auto& [o, w] : e.owners) {
    if (o == owner) {
      anyWrite = anyWrite || w;
      continue;
    }
    if (write || w) {
      if (e.owners.empty()) entries_.erase(key);
      return false;
    }
  }
  short want = anyWrite ? F_WRLCK : F_RDLCK;
  if (e.kernel != want && !(e.kernel == F_WRLCK && want == F_RDLCK)) {
    if (!SetKernel(key, want)) {
      if (e.owners.empty()) entries_.erase(key);
      return false;
    }
    e.kernel = want;
  }
  bool& mine = e.owners[owner];
  mine = mine || write;
  return true;
}

void LockTable::Settle(uint64_t key, Entry& e) {
  if (e.owners.empty()) {
    SetKernel(key, F_UNLCK);
    entries_.erase(key);
    return;
  }
  bool anyWrite = false;
  for (const auto& [o, w] : e.owners) anyWrite = anyWrite || w;
  if (!anyWrite && e.kernel == F_WRLCK && SetKernel(key, F_RDLCK)) e.kernel = F_RDLCK;
}

void LockTable::Release(uint64_t key, int owner) {
  auto it = entries_.find(key);
  if (it == entries_.end() || it->second.owners.erase(owner) == 0) return;
  Settle(key, it->second);
}

void LockTable::ReleaseOwner(int owner) {
  for (auto it = entries_.begin(); it != entries_.end();) {
    auto next = std::next(it);
    if (it->second.owners.erase(owner)) Settle(it->first, it->second);
    it = next;
  }
}

bool LockTable::HeldByOther(uint64_t key, int owner) const {
  if (auto it = entries_.find(key); it != entries_.end()) {
    for (const auto& [o, w] : it->second.owners)
      if (o != owner) return true;
  }
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  fl.l_start = static_cast<off_t>(kLockBase + key);
  fl.l_len = 1;
  if (::fcntl(fd_, F_GETLK, &fl) != 0) Throw(CT_EIO, errno);
  return fl.l_type != F_UNLCK;
}

bool LockTable::HeldBy(uint64_t key, int owner, bool write) const {
  auto it = entries_.find(key);
  if (it == entries_.end()) return false;
  auto o = it->second.owners.find(owner);
  return o != it->second.owners.end() && (!write || o->second);
}

}  // namespace cte
