// TFields: the ordered list of a dataset's fields (framework layer).
#include "TFields.h"

#include <algorithm>

#include "DataSetMessages.h"
#include "StringUtils.h"
#include "TDataSet.h"

namespace fw {

TField* TFields::Fields(int Index) const {
  if (Index < 0 || Index >= Count()) DatabaseError(SFieldIndexError, FDataSet);
  return FList[static_cast<std::size_t>(Index)];
}

int TFields::IndexOf(const TField* Field) const {
  const auto it = std::find(FList.begin(), FList.end(), Field);
  return it == FList.end() ? -1 : static_cast<int>(it - FList.begin());
}

TField* TFields::FindField(const std::string& FieldName) const {
  for (TField* field : FList)
    if (SameText(field->FieldName(), FieldName)) return field;
  return nullptr;
}

TField* TFields::FieldByName(const std::string& FieldName) const {
  TField* field = FindField(FieldName);
  if (field == nullptr) DatabaseError(FmtMsg(SFieldNotFound, {FieldName}), FDataSet);
  return field;
}

TField* TFields::FieldByNumber(int FieldNo) const {
  for (TField* field : FList)
    if (field->FieldNo() == FieldNo) return field;
  return nullptr;
}

std::vector<std::string> TFields::GetFieldNames() const {
  std::vector<std::string> names;
  names.reserve(FList.size());
  for (const TField* field : FList) names.push_back(field->FieldName());
  return names;
}

void TFields::CheckFieldName(const std::string& FieldName, const TField* Except) const {
  if (FieldName.empty()) return;
  for (const TField* field : FList)
    if (field != Except && SameText(field->FieldName(), FieldName))
      DatabaseError(FmtMsg(SDuplicateFieldName, {FieldName}), FDataSet);
}

void TFields::Add(TField* Field) {
  CheckFieldName(Field->FieldName());
  FList.push_back(Field);
  Field->FDataSet = FDataSet;
  Changed();
}

void TFields::Remove(TField* Field) {
  const auto it = std::find(FList.begin(), FList.end(), Field);
  if (it == FList.end()) return;
  FList.erase(it);
  Field->FDataSet = nullptr;
  Changed();
}

void TFields::Clear() {
  while (!FList.empty()) {
    TField* field = FList.back();
    FList.pop_back();
    field->FDataSet = nullptr;
    field->Free();
  }
  Changed();
}

void TFields::Move(int CurIndex, int NewIndex) {
  if (CurIndex < 0 || CurIndex >= Count()) return;
  NewIndex = std::clamp(NewIndex, 0, Count() - 1);
  if (NewIndex == CurIndex) return;
  TField* field = FList[static_cast<std::size_t>(CurIndex)];
  FList.erase(FList.begin() + CurIndex);
  FList.insert(FList.begin() + NewIndex, field);
  Changed();
}

void TFields::Changed() {
  if (FDataSet != nullptr && !FDataSet->ComponentState().Contains(csDestroying))
    FDataSet->DataEvent(deFieldListChange, 0);
}

}  // namespace fw
