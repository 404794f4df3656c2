// LockRegion: the cross-process record locks and the writer lock of one physical file, kept in a
// shared-memory file beside it and guarded by robust process-shared mutexes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace cte {

struct RegionHeader;
struct RegionEntry;

// The file "<file>-rlock" (FORMAT.md, "Record locks") maps a header with two robust mutexes and a
// table of process slots, and an open-addressing hash table of (key, process slot, read/write)
// entries. Each attached process owns one slot and holds an fcntl write lock on that slot's byte
// for as long as it is attached, so a slot whose byte is free belongs to a dead process: its
// entries are dropped when someone runs into them or reuses the slot. The first process to
// attach alone (nobody holds the attach byte) initialises the file afresh. Acquiring or releasing
// a lock costs one mutex round and a short probe, however many locks are held.
class LockRegion {
 public:
  // Attaches to (creating when missing) the region file at path. Throws Fail: CT_ELOCKFILE when
  // the file is not a regular file, is damaged or of another layout while other processes use
  // it, or has no free process slot; CT_EIO when it cannot be created or mapped.
  explicit LockRegion(const std::string& path);
  // Drops every lock of this process and detaches.
  ~LockRegion();
  LockRegion(const LockRegion&) = delete;
  LockRegion& operator=(const LockRegion&) = delete;

  // Takes a read or write lock on key for this process without waiting; a lock this process
  // holds already becomes a write lock when write is set. False when another live process holds
  // a conflicting lock (write conflicts with anything, read with write).
  bool Acquire(uint64_t key, bool write);
  // Turns this process's write lock on key into a read lock.
  void Downgrade(uint64_t key);
  // Drops this process's lock on each of n keys (one mutex round for all of them).
  void Release(const uint64_t* keys, size_t n);
  // True when another live process holds any lock on key.
  bool HeldByOther(uint64_t key);

  // The file's writer lock, taken before a write transaction begins and dropped when it ends, so
  // that a writer waits at most timeoutMs for another process's write transaction (LMDB's own
  // writer wait has no time-out). False when the wait timed out. A holder that died leaves it
  // free. Not recursive: one write transaction per file and process at a time.
  bool LockWriter(int timeoutMs);
  void UnlockWriter();

 private:
  class Guard;
  void Attach();
  void Initialise();
  void Validate(long long size) const;
  void Register();
  void Lock();
  void Unlock();
  // Maps the table the header currently names (another process may have grown it).
  void FollowTable();
  void MapTable(uint64_t desc);
  // Rebuilds the table from its entries, dropping those of dead slots (and of slot `drop`).
  void Rebuild(int drop);
  bool Alive(uint32_t slot) const;
  void Grow();
  size_t Home(uint64_t key) const;
  size_t Find(uint64_t key, uint32_t owner) const;
  void Erase(size_t i);
  bool Conflict(uint64_t key, bool write, size_t& mine, size_t& end);

  std::string path_;
  int fd_ = -1;
  RegionHeader* hdr_ = nullptr;
  RegionEntry* table_ = nullptr;
  uint64_t tableDesc_ = 0;  // the header's table descriptor this process has mapped
  size_t capacity_ = 0;
  unsigned log_ = 0;  // capacity_ == 1 << log_
  uint32_t self_ = 0;  // this process's slot + 1
};

}  // namespace cte
