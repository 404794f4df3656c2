// The engine's library called directly, without the driver: its functions, the record image and
// the two-index customers file of engine_bench and txn_bench (bench).
#pragma once

#include <dlfcn.h>

#include <cstdint>

#include "ctisam.h"

namespace bench {

/// The engine's shared library loaded as the package loads it, with the functions the
/// benchmarks call. A function the library lacks is null.
struct EngineLibrary {
#define FN(n) decltype(&::n) n = reinterpret_cast<decltype(&::n)>(dlsym(h, #n));
  void* h = dlopen(CT_LIBRARY_DIR "/libctstd32b.so", RTLD_NOW | RTLD_LOCAL);
  FN(INTISAMX) FN(CREIFIL) FN(ADDREC) FN(RWTREC) FN(DELREC) FN(FRSREC) FN(NXTREC) FN(FRSKEY) FN(NXTKEY)
  FN(SETCURI) FN(RRDREC) FN(EQLREC) FN(RNGENT) FN(frmkey) FN(CLISAM) FN(LKISAM) FN(TMPIIDXX) FN(PRMIIDX)
  FN(IDXENT) FN(CLRFIL) FN(OPNRFIL) FN(CLIFIL) FN(TRANBEG) FN(TRANEND) FN(TRANABT) FN(DATENT)
#undef FN

  /// Whether the library loaded and the engine started (10 files, 32 buffers).
  bool Start() { return h != nullptr && INTISAMX(10, 32, 4, 10, 0, nullptr, nullptr, nullptr) == 0; }
};

#pragma pack(push, 1)
/// A customer as the engine's own callers store it (byte alignment, 66 bytes).
struct EngineCustomer {
  int32_t id;
  char name[30];
  char city[20];
  double balance;
  int32_t date;
};
#pragma pack(pop)

/// The CREIFIL description of a file of EngineCustomer records with a unique index on the id
/// (key number data + 1) and one on city+name allowing duplicates (data + 2). The engine reads
/// the description through its pointers, so it is neither copied nor moved.
struct EngineCustomersFile {
  ISEG byId[1] = {{0, 4, SGNSEG}};
  ISEG byCity[2] = {{34, 20, REGSEG}, {4, 30, REGSEG}};
  IIDX indexes[2] = {{4, 0, 0, 0, 0, 1, byId, nullptr, nullptr, nullptr, nullptr},
                     {54, 0, 1, 0, 0, 2, byCity, nullptr, nullptr, nullptr, nullptr}};
  IFIL file;

  /// `name` is the data file's name without extension; `mode` the mode of data and index files.
  EngineCustomersFile(pTEXT name, COUNT mode)
      : file{name, -1, sizeof(EngineCustomer), 0, mode, 2, 0, mode, indexes, nullptr, nullptr, -1} {}
  EngineCustomersFile(const EngineCustomersFile&) = delete;
  EngineCustomersFile& operator=(const EngineCustomersFile&) = delete;
};

}  // namespace bench
