// Superfile: the host's directory ("sfdir": member name -> id) and its header ("sfmeta").
#include "Superfile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>

#include "ReadCursor.h"
#include "StorageFiles.h"
#include "WriteTxn.h"
#include "ctisam.h"

namespace cte {

namespace {

constexpr char kHostMagic[8] = {'C', 'T', 'S', 'U', 'P', 'E', 'R', 1};

// A database handle of the host, opened (the first time) in a short read transaction whose
// handles outlive it.
Db HostDbi(Env& env, const char* name) {
  if (env.Holding()) return env.Dbi(env.Snapshot(), name, false);
  Db dbi = 0;
  env.ReadOnce([&](Txn* txn) { dbi = env.Dbi(txn, name, false); });
  return dbi;
}

// The value of key in the host's directory or header, false when there is none or it cannot
// be read (a name too long to be a key is no member; a host whose header cannot be read is
// damaged, which the caller says).
bool Lookup(Txn* txn, Db db, const std::string& key, Bytes& value) {
  try {
    return txn->Get(db, BytesOf(key), value);
  } catch (const Fail&) {
    return false;
  }
}

}  // namespace

Place Locate(const std::string& path) {
  size_t bang = path.find('!');
  if (bang == std::string::npos) return Place{path, ""};
  return Place{path.substr(0, bang), path.substr(bang + 1)};
}

std::shared_ptr<Env> OpenHost(const std::string& host, bool create) {
  if (host.empty()) Throw(CT_EBADARG);
  if (FileSize(host) < 0) {
    if (!create) Throw(FNOP_ERR);
    int fd = ::open(host.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
    if (fd < 0) Throw(DCRAT_ERR, errno);
    ::close(fd);
    try {
      std::shared_ptr<Env> env = Env::Acquire(host, true);
      WriteTxn w(*env);
      Db meta = env->Dbi(w.Get(), "sfmeta", true);
      env->Dbi(w.Get(), "sfdir", true);
      w.Get()->Put(meta, BytesOf("hdr"), Bytes{sizeof kHostMagic, kHostMagic});
      w.Commit(true);
      return env;
    } catch (...) {
      RemoveFile(host);
      throw;
    }
  }
  std::shared_ptr<Env> env = Env::Acquire(host, false);
  Db meta = HostDbi(*env, "sfmeta");
  Bytes v;
  if (!Lookup(env->Snapshot(), meta, "hdr", v) || v.size != sizeof kHostMagic ||
      std::memcmp(v.data, kHostMagic, sizeof kHostMagic) != 0)
    Throw(CT_EDAMAGED);
  return env;
}

bool IsHost(const std::string& path) {
  if (FileSize(path) <= 0) return false;
  try {
    OpenHost(path, false);
    return true;
  } catch (const Fail&) {
    return false;
  }
}

std::string MemberPrefix(uint32_t id) { return "m" + std::to_string(id) + "."; }

uint32_t CreateMember(Env& env, Txn* txn, const std::string& member) {
  Db dir = env.Dbi(txn, "sfdir", false);
  Db meta = env.Dbi(txn, "sfmeta", false);
  Bytes v;
  if (Lookup(txn, dir, member, v)) Throw(DCRAT_ERR);
  uint32_t id = 1;
  if (Lookup(txn, meta, "next", v) && v.size == sizeof id) std::memcpy(&id, v.data, sizeof id);
  uint32_t next = id + 1;
  txn->Put(dir, BytesOf(member), Bytes{sizeof id, &id});
  txn->Put(meta, BytesOf("next"), Bytes{sizeof next, &next});
  return id;
}

uint32_t FindMember(Env& env, const std::string& member) {
  uint32_t id = 0;
  Db dir = HostDbi(env, "sfdir");
  Bytes v;
  if (Lookup(env.Snapshot(), dir, member, v) && v.size == sizeof id) std::memcpy(&id, v.data, sizeof id);
  return id;
}

std::vector<std::string> ListMembers(Env& env) {
  std::vector<std::string> names;
  Db dir = HostDbi(env, "sfdir");
  ReadCursor c(env.Snapshot(), dir);
  Bytes k, v;
  for (bool at = c.Move(Seek::kFirst, k, v); at; at = c.Move(Seek::kNext, k, v))
    names.emplace_back(static_cast<const char*>(k.data), k.size);
  return names;
}

bool PathExists(const std::string& path) {
  Place p = Locate(path);
  if (!p.IsMember()) return FileSize(path) >= 0;
  if (FileSize(p.host) < 0) return false;
  return FindMember(*OpenHost(p.host, false), p.member) != 0;
}

bool RemovePath(const std::string& path) {
  Place p = Locate(path);
  if (!p.IsMember()) return RemoveFile(path);
  if (FileSize(p.host) < 0) return false;
  std::shared_ptr<Env> env = OpenHost(p.host, false);
  uint32_t id = FindMember(*env, p.member);
  if (!id) return false;
  const std::string prefix = MemberPrefix(id);
  WriteTxn w(*env);
  for (const std::string& n : env->DbNames(w.Get(), prefix)) {
    w.Get()->Drop(env->Dbi(w.Get(), n, false), true);
    env->Forget(n);
  }
  Db dir = env->Dbi(w.Get(), "sfdir", false);
  if (!w.Get()->Del(dir, BytesOf(p.member))) Throw(CT_EIO);
  w.Commit(true);
  return true;
}

namespace {

// A member moves within its host only.
void CheckMove(const Place& a, const Place& b) {
  if ((a.IsMember() || b.IsMember()) && (a.host != b.host || !a.IsMember() || !b.IsMember())) Throw(NSUP_ERR);
}

}  // namespace

void CheckRenamePath(const std::string& from, const std::string& to) { CheckMove(Locate(from), Locate(to)); }

void RenamePath(const std::string& from, const std::string& to) {
  Place a = Locate(from), b = Locate(to);
  CheckMove(a, b);
  if (!a.IsMember() && !b.IsMember()) return RenameFile(from, to);
  std::shared_ptr<Env> env = OpenHost(a.host, false);
  if (FindMember(*env, b.member)) Throw(DCRAT_ERR);
  uint32_t id = FindMember(*env, a.member);
  if (!id) Throw(FNOP_ERR);
  WriteTxn w(*env);
  Db dir = env->Dbi(w.Get(), "sfdir", false);
  if (!w.Get()->Del(dir, BytesOf(a.member))) Throw(CT_EIO);
  w.Get()->Put(dir, BytesOf(b.member), Bytes{sizeof id, &id});
  w.Commit(true);
}

std::unique_ptr<FileLock> LockPath(const std::string& path, bool exclusive) {
  Place p = Locate(path);
  if (!p.IsMember()) return std::make_unique<FileLock>(path, exclusive);
  return std::make_unique<FileLock>(p.host, false);
}

}  // namespace cte
