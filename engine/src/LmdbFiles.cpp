// LmdbFiles: the LMDB backend's whole-file operations (StorageFiles.h). Beside each file lie
// LMDB's reader table "<file>-lock" and the engine's lock region "<file>-rlock".
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "Fail.h"
#include "StorageFiles.h"
#include "ctisam.h"

namespace cte {

long long FileSize(const std::string& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) return -1;
  return st.st_size;
}

bool RemoveFile(const std::string& path) {
  bool ok = ::unlink(path.c_str()) == 0;
  ::unlink((path + "-lock").c_str());
  ::unlink((path + "-rlock").c_str());
  return ok;
}

void RenameFile(const std::string& from, const std::string& to) {
  if (FileSize(to) >= 0) Throw(DCRAT_ERR);
  if (::rename(from.c_str(), to.c_str()) != 0) Throw(DCRAT_ERR, errno);
  ::rename((from + "-lock").c_str(), (to + "-lock").c_str());
  ::rename((from + "-rlock").c_str(), (to + "-rlock").c_str());
}

void ReplaceFile(const std::string& from, const std::string& path) {
  if (::rename(from.c_str(), path.c_str()) != 0) Throw(CT_EIO, errno);
  // The reader table described the old file; LMDB makes a new one at the next open.
  ::unlink((path + "-lock").c_str());
}

}  // namespace cte
