// PageVerify: a read-only walk of an LMDB file in a forked child.
#include "PageVerify.h"

#include <lmdb.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "Fail.h"
#include "ctisam.h"

namespace cte {

namespace {

// Walks dbi to its end touching every byte; false on an error or when the entries walked differ
// from the count the database records.
bool WalkDb(MDB_txn* txn, MDB_dbi dbi, std::vector<std::string>* names) {
  MDB_stat st{};
  if (mdb_stat(txn, dbi, &st) != 0) return false;
  MDB_cursor* c = nullptr;
  if (mdb_cursor_open(txn, dbi, &c) != 0) return false;
  MDB_val k{}, v{};
  size_t n = 0;
  volatile unsigned sum = 0;
  int rc = mdb_cursor_get(c, &k, &v, MDB_FIRST);
  for (; rc == 0; rc = mdb_cursor_get(c, &k, &v, MDB_NEXT)) {
    ++n;
    for (size_t i = 0; i < k.mv_size; ++i) sum = sum + static_cast<const unsigned char*>(k.mv_data)[i];
    for (size_t i = 0; i < v.mv_size; ++i) sum = sum + static_cast<const unsigned char*>(v.mv_data)[i];
    if (names) names->emplace_back(static_cast<const char*>(k.mv_data), k.mv_size);
  }
  mdb_cursor_close(c);
  return rc == MDB_NOTFOUND && n == st.ms_entries;
}

// The child's walk: true when every database reads through.
bool Walk(const std::string& path) {
  MDB_env* env = nullptr;
  if (mdb_env_create(&env) != 0) return false;
  mdb_env_set_maxdbs(env, 4096);
  if (mdb_env_open(env, path.c_str(), MDB_RDONLY | MDB_NOSUBDIR | MDB_NOLOCK | MDB_NOTLS, 0) != 0) return false;
  MDB_txn* txn = nullptr;
  if (mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn) != 0) return false;
  std::vector<std::string> names;
  constexpr MDB_dbi kFreeList = 0, kMain = 1;
  if (!WalkDb(txn, kFreeList, nullptr) || !WalkDb(txn, kMain, &names)) return false;
  for (const std::string& name : names) {
    MDB_dbi dbi = 0;
    if (mdb_dbi_open(txn, name.c_str(), 0, &dbi) != 0 || !WalkDb(txn, dbi, nullptr)) return false;
  }
  return true;
}

}  // namespace

void VerifyPages(const std::string& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) Throw(FNOP_ERR, errno);
  if (!S_ISREG(st.st_mode)) Throw(CT_EDAMAGED);
  pid_t pid = ::fork();
  if (pid < 0) Throw(CT_EIO, errno);
  if (pid == 0) ::_exit(Walk(path) ? 0 : 1);
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) Throw(CT_EIO, errno);
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) Throw(CT_EDAMAGED);
}

}  // namespace cte
