// TCTTable: master/detail linking, the detail following its master's current record (dataset, unit CTTables).
#include <set>

#include "DataSetTypes.h"
#include "Exception.h"
#include "StringUtils.h"
#include "TCTMasterDataLink.h"
#include "TCTTable.h"
#include "TDataSource.h"

namespace CTTables {

namespace {

constexpr int kMaxIndexPositions = 256;

}  // namespace

// --- Field lists --------------------------------------------------------------------------------

void TCTTable::GetMasterFieldList(std::vector<fw::TField*>& List, const std::string& FieldNames,
                                  const fw::TDataSet* DataSet) {
  // Keeps the left side of every "Master=Detail" pair and the ";" separators.
  std::string names;
  bool skipping = false;
  for (const char c : FieldNames) {
    if (c == ';') skipping = false;
    else if (c == '=') skipping = true;
    if (!skipping) names += c;
  }
  if (names.empty()) return;
  DataSet->GetFieldList(List, names);
}

void TCTTable::GetDetailFieldList(std::vector<fw::TField*>& List, const std::string& FieldNames,
                                  const fw::TDataSet* DataSet) {
  // Keeps the right side of every pair. Only the last entry is trimmed: the framework's lookup
  // trims every name anyway, so the asymmetry is harmless and kept.
  std::string names, token;
  for (const char c : FieldNames) {
    token += c;
    if (c == '=') {
      token.clear();
    } else if (c == ';') {
      names += token;
      token.clear();
    }
  }
  token = fw::Trim(token);
  if (!token.empty()) names += token;
  if (names.empty()) return;
  DataSet->GetFieldList(List, names);
}

// --- Properties -----------------------------------------------------------------------------------

fw::TDataSource* TCTTable::MasterSource() const { return FMasterLink->DataSource(); }

void TCTTable::SetMasterSource(fw::TDataSource* Value) {
  // A master chain leading back to this table would make every record change recurse forever.
  for (const fw::TDataSource* source = Value; source != nullptr && source->DataSet() != nullptr;
       source = source->DataSet()->DataSource())
    if (source->DataSet() == this) fw::DatabaseError("Circular datalinks are not allowed", this);
  FMasterLink->SetDataSource(Value);
}

const std::string& TCTTable::MasterFields() const { return FMasterLink->FieldNames(); }

void TCTTable::SetMasterFields(const std::string& Value) {
  if (ComponentState().Contains(fw::csLoading)) {
    FPendingMasterFields = Value;
    return;
  }
  FPendingMasterFields.clear();
  if (Active()) {
    std::set<int> indexed;
    for (int i = 0; i < GetIndexFieldCount() && i < kMaxIndexPositions; ++i) indexed.insert(GetIndexField(i)->Index());
    std::vector<fw::TField*> details;
    GetDetailFieldList(details, Value, this);
    for (const fw::TField* field : details)
      if (field->Index() >= kMaxIndexPositions || !indexed.contains(field->Index()))
        throw fw::Exception("Field : " + field->FieldName() + " not in the current index");
  }
  FMasterLink->SetFieldNames(Value);
}

fw::TDataSource* TCTTable::DataSource() const { return FMasterLink->DataSource(); }

// --- Following the master -------------------------------------------------------------------------

void TCTTable::SetUpMasterFields() {
  FMasterFieldList->Clear();
  const std::string& text = MasterFields();
  int pos = 1;
  while (pos <= static_cast<int>(text.size())) FMasterFieldList->Add(fw::ExtractFieldName(text, pos));
}

void TCTTable::SetUpMasterRange() {
  if (MasterFields().empty() || !FMasterLink->Active()) return;
  SetUpMasterFields();
  if (FMasterFieldList->Count() == 0) return;
  FRangeFlag = rfMasterDetail;
  fw::TDataSet* master = FMasterLink->DataSet();
  CreateRangeBuffer(FRangeStart, master, FMasterFieldList.get());
  CreateRangeBuffer(FRangeEnd, master, FMasterFieldList.get());
}

void TCTTable::MasterLinkChange(TCTMasterDataLink* Sender) {
  if (State() == fw::dsInactive) return;
  CheckBrowseMode();
  SetUpMasterFields();
  if (FMasterFieldList->Count() == 0) return;
  DisableControls();
  try {
    fw::TDataSet* master = MasterSource() != nullptr ? MasterSource()->DataSet() : nullptr;
    if (master == nullptr || !master->Active()) {
      CancelRange();
      // Enabling here and again below is kept on purpose: the second call is a no-op unless
      // someone else disabled the controls, matching the established behaviour.
      EnableControls();
    } else {
      FRangeFlag = rfMasterDetail;
      CreateRangeBuffer(FRangeStart, master, FMasterFieldList.get());
      CreateRangeBuffer(FRangeEnd, master, FMasterFieldList.get());
      ApplyRange();
    }
  } catch (...) {
    EnableControls();
    throw;
  }
  EnableControls();
}

void TCTTable::MasterLinkDisable(TCTMasterDataLink* Sender) {
  FRangeFlag = rfNone;
  CancelRange();
  Refresh();
}

void TCTTable::DoAfterOpen() {
  if (FRangeFlag == rfMasterDetail) MasterLinkChange(FMasterLink.get());
  Ctdb::TCTCustomDataSet::DoAfterOpen();
}

void TCTTable::DoOnNewRecord() {
  // A new detail record starts with its master's key values, so that it lands inside the
  // master's range once posted; OnNewRecord may still change them.
  fw::TDataSet* master = FMasterLink->Active() ? FMasterLink->DataSet() : nullptr;
  if (master != nullptr && FRangeFlag == rfMasterDetail && !master->IsEmpty()) {
    for (int i = 0; i < FMasterFieldList->Count(); ++i) {
      const std::string entry = FMasterFieldList->Strings(i);
      const size_t equals = entry.find('=');
      const std::string masterName = equals == std::string::npos ? entry : entry.substr(0, equals);
      const std::string detailName = equals == std::string::npos ? entry : entry.substr(equals + 1);
      FieldByName(detailName)->SetValue(master->FieldByName(masterName)->Value());
    }
  }
  Ctdb::TCTCustomDataSet::DoOnNewRecord();
}

}  // namespace CTTables
