// LockTable: record locks of one physical file, shared by the handles of this process and held
// across processes in the file's lock region.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "LockRegion.h"

namespace cte {

// A lock key names one lockable thing of the file: (member << 32) | position for a record of
// member `member` (0 for a plain file), position 1 for a member's open mode. Inside this
// process an owner is a file number; across processes the lock region holds one entry per key
// for the process (the strongest lock any of its owners holds). A lock taken `local` (by a
// handle that has the file open exclusively, so that no other process can contend) stays in
// this process's bookkeeping and never reaches the region.
class LockTable {
 public:
  // Attaches to the lock region at regionPath (the file's "-rlock" file); throws Fail as
  // LockRegion does.
  explicit LockTable(const std::string& regionPath);
  LockTable(const LockTable&) = delete;
  LockTable& operator=(const LockTable&) = delete;

  // Takes a write (exclusive) or read (shared) lock on key for owner without waiting. False when
  // another owner of this process or another process holds a conflicting lock. A second lock by
  // the same owner keeps the stronger of the two.
  bool Acquire(uint64_t key, int owner, bool write, bool local = false);
  // Drops owner's lock on key (nothing when it holds none).
  void Release(uint64_t key, int owner);
  // Drops the locks of many (key, owner) pairs with one visit to the region.
  void Release(const std::vector<std::pair<uint64_t, int>>& locks);
  // Drops every lock owner holds.
  void ReleaseOwner(int owner);
  // True when an owner other than `owner`, here or (unless local) in another process, holds any
  // lock on key.
  bool HeldByOther(uint64_t key, int owner, bool local = false);
  // True when owner holds a lock on key (write: a write lock).
  bool HeldBy(uint64_t key, int owner, bool write) const;
  // The region's writer lock (see LockRegion::LockWriter).
  LockRegion& Region() { return *region_; }

 private:
  enum Shared : uint8_t { kNone, kRead, kWrite };
  struct Entry {
    std::map<int, bool> owners;  // owner -> holds a write lock
    Shared shared = kNone;       // what this process holds in the region for the key
  };
  // After owners left e: drops or weakens the region's lock to what the rest need. Keys to drop
  // are collected in drops (released together by the caller).
  void Settle(uint64_t key, Entry& e, std::vector<uint64_t>& drops);

  std::unique_ptr<LockRegion> region_;
  std::unordered_map<uint64_t, Entry> entries_;
};

}  // namespace cte
