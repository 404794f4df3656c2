// TDataSet: construction, open and close, states, data events and control disabling (framework layer).
#include "TDataSet.h"

#include <algorithm>

#include "DataSetMessages.h"
#include "TClassInfo.h"
#include "TDataLink.h"
#include "TDataSource.h"

namespace fw {

TDataSet::TDataSet(TComponent* AOwner)
    : TComponent(AOwner),
      FFields(std::make_unique<TFields>(this)),
      FFieldDefs(std::make_unique<TFieldDefs>(this)) {}

TDataSet::~TDataSet() {
  // The descendant closed the cursor in its own destructor; a cursor still open here belongs
  // to a descendant that is already gone, so nothing can be handed back to it any more.
  FState = dsInactive;
  while (!FDataSources.empty()) RemoveDataSource(FDataSources.back(), false);
  FFields->Clear();
}

// --- Open and close ---------------------------------------------------------------------------

void TDataSet::SetActive(bool Value) {
  if (Value == Active()) return;
  if (Value) {
    if (ComponentState().Contains(csLoading)) {
      FStreamedActive = true;
      return;
    }
    if (FState != dsInactive) return;
    DoBeforeOpen();
    FEnableEvent = deLayoutChange;
    FInternalCalcFields = false;
    try {
      FDefaultFields = FieldCount() == 0;
      OpenCursor(false);
    } catch (...) {
      if (FState != dsOpening) OpenCursorComplete();
      throw;
    }
    if (FState != dsOpening) OpenCursorComplete();
    FModified = false;
  } else {
    const bool destroying = ComponentState().Contains(csDestroying);
    if (!destroying) DoBeforeClose();
    SetState(dsInactive);
    CloseCursor();
    if (!destroying) DoAfterClose();
    FModified = false;
  }
}

void TDataSet::OpenCursor(bool InfoQuery) {
  if (InfoQuery)
    InternalInitFieldDefs();
  else if (FState != dsOpening)
    DoInternalOpen();
}

void TDataSet::DoInternalOpen() {
  InternalOpen();
  FInternalOpenComplete = true;
  FRecordCount = 0;
  UpdateBufferCount();
  FBOF = true;
  FEOF = FRecordCount == 0;
}

void TDataSet::OpenCursorComplete() {
  if (FInternalOpenComplete) {
    SetState(dsBrowse);
    DoAfterOpen();
    if (!IsEmpty()) DoAfterScroll();
  } else {
    SetState(dsInactive);
    try {
      CloseCursor();
    } catch (...) {
      // Only reached while an open is failing: the open's own error is the one the caller
      // must see, not a follow-up from tidying the half-open cursor.
    }
  }
}

void TDataSet::CloseCursor() {
  FBlockReadSize = 0;
  FInternalOpenComplete = false;
  FreeFieldBuffers();
  ClearBuffers();
  SetBufListSize(0);
  for (int i = 0; i < FFields->Count(); ++i) FFields->Fields(i)->FFieldDef = nullptr;
  InternalClose();
}

void TDataSet::InitFieldDefs() {
  if (IsCursorOpen()) {
    InternalInitFieldDefs();
    return;
  }
  try {
    OpenCursor(true);
  } catch (...) {
    CloseCursor();
    throw;
  }
  CloseCursor();
}

void TDataSet::Loaded() {
  TComponent::Loaded();
  if (!FStreamedActive) return;
  FStreamedActive = false;
  try {
    SetActive(true);
  } catch (const Exception&) {
    // At design time a table that cannot open stays closed in the designer; at run time the
    // failure belongs to the application.
    if (!ComponentState().Contains(csDesigning)) throw;
  }
}

void TDataSet::Notification(TComponent* AComponent, TOperation Operation) {
  TComponent::Notification(AComponent, Operation);
  if (Operation != opRemove) return;
  for (TDataSource* source : FDataSources)
    if (source == AComponent) {
      RemoveDataSource(source);
      break;
    }
}

// --- State ------------------------------------------------------------------------------------

void TDataSet::SetState(TDataSetState Value) {
  if (FState == Value) return;
  FState = Value;
  if (Value == dsBrowse) FModified = false;
  DataEvent(deUpdateState, 0);
}

TDataSetState TDataSet::SetTempState(TDataSetState Value) {
  const TDataSetState old = FState;
  FState = Value;
  ++FDisableCount;
  return old;
}

void TDataSet::RestoreState(TDataSetState Value) {
  FState = Value;
  if (FDisableCount > 0) --FDisableCount;
}

TTempState::TTempState(TDataSet* DataSet, TDataSetState State)
    : FDataSet(DataSet), FOld(DataSet->SetTempState(State)) {}

TTempState::~TTempState() { FDataSet->RestoreState(FOld); }

void TDataSet::CheckActive() const {
  if (!Active()) DatabaseError(SDataSetClosed, this);
}

void TDataSet::CheckInactive() const {
  if (Active()) DatabaseError(SDataSetOpen, this);
}

void TDataSet::CheckBiDirectional() const {
  if (FIsUniDirectional) DatabaseError(SDataSetUnidirectional, this);
}

void TDataSet::CheckCanModify() const {
  if (!CanModify()) DatabaseError(SDataSetReadOnly, this);
}

void TDataSet::SetBlockReadSize(int Value) {
  if (Value > 0) {
    CheckActive();
    FBlockReadSize = Value;
    SetState(dsBlockRead);
  } else {
    FBlockReadSize = 0;
    if (FState == dsBlockRead) SetState(dsBrowse);
  }
}

void TDataSet::SetFilterText(const std::string& Value) {
  CheckBiDirectional();
  FFilterText = Value;
}

void TDataSet::SetFiltered(bool Value) {
  if (Value) CheckBiDirectional();
  FFiltered = Value;
}

void TDataSet::SetFilterOptions(TFilterOptions Value) {
  CheckBiDirectional();
  FFilterOptions = Value;
}

void TDataSet::SetOnFilterRecord(const TFilterRecordEvent& Value) {
  CheckBiDirectional();
  FOnFilterRecord = Value;
}

// --- Data events ------------------------------------------------------------------------------

void TDataSet::DataEvent(TDataEvent Event, intptr_t Info) {
  switch (Event) {
    case deFieldChange: {
      auto* field = reinterpret_cast<TField*>(Info);
      const TFieldKind kind = field->FieldKind();
      if (kind == fkData || kind == fkInternalCalc) FModified = true;
      if (FState != dsSetKey) {
        if (kind == fkData) {
          if (FInternalCalcFields) {
            TTempState guard(this, dsInternalCalc);
            CalculateFields(ActiveBuffer());
          } else if (FAutoCalcFields && FCalcFieldsSize != 0) {
            // In dsCalcFields, so that the calculated values written by OnCalcFields do not
            // come back here as field changes.
            GetCalcFields(ActiveBuffer());
          }
        }
        field->Change();
      }
      break;
    }
    case deDataSetChange:
    case deDataSetScroll:
      if (FState != dsInsert) UpdateCursorPos();
      break;
    case deLayoutChange:
      FEnableEvent = deLayoutChange;
      break;
    case dePropertyChange:
      FFieldDefs->SetUpdated(false);
      break;
    default:
      break;
  }
  if (FState == dsBlockRead) return;
  if (ControlsDisabled()) {
    // A state change while controls are disabled is announced as such; the links learn the new
    // state when controls are enabled again.
    if (Event != deUpdateState) return;
    Event = deDisabledStateChange;
    Info = Active() ? 1 : 0;
  }
  // A source may detach itself while handling the event; iterate over a snapshot.
  const std::vector<TDataSource*> sources = FDataSources;
  for (TDataSource* source : sources)
    if (std::find(FDataSources.begin(), FDataSources.end(), source) != FDataSources.end())
      source->DataEvent(Event, Info);
}

void TDataSet::DisableControls() {
  if (FDisableCount == 0) {
    FDisableState = FState;
    FEnableEvent = deDataSetChange;
  }
  ++FDisableCount;
}

void TDataSet::EnableControls() {
  if (FDisableCount == 0) return;
  if (--FDisableCount > 0) return;
  if (FState != FDisableState) DataEvent(deUpdateState, 0);
  if (FDisableState != dsInactive && FState != dsInactive) DataEvent(FEnableEvent, 0);
}

void TDataSet::AddDataSource(TDataSource* Source) {
  FDataSources.push_back(Source);
  Source->FDataSet = this;
  UpdateBufferCount();
  Source->UpdateState();
}

void TDataSet::RemoveDataSource(TDataSource* Source, bool Recount) {
  Source->FDataSet = nullptr;
  FDataSources.erase(std::remove(FDataSources.begin(), FDataSources.end(), Source), FDataSources.end());
  Source->UpdateState();
  if (Recount) UpdateBufferCount();
}

bool TDataSet::IsLinkedTo(const TDataSource* ADataSource) const {
  for (TDataSource* source = DataSource(); source != nullptr;) {
    if (source == ADataSource) return true;
    TDataSet* master = source->DataSet();
    source = master != nullptr ? master->DataSource() : nullptr;
  }
  return false;
}

// --- Event firing -----------------------------------------------------------------------------

void TDataSet::DoBeforeOpen() { NotifyEvent(BeforeOpen); }
void TDataSet::DoAfterOpen() { NotifyEvent(AfterOpen); }
void TDataSet::DoBeforeClose() { NotifyEvent(BeforeClose); }
void TDataSet::DoAfterClose() { NotifyEvent(AfterClose); }
void TDataSet::DoBeforeInsert() { NotifyEvent(BeforeInsert); }
void TDataSet::DoAfterInsert() { NotifyEvent(AfterInsert); }
void TDataSet::DoBeforeEdit() { NotifyEvent(BeforeEdit); }
void TDataSet::DoAfterEdit() { NotifyEvent(AfterEdit); }
void TDataSet::DoBeforePost() { NotifyEvent(BeforePost); }
void TDataSet::DoAfterPost() { NotifyEvent(AfterPost); }
void TDataSet::DoBeforeCancel() { NotifyEvent(BeforeCancel); }
void TDataSet::DoAfterCancel() { NotifyEvent(AfterCancel); }
void TDataSet::DoBeforeDelete() { NotifyEvent(BeforeDelete); }
void TDataSet::DoAfterDelete() { NotifyEvent(AfterDelete); }
void TDataSet::DoBeforeScroll() { NotifyEvent(BeforeScroll); }
void TDataSet::DoAfterScroll() { NotifyEvent(AfterScroll); }
void TDataSet::DoBeforeRefresh() { NotifyEvent(BeforeRefresh); }
void TDataSet::DoAfterRefresh() { NotifyEvent(AfterRefresh); }
void TDataSet::DoOnCalcFields() { NotifyEvent(OnCalcFields); }
void TDataSet::DoOnNewRecord() { NotifyEvent(OnNewRecord); }

// --- Streaming ----------------------------------------------------------------------------------

void TDataSet::GetChildren(const std::function<void(TComponent*)>& Proc, TComponent* Root) const {
  for (int i = 0; i < FFields->Count(); ++i) {
    TField* field = FFields->Fields(i);
    if (field->Owner() == Root) Proc(field);
  }
}

const TClassInfo& TDataSet::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TDataSet>("TDataSet", &TComponent::StaticClass())
          .Property("Active", &TDataSet::Active, &TDataSet::SetActive, false)
          .Property("AutoCalcFields", &TDataSet::AutoCalcFields, &TDataSet::SetAutoCalcFields, true)
          .Property("Filter", &TDataSet::Filter, &TDataSet::SetFilter, "")
          .Property("Filtered", &TDataSet::Filtered, &TDataSet::SetFiltered, false)
          .Build();
  return info;
}

}  // namespace fw
