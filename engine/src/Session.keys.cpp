// Session.keys: key navigation, key building, single keys, counts and contexts.
#include <algorithm>
#include <cstring>

#include "ReadCursor.h"
#include "Session.h"

namespace cte {

namespace {

bool Same(const Bytes& k, const uint8_t* key, int len) {
  return k.size >= static_cast<size_t>(len) && std::memcmp(k.data, key, len) == 0;
}

}  // namespace

KeyPos& Session::EnsureKey(Handle& data, Position& p, size_t ordinal) {
  KeyPos& kp = *p.keys[ordinal];
  if (kp.valid) return kp;
  if (!p.cur) Throw(ICUR_ERR);
  DataStore& s = *data.store;
  s.env().Snapshot();
  if (p.curGen != s.env().Gen()) {
    Bytes stored{};
    if (!Fetch(s, p.cur, stored)) Throw(ICUR_ERR);
    p.curVal = s.Unpack(stored, p.curSpace);
    p.curGen = s.env().Gen();
  }
  s.Layout(ordinal).Build(static_cast<const uint8_t*>(p.curVal.data), p.curVal.size, p.cur, kp.key);
  kp.pos = p.cur;
  kp.valid = true;
  kp.at = false;
  return kp;
}

uint32_t Session::Step(Env& env, Db dbi, KeyPos& kp, int keylen, int dataLen, NavOp op,
                       const uint8_t* target) {
  bool fresh = false;
  Cursor& c = kp.cur.Get(env, dbi, fresh);
  Bytes k{}, v{};
  auto seek = [&](const uint8_t* key) {
    k = Bytes{static_cast<size_t>(keylen), key};
    return c.Move(Seek::kAtOrAfter, k, v);
  };
  bool at;
  switch (op) {
    case kFirst: at = c.Move(Seek::kFirst, k, v); break;
    case kLast: at = c.Move(Seek::kLast, k, v); break;
    case kNext:
      if (kp.at && !fresh) {
        at = c.Move(Seek::kNext, k, v);
      } else {
        at = seek(kp.key);
        if (at && Same(k, kp.key, keylen)) at = c.Move(Seek::kNext, k, v);
      }
      break;
    case kPrev:
      if (kp.at && !fresh) {
        at = c.Move(Seek::kPrev, k, v);
      } else {
        at = seek(kp.key);
        at = c.Move(at ? Seek::kPrev : Seek::kLast, k, v);
      }
      break;
    case kEq:
      at = seek(target);
      if (at && !Same(k, target, dataLen)) at = false;
      break;
    case kGte: at = seek(target); break;
    case kGt:
      at = seek(target);
      if (at && Same(k, target, keylen)) at = c.Move(Seek::kNext, k, v);
      break;
    case kLte:
      at = seek(target);
      if (!at)
        at = c.Move(Seek::kLast, k, v);
      else if (!Same(k, target, keylen))
        at = c.Move(Seek::kPrev, k, v);
      break;
    default:
      at = seek(target);
      at = c.Move(at ? Seek::kPrev : Seek::kLast, k, v);
      break;
  }
  if (!at) {
    kp.at = false;
    return 0;
  }
  if (k.size != static_cast<size_t>(keylen) || v.size != 4) Throw(CT_EDAMAGED);
  std::memcpy(kp.key, k.data, keylen);
  std::memcpy(&kp.pos, v.data, 4);
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
  // EQLKEY matches the whole key, the position that ends a duplicate index's key included.
  uint32_t pos = Step(s.env(), s.KeyDbi(f.ordinal), kp, ix.keylen, ix.keylen, op, static_cast<const uint8_t*>(target));
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
  Write(f, [&](Txn* txn) {
    Bytes k{static_cast<size_t>(keylen), key}, v{sizeof pos, &pos};
    if (!txn->Put(s.KeyDbi(f.ordinal), k, v, PutMode::kNew)) Throw(KDUP_ERR);
  });
}

void Session::DeleteKey(int keyno, const void* key, uint32_t pos, bool checkPos) {
  Handle& f = Index(keyno);
  CheckWritable(f);
  if (!key) Throw(CT_EBADARG);
  DataStore& s = *f.store;
  int keylen = s.def().idx[f.ordinal].keylen;
  Write(f, [&](Txn* txn) {
    Bytes k{static_cast<size_t>(keylen), key}, v{};
    if (!txn->Get(s.KeyDbi(f.ordinal), k, v)) Throw(INOT_ERR);
    if (checkPos && (v.size != 4 || std::memcmp(v.data, &pos, 4) != 0)) Throw(INOT_ERR);
    if (!txn->Del(s.KeyDbi(f.ordinal), k)) Throw(CT_EIO);
  });
}

long Session::IdxEnt(int keyno) {
  Handle& f = Index(keyno);
  return static_cast<long>(f.store->env().Snapshot()->Count(f.store->KeyDbi(f.ordinal)));
}

long Session::RangeCount(int keyno, const void* low, const void* high) {
  Handle& f = Index(keyno);
  if (!low || !high) Throw(CT_EBADARG);
  DataStore& s = *f.store;
  const int keylen = s.def().idx[f.ordinal].keylen;
  ReadCursor c(s.env().Snapshot(), s.KeyDbi(f.ordinal));
  Bytes k{static_cast<size_t>(keylen), low}, v{};
  long n = 0;
  bool at = c.Move(Seek::kAtOrAfter, k, v);
  while (at && std::memcmp(k.data, high, keylen) <= 0) {
    ++n;
    at = c.Move(Seek::kNext, k, v);
  }
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
  Cursor& c = kp.cur.Get(s.env(), s.KeyDbi(f.ordinal), fresh);
  Bytes k{static_cast<size_t>(keylen), target}, v{};
  bool at = c.Move(target ? Seek::kAtOrAfter : Seek::kFirst, k, v);
  for (long i = 0; i < offset && at; ++i) at = c.Move(Seek::kNext, k, v);
  kp.at = false;
  if (!at) Throw(INOT_ERR);
  std::memcpy(kp.key, k.data, keylen);
  std::memcpy(&kp.pos, v.data, 4);
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
