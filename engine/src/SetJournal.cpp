// SetJournal: undo journal of a lock set or transaction that commits several files.
#include "SetJournal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <set>
#include <thread>

#include "StorageFiles.h"
#include "ctisam.h"

namespace cte {

namespace {

constexpr char kMagic[8] = {'C', 'T', 'S', 'E', 'T', 'J', '2', '\n'};
// Undo entries kept in memory before they go to the spill file.
constexpr size_t kMemory = size_t{1} << 20;

std::string JournalOf(const std::string& path) { return path + ".setlog"; }
std::string SpillOf(const std::string& path) { return path + ".setspill"; }

uint64_t Fnv(uint64_t h, const char* p, size_t n) {
  for (size_t i = 0; i < n; ++i) h = (h ^ static_cast<unsigned char>(p[i])) * 1099511628211ull;
  return h;
}
constexpr uint64_t kFnvStart = 1469598103934665603ull;

void PutU64(std::string& out, uint64_t v) {
  out.append(reinterpret_cast<const char*>(&v), sizeof v);
}

void WriteAll(int fd, const char* p, size_t n) {
  while (n > 0) {
    ssize_t w = ::write(fd, p, n);
    if (w <= 0) Throw(CT_EIO, errno);
    p += w;
    n -= static_cast<size_t>(w);
  }
}

bool ReadAt(int fd, std::string& out, uint64_t at, size_t n) {
  out.resize(n);
  size_t got = 0;
  while (got < n) {
    ssize_t r = ::pread(fd, out.data() + got, n - got, static_cast<off_t>(at + got));
    if (r <= 0) return false;
    got += static_cast<size_t>(r);
  }
  return true;
}

void SyncDir(const std::string& path) {
  std::string dir = std::filesystem::absolute(path).parent_path().string();
  int dfd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dfd >= 0) {
    ::fsync(dfd);
    ::close(dfd);
  }
}

// An open-file-description lock on the whole file: it belongs to this descriptor alone (so
// it conflicts with another descriptor of the same process too) and the kernel drops it when
// the process dies, which is how a journal's writer is known to be alive.
bool TryLock(int fd) {
  struct flock fl {};
  fl.l_type = F_WRLCK;
  fl.l_whence = SEEK_SET;
  return ::fcntl(fd, F_OFD_SETLK, &fl) == 0;
}

int TimeoutMs() {
  static const int ms = [] {
    const char* v = std::getenv("CTISAM_LOCK_TIMEOUT_MS");
    int n = v ? std::atoi(v) : 0;
    return n > 0 ? n : 5000;
  }();
  return ms;
}

bool LockWait(int fd) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(TimeoutMs());
  auto pause = std::chrono::milliseconds(1);
  while (!TryLock(fd)) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, std::chrono::milliseconds(20));
  }
  return true;
}

// The environments whose journals this process is committing: their writer is alive.
std::set<const Env*>& Live() {
  static std::set<const Env*> live;
  return live;
}

struct Trailer {
  uint64_t set = 0;
  uint64_t entries = 0;
  std::vector<std::string> files;
  uint64_t self = 0;
};

// Reads and checks the trailer and checksum of a sealed journal; false when torn.
bool ReadTrailer(int fd, uint64_t size, Trailer& t) {
  std::string buf;
  if (size < 2 * sizeof(uint64_t) || !ReadAt(fd, buf, size - sizeof(uint64_t), sizeof(uint64_t)))
    return false;
  uint64_t len = 0;
  std::memcpy(&len, buf.data(), sizeof len);
  if (len < sizeof kMagic + 5 * sizeof(uint64_t) || len > size - sizeof(uint64_t)) return false;
  const uint64_t at = size - sizeof(uint64_t) - len;
  if (!ReadAt(fd, buf, at, static_cast<size_t>(len))) return false;
  if (std::memcmp(buf.data(), kMagic, sizeof kMagic) != 0) return false;
  size_t p = sizeof kMagic;
  auto u64 = [&](uint64_t& v) {
    if (buf.size() - p < sizeof v) return false;
    std::memcpy(&v, buf.data() + p, sizeof v);
    p += sizeof v;
    return true;
  };
  uint64_t count = 0, sum = 0;
  if (!u64(t.set) || !u64(t.entries) || !u64(count) || t.entries != at || count > 4096)
    return false;
  for (uint64_t i = 0; i < count; ++i) {
    uint64_t n = 0;
    if (!u64(n) || buf.size() - p < n) return false;
    t.files.emplace_back(buf.data() + p, static_cast<size_t>(n));
    p += static_cast<size_t>(n);
  }
  if (!u64(t.self) || t.self >= count) return false;
  const size_t summed = p;
  if (!u64(sum) || p != buf.size()) return false;
  uint64_t h = kFnvStart;
  std::string chunk;
  for (uint64_t off = 0; off < at; off += chunk.size()) {
    if (!ReadAt(fd, chunk, off, static_cast<size_t>(std::min<uint64_t>(at - off, 1 << 20))))
      return false;
    h = Fnv(h, chunk.data(), chunk.size());
  }
  return Fnv(h, buf.data(), summed) == sum;
}

