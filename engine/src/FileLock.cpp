// FileLock: flock on a descriptor of the file itself.
#include "FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Fail.h"
#include "ctisam.h"

namespace cte {

FileLock::FileLock(const std::string& path, bool exclusive) {
  // O_NONBLOCK: opening a named pipe in place of the file must not wait for a writer.
  fd_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd_ < 0) Throw(FNOP_ERR, errno);
  struct stat st {};
  if (::fstat(fd_, &st) != 0 || !S_ISREG(st.st_mode)) {
    ::close(fd_);
    fd_ = -1;
    Throw(CT_EDAMAGED);
  }
  if (::flock(fd_, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) {
    int e = errno;
    ::close(fd_);
    fd_ = -1;
    Throw(FNOP_ERR, e);
  }
}

bool FileLock::TryExclusive() { return fd_ >= 0 && ::flock(fd_, LOCK_EX | LOCK_NB) == 0; }

FileLock::~FileLock() {
  if (fd_ >= 0) ::close(fd_);
}

}  // namespace cte
