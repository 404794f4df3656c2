// TIndexDef and TIndexDefs: the definitions of a dataset's indexes (framework layer).
#include "TIndexDefs.h"

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TDataSet.h"

namespace fw {

// --- TIndexDef --------------------------------------------------------------------------------

TIndexDef::TIndexDef(TIndexDefs* Owner) : FCollection(Owner) { Owner->FItems.emplace_back(this); }

int TIndexDef::Index() const {
  for (int i = 0; i < FCollection->Count(); ++i)
    if (FCollection->Items(i) == this) return i;
  return -1;
}

void TIndexDef::SetDescFields(const std::string& Value) {
  FDescFields = Value;
  if (!Value.empty()) FOptions.Include(ixDescending);
}

void TIndexDef::SetCaseInsFields(const std::string& Value) {
  FCaseInsFields = Value;
  if (!Value.empty()) FOptions.Include(ixCaseInsensitive);
}

void TIndexDef::Assign(const TIndexDef& Source) {
  FName = Source.FName;
  FFields = Source.FFields;
  FOptions = Source.FOptions;
  FExpression = Source.FExpression;
  FDescFields = Source.FDescFields;
  FCaseInsFields = Source.FCaseInsFields;
  FSource = Source.FSource;
}

// --- TIndexDefs -------------------------------------------------------------------------------

TIndexDef* TIndexDefs::Items(int Index) const {
  if (Index < 0 || Index >= Count()) DatabaseError(SFieldDefIndexError, FDataSet);
  return FItems[static_cast<std::size_t>(Index)].get();
}

TIndexDef* TIndexDefs::Add(const std::string& Name, const std::string& Fields, TIndexOptions Options) {
  TIndexDef* def = AddIndexDef();
  if (!Name.empty()) def->SetName(Name);
  def->SetFields(Fields);
  def->SetOptions(Options);
  return def;
}

TIndexDef* TIndexDefs::AddIndexDef() {
  auto* def = new TIndexDef(this);
  for (int n = Count();; ++n) {
    const std::string name = "Index" + std::to_string(n);
    if (IndexOf(name) < 0) {
      def->SetName(name);
      break;
    }
  }
  return def;
}

void TIndexDefs::Assign(const TIndexDefs& Source) {
  if (&Source == this) return;
  FItems.clear();
  for (const auto& item : Source.FItems) (new TIndexDef(this))->Assign(*item);
}

int TIndexDefs::IndexOf(const std::string& Name) const {
  for (std::size_t i = 0; i < FItems.size(); ++i)
    if (SameText(FItems[i]->Name(), Name)) return static_cast<int>(i);
  return -1;
}

TIndexDef* TIndexDefs::Find(const std::string& Name) const {
  const int index = IndexOf(Name);
  if (index < 0) DatabaseError(FmtMsg(SIndexNotFound, {Name}), FDataSet);
  return FItems[static_cast<std::size_t>(index)].get();
}

std::vector<std::string> TIndexDefs::GetItemNames() const {
  std::vector<std::string> names;
  for (const auto& item : FItems) names.push_back(item->Name());
  return names;
}

TIndexDef* TIndexDefs::GetIndexForFields(const std::string& Fields, bool CaseInsensitive) const {
  for (const auto& item : FItems) {
    const TIndexOptions options = item->Options();
    if (SameText(item->Fields(), Fields) && !options.Contains(ixDescending) &&
        !options.Contains(ixExpression) && (!CaseInsensitive || options.Contains(ixCaseInsensitive)))
      return item.get();
  }
  TIndexDef* best = nullptr;
  for (const auto& item : FItems) {
    const std::string& fields = item->Fields();
    if (fields.size() < Fields.size() || Fields.empty()) continue;
    if (!SameText(std::string_view(fields).substr(0, Fields.size()), Fields)) continue;
    if (fields.size() != Fields.size() && fields[Fields.size()] != ';') continue;
    if (item->Options().Contains(ixExpression)) continue;
    if (CaseInsensitive && !item->Options().Contains(ixCaseInsensitive)) continue;
    if (best == nullptr || fields.size() < best->Fields().size()) best = item.get();
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

}  // namespace fw
