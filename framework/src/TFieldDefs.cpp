// TFieldDef and TFieldDefs: the definitions of a dataset's stored columns (framework layer).
#include "TFieldDefs.h"

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TDataSet.h"
#include "TFieldClasses.h"

namespace fw {

// --- TFieldDef --------------------------------------------------------------------------------

TFieldDef::TFieldDef(TCollection* Owner) : TCollectionItem(Owner) { FFieldNo = Index() + 1; }

TFieldDefs* TFieldDef::FieldDefs() const { return dynamic_cast<TFieldDefs*>(Collection()); }

void TFieldDef::SetName(const std::string& Value) {
  if (Value == FName) return;
  if (TFieldDefs* defs = FieldDefs()) {
    const int other = defs->IndexOf(Value);
    if (other >= 0 && defs->Items(other) != this)
      DatabaseError(FmtMsg(SDuplicateFieldName, {Value}), defs->DataSet());
  }
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
  TFieldDefs* defs = FieldDefs();
  TDataSet* dataSet = defs != nullptr ? defs->DataSet() : nullptr;
  return dataSet != nullptr ? dataSet->GetFieldClass(FDataType) : DefaultFieldClass(FDataType);
}

TField* TFieldDef::CreateField(TComponent* Owner) {
  TFieldDefs* defs = FieldDefs();
  TDataSet* dataSet = defs != nullptr ? defs->DataSet() : nullptr;
  const TFieldClass create = FieldClass();
  if (create == nullptr) DatabaseError(FmtMsg(SNoFieldClass, {FName}), dataSet);
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
    field->SetDataSet(dataSet);
  } catch (...) {
    field->Free();
    throw;
  }
  return field;
}

void TFieldDef::Assign(const TPersistent& Source) {
  const auto* other = dynamic_cast<const TFieldDef*>(&Source);
  if (other == nullptr) {
    TCollectionItem::Assign(Source);
    return;
  }
  FName = other->FName;
  FDataType = other->FDataType;
  FSize = other->FSize;
  FPrecision = other->FPrecision;
  FAttributes = other->FAttributes;
  FInternalCalcField = other->FInternalCalcField;
  Changed();
}

const TClassInfo& TFieldDef::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TFieldDef>("TFieldDef", &TCollectionItem::StaticClass())
          .Property("Name", &TFieldDef::Name, &TFieldDef::SetName, "")
          .Set("Attributes", {"faHiddenCol", "faReadonly", "faRequired", "faLink", "faUnNamed", "faFixed"},
               &TFieldDef::Attributes, &TFieldDef::SetAttributes, Variant(static_cast<long long>(0)))
          .Enum("DataType", FieldTypeNames(), &TFieldDef::DataType, &TFieldDef::SetDataType, 0)
          .Property("Precision", &TFieldDef::Precision, &TFieldDef::SetPrecision, 0)
          .Property("Size", &TFieldDef::Size, &TFieldDef::SetSize, 0)
          .Build();
  return info;
}

// --- TFieldDefs -------------------------------------------------------------------------------

TFieldDefs::TFieldDefs(TDataSet* ADataSet) : TCollection(ADataSet), FDataSet(ADataSet) { SetPropName("FieldDefs"); }

TFieldDef* TFieldDefs::Add(const std::string& Name, TFieldType DataType, int Size, bool Required) {
  if (Name.empty()) DatabaseError(SEmptyFieldDefName, FDataSet);
  if (IndexOf(Name) >= 0) DatabaseError(FmtMsg(SDuplicateFieldName, {Name}), FDataSet);
  BeginUpdate();
  TFieldDef* def = nullptr;
  try {
    def = static_cast<TFieldDef*>(TCollection::Add());
    def->SetName(Name);
    def->SetDataType(DataType);
    def->SetSize(Size);
    def->SetRequired(Required);
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
  return def;
}

TFieldDef* TFieldDefs::AddFieldDef() {
  std::string name;
  for (int n = Count() + 1;; ++n) {
    name = "Field" + std::to_string(n);
    if (IndexOf(name) < 0) break;
  }
  auto* def = static_cast<TFieldDef*>(TCollection::Add());
  def->SetName(name);
  return def;
}

void TFieldDefs::Assign(const TPersistent& Source) {
  if (&Source == this) return;
  if (FDataSet != nullptr)
    for (int i = 0; i < FDataSet->FieldCount(); ++i) FDataSet->Fields()->Fields(i)->FFieldDef = nullptr;
  TCollection::Assign(Source);
  // Copies keep the column numbers of their originals.
  if (const auto* other = dynamic_cast<const TFieldDefs*>(&Source))
    for (int i = 0; i < Count() && i < other->Count(); ++i) Items(i)->SetFieldNo(other->Items(i)->FieldNo());
}

int TFieldDefs::IndexOf(const std::string& Name) const {
  for (int i = 0; i < Count(); ++i)
    if (SameText(Items(i)->Name(), Name)) return i;
  return -1;
}

TFieldDef* TFieldDefs::Find(const std::string& Name) const {
  const int index = IndexOf(Name);
  if (index < 0) DatabaseError(FmtMsg(SFieldNotFound, {Name}), FDataSet);
  return Items(index);
}

std::vector<std::string> TFieldDefs::GetItemNames() const {
  std::vector<std::string> names;
  for (int i = 0; i < Count(); ++i) names.push_back(Items(i)->Name());
  return names;
}

void TFieldDefs::Update() {
  if (FUpdated) return;
  if (FDataSet != nullptr) FDataSet->InitFieldDefs();
  FUpdated = true;
}

void TFieldDefs::Update(TCollectionItem*) {
  if (FDataSet != nullptr && !FDataSet->ComponentState().Contains(csDestroying))
    FDataSet->DataEvent(dePropertyChange, 0);
}

const TClassInfo& TFieldDefs::StaticClass() {
  static const TClassInfo info("TFieldDefs", &TCollection::StaticClass());
  return info;
}

}  // namespace fw
