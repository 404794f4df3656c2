// TFieldDef and TFieldDefs: the definitions of a dataset's stored columns (framework layer).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DataSetTypes.h"
#include "TField.h"

namespace fw {

class TDataSet;
class TFieldDefs;

/// One column as the storage describes it. Changing a property notifies the collection (the
/// dataset then considers its definitions changed).
class TFieldDef {
 public:
  /// Creates a definition inside `Owner` (which keeps it); FieldNo defaults to position + 1.
  explicit TFieldDef(TFieldDefs* Owner);
  TFieldDef(const TFieldDef&) = delete;
  TFieldDef& operator=(const TFieldDef&) = delete;

  TFieldDefs* Collection() const { return FCollection; }
  /// Position in the collection.
  int Index() const;
  const std::string& Name() const { return FName; }
  void SetName(const std::string& Value);
  TFieldType DataType() const { return FDataType; }
  void SetDataType(TFieldType Value);
  /// Characters for strings, scale for BCD, bytes for byte types, 0 or an inline size for blobs.
  int Size() const { return FSize; }
  void SetSize(int Value);
  /// Total digits of BCD columns; 0 when not given.
  int Precision() const { return FPrecision; }
  void SetPrecision(int Value);
  bool Required() const { return FAttributes.Contains(faRequired); }
  void SetRequired(bool Value);
  TFieldAttributes Attributes() const { return FAttributes; }
  void SetAttributes(TFieldAttributes Value);
  /// 1-based column number.
  int FieldNo() const { return FFieldNo; }
  void SetFieldNo(int Value) { FFieldNo = Value; }
  bool InternalCalcField() const { return FInternalCalcField; }
  void SetInternalCalcField(bool Value);
  /// The dataset's GetFieldClass(DataType); null for types without class.
  TFieldClass FieldClass() const;

  /// Creates the field for this definition, owned by `Owner`, with Size, Required, FieldName,
  /// FieldNo, ReadOnly (faReadonly) and, for float and BCD classes, Precision, and attaches it
  /// to the collection's dataset. Raises EDatabaseError for a type without field class; on any
  /// error the half-made field is destroyed.
  TField* CreateField(TComponent* Owner);
  /// Copies name, type, size, precision, attributes (required).
  void Assign(const TFieldDef& Source);

 private:
  friend class TFieldDefs;
  void Changed();

  TFieldDefs* FCollection;
  std::string FName;
  TFieldType FDataType = ftUnknown;
  int FSize = 0;
  int FPrecision = 0;
  TFieldAttributes FAttributes;
  int FFieldNo = 0;
  bool FInternalCalcField = false;
};

/// The field definitions of one dataset, in column order. Owns its items.
class TFieldDefs {
 public:
  explicit TFieldDefs(TDataSet* ADataSet) : FDataSet(ADataSet) {}
  TFieldDefs(const TFieldDefs&) = delete;
  TFieldDefs& operator=(const TFieldDefs&) = delete;

  TDataSet* DataSet() const { return FDataSet; }
  int Count() const { return static_cast<int>(FItems.size()); }
  /// Raises EDatabaseError when `Index` is out of range.
  TFieldDef* Items(int Index) const;
  TFieldDef* operator[](int Index) const { return Items(Index); }
  /// True when the definitions reflect the storage.
  bool Updated() const { return FUpdated; }
  void SetUpdated(bool Value) { FUpdated = Value; }

  /// Appends a definition. Empty or duplicate (case-insensitive) names raise EDatabaseError.
  TFieldDef* Add(const std::string& Name, TFieldType DataType, int Size = 0, bool Required = false);
  /// Appends an unnamed definition (its name becomes "Field" + number).
  TFieldDef* AddFieldDef();
  /// Clears and copies every definition of `Source`; clears the FieldDef pointer of every field
  /// of the dataset first.
  void Assign(const TFieldDefs& Source);
  void Clear();
  /// Case-insensitive; -1 when absent.
  int IndexOf(const std::string& Name) const;
  /// Raises EDatabaseError "field not found" when absent.
  TFieldDef* Find(const std::string& Name) const;
  std::vector<std::string> GetItemNames() const;
  /// When not Updated: DataSet()->InitFieldDefs(), then Updated = true.
  void Update();
  /// Suspend change notifications; EndUpdate sends one if anything changed meanwhile.
  void BeginUpdate() { ++FUpdateCount; }
  void EndUpdate();

 private:
  friend class TFieldDef;
  void Changed();

  TDataSet* FDataSet;
  std::vector<std::unique_ptr<TFieldDef>> FItems;
  bool FUpdated = false;
  int FUpdateCount = 0;
  bool FChangedWhileUpdating = false;
};

}  // namespace fw
