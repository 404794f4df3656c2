// LmdbCheck: LMDB results turned into the engine's Fail, and byte views turned into MDB_val.
#pragma once

#include <lmdb.h>

#include "Bytes.h"
#include "Fail.h"

namespace cte {

// Maps an LMDB or errno result to the engine's error numbers and throws: CT_EDISKFULL for a
// full map or disk, CT_EDAMAGED for a file LMDB finds corrupt or of another version, FNOP_ERR
// for a missing file, CT_EREADONLY for one this process may not write, CT_EIO otherwise.
[[noreturn]] void ThrowLmdb(int rc);

// Checks an LMDB result and throws the matching Fail.
inline void Check(int rc) {
  if (rc != 0) ThrowLmdb(rc);
}

inline MDB_val ToMdb(Bytes b) { return MDB_val{b.size, const_cast<void*>(b.data)}; }
inline Bytes FromMdb(const MDB_val& v) { return Bytes{v.mv_size, v.mv_data}; }

}  // namespace cte
