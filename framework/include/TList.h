// TList: the framework's list of untyped pointers (framework layer).
#pragma once

#include <functional>
#include <vector>

namespace fw {

/// An ordered list of pointers it does not own (nullptr entries allowed). Indexes out of range
/// raise EListError ("List index out of bounds (n)").
class TList {
 public:
  TList() = default;
  TList(const TList&) = delete;
  TList& operator=(const TList&) = delete;
  virtual ~TList() = default;

  int Count() const { return static_cast<int>(FItems.size()); }
  void* Items(int index) const;
  void SetItem(int index, void* item);
  int Capacity() const { return static_cast<int>(FItems.capacity()); }
  void SetCapacity(int value);

  /// Appends; returns the new item's index.
  int Add(void* item);
  /// Inserts before `index` (0..Count).
  void Insert(int index, void* item);
  void Delete(int index);
  /// Removes the first occurrence; returns its former index or -1.
  int Remove(void* item);
  /// Like Remove, but returns the item (nullptr when absent).
  void* Extract(void* item);
  /// First index of `item`, or -1.
  int IndexOf(void* item) const;
  void Clear();
  void Exchange(int index1, int index2);
  void Move(int curIndex, int newIndex);
  /// Removes every nullptr entry.
  void Pack();
  /// EListError on an empty list.
  void* First() const;
  void* Last() const;
  /// Sorts with a three-way comparison (<0, 0, >0); not stable.
  void Sort(const std::function<int(void*, void*)>& compare);

 private:
  void Check(int index) const;
  std::vector<void*> FItems;
};

}  // namespace fw
