// LockRegion: a hash table of record locks and a writer mutex in a mapped file, shared by every
// process that has the file open.
#include "LockRegion.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <thread>
#include <vector>

#include "Fail.h"
#include "ctisam.h"

namespace cte {

namespace {

constexpr char kMagic[8] = {'C', 'T', 'R', 'L', 'O', 'C', 'K', 1};
constexpr uint32_t kVersion = 1;
constexpr uint32_t kSlots = 1024;
constexpr size_t kHeaderBytes = size_t{64} << 10;
constexpr unsigned kInitialLog = 12;  // 4096 entries
constexpr unsigned kMaxLog = 31;
constexpr uint64_t kDescLogMask = 0xFFF;
// Byte-range locks (fcntl) on the file: byte 0 is held shared by every attached process (and
// exclusively by one that initialises the file); byte kSlotByte + s is held by slot s's process.
constexpr off_t kAttachByte = 0;
constexpr off_t kSlotByte = 16;
constexpr size_t kNone = static_cast<size_t>(-1);

bool ByteLock(int fd, off_t at, short type, int cmd = F_SETLK) {
  struct flock fl {};
  fl.l_type = type;
  fl.l_whence = SEEK_SET;
  fl.l_start = at;
  fl.l_len = 1;
  return ::fcntl(fd, cmd, &fl) == 0;
}

void InitMutex(pthread_mutex_t* m, int type) {
  pthread_mutexattr_t a;
  pthread_mutexattr_init(&a);
  pthread_mutexattr_setpshared(&a, PTHREAD_PROCESS_SHARED);
  pthread_mutexattr_setrobust(&a, PTHREAD_MUTEX_ROBUST);
  pthread_mutexattr_settype(&a, type);
  int rc = pthread_mutex_init(m, &a);
  pthread_mutexattr_destroy(&a);
  if (rc != 0) Throw(CT_EIO, rc);
}

uint64_t Desc(uint64_t offset, unsigned log) { return offset | log; }
uint64_t DescOffset(uint64_t desc) { return desc & ~kDescLogMask; }
unsigned DescLog(uint64_t desc) { return static_cast<unsigned>(desc & kDescLogMask); }
size_t TableBytes(unsigned log) { return (size_t{1} << log) * 16; }

}  // namespace

// Layout of the mapped header (FORMAT.md). Fields up to `used` are checked on attach.
struct RegionSlot {
  int32_t pid;
  uint32_t used;
};

struct RegionHeader {
  char magic[8];
  uint32_t version;
  uint32_t mutexSize;  // sizeof(pthread_mutex_t) of the library that made the file
  uint32_t slots;
  uint32_t entrySize;
  uint64_t table;  // where the table lives: file offset (multiple of 4096) | log2(capacity)
  uint64_t used;   // entries in the table
  pthread_mutex_t tableMutex;
  pthread_mutex_t writerMutex;
  RegionSlot slot[kSlots];
};
static_assert(sizeof(RegionHeader) <= kHeaderBytes);

struct RegionEntry {
  uint64_t key;
  uint32_t owner;  // slot + 1; 0 marks a free entry
  uint32_t write;
};
static_assert(sizeof(RegionEntry) == 16);

// Holds the table mutex and keeps the mapping on the table the header names.
class LockRegion::Guard {
 public:
  explicit Guard(LockRegion& r) : r_(r) { r_.Lock(); }
  ~Guard() { r_.Unlock(); }
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

