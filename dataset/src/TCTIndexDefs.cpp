// TCTIndexDefs and TCTIndexDef: a table's index definitions with their c-tree extras (dataset, unit CTTables).
#include "TCTIndexDefs.h"

#include "CtError.h"

namespace CTTables {

const std::string& TCTIndexDef::GetFields() const {
  return Options().Contains(fw::ixExpression) ? Expression() : Fields();
}

TCTIndexDef* TCTIndexDefs::Add(const std::string& Name, const std::string& Fields, const std::string& Expression,
                               bool Flag4, bool Flag5, fw::TIndexOptions Options) {
  if (IndexOf(Name) >= 0) CTDbIntf::CtErrorFmt(1134, {fw::Variant(Name)});
  auto* def = static_cast<TCTIndexDef*>(fw::TIndexDefs::Add(Name, Fields, Options));
  def->SetCTExpression(Expression);
  def->SetFlags(Flag4, Flag5);
  return def;
}

void TCTIndexDefs::Assign(const TCTIndexDefs& Source) {
  if (&Source == this) return;
  Clear();
  for (int i = 0; i < Source.Count(); ++i) {
    const TCTIndexDef* item = Source.Items(i);
    Add(item->Name(), item->GetFields(), item->GetExpression(), item->Flag4(), item->Flag5(), item->Options());
  }
}

}  // namespace CTTables
