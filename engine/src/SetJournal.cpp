// SetJournal: undo journal of a lock set or transaction that commits several files.
#include "SetJournal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <random>

#include "ctisam.h"

namespace cte {

namespace {

constexpr char kMagic[8] = {'C', 'T', 'S', 'E', 'T', 'J', '1', '\n'};

std::string JournalOf(const std::string& path) { return path + ".setlog"; }

uint64_t Fnv(const std::string& s, size_t n) {
  uint64_t h = 1469598103934665603ull;
  for (size_t i = 0; i < n; ++i) h = (h ^ static_cast<unsigned char>(s[i])) * 1099511628211ull;
  return h;
}

void PutU64(std::string& out, uint64_t v) { out.append(reinterpret_cast<const char*>(&v), sizeof v); }
void PutStr(std::string& out, const std::string& s) {
  PutU64(out, s.size());
  out += s;
}

struct Reader {
  const std::string& in;
  size_t at = 0;
  bool ok = true;
  uint64_t U64() {
    uint64_t v = 0;
    if (in.size() - at < sizeof v) return ok = false, 0;
    std::memcpy(&v, in.data() + at, sizeof v);
    at += sizeof v;
    return v;
  }
  std::string Str() {
    uint64_t n = U64();
    if (!ok || in.size() - at < n) return ok = false, std::string();
    at += n;
    return in.substr(at - n, n);
  }
};

void WriteDurable(const std::string& path, const std::string& bytes) {
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) Throw(CT_EIO, errno);
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n <= 0) {
      int e = errno;
      ::close(fd);
      Throw(CT_EIO, e);
    }
    done += static_cast<size_t>(n);
  }
  int rc = ::fsync(fd);
  int e = errno;
  ::close(fd);
  if (rc != 0) Throw(CT_EIO, e);
  // The directory entry must be on disk as well, or the journal could vanish with a crash.
  std::string dir = path.find('/') == std::string::npos ? "." : path.substr(0, path.rfind('/') + 1);
  int dfd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dfd >= 0) {
    ::fsync(dfd);
    ::close(dfd);
  }
}

bool ReadAll(const std::string& path, std::string& out) {
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  char buf[65536];
  ssize_t n;
  while ((n = ::read(fd, buf, sizeof buf)) > 0) out.append(buf, static_cast<size_t>(n));
  ::close(fd);
  return n == 0;
}

// Set while a recovery opens the other files of its set, whose copies it handles itself.
bool recovering = false;

}  // namespace

SetJournal::SetJournal(const std::vector<std::shared_ptr<Env>>& envs) {
  std::random_device rd;
  while (!set_) set_ = (uint64_t{rd()} << 32 | rd()) ^ static_cast<uint64_t>(::getpid());
  for (const auto& env : envs) {
    env->MarkSet(set_);
    files_.push_back(File{env->Path(), env->UndoLog()});
  }
  const std::string bytes = Encode();
  for (const File& f : files_) WriteDurable(JournalOf(f.path), bytes);
}

std::string SetJournal::Encode() const {
  std::string out(kMagic, sizeof kMagic);
  PutU64(out, set_);
  PutU64(out, files_.size());
  for (const File& f : files_) {
    PutStr(out, f.path);
    PutU64(out, f.undo.size());
    for (const Env::Undo& u : f.undo) {
      PutStr(out, u.db);
      PutU64(out, u.flags);
      PutStr(out, u.key);
      PutU64(out, u.existed);
      PutStr(out, u.value);
    }
  }
  PutU64(out, Fnv(out, out.size()));
  return out;
}

bool SetJournal::Decode(const std::string& bytes, SetJournal& out) {
  if (bytes.size() < sizeof kMagic + 16 || std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0) return false;
  uint64_t sum = 0;
  std::memcpy(&sum, bytes.data() + bytes.size() - sizeof sum, sizeof sum);
  if (sum != Fnv(bytes, bytes.size() - sizeof sum)) return false;
  Reader r{bytes, sizeof kMagic};
  out.set_ = r.U64();
  uint64_t files = r.U64();
  for (uint64_t i = 0; r.ok && i < files; ++i) {
    File f;
    f.path = r.Str();
    uint64_t n = r.U64();
    for (uint64_t j = 0; r.ok && j < n; ++j) {
      Env::Undo u;
      u.db = r.Str();
      u.flags = static_cast<unsigned>(r.U64());
      u.key = r.Str();
      u.existed = r.U64() != 0;
      u.value = r.Str();
      f.undo.push_back(std::move(u));
    }
    out.files_.push_back(std::move(f));
  }
  return r.ok;
}

void SetJournal::Remove() {
  for (const File& f : files_) ::unlink(JournalOf(f.path).c_str());
}

void SetJournal::RollBack() {
  Undo();
  Remove();
}

void SetJournal::Undo() {
  constexpr unsigned kKept = MDB_REVERSEKEY | MDB_DUPSORT | MDB_INTEGERKEY | MDB_DUPFIXED | MDB_INTEGERDUP | MDB_REVERSEDUP;
  bool was = recovering;
  recovering = true;
  try {
    for (const File& f : files_) {
      if (FileSize(f.path) < 0) continue;
      std::shared_ptr<Env> env = Env::Acquire(f.path, false);
      if (env->LastSet() != set_) continue;
      if (env->Holding()) Throw(CT_EIO);
      WriteTxn w(*env);
      for (const Env::Undo& u : f.undo) {
        MDB_dbi dbi = env->Dbi(w.Get(), u.db, true, u.flags & kKept);
        MDB_val k{u.key.size(), const_cast<char*>(u.key.data())};
        MDB_val v{u.value.size(), const_cast<char*>(u.value.data())};
        int rc = u.existed ? mdb_put(w.Get(), dbi, &k, &v, 0) : mdb_del(w.Get(), dbi, &k, nullptr);
        if (rc != 0 && rc != MDB_NOTFOUND) ThrowLmdb(rc);
      }
      MDB_dbi set = env->Dbi(w.Get(), "setid", true);
      uint64_t none = 0;
      MDB_val k{2, const_cast<char*>("id")}, v{sizeof none, &none};
      Check(mdb_put(w.Get(), set, &k, &v, 0));
      w.Commit(true);
    }
  } catch (...) {
    recovering = was;
    throw;
  }
  recovering = was;
}

void SetJournal::Recover(const std::string& path) {
  if (recovering) return;
  std::string bytes;
  if (!ReadAll(JournalOf(path), bytes)) return;
  SetJournal j;
  if (!Decode(bytes, j)) {
    // Torn: it was being written, so no file of the set had committed.
    ::unlink(JournalOf(path).c_str());
    return;
  }
  bool any = false, all = true;
  {
    bool was = recovering;
    recovering = true;
    try {
      for (const File& f : j.files_) {
        bool done = FileSize(f.path) >= 0 && Env::Acquire(f.path, false)->LastSet() == j.set_;
        any = any || done;
        all = all && done;
      }
    } catch (...) {
      recovering = was;
      throw;
    }
    recovering = was;
  }
  if (any && !all) j.Undo();
  j.Remove();
}

}  // namespace cte
