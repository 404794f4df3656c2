// TFieldDef and TFieldDefs: the definitions of a dataset's stored columns (framework layer).
#include "TFieldDefs.h"

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TDataSet.h"
#include "TFieldClasses.h"

namespace fw {

// --- TFieldDef --------------------------------------------------------------------------------

TFieldDef::TFieldDef(TFieldDefs* Owner) : FCollection(Owner) {
  FFieldNo = Owner->Count() + 1;
  Owner->FItems.emplace_back(this);
}

int TFieldDef::Index() const {
  for (int i = 0; i < FCollection->Count(); ++i)
    if (FCollection->Items(i) == this) return i;
  return -1;
}

void TFieldDef::SetName(const std::string& Value) {
  if (Value == FName) return;
  const int other = FCollection->IndexOf(Value);
  if (other >= 0 && FCollection->Items(other) != this)
    DatabaseError(FmtMsg(SDuplicateFieldName, {Value}), FCollection->DataSet());
  FName = Value;
  Changed();
}

void TFieldDef::SetDataType(TFieldType Value) {
  FDataType = Value;
  Changed();
}

void TFieldDef::SetSize(int Value) {
  FSize = Value;
  Changed();
}

void TFieldDef::SetPrecision(int Value) {
  FPrecision = Value;
  Changed();
}

void TFieldDef::SetRequired(bool Value) {
  if (Value)
    FAttributes.Include(faRequired);
  else
    FAttributes.Exclude(faRequired);
  Changed();
}

void TFieldDef::SetAttributes(TFieldAttributes Value) {
  FAttributes = Value;
  Changed();
}

void TFieldDef::SetInternalCalcField(bool Value) {
  FInternalCalcField = Value;
  Changed();
}

TFieldClass TFieldDef::FieldClass() const {
  TDataSet* dataSet = FCollection->DataSet();
  return dataSet != nullptr ? dataSet->GetFieldClass(FDataType) : DefaultFieldClass(FDataType);
}

TField* TFieldDef::CreateField(TComponent* Owner) {
  const TFieldClass create = FieldClass();
  if (create == nullptr) DatabaseError(FmtMsg(SNoFieldClass, {FName}), FCollection->DataSet());
  TField* field = create(Owner);
  try {
    field->SetSize(FSize);
    field->SetRequired(Required());
    field->SetFieldName(FName);
    field->FFieldNo = FFieldNo;
    // One class may serve several types (fixed-char strings, other blob kinds).
    field->SetDataType(FDataType);
    field->SetReadOnly(FAttributes.Contains(faReadonly));
    if (FInternalCalcField) field->SetFieldKind(fkInternalCalc);
    SetFieldPrecision(field, FPrecision);
    field->SetDataSet(FCollection->DataSet());
  } catch (...) {
    field->Free();
    throw;
  }
  return field;
}

void TFieldDef::Assign(const TFieldDef& Source) {
  FName = Source.FName;
  FDataType = Source.FDataType;
  FSize = Source.FSize;
  FPrecision = Source.FPrecision;
  FAttributes = Source.FAttributes;
  FInternalCalcField = Source.FInternalCalcField;
  Changed();
}

void TFieldDef::Changed() { FCollection->Changed(); }

// --- TFieldDefs -------------------------------------------------------------------------------

TFieldDef* TFieldDefs::Items(int Index) const {
  if (Index < 0 || Index >= Count()) DatabaseError(SFieldDefIndexError, FDataSet);
  return FItems[static_cast<std::size_t>(Index)].get();
}

TFieldDef* TFieldDefs::Add(const std::string& Name, TFieldType DataType, int Size, bool Required) {
  if (Name.empty()) DatabaseError(SEmptyFieldDefName, FDataSet);
  if (IndexOf(Name) >= 0) DatabaseError(FmtMsg(SDuplicateFieldName, {Name}), FDataSet);
  BeginUpdate();
  auto* def = new TFieldDef(this);
  def->FName = Name;
  def->FDataType = DataType;
  def->FSize = Size;
  if (Required) def->FAttributes.Include(faRequired);
  FChangedWhileUpdating = true;
  EndUpdate();
  return def;
}

TFieldDef* TFieldDefs::AddFieldDef() {
  auto* def = new TFieldDef(this);
  std::string name;
  for (int n = Count();; ++n) {
    name = "Field" + std::to_string(n);
    if (IndexOf(name) < 0) break;
  }
  def->FName = name;
  Changed();
  return def;
}

void TFieldDefs::Assign(const TFieldDefs& Source) {
  if (&Source == this) return;
  if (FDataSet != nullptr)
    for (int i = 0; i < FDataSet->FieldCount(); ++i) FDataSet->Fields()->Fields(i)->FFieldDef = nullptr;
  BeginUpdate();
  FItems.clear();
  for (const auto& item : Source.FItems) {
    auto* def = new TFieldDef(this);
    def->Assign(*item);
    def->FFieldNo = item->FFieldNo;
  }
  FChangedWhileUpdating = true;
  EndUpdate();
}

void TFieldDefs::Clear() {
  if (FItems.empty()) return;
  FItems.clear();
  Changed();
}

int TFieldDefs::IndexOf(const std::string& Name) const {
  for (std::size_t i = 0; i < FItems.size(); ++i)
    if (SameText(FItems[i]->Name(), Name)) return static_cast<int>(i);
  return -1;
}

TFieldDef* TFieldDefs::Find(const std::string& Name) const {
  const int index = IndexOf(Name);
  if (index < 0) DatabaseError(FmtMsg(SFieldNotFound, {Name}), FDataSet);
  return FItems[static_cast<std::size_t>(index)].get();
}

std::vector<std::string> TFieldDefs::GetItemNames() const {
  std::vector<std::string> names;
  for (const auto& item : FItems) names.push_back(item->Name());
  return names;
}

void TFieldDefs::Update() {
  if (FUpdated) return;
  if (FDataSet != nullptr) FDataSet->InitFieldDefs();
  FUpdated = true;
}

void TFieldDefs::EndUpdate() {
  if (FUpdateCount > 0) --FUpdateCount;
  if (FUpdateCount == 0 && FChangedWhileUpdating) {
    FChangedWhileUpdating = false;
    Changed();
  }
}

void TFieldDefs::Changed() {
  if (FUpdateCount > 0) {
    FChangedWhileUpdating = true;
    return;
  }
  if (FDataSet != nullptr && !FDataSet->ComponentState().Contains(csDestroying))
    FDataSet->DataEvent(dePropertyChange, 0);
}

}  // namespace fw
