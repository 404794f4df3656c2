// TDataSource: the connector between one dataset and its data links (framework layer).
#include "TDataSource.h"

#include <algorithm>

#include "DataSetMessages.h"
#include "TClassInfo.h"
#include "TDataLink.h"
#include "TDataSet.h"

namespace fw {

TDataSource::TDataSource(TComponent* AOwner) : TComponent(AOwner) {}

TDataSource::~TDataSource() {
  OnStateChange = nullptr;
  SetDataSet(nullptr);
  while (!FDataLinks.empty()) RemoveDataLink(FDataLinks.back());
}

void TDataSource::SetDataSet(TDataSet* ADataSet) {
  if (ADataSet == FDataSet) return;
  if (IsLinkedTo(ADataSet)) DatabaseError(SCircularDataLink, this);
  if (FDataSet != nullptr) FDataSet->RemoveDataSource(this);
  if (ADataSet != nullptr) ADataSet->AddDataSource(this);
}

void TDataSource::SetEnabled(bool Value) {
  if (Value == FEnabled) return;
  FEnabled = Value;
  UpdateState();
}

bool TDataSource::IsLinkedTo(const TDataSet* ADataSet) const {
  while (ADataSet != nullptr) {
    const TDataSource* source = ADataSet->DataSource();
    if (source == nullptr) return false;
    if (source == this) return true;
    ADataSet = source->DataSet();
  }
  return false;
}

void TDataSource::Edit() {
  if (FAutoEdit && FState == dsBrowse && FDataSet != nullptr) FDataSet->Edit();
}

void TDataSource::AddDataLink(TDataLink* Link) {
  FDataLinks.push_back(Link);
  Link->FDataSource = this;
  if (FDataSet != nullptr) FDataSet->UpdateBufferCount();
  Link->UpdateState();
}

void TDataSource::RemoveDataLink(TDataLink* Link) {
  Link->FDataSource = nullptr;
  FDataLinks.erase(std::remove(FDataLinks.begin(), FDataLinks.end(), Link), FDataLinks.end());
  Link->UpdateState();
  if (FDataSet != nullptr) FDataSet->UpdateBufferCount();
}

void TDataSource::UpdateState() {
  const TDataSetState state = FDataSet != nullptr && FEnabled ? FDataSet->State() : dsInactive;
  if (state == FState) return;
  const TDataSetState prior = FState;
  FState = state;
  NotifyDataLinks(deUpdateState, 0);
  if (ComponentState().Contains(csDestroying)) return;
  if (OnStateChange) OnStateChange(this);
  if (prior == dsInactive && OnDataChange) OnDataChange(this, nullptr);
}

void TDataSource::NotifyDataLinks(TDataEvent Event, intptr_t Info) {
  // Non-visual links (master/detail) first, so details follow before controls repaint. A link
  // may leave while being notified: work on a snapshot and skip the departed.
  const std::vector<TDataLink*> links = FDataLinks;
  for (int pass = 0; pass < 2; ++pass)
    for (TDataLink* link : links)
      if (link->VisualControl() == (pass == 1) &&
          std::find(FDataLinks.begin(), FDataLinks.end(), link) != FDataLinks.end())
        link->DataEvent(Event, Info);
}

void TDataSource::DataEvent(TDataEvent Event, intptr_t Info) {
  if (Event == deUpdateState) {
    UpdateState();
    return;
  }
  if (FState == dsInactive) return;
  NotifyDataLinks(Event, Info);
  if (ComponentState().Contains(csDestroying)) return;
  switch (Event) {
    case deFieldChange:
      if (OnDataChange) OnDataChange(this, reinterpret_cast<TField*>(Info));
      break;
    case deRecordChange:
    case deDataSetChange:
    case deDataSetScroll:
    case deLayoutChange:
      if (OnDataChange) OnDataChange(this, nullptr);
      break;
    case deUpdateRecord:
      if (OnUpdateData) OnUpdateData(this);
      break;
    default:
      break;
  }
}

void TDataSource::Notification(TComponent* AComponent, TOperation Operation) {
  TComponent::Notification(AComponent, Operation);
  if (Operation == opRemove && AComponent == FDataSet) SetDataSet(nullptr);
}

const TClassInfo& TDataSource::StaticClass() {
  static const TClassInfo info = TClassBuilder<TDataSource>("TDataSource", &TComponent::StaticClass())
                                     .Creatable()
                                     .Property("AutoEdit", &TDataSource::AutoEdit, &TDataSource::SetAutoEdit, true)
                                     .Reference("DataSet", &TDataSource::DataSet, &TDataSource::SetDataSet)
                                     .Property("Enabled", &TDataSource::Enabled, &TDataSource::SetEnabled, true)
                                     .Build();
  return info;
}

}  // namespace fw
