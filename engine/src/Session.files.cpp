// Session.files: creating, opening, closing, deleting and renaming data files, index files and
// IFIL sets; the IFIL, schema and other resources.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>

#include "Session.h"

namespace cte {

namespace {

constexpr int kModeBits = SHARED | VLENGTH | READFIL | TRNLOG | WRITETHRU | CHECKLOCK | SUPERFILE | CHECKREAD;

void CheckMode(int mode) {
  if (mode & ~kModeBits) Throw(FMOD_ERR);
}

// A file this process may only read opens only in READFIL mode: any other open would fail at
// its first write, so it is refused as c-tree refuses a file it cannot open for writing.
void RefuseReadOnly(DataStore& store, int mode) {
  if (!(mode & READFIL) && store.env().ReadOnly()) Throw(FNOP_ERR, EACCES);
}

std::string DirOf(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string BaseOf(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string StripExt(const std::string& name) {
  size_t dot = name.rfind('.');
  size_t slash = name.rfind('/');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return name;
  return name.substr(0, dot);
}

void CheckName(const char* name) {
  if (!name || !*name) Throw(CT_EBADARG);
}

// True when two indexes build the same keys.
bool SameLayout(const IndexDef& a, const IndexDef& b) {
  if (a.keylen != b.keylen || a.keytype != b.keytype || a.dup != b.dup || a.segs.size() != b.segs.size()) return false;
  for (size_t i = 0; i < a.segs.size(); ++i)
    if (a.segs[i].offset != b.segs[i].offset || a.segs[i].length != b.segs[i].length || a.segs[i].mode != b.segs[i].mode)
      return false;
  return true;
}

// The index files of a definition, in the order they are first used.
std::vector<std::string> IndexFiles(const FileDef& d) {
  std::vector<std::string> files;
  for (const IndexDef& ix : d.idx)
    if (std::find(files.begin(), files.end(), ix.file) == files.end()) files.push_back(ix.file);
  return files;
}

}  // namespace

void Session::CreateData(int filno, const char* name, int reclen, int filmod, const char* password) {
  CheckName(name);
  CheckMode(filmod);
  if (reclen <= 0) Throw(CT_EBADDEF);
  int16_t no = Claim(filno, 1);
  if ((filmod & SUPERFILE) && !Locate(name).IsMember()) {
    if (PathExists(name)) Throw(DCRAT_ERR);
    OpenHost(name, true);
    OpenFile(no, name, filmod, password);
    return;
  }
  FileDef def;
  def.name = name;
  def.reclen = static_cast<int16_t>(reclen);
  def.dfilmod = static_cast<int16_t>(filmod);
  DataStore::Create(name, def, false, password);
  OpenFile(no, name, filmod, password);
}

void Session::OpenFile(int filno, const char* name, int filmod, const char* password) {
  CheckName(name);
  CheckMode(filmod);
  int16_t no = Claim(filno, 1);
  auto h = std::make_unique<Handle>();
  h->lock = LockPath(name, !(filmod & SHARED));
  if (!Locate(name).IsMember() && IsHost(name)) {
    h->isHost = true;
    h->hostEnv = OpenHost(name, false);
    h->name = h->path = name;
    h->mode = filmod;
    h->self = no;
    files_[no] = std::move(h);
    return;
  }
  try {
    h->store = DataStore::Open(name, password);
  } catch (const Fail& e) {
    if (e.code != CT_ENOTDAT || Locate(name).IsMember()) throw;
    OpenIndexAlone(no, std::move(h), name, filmod, password);
    return;
  }
  RefuseReadOnly(*h->store, filmod);
  h->name = name;
  h->path = name;
  h->mode = filmod;
  h->password = password ? password : "";
  h->keynos.assign(h->store->IndexCount(), -1);
  h->base = std::make_unique<Position>(h->store->IndexCount());
  h->self = no;
  LockMember(*h, filmod);
  files_[no] = std::move(h);
}

// Members share their host's file, so their open mode is a lock on the member's key 1 (no
// record has that position): read for SHARED, write for EXCLUSIVE, held until the handle closes.
void Session::LockMember(Handle& h, int filmod) {
  if (!Locate(h.path).IsMember()) return;
  if (!h.store->env().Locks().Acquire(h.store->LockKey(1), h.self, !(filmod & SHARED))) Throw(FNOP_ERR);
}

void Session::CloseFile(int filno) {
  Handle& h = Slot(filno);
  if (h.isHost || !h.store) {
    Release(filno);
    return;
  }
  if (!h.isIndex) {
    CloseSet(filno);
    return;
  }
  Handle& data = *files_[h.datno];
  if (h.store->def().idx[h.ordinal].temp == kMappedIndex && !(data.mode & READFIL)) {
    DropIndexes(data, {h.ordinal});
    return;
  }
  data.keynos[h.ordinal] = -1;
  Release(filno);
}

void Session::CloseSet(int datno) {
  Handle& h = Data(datno);
  DropTemporaryIfLast(h);
  for (int16_t k : h.keynos)
    if (k >= 0) Release(k);
  Release(datno);
}

void Session::DeleteFile(int filno) {
  Handle& h = Slot(filno);
  if (h.isIndex) {
    DeleteIndexFile(filno);
    return;
  }
  if (h.isHost) {
    if (h.mode & SHARED) Throw(FMOD_ERR);
    std::string path = h.path;
    Release(filno);
    RemoveFile(path);
    return;
  }
  DeleteSet(filno);
}

void Session::DeleteSet(int datno) {
  Handle& h = Data(datno);
  if (h.mode & SHARED) Throw(FMOD_ERR);
  CheckWritable(h);
  std::string dir = DirOf(h.path);
  std::vector<std::string> victims{h.path};
  for (const IndexDef& ix : h.store->def().idx)
    if (ix.temp != kMappedIndex && std::find(victims.begin(), victims.end(), dir + ix.file) == victims.end())
      victims.push_back(dir + ix.file);
  CloseSet(datno);
  for (const std::string& v : victims) RemovePath(v);
}

int Session::CreateIfil(FileDef& def, const char* dataext, const char* idxext, const char* password) {
  Validate(def);
  CheckMode(def.dfilmod);
  std::string ext = idxext && *idxext ? idxext : ".idx";
  std::string path = def.name + (dataext ? dataext : ".dat");
  int16_t no = Claim(def.dfilno, 1 + static_cast<int>(def.idx.size()));
  for (IndexDef& ix : def.idx) ix.file = BaseOf((ix.fileName.empty() ? def.name : ix.fileName) + ext);
  std::string dir = DirOf(path);
  std::vector<std::string> made;
  try {
    DataStore::Create(path, def, true, password);
    made.push_back(path);
    for (const std::string& f : IndexFiles(def)) {
      std::vector<IndexDef> members;
      for (const IndexDef& ix : def.idx)
        if (ix.file == f) members.push_back(ix);
      IndexFile::Create(dir + f, BaseOf(path), members, PasswordHash(password));
      made.push_back(dir + f);
    }
    OpenIfil(no, path, def.dfilmod, password);
  } catch (...) {
    for (const std::string& m : made) RemovePath(m);
    throw;
  }
  return no;
}

int Session::OpenIfil(int filno, const std::string& path, int filmod, const char* password) {
  CheckName(path.c_str());
  CheckMode(filmod);
  bool exclusive = !(filmod & SHARED);
  auto h = std::make_unique<Handle>();
  h->lock = LockPath(path, exclusive);
  h->store = DataStore::Open(path, password);
  RefuseReadOnly(*h->store, filmod);
  if (!h->store->HasIfil()) Throw(RNOT_ERR);
  const FileDef& def = h->store->def();
  // Indexes another open mapped (setimap) are maintained but get no number here.
  auto mapped = [&](size_t i) { return def.idx[i].temp == kMappedIndex; };
  int count = 0;
  for (size_t i = 0; i < def.idx.size(); ++i) count += mapped(i) ? 0 : 1;
  int16_t no = Claim(filno, 1 + count);
  std::string dir = DirOf(path);
  std::map<std::string, std::pair<std::shared_ptr<Env>, std::shared_ptr<FileLock>>> idxFiles;
  for (const std::string& f : IndexFiles(def)) {
    if (std::all_of(def.idx.begin(), def.idx.end(), [&](const IndexDef& ix) { return ix.file != f || ix.temp == kMappedIndex; }))
      continue;
    // The data file is sound but its index file is not (or is not a regular file): the set must
    // be rebuilt (RBLIFIL).
    try {
      std::shared_ptr<FileLock> lock = LockPath(dir + f, exclusive);
      idxFiles[f] = {IndexFile::Open(dir + f, password), lock};
    } catch (const Fail& e) {
      if (e.code == CT_EDAMAGED) Throw(FCRP_ERR);
      throw;
    }
  }
  h->name = path;
  h->path = path;
  h->mode = filmod;
  h->password = password ? password : "";
  h->self = no;
  LockMember(*h, filmod);
  h->base = std::make_unique<Position>(def.idx.size());
  int16_t next = static_cast<int16_t>(no + 1);
  for (size_t i = 0; i < def.idx.size(); ++i) {
    if (mapped(i)) {
      h->keynos.push_back(-1);
      continue;
    }
    auto k = std::make_unique<Handle>();
    k->isIndex = true;
    k->name = dir + def.idx[i].file;
    k->path = k->name;
    k->mode = filmod;
    k->store = h->store;
    k->idxEnv = idxFiles[def.idx[i].file].first;
    k->idxLock = idxFiles[def.idx[i].file].second;
    k->datno = no;
    k->self = next;
    k->ordinal = i;
    h->keynos.push_back(next);
    files_[next++] = std::move(k);
  }
  files_[no] = std::move(h);
  return no;
}

void Session::Rename(int filno, const char* newname) {
  Handle& h = Data(filno);
  if (!newname || !*newname) Throw(CT_EBADARG);
  if (h.mode & SHARED) Throw(FMOD_ERR);
  CheckWritable(h);
  std::string oldPath = h.path, newPath = newname;
  std::string oldDir = DirOf(oldPath), newDir = DirOf(newPath);
  std::string oldBase = StripExt(BaseOf(oldPath)), newBase = StripExt(BaseOf(newPath));
  FileDef def = h.store->def();
  std::map<std::string, std::string> moves;
  for (IndexDef& ix : def.idx) {
    if (ix.temp == kMappedIndex) continue;  // another table's file: it keeps its name
    std::string to = ix.file.compare(0, oldBase.size(), oldBase) == 0 ? newBase + ix.file.substr(oldBase.size()) : ix.file;
    moves[ix.file] = to;
    ix.file = to;
  }
  // Every refusal comes before the definition is written and the file closed.
  if (PathExists(newPath)) Throw(DCRAT_ERR);
  CheckRenamePath(oldPath, newPath);
  for (const auto& [from, to] : moves) {
    if (oldDir == newDir && from == to) continue;
    if (PathExists(newDir + to)) Throw(DCRAT_ERR);
    CheckRenamePath(oldDir + from, newDir + to);
  }
  bool hasIfil = h.store->HasIfil();
  if (hasIfil) WriteDefinition(h, [&](Txn* txn) { h.store->PutDef(txn, def); });
  int mode = h.mode;
  std::string password = h.password;
  if (hasIfil) CloseSet(filno); else CloseFile(filno);
  RenamePath(oldPath, newPath);
  for (const auto& [from, to] : moves)
    if (oldDir != newDir || from != to) RenamePath(oldDir + from, newDir + to);
  if (hasIfil)
    OpenIfil(filno, newPath, mode, password.c_str());
  else
    OpenFile(filno, newPath.c_str(), mode, password.c_str());
}

FileDef Session::GetIfil(int datno) {
  Handle& h = Data(datno);
  if (!h.store->HasIfil()) Throw(RNOT_ERR);
  // Index files mapped by setimap belong to the session, not to the table's definition.
  FileDef def = h.store->def();
  def.idx.erase(std::remove_if(def.idx.begin(), def.idx.end(),
                               [](const IndexDef& ix) { return ix.temp == kMappedIndex; }),
                def.idx.end());
  return def;
}

void Session::PutIfil(const FileDef& given) {
  Handle& h = Data(given.dfilno);
  CheckWritable(h);
  FileDef def = given;
  Validate(def);
  const FileDef& old = h.store->def();
  size_t mapped = 0;
  for (const IndexDef& ix : old.idx) mapped += ix.temp == kMappedIndex;
  if (def.idx.size() > old.idx.size() - mapped) Throw(CT_EBADDEF);
  if (def.idx.size() == old.idx.size()) {
    for (size_t i = 0; i < def.idx.size(); ++i) {
      def.idx[i].file = old.idx[i].file;
      def.idx[i].keydb = old.idx[i].keydb;
      def.idx[i].temp = old.idx[i].temp;
      if (def.idx[i].altseq.empty()) def.idx[i].altseq = old.idx[i].altseq;
    }
    def.dfilno = old.dfilno;
    WriteDefinition(h, [&](Txn* txn) { h.store->PutDef(txn, def); });
    return;
  }
  // Fewer indexes: each given one is one the file has, matched by name (unnamed ones by
  // layout), in order. Those left unmatched are removed with their keys (and an index file
  // no index uses any more is deleted); mapped ones (setimap) stay.
  std::vector<bool> used(old.idx.size(), false);
  for (size_t o = 0; o < old.idx.size(); ++o) used[o] = old.idx[o].temp == kMappedIndex;
  for (IndexDef& ix : def.idx) {
    size_t o = 0;
    for (; o < old.idx.size(); ++o)
      if (!used[o] && (ix.name.empty() ? SameLayout(ix, old.idx[o]) : ix.name == old.idx[o].name)) break;
    if (o == old.idx.size()) Throw(CT_EBADDEF);
    used[o] = true;
    ix.file = old.idx[o].file;
    ix.keydb = old.idx[o].keydb;
    ix.temp = old.idx[o].temp;
    if (ix.altseq.empty()) ix.altseq = old.idx[o].altseq;
  }
  std::vector<size_t> dropped;
  for (size_t o = 0; o < old.idx.size(); ++o) {
    if (!used[o]) dropped.push_back(o);
    if (old.idx[o].temp == kMappedIndex) def.idx.push_back(old.idx[o]);
  }
  def.dfilno = old.dfilno;
  // The kept indexes keep their order: the dropped ones are removed in place.
  FileDef kept = old;
  for (auto it = dropped.rbegin(); it != dropped.rend(); ++it) kept.idx.erase(kept.idx.begin() + *it);
  for (size_t i = 0; i < kept.idx.size(); ++i)
    for (const IndexDef& ix : def.idx)
      if (ix.keydb == kept.idx[i].keydb) kept.idx[i] = ix;
  def.idx = kept.idx;
  if (dropped.empty()) {
    WriteDefinition(h, [&](Txn* txn) { h.store->PutDef(txn, def); });
    return;
  }
  std::vector<std::string> before = IndexFiles(old);
  DropIndexes(h, dropped, def);
  const std::string dir = DirOf(h.path);
  std::vector<std::string> after = IndexFiles(h.store->def());
  for (const std::string& f : before)
    if (std::find(after.begin(), after.end(), f) == after.end()) RemovePath(dir + f);
}

std::vector<FieldDef> Session::GetFields(int datno) {
  Handle& h = Data(datno);
  if (!h.store->HasFields()) Throw(RNOT_ERR);
  return h.store->fields();
}

void Session::PutFields(int datno, const std::vector<FieldDef>& fields) {
  Handle& h = Data(datno);
  CheckWritable(h);
  WriteDefinition(h, [&](Txn* txn) { h.store->PutFields(txn, fields); });
}

namespace {

// A resource image starts with its type and number (two ULONGs) and a zero-terminated name.
std::string ResKey(const void* res) {
  uint32_t tn[2];
  std::memcpy(tn, res, sizeof tn);
  char k[8];
  for (int i = 0; i < 4; ++i) {
    k[i] = static_cast<char>(tn[0] >> (24 - 8 * i));
    k[4 + i] = static_cast<char>(tn[1] >> (24 - 8 * i));
  }
  return std::string(k, 8);
}

}  // namespace

void Session::AddRes(int datno, const void* res, long len, bool update) {
  Handle& h = Data(datno);
  CheckWritable(h);
  if (!res || len < 9 || !std::memchr(static_cast<const char*>(res) + 8, 0, len - 8)) Throw(CT_EBADARG);
  std::string key = ResKey(res);
  Write(h, [&](Txn* txn) {
    Bytes k = BytesOf(key), v{static_cast<size_t>(len), res}, old{};
    const bool found = txn->Get(h.store->ResDbi(), k, old);
    if (update && !found) Throw(RNOT_ERR);
    if (!update && found) Throw(CT_ERESDUP);
    txn->Put(h.store->ResDbi(), k, v);
  });
}

void Session::DelRes(int datno, const void* res) {
  Handle& h = Data(datno);
  CheckWritable(h);
  if (!res) Throw(CT_EBADARG);
  std::string key = ResKey(res);
  Write(h, [&](Txn* txn) {
    if (!txn->Del(h.store->ResDbi(), BytesOf(key))) Throw(RNOT_ERR);
  });
}

long Session::GetRes(int datno, const void* res, void* buf, long bufsiz) {
  Handle& h = Data(datno);
  if (!res || !buf) Throw(CT_EBADARG);
  std::string key = ResKey(res);
  Bytes v;
  if (!h.store->env().Snapshot()->Get(h.store->ResDbi(), BytesOf(key), v)) Throw(RNOT_ERR);
  if (bufsiz < 0 || static_cast<size_t>(bufsiz) < v.size) Throw(VBSZ_ERR);
  std::memcpy(buf, v.data, v.size);
  return static_cast<long>(v.size);
}

}  // namespace cte
