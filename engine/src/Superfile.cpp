// Superfile: the host's directory ("sfdir": member name -> id) and its header ("sfmeta").
#include "Superfile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>

#include "ctisam.h"

namespace cte {

namespace {

constexpr char kHostMagic[8] = {'C', 'T', 'S', 'U', 'P', 'E', 'R', 1};

MDB_val Val(const std::string& s) { return MDB_val{s.size(), const_cast<char*>(s.data())}; }
// For literals: the bytes live as long as the program.
MDB_val Lit(const char* s) { return MDB_val{std::strlen(s), const_cast<char*>(s)}; }

// A database handle of the host, opened (the first time) in a short read transaction that is
// committed, so that the handle outlives it.
MDB_dbi HostDbi(Env& env, const char* name) {
  if (env.Holding()) return env.Dbi(env.Snapshot(), name, false);
  MDB_txn* txn = nullptr;
  Check(mdb_txn_begin(env.Raw(), nullptr, MDB_RDONLY, &txn));
  MDB_dbi dbi = 0;
  try {
    dbi = env.Dbi(txn, name, false);
  } catch (...) {
    mdb_txn_abort(txn);
    throw;
  }
  Check(mdb_txn_commit(txn));
  return dbi;
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
      MDB_dbi meta = env->Dbi(w.Get(), "sfmeta", true);
      env->Dbi(w.Get(), "sfdir", true);
      MDB_val k = Lit("hdr"), v{sizeof kHostMagic, const_cast<char*>(kHostMagic)};
      Check(Put(w.Get(), meta, &k, &v, 0));
      w.Commit(true);
      return env;
    } catch (...) {
      RemoveFile(host);
      throw;
    }
  }
  std::shared_ptr<Env> env = Env::Acquire(host, false);
  MDB_dbi meta = HostDbi(*env, "sfmeta");
  MDB_txn* txn = env->Snapshot();
  MDB_val k = Lit("hdr"), v{};
  if (mdb_get(txn, meta, &k, &v) != 0 || v.mv_size != sizeof kHostMagic ||
      std::memcmp(v.mv_data, kHostMagic, sizeof kHostMagic) != 0)
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

uint32_t CreateMember(Env& env, MDB_txn* txn, const std::string& member) {
  MDB_dbi dir = env.Dbi(txn, "sfdir", false);
  MDB_dbi meta = env.Dbi(txn, "sfmeta", false);
  MDB_val k = Val(member), v{};
  if (mdb_get(txn, dir, &k, &v) == 0) Throw(DCRAT_ERR);
  MDB_val nk = Lit("next"), nv{};
  uint32_t id = 1;
  if (mdb_get(txn, meta, &nk, &nv) == 0 && nv.mv_size == sizeof id) std::memcpy(&id, nv.mv_data, sizeof id);
  uint32_t next = id + 1;
  MDB_val idv{sizeof id, &id}, nextv{sizeof next, &next};
  Check(Put(txn, dir, &k, &idv, 0));
  Check(Put(txn, meta, &nk, &nextv, 0));
  return id;
}

uint32_t FindMember(Env& env, const std::string& member) {
  uint32_t id = 0;
  MDB_dbi dir = HostDbi(env, "sfdir");
  MDB_val k = Val(member), v{};
  if (mdb_get(env.Snapshot(), dir, &k, &v) == 0 && v.mv_size == sizeof id) std::memcpy(&id, v.mv_data, sizeof id);
  return id;
}

std::vector<std::string> ListMembers(Env& env) {
  std::vector<std::string> names;
  MDB_dbi dir = HostDbi(env, "sfdir");
  MDB_cursor* c = nullptr;
  Check(mdb_cursor_open(env.Snapshot(), dir, &c));
  MDB_val k{}, v{};
  for (int rc = mdb_cursor_get(c, &k, &v, MDB_FIRST); rc == 0; rc = mdb_cursor_get(c, &k, &v, MDB_NEXT))
    names.emplace_back(static_cast<const char*>(k.mv_data), k.mv_size);
  mdb_cursor_close(c);
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
  // The names of the named databases are the keys of the main database.
  MDB_dbi main = 0;
  Check(mdb_dbi_open(w.Get(), nullptr, 0, &main));
  std::vector<std::string> names;
  MDB_cursor* c = nullptr;
  Check(mdb_cursor_open(w.Get(), main, &c));
  MDB_val k = Val(prefix), v{};
  for (int rc = mdb_cursor_get(c, &k, &v, MDB_SET_RANGE); rc == 0; rc = mdb_cursor_get(c, &k, &v, MDB_NEXT)) {
    std::string name(static_cast<const char*>(k.mv_data), k.mv_size);
    if (name.compare(0, prefix.size(), prefix) != 0) break;
    names.push_back(name);
  }
  mdb_cursor_close(c);
  for (const std::string& n : names) {
    MDB_dbi dbi = env->Dbi(w.Get(), n, false);
    Check(Drop(w.Get(), dbi, 1));
    env->Forget(n);
  }
  MDB_dbi dir = env->Dbi(w.Get(), "sfdir", false);
  MDB_val mk = Val(p.member);
  Check(Del(w.Get(), dir, &mk, nullptr));
  w.Commit(true);
  return true;
}

void CheckRenamePath(const std::string& from, const std::string& to) {
  Place a = Locate(from), b = Locate(to);
  if ((a.IsMember() || b.IsMember()) && (a.host != b.host || !a.IsMember() || !b.IsMember())) Throw(NSUP_ERR);
}

void RenamePath(const std::string& from, const std::string& to) {
  CheckRenamePath(from, to);
  Place a = Locate(from), b = Locate(to);
  if (!a.IsMember() && !b.IsMember()) return RenameFile(from, to);
  std::shared_ptr<Env> env = OpenHost(a.host, false);
  if (FindMember(*env, b.member)) Throw(DCRAT_ERR);
  uint32_t id = FindMember(*env, a.member);
  if (!id) Throw(FNOP_ERR);
  WriteTxn w(*env);
  MDB_dbi dir = env->Dbi(w.Get(), "sfdir", false);
  MDB_val ak = Val(a.member), bk = Val(b.member), idv{sizeof id, &id};
  Check(Del(w.Get(), dir, &ak, nullptr));
  Check(Put(w.Get(), dir, &bk, &idv, 0));
  w.Commit(true);
}

std::unique_ptr<FileLock> LockPath(const std::string& path, bool exclusive) {
  Place p = Locate(path);
  if (!p.IsMember()) return std::make_unique<FileLock>(path, exclusive);
  return std::make_unique<FileLock>(p.host, false);
}

}  // namespace cte
