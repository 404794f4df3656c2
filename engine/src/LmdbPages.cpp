// LmdbPages: a bound-checked walk of LMDB's pages. Layout (native byte order): a page starts
// with its number (u64), 2 unused bytes, its flags (u16) and the lower and upper bounds of its
// free space (u16 each; an overflow page has its page count (u32) there instead), then the
// offsets (u16) of its nodes. A node is a data size or child page number (u16 low, u16 high),
// flags (u16, the top 16 bits of a child page number in a branch) and a key size (u16), then the
// key and the data. A meta page holds, from byte 16: magic, version, address, map size, the
// free list's and the main database's records (48 bytes each), the last page and the
// transaction number.
#include "LmdbPages.h"

#include <cstring>
#include <initializer_list>
#include <vector>

namespace cte {

namespace {

constexpr size_t kHeader = 16;
constexpr size_t kNode = 8;
constexpr uint16_t kBranch = 0x01, kLeaf = 0x02, kOverflow = 0x04, kMeta = 0x08;
constexpr uint16_t kBigData = 0x01, kSubData = 0x02;
constexpr uint16_t kDupSort = 0x04;
// The flags of a database record that change how LMDB compares and stores keys: reverse keys,
// duplicates, integer keys, fixed, integer and reverse duplicates.
constexpr uint16_t kKeyFlags = 0x7e, kIntegerKey = 0x08;
constexpr uint32_t kMagic = 0xBEEFC0DE, kDataVersion = 1;
constexpr uint64_t kNoPage = ~uint64_t{0};
constexpr size_t kMetaMagic = 16, kMetaVersion = 20, kFreeDb = 40, kMainDb = 88, kLastPage = 136, kTxnId = 144;
constexpr size_t kDbSize = 48;
// Offsets inside a database record; the free list's record keeps the page size in its pad.
constexpr size_t kDbPad = 0, kDbFlags = 4, kDbDepth = 6, kDbBranch = 8, kDbLeaf = 16, kDbOverflow = 24,
                 kDbEntries = 32, kDbRoot = 40;
constexpr unsigned kMaxDepth = 32;  // LMDB's cursor stack

template <typename T>
T Get(const uint8_t* p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

class Walker {
 public:
  Walker(const uint8_t* map, size_t psize, uint64_t pages) : map_(map), psize_(psize), used_(pages, kFree) {
    used_[0] = used_[1] = kInTree;
  }

  // Walks the database whose record is at db; sub-database records of the main database and
  // the free list's page lists are kept for later.
  bool Tree(const uint8_t* db, bool main, bool freeList) {
    const uint64_t root = Get<uint64_t>(db + kDbRoot);
    const unsigned depth = Get<uint16_t>(db + kDbDepth);
    uint64_t entries = 0, branches = 0, leaves = 0, overflows = 0;
    if (root == kNoPage) return depth == 0 && Get<uint64_t>(db + kDbEntries) == 0;
    if (depth == 0 || depth > kMaxDepth) return false;
    std::vector<std::pair<uint64_t, unsigned>> todo{{root, 0}};
    while (!todo.empty()) {
      const auto [pgno, level] = todo.back();
      todo.pop_back();
      const bool leaf = level + 1 == depth;
      if (!Claim(pgno, 1)) return false;
      const uint8_t* page = map_ + pgno * psize_;
      const uint16_t lower = Get<uint16_t>(page + 12), upper = Get<uint16_t>(page + 14);
      if (Get<uint64_t>(page) != pgno || Get<uint16_t>(page + 10) != (leaf ? kLeaf : kBranch)) return false;
      if (lower < kHeader || lower > upper || upper > psize_ || (lower & 1)) return false;
      const size_t count = (lower - kHeader) / 2;
      if (!leaf && count == 0) return false;
      ++(leaf ? leaves : branches);
      for (size_t i = 0; i < count; ++i) {
        const size_t at = Get<uint16_t>(page + kHeader + 2 * i);
        if (at < upper || at + kNode > psize_) return false;
        const uint8_t* node = page + at;
        const uint16_t flags = Get<uint16_t>(node + 4);
        const size_t ksize = Get<uint16_t>(node + 6);
        const uint64_t low = Get<uint16_t>(node) | uint64_t{Get<uint16_t>(node + 2)} << 16;
        if (at + kNode + ksize > psize_) return false;
        if (!leaf) {
          todo.emplace_back(low | uint64_t{flags} << 32, level + 1);
          continue;
        }
        ++entries;
        const uint8_t* data = node + kNode + ksize;
        const size_t room = psize_ - (at + kNode + ksize);
        if (flags & ~(kBigData | kSubData)) return false;
        if (flags & kBigData) {
          uint64_t first = 0, run = 0;
          if (flags & kSubData || room < 8 || !Overflow(Get<uint64_t>(data), low, first, run)) return false;
          overflows += run;
          data = map_ + first * psize_ + kHeader;
        } else if (low > room) {
          return false;
        }
        if (flags & kSubData) {
          if (!main || low != kDbSize || Get<uint16_t>(data + kDbFlags) & kDupSort) return false;
          named_.push_back(data);
        }
        if (freeList) lists_.emplace_back(data, low);
      }
    }
    return entries == Get<uint64_t>(db + kDbEntries) && branches == Get<uint64_t>(db + kDbBranch) &&
           leaves == Get<uint64_t>(db + kDbLeaf) && overflows == Get<uint64_t>(db + kDbOverflow);
  }

  bool NamedTrees() {
    for (size_t i = 0; i < named_.size(); ++i)
      if (!Tree(named_[i], false, false)) return false;
    return true;
  }

  // Every page a free list entry names: inside the file, past the meta pages, used by no
  // database and named once.
  bool FreePages() {
    for (const auto& [data, size] : lists_) {
      if (size < 8 || size % 8) return false;
      const uint64_t count = Get<uint64_t>(data);
      if (count > size / 8 - 1) return false;
      for (uint64_t i = 1; i <= count; ++i) {
        const uint64_t pgno = Get<uint64_t>(data + 8 * i);
        if (pgno >= used_.size() || used_[pgno] != kFree) return false;
        used_[pgno] = kListed;
      }
    }
    return true;
  }

 private:
  enum : uint8_t { kFree, kInTree, kListed };

  bool Claim(uint64_t first, uint64_t count) {
    if (first >= used_.size() || count > used_.size() - first) return false;
    for (uint64_t p = first; p < first + count; ++p) {
      if (used_[p] != kFree) return false;
      used_[p] = kInTree;
    }
    return true;
  }

  // The overflow run at pgno holding size bytes: its first page and page count.
  bool Overflow(uint64_t pgno, uint64_t size, uint64_t& first, uint64_t& run) {
    if (pgno >= used_.size()) return false;
    const uint8_t* page = map_ + pgno * psize_;
    run = Get<uint32_t>(page + 12);
    first = pgno;
    return Get<uint64_t>(page) == pgno && Get<uint16_t>(page + 10) == kOverflow && run > 0 &&
           size <= run * psize_ - kHeader && Claim(pgno, run);
  }

  const uint8_t* map_;
  size_t psize_;
  std::vector<uint8_t> used_;
  std::vector<const uint8_t*> named_;
  std::vector<std::pair<const uint8_t*, uint64_t>> lists_;
};

}  // namespace

bool PageSizeSound(size_t psize) { return psize >= 512 && psize <= 65536 && (psize & (psize - 1)) == 0; }

bool MetaPagesAgree(const uint8_t* head, size_t psize) {
  for (const uint8_t* meta : {head, head + psize})
    if (Get<uint32_t>(meta + kFreeDb + kDbPad) != psize) return false;
  const uint64_t even = Get<uint64_t>(head + kTxnId), odd = Get<uint64_t>(head + psize + kTxnId);
  if (even == 0 && odd == 0) return true;
  if (even % 2 != 0 || odd % 2 != 1 || (even != odd + 1 && odd != even + 1)) return false;
  const uint8_t* newer = head + (even > odd ? 0 : psize);
  const uint8_t* older = head + (even > odd ? psize : 0);
  return Get<uint64_t>(newer + kLastPage) >= Get<uint64_t>(older + kLastPage) &&
         (Get<uint16_t>(newer + kFreeDb + kDbFlags) & kKeyFlags) == kIntegerKey &&
         (Get<uint16_t>(newer + kMainDb + kDbFlags) & kKeyFlags) == 0;
}

bool PagesSound(const uint8_t* map, size_t size) {
  if (size < kHeader + kLastPage) return false;
  const size_t psize = Get<uint32_t>(map + kFreeDb + kDbPad);
  if (!PageSizeSound(psize) || size < 2 * psize) return false;
  for (size_t m = 0; m < 2; ++m) {
    const uint8_t* page = map + m * psize;
    if (!(Get<uint16_t>(page + 10) & kMeta) || Get<uint32_t>(page + kMetaMagic) != kMagic ||
        Get<uint32_t>(page + kMetaVersion) != kDataVersion)
      return false;
  }
  if (!MetaPagesAgree(map, psize)) return false;
  const uint8_t* meta = map + (Get<uint64_t>(map + kTxnId) < Get<uint64_t>(map + psize + kTxnId) ? psize : 0);
  const uint64_t last = Get<uint64_t>(meta + kLastPage);
  if (last < 1 || last >= size / psize) return false;
  Walker walk(map, psize, last + 1);
  return walk.Tree(meta + kFreeDb, false, true) && walk.Tree(meta + kMainDb, true, false) && walk.NamedTrees() &&
         walk.FreePages();
}

}  // namespace cte
