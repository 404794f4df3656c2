// TFields: the ordered list of a dataset's fields (framework layer).
#pragma once

#include <string>
#include <vector>

namespace fw {

class TDataSet;
class TField;
class TStrings;

/// The fields of one dataset, in column order. The list does not own the fields through
/// ownership pointers (fields are components with their own owner) but Clear() destroys them: a
/// field lives no longer than its dataset. Every change of the list sends deFieldListChange.
class TFields {
 public:
  explicit TFields(TDataSet* ADataSet) : FDataSet(ADataSet) {}
  TFields(const TFields&) = delete;
  TFields& operator=(const TFields&) = delete;

  TDataSet* DataSet() const { return FDataSet; }
  int Count() const { return static_cast<int>(FList.size()); }
  /// The field at `Index` (0-based); raises EDatabaseError when out of range.
  TField* Fields(int Index) const;
  TField* operator[](int Index) const { return Fields(Index); }
  /// Position of `Field`, -1 when absent.
  int IndexOf(const TField* Field) const;
  /// Case-insensitive search by FieldName; null when absent.
  TField* FindField(const std::string& FieldName) const;
  /// As FindField but raises EDatabaseError "field not found" (prefixed with the dataset name).
  TField* FieldByName(const std::string& FieldName) const;
  /// The field whose FieldNo is `FieldNo`; null when none.
  TField* FieldByNumber(int FieldNo) const;
  /// Every FieldName, in order.
  std::vector<std::string> GetFieldNames() const;

  /// Appends `Field` (its FieldName must be unique in the list: else EDatabaseError and nothing
  /// changes). Used by TField::SetDataSet.
  void Add(TField* Field);
  /// Takes `Field` out of the list (nothing when absent).
  void Remove(TField* Field);
  /// Destroys every field, last first.
  void Clear();
  /// Moves the field at `CurIndex` to `NewIndex` (clamped).
  void Move(int CurIndex, int NewIndex);
  /// Raises EDatabaseError when another field than `Except` is named `FieldName`.
  void CheckFieldName(const std::string& FieldName, const TField* Except = nullptr) const;

 private:
  void Changed();

  TDataSet* FDataSet;
  std::vector<TField*> FList;
};

}  // namespace fw
