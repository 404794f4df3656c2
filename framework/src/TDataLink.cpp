// TDataLink: a client's connection to a data source (framework layer).
#include "TDataLink.h"

#include <algorithm>

#include "TDataSet.h"
#include "TDataSource.h"

namespace fw {

TDataLink::~TDataLink() {
  if (FDataSource != nullptr) FDataSource->RemoveDataLink(this);
}

TDataSet* TDataLink::DataSet() const { return FDataSource != nullptr ? FDataSource->DataSet() : nullptr; }

void TDataLink::SetDataSource(TDataSource* Value) {
  if (FDataSourceFixed || Value == FDataSource) return;
  if (FDataSource != nullptr) FDataSource->RemoveDataLink(this);
  if (Value != nullptr) Value->AddDataLink(this);
}

void TDataLink::SetReadOnly(bool Value) {
  if (Value == FReadOnly) return;
  FReadOnly = Value;
  UpdateState();
}

void TDataLink::SetBufferCount(int Value) {
  if (Value < 1) Value = 1;
  if (Value == FBufferCount) return;
  FBufferCount = Value;
  if (!FActive) return;
  UpdateRange();
  DataSet()->UpdateBufferCount();
  UpdateRange();
}

void TDataLink::UpdateRange() {
  const TDataSet* dataSet = DataSet();
  if (dataSet == nullptr) return;
  const int active = dataSet->FActiveRecord;
  const int low = std::max(active - FBufferCount + 1, 0);
  const int high = std::min(std::max(dataSet->FBufferCount - FBufferCount, 0), active);
  FFirstRecord = std::clamp(FFirstRecord, low, std::max(low, high));
}

void TDataLink::UpdateState() {
  const TDataSetState state = FDataSource != nullptr ? FDataSource->State() : dsInactive;
  SetActive(state != dsInactive && state != dsOpening);
  SetEditing(FDataSource != nullptr && dsEditModes.Contains(state) && !FReadOnly);
}

void TDataLink::SetActive(bool Value) {
  if (Value == FActive) return;
  FActive = Value;
  FFirstRecord = 0;
  if (Value) UpdateRange();
  ActiveChanged();
}

void TDataLink::SetEditing(bool Value) {
  if (Value == FEditing) return;
  FEditing = Value;
  EditingChanged();
}

int TDataLink::AdjustFirstRecord(int Shift) {
  const int first = FFirstRecord + Shift;
  int moved = 0;
  if (FDataSource != nullptr && FDataSource->State() != dsSetKey && DataSet() != nullptr) {
    const int active = DataSet()->FActiveRecord;
    const int last = first + FBufferCount - 1;
    if (active > last)
      moved = active - last;
    else if (active < first)
      moved = active - first;
  }
  FFirstRecord = first + moved;
  return moved;
}

void TDataLink::DataEvent(TDataEvent Event, intptr_t Info) {
  if (Event == deUpdateState) {
    UpdateState();
    return;
  }
  if (!FActive) return;
  switch (Event) {
    case deFieldChange:
    case deRecordChange:
      if (!FUpdating) RecordChanged(reinterpret_cast<TField*>(Info));
      break;
    case deDataSetChange:
      AdjustFirstRecord(static_cast<int>(Info));
      DataSetChanged();
      break;
    case deDataSetScroll:
      DataSetScrolled(AdjustFirstRecord(static_cast<int>(Info)));
      break;
    case deLayoutChange:
      AdjustFirstRecord(static_cast<int>(Info));
      LayoutChanged();
      break;
    case deUpdateRecord:
      UpdateRecord();
      break;
    case deCheckBrowseMode:
      CheckBrowseMode();
      break;
    case deFocusControl:
      FocusControl(reinterpret_cast<TField**>(Info));
      break;
    default:
      break;
  }
}

int TDataLink::ActiveRecord() const {
  if (FDataSource == nullptr || DataSet() == nullptr) return 0;
  if (FDataSource->State() == dsSetKey) return 0;
  return DataSet()->FActiveRecord - FFirstRecord;
}

void TDataLink::SetActiveRecord(int Value) {
  if (FDataSource == nullptr || DataSet() == nullptr || FDataSource->State() == dsSetKey) return;
  TDataSet* dataSet = DataSet();
  dataSet->FActiveRecord = std::clamp(Value + FFirstRecord, 0, std::max(dataSet->FRecordCount - 1, 0));
}

int TDataLink::RecordCount() const {
  if (!FActive) return 0;
  if (FDataSource->State() == dsSetKey) return 1;
  return std::min(DataSet()->FRecordCount, FBufferCount);
}

bool TDataLink::Bof() const { return DataSet() == nullptr || DataSet()->Bof(); }

bool TDataLink::Eof() const { return DataSet() == nullptr || DataSet()->Eof(); }

int TDataLink::MoveBy(int Distance) { return DataSet() != nullptr ? DataSet()->MoveBy(Distance) : 0; }

bool TDataLink::Edit() {
  if (!FReadOnly && FDataSource != nullptr) FDataSource->Edit();
  return FEditing;
}

void TDataLink::UpdateRecord() {
  FUpdating = true;
  try {
    UpdateData();
  } catch (...) {
    FUpdating = false;
    throw;
  }
  FUpdating = false;
}

}  // namespace fw
