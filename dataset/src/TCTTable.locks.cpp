// TCTTable: record locks an application takes and frees itself, and their lock list (dataset).
#include <algorithm>

#include "CtError.h"
#include "TCTConnection.h"
#include "TCTTable.h"

namespace CTTables {

int32_t* TCTTable::Lock() {
  CheckBrowseMode();
  switch (GetBookmarkFlag(ActiveBuffer())) {
    case fw::bfBOF: InternalFirst(); break;
    case fw::bfEOF: InternalLast(); break;
    case fw::bfCurrent:
    case fw::bfInserted: InternalSetToRecord(ActiveBuffer()); break;
  }
  int32_t position = 0;
  CTDbIntf::CtError(Conn().LockRecord(FCursor.get(), position));
  // A record locked twice is one lock in the storage: it keeps one handle, so that one Unlock
  // frees it.
  const auto held = std::find_if(FLocks.begin(), FLocks.end(),
                                 [position](const std::unique_ptr<int32_t>& handle) { return *handle == position; });
  if (held != FLocks.end()) return held->get();
  FLocks.push_back(std::make_unique<int32_t>(position));
  return FLocks.back().get();
}

void TCTTable::Unlock(int32_t* Handle) {
  CheckBrowseMode();
  if (Handle == nullptr || *Handle == 0) return;
  CTDbIntf::CtError(Conn().UnlockRecord(FCursor.get(), *Handle));
  // Only handles of the list are the table's to free; any other block stays its owner's.
  const auto held = std::find_if(FLocks.begin(), FLocks.end(),
                                 [Handle](const std::unique_ptr<int32_t>& handle) { return handle.get() == Handle; });
  if (held != FLocks.end()) FLocks.erase(held);
}

void TCTTable::FreeLocks() {
  while (!FLocks.empty()) FLocks.pop_back();
}

bool TCTTable::LockedByHandle(int32_t Bookmark) const {
  return std::any_of(FLocks.begin(), FLocks.end(),
                     [Bookmark](const std::unique_ptr<int32_t>& handle) { return *handle == Bookmark; });
}

}  // namespace CTTables
