// TIndexDef and TIndexDefs: the definitions of a dataset's indexes (framework layer).
#pragma once

#include <string>
#include <vector>

#include "DataSetTypes.h"
#include "TCollection.h"

namespace fw {

class TDataSet;
class TIndexDefs;

/// One index: its name, key fields ("A;B") or expression, and options. Descendant collections
/// may create descendant items (CreateItem).
class TIndexDef : public TCollectionItem {
 public:
  explicit TIndexDef(TCollection* Owner);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  TIndexDefs* IndexDefs() const;
  const std::string& Name() const { return FName; }
  void SetName(const std::string& Value) { FName = Value; }
  std::string DisplayName() const override { return FName; }
  /// Key fields, ";"-separated.
  const std::string& Fields() const { return FFields; }
  void SetFields(const std::string& Value) { FFields = Value; }
  TIndexOptions Options() const { return FOptions; }
  void SetOptions(TIndexOptions Value) { FOptions = Value; }
  /// The key expression of an ixExpression index.
  const std::string& Expression() const { return FExpression; }
  void SetExpression(const std::string& Value) { FExpression = Value; }
  /// Descending fields; non-empty adds ixDescending.
  const std::string& DescFields() const { return FDescFields; }
  void SetDescFields(const std::string& Value);
  /// Case-insensitive fields; non-empty adds ixCaseInsensitive.
  const std::string& CaseInsFields() const { return FCaseInsFields; }
  void SetCaseInsFields(const std::string& Value);
  const std::string& Source() const { return FSource; }
  void SetSource(const std::string& Value) { FSource = Value; }

  /// From another TIndexDef: copies every property; other sources raise EConvertError.
  void Assign(const TPersistent& Source) override;

 private:
  std::string FName;
  std::string FFields;
  TIndexOptions FOptions;
  std::string FExpression;
  std::string FDescFields;
  std::string FCaseInsFields;
  std::string FSource;
};

/// The index definitions of one dataset.
class TIndexDefs : public TCollection {
 public:
  explicit TIndexDefs(TDataSet* ADataSet);
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  TDataSet* DataSet() const { return FDataSet; }
  /// Raises EListError when `Index` is out of range.
  TIndexDef* Items(int Index) const { return static_cast<TIndexDef*>(TCollection::Items(Index)); }
  TIndexDef* operator[](int Index) const { return Items(Index); }
  bool Updated() const { return FUpdated; }
  void SetUpdated(bool Value) { FUpdated = Value; }

  /// Appends a definition (an empty name stays empty).
  TIndexDef* Add(const std::string& Name, const std::string& Fields, TIndexOptions Options);
  /// Appends a definition named "Index" + number.
  TIndexDef* AddIndexDef();
  /// Case-insensitive; -1 when absent.
  int IndexOf(const std::string& Name) const;
  /// Raises EDatabaseError "index not found" when absent.
  TIndexDef* Find(const std::string& Name) const;
  std::vector<std::string> GetItemNames() const;
  /// An index whose Fields equal `Fields` (case-insensitive), neither descending nor an
  /// expression, and case-insensitive when asked; else, under the same conditions, the one with
  /// the shortest field list that starts with `Fields` ("A" matches "A;B", not "AB"); null when
  /// none.
  TIndexDef* GetIndexForFields(const std::string& Fields, bool CaseInsensitive) const;
  /// As GetIndexForFields(Fields, false) but raises EDatabaseError when none matches.
  TIndexDef* FindIndexForFields(const std::string& Fields) const;
  /// When not Updated: DataSet()->UpdateIndexDefs(), then Updated = true.
  void Update();

 protected:
  using TCollection::Update;
  TCollectionItem* CreateItem() override { return new TIndexDef(this); }

 private:
  TDataSet* FDataSet;
  bool FUpdated = false;
};

}  // namespace fw
