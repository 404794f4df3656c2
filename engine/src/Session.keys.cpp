// Session.keys: key navigation, key building, single keys, counts and contexts.
#include <algorithm>
#include <cstring>

#include "Session.h"

namespace cte {

namespace {

// A read cursor on the snapshot for one call (counting walks).
class TempCursor {
 public:
  TempCursor(MDB_txn* txn, MDB_dbi dbi) { Check(mdb_cursor_open(txn, dbi, &c_)); }
  ~TempCursor() { mdb_cursor_close(c_); }
  TempCursor(const TempCursor&) = delete;
  TempCursor& operator=(const TempCursor&) = delete;
  MDB_cursor* Get() const { return c_; }

 private:
  MDB_cursor* c_ = nullptr;
};

bool Same(const MDB_val& k, const uint8_t* key, int len) {
  return k.mv_size >= static_cast<size_t>(len) && std::memcmp(k.mv_data, key, len) == 0;
}

}  // namespace

KeyPos& Session::EnsureKey(Handle& data, Position& p, size_t ordinal) {
  KeyPos& kp = *p.keys[ordinal];
  if (kp.valid) return kp;
  if (!p.cur) Throw(ICUR_ERR);
  DataStore& s = *data.store;
  s.env().Snapshot();
  if (p.curGen != s.env().Gen()) {
    MDB_val stored{};
    if (!Fetch(s, p.cur, stored)) Throw(ICUR_ERR);
    p.curVal = s.Unpack(stored, p.curSpace);
    p.curGen = s.env().Gen();
  }
  s.Layout(ordinal).Build(static_cast<const uint8_t*>(p.curVal.mv_data), p.curVal.mv_size, p.cur, kp.key);
  kp.pos = p.cur;
  kp.valid = true;
  kp.at = false;
  return kp;
}

uint32_t Session::Step(Env& env, MDB_dbi dbi, KeyPos& kp, int keylen, int dataLen, NavOp op,
                       const uint8_t* target) {
  bool fresh = false;
  MDB_cursor* c = kp.cur.Get(env, dbi, fresh);
  MDB_val k{}, v{};
  auto seek = [&](const uint8_t* key) {
    k = MDB_val{static_cast<size_t>(keylen), const_cast<uint8_t*>(key)};
    return mdb_cursor_get(c, &k, &v, MDB_SET_RANGE);
  };
  int rc;
  switch (op) {
    case kFirst: rc = mdb_cursor_get(c, &k, &v, MDB_FIRST); break;
    case kLast: rc = mdb_cursor_get(c, &k, &v, MDB_LAST); break;
    case kNext:
      if (kp.at && !fresh) {
        rc = mdb_cursor_get(c, &k, &v, MDB_NEXT);
      } else {
        rc = seek(kp.key);
        if (rc == 0 && Same(k, kp.key, keylen)) rc = mdb_cursor_get(c, &k, &v, MDB_NEXT);
      }
      break;
    case kPrev:
      if (kp.at && !fresh) {
        rc = mdb_cursor_get(c, &k, &v, MDB_PREV);
      } else {
        rc = seek(kp.key);
        rc = mdb_cursor_get(c, &k, &v, rc == MDB_NOTFOUND ? MDB_LAST : MDB_PREV);
      }
      break;
    case kEq:
      rc = seek(target);
      if (rc == 0 && !Same(k, target, dataLen)) rc = MDB_NOTFOUND;
      break;
    case kGte: rc = seek(target); break;
    case kGt:
      rc = seek(target);
      if (rc == 0 && Same(k, target, keylen)) rc = mdb_cursor_get(c, &k, &v, MDB_NEXT);
      break;
    case kLte:
      rc = seek(target);
      if (rc == MDB_NOTFOUND)
        rc = mdb_cursor_get(c, &k, &v, MDB_LAST);
      else if (rc == 0 && !Same(k, target, keylen))
        rc = mdb_cursor_get(c, &k, &v, MDB_PREV);
      break;
    default:
      rc = seek(target);
      rc = mdb_cursor_get(c, &k, &v, rc == MDB_NOTFOUND ? MDB_LAST : MDB_PREV);
      break;
  }
  if (rc == MDB_NOTFOUND) {
    kp.at = false;
    return 0;
  }
  Check(rc);
  if (k.mv_size != static_cast<size_t>(keylen) || v.mv_size != 4) Throw(CT_EDAMAGED);
  std::memcpy(kp.key, k.mv_data, keylen);
  std::memcpy(&kp.pos, v.mv_data, 4);
  kp.valid = true;
  kp.at = true;
  return kp.pos;
}

uint32_t Session::KeyNav(int keyno, NavOp op, const void* target, void* idxval) {
  Handle& f = Index(keyno);
  Handle& h = *files_[f.datno];
  DataStore& s = *h.store;
  Position& p = Pos(h);
  const IndexDef& ix = s.def().idx[f.ordinal];
  if (op >= kEq && !target) Throw(CT_EBADARG);
  KeyPos& kp = op == kNext || op == kPrev ? EnsureKey(h, p, f.ordinal) : *p.keys[f.ordinal];
  uint32_t pos = Step(s.env(), s.KeyDbi(f.ordinal), kp, ix.keylen, ix.keylen - (ix.dup ? 4 : 0), op,
                      static_cast<const uint8_t*>(target));
  if (!pos) Throw(INOT_ERR);
  if (idxval) std::memcpy(idxval, kp.key, ix.keylen);
  return pos;
}

int Session::FormKey(int keyno, const void* rec, void* key, uint32_t pos, long len) {
  Handle& f = Index(keyno);
  if (!rec || !key) Throw(CT_EBADARG);
  DataStore& s = *f.store;
  const KeyLayout& layout = s.Layout(f.ordinal);
  size_t n = len > 0 ? static_cast<size_t>(len) : s.RecLen();
  layout.Build(static_cast<const uint8_t*>(rec), n, pos, static_cast<uint8_t*>(key));
  return layout.KeyLen();
}

void Session::TransformKey(int keyno, void* key) {
  Handle& f = Index(keyno);
  if (!key) Throw(CT_EBADARG);
  f.store->Layout(f.ordinal).TransformRaw(static_cast<uint8_t*>(key));
}

void Session::GetCurKey(int keyno, void* idxval, long* plen) {
  Handle& f = Index(keyno);
  if (!idxval) Throw(CT_EBADARG);
  Handle& h = *files_[f.datno];
  KeyPos& kp = EnsureKey(h, Pos(h), f.ordinal);
  int keylen = h.store->def().idx[f.ordinal].keylen;
  std::memcpy(idxval, kp.key, keylen);
  if (plen) *plen = keylen;
}

void Session::AddKey(int keyno, const void* key, uint32_t pos) {
  Handle& f = Index(keyno);
  CheckWritable(f);
  if (!key) Throw(CT_EBADARG);
  DataStore& s = *f.store;
  int keylen = s.def().idx[f.ordinal].keylen;
  Write(f, [&](MDB_txn* txn) {
    MDB_val k{static_cast<size_t>(keylen), const_cast<void*>(key)}, v{sizeof pos, &pos};
    int rc = Put(txn, s.KeyDbi(f.ordinal), &k, &v, MDB_NOOVERWRITE);
    if (rc == MDB_KEYEXIST) Throw(KDUP_ERR);
    Check(rc);
  });
}

void Session::DeleteKey(int keyno, const void* key, uint32_t pos, bool checkPos) {
  Handle& f = Index(keyno);
  CheckWritable(f);
  if (!key) Throw(CT_EBADARG);
  DataStore& s = *f.store;
  int keylen = s.def().idx[f.ordinal].keylen;
  Write(f, [&](MDB_txn* txn) {
    MDB_val k{static_cast<size_t>(keylen), const_cast<void*>(key)}, v{};
    int rc = mdb_get(txn, s.KeyDbi(f.ordinal), &k, &v);
    if (rc == MDB_NOTFOUND) Throw(INOT_ERR);
    Check(rc);
    if (checkPos && (v.mv_size != 4 || std::memcmp(v.mv_data, &pos, 4) != 0)) Throw(INOT_ERR);
    Check(Del(txn, s.KeyDbi(f.ordinal), &k, nullptr));
  });
}

long Session::IdxEnt(int keyno) {
  Handle& f = Index(keyno);
  MDB_stat st{};
  Check(mdb_stat(f.store->env().Snapshot(), f.store->KeyDbi(f.ordinal), &st));
  return static_cast<long>(st.ms_entries);
}

long Session::RangeCount(int keyno, const void* low, const void* high) {
  Handle& f = Index(keyno);
  if (!low || !high) Throw(CT_EBADARG);
  DataStore& s = *f.store;
  const int keylen = s.def().idx[f.ordinal].keylen;
  TempCursor c(s.env().Snapshot(), s.KeyDbi(f.ordinal));
  MDB_val k{static_cast<size_t>(keylen), const_cast<void*>(low)}, v{};
  long n = 0;
  int rc = mdb_cursor_get(c.Get(), &k, &v, MDB_SET_RANGE);
  while (rc == 0 && std::memcmp(k.mv_data, high, keylen) <= 0) {
    ++n;
    rc = mdb_cursor_get(c.Get(), &k, &v, MDB_NEXT);
  }
  if (rc != 0 && rc != MDB_NOTFOUND) Check(rc);
  return n;
}

uint32_t Session::KeyAtPercent(int keyno, void* idxval, int percent) {
  if (percent < 0 || percent > 100) Throw(CT_EBADARG);
  long n = IdxEnt(keyno);
  if (n == 0) Throw(INOT_ERR);
  long ordinal = std::min(n - 1, n * percent / 100);
  return KeyByOrdinal(keyno, nullptr, ordinal, idxval);
}

uint32_t Session::KeyByOrdinal(int keyno, const void* target, long offset, void* idxval) {
  if (offset < 0) Throw(CT_EBADARG);
  Handle& f = Index(keyno);
  Handle& h = *files_[f.datno];
  DataStore& s = *h.store;
  const int keylen = s.def().idx[f.ordinal].keylen;
  KeyPos& kp = *Pos(h).keys[f.ordinal];
  bool fresh = false;
  MDB_cursor* c = kp.cur.Get(s.env(), s.KeyDbi(f.ordinal), fresh);
  MDB_val k{static_cast<size_t>(keylen), const_cast<void*>(target)}, v{};
  int rc = mdb_cursor_get(c, &k, &v, target ? MDB_SET_RANGE : MDB_FIRST);
  for (long i = 0; i < offset && rc == 0; ++i) rc = mdb_cursor_get(c, &k, &v, MDB_NEXT);
  kp.at = false;
  if (rc == MDB_NOTFOUND) Throw(INOT_ERR);
  Check(rc);
  std::memcpy(kp.key, k.mv_data, keylen);
  std::memcpy(&kp.pos, v.mv_data, 4);
  kp.valid = true;
  kp.at = true;
  if (idxval) std::memcpy(idxval, kp.key, keylen);
  return kp.pos;
}

int Session::OpenContext(int datno, int id) {
  Handle& h = Data(datno);
  if (id < 0) {
    id = 1;
    while (contexts_.count(id)) ++id;
  } else if (contexts_.count(id)) {
    Throw(CT_EBADARG);
  }
  auto pos = std::make_unique<Position>(h.store->IndexCount());
  pos->CopyFrom(Pos(h));
  contexts_[id] = Context{static_cast<int16_t>(datno), std::move(pos)};
  h.stack.push_back(h.active);
  h.active = id;
  return id;
}

void Session::ChangeContext(int id) {
  auto it = contexts_.find(id);
  if (it == contexts_.end()) Throw(CT_ENOCTX);
  Handle& h = Data(it->second.datno);
  if (h.active == id) return;
  h.stack.erase(std::remove(h.stack.begin(), h.stack.end(), id), h.stack.end());
  h.stack.push_back(h.active);
  h.active = id;
}

void Session::CloseContext(int id) {
  auto it = contexts_.find(id);
  if (it == contexts_.end()) Throw(CT_ENOCTX);
  Handle& h = Data(it->second.datno);
  h.stack.erase(std::remove(h.stack.begin(), h.stack.end(), id), h.stack.end());
  if (h.active == id) {
    h.active = h.stack.empty() ? -1 : h.stack.back();
    if (!h.stack.empty()) h.stack.pop_back();
  }
  contexts_.erase(it);
}

}  // namespace cte
