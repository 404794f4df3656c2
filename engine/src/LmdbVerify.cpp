// LmdbVerify: the page verify of the LMDB backend, a read-only walk of the file in a forked
// child (StorageFiles.h, VerifyFile).

#include <fcntl.h>
#include <lmdb.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include "Fail.h"
#include "LmdbPages.h"
#include "StorageFiles.h"
#include "ctisam.h"

namespace cte {

namespace {

constexpr MDB_dbi kFreeList = 0, kMain = 1;

// True when key a sorts before key b in dbi. LMDB gives the main database (its keys are the
// names of the others) its comparison only when a named database is opened: its keys compare
// here as LMDB compares them, by bytes and then by length.
bool Before(MDB_txn* txn, MDB_dbi dbi, const MDB_val& a, const MDB_val& b) {
  if (dbi != kMain) return mdb_cmp(txn, dbi, &a, &b) < 0;
  const int c = std::memcmp(a.mv_data, b.mv_data, std::min(a.mv_size, b.mv_size));
  return c < 0 || (c == 0 && a.mv_size < b.mv_size);
}

// Walks dbi to its end touching every byte; false on an error, a key not above the one before it,
// or when the entries walked differ from the count the database records.
bool WalkDb(MDB_txn* txn, MDB_dbi dbi, std::vector<std::string>* names) {
  MDB_stat st{};
  if (mdb_stat(txn, dbi, &st) != 0) return false;
  MDB_cursor* c = nullptr;
  if (mdb_cursor_open(txn, dbi, &c) != 0) return false;
  MDB_val k{}, v{};
  size_t n = 0;
  volatile unsigned sum = 0;
  std::string before;
  int rc = mdb_cursor_get(c, &k, &v, MDB_FIRST);
  for (; rc == 0; rc = mdb_cursor_get(c, &k, &v, MDB_NEXT)) {
    if (n > 0 && !Before(txn, dbi, MDB_val{before.size(), before.data()}, k)) break;
    before.assign(static_cast<const char*>(k.mv_data), k.mv_size);
    ++n;
    for (size_t i = 0; i < k.mv_size; ++i) sum = sum + static_cast<const unsigned char*>(k.mv_data)[i];
    for (size_t i = 0; i < v.mv_size; ++i) sum = sum + static_cast<const unsigned char*>(v.mv_data)[i];
    if (names) names->emplace_back(static_cast<const char*>(k.mv_data), k.mv_size);
  }
  mdb_cursor_close(c);
  return rc == MDB_NOTFOUND && n == st.ms_entries;
}

// The pages as they are in the file, without LMDB.
bool FilePagesSound(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat st {};
  if (fd < 0 || ::fstat(fd, &st) != 0 || st.st_size <= 0) return false;
  void* map = ::mmap(nullptr, static_cast<size_t>(st.st_size), PROT_READ, MAP_SHARED, fd, 0);
  ::close(fd);
  if (map == MAP_FAILED) return false;
  return PagesSound(static_cast<const uint8_t*>(map), static_cast<size_t>(st.st_size));
}

// The child's walk: true when the pages are sound and every database reads through LMDB.
bool Walk(const std::string& path) {
  // A damaged page ends this child with a signal: the caller's handlers (a crash reporter, a
  // fuzzer's) are not for it.
  for (int sig : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL}) std::signal(sig, SIG_DFL);
  if (!FilePagesSound(path)) return false;
  MDB_env* env = nullptr;
  if (mdb_env_create(&env) != 0) return false;
  mdb_env_set_maxdbs(env, 4096);
  if (mdb_env_open(env, path.c_str(), MDB_RDONLY | MDB_NOSUBDIR | MDB_NOLOCK | MDB_NOTLS, 0) != 0) return false;
  MDB_txn* txn = nullptr;
  if (mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn) != 0) return false;
  std::vector<std::string> names;
  if (!WalkDb(txn, kFreeList, nullptr) || !WalkDb(txn, kMain, &names)) return false;
  for (const std::string& name : names) {
    MDB_dbi dbi = 0;
    if (mdb_dbi_open(txn, name.c_str(), 0, &dbi) != 0 || !WalkDb(txn, dbi, nullptr)) return false;
  }
  return true;
}

}  // namespace

void VerifyFile(const std::string& path) {
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
