// LockTable: in-process owners per key, one region lock per key for the process.
#include "LockTable.h"

namespace cte {

LockTable::LockTable(const std::string& regionPath) : region_(std::make_unique<LockRegion>(regionPath)) {}

bool LockTable::Acquire(uint64_t key, int owner, bool write, bool local) {
  Entry& e = entries_[key];
  bool anyWrite = write;
  for (const auto& [o, w] : e.owners) {
    if (o == owner) {
      anyWrite = anyWrite || w;
      continue;
    }
    if (write || w) {
      if (e.owners.empty()) entries_.erase(key);
      return false;
    }
  }
  Shared want = anyWrite ? kWrite : kRead;
  if (!local && e.shared < want) {
    if (!region_->Acquire(key, want == kWrite)) {
      if (e.owners.empty()) entries_.erase(key);
      return false;
    }
    e.shared = want;
  }
  bool& mine = e.owners[owner];
  mine = mine || write;
  return true;
}

void LockTable::Settle(uint64_t key, Entry& e, std::vector<uint64_t>& drops) {
  if (e.owners.empty()) {
    if (e.shared != kNone) drops.push_back(key);
    entries_.erase(key);
    return;
  }
  bool anyWrite = false;
  for (const auto& [o, w] : e.owners) anyWrite = anyWrite || w;
  if (!anyWrite && e.shared == kWrite) {
    region_->Downgrade(key);
    e.shared = kRead;
  }
}

void LockTable::Release(uint64_t key, int owner) { Release({{key, owner}}); }

void LockTable::Release(const std::vector<std::pair<uint64_t, int>>& locks) {
  std::vector<uint64_t> drops;
  for (const auto& [key, owner] : locks) {
    auto it = entries_.find(key);
    if (it == entries_.end() || it->second.owners.erase(owner) == 0) continue;
    Settle(key, it->second, drops);
  }
  if (!drops.empty()) region_->Release(drops.data(), drops.size());
}

void LockTable::ReleaseOwner(int owner) {
  std::vector<uint64_t> drops;
  for (auto it = entries_.begin(); it != entries_.end();) {
    auto next = std::next(it);
    if (it->second.owners.erase(owner)) Settle(it->first, it->second, drops);
    it = next;
  }
  if (!drops.empty()) region_->Release(drops.data(), drops.size());
}

bool LockTable::HeldByOther(uint64_t key, int owner, bool local) {
  if (auto it = entries_.find(key); it != entries_.end()) {
    for (const auto& [o, w] : it->second.owners)
      if (o != owner) return true;
  }
  return !local && region_->HeldByOther(key);
}

bool LockTable::HeldBy(uint64_t key, int owner, bool write) const {
  auto it = entries_.find(key);
  if (it == entries_.end()) return false;
  auto o = it->second.owners.find(owner);
  return o != it->second.owners.end() && (!write || o->second);
}

}  // namespace cte
