// TDataSet: fields (creation, binding, calculated and lookup values, field data transfer)
// (framework layer).
#include <cstring>
#include <vector>

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TBlobField.h"
#include "TDataSet.h"
#include "TFieldClasses.h"

namespace fw {

namespace {

bool SameFamily(TFieldType a, TFieldType b) {
  auto isString = [](TFieldType t) { return t == ftString || t == ftFixedChar; };
  auto isInteger = [](TFieldType t) { return t == ftInteger || t == ftAutoInc; };
  return a == b || (isString(a) && isString(b)) || (isInteger(a) && isInteger(b)) ||
         (ftBlobTypes.Contains(a) && ftBlobTypes.Contains(b));
}

}  // namespace

void TDataSet::CreateFields() {
  for (int i = 0; i < FFieldDefs->Count(); ++i) {
    TFieldDef* def = FFieldDefs->Items(i);
    if (def->DataType() != ftUnknown && !def->Attributes().Contains(faHiddenCol)) def->CreateField(this);
  }
}

void TDataSet::DestroyFields() { FFields->Clear(); }

void TDataSet::FreeFieldBuffers() {
  for (int i = 0; i < FFields->Count(); ++i)
    if (auto* blob = dynamic_cast<TBlobField*>(FFields->Fields(i))) blob->SetModified(false);
}

void TDataSet::BindFields(bool Binding) {
  FCalcFieldsSize = 0;
  int blobCount = 0;
  for (int i = 0; i < FFields->Count(); ++i) {
    TField* field = FFields->Fields(i);
    if (!Binding) {
      field->FFieldNo = 0;
      field->FLookupList.clear();
      continue;
    }
    if (field->FieldKind() == fkCalculated || field->FieldKind() == fkLookup) {
      field->FFieldNo = -1;
      field->FOffset = FCalcFieldsSize;
      FCalcFieldsSize += field->DataSize() + 1;
      if (field->FieldKind() == fkLookup) {
        if (field->FLookupDataSet == nullptr || field->FKeyFields.empty() ||
            field->FLookupKeyFields.empty() || field->FLookupResultField.empty())
          DatabaseError(FmtMsg(SLookupInfoError, {field->DisplayName()}), this);
        std::vector<TField*> keys;
        GetFieldList(keys, field->FKeyFields);
        field->FLookupDataSet->Open();
        std::vector<TField*> lookupKeys;
        field->FLookupDataSet->GetFieldList(lookupKeys, field->FLookupKeyFields);
        field->FLookupDataSet->FieldByName(field->FLookupResultField);
        if (field->FLookupCache) field->RefreshLookupList();
      }
      continue;
    }
    const int defIndex = FFieldDefs->IndexOf(field->FieldName());
    if (defIndex < 0) DatabaseError(FmtMsg(SFieldNotFound, {field->DisplayName()}), this);
    TFieldDef* def = FFieldDefs->Items(defIndex);
    if (!SameFamily(field->DataType(), def->DataType()))
      DatabaseError(FmtMsg(SFieldTypeMismatch, {field->DisplayName()}), this);
    field->FFieldNo = def->FieldNo();
    field->FFieldDef = def;
    if (field->FieldKind() == fkInternalCalc) FInternalCalcFields = true;
    if (field->IsBlob()) {
      field->FSize = def->Size();
      field->FOffset = blobCount++;
    }
  }
}

void TDataSet::GetCalcFields(TRecordBuffer Buffer) {
  if (FCalcFieldsSize <= 0 && !FInternalCalcFields) return;
  TTempState guard(this, dsCalcFields);
  CalculateFields(Buffer);
}

void TDataSet::CalculateFields(TRecordBuffer Buffer) {
  FCalcBuffer = Buffer;
  if (FState != dsInternalCalc && !FIsUniDirectional) {
    ClearCalcFields(Buffer);
    CalculateLookupFields(Buffer);
  }
  DoOnCalcFields();
}

void TDataSet::CalculateLookupFields(TRecordBuffer) {
  for (int i = 0; i < FFields->Count(); ++i) {
    TField* field = FFields->Fields(i);
    if (field->FieldKind() == fkLookup) field->SetValue(field->CalcLookupValue());
  }
}

// --- Field data -------------------------------------------------------------------------------

bool TDataSet::GetFieldData(TField* Field, void* Buffer) { return false; }

bool TDataSet::GetFieldData(TField* Field, void* Buffer, bool NativeFormat) {
  if (NativeFormat) return GetFieldData(Field, Buffer);
  std::vector<char> native(static_cast<std::size_t>(std::max(Field->DataSize(), 1)));
  if (!GetFieldData(Field, native.data())) return false;
  if (Buffer != nullptr) DataConvert(Field, native.data(), Buffer, false);
  return true;
}

void TDataSet::SetFieldData(TField* Field, const void* Buffer) {
  if (!dsWriteModes.Contains(FState)) DatabaseError(SNotEditing, this);
}

void TDataSet::SetFieldData(TField* Field, const void* Buffer, bool NativeFormat) {
  if (NativeFormat || Buffer == nullptr) {
    SetFieldData(Field, Buffer);
    return;
  }
  std::vector<char> native(static_cast<std::size_t>(std::max(Field->DataSize(), 1)));
  DataConvert(Field, Buffer, native.data(), true);
  SetFieldData(Field, native.data());
}

void TDataSet::DataConvert(TField* Field, const void* Source, void* Dest, bool ToNative) {
  ConvertFieldData(Field, Source, Dest, ToNative);
}

// --- Access helpers ---------------------------------------------------------------------------

// Every name up to the end of the text is looked up, blank ones too (" " raises field not
// found); only the empty text, and nothing after a final ";", gives no name.
void TDataSet::GetFieldList(std::vector<TField*>& List, const std::string& FieldNames) const {
  std::size_t pos = 0;
  while (pos < FieldNames.size()) {
    std::size_t end = FieldNames.find(';', pos);
    if (end == std::string::npos) end = FieldNames.size();
    List.push_back(FieldByName(Trim(std::string_view(FieldNames).substr(pos, end - pos))));
    pos = end + 1;
  }
}

Variant TDataSet::FieldValues(const std::string& Names) const {
  if (Names.find(';') == std::string::npos) return FieldByName(Trim(Names))->Value();
  std::vector<TField*> fields;
  GetFieldList(fields, Names);
  std::vector<Variant> values;
  values.reserve(fields.size());
  for (TField* field : fields) values.push_back(field->Value());
  return VarArrayOf(std::move(values));
}

void TDataSet::SetFieldValues(const std::string& Names, const Variant& Value) {
  if (!VarIsArray(Value)) {
    FieldByName(Trim(Names))->SetValue(Value);
    return;
  }
  std::vector<TField*> fields;
  GetFieldList(fields, Names);
  for (std::size_t i = 0; i < fields.size(); ++i) fields[i]->SetValue(Value[static_cast<int>(i)]);
}

TFieldClass TDataSet::GetFieldClass(TFieldType FieldType) const { return DefaultFieldClass(FieldType); }

}  // namespace fw
