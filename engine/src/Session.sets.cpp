// Session.sets: sets, the records of one index whose keys start with a prefix, walked in key
// order. The next key of the set is found with a cursor of its own first and read through
// Navigate only when it belongs to the set, so that leaving the set moves nothing.
#include <cstring>

#include "ReadCursor.h"
#include "Session.h"

namespace cte {

namespace {

// The smallest byte string greater than every string starting with prefix (n bytes), in
// place; false when there is none (the prefix is all 0xFF or empty).
bool Successor(uint8_t* prefix, int& n) {
  while (n > 0 && prefix[n - 1] == 0xFF) --n;
  if (n == 0) return false;
  ++prefix[n - 1];
  return true;
}

}  // namespace

long Session::SetNav(int keyno, NavOp op, const void* target, int siglen, void* buf, long bufsiz,
                     bool fixed) {
  Handle& f = Index(keyno);
  DataStore& s = *f.store;
  const int keylen = s.def().idx[f.ordinal].keylen;
  KeySet& set = sets_[activeSet_];
  uint8_t prefix[CT_MAXKEYLEN];
  int plen;
  if (op == kFirst || op == kLast) {
    if (!target || siglen < 0 || siglen > keylen) Throw(CT_EBADARG);
    plen = siglen;
    std::memcpy(prefix, target, plen);
  } else {
    if (set.keyno != keyno || set.store.lock().get() != &s) Throw(ICUR_ERR);
    plen = set.siglen;
    std::memcpy(prefix, set.prefix, plen);
  }
  ReadCursor c(s.env().Snapshot(), s.KeyDbi(f.ordinal));
  Bytes k{}, v{};
  bool at;
  switch (op) {
    case kFirst:
      k = Bytes{static_cast<size_t>(plen), prefix};
      at = c.Move(plen ? Seek::kAtOrAfter : Seek::kFirst, k, v);
      break;
    case kLast: {
      uint8_t above[CT_MAXKEYLEN];
      int n = plen;
      std::memcpy(above, prefix, plen);
      if (!Successor(above, n)) {
        at = c.Move(Seek::kLast, k, v);
        break;
      }
      k = Bytes{static_cast<size_t>(n), above};
      at = c.Move(Seek::kAtOrAfter, k, v);
      at = c.Move(at ? Seek::kPrev : Seek::kLast, k, v);
      break;
    }
    case kNext:
      k = Bytes{static_cast<size_t>(keylen), set.last};
      at = c.Move(Seek::kAtOrAfter, k, v);
      if (at && k.size == static_cast<size_t>(keylen) && std::memcmp(k.data, set.last, keylen) == 0)
        at = c.Move(Seek::kNext, k, v);
      break;
    default:
      k = Bytes{static_cast<size_t>(keylen), set.last};
      at = c.Move(Seek::kAtOrAfter, k, v);
      at = c.Move(at ? Seek::kPrev : Seek::kLast, k, v);
      break;
  }
  if (!at || std::memcmp(k.data, prefix, plen) != 0) Throw(INOT_ERR);
  if (k.size != static_cast<size_t>(keylen)) Throw(CT_EDAMAGED);
  uint8_t found[CT_MAXKEYLEN];
  std::memcpy(found, k.data, keylen);
  long len = Navigate(keyno, kEq, found, buf, bufsiz, fixed);
  set.keyno = static_cast<int16_t>(keyno);
  set.store = f.store;
  set.siglen = plen;
  std::memcpy(set.prefix, prefix, plen);
  std::memcpy(set.last, found, keylen);
  return len;
}

long Session::SetMid(int keyno, int siglen, void* buf, long bufsiz, bool fixed) {
  Handle& f = Index(keyno);
  const int keylen = f.store->def().idx[f.ordinal].keylen;
  if (siglen < 0 || siglen > keylen) Throw(CT_EBADARG);
  uint8_t key[CT_MAXKEYLEN];
  GetCurKey(keyno, key, nullptr);
  long len = ReadCur(f.datno, buf, bufsiz, fixed);
  KeySet& set = sets_[activeSet_];
  set.keyno = static_cast<int16_t>(keyno);
  set.store = f.store;
  set.siglen = siglen;
  std::memcpy(set.prefix, key, siglen);
  std::memcpy(set.last, key, keylen);
  return len;
}

void Session::AllocSets(int count) {
  if (count <= 0) Throw(CT_EBADARG);
  sets_.assign(static_cast<size_t>(count), KeySet{});
  activeSet_ = 0;
}

void Session::ChangeSet(int setno) {
  if (setno < 0 || static_cast<size_t>(setno) >= sets_.size()) Throw(CT_EBADARG);
  activeSet_ = static_cast<size_t>(setno);
}

void Session::FreeSets() {
  sets_.assign(1, KeySet{});
  activeSet_ = 0;
}

}  // namespace cte
