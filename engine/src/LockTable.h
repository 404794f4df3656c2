// LockTable: record locks of one physical file, shared by the handles of this process and
// held across processes with fcntl byte-range locks on the file's LMDB lock file.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

namespace cte {

// A lock key names one lockable thing of the file: (member << 32) | position for a record of
// member `member` (0 for a plain file), position 1 for a member's open mode. Inside this
// process an owner is a file number; across processes the kernel arbitrates one byte per key at
// offset kLockBase + key of the lock file. The kernel drops a killed process's locks, so a dead
// process never holds one. The range below kLockBase is left to LMDB (it locks bytes up to the
// largest process id there).
class LockTable {
 public:
  static constexpr uint64_t kLockBase = uint64_t{1} << 40;

  // Opens lockPath (the file's "-lock" file) for locking. Throws Fail CT_EIO when it cannot.
  explicit LockTable(const std::string& lockPath);
  ~LockTable();
  LockTable(const LockTable&) = delete;
  LockTable& operator=(const LockTable&) = delete;

  // Takes a write (exclusive) or read (shared) lock on key for owner without waiting. False when
  // another owner of this process or another process holds a conflicting lock. A second lock by
  // the same owner keeps the stronger of the two.
  bool Acquire(uint64_t key, int owner, bool write);
  // Drops owner's lock on key (nothing when it holds none).
  void Release(uint64_t key, int owner);
  // Drops every lock owner holds.
  void ReleaseOwner(int owner);
  // True when an owner other than `owner`, here or in another process, holds any lock on key.
  bool HeldByOther(uint64_t key, int owner) const;
  // True when owner holds a lock on key (write: a write lock).
  bool HeldBy(uint64_t key, int owner, bool write) const;

 private:
  struct Entry {
    std::map<int, bool> owners;  // owner -> holds a write lock
    short kernel = 0;            // F_RDLCK / F_WRLCK held on the byte, 0 for none
  };
  bool SetKernel(uint64_t key, short type) const;
  void Settle(uint64_t key, Entry& e);

  int fd_ = -1;
  std::unordered_map<uint64_t, Entry> entries_;
};

}  // namespace cte
