// TfrmDetailEdit: indexes, fields and pairs of the master/detail link editor.
#include "TfrmDetailEdit.h"

#include <algorithm>

#include "Exception.h"
#include "StringUtils.h"
#include "TCTTable.h"
#include "TDataSet.h"
#include "TField.h"
#include "TFields.h"

namespace UnitDetailEdit {

namespace {

std::vector<std::string> SplitFieldList(const std::string& list) {
  std::vector<std::string> names;
  int pos = 1;
  while (pos <= static_cast<int>(list.size())) {
    std::string name = fw::ExtractFieldName(list, pos);
    if (!name.empty()) names.push_back(std::move(name));
  }
  return names;
}

// Which values a field holds, for telling whether a master value can seek a detail key.
enum ValueKind { vkText, vkNumber, vkDateTime, vkBoolean, vkOther };

ValueKind KindOf(fw::TFieldType type) {
  switch (type) {
    case fw::ftString:
    case fw::ftFixedChar:
    case fw::ftWideString:
    case fw::ftFixedWideChar:
    case fw::ftMemo:
    case fw::ftWideMemo:
      return vkText;
    case fw::ftSmallint:
    case fw::ftInteger:
    case fw::ftWord:
    case fw::ftFloat:
    case fw::ftCurrency:
    case fw::ftBCD:
    case fw::ftAutoInc:
    case fw::ftLargeint:
    case fw::ftFMTBcd:
    case fw::ftLongWord:
    case fw::ftShortint:
    case fw::ftByte:
    case fw::ftExtended:
    case fw::ftSingle:
      return vkNumber;
    case fw::ftDate:
    case fw::ftTime:
    case fw::ftDateTime:
    case fw::ftTimeStamp:
      return vkDateTime;
    case fw::ftBoolean:
      return vkBoolean;
    default:
      return vkOther;
  }
}

bool Pairable(fw::TFieldType a, fw::TFieldType b) {
  return KindOf(a) == vkOther || KindOf(b) == vkOther ? a == b : KindOf(a) == KindOf(b);
}

}  // namespace

TfrmDetailEdit::TfrmDetailEdit(CTTables::TCTTable& detail, fw::TDataSet& master)
    : FDetail(detail), FMaster(master) {
  fw::TIndexDefs& indexes = *FDetail.IndexDefs();
  indexes.Update();
  for (int i = 0; i < indexes.Count(); ++i) {
    if (indexes[i]->Name().empty()) continue;
    FIndexNames.push_back(indexes[i]->Name());
    FIndexFields.push_back(SplitFieldList(indexes[i]->Fields()));
  }
  if (FIndexNames.empty())
    throw fw::Exception("Table " + FDetail.Name() + " has no index to link its master through");

  fw::TFieldDefs& defs = *FDetail.FieldDefs();
  defs.Update();
  for (int i = 0; i < defs.Count(); ++i)
    FDetailFields.push_back({defs[i]->Name(), defs[i]->DataType()});
  if (FMaster.Active()) {
    for (int i = 0; i < FMaster.FieldCount(); ++i)
      FMasterFields.push_back(
          {FMaster.Fields()->Fields(i)->FieldName(), FMaster.Fields()->Fields(i)->DataType()});
  } else {
    fw::TFieldDefs& masterDefs = *FMaster.FieldDefs();
    masterDefs.Update();
    for (int i = 0; i < masterDefs.Count(); ++i)
      FMasterFields.push_back({masterDefs[i]->Name(), masterDefs[i]->DataType()});
  }

  FInitialIndex = FDetail.IndexName();
  for (size_t i = 0; i < FIndexNames.size(); ++i)
    if (fw::SameText(FIndexNames[i], FInitialIndex)) FIndex = i;
  FStartIndex = FIndex;
  TakeLinks(FDetail.MasterFields());
}

void TfrmDetailEdit::TakeLinks(const std::string& masterFields) {
  const std::vector<std::string>& keys = IndexFields();
  for (const std::string& entry : SplitFieldList(masterFields)) {
    const size_t eq = entry.find('=');
    const std::string masterName = fw::Trim(entry.substr(0, eq));
    const std::string detailName =
        eq == std::string::npos ? masterName : fw::Trim(entry.substr(eq + 1));
    const Field* masterField = FindMasterField(masterName);
    if (FLinks.size() >= keys.size() || !fw::SameText(keys[FLinks.size()], detailName) ||
        masterField == nullptr)
      break;
    FLinks.push_back({keys[FLinks.size()], masterField->Name});
  }
}

void TfrmDetailEdit::SelectIndex(const std::string& name) {
  for (size_t i = 0; i < FIndexNames.size(); ++i) {
    if (!fw::SameText(FIndexNames[i], name)) continue;
    if (i != FIndex) FLinks.clear();
    FIndex = i;
    return;
  }
  throw fw::Exception("Table " + FDetail.Name() + " has no index " + name);
}

const std::vector<std::string>& TfrmDetailEdit::IndexFields() const { return FIndexFields[FIndex]; }

std::vector<std::string> TfrmDetailEdit::DetailFields() const {
  const std::vector<std::string>& keys = IndexFields();
  return {keys.begin() + static_cast<std::ptrdiff_t>(std::min(FLinks.size(), keys.size())),
          keys.end()};
}

std::vector<std::string> TfrmDetailEdit::MasterFieldNames() const {
  std::vector<std::string> names;
  for (const Field& f : FMasterFields) names.push_back(f.Name);
  return names;
}

const TfrmDetailEdit::Field* TfrmDetailEdit::FindMasterField(const std::string& name) const {
  for (const Field& f : FMasterFields)
    if (fw::SameText(f.Name, name)) return &f;
  return nullptr;
}

fw::TFieldType TfrmDetailEdit::DetailFieldType(const std::string& name) const {
  for (const Field& f : FDetailFields)
    if (fw::SameText(f.Name, name)) return f.Type;
  return fw::ftUnknown;
}

void TfrmDetailEdit::AddLink(const std::string& detailField, const std::string& masterField) {
  const std::vector<std::string>& keys = IndexFields();
  size_t position = keys.size();
  for (size_t i = 0; i < keys.size(); ++i)
    if (fw::SameText(keys[i], detailField)) position = i;
  if (position == keys.size())
    throw fw::Exception(detailField + " is not a key field of index " + IndexName());
  if (position < FLinks.size()) throw fw::Exception(keys[position] + " is linked already");
  if (position > FLinks.size())
    throw fw::Exception("Link " + keys[FLinks.size()] +
                        " first: the links follow the key fields of " + IndexName() + " in order");
  const Field* master = FindMasterField(masterField);
  if (master == nullptr) throw fw::Exception(FMaster.Name() + " has no field " + masterField);
  if (!Pairable(DetailFieldType(keys[position]), master->Type))
    throw fw::Exception("Fields " + keys[position] + " and " + master->Name +
                        " hold different kinds of values");
  FLinks.push_back({keys[position], master->Name});
}

void TfrmDetailEdit::DeleteLink(int index) {
  if (index < 0 || static_cast<size_t>(index) >= FLinks.size())
    throw fw::EListError("List index out of bounds (" + std::to_string(index) + ")");
  FLinks.resize(static_cast<size_t>(index));
}

std::string TfrmDetailEdit::MasterFieldsText() const {
  std::string text;
  for (const TFieldLink& link : FLinks) {
    if (!text.empty()) text += ';';
    text += fw::SameText(link.MasterField, link.DetailField)
                ? link.DetailField
                : link.MasterField + "=" + link.DetailField;
  }
  return text;
}

void TfrmDetailEdit::Apply() {
  const bool switchIndex = FIndex != FStartIndex;
  try {
    if (switchIndex) FDetail.SetIndexName(IndexName());
    FDetail.SetMasterFields(MasterFieldsText());
  } catch (...) {
    if (switchIndex) FDetail.SetIndexName(FInitialIndex);
    throw;
  }
}

}  // namespace UnitDetailEdit
