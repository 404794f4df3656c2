// TFieldDef and TFieldDefs: the definitions of a dataset's stored columns (framework layer).
#pragma once

#include <string>
#include <vector>

#include "DataSetTypes.h"
#include "TCollection.h"
#include "TField.h"

namespace fw {

class TDataSet;
class TFieldDefs;

/// One column as the storage describes it. Items live in a TFieldDefs, which owns them.
/// Changing a property notifies the collection (the dataset then considers its definitions
/// changed).
class TFieldDef : public TCollectionItem {
 public:
  /// Creates a definition inside `Owner` (a TFieldDefs); FieldNo defaults to position + 1.
  explicit TFieldDef(TCollection* Owner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  /// The owning collection as TFieldDefs (null when detached).
  TFieldDefs* FieldDefs() const;
  const std::string& Name() const { return FName; }
  /// Raises EDatabaseError when another definition of the collection has the name.
  void SetName(const std::string& Value);
  std::string DisplayName() const override { return FName; }
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
  /// From another TFieldDef: copies name, type, size, precision, attributes; other sources
  /// raise EConvertError.
  void Assign(const TPersistent& Source) override;

 private:
  void Changed() { TCollectionItem::Changed(false); }

  std::string FName;
  TFieldType FDataType = ftUnknown;
  int FSize = 0;
  int FPrecision = 0;
  TFieldAttributes FAttributes;
  int FFieldNo = 0;
  bool FInternalCalcField = false;
};

/// The field definitions of one dataset, in column order.
class TFieldDefs : public TCollection {
 public:
  explicit TFieldDefs(TDataSet* ADataSet);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  TDataSet* DataSet() const { return FDataSet; }
  /// Raises EListError when `Index` is out of range.
  TFieldDef* Items(int Index) const { return static_cast<TFieldDef*>(TCollection::Items(Index)); }
  TFieldDef* operator[](int Index) const { return Items(Index); }
  /// True when the definitions reflect the storage.
  bool Updated() const { return FUpdated; }
  void SetUpdated(bool Value) { FUpdated = Value; }

  /// Appends a definition. Empty or duplicate (case-insensitive) names raise EDatabaseError.
  TFieldDef* Add(const std::string& Name, TFieldType DataType, int Size = 0, bool Required = false);
  /// Appends a definition named "Field" + number.
  TFieldDef* AddFieldDef();
  /// Clears the FieldDef pointer of every field of the dataset, then copies the definitions of
  /// another TFieldDefs.
  void Assign(const TPersistent& Source) override;
  /// Case-insensitive; -1 when absent.
  int IndexOf(const std::string& Name) const;
  /// Raises EDatabaseError "field not found" when absent.
  TFieldDef* Find(const std::string& Name) const;
  std::vector<std::string> GetItemNames() const;
  /// When not Updated: DataSet()->InitFieldDefs(), then Updated = true.
  void Update();

 protected:
  TCollectionItem* CreateItem() override { return new TFieldDef(this); }
  /// Tells the dataset its definitions changed (dePropertyChange).
  void Update(TCollectionItem* Item) override;

 private:
  TDataSet* FDataSet;
  bool FUpdated = false;
};

}  // namespace fw
