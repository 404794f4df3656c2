// UndoLog: recording and backward application of undo entries.
#include "UndoLog.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "Env.h"
#include "ctisam.h"

namespace cte {

namespace {

constexpr size_t kHead = 1 + 4 * sizeof(uint32_t);  // kind, flags, three lengths
constexpr size_t kWindow = size_t{1} << 20;

void PutU32(std::string& out, uint32_t v) {
  out.append(reinterpret_cast<const char*>(&v), sizeof v);
}

uint32_t GetU32(const char* p) {
  uint32_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

}  // namespace

void UndoLog::Add(Kind kind, const std::string& db, unsigned flags, Bytes key, Bytes value) {
  const size_t body = kHead + db.size() + key.size + value.size;
  bytes_.push_back(static_cast<char>(kind));
  PutU32(bytes_, flags);
  PutU32(bytes_, static_cast<uint32_t>(db.size()));
  PutU32(bytes_, static_cast<uint32_t>(key.size));
  PutU32(bytes_, static_cast<uint32_t>(value.size));
  bytes_ += db;
  bytes_.append(static_cast<const char*>(key.data), key.size);
  bytes_.append(static_cast<const char*>(value.data), value.size);
  PutU32(bytes_, static_cast<uint32_t>(body));
}

void UndoLog::ApplyEntry(Env& env, Txn* txn, const char* body, size_t len) {
  if (len < kHead) Throw(CT_EDAMAGED);
  const auto kind = static_cast<Kind>(body[0]);
  const unsigned flags = GetU32(body + 1);
  const size_t dbLen = GetU32(body + 5), keyLen = GetU32(body + 9), valLen = GetU32(body + 13);
  if (kHead + dbLen + keyLen + valLen != len || kind > kDropped) Throw(CT_EDAMAGED);
  const std::string db(body + kHead, dbLen);
  env.Restore(txn, kind, db, flags, Bytes{keyLen, body + kHead + dbLen}, Bytes{valLen, body + kHead + dbLen + keyLen});
}

void UndoLog::ApplyBackwards(Env& env, Txn* txn, const char* data, size_t n) {
  while (n > 0) {
    if (n < sizeof(uint32_t)) Throw(CT_EDAMAGED);
    const size_t len = GetU32(data + n - sizeof(uint32_t));
    if (len + sizeof(uint32_t) > n) Throw(CT_EDAMAGED);
    n -= len + sizeof(uint32_t);
    ApplyEntry(env, txn, data + n, len);
  }
}

void UndoLog::ApplyBackwards(Env& env, Txn* txn, int fd, uint64_t n) {
  // The window holds the file's bytes [start, start + win.size()); entries are taken from its
  // end, and it is refilled backwards when the next entry does not lie in it whole.
  std::string win;
  uint64_t start = n;
  auto load = [&](uint64_t from, uint64_t to) {
    if (from >= start && to <= start + win.size()) return;
    uint64_t size = std::max<uint64_t>(to - from, kWindow);
    start = to > size ? to - size : 0;
    win.resize(static_cast<size_t>(to - start));
    size_t got = 0;
    while (got < win.size()) {
      ssize_t r = ::pread(fd, win.data() + got, win.size() - got, static_cast<off_t>(start + got));
      if (r <= 0) Throw(CT_EIO, r < 0 ? errno : 0);
      got += static_cast<size_t>(r);
    }
  };
  while (n > 0) {
    if (n < sizeof(uint32_t)) Throw(CT_EDAMAGED);
    load(n - sizeof(uint32_t), n);
    const uint64_t len = GetU32(win.data() + (n - sizeof(uint32_t) - start));
    if (len + sizeof(uint32_t) > n) Throw(CT_EDAMAGED);
    n -= len + sizeof(uint32_t);
    load(n, n + len);
    ApplyEntry(env, txn, win.data() + (n - start), static_cast<size_t>(len));
  }
}

}  // namespace cte
