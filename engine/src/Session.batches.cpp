// Session.batches: batches (BATSET), the records of one index whose keys start with a prefix,
// read into the caller's buffer chunk by chunk or deleted together.
#include <cstring>

#include "ReadCursor.h"
#include "Session.h"

namespace cte {

namespace {

constexpr int kActions = BAT_CAN | BAT_NXT | BAT_GET | BAT_DEL;

// Collects the positions (and keys) of the keys of dbi starting with prefix (plen bytes).
void Select(MDB_txn* txn, MDB_dbi dbi, const uint8_t* prefix, int plen, int keylen, bool withKeys,
            BatchState& b) {
  ReadCursor c(txn, dbi);
  MDB_val k{static_cast<size_t>(plen), const_cast<uint8_t*>(prefix)}, v{};
  int rc = c.Get(k, v, plen ? MDB_SET_RANGE : MDB_FIRST);
  while (rc == 0 && std::memcmp(k.mv_data, prefix, plen) == 0) {
    if (k.mv_size != static_cast<size_t>(keylen) || v.mv_size != 4) Throw(CT_EDAMAGED);
    uint32_t pos;
    std::memcpy(&pos, v.mv_data, 4);
    b.positions.push_back(pos);
    if (withKeys) b.keys.insert(b.keys.end(), static_cast<uint8_t*>(k.mv_data), static_cast<uint8_t*>(k.mv_data) + keylen);
    rc = c.Get(k, v, MDB_NEXT);
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
    MDB_val rec{};
    size_t need = 4;
    if (b.options & BAT_KEY) {
      need += b.keylen;
    } else if (!(b.options & BAT_POS)) {
      if (!Fetch(s, pos, rec)) {
        ++b.next;
        continue;
      }
      rec = s.Unpack(rec, unpacked_);
      need += 4 + rec.mv_size;
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
      uint32_t len = static_cast<uint32_t>(rec.mv_size);
      std::memcpy(out + used + 4, &len, 4);
      std::memcpy(out + used + 8, rec.mv_data, rec.mv_size);
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
  Write(h, [&](MDB_txn* txn) {
    for (uint32_t pos : sel.positions) {
      MDB_val rk{sizeof pos, &pos}, stored{};
      int rc = mdb_get(txn, s.RecDbi(), &rk, &stored);
      if (rc == MDB_NOTFOUND) Throw(CT_EDAMAGED);
      Check(rc);
      const MDB_val old = s.Unpack(stored, unpacked_);
      // A key is removed only where it points at this record, whatever rule kept it out of an
      // index (null key, condition).
      for (size_t i = 0; i < nidx; ++i) {
        const KeyLayout& layout = s.Layout(i);
        layout.Build(static_cast<const uint8_t*>(old.mv_data), old.mv_size, pos, key);
        MDB_val k{static_cast<size_t>(layout.KeyLen()), key}, v{};
        rc = mdb_get(txn, s.KeyDbi(i), &k, &v);
        if (rc == MDB_NOTFOUND) continue;
        Check(rc);
        if (v.mv_size == 4 && std::memcmp(v.mv_data, &pos, 4) == 0) Check(Del(txn, s.KeyDbi(i), &k, nullptr));
      }
      Check(Del(txn, s.RecDbi(), &rk, nullptr));
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
