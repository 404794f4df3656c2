// TIndexDef and TIndexDefs: the definitions of a dataset's indexes (framework layer).
#include "TIndexDefs.h"

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TDataSet.h"

namespace fw {

// --- TIndexDef --------------------------------------------------------------------------------

TIndexDef::TIndexDef(TCollection* Owner) : TCollectionItem(Owner) {}

TIndexDefs* TIndexDef::IndexDefs() const { return dynamic_cast<TIndexDefs*>(Collection()); }

void TIndexDef::SetDescFields(const std::string& Value) {
  FDescFields = Value;
  if (!Value.empty()) FOptions.Include(ixDescending);
}

void TIndexDef::SetCaseInsFields(const std::string& Value) {
  FCaseInsFields = Value;
  if (!Value.empty()) FOptions.Include(ixCaseInsensitive);
}

void TIndexDef::Assign(const TPersistent& Source) {
  const auto* other = dynamic_cast<const TIndexDef*>(&Source);
  if (other == nullptr) {
    TCollectionItem::Assign(Source);
    return;
  }
  FName = other->FName;
  FFields = other->FFields;
  FOptions = other->FOptions;
  FExpression = other->FExpression;
  FDescFields = other->FDescFields;
  FCaseInsFields = other->FCaseInsFields;
  FSource = other->FSource;
}

const TClassInfo& TIndexDef::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TIndexDef>("TIndexDef", &TCollectionItem::StaticClass())
          .Property("Name", &TIndexDef::Name, &TIndexDef::SetName, "")
          .Property("CaseInsFields", &TIndexDef::CaseInsFields, &TIndexDef::SetCaseInsFields, "")
          .Property("DescFields", &TIndexDef::DescFields, &TIndexDef::SetDescFields, "")
          .Property("Expression", &TIndexDef::Expression, &TIndexDef::SetExpression, "")
          .Property("Fields", &TIndexDef::Fields, &TIndexDef::SetFields, "")
          .Set("Options", {"ixPrimary", "ixUnique", "ixDescending", "ixCaseInsensitive", "ixExpression", "ixNonMaintained"},
               &TIndexDef::Options, &TIndexDef::SetOptions, Variant(static_cast<long long>(0)))
          .Property("Source", &TIndexDef::Source, &TIndexDef::SetSource, "")
          .Build();
  return info;
}

// --- TIndexDefs -------------------------------------------------------------------------------

TIndexDefs::TIndexDefs(TDataSet* ADataSet) : TCollection(ADataSet), FDataSet(ADataSet) { SetPropName("IndexDefs"); }

TIndexDef* TIndexDefs::Add(const std::string& Name, const std::string& Fields, TIndexOptions Options) {
  auto* def = static_cast<TIndexDef*>(TCollection::Add());
  def->SetName(Name);
  def->SetFields(Fields);
  def->SetOptions(Options);
  return def;
}

TIndexDef* TIndexDefs::AddIndexDef() {
  std::string name;
  for (int n = Count() + 1;; ++n) {
    name = "Index" + std::to_string(n);
    if (IndexOf(name) < 0) break;
  }
  auto* def = static_cast<TIndexDef*>(TCollection::Add());
  def->SetName(name);
  return def;
}

int TIndexDefs::IndexOf(const std::string& Name) const {
  for (int i = 0; i < Count(); ++i)
    if (SameText(Items(i)->Name(), Name)) return i;
  return -1;
}

TIndexDef* TIndexDefs::Find(const std::string& Name) const {
  const int index = IndexOf(Name);
  if (index < 0) DatabaseError(FmtMsg(SIndexNotFound, {Name}), FDataSet);
  return Items(index);
}

std::vector<std::string> TIndexDefs::GetItemNames() const {
  std::vector<std::string> names;
  for (int i = 0; i < Count(); ++i) names.push_back(Items(i)->Name());
  return names;
}

TIndexDef* TIndexDefs::GetIndexForFields(const std::string& Fields, bool CaseInsensitive) const {
  for (int i = 0; i < Count(); ++i) {
    TIndexDef* item = Items(i);
    const TIndexOptions options = item->Options();
    if (SameText(item->Fields(), Fields) && !options.Contains(ixDescending) && !options.Contains(ixExpression) &&
        (!CaseInsensitive || options.Contains(ixCaseInsensitive)))
      return item;
  }
  TIndexDef* best = nullptr;
  for (int i = 0; i < Count() && !Fields.empty(); ++i) {
    TIndexDef* item = Items(i);
    const std::string& fields = item->Fields();
    if (fields.size() < Fields.size()) continue;
    if (!SameText(std::string_view(fields).substr(0, Fields.size()), Fields)) continue;
    if (fields.size() != Fields.size() && fields[Fields.size()] != ';') continue;
    if (item->Options().Contains(ixExpression) || item->Options().Contains(ixDescending)) continue;
    if (CaseInsensitive && !item->Options().Contains(ixCaseInsensitive)) continue;
    if (best == nullptr || fields.size() < best->Fields().size()) best = item;
  }
  return best;
}

TIndexDef* TIndexDefs::FindIndexForFields(const std::string& Fields) const {
  TIndexDef* def = GetIndexForFields(Fields, false);
  if (def == nullptr) DatabaseError(FmtMsg(SNoIndexForFields, {Fields}), FDataSet);
  return def;
}

void TIndexDefs::Update() {
  if (FUpdated) return;
  if (FDataSet != nullptr) FDataSet->UpdateIndexDefs();
  FUpdated = true;
}

const TClassInfo& TIndexDefs::StaticClass() {
  static const TClassInfo info("TIndexDefs", &TCollection::StaticClass());
  return info;
}

}  // namespace fw
