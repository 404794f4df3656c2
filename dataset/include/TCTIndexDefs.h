// TCTIndexDefs and TCTIndexDef: a table's index definitions with their c-tree extras (dataset, unit CTTables).
#pragma once

#include <string>

#include "DataSetTypes.h"
#include "TIndexDefs.h"

namespace CTTables {

/// One index definition: the framework's TIndexDef (name, fields, options) plus what the c-tree
/// descriptor carries beyond it: the key expression and two flags taken from and written to the
/// descriptor's fourth and fifth flag words (Maintained and Subset of CTIdxDesc). Owned by its
/// collection.
class TCTIndexDef : public fw::TIndexDef {
 public:
  explicit TCTIndexDef(fw::TCollection* Owner) : fw::TIndexDef(Owner) {}

  /// The expression text of the c-tree descriptor.
  const std::string& GetExpression() const { return FCTExpression; }
  void SetCTExpression(const std::string& Value) { FCTExpression = Value; }
  /// The framework's Expression for an ixExpression index, otherwise its Fields.
  const std::string& GetFields() const;
  bool Flag4() const { return FFlag4; }
  bool Flag5() const { return FFlag5; }
  void SetFlags(bool Flag4, bool Flag5) {
    FFlag4 = Flag4;
    FFlag5 = Flag5;
  }

 private:
  std::string FCTExpression;
  bool FFlag4 = false;
  bool FFlag5 = false;
};

/// The index definitions of a table; its items are TCTIndexDef.
class TCTIndexDefs : public fw::TIndexDefs {
 public:
  explicit TCTIndexDefs(fw::TDataSet* ADataSet) : fw::TIndexDefs(ADataSet) {}

  TCTIndexDef* Items(int Index) const { return static_cast<TCTIndexDef*>(fw::TIndexDefs::Items(Index)); }
  /// Adds a definition. Raises ECtreeException 1134 "Duplicate index name '%s'" when an item of
  /// that name (ignoring case) exists; nothing is added then.
  TCTIndexDef* Add(const std::string& Name, const std::string& Fields, const std::string& Expression, bool Flag4,
                   bool Flag5, fw::TIndexOptions Options);
  /// Clears, then adds every item of `Source` with its fields, expression, flags and options.
  void Assign(const TCTIndexDefs& Source);

 protected:
  fw::TCollectionItem* CreateItem() override { return new TCTIndexDef(this); }
};

}  // namespace CTTables
