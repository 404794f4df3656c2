// TIndexDef and TIndexDefs: the definitions of a dataset's indexes (framework layer).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DataSetTypes.h"

namespace fw {

class TDataSet;
class TIndexDefs;

/// One index: its name, key fields ("A;B") or expression, and options.
class TIndexDef {
 public:
  explicit TIndexDef(TIndexDefs* Owner);
  TIndexDef(const TIndexDef&) = delete;
  TIndexDef& operator=(const TIndexDef&) = delete;

  TIndexDefs* Collection() const { return FCollection; }
  int Index() const;
  const std::string& Name() const { return FName; }
  void SetName(const std::string& Value) { FName = Value; }
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

  /// Copies every property.
  void Assign(const TIndexDef& Source);

 private:
  TIndexDefs* FCollection;
  std::string FName;
  std::string FFields;
  TIndexOptions FOptions;
  std::string FExpression;
  std::string FDescFields;
  std::string FCaseInsFields;
  std::string FSource;
};

/// The index definitions of one dataset. Owns its items.
class TIndexDefs {
 public:
  explicit TIndexDefs(TDataSet* ADataSet) : FDataSet(ADataSet) {}
  TIndexDefs(const TIndexDefs&) = delete;
  TIndexDefs& operator=(const TIndexDefs&) = delete;

  TDataSet* DataSet() const { return FDataSet; }
  int Count() const { return static_cast<int>(FItems.size()); }
  /// Raises EDatabaseError when `Index` is out of range.
  TIndexDef* Items(int Index) const;
  TIndexDef* operator[](int Index) const { return Items(Index); }
  bool Updated() const { return FUpdated; }
  void SetUpdated(bool Value) { FUpdated = Value; }

  /// Appends a definition (an empty name becomes "Index" + number).
  TIndexDef* Add(const std::string& Name, const std::string& Fields, TIndexOptions Options);
  TIndexDef* AddIndexDef();
  void Assign(const TIndexDefs& Source);
  void Clear() { FItems.clear(); }
  /// Case-insensitive; -1 when absent.
  int IndexOf(const std::string& Name) const;
  /// Raises EDatabaseError "index not found" when absent.
  TIndexDef* Find(const std::string& Name) const;
  std::vector<std::string> GetItemNames() const;
  /// An index whose Fields equal `Fields` (case-insensitive), neither descending nor an
  /// expression, and case-insensitive when asked; else the one with the shortest field list that
  /// starts with `Fields`; null when none.
  TIndexDef* GetIndexForFields(const std::string& Fields, bool CaseInsensitive) const;
  /// As GetIndexForFields(Fields, false) but raises EDatabaseError when none matches.
  TIndexDef* FindIndexForFields(const std::string& Fields) const;
  /// When not Updated: DataSet()->UpdateIndexDefs(), then Updated = true.
  void Update();

 private:
  friend class TIndexDef;
  TDataSet* FDataSet;
  std::vector<std::unique_ptr<TIndexDef>> FItems;
  bool FUpdated = false;
};

}  // namespace fw