 private:
  LockRegion& r_;
};

LockRegion::LockRegion(const std::string& path) : path_(path) {
  try {
    Attach();
    Register();
  } catch (...) {
    if (table_) ::munmap(table_, TableBytes(log_));
    if (hdr_) ::munmap(hdr_, kHeaderBytes);
    if (fd_ >= 0) ::close(fd_);
    throw;
  }
}

LockRegion::~LockRegion() {
  try {
    Guard g(*this);
    Rebuild(static_cast<int>(self_) - 1);
    hdr_->slot[self_ - 1].used = 0;
  } catch (const Fail&) {
    // Detaching anyway: the slot's byte lock goes with the descriptor, so the entries left are
    // those of a dead slot, dropped by whoever meets them.
  }
  if (table_) ::munmap(table_, TableBytes(log_));
  ::munmap(hdr_, kHeaderBytes);
  // The last process to leave empties the file: a table grown for a large lock set would keep
  // its size on disk otherwise. Whoever attaches next is alone and initialises it again; one that
  // tries meanwhile waits for the exclusive byte lock to go with the descriptor.
  if (ByteLock(fd_, kAttachByte, F_WRLCK)) static_cast<void>(::ftruncate(fd_, 0));
  // Closing the descriptor drops the attach and slot byte locks.
  ::close(fd_);
}

void LockRegion::Attach() {
  // O_NONBLOCK: a named pipe in the file's place must not make the open wait.
  fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0644);
  if (fd_ < 0) Throw(CT_EIO, errno);
  struct stat st {};
  if (::fstat(fd_, &st) != 0) Throw(CT_EIO, errno);
  if (!S_ISREG(st.st_mode)) Throw(CT_ELOCKFILE);
  // Whoever gets the attach byte exclusively is alone: it (re)initialises the file, then keeps
  // the byte shared like every other attached process. The others wait (briefly) until the
  // initialiser has downgraded.
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  for (;;) {
    if (ByteLock(fd_, kAttachByte, F_WRLCK)) {
      Initialise();
      if (!ByteLock(fd_, kAttachByte, F_RDLCK)) Throw(CT_EIO, errno);
      return;
    }
    if (ByteLock(fd_, kAttachByte, F_RDLCK)) break;
    if (std::chrono::steady_clock::now() >= deadline) Throw(CT_ELOCKFILE);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  if (::fstat(fd_, &st) != 0) Throw(CT_EIO, errno);
  Validate(st.st_size);
  void* p = ::mmap(nullptr, kHeaderBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
  if (p == MAP_FAILED) Throw(CT_EIO, errno);
  hdr_ = static_cast<RegionHeader*>(p);
}

void LockRegion::Initialise() {
  if (::ftruncate(fd_, 0) != 0 || ::ftruncate(fd_, static_cast<off_t>(kHeaderBytes + TableBytes(kInitialLog))) != 0)
    Throw(CT_EIO, errno);
  void* p = ::mmap(nullptr, kHeaderBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
  if (p == MAP_FAILED) Throw(CT_EIO, errno);
  hdr_ = static_cast<RegionHeader*>(p);
  hdr_->version = kVersion;
  hdr_->mutexSize = sizeof(pthread_mutex_t);
  hdr_->slots = kSlots;
  hdr_->entrySize = sizeof(RegionEntry);
  hdr_->table = Desc(kHeaderBytes, kInitialLog);
  hdr_->used = 0;
  InitMutex(&hdr_->tableMutex, PTHREAD_MUTEX_NORMAL);
  InitMutex(&hdr_->writerMutex, PTHREAD_MUTEX_ERRORCHECK);
  std::memcpy(hdr_->magic, kMagic, sizeof kMagic);
}

// Only the fixed fields can be checked: the mutexes and slots change all the time.
void LockRegion::Validate(long long size) const {
  RegionHeader h;
  constexpr size_t fixed = offsetof(RegionHeader, tableMutex);
  if (size < static_cast<long long>(kHeaderBytes) || ::pread(fd_, &h, fixed, 0) != static_cast<ssize_t>(fixed))
    Throw(CT_ELOCKFILE);
  if (std::memcmp(h.magic, kMagic, sizeof kMagic) != 0 || h.version != kVersion ||
      h.mutexSize != sizeof(pthread_mutex_t) || h.slots != kSlots || h.entrySize != sizeof(RegionEntry))
    Throw(CT_ELOCKFILE);
  unsigned log = DescLog(h.table);
  if (log < kInitialLog || log > kMaxLog || DescOffset(h.table) < kHeaderBytes ||
      DescOffset(h.table) + TableBytes(log) > static_cast<unsigned long long>(size))
    Throw(CT_ELOCKFILE);
}

void LockRegion::Register() {
  Guard g(*this);
  for (uint32_t s = 0; s < kSlots; ++s) {
    RegionSlot& sl = hdr_->slot[s];
    if (sl.used && Alive(s)) continue;
    if (!ByteLock(fd_, kSlotByte + s, F_WRLCK)) continue;  // taken by a live process meanwhile
    if (sl.used) Rebuild(static_cast<int>(s));
    sl.pid = static_cast<int32_t>(::getpid());
    sl.used = 1;
    self_ = s + 1;
    return;
  }
  Throw(CT_ELOCKFILE);
}

void LockRegion::Lock() {
  int rc = pthread_mutex_lock(&hdr_->tableMutex);
  if (rc != 0 && rc != EOWNERDEAD) Throw(CT_ELOCKFILE, rc);
  try {
    FollowTable();
    // A process died holding the mutex, perhaps half-way through moving an entry: the table is
    // rebuilt from what it holds, without the dead processes' entries.
    if (rc == EOWNERDEAD) {
      Rebuild(-1);
      pthread_mutex_consistent(&hdr_->tableMutex);
    }
  } catch (...) {
    if (rc == EOWNERDEAD) pthread_mutex_consistent(&hdr_->tableMutex);
    pthread_mutex_unlock(&hdr_->tableMutex);
    throw;
  }
}

void LockRegion::Unlock() { pthread_mutex_unlock(&hdr_->tableMutex); }

void LockRegion::FollowTable() {
  uint64_t desc = __atomic_load_n(&hdr_->table, __ATOMIC_ACQUIRE);
  if (desc != tableDesc_) MapTable(desc);
}

void LockRegion::MapTable(uint64_t desc) {
  struct stat st {};
  if (::fstat(fd_, &st) != 0) Throw(CT_EIO, errno);
  unsigned log = DescLog(desc);
  uint64_t off = DescOffset(desc);
  if (log < kInitialLog || log > kMaxLog || off < kHeaderBytes || off + TableBytes(log) > static_cast<uint64_t>(st.st_size))
    Throw(CT_ELOCKFILE);
  void* p = ::mmap(nullptr, TableBytes(log), PROT_READ | PROT_WRITE, MAP_SHARED, fd_, static_cast<off_t>(off));
  if (p == MAP_FAILED) Throw(CT_EIO, errno);
  if (table_) ::munmap(table_, TableBytes(log_));
  table_ = static_cast<RegionEntry*>(p);
  tableDesc_ = desc;
  log_ = log;
  capacity_ = size_t{1} << log;
}

bool LockRegion::Alive(uint32_t slot) const {
  if (slot + 1 == self_) return true;
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  fl.l_start = kSlotByte + slot;
  fl.l_len = 1;
  if (::fcntl(fd_, F_GETLK, &fl) != 0) return true;
  return fl.l_type != F_UNLCK;
}

size_t LockRegion::Home(uint64_t key) const {
  return static_cast<size_t>((key * 0x9E3779B97F4A7C15ull) >> (64 - log_));
}

void LockRegion::Rebuild(int drop) {
  std::vector<RegionEntry> kept;
  std::vector<int8_t> alive(kSlots, -1);
  for (size_t i = 0; i < capacity_; ++i) {
    RegionEntry e = table_[i];
    if (!e.owner) continue;
    uint32_t s = e.owner - 1;
    if (s >= kSlots || static_cast<int>(s) == drop) continue;
    if (alive[s] < 0) alive[s] = hdr_->slot[s].used && Alive(s) ? 1 : 0;
    if (alive[s]) kept.push_back(e);
  }
  for (uint32_t s = 0; s < kSlots; ++s)
    if ((alive[s] == 0 || static_cast<int>(s) == drop) && s + 1 != self_) hdr_->slot[s].used = 0;
  std::memset(table_, 0, TableBytes(log_));
  hdr_->used = 0;
  for (const RegionEntry& e : kept) {
    size_t i = Home(e.key);
    for (; table_[i].owner; i = (i + 1) & (capacity_ - 1)) {
      if (table_[i].key == e.key && table_[i].owner == e.owner) break;  // a copy half-moved
    }
    if (table_[i].owner) {
      table_[i].write |= e.write;
      continue;
    }
    table_[i] = e;
    ++hdr_->used;
  }
}

// The new table goes after the old one, which stays valid until the header names the new one
// (one aligned 8-byte store), so a process dying half-way leaves the old table in use.
void LockRegion::Grow() {
  unsigned log = log_ + 1;
  if (log > kMaxLog) Throw(CT_EDISKFULL);
  uint64_t off = (DescOffset(tableDesc_) + TableBytes(log_) + 4095) & ~uint64_t{4095};
  if (::ftruncate(fd_, static_cast<off_t>(off + TableBytes(log))) != 0) Throw(CT_EDISKFULL, errno);
  void* p = ::mmap(nullptr, TableBytes(log), PROT_READ | PROT_WRITE, MAP_SHARED, fd_, static_cast<off_t>(off));
  if (p == MAP_FAILED) Throw(CT_EIO, errno);
  auto* fresh = static_cast<RegionEntry*>(p);
  std::memset(fresh, 0, TableBytes(log));
  RegionEntry* old = table_;
  size_t oldCap = capacity_;
  unsigned oldLog = log_;
  log_ = log;
  capacity_ = size_t{1} << log;
  for (size_t i = 0; i < oldCap; ++i) {
    if (!old[i].owner) continue;
    size_t j = Home(old[i].key);
    while (fresh[j].owner) j = (j + 1) & (capacity_ - 1);
    fresh[j] = old[i];
  }
  table_ = fresh;
  tableDesc_ = Desc(off, log);
  __atomic_store_n(&hdr_->table, tableDesc_, __ATOMIC_RELEASE);
  ::munmap(old, TableBytes(oldLog));
}

size_t LockRegion::Find(uint64_t key, uint32_t owner) const {
  for (size_t i = Home(key);; i = (i + 1) & (capacity_ - 1)) {
    const RegionEntry& e = table_[i];
    if (!e.owner) return kNone;
    if (e.key == key && e.owner == owner) return i;
  }
}

// Backward-shift deletion keeps every probe chain without holes, so no tombstones pile up.
void LockRegion::Erase(size_t i) {
  const size_t mask = capacity_ - 1;
  for (size_t j = i;;) {
    j = (j + 1) & mask;
    if (!table_[j].owner) break;
    size_t k = Home(table_[j].key);
    bool stays = i <= j ? (i < k && k <= j) : (i < k || k <= j);
    if (stays) continue;
    table_[i] = table_[j];
    i = j;
  }
  table_[i].owner = 0;
  --hdr_->used;
}

// Walks key's probe chain: true on a conflicting lock of a live process (the entries of a dead
// one are dropped on the way); mine is this process's entry, end the free entry ending the chain.
bool LockRegion::Conflict(uint64_t key, bool write, size_t& mine, size_t& end) {
  for (;;) {
    mine = kNone;
    int dead = -1;
    for (size_t i = Home(key);; i = (i + 1) & (capacity_ - 1)) {
      const RegionEntry& e = table_[i];
      if (!e.owner) {
        end = i;
        break;
      }
      if (e.key != key) continue;
      if (e.owner == self_) {
        mine = i;
        continue;
      }
      if (write || e.write) {
        if (Alive(e.owner - 1)) return true;
        dead = static_cast<int>(e.owner - 1);
        break;
      }
    }
    if (dead < 0) return false;
    Rebuild(dead);
  }
}

bool LockRegion::Acquire(uint64_t key, bool write) {
  Guard g(*this);
  size_t mine = kNone, end = kNone;
  if (Conflict(key, write, mine, end)) return false;
  if (mine != kNone) {
    if (write) table_[mine].write = 1;
    return true;
  }
  if ((hdr_->used + 1) * 2 > capacity_) {
    Grow();
    Conflict(key, write, mine, end);
  }
  RegionEntry& e = table_[end];
  e.key = key;
  e.write = write ? 1 : 0;
  __atomic_store_n(&e.owner, self_, __ATOMIC_RELEASE);
  ++hdr_->used;
  return true;
}

void LockRegion::Downgrade(uint64_t key) {
  Guard g(*this);
  if (size_t i = Find(key, self_); i != kNone) table_[i].write = 0;
}

void LockRegion::Release(const uint64_t* keys, size_t n) {
  Guard g(*this);
  for (size_t k = 0; k < n; ++k)
    if (size_t i = Find(keys[k], self_); i != kNone) Erase(i);
}

bool LockRegion::HeldByOther(uint64_t key) {
  Guard g(*this);
  size_t mine = kNone, end = kNone;
  return Conflict(key, true, mine, end);
}

bool LockRegion::LockWriter(int timeoutMs) {
  timespec ts{};
  clock_gettime(CLOCK_REALTIME, &ts);
  ts.tv_sec += timeoutMs / 1000;
  ts.tv_nsec += static_cast<long>(timeoutMs % 1000) * 1000000L;
  if (ts.tv_nsec >= 1000000000L) {
    ++ts.tv_sec;
    ts.tv_nsec -= 1000000000L;
  }
  int rc = pthread_mutex_timedlock(&hdr_->writerMutex, &ts);
  // A writer that died leaves LMDB's own writer lock free and its transaction uncommitted.
  if (rc == EOWNERDEAD) return pthread_mutex_consistent(&hdr_->writerMutex), true;
  if (rc == ETIMEDOUT) return false;
  if (rc != 0) Throw(CT_ELOCKFILE, rc);
  return true;
}

void LockRegion::UnlockWriter() { pthread_mutex_unlock(&hdr_->writerMutex); }

}  // namespace cte
