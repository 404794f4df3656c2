// Session.indexes: index conditions, indexes added to an open file, rebuilding and compacting.
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "ReadCursor.h"
#include "StorageFiles.h"
#include "Session.h"

namespace cte {

namespace {

std::string DirOf(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string BaseOf(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The index files of a definition, in the order they are first used.
std::vector<std::string> FilesOf(const FileDef& d) {
  std::vector<std::string> files;
  for (const IndexDef& ix : d.idx)
    if (std::find(files.begin(), files.end(), ix.file) == files.end()) files.push_back(ix.file);
  return files;
}

}  // namespace

void Session::FillIndex(DataStore& s, Txn* txn, size_t ordinal) {
  const Db dbi = s.KeyDbi(ordinal);
  txn->Drop(dbi, false);
  const KeyLayout& layout = s.Layout(ordinal);
  uint8_t key[CT_MAXKEYLEN];
  ReadCursor c(txn, s.RecDbi());
  Bytes k{}, v{};
  for (bool at = c.Move(Seek::kFirst, k, v); at; at = c.Move(Seek::kNext, k, v)) {
    uint32_t pos;
    std::memcpy(&pos, k.data, sizeof pos);
    const Bytes whole = s.Unpack(v, unpacked_);
    const uint8_t* r = static_cast<const uint8_t*>(whole.data);
    if (layout.Build(r, whole.size, pos, key) || !s.Accepts(ordinal, r, whole.size)) continue;
    Bytes kk{static_cast<size_t>(layout.KeyLen()), key}, pv{sizeof pos, &pos};
    if (!txn->Put(dbi, kk, pv, PutMode::kNew)) Throw(KDUP_ERR);
  }
}

void Session::UpdateCondition(int keyno, const char* expr) {
  Handle& f = Index(keyno);
  Handle& h = *files_[f.datno];
  CheckWritable(h);
  DataStore& s = *h.store;
  std::string text = expr ? expr : "";
  if (!text.empty()) Condition::Parse(text, s.fields());
  FileDef def = s.def();
  def.idx[f.ordinal].cond = text;
  const size_t ordinal = f.ordinal;
  WriteDefinition(h, [&](Txn* txn) {
    s.PutDef(txn, def);
    FillIndex(s, txn, ordinal);
  });
  for (auto& p : files_)
    if (p && !p->isIndex && p->store.get() == &s) ForgetKeys(*p, ordinal);
}

std::string Session::NextMember(int filno, int mode) {
  Handle& h = File(filno);
  if (!h.isHost) Throw(CT_ENOTDAT);
  // The names are read once per walk: reading them for every call made listing a large host
  // quadratic in its members.
  if (mode == 0 || h.memberNext == 0) {
    h.memberNext = 0;
    h.members = ListMembers(*h.hostEnv);
  }
  if (h.memberNext >= h.members.size()) Throw(INOT_ERR);
  return h.members[h.memberNext++];
}

std::string Session::GetCondition(int keyno) {
  Handle& f = Index(keyno);
  const std::string& cond = f.store->def().idx[f.ordinal].cond;
  if (cond.empty()) Throw(NCON_ERR);
  return cond;
}

void Session::Refresh(DataStore& s) {
  const std::vector<int16_t> before = KeyDbsOf(s.def());
  s.Reload();
  Remap(s, before);
}

void Session::ForgetKeys(Handle& data, size_t ordinal) {
  auto forget = [&](Position& p) {
    while (p.keys.size() < data.store->IndexCount()) p.keys.push_back(std::make_unique<KeyPos>());
    if (ordinal < p.keys.size()) p.keys[ordinal]->valid = p.keys[ordinal]->at = false;
  };
  forget(*data.base);
  for (auto& [id, ctx] : contexts_)
    if (ctx.datno == data.self) forget(*ctx.pos);
}

int Session::AddIndexes(int datno, int firstKeyno, FileDef added, const char* idxext, bool temp) {
  Handle& h = Data(datno);
  CheckWritable(h);
  DataStore& s = *h.store;
  if (added.idx.empty()) Throw(CT_EBADDEF);
  FileDef def = s.def();
  if (!s.HasIfil()) {
    def.name = added.name;
    def.reclen = static_cast<int16_t>(s.RecLen());
  }
  added.reclen = static_cast<int16_t>(s.RecLen());
  Validate(added);
  const std::string ext = idxext && *idxext ? idxext : ".idx";
  const std::string dir = DirOf(h.path);
  for (IndexDef& ix : added.idx) {
    ix.file = BaseOf((ix.fileName.empty() ? added.name : ix.fileName) + ext);
    ix.keydb = -1;
    ix.temp = temp ? 1 : 0;
    for (const IndexDef& old : def.idx)
      if (old.file == ix.file || (!ix.name.empty() && old.name == ix.name)) Throw(DCRAT_ERR);
  }
  for (const std::string& f : FilesOf(added))
    if (PathExists(dir + f)) Throw(DCRAT_ERR);
  const int count = static_cast<int>(added.idx.size());
  const int16_t first = Claim(firstKeyno, count);
  const size_t base = def.idx.size();
  for (IndexDef& ix : added.idx) def.idx.push_back(ix);
  std::vector<std::string> made;
  std::map<std::string, std::shared_ptr<Env>> envs;
  try {
    for (const std::string& f : FilesOf(added)) {
      std::vector<IndexDef> members;
      for (const IndexDef& ix : added.idx)
        if (ix.file == f) members.push_back(ix);
      envs[f] = IndexFile::Create(dir + f, BaseOf(h.path), members, s.header().password);
      made.push_back(dir + f);
    }
    WriteDefinition(h, [&](Txn* txn) {
      s.PutDef(txn, def);
      for (size_t i = base; i < def.idx.size(); ++i) FillIndex(s, txn, i);
    });
  } catch (...) {
    envs.clear();
    for (const std::string& m : made) RemovePath(m);
    throw;
  }
  for (int i = 0; i < count; ++i) {
    auto k = std::make_unique<Handle>();
    k->isIndex = true;
    k->name = dir + added.idx[i].file;
    k->path = k->name;
    k->mode = h.mode;
    k->store = h.store;
    k->idxEnv = envs[added.idx[i].file];
    k->datno = h.self;
    k->self = static_cast<int16_t>(first + i);
    k->ordinal = base + i;
    files_[first + i] = std::move(k);
  }
  for (auto& p : files_) {
    if (!p || p->isIndex || p->store.get() != &s) continue;
    p->keynos.resize(s.IndexCount(), -1);
    ForgetKeys(*p, base);
  }
  for (int i = 0; i < count; ++i) h.keynos[base + i] = static_cast<int16_t>(first + i);
  return first;
}

void Session::MakePermanent(int datno) {
  Handle& h = Data(datno);
  CheckWritable(h);
  FileDef def = h.store->def();
  bool any = false;
  for (IndexDef& ix : def.idx) {
    any = any || ix.temp;
    ix.temp = 0;
  }
  if (!any) Throw(CT_ENOTIDX);
  WriteDefinition(h, [&](Txn* txn) { h.store->PutDef(txn, def); });
}

void Session::Rebuild(const FileDef& given, const char* dataext, const char* idxext, const char* password,
                      bool compact) {
  const std::string path = given.name + (dataext ? dataext : ".dat");
  const std::string ext = idxext && *idxext ? idxext : ".idx";
  const std::string dir = DirOf(path);
  {
    if (compact && Locate(path).IsMember()) Throw(NSUP_ERR);
    std::unique_ptr<FileLock> lock = LockPath(path, true);
    // A file to be rebuilt is suspect: its pages are walked in a child process first, so that a
    // damaged page gives CT_EDAMAGED instead of a crash. (A member's host is shared with other
    // members that may be written meanwhile: it is not walked.)
    if (!Locate(path).IsMember()) VerifyFile(path);
    std::shared_ptr<DataStore> s = DataStore::Open(path, password);
    FileDef def = s->HasIfil() ? s->def() : given;
    // Nobody has the set open: temporary and mapped indexes left by an open that ended without
    // closing go (their keys are emptied below; a temporary index's file is deleted).
    std::vector<Db> stale;
    std::vector<std::string> gone;
    for (size_t i = 0; s->HasIfil() && i < def.idx.size(); ++i) {
      if (def.idx[i].temp == 0) continue;
      stale.push_back(s->KeyDbi(i));
      if (def.idx[i].temp == kTempIndex) gone.push_back(dir + def.idx[i].file);
    }
    def.idx.erase(std::remove_if(def.idx.begin(), def.idx.end(), [](const IndexDef& ix) { return ix.temp != 0; }),
                  def.idx.end());
    if (!s->HasIfil()) {
      Validate(def);
      for (IndexDef& ix : def.idx) ix.file = BaseOf((ix.fileName.empty() ? def.name : ix.fileName) + ext);
    }
    // Index files hold only definitions: they are made again from the data file's definition.
    for (const std::string& f : FilesOf(def)) {
      std::vector<IndexDef> members;
      for (const IndexDef& ix : def.idx)
        if (ix.file == f) members.push_back(ix);
      try {
        LockPath(dir + f, true);
      } catch (const Fail&) {
        if (PathExists(dir + f)) throw;
      }
      RemovePath(dir + f);
      IndexFile::Create(dir + f, BaseOf(path), members, s->header().password);
    }
    Env& env = s->env();
    WriteTxn w(env);
    for (Db dbi : stale) w.Get()->Drop(dbi, false);
    s->PutDef(w.Get(), def);
    for (size_t i = 0; i < def.idx.size(); ++i) FillIndex(*s, w.Get(), i);
    w.Commit(true);
    for (const std::string& f : gone) RemovePath(f);
    if (!compact) return;
    // The compacting copy leaves out the free pages; it replaces the file while nobody has it
    // open (the exclusive lock is still held).
    const std::string tmp = path + ".cmp";
    RemoveFile(tmp);
    try {
      env.CopyCompact(tmp);
    } catch (const Fail&) {
      RemoveFile(tmp);
      throw;
    }
  }
  ReplaceFile(path + ".cmp", path);
}

}  // namespace cte