// A file of the journal's list: names are kept relative to the journal's folder.
std::string Resolve(const std::string& journal, const std::string& name) {
  std::filesystem::path p(name);
  if (p.is_absolute()) return name;
  return (std::filesystem::absolute(journal).parent_path() / p).lexically_normal().string();
}

}  // namespace

SetJournal::SetJournal(std::string path) : path_(std::move(path)), hash_(kFnvStart) {}

SetJournal::~SetJournal() {
  if (fd_ < 0) return;
  // The file goes before its lock: whoever then gets the lock finds it unlinked.
  if (!keep_) ::unlink((sealed_ ? JournalOf(path_) : SpillOf(path_)).c_str());
  ::close(fd_);
}

void SetJournal::Append(const char* data, size_t n) {
  mem_.append(data, n);
  if (mem_.size() >= kMemory) Spill();
}

void SetJournal::Spill() {
  if (fd_ < 0) {
    // Made under a name of its own and locked before it takes the name others look at, so
    // that a process sweeping spill files never finds it unlocked.
    const std::string spill = SpillOf(path_);
    const std::string fresh = spill + "." + std::to_string(::getpid());
    fd_ = ::open(fresh.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd_ < 0) Throw(CT_EIO, errno);
    if (!TryLock(fd_) || ::rename(fresh.c_str(), spill.c_str()) != 0) {
      int e = errno;
      ::unlink(fresh.c_str());
      ::close(fd_);
      fd_ = -1;
      Throw(CT_EIO, e);
    }
  }
  WriteAll(fd_, mem_.data(), mem_.size());
  hash_ = Fnv(hash_, mem_.data(), mem_.size());
  written_ += mem_.size();
  mem_.clear();
}

void SetJournal::Seal(uint64_t set, const std::vector<std::string>& files, size_t self) {
  Spill();
  const std::filesystem::path dir = std::filesystem::absolute(path_).parent_path();
  std::string t(kMagic, sizeof kMagic);
  PutU64(t, set);
  PutU64(t, written_);
  PutU64(t, files.size());
  for (const std::string& f : files) {
    std::string name = std::filesystem::proximate(std::filesystem::absolute(f), dir).string();
    PutU64(t, name.size());
    t += name;
  }
  PutU64(t, self);
  PutU64(t, Fnv(hash_, t.data(), t.size()));
  PutU64(t, t.size());
  WriteAll(fd_, t.data(), t.size());
  if (::fsync(fd_) != 0) Throw(CT_EIO, errno);
  if (::rename(SpillOf(path_).c_str(), JournalOf(path_).c_str()) != 0) Throw(CT_EIO, errno);
  sealed_ = true;
  // The directory entry must be on disk as well, or the journal could vanish with a crash.
  SyncDir(path_);
}

void SetJournal::RollBack(Env& env, uint64_t set) {
  Txn* w = env.BeginUngated();
  try {
    if (env.LastSet(w) == set) {
      UndoLog::ApplyBackwards(env, w, fd_, written_);
      Txn* done = w;
      w = nullptr;
      env.Commit(done, true);
    } else {
      env.Abort(w);
    }
  } catch (...) {
    if (w) env.Abort(w);
    env.ForgetAll();
    throw;
  }
}

