// TList: the framework's list of untyped pointers.
#include "TList.h"

#include <algorithm>
#include <string>

#include "Exception.h"

namespace fw {

void TList::Check(int index) const {
  if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + std::to_string(index) + ")");
}

void* TList::Items(int index) const {
  Check(index);
  return FItems[index];
}

void TList::SetItem(int index, void* item) {
  Check(index);
  FItems[index] = item;
}

void TList::SetCapacity(int value) {
  if (value < Count()) throw EListError("List capacity out of bounds (" + std::to_string(value) + ")");
  FItems.reserve(static_cast<std::size_t>(value));
}

int TList::Add(void* item) {
  FItems.push_back(item);
  return Count() - 1;
}

void TList::Insert(int index, void* item) {
  if (index < 0 || index > Count()) throw EListError("List index out of bounds (" + std::to_string(index) + ")");
  FItems.insert(FItems.begin() + index, item);
}

void TList::Delete(int index) {
  Check(index);
  FItems.erase(FItems.begin() + index);
}

int TList::Remove(void* item) {
  const int i = IndexOf(item);
  if (i >= 0) Delete(i);
  return i;
}

void* TList::Extract(void* item) { return Remove(item) >= 0 ? item : nullptr; }

int TList::IndexOf(void* item) const {
  const auto it = std::find(FItems.begin(), FItems.end(), item);
  return it == FItems.end() ? -1 : static_cast<int>(it - FItems.begin());
}

void TList::Clear() { FItems.clear(); }

void TList::Exchange(int index1, int index2) {
  Check(index1);
  Check(index2);
  std::swap(FItems[index1], FItems[index2]);
}

void TList::Move(int curIndex, int newIndex) {
  Check(curIndex);
  Check(newIndex);
  void* item = FItems[curIndex];
  FItems.erase(FItems.begin() + curIndex);
  FItems.insert(FItems.begin() + newIndex, item);
}

void TList::Pack() { FItems.erase(std::remove(FItems.begin(), FItems.end(), nullptr), FItems.end()); }

void* TList::First() const {
  Check(0);
  return FItems.front();
}

void* TList::Last() const {
  Check(Count() - 1);
  return FItems.back();
}

void TList::Sort(const std::function<int(void*, void*)>& compare) {
  std::sort(FItems.begin(), FItems.end(), [&](void* a, void* b) { return compare(a, b) < 0; });
}

}  // namespace fw
