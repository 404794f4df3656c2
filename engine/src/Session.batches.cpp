// Session.batches: batches (BATSET), the records of one index whose keys start with a prefix,
// read into the caller's buffer chunk by chunk or deleted together.
#include <cstring>

#include "IoCounters.h"
#include "ReadCursor.h"
#include "Session.h"

namespace cte {

namespace {

constexpr int kActions = BAT_CAN | BAT_NXT | BAT_GET | BAT_DEL;

// Collects the positions (and keys) of the keys of dbi starting with prefix (plen bytes).
void Select(Txn* txn, Db dbi, const uint8_t* prefix, int plen, int keylen, bool withKeys,
            BatchState& b) {
  ReadCursor c(txn, dbi);
  Bytes k{static_cast<size_t>(plen), prefix}, v{};
  bool at = c.Move(plen ? Seek::kAtOrAfter : Seek::kFirst, k, v);
  while (at && std::memcmp(k.data, prefix, plen) == 0) {
    if (k.size != static_cast<size_t>(keylen) || v.size != 4) Throw(CT_EDAMAGED);
    uint32_t pos;
    std::memcpy(&pos, v.data, 4);
    b.positions.push_back(pos);
    if (withKeys) b.keys.insert(b.keys.end(), static_cast<const uint8_t*>(k.data), static_cast<const uint8_t*>(k.data) + keylen);
    at = c.Move(Seek::kNext, k, v);
  }
}

}  // namespace

void Session::Batch(int keyno, BatchRequest& req, void* buf, long bufsiz, int mode) {
  const int action = mode & kActions;
  const int options = mode & ~kActions;
  if (action != BAT_CAN && action != BAT_NXT && action != BAT_GET && action != BAT_DEL) Throw(CT_EBADARG);
  if (options & ~(BAT_POS | BAT_KEY) || (options && action != BAT_GET) || options == (BAT_POS | BAT_KEY))
    Throw(CT_EBADARG);
  BatchState& b = batches_[activeBatch_];
  switch (action) {
    case BAT_CAN:
      b = BatchState{};
      return;
    case BAT_DEL:
      DeleteBatch(keyno, req);
      return;
    case BAT_NXT: {
      Handle& f = Index(keyno);
      if (b.keyno != keyno || b.store.lock().get() != f.store.get()) Throw(ICUR_ERR);
      FillBatch(b, req, buf, bufsiz);
      return;
    }
    default: break;
  }
  Handle& f = Index(keyno);
  DataStore& s = *f.store;
  const int keylen = s.def().idx[f.ordinal].keylen;
  if (!req.target || req.siglen < 0 || req.siglen > keylen) Throw(CT_EBADARG);
  BatchState fresh;
  fresh.keyno = static_cast<int16_t>(keyno);
  fresh.store = f.store;
  fresh.options = options;
  fresh.keylen = keylen;
  Select(s.env().Snapshot(), s.KeyDbi(f.ordinal), req.target, req.siglen, keylen, options & BAT_KEY, fresh);
  b = std::move(fresh);
  FillBatch(b, req, buf, bufsiz);
}

// Entries follow one another without padding: LONG position, then (default) VRLEN length and
// the record, or (BAT_KEY) the key. Records deleted since the batch started are skipped.
void Session::FillBatch(BatchState& b, BatchRequest& req, void* buf, long bufsiz) {
  DataStore& s = *b.store.lock();
  req.total = static_cast<long>(b.positions.size());
  req.used = 0;
  if (b.next >= b.positions.size()) {
    req.avail = 0;
    Throw(INOT_ERR);
  }
  if (!buf || bufsiz <= 0) Throw(CT_EBADARG);
  uint8_t* out = static_cast<uint8_t*>(buf);
  size_t used = 0;
  const size_t room = static_cast<size_t>(bufsiz);
  while (b.next < b.positions.size()) {
    const uint32_t pos = b.positions[b.next];
    Bytes rec{};
    size_t need = 4;
    if (b.options & BAT_KEY) {
      need += b.keylen;
    } else if (!(b.options & BAT_POS)) {
      if (!Fetch(s, pos, rec)) {
        ++b.next;
        continue;
      }
      rec = s.Unpack(rec, unpacked_);
      need += 4 + rec.size;
    }
    if (used + need > room) {
      if (used == 0) {
        req.used = static_cast<long>(need);
        req.avail = static_cast<long>(b.positions.size() - b.next);
        Throw(VBSZ_ERR);
      }
      break;
    }
    std::memcpy(out + used, &pos, 4);
    if (b.options & BAT_KEY) {
      std::memcpy(out + used + 4, b.keys.data() + b.next * b.keylen, b.keylen);
    } else if (!(b.options & BAT_POS)) {
      uint32_t len = static_cast<uint32_t>(rec.size);
      std::memcpy(out + used + 4, &len, 4);
      std::memcpy(out + used + 8, rec.data, rec.size);
      ++Io().reads;
    }
    used += need;
    ++b.next;
  }
  req.used = static_cast<long>(used);
  req.avail = static_cast<long>(b.positions.size() - b.next);
}

void Session::DeleteBatch(int keyno, BatchRequest& req) {
  Handle& f = Index(keyno);
  Handle& h = *files_[f.datno];
  CheckWritable(h);
  DataStore& s = *h.store;
  const int keylen = s.def().idx[f.ordinal].keylen;
  if (!req.target || req.siglen < 0 || req.siglen > keylen) Throw(CT_EBADARG);
  BatchState sel;
  Select(s.env().Snapshot(), s.KeyDbi(f.ordinal), req.target, req.siglen, keylen, false, sel);
  for (uint32_t pos : sel.positions) CheckChange(h, pos);
  const size_t nidx = s.IndexCount();
  uint8_t key[CT_MAXKEYLEN];
  Write(h, [&](Txn* txn) {
    for (uint32_t pos : sel.positions) {
      Bytes rk{sizeof pos, &pos}, stored{};
      if (!txn->Get(s.RecDbi(), rk, stored)) Throw(CT_EDAMAGED);
      const Bytes old = s.Unpack(stored, unpacked_);
      // A key is removed only where it points at this record, whatever rule kept it out of an
      // index (null key, condition).
      for (size_t i = 0; i < nidx; ++i) {
        const KeyLayout& layout = s.Layout(i);
        layout.Build(static_cast<const uint8_t*>(old.data), old.size, pos, key);
        Bytes k{static_cast<size_t>(layout.KeyLen()), key}, v{};
        if (!txn->Get(s.KeyDbi(i), k, v)) continue;
        if (v.size == 4 && std::memcmp(v.data, &pos, 4) == 0 && !txn->Del(s.KeyDbi(i), k)) Throw(CT_EIO);
      }
      if (!txn->Del(s.RecDbi(), rk)) Throw(CT_EIO);
    }
  });
  req.total = static_cast<long>(sel.positions.size());
  req.avail = 0;
  req.used = 0;
  if (sel.positions.empty()) Throw(INOT_ERR);
}

void Session::AllocBatches(int count) {
  if (count <= 0) Throw(CT_EBADARG);
  batches_.assign(static_cast<size_t>(count), BatchState{});
  activeBatch_ = 0;
}

void Session::ChangeBatch(int batno) {
  if (batno < 0 || static_cast<size_t>(batno) >= batches_.size()) Throw(CT_EBADARG);
  activeBatch_ = static_cast<size_t>(batno);
}

void Session::FreeBatches() {
  batches_.assign(1, BatchState{});
  activeBatch_ = 0;
}

}  // namespace cte
