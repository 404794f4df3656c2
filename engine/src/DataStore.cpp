// DataStore: creating and opening data and index files, their header, definition and schema.
#include "DataStore.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "RecordCodec.h"
#include "Superfile.h"
#include "ctisam.h"

namespace cte {

namespace {

constexpr char kMagic[8] = {'C', 'T', 'L', 'M', 'D', 'B', 1, 0};
// Version 2 stores fixed-length records encoded (RecordCodec); version 1 files, whose records
// are stored as given, are still read and written in their own layout.
constexpr uint32_t kVersion = 2;
constexpr uint32_t kOldestVersion = 1;
constexpr uint32_t kFirstPos = 128;

bool GetMeta(Txn* txn, Db dbi, const char* key, std::string& out) {
  Bytes v;
  if (!txn->Get(dbi, BytesOf(key), v)) return false;
  out.assign(static_cast<const char*>(v.data), v.size);
  return true;
}

void PutMeta(Txn* txn, Db dbi, const char* key, const std::string& value) {
  txn->Put(dbi, BytesOf(key), BytesOf(value));
}

FileHeader MakeHeader(uint8_t kind, uint16_t filmod, uint32_t reclen, const char* password) {
  FileHeader h{};
  std::memcpy(h.magic, kMagic, sizeof kMagic);
  h.version = kVersion;
  h.kind = kind;
  h.pack = static_cast<uint8_t>(LibraryPack());
  h.filmod = filmod;
  h.reclen = reclen;
  h.password = PasswordHash(password);
  return h;
}

FileHeader ReadHeader(Txn* txn, Db meta, uint8_t kind) {
  std::string raw;
  if (!GetMeta(txn, meta, "hdr", raw) || raw.size() != sizeof(FileHeader)) Throw(CT_EDAMAGED);
  FileHeader h;
  std::memcpy(&h, raw.data(), sizeof h);
  if (std::memcmp(h.magic, kMagic, sizeof kMagic) != 0 || h.version < kOldestVersion || h.version > kVersion)
    Throw(CT_EDAMAGED);
  if (h.pack != LibraryPack()) Throw(CT_EALIGN);
  // An index file where a data file is wanted: OPNFIL opens it on its own instead.
  if (h.kind != kind) Throw(h.kind == kKindIndex ? CT_ENOTDAT : CT_EDAMAGED);
  // A data file's record length was given as 16 bits at its creation: any other is damage, which
  // would have every read fill (and allocate) that much.
  if (kind == kKindData && (h.reclen == 0 || h.reclen > 0xFFFF)) Throw(CT_EDAMAGED);
  return h;
}

// Claims a new file name; DCRAT_ERR when it exists or cannot be made.
void ClaimName(const std::string& path) {
  int fd = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
  if (fd < 0) Throw(DCRAT_ERR, errno);
  ::close(fd);
}

std::map<std::pair<Env*, std::string>, std::weak_ptr<DataStore>>& Stores() {
  static std::map<std::pair<Env*, std::string>, std::weak_ptr<DataStore>> stores;
  return stores;
}

}  // namespace

uint64_t PasswordHash(const char* password) {
  if (!password || !*password) return 0;
  uint64_t h = 1469598103934665603ull;
  for (const char* p = password; *p; ++p) h = (h ^ static_cast<uint8_t>(*p)) * 1099511628211ull;
  return h ? h : 1;
}

std::shared_ptr<DataStore> DataStore::Create(const std::string& path, const FileDef& def,
                                             bool hasIfil, const char* password) {
  const Place place = Locate(path);
  if (!place.IsMember()) ClaimName(path);
  try {
    std::shared_ptr<DataStore> s(new DataStore());
    s->env_ = place.IsMember() ? OpenHost(place.host, true) : Env::Acquire(path, true);
    s->path_ = path;
    s->hdr_ = MakeHeader(kKindData, static_cast<uint16_t>(def.dfilmod),
                         static_cast<uint16_t>(def.reclen), password);
    WriteTxn w(*s->env_);
    if (place.IsMember()) {
      s->member_ = CreateMember(*s->env_, w.Get(), place.member);
      s->prefix_ = MemberPrefix(s->member_);
    }
    s->meta_ = s->env_->Dbi(w.Get(), s->prefix_ + "meta", true);
    s->rec_ = s->env_->Dbi(w.Get(), s->prefix_ + "rec", true, kIntegerKeys);
    s->res_ = s->env_->Dbi(w.Get(), s->prefix_ + "res", true);
    PutMeta(w.Get(), s->meta_, "hdr", std::string(reinterpret_cast<const char*>(&s->hdr_), sizeof s->hdr_));
    s->WriteCounters(w.Get(), Counters{kFirstPos, 0});
    s->def_ = def;
    s->hasIfil_ = hasIfil;
    if (hasIfil) PutMeta(w.Get(), s->meta_, "ifil", Serialize(def));
    s->OpenKeyDbs(w.Get(), true);
    w.Commit(true);
    s->layouts_.resize(def.idx.size());
    Stores()[{s->env_.get(), s->prefix_}] = s;
    return s;
  } catch (...) {
    // A member is made by one transaction: when it fails there is nothing to remove.
    if (!place.IsMember()) RemoveFile(path);
    throw;
  }
}

std::shared_ptr<DataStore> DataStore::Open(const std::string& path, const char* password) {
  const Place place = Locate(path);
  std::shared_ptr<Env> env = place.IsMember() ? OpenHost(place.host, false) : Env::Acquire(path, false);
  uint32_t member = 0;
  if (place.IsMember() && !(member = FindMember(*env, place.member))) Throw(FNOP_ERR);
  const std::string prefix = place.IsMember() ? MemberPrefix(member) : std::string();
  std::shared_ptr<DataStore> s;
  if (auto it = Stores().find({env.get(), prefix}); it != Stores().end()) s = it->second.lock();
  if (!s) {
    s.reset(new DataStore());
    s->env_ = env;
    s->path_ = path;
    s->member_ = member;
    s->prefix_ = prefix;
    env->ReadOnce([&](Txn* txn) {
      s->meta_ = env->Dbi(txn, prefix + "meta", false);
      s->hdr_ = ReadHeader(txn, s->meta_, kKindData);
      s->rec_ = env->Dbi(txn, prefix + "rec", false, kIntegerKeys);
      s->res_ = env->Dbi(txn, prefix + "res", false);
      s->Load(txn);
      s->OpenKeyDbs(txn, false);
    });
    Stores()[{env.get(), prefix}] = s;
  } else {
    s->Reload();
  }
  if (s->hdr_.password != 0 && PasswordHash(password) != s->hdr_.password) Throw(BPWD_ERR);
  return s;
}

void DataStore::Load(Txn* txn) {
  std::string raw;
  hasIfil_ = GetMeta(txn, meta_, "ifil", raw);
  if (hasIfil_) {
    def_ = ParseFileDef(raw);
    // Every definition was valid when it was stored: one that is not is damage, whose keys would
    // be built past their buffers.
    try {
      Validate(def_);
    } catch (const Fail&) {
      Throw(CT_EDAMAGED);
    }
  } else {
    def_ = FileDef{};
    def_.reclen = static_cast<int16_t>(hdr_.reclen);
    def_.dfilmod = static_cast<int16_t>(hdr_.filmod);
  }
  hasFields_ = GetMeta(txn, meta_, "doda", raw);
  fields_ = hasFields_ ? ParseFields(raw) : std::vector<FieldDef>{};
  dver_ = 0;
  if (GetMeta(txn, meta_, "dver", raw) && raw.size() == sizeof dver_) std::memcpy(&dver_, raw.data(), sizeof dver_);
  layouts_.clear();
  layouts_.resize(def_.idx.size());
}

void DataStore::Reload() {
  Txn* txn = env_->Snapshot();
  Load(txn);
  // Key databases of indexes added or removed since are looked up again by name.
  if (env_->Holding())
    OpenKeyDbs(env_->Snapshot(), false);
  else
    env_->ReadOnce([&](Txn* t) { OpenKeyDbs(t, false); });
}

void DataStore::OpenKeyDbs(Txn* txn, bool create) {
  keys_.clear();
  for (IndexDef& ix : def_.idx) {
    if (ix.keydb < 0) ix.keydb = NextKeyDb(def_);
    keys_.push_back(env_->Dbi(txn, prefix_ + "k" + std::to_string(ix.keydb), create));
  }
  conds_.clear();
  conds_.resize(def_.idx.size());
}

int16_t DataStore::NextKeyDb(const FileDef& def) {
  int16_t next = 0;
  for (const IndexDef& ix : def.idx) next = std::max<int16_t>(next, static_cast<int16_t>(ix.keydb + 1));
  return next;
}

bool DataStore::Accepts(size_t ordinal, const uint8_t* rec, size_t n) {
  const IndexDef& ix = def_.idx[ordinal];
  if (ix.cond.empty()) return true;
  if (conds_.size() < def_.idx.size()) conds_.resize(def_.idx.size());
  if (!conds_[ordinal]) conds_[ordinal] = Condition::Parse(ix.cond, fields_);
  return conds_[ordinal]->Accepts(rec, n);
}

bool DataStore::Durable(int openMode) const {
  int m = openMode | hdr_.filmod;
  return (m & WRITETHRU) != 0 || (m & TRNLOG) == TRNLOG;
}

const KeyLayout& DataStore::Layout(size_t ordinal) {
  if (ordinal >= layouts_.size()) Throw(CT_ENOTIDX);
  if (!layouts_[ordinal])
    layouts_[ordinal] = std::make_unique<KeyLayout>(KeyLayout::Compile(def_.idx[ordinal], fields_));
  return *layouts_[ordinal];
}

void DataStore::CheckCurrent(Txn* txn) {
  std::string raw;
  uint32_t stored = 0;
  if (GetMeta(txn, meta_, "dver", raw) && raw.size() == sizeof stored) std::memcpy(&stored, raw.data(), sizeof stored);
  if (stored != dver_) Throw(kStaleDefinition);
}

// Every definition or schema change advances the stored version, so that other processes'
// writers notice it (CheckCurrent) before they write with the old one.
void DataStore::BumpVersion(Txn* txn) {
  ++dver_;
  PutMeta(txn, meta_, "dver", std::string(reinterpret_cast<const char*>(&dver_), sizeof dver_));
}

void DataStore::PutDef(Txn* txn, const FileDef& given) {
  FileDef def = given;
  for (IndexDef& ix : def.idx)
    if (ix.keydb < 0) ix.keydb = NextKeyDb(def);
  PutMeta(txn, meta_, "ifil", Serialize(def));
  BumpVersion(txn);
  def_ = def;
  hasIfil_ = true;
  OpenKeyDbs(txn, true);
  layouts_.clear();
  layouts_.resize(def_.idx.size());
}

void DataStore::PutFields(Txn* txn, const std::vector<FieldDef>& fields) {
  PutMeta(txn, meta_, "doda", Serialize(fields));
  BumpVersion(txn);
  fields_ = fields;
  hasFields_ = true;
  conds_.clear();
  conds_.resize(def_.idx.size());
  layouts_.clear();
  layouts_.resize(def_.idx.size());
}

void DataStore::PutHeader(Txn* txn, const FileHeader& hdr) {
  PutMeta(txn, meta_, "hdr", std::string(reinterpret_cast<const char*>(&hdr), sizeof hdr));
}

bool DataStore::Packed() const { return hdr_.version >= 2 && (hdr_.filmod & VLENGTH) == 0; }

Bytes DataStore::Pack(const void* rec, size_t n, std::vector<uint8_t>& space) const {
  if (!Packed()) return Bytes{n, rec};
  RecordCodec::Encode(static_cast<const uint8_t*>(rec), n, space);
  return Bytes{space.size(), space.data()};
}

Bytes DataStore::Unpack(const Bytes& stored, std::vector<uint8_t>& space) const {
  if (!Packed()) return stored;
  if (space.size() != hdr_.reclen) space.resize(hdr_.reclen);
  if (!RecordCodec::Decode(static_cast<const uint8_t*>(stored.data), stored.size, space.data(), space.size()))
    Throw(CT_EDAMAGED);
  return Bytes{space.size(), space.data()};
}

DataStore::Counters DataStore::ReadCounters(Txn* txn) {
  std::string raw;
  Counters c{};
  if (!GetMeta(txn, meta_, "ctr", raw) || raw.size() != sizeof c) Throw(CT_EDAMAGED);
  std::memcpy(&c, raw.data(), sizeof c);
  return c;
}

void DataStore::WriteCounters(Txn* txn, const Counters& c) {
  PutMeta(txn, meta_, "ctr", std::string(reinterpret_cast<const char*>(&c), sizeof c));
}

std::shared_ptr<Env> IndexFile::Create(const std::string& path, const std::string& dataName,
                                       const std::vector<IndexDef>& members, uint64_t password) {
  const Place place = Locate(path);
  if (!place.IsMember()) ClaimName(path);
  try {
    std::shared_ptr<Env> env = place.IsMember() ? OpenHost(place.host, true) : Env::Acquire(path, true);
    WriteTxn w(*env);
    std::string prefix;
    if (place.IsMember()) prefix = MemberPrefix(CreateMember(*env, w.Get(), place.member));
    Db meta = env->Dbi(w.Get(), prefix + "meta", true);
    FileHeader h = MakeHeader(kKindIndex, 0, 0, nullptr);
    h.password = password;
    PutMeta(w.Get(), meta, "hdr", std::string(reinterpret_cast<const char*>(&h), sizeof h));
    FileDef def;
    def.name = dataName;
    def.reclen = 1;
    def.idx = members;
    PutMeta(w.Get(), meta, "def", Serialize(def));
    w.Commit(true);
    return env;
  } catch (...) {
    if (!place.IsMember()) RemoveFile(path);
    throw;
  }
}

FileDef IndexFile::Definition(Env& env, const std::string& path) {
  const Place place = Locate(path);
  std::string prefix;
  if (place.IsMember()) prefix = MemberPrefix(FindMember(env, place.member));
  std::string raw;
  env.ReadOnce([&](Txn* txn) {
    Db meta = env.Dbi(txn, prefix + "meta", false);
    if (!GetMeta(txn, meta, "def", raw)) Throw(CT_EDAMAGED);
  });
  return ParseFileDef(raw);
}

void IndexFile::PutDefinition(Env& env, const std::string& path, const FileDef& def) {
  const Place place = Locate(path);
  std::string prefix;
  WriteTxn w(env);
  if (place.IsMember()) prefix = MemberPrefix(FindMember(env, place.member));
  Db meta = env.Dbi(w.Get(), prefix + "meta", false);
  PutMeta(w.Get(), meta, "def", Serialize(def));
  w.Commit(true);
}

namespace {

// The prefix of the index file's databases: empty, or its member's inside a superfile host.
std::string IndexPrefix(Env& env, const std::string& path) {
  const Place place = Locate(path);
  if (!place.IsMember()) return std::string();
  const uint32_t id = FindMember(env, place.member);
  if (!id) Throw(FNOP_ERR);
  return MemberPrefix(id);
}

}  // namespace

std::shared_ptr<Env> IndexFile::Open(const std::string& path, const char* password) {
  const Place place = Locate(path);
  std::shared_ptr<Env> env = place.IsMember() ? OpenHost(place.host, false) : Env::Acquire(path, false);
  const std::string prefix = IndexPrefix(*env, path);
  FileHeader h;
  env->ReadOnce([&](Txn* txn) {
    Db meta = env->Dbi(txn, prefix + "meta", false);
    h = ReadHeader(txn, meta, kKindIndex);
  });
  if (h.password != 0 && PasswordHash(password) != h.password) Throw(BPWD_ERR);
  return env;
}

void IndexFile::PutPassword(const std::string& path, uint64_t password) {
  const Place place = Locate(path);
  std::shared_ptr<Env> env = place.IsMember() ? OpenHost(place.host, false) : Env::Acquire(path, false);
  const std::string prefix = IndexPrefix(*env, path);
  WriteTxn w(*env);
  Db meta = env->Dbi(w.Get(), prefix + "meta", false);
  FileHeader h = ReadHeader(w.Get(), meta, kKindIndex);
  h.password = password;
  PutMeta(w.Get(), meta, "hdr", std::string(reinterpret_cast<const char*>(&h), sizeof h));
  w.Commit(true);
}

}  // namespace cte
