// Session.mapping: index files opened on their own, mapped onto an open data file (setimap) and
// deleted (DELFIL); indexes dropped from a data file's definition (mapped and temporary indexes
// when their handles close, deleted index files).
#include <algorithm>

#include "Session.h"

namespace cte {

namespace {

std::string DirOf(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// The name an index file has in a data file's definition: relative to the data file's folder
// when it lies there, otherwise as given.
std::string NameBeside(const std::string& dataPath, const std::string& indexPath) {
  const std::string dir = DirOf(dataPath);
  if (DirOf(indexPath) == dir) return indexPath.substr(dir.size());
  return indexPath;
}

}  // namespace

void Session::OpenIndexAlone(int16_t no, std::unique_ptr<Handle> h, const char* name, int filmod,
                             const char* password) {
  h->isIndex = true;
  h->idxEnv = IndexFile::Open(name, password);
  h->name = h->path = name;
  h->mode = filmod;
  h->self = no;
  files_[no] = std::move(h);
}

namespace {

// CREIDX/CREMEM arguments: a key length the engine can hold and a duplicate flag.
IndexDef MemberOf(int keylen, int keytyp, int keydup) {
  if (keylen <= 0 || keylen > CT_MAXKEYLEN) Throw(CT_EKEYLEN);
  if (keydup != 0 && keydup != 1) Throw(CT_EBADARG);
  IndexDef ix;
  ix.keylen = static_cast<int16_t>(keylen);
  ix.keytype = static_cast<int16_t>(keytyp);
  ix.dup = static_cast<int16_t>(keydup);
  return ix;
}

}  // namespace

int Session::CreateIndexFile(int keyno, const char* name, int keylen, int keytyp, int keydup, int nomemb,
                             int filmod, const char* password) {
  if (!name || !*name) Throw(CT_EBADARG);
  if (nomemb < 0 || nomemb >= CT_MAXSEG * 4) Throw(CT_EBADARG);
  if (filmod & ~(SHARED | READFIL | WRITETHRU | TRNLOG | CHECKLOCK)) Throw(FMOD_ERR);
  std::vector<IndexDef> members(1 + nomemb);
  members[0] = MemberOf(keylen, keytyp, keydup);
  if (keyno < 0) Throw(FNUM_ERR);
  const int16_t no = Claim(keyno, 1);
  if (PathExists(name)) Throw(DCRAT_ERR);
  IndexFile::Create(name, std::string(), members, PasswordHash(password));
  auto h = std::make_unique<Handle>();
  h->lock = LockPath(name, !(filmod & SHARED));
  OpenIndexAlone(no, std::move(h), name, filmod, password);
  return no;
}

void Session::CreateMember(int keyno, int keylen, int keytyp, int keydup, int membno) {
  Handle& k = Slot(keyno);
  if (!k.isIndex) Throw(CT_ENOTIDX);
  if (k.store) Throw(FUSE_ERR);
  if (k.mode & (SHARED | READFIL)) Throw(FMOD_ERR);
  FileDef def = IndexFile::Definition(*k.idxEnv, k.path);
  if (membno < 1 || membno >= static_cast<int>(def.idx.size())) Throw(CT_EBADARG);
  if (def.idx[membno].keylen != 0) Throw(DCRAT_ERR);
  def.idx[membno] = MemberOf(keylen, keytyp, keydup);
  IndexFile::PutDefinition(*k.idxEnv, k.path, def);
}

void Session::MapIndexFile(int imapno, const FileDef& ifil, int datno, int mode) {
  Handle& k = Slot(imapno);
  if (!k.isIndex) Throw(CT_ENOTIDX);
  if (k.store) Throw(FUSE_ERR);
  Handle& h = Data(datno);
  CheckWritable(h);
  if (mode != 0) Throw(CT_EBADARG);
  DataStore& s = *h.store;
  if (ifil.reclen != static_cast<int16_t>(s.RecLen())) Throw(CT_EBADDEF);
  FileDef members = IndexFile::Definition(*k.idxEnv, k.path);
  if (members.idx.empty()) Throw(CT_EBADDEF);
  // Members made by CREIDX/CREMEM have no segments: member j takes those of ifil's index j,
  // which must have its key length and duplicate flag.
  for (size_t j = 0; j < members.idx.size(); ++j) {
    IndexDef& ix = members.idx[j];
    if (!ix.segs.empty()) continue;
    if (ix.keylen == 0 || j >= ifil.idx.size()) Throw(CT_EBADDEF);
    const IndexDef& given = ifil.idx[j];
    if (given.keylen != ix.keylen || given.dup != ix.dup) Throw(CT_EBADDEF);
    ix.segs = given.segs;
    ix.nulkey = given.nulkey;
    ix.empchr = given.empchr;
  }
  members.name = ifil.name;
  members.reclen = static_cast<int16_t>(s.RecLen());
  Validate(members);
  const std::string file = NameBeside(h.path, k.path);
  FileDef def = s.def();
  if (!s.HasIfil()) {
    def.name = ifil.name;
    def.reclen = static_cast<int16_t>(s.RecLen());
  }
  for (IndexDef& ix : members.idx) {
    ix.file = file;
    ix.keydb = -1;
    ix.temp = kMappedIndex;
    for (const IndexDef& old : def.idx)
      if (old.file == file || (!ix.name.empty() && old.name == ix.name)) Throw(DCRAT_ERR);
  }
  const int count = static_cast<int>(members.idx.size());
  if (count > 1) Claim(imapno + 1, count - 1);
  const size_t base = def.idx.size();
  for (const IndexDef& ix : members.idx) def.idx.push_back(ix);
  WriteDefinition(h, [&](Txn* txn) {
    s.PutDef(txn, def);
    for (size_t i = base; i < def.idx.size(); ++i) FillIndex(s, txn, i);
  });
  for (int i = 0; i < count; ++i) {
    std::unique_ptr<Handle> m;
    if (i > 0) {
      m = std::make_unique<Handle>();
      m->isIndex = true;
      m->name = m->path = k.path;
      m->mode = k.mode;
      m->idxEnv = k.idxEnv;
      m->self = static_cast<int16_t>(imapno + i);
    }
    Handle& x = i == 0 ? k : *m;
    x.store = h.store;
    x.datno = h.self;
    x.ordinal = base + i;
    if (m) files_[imapno + i] = std::move(m);
  }
  for (auto& p : files_) {
    if (!p || p->isIndex || p->store.get() != &s) continue;
    p->keynos.resize(s.IndexCount(), -1);
    ForgetKeys(*p, base);
  }
  for (int i = 0; i < count; ++i) h.keynos[base + i] = static_cast<int16_t>(imapno + i);
}

void Session::DropIndexes(Handle& h, std::vector<size_t> ordinals) {
  std::sort(ordinals.begin(), ordinals.end());
  FileDef def = h.store->def();
  for (auto it = ordinals.rbegin(); it != ordinals.rend(); ++it) def.idx.erase(def.idx.begin() + *it);
  DropIndexes(h, ordinals, def);
}

void Session::DropIndexes(Handle& h, std::vector<size_t> ordinals, const FileDef& def) {
  if (ordinals.empty()) return;
  DataStore& s = *h.store;
  const std::vector<int16_t> before = KeyDbsOf(s.def());
  std::vector<Db> victims;
  for (size_t o : ordinals) victims.push_back(s.KeyDbi(o));
  WriteDefinition(h, [&](Txn* txn) {
    for (Db dbi : victims) txn->Drop(dbi, false);
    s.PutDef(txn, def);
  });
  Remap(s, before);
}

std::vector<int16_t> Session::KeyDbsOf(const FileDef& def) {
  std::vector<int16_t> keydbs;
  for (const IndexDef& ix : def.idx) keydbs.push_back(ix.keydb);
  return keydbs;
}

void Session::Remap(DataStore& s, const std::vector<int16_t>& before) {
  // An index is known by its key database number: where it is now, or -1 when it is gone.
  const std::vector<int16_t> after = KeyDbsOf(s.def());
  std::vector<long> moved(before.size(), -1);
  for (size_t o = 0; o < before.size(); ++o)
    for (size_t n = 0; n < after.size(); ++n)
      if (after[n] == before[o]) moved[o] = static_cast<long>(n);
  auto remapKeys = [&](Position& p) {
    std::vector<std::unique_ptr<KeyPos>> keys(after.size());
    for (size_t o = 0; o < p.keys.size() && o < moved.size(); ++o)
      if (moved[o] >= 0) keys[moved[o]] = std::move(p.keys[o]);
    for (auto& k : keys)
      if (!k) k = std::make_unique<KeyPos>();
    p.keys = std::move(keys);
  };
  for (auto& p : files_) {
    if (!p || p->store.get() != &s) continue;
    if (p->isIndex) {
      if (p->ordinal >= moved.size() || moved[p->ordinal] < 0) {
        Release(p->self);
        continue;
      }
      p->ordinal = static_cast<size_t>(moved[p->ordinal]);
      continue;
    }
    std::vector<int16_t> keynos(after.size(), -1);
    for (size_t o = 0; o < p->keynos.size() && o < moved.size(); ++o)
      if (moved[o] >= 0) keynos[moved[o]] = p->keynos[o];
    p->keynos = std::move(keynos);
    remapKeys(*p->base);
    for (auto& [id, ctx] : contexts_)
      if (ctx.datno == p->self) remapKeys(*ctx.pos);
  }
}

void Session::DropTemporary(Handle& h) {
  std::vector<size_t> ordinals;
  std::vector<std::string> owned;  // index files TMPIIDXX made: they go with their indexes
  const FileDef& def = h.store->def();
  for (size_t o = 0; o < def.idx.size(); ++o) {
    if (def.idx[o].temp == 0) continue;
    ordinals.push_back(o);
    if (def.idx[o].temp == kTempIndex) owned.push_back(DirOf(h.path) + def.idx[o].file);
  }
  if (ordinals.empty() || (h.mode & READFIL)) return;
  DropIndexes(h, ordinals);
  for (const std::string& f : owned) RemovePath(f);
}

void Session::DropTemporaryIfLast(Handle& h) {
  bool temporary = false;
  for (const IndexDef& ix : h.store->def().idx) temporary = temporary || ix.temp != 0;
  if (!temporary || !h.lock || !h.lock->TryExclusive()) return;
  // A failure leaves them in the definition, still flagged, for a later close or a rebuild.
  try {
    DropTemporary(h);
  } catch (const Fail&) {
  }
}

void Session::DeleteIndexFile(int keyno) {
  Handle& k = Slot(keyno);
  if (k.mode & SHARED) Throw(FMOD_ERR);
  const std::string path = k.path;
  if (!k.store) {
    Release(keyno);
    RemovePath(path);
    return;
  }
  Handle& h = *files_[k.datno];
  if (h.mode & SHARED) Throw(FMOD_ERR);
  CheckWritable(h);
  const std::string file = h.store->def().idx[k.ordinal].file;
  std::vector<size_t> ordinals;
  for (size_t o = 0; o < h.store->def().idx.size(); ++o)
    if (h.store->def().idx[o].file == file) ordinals.push_back(o);
  DropIndexes(h, ordinals);
  RemovePath(path);
}

}  // namespace cte
