// Cursor: a position in one database of one transaction, moved by neutral operations.
#pragma once

#include "Bytes.h"

namespace cte {

// kFirst/kLast: the first or last key; kNext/kPrev: the key after or before the current one;
// kAtOrAfter: the first key not below the one given.
enum class Seek { kFirst, kLast, kNext, kPrev, kAtOrAfter };

// Made by the backend (Txn::OpenCursor, Env::Keep) and ended by Close, never deleted by callers.
class Cursor {
 public:
  // Moves by op and gives the key and value found (for kAtOrAfter, key holds the key sought on
  // entry). False when there is none: key and value are then not to be used, and the position
  // is undefined until a kFirst, kLast or kAtOrAfter. Throws Fail for a storage failure.
  virtual bool Move(Seek op, Bytes& key, Bytes& value) = 0;
  // Ends the cursor; it must not be used afterwards.
  virtual void Close() = 0;

 protected:
  ~Cursor() = default;
};

}  // namespace cte
