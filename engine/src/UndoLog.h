// UndoLog: the previous state of every key a held write transaction changed, in the order of
// the changes, so that they can be undone by applying the entries backwards.
#pragma once

#include <cstdint>
#include <string>

#include "Bytes.h"

namespace cte {

class Env;
class Txn;

// Entries are bytes: kind u8, database flags u32 (Db.h), then the lengths (u32) of the database name,
// key and value, the three byte strings, and last the entry's length without that last u32 (so
// that the log can be walked backwards). Native byte order: a log is read only on the machine
// that wrote it.
class UndoLog {
 public:
  enum Kind : uint8_t {
    kAbsent = 0,   // the key did not exist: undo deletes it
    kExisted = 1,  // the key had this value: undo puts it back
    kCreated = 2,  // the database was created: undo drops it
    kDropped = 3,  // the database was deleted: undo creates it again with its flags
  };
  void Add(Kind kind, const std::string& db, unsigned flags, Bytes key, Bytes value);
  const char* Data() const { return bytes_.data(); }
  size_t Size() const { return bytes_.size(); }
  void Truncate(size_t n) { bytes_.resize(n); }
  void Clear() { bytes_.clear(); }

  // Applies the entries in [data, data + n) backwards inside txn, a write transaction of env
  // (Env::Restore: not remembered again). Throws Fail on a storage failure or a malformed entry.
  static void ApplyBackwards(Env& env, Txn* txn, const char* data, size_t n);
  // The same for the entries held in the first n bytes of file fd, read a window at a time.
  static void ApplyBackwards(Env& env, Txn* txn, int fd, uint64_t n);

 private:
  static void ApplyEntry(Env& env, Txn* txn, const char* body, size_t len);
  std::string bytes_;
};

}  // namespace cte