void SetJournal::End(std::vector<File> files, bool commit, bool crashHook) {
  int failure = 0, sys = 0;
  auto fail = [&](const Fail& e) {
    if (!failure) failure = e.code, sys = e.sysio;
  };
  if (commit) {
    for (File& f : files) {
      try {
        while (f.env->HeldDepth() > 1) f.env->CommitTop(false);
      } catch (const Fail& e) {
        fail(e);
      }
    }
  }
  const bool multi = commit && !failure && files.size() > 1;
  std::vector<std::unique_ptr<SetJournal>> journals;
  uint64_t set = 0;
  if (multi) {
    // The unlogged file (the first of the set) commits last: it is the set's commit point.
    std::stable_partition(files.begin(), files.end(),
                          [](const File& f) { return f.env->Logged(); });
    std::random_device rd;
    while (!set) set = (uint64_t{rd()} << 32 | rd()) ^ static_cast<uint64_t>(::getpid());
    std::vector<std::string> paths;
    for (const File& f : files) paths.push_back(f.env->Path());
    try {
      for (File& f : files) f.env->MarkSet(set);
      for (size_t i = 0; i + 1 < files.size(); ++i) {
        std::unique_ptr<SetJournal> j = files[i].env->TakeJournal();
        if (!j) Throw(CT_EIO);
        Live().insert(files[i].env.get());
        j->Seal(set, paths, i);
        journals.push_back(std::move(j));
      }
    } catch (const Fail& e) {
      fail(e);
    }
  }
  size_t committed = 0;
  for (File& f : files) {
    if (commit && !failure) {
      try {
        f.env->CommitTop(f.durable || multi);
        if (multi && ++committed == 1 && crashHook) _exit(0);
        continue;
      } catch (const Fail& e) {
        fail(e);
      }
    }
    while (f.env->Holding()) f.env->AbortTop();
  }
  if (failure && committed > 0) {
    try {
      for (size_t i = 0; i < committed; ++i) journals[i]->RollBack(*files[i].env, set);
    } catch (const Fail&) {
      // The journals stay: the next process that touches one of these files rolls it back.
      for (auto& j : journals) j->keep_ = true;
    }
  }
  for (File& f : files) Live().erase(f.env.get());
  journals.clear();
  if (failure) Throw(failure, sys);
}

bool SetJournal::Pending(const std::string& path) { return FileSize(JournalOf(path)) >= 0; }

void SetJournal::Sweep(const std::string& path) {
  const std::string spill = SpillOf(path);
  int fd = ::open(spill.c_str(), O_RDWR | O_CLOEXEC);
  if (fd < 0) return;
  if (TryLock(fd)) ::unlink(spill.c_str());
  ::close(fd);
}

void SetJournal::Settle(Env& env, bool forWrite) {
  if (Live().count(&env)) return;
  const std::string journal = JournalOf(env.Path());
  int fd = ::open(journal.c_str(), O_RDWR | O_CLOEXEC);
  if (fd < 0) return;
  struct Closer {
    int fd;
    ~Closer() { ::close(fd); }
  } closer{fd};
  if (!LockWait(fd)) {
    if (forWrite) Throw(DTMO_ERR);
    return;
  }
  struct stat st {};
  // Unlinked: its writer finished (or another process settled it) before the lock came.
  if (::fstat(fd, &st) != 0 || st.st_nlink == 0) return;
  Trailer t;
  if (!ReadTrailer(fd, static_cast<uint64_t>(st.st_size), t)) {
    // Torn: it was being sealed, so no file of the set had committed.
    ::unlink(journal.c_str());
    return;
  }
  // The last file commits last: when it carries the set id the whole set committed. A last
  // file that cannot be found leaves the set as it is (a committed set is never undone).
  bool done = true;
  if (t.self + 1 < t.files.size()) {
    const std::string last = Resolve(journal, t.files.back());
    done = FileSize(last) < 0 || Env::Acquire(last, false)->LastSet() == t.set;
  }
  if (!done) {
    Txn* w = env.BeginUngated();
    try {
      if (env.LastSet(w) == t.set) {
        UndoLog::ApplyBackwards(env, w, fd, t.entries);
        Txn* done = w;
        w = nullptr;
        env.Commit(done, true);
      } else {
        env.Abort(w);
      }
    } catch (...) {
      if (w) env.Abort(w);
      env.ForgetAll();
      throw;
    }
  }
  ::unlink(journal.c_str());
}

}  // namespace cte
