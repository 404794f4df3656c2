// TStringList: storage, sorting and change events of the in-memory string list.
#include "TStringList.h"

#include <algorithm>

#include "Exception.h"
#include "StringUtils.h"
#include "TClassInfo.h"

namespace fw {

const TClassInfo& TStringList::StaticClass() {
  static const TClassInfo info("TStringList", &TStrings::StaticClass());
  return info;
}

const TClassInfo& TStringList::ClassType() const { return StaticClass(); }

void TStringList::CheckIndex(int index) const {
  if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + std::to_string(index) + ")");
}

void TStringList::CheckUnsorted() const {
  if (FSorted) throw EListError("Operation not allowed on sorted list");
}

void TStringList::Changing() {
  if (!FUpdating && OnChanging) OnChanging(*this);
}

void TStringList::Changed() {
  if (!FUpdating && OnChange) OnChange(*this);
}

void TStringList::SetUpdateState(bool updating) {
  FUpdating = updating;
  if (updating) {
    if (OnChanging) OnChanging(*this);
  } else if (OnChange) {
    OnChange(*this);
  }
}

std::string TStringList::Get(int index) const {
  CheckIndex(index);
  return FItems[index].first;
}

void* TStringList::GetObject(int index) const {
  CheckIndex(index);
  return FItems[index].second;
}

void TStringList::Put(int index, const std::string& s) {
  CheckUnsorted();
  CheckIndex(index);
  Changing();
  FItems[index].first = s;
  Changed();
}

void TStringList::PutObject(int index, void* object) {
  CheckIndex(index);
  Changing();
  FItems[index].second = object;
  Changed();
}

void TStringList::Insert(int index, const std::string& s) {
  CheckUnsorted();
  if (index < 0 || index > Count()) throw EListError("List index out of bounds (" + std::to_string(index) + ")");
  Changing();
  FItems.insert(FItems.begin() + index, {s, nullptr});
  Changed();
}

void TStringList::Delete(int index) {
  CheckIndex(index);
  Changing();
  FItems.erase(FItems.begin() + index);
  Changed();
}

void TStringList::Clear() {
  if (FItems.empty()) return;
  Changing();
  FItems.clear();
  Changed();
}

int TStringList::Add(const std::string& s) {
  if (!FSorted) {
    Changing();
    FItems.emplace_back(s, nullptr);
    Changed();
    return Count() - 1;
  }
  int index;
  if (Find(s, index)) {
    if (FDuplicates == dupIgnore) return index;
    if (FDuplicates == dupError) throw EListError("String list does not allow duplicates ('" + s + "')");
  }
  Changing();
  FItems.insert(FItems.begin() + index, {s, nullptr});
  Changed();
  return index;
}

int TStringList::IndexOf(std::string_view s) const {
  if (!FSorted) return TStrings::IndexOf(s);
  int index;
  return Find(s, index) ? index : -1;
}

int TStringList::CompareStrings(std::string_view a, std::string_view b) const {
  return FCaseSensitive ? CompareStr(a, b) : CompareText(a, b);
}

void TStringList::Exchange(int index1, int index2) {
  CheckUnsorted();
  CheckIndex(index1);
  CheckIndex(index2);
  Changing();
  std::swap(FItems[index1], FItems[index2]);
  Changed();
}

bool TStringList::Find(std::string_view s, int& index) const {
  // Leftmost match, so that duplicates accepted earlier are found at their first position.
  int lo = 0, hi = Count() - 1;
  bool found = false;
  while (lo <= hi) {
    const int mid = (lo + hi) / 2;
    const int c = CompareStrings(FItems[mid].first, s);
    if (c < 0) {
      lo = mid + 1;
    } else {
      hi = mid - 1;
      if (c == 0) found = true;
    }
  }
  index = lo;
  return found;
}

void TStringList::Sort() {
  Changing();
  std::stable_sort(FItems.begin(), FItems.end(),
                   [this](const auto& a, const auto& b) { return CompareStrings(a.first, b.first) < 0; });
  Changed();
}

void TStringList::CustomSort(const TStringListSortCompare& compare) {
  // Sort a permutation of indexes, so that `compare` sees the list unchanged while it runs.
  std::vector<int> order(FItems.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<int>(i);
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return compare(*this, a, b) < 0; });
  Changing();
  std::vector<std::pair<std::string, void*>> sorted;
  sorted.reserve(FItems.size());
  for (int i : order) sorted.push_back(std::move(FItems[i]));
  FItems = std::move(sorted);
  Changed();
}

void TStringList::SetSorted(bool value) {
  if (value && !FSorted) Sort();
  FSorted = value;
}

void TStringList::SetCaseSensitive(bool value) {
  if (value == FCaseSensitive) return;
  FCaseSensitive = value;
  if (FSorted) Sort();
}

}  // namespace fw
