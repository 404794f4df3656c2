// TCTIndexDefs and TCTIndexDef: a table's index definitions with their c-tree extras (dataset, unit CTTables).
#include "TCTIndexDefs.h"

#include "CtError.h"

namespace CTTables {

const std::string& TCTIndexDef::GetFields() const {
  return FDef->Options().Contains(fw::ixExpression) ? FDef->Expression() : FDef->Fields();
}

TCTIndexDef* TCTIndexDefs::Add(const std::string& Name, const std::string& Fields, const std::string& Expression,
                               bool Flag4, bool Flag5, fw::TIndexOptions Options) {
  if (IndexOf(Name) >= 0) CTDbIntf::CtErrorFmt(1134, {fw::Variant(Name)});
  fw::TIndexDef* def = fw::TIndexDefs::Add(Name, Fields, Options);
  FExtras.push_back(std::make_unique<TCTIndexDef>(def, Expression, Flag4, Flag5));
  return FExtras.back().get();
}

TCTIndexDef* TCTIndexDefs::CTItems(int Index) const {
  fw::TIndexDef* def = Items(Index);
  for (const auto& extra : FExtras)
    if (extra->Def() == def) return extra.get();
  // An item added through the base collection: give it empty extras.
  FExtras.push_back(std::make_unique<TCTIndexDef>(def, std::string(), false, false));
  return FExtras.back().get();
}

void TCTIndexDefs::Clear() {
  FExtras.clear();
  fw::TIndexDefs::Clear();
}

void TCTIndexDefs::Assign(const TCTIndexDefs& Source) {
  if (&Source == this) return;
  Clear();
  for (int i = 0; i < Source.Count(); ++i) {
    const TCTIndexDef* item = Source.CTItems(i);
    Add(item->Name(), item->GetFields(), item->GetExpression(), item->Flag4(), item->Flag5(), item->Options());
  }
}

}  // namespace CTTables
