// FileLock: the advisory whole-file lock that carries a file's EXCLUSIVE/SHARED open mode.
#pragma once

#include <string>

namespace cte {

// Holds the lock across processes and across handles of one process (flock locks belong to the
// open file description).
class FileLock {
 public:
  // Locks path shared or exclusive without waiting; throws Fail FNOP_ERR when missing or
  // refused, CT_EDAMAGED when path is not a regular file (a named pipe, a directory).
  FileLock(const std::string& path, bool exclusive);
  ~FileLock();
  // Makes the lock exclusive without waiting; false when another open holds the file (the lock
  // may then have been given up: only for a file about to be closed).
  bool TryExclusive();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  int fd_ = -1;
};

}  // namespace cte
