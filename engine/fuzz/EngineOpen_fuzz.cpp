// Fuzz target of the engine's open: a table made by the engine (data file with a schema, a
// resource, records and three indexes, one by schema field with a condition; its index file)
// is damaged by the input and then opened and used through the entry points. Contract: every
// call returns (0 or an error number); no crash, leak or hang.
//
// Input: byte 0 chooses the damage.
//   even: byte 1 picks an entry the engine stores (header, counters, definition, schema,
//         definition version, the first record, the resource, a key, the index file's header or
//         definition) and the rest of the input replaces its bytes (none: the entry is removed).
//   odd:  patches to the bytes of the data file (byte 1 even) or the index file (odd): each is
//         a 3-byte offset (taken modulo the file's size), a length byte and that many bytes.
//         LMDB trusts its pages, so a patched file is used only when the page verify (which
//         RBLIFIL and GETFIL FILVERIFY run) passes it: the contract is then that a file the
//         verify passes is read and written without a crash.
#include <lmdb.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Fail.h"
#include "EngineCustomer.h"
#include "StorageFiles.h"
#include "ctisam.h"

namespace {

namespace fs = std::filesystem;

constexpr char kData[] = "customers.dat";
constexpr char kIndex[] = "customers.idx";
constexpr uint32_t kFirstPos = 128;
constexpr uint32_t kResource[2] = {0x10000, 1};
// Records are read into a buffer much larger than the table's record length: a damaged file
// must not make the engine write past what GETFIL(RECLEN) promises, which is checked apart.
constexpr size_t kBuffer = size_t{1} << 16;

std::string ReadFile(const char* path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteFile(const char* path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// The table every input starts from, made once in a folder of its own (removed at exit).
struct Pristine {
  std::string data, index;
  fs::path folder;
  Pristine() {
    char name[] = "/tmp/ctfuzz-open-XXXXXX";
    if (!mkdtemp(name)) std::abort();
    folder = name;
    fs::current_path(folder);
    ISEG byId[1] = {{0, 4, SGNSEG}};
    ISEG byCity[2] = {{34, 20, REGSEG}, {4, 30, REGSEG}};
    ISEG byName[1] = {{1, 30, SCHSEG}};
    IIDX idx[3] = {{4, 0, 0, 0, 0, 1, byId, (pTEXT) "by_id", nullptr, nullptr, nullptr},
                   {54, 0, 1, 0, 0, 2, byCity, (pTEXT) "by_city", nullptr, nullptr, nullptr},
                   {34, 0, 1, 1, 0, 1, byName, (pTEXT) "by_name", nullptr, nullptr, nullptr}};
    IFIL ifil = {(pTEXT) "customers", 0, sizeof(Customer), 0, EXCLUSIVE, 3, 0, EXCLUSIVE, idx, nullptr, nullptr, -1};
    DATOBJ doda[5] = {{(pTEXT) "id", nullptr, CT_INT4, 4, 0},
                      {(pTEXT) "name", nullptr, CT_FSTRING, 30, 0},
                      {(pTEXT) "city", nullptr, CT_FSTRING, 20, 0},
                      {(pTEXT) "balance", nullptr, CT_DFLOAT, 8, 0},
                      {(pTEXT) "date", nullptr, CT_INT4, 4, 0}};
    struct {
      uint32_t type, number;
      char name[8];
      char body[16];
    } res = {kResource[0], kResource[1], "layout", "fuzz resource"};
    if (INTISAM(10, 16, 4) || CREIFIL(&ifil) || PUTDODA(0, doda, 5) || ADDRES(0, &res, sizeof res) ||
        UPDCIDX(3, (pTEXT) "balance > 1"))
      std::abort();
    const char* cities[] = {"Brindlemoor", "Alderwyn", "Quenby"};
    for (int id = 1; id <= 12; ++id) {
      Customer c = MakeCustomer(id, ("n" + std::to_string(id)).c_str(), cities[id % 3], id * 0.5);
      if (ADDREC(0, &c)) std::abort();
    }
    if (CLISAM()) std::abort();
    data = ReadFile(kData);
    index = ReadFile(kIndex);
  }
  ~Pristine() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }
};

// One entry of a named database, written with LMDB behind the engine's back.
struct Entry {
  const char* file;
  const char* db;
  const void* key;
  size_t klen;
  unsigned flags;
};

const uint8_t kFirstKey[4] = {0x80, 0, 0, 1};
const Entry kEntries[] = {
    {kData, "meta", "hdr", 3, 0},   {kData, "meta", "ctr", 3, 0},  {kData, "meta", "ifil", 4, 0},
    {kData, "meta", "doda", 4, 0},  {kData, "meta", "dver", 4, 0}, {kData, "rec", &kFirstPos, 4, MDB_INTEGERKEY},
    {kData, "res", "\0\1\0\0\0\0\0\1", 8, 0}, {kData, "k0", kFirstKey, 4, 0},
    {kIndex, "meta", "hdr", 3, 0},  {kIndex, "meta", "def", 3, 0},
};

void Replace(const Entry& e, const uint8_t* value, size_t size) {
  MDB_env* env = nullptr;
  MDB_txn* txn = nullptr;
  MDB_dbi dbi = 0;
  if (mdb_env_create(&env)) std::abort();
  mdb_env_set_maxdbs(env, 16);
  if (mdb_env_open(env, e.file, MDB_NOSUBDIR | MDB_NOSYNC, 0644) || mdb_txn_begin(env, nullptr, 0, &txn) ||
      mdb_dbi_open(txn, e.db, e.flags, &dbi))
    std::abort();
  MDB_val k{e.klen, const_cast<void*>(e.key)}, v{size, const_cast<uint8_t*>(value)};
  int rc = size ? mdb_put(txn, dbi, &k, &v, 0) : mdb_del(txn, dbi, &k, nullptr);
  // A change LMDB refuses (removing an entry that is not there) leaves the table as it was.
  if (rc == 0) rc = mdb_txn_commit(txn);
  else mdb_txn_abort(txn);
  mdb_env_close(env);
}

// Applies the patches of the input to bytes; false when there is none.
bool Patch(std::string& bytes, const uint8_t* in, size_t size) {
  bool any = false;
  while (size >= 4 && !bytes.empty()) {
    const size_t at = (size_t{in[0]} << 16 | size_t{in[1]} << 8 | in[2]) % bytes.size();
    const size_t n = std::min<size_t>({size_t{in[3]}, size - 4, bytes.size() - at});
    std::memcpy(bytes.data() + at, in + 4, n);
    in += 4 + n;
    size -= 4 + n;
    any = true;
  }
  return any;
}

// Reads through file number filno in key order both ways, a few records at most.
void Browse(COUNT filno, std::vector<uint8_t>& rec) {
  int n = 0;
  for (COUNT rc = FRSREC(filno, rec.data()); rc == 0 && n < 40; rc = NXTREC(filno, rec.data())) ++n;
  n = 0;
  for (COUNT rc = LSTREC(filno, rec.data()); rc == 0 && n < 40; rc = PRVREC(filno, rec.data())) ++n;
}

// Opens the damaged table every way a program may and uses what opened.
void Use() {
  std::vector<uint8_t> rec(kBuffer), buf(kBuffer);
  if (INTISAM(10, 16, 4)) std::abort();
  if (OPNRFIL(0, (pTEXT) kData, SHARED) == 0) {
    const LONG reclen = GETFIL(0, RECLEN);
    if (reclen <= 0 || reclen > 65535) std::abort();
    for (COUNT filno = 0; filno <= 3; ++filno) Browse(filno, rec);
    GETIFIL(0, static_cast<LONG>(buf.size()), buf.data());
    GETDODA(0, static_cast<LONG>(buf.size()), buf.data(), SCHEMA_DODA);
    GETRES(0, const_cast<uint32_t*>(kResource), buf.data(), static_cast<LONG>(buf.size()), 0);
    const uint8_t key[4] = {0x80, 0, 0, 5};
    if (EQLREC(1, const_cast<uint8_t*>(key), rec.data()) == 0) {
      RWTREC(0, rec.data());
      DELREC(0);
    }
    Customer c = MakeCustomer(99, "Wen Ostrander", "Quenby", 7.5);
    std::memcpy(rec.data(), &c, sizeof c);
    ADDREC(0, rec.data());
    DATENT(0);
    CLRFIL(0);
  }
  if (OPNFIL(4, (pTEXT) kData, SHARED) == 0) {
    Browse(4, rec);
    CLSFIL(4, 0);
  }
  if (OPNFIL(5, (pTEXT) kIndex, SHARED) == 0) CLSFIL(5, 0);
  CLISAM();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const Pristine pristine;
  if (size < 2) return 0;
  for (const char* companion : {"-lock", "-rlock"}) {
    fs::remove(std::string(kData) + companion);
    fs::remove(std::string(kIndex) + companion);
  }
  WriteFile(kData, pristine.data);
  WriteFile(kIndex, pristine.index);
  if (data[0] % 2 == 0) {
    Replace(kEntries[data[1] % std::size(kEntries)], data + 2, size - 2);
  } else {
    const bool index = data[1] % 2;
    std::string bytes = index ? pristine.index : pristine.data;
    if (!Patch(bytes, data + 2, size - 2)) return 0;
    WriteFile(index ? kIndex : kData, bytes);
    try {
      cte::VerifyFile(index ? kIndex : kData);
    } catch (const cte::Fail&) {
      return 0;
    }
  }
  Use();
  return 0;
}
