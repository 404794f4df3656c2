// DataStore: one data file (an Env) with its records, keys, resources and cached
// schema, shared by every handle of this process that has the file open.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Condition.h"
#include "Env.h"
#include "KeyBuilder.h"
#include "Schema.h"
#include "StorageFiles.h"
#include "WriteTxn.h"

namespace cte {

// The fixed header stored under "hdr" in the meta database of every file (see FORMAT.md).
struct FileHeader {
  char magic[8];
  uint32_t version;
  uint8_t kind;  // kKindData or kKindIndex
  uint8_t pack;  // packing of the creating library
  uint16_t filmod;
  uint32_t reclen;
  uint32_t reserved;
  uint64_t password;  // hash of the password, 0 for none
};
constexpr uint8_t kKindData = 0;
constexpr uint8_t kKindIndex = 1;

// The packing this library variant was compiled with (1, 2 or 4).
int LibraryPack();
uint64_t PasswordHash(const char* password);

class DataStore {
 public:
  // Creates the data file at path (DCRAT_ERR when it exists) with the given definition (its
  // indexes get their key databases). The definition must have been validated.
  static std::shared_ptr<DataStore> Create(const std::string& path, const FileDef& def,
                                           bool hasIfil, const char* password);
  // Opens the data file at path. FNOP_ERR, CT_EDAMAGED, CT_EALIGN, BPWD_ERR, FCRP_ERR.
  static std::shared_ptr<DataStore> Open(const std::string& path, const char* password);

  Env& env() { return *env_; }
  const std::shared_ptr<Env>& EnvPtr() const { return env_; }
  // The lock key of the record at pos (see LockTable).
  uint64_t LockKey(uint32_t pos) const { return (uint64_t{member_} << 32) | pos; }
  const FileHeader& header() const { return hdr_; }
  const FileDef& def() const { return def_; }
  bool HasIfil() const { return hasIfil_; }
  const std::vector<FieldDef>& fields() const { return fields_; }
  bool HasFields() const { return hasFields_; }
  const std::string& path() const { return path_; }
  uint32_t RecLen() const { return hdr_.reclen; }
  bool Durable(int openMode) const;
  // Key layout of the index with that ordinal in the stored definition.
  const KeyLayout& Layout(size_t ordinal);
  size_t IndexCount() const { return def_.idx.size(); }
  // The first key database number no index of def uses.
  static int16_t NextKeyDb(const FileDef& def);
  // False when index ordinal has a condition the record (n bytes) does not satisfy.
  bool Accepts(size_t ordinal, const uint8_t* rec, size_t n);

  Db RecDbi() const { return rec_; }
  // Stored form of records (see FORMAT.md): fixed-length records of files of format version 2
  // are kept encoded by RecordCodec; other records are stored exactly as given.
  bool Packed() const;
  // The value to store for the n bytes at rec; space holds the encoded bytes when needed.
  Bytes Pack(const void* rec, size_t n, std::vector<uint8_t>& space) const;
  // The whole record for a stored value: the value itself, or its decoding into space (the
  // record length). Throws Fail CT_EDAMAGED for a stored value that does not decode.
  Bytes Unpack(const Bytes& stored, std::vector<uint8_t>& space) const;
  Db KeyDbi(size_t ordinal) const { return keys_[ordinal]; }

  // Writes inside txn (the caller commits). PutDef replaces the stored definition, creating
  // key databases for new index ordinals; PutFields replaces the schema.
  void PutDef(Txn* txn, const FileDef& def);
  void PutFields(Txn* txn, const std::vector<FieldDef>& fields);
  // Replaces the stored header inside txn; CacheHeader makes the cached copy match once the
  // transaction has committed.
  void PutHeader(Txn* txn, const FileHeader& hdr);
  void CacheHeader(const FileHeader& hdr) { hdr_ = hdr; }
  // Counters: the next free position and the last serial number.
  struct Counters {
    uint32_t nextPos;
    uint32_t serial;
  };
  Counters ReadCounters(Txn* txn);
  // Throws Fail kStaleDefinition when the stored definition or schema is newer than the one
  // this store loaded (another process changed it).
  void CheckCurrent(Txn* txn);
  void BumpVersion(Txn* txn);
  void WriteCounters(Txn* txn, const Counters& c);
  Db ResDbi() const { return res_; }
  // Reloads the cached definition and schema from the snapshot (after another handle or
  // process changed them).
  void Reload();

 private:
  DataStore() = default;
  void Load(Txn* txn);
  void OpenKeyDbs(Txn* txn, bool create);

  std::shared_ptr<Env> env_;
  std::string path_;
  uint32_t member_ = 0;  // superfile member id, 0 for a file of its own
  std::string prefix_;
  uint32_t dver_ = 0;  // the definition version loaded (see CheckCurrent)   // prefix of the member's database names ("" for a file of its own)
  FileHeader hdr_{};
  FileDef def_;
  bool hasIfil_ = false;
  std::vector<FieldDef> fields_;
  bool hasFields_ = false;
  std::vector<std::unique_ptr<KeyLayout>> layouts_;
  std::vector<std::shared_ptr<const Condition>> conds_;
  Db meta_ = 0, rec_ = 0, res_ = 0;
  std::vector<Db> keys_;
};

// An index file: an Env holding the definitions of its members (the keys
// themselves live in the data file, so that a record and its keys commit together).
class IndexFile {
 public:
  // password: the hash (PasswordHash) its header keeps, the data file's for a set's index file.
  static std::shared_ptr<Env> Create(const std::string& path, const std::string& dataName,
                                     const std::vector<IndexDef>& members, uint64_t password);
  // Opens and checks the header (CT_EDAMAGED, CT_EALIGN) and the password (BPWD_ERR).
  static std::shared_ptr<Env> Open(const std::string& path, const char* password);
  // Replaces the password hash its header keeps (one durable write).
  static void PutPassword(const std::string& path, uint64_t password);
  // The definition image the index file at path holds (its members; name: the data file's).
  static FileDef Definition(Env& env, const std::string& path);
  // Replaces that definition (one durable write).
  static void PutDefinition(Env& env, const std::string& path, const FileDef& def);
};

}  // namespace cte
