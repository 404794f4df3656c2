// TStringList: the framework's concrete, optionally sorted string list (framework layer).
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "TStrings.h"

namespace fw {

enum TDuplicates : uint8_t { dupIgnore, dupAccept, dupError };

class TStringList;
using TStringListSortCompare = std::function<int(TStringList& list, int index1, int index2)>;

/// A string list held in memory. Comparisons are ASCII case-insensitive unless CaseSensitive.
/// When Sorted, Add inserts in order and applies Duplicates (dupIgnore: the existing index is
/// returned; dupError: EListError), IndexOf uses binary search, and Insert/Put/Exchange/Move
/// raise EListError.
class TStringList : public TStrings {
 public:
  TStringList() = default;

  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override;

  bool Sorted() const { return FSorted; }
  /// Setting true sorts the list at once.
  void SetSorted(bool value);
  TDuplicates Duplicates() const { return FDuplicates; }
  void SetDuplicates(TDuplicates value) { FDuplicates = value; }
  bool CaseSensitive() const { return FCaseSensitive; }
  /// Changing it re-sorts a sorted list.
  void SetCaseSensitive(bool value);

  /// Fired before and after every change (not inside BeginUpdate/EndUpdate, where one
  /// OnChange fires at the end).
  std::function<void(TStringList&)> OnChanging;
  std::function<void(TStringList&)> OnChange;

  int Count() const override { return static_cast<int>(FItems.size()); }
  std::string Get(int index) const override;
  void* GetObject(int index) const override;
  void Put(int index, const std::string& s) override;
  void PutObject(int index, void* object) override;
  void Insert(int index, const std::string& s) override;
  void Delete(int index) override;
  void Clear() override;
  int Add(const std::string& s) override;
  int IndexOf(std::string_view s) const override;
  int CompareStrings(std::string_view a, std::string_view b) const override;
  void Exchange(int index1, int index2) override;

  /// Binary search of a sorted list: true when found, `index` = its position or the insertion
  /// point. On an unsorted list the result is meaningless.
  bool Find(std::string_view s, int& index) const;
  /// Sorts by CompareStrings (stable).
  void Sort();
  /// Sorts with `compare` (three-way on two indexes of this list).
  void CustomSort(const TStringListSortCompare& compare);

 protected:
  void SetUpdateState(bool updating) override;

 private:
  void CheckIndex(int index) const;
  void CheckUnsorted() const;
  void Changing();
  void Changed();

  std::vector<std::pair<std::string, void*>> FItems;
  bool FSorted = false;
  bool FCaseSensitive = false;
  TDuplicates FDuplicates = dupIgnore;
  bool FUpdating = false;
};

}  // namespace fw
