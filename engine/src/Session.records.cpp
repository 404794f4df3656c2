// Session.records: adding, rewriting, deleting and reading records; physical and key-order
// record navigation; low-level record calls.
#include <cstring>

#include "IoCounters.h"
#include "Session.h"

namespace cte {

namespace {

Bytes PosKey(const uint32_t& pos) { return Bytes{sizeof pos, &pos}; }

uint32_t PosOf(const Bytes& v) {
  uint32_t p;
  std::memcpy(&p, v.data, sizeof p);
  return p;
}

// Positions advance by the record's length (at least 4, rounded to 4), so that they behave
// like byte offsets; they must stay below 2^31 because callers hold them in a LONG.
uint32_t Advance(uint32_t pos, size_t len) {
  uint64_t next = pos + ((std::max<size_t>(len, 4) + 3) & ~size_t{3});
  if (next > 0x7FFFFFFFu) Throw(CT_EDISKFULL);
  return static_cast<uint32_t>(next);
}

size_t RecordLength(const DataStore& s, long len) {
  bool var = (s.header().filmod & VLENGTH) != 0;
  if (!var || len <= 0) return s.RecLen();
  if (static_cast<size_t>(len) < s.RecLen()) Throw(CT_EBADARG);
  return static_cast<size_t>(len);
}

void PutKey(Txn* txn, Db dbi, const uint8_t* key, int keylen, uint32_t pos) {
  Bytes k{static_cast<size_t>(keylen), key}, v = PosKey(pos);
  if (!txn->Put(dbi, k, v, PutMode::kNew)) Throw(KDUP_ERR);
}

void DelKey(Txn* txn, Db dbi, const uint8_t* key, int keylen) {
  txn->Del(dbi, Bytes{static_cast<size_t>(keylen), key});
}

}  // namespace

bool Session::Fetch(DataStore& s, uint32_t pos, Bytes& out) {
  return s.env().Snapshot()->Get(s.RecDbi(), PosKey(pos), out);
}

void Session::CopyOut(const Bytes& v, void* buf, long bufsiz, bool fixed, uint32_t reclen, long& len) {
  len = static_cast<long>(v.size);
  if (!buf) return;
  ++Io().reads;
  if (fixed) {
    size_t n = std::min<size_t>(v.size, reclen);
    std::memcpy(buf, v.data, n);
    std::memset(static_cast<char*>(buf) + n, 0, reclen - n);
    return;
  }
  if (bufsiz < len) Throw(VBSZ_ERR);
  std::memcpy(buf, v.data, v.size);
}

void Session::MakeCurrent(Handle&, Position& p, uint32_t pos, const Bytes& v, int keptOrdinal) {
  p.cur = pos;
  p.curVal = v;
  p.recAt = false;
  for (size_t i = 0; i < p.keys.size(); ++i) {
    KeyPos& kp = *p.keys[i];
    if (static_cast<int>(i) == keptOrdinal || (kp.valid && kp.pos == pos)) continue;
    kp.valid = false;
    kp.at = false;
  }
}

void Session::AddRec(int datno, void* rec, long len) {
  Handle& h = Data(datno);
  CheckWritable(h);
  if (!rec) Throw(CT_EBADARG);
  DataStore& s = *h.store;
  const size_t n = RecordLength(s, len);
  const size_t nidx = s.IndexCount();
  scratch_.resize(n + nidx * CT_MAXKEYLEN);
  uint8_t* r = scratch_.data();
  uint8_t* keys = r + n;
  std::memcpy(r, rec, n);
  bool serial = false;
  for (size_t i = 0; i < nidx; ++i) serial = serial || s.Layout(i).HasSerial();
  uint32_t pos = 0, number = 0;
  Write(h, [&](Txn* txn) {
    DataStore::Counters c = s.ReadCounters(txn);
    pos = c.nextPos;
    c.nextPos = Advance(pos, n);
    if (serial) {
      number = c.serial = c.serial + 1;
      for (size_t i = 0; i < nidx; ++i) {
        int off = s.Layout(i).SerialOffset();
        if (off >= 0 && static_cast<size_t>(off) + 4 <= n) std::memcpy(r + off, &number, 4);
      }
    }
    for (size_t i = 0; i < nidx; ++i) {
      const KeyLayout& k = s.Layout(i);
      uint8_t* key = keys + i * CT_MAXKEYLEN;
      if (!k.Build(r, n, pos, key) && s.Accepts(i, r, n)) PutKey(txn, s.KeyDbi(i), key, k.KeyLen(), pos);
    }
    Bytes k = PosKey(pos), v = s.Pack(r, n, packed_);
    if (!txn->Put(s.RecDbi(), k, v, PutMode::kAppend)) Throw(CT_EIO);
    s.WriteCounters(txn, c);
  });
  if (serial) std::memcpy(rec, r, n);
  AutoLock(h, pos, true);
  Position& p = Pos(h);
  p.cur = pos;
  p.recAt = false;
  p.curGen = 0;
  for (size_t i = 0; i < nidx; ++i) {
    KeyPos& kp = *p.keys[i];
    std::memcpy(kp.key, keys + i * CT_MAXKEYLEN, s.Layout(i).KeyLen());
    kp.pos = pos;
    kp.valid = true;
    kp.at = false;
  }
}

void Session::Rewrite(int datno, const void* rec, long len) {
  Handle& h = Data(datno);
  CheckWritable(h);
  if (!rec) Throw(CT_EBADARG);
  DataStore& s = *h.store;
  Position& p = Pos(h);
  if (!p.cur) Throw(ICUR_ERR);
  const size_t n = RecordLength(s, len);
  const size_t nidx = s.IndexCount();
  scratch_.resize(2 * nidx * CT_MAXKEYLEN);
  uint8_t* oldKeys = scratch_.data();
  uint8_t* newKeys = oldKeys + nidx * CT_MAXKEYLEN;
  const uint32_t pos = p.cur;
  const uint8_t* r = static_cast<const uint8_t*>(rec);
  CheckChange(h, pos);
  Write(h, [&](Txn* txn) {
    Bytes k = PosKey(pos), stored{};
    if (!txn->Get(s.RecDbi(), k, stored)) Throw(ICUR_ERR);
    const Bytes old = s.Unpack(stored, unpacked_);
    for (size_t i = 0; i < nidx; ++i) {
      const KeyLayout& layout = s.Layout(i);
      uint8_t* ok = oldKeys + i * CT_MAXKEYLEN;
      uint8_t* nk = newKeys + i * CT_MAXKEYLEN;
      const uint8_t* o = static_cast<const uint8_t*>(old.data);
      bool oldNull = layout.Build(o, old.size, pos, ok) || !s.Accepts(i, o, old.size);
      bool newNull = layout.Build(r, n, pos, nk) || !s.Accepts(i, r, n);
      if (oldNull == newNull && std::memcmp(ok, nk, layout.KeyLen()) == 0) continue;
      if (!oldNull) DelKey(txn, s.KeyDbi(i), ok, layout.KeyLen());
      if (!newNull) PutKey(txn, s.KeyDbi(i), nk, layout.KeyLen(), pos);
    }
    Bytes v = s.Pack(r, n, packed_);
    txn->Put(s.RecDbi(), k, v);
  });
  p.curGen = 0;
  p.recAt = false;
  for (size_t i = 0; i < nidx; ++i) {
    KeyPos& kp = *p.keys[i];
    std::memcpy(kp.key, newKeys + i * CT_MAXKEYLEN, s.Layout(i).KeyLen());
    kp.pos = pos;
    kp.valid = true;
    kp.at = false;
  }
}

void Session::DeleteRec(int datno) {
  Handle& h = Data(datno);
  CheckWritable(h);
  DataStore& s = *h.store;
  Position& p = Pos(h);
  if (!p.cur) Throw(ICUR_ERR);
  const size_t nidx = s.IndexCount();
  scratch_.resize(nidx * CT_MAXKEYLEN);
  uint8_t* keys = scratch_.data();
  const uint32_t pos = p.cur;
  CheckChange(h, pos);
  Write(h, [&](Txn* txn) {
    Bytes k = PosKey(pos), stored{};
    if (!txn->Get(s.RecDbi(), k, stored)) Throw(ICUR_ERR);
    const Bytes old = s.Unpack(stored, unpacked_);
    for (size_t i = 0; i < nidx; ++i) {
      const KeyLayout& layout = s.Layout(i);
      uint8_t* key = keys + i * CT_MAXKEYLEN;
      const uint8_t* o = static_cast<const uint8_t*>(old.data);
      if (!layout.Build(o, old.size, pos, key) && s.Accepts(i, o, old.size))
        DelKey(txn, s.KeyDbi(i), key, layout.KeyLen());
    }
    if (!txn->Del(s.RecDbi(), k)) Throw(CT_EIO);
  });
  // The deleted record's keys stay as the current keys, so that the next step in any order
  // gives the record that followed it.
  p.curGen = 0;
  p.recAt = false;
  for (size_t i = 0; i < nidx; ++i) {
    KeyPos& kp = *p.keys[i];
    std::memcpy(kp.key, keys + i * CT_MAXKEYLEN, s.Layout(i).KeyLen());
    kp.pos = pos;
    kp.valid = true;
    kp.at = false;
  }
}

long Session::ReadCur(int datno, void* buf, long bufsiz, bool fixed) {
  Handle& h = Data(datno);
  DataStore& s = *h.store;
  Position& p = Pos(h);
  if (!p.cur) Throw(ICUR_ERR);
  if (buf) AutoLock(h, p.cur, false);
  s.env().Snapshot();
  if (p.curGen != s.env().Gen()) {
    Bytes stored{};
    if (!Fetch(s, p.cur, stored)) Throw(ICUR_ERR);
    p.curVal = s.Unpack(stored, p.curSpace);
    p.curGen = s.env().Gen();
  }
  long len = 0;
  CopyOut(p.curVal, buf, bufsiz, fixed, s.RecLen(), len);
  return len;
}

long Session::ReadAt(int datno, uint32_t pos, void* buf, long bufsiz, bool fixed, bool makeCurrent) {
  Handle& h = Data(datno);
  DataStore& s = *h.store;
  Bytes v{};
  if (makeCurrent && Fetch(s, pos, v)) AutoLock(h, pos, false);
  if (!Fetch(s, pos, v)) Throw(INOT_ERR);
  long len = 0;
  CopyOut(s.Unpack(v, unpacked_), buf, bufsiz, fixed, s.RecLen(), len);
  if (makeCurrent) {
    Position& p = Pos(h);
    MakeCurrent(h, p, pos, s.Unpack(v, p.curSpace), -1);
    p.curGen = s.env().Gen();
  }
  return len;
}

void Session::SetCur(int datno, uint32_t pos, const void* rec, long len) {
  Handle& h = Data(datno);
  DataStore& s = *h.store;
  Position& p = Pos(h);
  Bytes v{};
  if (!Fetch(s, pos, v)) Throw(INOT_ERR);
  MakeCurrent(h, p, pos, s.Unpack(v, p.curSpace), -1);
  p.curGen = s.env().Gen();
  if (!rec) return;
  size_t n = len > 0 ? static_cast<size_t>(len) : s.RecLen();
  for (size_t i = 0; i < p.keys.size(); ++i) {
    KeyPos& kp = *p.keys[i];
    if (kp.valid) continue;
    s.Layout(i).Build(static_cast<const uint8_t*>(rec), n, pos, kp.key);
    kp.pos = pos;
    kp.valid = true;
  }
}

uint32_t Session::CurPos(int datno) {
  Handle& h = Data(datno);
  uint32_t cur = Pos(h).cur;
  if (!cur) Throw(ICUR_ERR);
  return cur;
}

void Session::ForgetCur(int datno) {
  Handle& h = Data(datno);
  Position& p = Pos(h);
  p.cur = 0;
  p.recAt = false;
  p.curGen = 0;
  for (auto& kp : p.keys) kp->valid = kp->at = false;
}

long Session::Navigate(int filno, NavOp op, const void* target, void* buf, long bufsiz, bool fixed) {
  Handle& f = File(filno);
  if (f.isHost) Throw(CT_ENOTDAT);
  long len = 0;
  if (!f.isIndex) {
    if (op > kLast) Throw(CT_ENOTIDX);
    DataStore& s = *f.store;
    Position& p = Pos(f);
    bool fresh = false;
    Cursor& c = p.recCur.Get(s.env(), s.RecDbi(), fresh);
    Bytes k{}, v{};
    uint32_t seek = 0;
    bool at;
    switch (op) {
      case kFirst: at = c.Move(Seek::kFirst, k, v); break;
      case kLast: at = c.Move(Seek::kLast, k, v); break;
      case kNext:
        if (!p.cur) Throw(ICUR_ERR);
        if (p.recAt && !fresh) {
          at = c.Move(Seek::kNext, k, v);
        } else {
          seek = p.cur + 1;
          k = PosKey(seek);
          at = c.Move(Seek::kAtOrAfter, k, v);
        }
        break;
      default:
        if (!p.cur) Throw(ICUR_ERR);
        if (p.recAt && !fresh) {
          at = c.Move(Seek::kPrev, k, v);
        } else {
          seek = p.cur;
          k = PosKey(seek);
          at = c.Move(Seek::kAtOrAfter, k, v);
          at = c.Move(at ? Seek::kPrev : Seek::kLast, k, v);
        }
        break;
    }
    if (!at) {
      p.recAt = false;
      Throw(INOT_ERR);
    }
    p.recAt = false;  // until the record is current, the cursor is not where p says
    if (Locking()) {
      uint32_t found = PosOf(k);
      AutoLock(f, found, false);
      if (!Fetch(s, found, v)) Throw(INOT_ERR);
      // A fixed-length record is decoded straight into the position: copying it out cannot
      // fail, so the position never shows a record that was not made current.
      const Bytes whole = s.Unpack(v, p.curSpace);
      CopyOut(whole, buf, bufsiz, fixed, s.RecLen(), len);
      MakeCurrent(f, p, found, whole, -1);
      p.curGen = s.env().Gen();
      return len;
    }
    const Bytes whole = s.Unpack(v, p.curSpace);
    CopyOut(whole, buf, bufsiz, fixed, s.RecLen(), len);
    MakeCurrent(f, p, PosOf(k), whole, -1);
    p.curGen = s.env().Gen();
    p.recAt = true;
    return len;
  }
  Handle& h = *files_[f.datno];
  DataStore& s = *h.store;
  Position& p = Pos(h);
  const IndexDef& ix = s.def().idx[f.ordinal];
  KeyPos& kp = op == kNext || op == kPrev ? EnsureKey(h, p, f.ordinal) : *p.keys[f.ordinal];
  if (op >= kEq && !target) Throw(CT_EBADARG);
  // The key position is restored when its record cannot be read or locked, so a failure moves
  // nothing.
  KeyMark mark(kp);
  uint32_t pos = Step(s.env(), s.KeyDbi(f.ordinal), kp, ix.keylen, ix.keylen - (ix.dup ? 4 : 0), op,
                      static_cast<const uint8_t*>(target));
  if (!pos) Throw(INOT_ERR);
  if (Locking()) {
    try {
      AutoLock(h, pos, false);
    } catch (...) {
      mark.Restore(kp);
      throw;
    }
  }
  Bytes v{};
  if (!Fetch(s, pos, v)) {
    mark.Restore(kp);
    Throw(Locking() ? INOT_ERR : CT_EDAMAGED);
  }
  const Bytes whole = s.Unpack(v, p.curSpace);
  CopyOut(whole, buf, bufsiz, fixed, s.RecLen(), len);
  MakeCurrent(h, p, pos, whole, static_cast<int>(f.ordinal));
  p.curGen = s.env().Gen();
  return len;
}

uint32_t Session::NewRec(int datno, long len) {
  Handle& h = Data(datno);
  CheckWritable(h);
  DataStore& s = *h.store;
  const size_t n = RecordLength(s, len);
  scratch_.assign(n, 0);
  uint32_t pos = 0;
  Write(h, [&](Txn* txn) {
    DataStore::Counters c = s.ReadCounters(txn);
    pos = c.nextPos;
    c.nextPos = Advance(pos, n);
    Bytes k = PosKey(pos), v = s.Pack(scratch_.data(), n, packed_);
    if (!txn->Put(s.RecDbi(), k, v, PutMode::kAppend)) Throw(CT_EIO);
    s.WriteCounters(txn, c);
  });
  return pos;
}

void Session::WriteAt(int datno, uint32_t pos, const void* rec, long len) {
  Handle& h = Data(datno);
  CheckWritable(h);
  if (!rec) Throw(CT_EBADARG);
  DataStore& s = *h.store;
  const size_t n = RecordLength(s, len);
  Write(h, [&](Txn* txn) {
    Bytes k = PosKey(pos), old{};
    if (!txn->Get(s.RecDbi(), k, old)) Throw(INOT_ERR);
    Bytes v = s.Pack(rec, n, packed_);
    txn->Put(s.RecDbi(), k, v);
  });
}

void Session::ReleaseAt(int datno, uint32_t pos) {
  Handle& h = Data(datno);
  CheckWritable(h);
  DataStore& s = *h.store;
  Write(h, [&](Txn* txn) {
    Bytes k = PosKey(pos);
    if (!txn->Del(s.RecDbi(), k)) Throw(INOT_ERR);
  });
}

long Session::DatEnt(int datno) {
  Handle& h = Data(datno);
  return static_cast<long>(h.store->env().Snapshot()->Count(h.store->RecDbi()));
}

uint32_t Session::SerialNum(int datno) {
  Handle& h = Data(datno);
  return h.store->ReadCounters(h.store->env().Snapshot()).serial;
}

}  // namespace cte
