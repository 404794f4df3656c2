// TField: the base field class: dataset membership, properties, data transfer, conversions
// (framework layer).
#include "TField.h"

#include <cstring>

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TDataSet.h"

namespace fw {

TField::TField(TComponent* AOwner) : TComponent(AOwner) {}

TField::~TField() {
  // Leave the list first: closing may destroy the dataset's default fields, and this one must
  // not be among them any more.
  TDataSet* dataSet = FDataSet;
  if (dataSet == nullptr) return;
  dataSet->FFields->Remove(this);
  if (!dataSet->ComponentState().Contains(csDestroying)) dataSet->Close();
}

// --- Dataset membership and properties --------------------------------------------------------

void TField::SetDataSet(TDataSet* Value) {
  if (Value == FDataSet) return;
  if (FDataSet != nullptr) FDataSet->CheckInactive();
  if (Value != nullptr) {
    Value->CheckInactive();
    Value->FFields->CheckFieldName(FFieldName);
  }
  if (FDataSet != nullptr) FDataSet->FFields->Remove(this);
  FDataSet = nullptr;
  if (Value != nullptr) Value->FFields->Add(this);
}

void TField::SetFieldName(const std::string& Value) {
  if (FDataSet != nullptr) FDataSet->FFields->CheckFieldName(Value, this);
  FFieldName = Value;
}

void TField::SetFieldKind(TFieldKind Value) {
  if (Value == FFieldKind) return;
  if (FDataSet != nullptr) FDataSet->CheckInactive();
  FFieldKind = Value;
}

void TField::SetSize(int Value) {
  if (FDataSet != nullptr) FDataSet->CheckInactive();
  CheckSize(Value);
  FSize = Value;
}

void TField::CheckSize(int Value) const {
  if (Value != 0) DatabaseError(SInvalidFieldSize, this);
}

int TField::Index() const { return FDataSet != nullptr ? FDataSet->FFields->IndexOf(this) : -1; }

void TField::SetIndex(int Value) {
  if (FDataSet == nullptr) return;
  FDataSet->FFields->Move(Index(), Value);
  PropertyChanged(true);
}

void TField::SetReadOnly(bool Value) {
  if (Value == FReadOnly) return;
  FReadOnly = Value;
  PropertyChanged(true);
}

void TField::SetVisible(bool Value) {
  if (Value == FVisible) return;
  FVisible = Value;
  PropertyChanged(true);
}

void TField::SetDisplayLabel(const std::string& Value) {
  // A label equal to the field name is no label: DisplayLabel keeps following FieldName.
  const std::string label = Value == FFieldName ? std::string() : Value;
  if (label == FDisplayLabel) return;
  FDisplayLabel = label;
  PropertyChanged(true);
}

void TField::SetDisplayWidth(int Value) {
  if (Value == FDisplayWidth) return;
  FDisplayWidth = Value;
  PropertyChanged(true);
}

void TField::SetAlignment(TAlignment Value) {
  if (Value == FAlignment) return;
  FAlignment = Value;
  PropertyChanged(true);
}

void TField::PropertyChanged(bool LayoutAffected) {
  if (FDataSet != nullptr && FDataSet->Active())
    FDataSet->DataEvent(LayoutAffected ? deLayoutChange : deDataSetChange, 0);
}

bool TField::CanModify() const {
  return !FReadOnly && (FFieldKind == fkData || FFieldKind == fkInternalCalc) && FDataSet != nullptr &&
         FDataSet->Active() && FDataSet->CanModify();
}

void TField::SetLookupDataSet(TDataSet* Value) {
  if (Value == FLookupDataSet) return;
  if (FDataSet != nullptr) FDataSet->CheckInactive();
  if (FLookupDataSet != nullptr) FLookupDataSet->RemoveFreeNotification(this);
  FLookupDataSet = Value;
  if (Value != nullptr) Value->FreeNotification(this);
}

void TField::Notification(TComponent* AComponent, TOperation Operation) {
  TComponent::Notification(AComponent, Operation);
  if (Operation == opRemove && AComponent == FLookupDataSet) {
    FLookupDataSet = nullptr;
    FLookupList.clear();
  }
}

// --- Data transfer ------------------------------------------------------------------------------

bool TField::GetData(void* Buffer, bool NativeFormat) const {
  if (FDataSet == nullptr) DatabaseError(FmtMsg(SNoDataSet, {DisplayName()}));
  if (FValidating) {
    if (FValueBuffer != nullptr && Buffer != nullptr) std::memcpy(Buffer, FValueBuffer, DataSize());
    return FValueBuffer != nullptr;
  }
  return FDataSet->GetFieldData(const_cast<TField*>(this), Buffer, NativeFormat);
}

void TField::SetData(const void* Buffer, bool NativeFormat) {
  if (FDataSet == nullptr) DatabaseError(FmtMsg(SNoDataSet, {DisplayName()}));
  FDataSet->SetFieldData(this, Buffer, NativeFormat);
}

bool TField::IsNull() const { return !GetData(nullptr); }

void TField::Clear() { SetData(nullptr); }

void TField::Validate(const void* Buffer) {
  if (!OnValidate) return;
  FValueBuffer = Buffer;
  FValidating = true;
  try {
    OnValidate(this);
  } catch (...) {
    FValidating = false;
    FValueBuffer = nullptr;
    throw;
  }
  FValidating = false;
  FValueBuffer = nullptr;
}

void TField::Change() {
  if (OnChange) OnChange(this);
}

void TField::FocusControl() {
  if (FDataSet == nullptr || !FDataSet->Active()) return;
  TField* self = this;
  FDataSet->DataEvent(deFocusControl, reinterpret_cast<intptr_t>(&self));
}

// --- Values -------------------------------------------------------------------------------------

void TField::AccessError(const std::string& TypeName) const {
  DatabaseError(FmtMsg(SInvalidTypeConversion, {TypeName, DisplayName()}));
}

void TField::InvalidValueError(const std::string& Text) const {
  DatabaseError(FmtMsg(SInvalidFieldValue, {DisplayName()}) + (Text.empty() ? "" : ": " + Text));
}

std::string TField::ClassDescription() const {
  std::string name = ClassName();
  if (!name.empty() && name[0] == 'T') name.erase(0, 1);
  if (name.size() > 5 && name.compare(name.size() - 5, 5, "Field") == 0) name.resize(name.size() - 5);
  return name;
}

std::string TField::GetAsString() const {
  const std::string name = ClassDescription();
  return "(" + (IsNull() ? LowerCase(name) : UpperCase(name)) + ")";
}
int32_t TField::GetAsInteger() const { AccessError("Integer"); }
int64_t TField::GetAsLargeInt() const { AccessError("LargeInt"); }
double TField::GetAsFloat() const { AccessError("Float"); }
Currency TField::GetAsCurrency() const { return DoubleToCurr(GetAsFloat()); }
bool TField::GetAsBoolean() const { AccessError("Boolean"); }
TDateTime TField::GetAsDateTime() const { AccessError("DateTime"); }
Variant TField::GetAsVariant() const { AccessError("Variant"); }

void TField::SetAsString(const std::string&) { AccessError("String"); }
void TField::SetAsInteger(int32_t) { AccessError("Integer"); }
void TField::SetAsLargeInt(int64_t) { AccessError("LargeInt"); }
void TField::SetAsFloat(double) { AccessError("Float"); }
void TField::SetAsCurrency(Currency Value) { SetAsFloat(CurrToDouble(Value)); }
void TField::SetAsBoolean(bool) { AccessError("Boolean"); }
void TField::SetAsDateTime(TDateTime) { AccessError("DateTime"); }
void TField::SetVarValue(const Variant&) { AccessError("Variant"); }

void TField::SetValue(const Variant& Value) {
  if (VarIsNull(Value)) {
    Clear();
    return;
  }
  try {
    SetVarValue(Value);
  } catch (const EVariantError&) {
    DatabaseError(FmtMsg(SInvalidVariantValue, {DisplayName()}));
  }
}

void TField::AssignValue(const Variant& Value) {
  if (VarIsEmpty(Value)) return;
  SetValue(Value);
}

void TField::Assign(const TField* Source) {
  if (Source == nullptr)
    Clear();
  else
    SetValue(Source->Value());
}

Variant TField::StateValue(TDataSetState TempState) const {
  if (FDataSet == nullptr) DatabaseError(FmtMsg(SNoDataSet, {DisplayName()}));
  TTempState guard(FDataSet, TempState);
  return Value();
}

Variant TField::OldValue() const { return StateValue(dsOldValue); }
Variant TField::NewValue() const { return StateValue(dsNewValue); }
Variant TField::CurValue() const { return StateValue(dsCurValue); }

void TField::SetNewValue(const Variant& Value) {
  if (FDataSet == nullptr) DatabaseError(FmtMsg(SNoDataSet, {DisplayName()}));
  TTempState guard(FDataSet, dsNewValue);
  SetValue(Value);
}

void TField::GetText(std::string& Text, bool) const { Text = GetAsString(); }

std::string TField::DisplayText() const {
  std::string text;
  if (OnGetText)
    OnGetText(const_cast<TField*>(this), text, true);
  else
    GetText(text, true);
  return text;
}

std::string TField::Text() const {
  std::string text;
  if (OnGetText)
    OnGetText(const_cast<TField*>(this), text, false);
  else
    GetText(text, false);
  return text;
}

void TField::SetText(const std::string& Value) {
  if (OnSetText)
    OnSetText(this, Value);
  else
    SetAsString(Value);
}

// --- Lookup ---------------------------------------------------------------------------------------

void TField::RefreshLookupList() {
  FLookupList.clear();
  if (FLookupDataSet == nullptr || !FLookupDataSet->Active()) return;
  TDataSet* lookup = FLookupDataSet;
  const TBookmark position = lookup->GetBookmark();
  lookup->DisableControls();
  try {
    for (lookup->First(); !lookup->Eof(); lookup->Next())
      FLookupList.emplace_back(lookup->FieldValues(FLookupKeyFields),
                               lookup->FieldValues(FLookupResultField));
    if (!position.empty()) lookup->GotoBookmark(position);
  } catch (...) {
    lookup->EnableControls();
    throw;
  }
  lookup->EnableControls();
}

Variant TField::CalcLookupValue() const {
  if (FLookupDataSet == nullptr || !FLookupDataSet->Active() || FDataSet == nullptr) return Null();
  const Variant key = FDataSet->FieldValues(FKeyFields);
  if (FLookupCache) {
    for (const auto& [k, v] : FLookupList)
      if (VarSameValue(k, key)) return v;
    return Null();
  }
  return FLookupDataSet->Lookup(FLookupKeyFields, key, FLookupResultField);
}

// --- Streaming ----------------------------------------------------------------------------------

TComponent* TField::GetParentComponent() const { return FDataSet; }

void TField::SetParentComponent(TComponent* Parent) {
  auto* dataSet = dynamic_cast<TDataSet*>(Parent);
  if (ComponentState().Contains(csLoading))
    FPendingDataSet = dataSet;
  else
    SetDataSet(dataSet);
}

void TField::ReadState(TReader& Reader) {
  TComponent::ReadState(Reader);
  if (FPendingDataSet != nullptr) {
    TDataSet* dataSet = FPendingDataSet;
    FPendingDataSet = nullptr;
    SetDataSet(dataSet);
  }
}

const TClassInfo& TField::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TField>("TField", &TComponent::StaticClass())
          .Enum("Alignment", {"taLeftJustify", "taRightJustify", "taCenter"}, &TField::Alignment,
                &TField::SetAlignment)
          .Property("DisplayLabel", &TField::DisplayLabel, &TField::SetDisplayLabel)
          .Property("DisplayWidth", &TField::DisplayWidth, &TField::SetDisplayWidth)
          .Property("EditMask", &TField::EditMask, &TField::SetEditMask, "")
          .Enum("FieldKind", {"fkData", "fkCalculated", "fkLookup", "fkInternalCalc"}, &TField::FieldKind,
                &TField::SetFieldKind, 0)
          .Property("FieldName", &TField::FieldName, &TField::SetFieldName, "")
          .Property("KeyFields", &TField::KeyFields, &TField::SetKeyFields, "")
          .Property("LookupCache", &TField::LookupCache, &TField::SetLookupCache, false)
          .Reference("LookupDataSet", &TField::LookupDataSet, &TField::SetLookupDataSet)
          .Property("LookupKeyFields", &TField::LookupKeyFields, &TField::SetLookupKeyFields, "")
          .Property("LookupResultField", &TField::LookupResultField, &TField::SetLookupResultField, "")
          .Property("ReadOnly", &TField::ReadOnly, &TField::SetReadOnly, false)
          .Property("Required", &TField::Required, &TField::SetRequired, false)
          .Property("Visible", &TField::Visible, &TField::SetVisible, true)
          .Build();
  return info;
}

}  // namespace fw
