// TCTIndexDefs and TCTIndexDef: a table's index definitions with their c-tree extras (dataset, unit CTTables).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DataSetTypes.h"
#include "TIndexDefs.h"

namespace CTTables {

class TCTIndexDefs;

/// One index definition: the framework's TIndexDef (name, fields, options) plus what the c-tree
/// descriptor carries beyond it: the key expression and two flags taken from and written to the
/// descriptor's fourth and fifth flag words (Maintained and Subset of CTIdxDesc). The framework
/// part is owned by the framework collection; this object by its TCTIndexDefs.
class TCTIndexDef {
 public:
  TCTIndexDef(fw::TIndexDef* Def, std::string Expression, bool Flag4, bool Flag5)
      : FDef(Def), FExpression(std::move(Expression)), FFlag4(Flag4), FFlag5(Flag5) {}

  /// The framework definition (name, fields, options).
  fw::TIndexDef* Def() const { return FDef; }
  const std::string& Name() const { return FDef->Name(); }
  fw::TIndexOptions Options() const { return FDef->Options(); }
  /// The expression text of the c-tree descriptor.
  const std::string& GetExpression() const { return FExpression; }
  /// The framework's Expression for an ixExpression index, otherwise its Fields.
  const std::string& GetFields() const;
  bool Flag4() const { return FFlag4; }
  bool Flag5() const { return FFlag5; }

 private:
  fw::TIndexDef* FDef;
  std::string FExpression;
  bool FFlag4;
  bool FFlag5;
};

/// The index definitions of a table: the framework collection, each item paired with its
/// TCTIndexDef. Use Add and Clear of this class (not the base's) so the pairs stay together.
class TCTIndexDefs : public fw::TIndexDefs {
 public:
  explicit TCTIndexDefs(fw::TDataSet* ADataSet) : fw::TIndexDefs(ADataSet) {}

  /// Adds a definition. Raises ECtreeException 1134 "Duplicate index name '%s'" when an item of
  /// that name (ignoring case) exists; nothing is added then.
  TCTIndexDef* Add(const std::string& Name, const std::string& Fields, const std::string& Expression, bool Flag4,
                   bool Flag5, fw::TIndexOptions Options);
  /// The extras of item `Index`; raises EDatabaseError when out of range.
  TCTIndexDef* CTItems(int Index) const;
  void Clear();
  /// Clears, then adds every item of `Source` with its fields, expression, flags and options.
  void Assign(const TCTIndexDefs& Source);

 private:
  // Filled lazily for items added through the base collection, hence mutable.
  mutable std::vector<std::unique_ptr<TCTIndexDef>> FExtras;
};

}  // namespace CTTables
