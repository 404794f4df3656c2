// TCTBatchCopy: copies, appends, updates or deletes records of a source dataset in a table (dataset, unit CTTables).
#include "TCTBatchCopy.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "CtError.h"
#include "DataSetTypes.h"
#include "Exception.h"
#include "StringUtils.h"
#include "TCTConnection.h"
#include "TCTTable.h"
#include "TClassInfo.h"
#include "TDataSet.h"
#include "TField.h"
#include "TFields.h"

namespace CTTables {

namespace {

constexpr int32_t kBatchRunning = 1128;
constexpr int32_t kNoDestination = 1129;  // "No batch source defined": the pairing is kept as it is
constexpr int32_t kNoSource = 1130;
constexpr int32_t kSameData = 1131;
constexpr int32_t kNoUniqueIndex = 1132;

// Records written per transaction. Larger batches gain little: a transaction keeps a lock for
// every record it wrote until it ends, and each lock makes the next one slower to take.
constexpr int32_t kRecordsPerTransaction = 2000;

const char* const kModeNames[] = {"cmCopy", "cmAppend", "cmUpdate", "cmAppendUpdate", "cmDelete"};
const char* const kModeVerbs[] = {"Copying", "Appending", "Updating", "Appending and updating", "Deleting"};

std::string NameOf(const fw::TComponent* Component) {
  if (const auto* table = dynamic_cast<const TCTTable*>(Component); table != nullptr && !table->TableName().empty())
    return table->TableName();
  return Component->Name().empty() ? Component->ClassType().ClassName() : Component->Name();
}

std::vector<std::string> SplitFieldNames(const std::string& Names) {
  std::vector<std::string> names;
  size_t pos = 0;
  while (pos < Names.size()) {
    size_t end = Names.find(';', pos);
    if (end == std::string::npos) end = Names.size();
    if (std::string name = fw::Trim(Names.substr(pos, end - pos)); !name.empty()) names.push_back(std::move(name));
    pos = end + 1;
  }
  return names;
}

}  // namespace

TCTBatchCopy::TCTBatchCopy(fw::TComponent* AOwner) : fw::TComponent(AOwner) {}

TCTBatchCopy::~TCTBatchCopy() = default;

const fw::TClassInfo& TCTBatchCopy::StaticClass() {
  static const fw::TClassInfo info =
      fw::TClassBuilder<TCTBatchCopy>("TCTBatchCopy", &fw::TComponent::StaticClass())
          .Creatable()
          // No default: the mode is always written, cmCopy included.
          .Enum("CopyMode", {std::begin(kModeNames), std::end(kModeNames)}, &TCTBatchCopy::CopyMode,
                &TCTBatchCopy::SetCopyMode)
          .Reference("Destination", &TCTBatchCopy::Destination, &TCTBatchCopy::SetDestination)
          .Reference("Source", &TCTBatchCopy::Source, &TCTBatchCopy::SetSource)
          .Build();
  return info;
}

// --- Properties ---------------------------------------------------------------------------------

void TCTBatchCopy::CheckNotBusy() const {
  if (FBusy) CTDbIntf::CtError(kBatchRunning);
}

void TCTBatchCopy::SetCopyMode(TCTCopyMode Value) {
  CheckNotBusy();
  FCopyMode = Value;
}

void TCTBatchCopy::SetDestination(TCTTable* Value) {
  CheckNotBusy();
  if (Value == FDestination) return;
  if (FDestination != nullptr && FDestination != FSource) FDestination->RemoveFreeNotification(this);
  FDestination = Value;
  if (Value != nullptr) Value->FreeNotification(this);
}

void TCTBatchCopy::SetSource(fw::TDataSet* Value) {
  CheckNotBusy();
  if (Value == FSource) return;
  if (FSource != nullptr && FSource != FDestination) FSource->RemoveFreeNotification(this);
  FSource = Value;
  if (Value != nullptr) Value->FreeNotification(this);
}

void TCTBatchCopy::SetOnProgress(const TCTProgressEvent& Value) {
  CheckNotBusy();
  FOnProgress = Value;
}

void TCTBatchCopy::SetOnCopyError(const TCTCopyErrorEvent& Value) {
  CheckNotBusy();
  FOnCopyError = Value;
}

void TCTBatchCopy::Notification(fw::TComponent* AComponent, fw::TOperation Operation) {
  fw::TComponent::Notification(AComponent, Operation);
  if (Operation != fw::opRemove) return;
  if (AComponent == FDestination) FDestination = nullptr;
  if (AComponent == FSource) FSource = nullptr;
}

// --- Events -------------------------------------------------------------------------------------

void TCTBatchCopy::DoProgress(TCTProgressStage Stage, int32_t RecNo, const std::string& Msg) {
  if (FOnProgress) FOnProgress(this, Stage, RecNo, Msg);
}

bool TCTBatchCopy::DoCopyError(fw::TField* SrcField, fw::TField* TrgField, const std::exception& E) {
  bool proceed = true;  // true lets the error end the batch: the name says the opposite, on purpose
  if (FOnCopyError) FOnCopyError(this, SrcField, TrgField, E, proceed);
  return proceed;
}

// --- Execute ------------------------------------------------------------------------------------

void TCTBatchCopy::CheckSameData() const {
  if (static_cast<fw::TComponent*>(FSource) == FDestination) CTDbIntf::CtError(kSameData);
  // Two components on one table: cmCopy would delete the records it is about to read, the
  // other modes would read their own writes.
  const auto* table = dynamic_cast<const TCTTable*>(FSource);
  if (table == nullptr) return;
  const std::string source = table->StorageFileName();
  if (!source.empty() && source == FDestination->StorageFileName()) CTDbIntf::CtError(kSameData);
}

void TCTBatchCopy::Execute() {
  CheckNotBusy();
  if (FDestination == nullptr) CTDbIntf::CtError(kNoDestination);
  if (FSource == nullptr) CTDbIntf::CtError(kNoSource);
  CheckSameData();

  FBusy = true;
  FCopied = 0;
  FRejected = 0;
  fw::TDataSet* const source = FSource;
  TCTTable* const destination = FDestination;
  const bool sourceActive = source->Active();
  const bool destinationActive = destination->Active();
  const std::string destinationIndex = destination->IndexName();
  source->DisableControls();
  destination->DisableControls();
  std::exception_ptr failure;
  try {
    DoProgress(psStarting, 0,
               std::string(kModeVerbs[FCopyMode]) + " " + NameOf(source) + " into " + NameOf(destination));
    PrepareDestination();
    if (FCopyMode == cmUpdate || FCopyMode == cmAppendUpdate || FCopyMode == cmDelete) ChooseMatchingIndex();
    if (!source->Active()) source->Open();
    source->First();
    MapFields();
    RunRecords();
  } catch (...) {
    failure = std::current_exception();
  }
  // Whatever ended the batch, both datasets are put back; the first failure is the one raised.
  auto keep = [&failure](const auto& step) {
    try {
      step();
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
  };
  keep([&] {
    DoProgress(psEnding, 0,
               std::to_string(FCopied) + " records written, " + std::to_string(FRejected) + " rejected" +
                   (failure ? ", stopped by an error" : ""));
  });
  keep([&] {
    if (!destinationActive)
      destination->Close();
    else if (destination->IndexName() != destinationIndex)
      destination->SetIndexName(destinationIndex);
  });
  destination->EnableControls();
  keep([&] {
    if (!sourceActive) source->Close();
  });
  source->EnableControls();
  FFieldMap.clear();
  FKeyMap.clear();
  FBusy = false;
  if (failure) std::rethrow_exception(failure);
}

void TCTBatchCopy::PrepareDestination() {
  TCTTable& destination = *FDestination;
  if (FCopyMode == cmCopy) {
    destination.Close();
    FSource->FieldDefs()->Update();
    destination.FieldDefs()->Assign(*FSource->FieldDefs());
    if (auto* table = dynamic_cast<TCTTable*>(FSource)) {
      table->UpdateIndexDefs();
      destination.IndexDefs()->Assign(*table->IndexDefs());
    } else {
      // Other datasets have no index definitions the table could take over.
      destination.IndexDefs()->Clear();
    }
    destination.CreateTable();
  }
  destination.Open();
}

void TCTBatchCopy::ChooseMatchingIndex() {
  TCTTable& destination = *FDestination;
  destination.IndexDefs()->SetUpdated(false);
  destination.IndexDefs()->Update();
  const TCTIndexDefs& defs = *destination.IndexDefs();
  FSource->FieldDefs()->Update();
  // The last unique index whose key fields the source has all. A partial key would match the
  // first record that shares its leading fields: another record would be updated or deleted.
  const TCTIndexDef* chosen = nullptr;
  std::string missing;
  for (int i = 0; i < defs.Count(); ++i) {
    const TCTIndexDef* def = defs.Items(i);
    if (!def->Options().Contains(fw::ixUnique) || def->Options().Contains(fw::ixExpression)) continue;
    std::string lacking;
    for (const std::string& name : SplitFieldNames(def->Fields()))
      if (FSource->FieldDefs()->IndexOf(name) < 0 && FSource->FindField(name) == nullptr && lacking.empty())
        lacking = name;
    if (lacking.empty())
      chosen = def;
    else
      missing = "the source has no field " + lacking + " of the destination's unique index " + def->Name();
  }
  if (chosen == nullptr && missing.empty()) CTDbIntf::CtError(kNoUniqueIndex);
  if (chosen == nullptr) fw::DatabaseError("Records cannot be matched: " + missing, this);
  destination.SetIndexName(chosen->Name());
  FKeyFieldNames = SplitFieldNames(chosen->Fields());
}

void TCTBatchCopy::MapFields() {
  FFieldMap.clear();
  const fw::TFields& fields = *FSource->Fields();
  for (int i = 0; i < fields.Count(); ++i) {
    fw::TField* from = fields.Fields(i);
    if (from->FieldKind() != fw::fkData) continue;  // calculated and lookup values are not stored
    fw::TField* to = FDestination->FindField(from->FieldName());
    if (to != nullptr && to->FieldKind() == fw::fkData) FFieldMap.emplace_back(from, to);
  }
  FKeyMap.clear();
  for (const std::string& name : FKeyFieldNames)
    FKeyMap.emplace_back(FSource->FieldByName(name), FDestination->FieldByName(name));
  FKeyFieldNames.clear();
}

void TCTBatchCopy::RunRecords() {
  Ctdb::TCTConnection& connection = *FDestination->Connection();
  // Inside an application's transaction the records become part of it; otherwise the batch
  // commits its own, so that writing does not pay for one storage commit per record.
  FOwnTransactions = !connection.InTransaction();
  FUncommitted = 0;
  int32_t handled = 0;
  try {
    while (!FSource->Eof()) {
      if (FOwnTransactions && !connection.InTransaction()) connection.StartTransaction();
      try {
        if (CopyRecord()) FOwnTransactions ? ++FUncommitted : ++FCopied;
      } catch (const std::exception& e) {
        CancelPending();
        if (DoCopyError(nullptr, nullptr, e)) throw;
        ++FRejected;
      }
      if (FUncommitted >= kRecordsPerTransaction) CommitBatch();
      DoProgress(psRunning, ++handled, std::string());
      FSource->Next();
    }
    CommitBatch();
  } catch (...) {
    // The records written before the failure were each complete: they are kept, and counted.
    // Should that commit fail too, the error that ended the batch is the one raised, and
    // RecordsCopied leaves the lost records out.
    CancelPending();
    try {
      CommitBatch();
    } catch (...) {
    }
    throw;
  }
}

void TCTBatchCopy::CommitBatch() {
  Ctdb::TCTConnection& connection = *FDestination->Connection();
  if (!FOwnTransactions || !connection.InTransaction()) return;
  const int32_t written = std::exchange(FUncommitted, 0);
  // A refused commit discards the whole transaction and raises: those records are not counted.
  connection.Commit();
  FCopied += written;
}

void TCTBatchCopy::CancelPending() {
  // Cancelled rather than left to the next record's Insert, whose CheckBrowseMode would post
  // the half-filled record.
  const fw::TDataSetState state = FDestination->State();
  if (state == fw::dsInsert || state == fw::dsEdit || state == fw::dsSetKey) FDestination->Cancel();
}

bool TCTBatchCopy::CopyRecord() {
  TCTTable& destination = *FDestination;
  switch (FCopyMode) {
    case cmCopy:
    case cmAppend:
      destination.Insert();
      CopyMappedFields();
      destination.Post();
      return true;
    case cmUpdate:
    case cmAppendUpdate:
      if (SeekMatch()) {
        destination.Edit();
      } else if (FCopyMode == cmAppendUpdate) {
        destination.Insert();
      } else {
        return false;
      }
      CopyMappedFields();
      destination.Post();
      return true;
    case cmDelete:
      if (!SeekMatch()) return false;
      destination.Delete();
      return true;
  }
  return false;
}

bool TCTBatchCopy::SeekMatch() {
  FDestination->SetKey();
  for (const auto& [from, to] : FKeyMap) {
    try {
      StoreValue(from, to);
    } catch (const std::exception& e) {
      // A key field that cannot be set fails its record whatever the handler answers: without
      // it the seek could find another record.
      DoCopyError(from, to, e);
      throw;
    }
  }
  return FDestination->GotoKey();
}

void TCTBatchCopy::CopyMappedFields() {
  for (const auto& [from, to] : FFieldMap) CopyField(from, to);
}

void TCTBatchCopy::CopyField(fw::TField* SrcField, fw::TField* TrgField) {
  try {
    StoreValue(SrcField, TrgField);
  } catch (const std::exception& e) {
    if (DoCopyError(SrcField, TrgField, e)) throw;
  }
}

void TCTBatchCopy::StoreValue(fw::TField* SrcField, fw::TField* TrgField) {
  const bool sameForm = SrcField->DataType() == TrgField->DataType() && SrcField->Size() == TrgField->Size() &&
                        SrcField->DataSize() == TrgField->DataSize();
  if (sameForm && !SrcField->IsBlob()) {
    // The stored form as it is: no conversion, nothing to lose.
    FValue.assign(static_cast<size_t>(std::max(SrcField->DataSize(), 1)), 0);
    if (SrcField->GetData(FValue.data()))
      TrgField->SetData(FValue.data());
    else
      TrgField->Clear();
    return;
  }
  if (SrcField->IsNull()) {
    TrgField->Clear();
    return;
  }
  if (sameForm) {
    TrgField->SetAsVariant(SrcField->AsVariant());  // a blob of the same kind takes the content whole
    return;
  }
  // Deliberately stricter than a plain assignment, which would cut a text to the field's size
  // or round a number without a word: a value that does not come back as it was is an error,
  // and the field keeps what it held, so that a handler that skips it skips it whole.
  const fw::Variant before = TrgField->AsVariant();
  TrgField->SetAsVariant(SrcField->AsVariant());
  const std::string was = SrcField->AsString();
  const std::string now = TrgField->AsString();
  if (was != now) {
    TrgField->SetAsVariant(before);
    throw fw::EConvertError("Field " + SrcField->FieldName() + ": value '" + was + "' does not fit field " +
                            TrgField->FieldName() + " of " + NameOf(FDestination) + " (it would become '" + now +
                            "')");
  }
}

}  // namespace CTTables
