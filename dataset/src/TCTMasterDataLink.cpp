// TCTMasterDataLink: the link by which a detail table follows its master's current record (dataset, unit CTTables).
#include "TCTMasterDataLink.h"

#include <algorithm>

#include "TCTTable.h"
#include "TDataSet.h"
#include "TDataSource.h"

namespace CTTables {

TCTMasterDataLink::TCTMasterDataLink(fw::TDataSet* Detail) : FDetail(Detail) {}

TCTMasterDataLink::~TCTMasterDataLink() = default;

void TCTMasterDataLink::ActiveChanged() {
  FFields.clear();
  const bool follow = FDetail->Active() && !FDetail->ComponentState().Contains(fw::csDestroying);
  if (Active()) {
    std::vector<fw::TField*> fields;
    try {
      TCTTable::GetMasterFieldList(fields, FFieldNames, DataSet());
    } catch (...) {
      // A name the master lacks: the detail is released from the old restriction before the
      // framework's error goes on.
      if (follow && OnMasterDisable) OnMasterDisable(this);
      throw;
    }
    FFields = std::move(fields);
  }
  if (!follow) return;
  if (Active() && !FFields.empty()) {
    if (OnMasterChange) OnMasterChange(this);
  } else if (OnMasterDisable) {
    OnMasterDisable(this);
  }
}

void TCTMasterDataLink::CheckBrowseMode() {
  if (FDetail->Active()) FDetail->CheckBrowseMode();
}

void TCTMasterDataLink::LayoutChanged() { ActiveChanged(); }

void TCTMasterDataLink::RecordChanged(fw::TField* Field) {
  if (DataSource() == nullptr || DataSource()->State() == fw::dsSetKey) return;
  if (!FDetail->Active() || FFields.empty()) return;
  if (Field != nullptr && std::find(FFields.begin(), FFields.end(), Field) == FFields.end()) return;
  if (OnMasterChange) OnMasterChange(this);
}

void TCTMasterDataLink::SetFieldNames(const std::string& Value) {
  if (Value == FFieldNames) return;
  const std::string previous = FFieldNames;
  FFieldNames = Value;
  try {
    ActiveChanged();
  } catch (...) {
    FFieldNames = previous;
    FFields.clear();
    throw;
  }
}

}  // namespace CTTables
