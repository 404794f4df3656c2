// TCTBatchCopy: copies, appends, updates or deletes records of a source dataset in a table (dataset, unit CTTables).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "BatchCopyTypes.h"
#include "TComponent.h"

namespace fw {
class TDataSet;
class TField;
}  // namespace fw

namespace CTTables {

class TCTTable;

/// A non-visual component that moves every record of `Source` into the table `Destination` in
/// one call, Execute, as CopyMode says (see TCTCopyMode). The source may be any dataset of the
/// framework: a TCTTable (of this or another connection) or any other TDataSet descendant; it is
/// read from its first record in its own order, through its filter, range and master link.
/// Fields are matched by name (case-insensitive): source fields the destination lacks are not
/// copied, destination fields the source lacks keep what the new record or the edit gives them.
/// Values of the same type and size are copied as they are stored; others are converted and must
/// come back unchanged (a text cut short, a fraction rounded away or a text that is no number is
/// an error of that field, never a silent change). Blob and memo fields are copied whole.
///
/// Every failure is raised as CTDbIntf::ECtreeException (the numbers below and the driver's),
/// or the framework's exception of a field that does not convert. The destination's changes are
/// committed in transactions of a few thousand records when its connection has none open (with
/// one open, they become part of it): a batch that ends with an error has committed exactly the
/// records RecordsCopied counts, and a record that failed left no trace.
///
/// Published (form files): CopyMode (always written), Destination, Source. The events are set in
/// code.
class TCTBatchCopy : public fw::TComponent {
 public:
  /// An idle copy in mode cmCopy with no source or destination, owned by `AOwner`.
  explicit TCTBatchCopy(fw::TComponent* AOwner);
  ~TCTBatchCopy() override;
  /// The class's streaming information: its published properties in their order.
  static const fw::TClassInfo& StaticClass();
  const fw::TClassInfo& ClassType() const override { return StaticClass(); }

  // --- Properties: each setter raises 1128 "Batch process already runs" while Busy ------------
  /// True while Execute runs.
  bool Busy() const { return FBusy; }
  ///@{
  /// What Execute does with the records (see TCTCopyMode); cmCopy by default.
  TCTCopyMode CopyMode() const { return FCopyMode; }
  void SetCopyMode(TCTCopyMode Value);
  ///@}
  ///@{
  /// The table written; not owned. Cleared when that component is destroyed.
  TCTTable* Destination() const { return FDestination; }
  void SetDestination(TCTTable* Value);
  ///@}
  ///@{
  /// The dataset read; not owned. Cleared when that component is destroyed.
  fw::TDataSet* Source() const { return FSource; }
  void SetSource(fw::TDataSet* Value);
  ///@}
  ///@{
  /// Told of each stage of Execute and of the records as they go (see DoProgress).
  const TCTProgressEvent& OnProgress() const { return FOnProgress; }
  void SetOnProgress(const TCTProgressEvent& Value);
  ///@}
  ///@{
  /// Asked about each field value that fails to copy; its Continue decides whether the copy
  /// goes on (see DoCopyError).
  const TCTCopyErrorEvent& OnCopyError() const { return FOnCopyError; }
  void SetOnCopyError(const TCTCopyErrorEvent& Value);
  ///@}

  // --- Outcome of the last Execute ------------------------------------------------------------
  /// Records whose change of the destination (added, rewritten or deleted) is committed, or
  /// made inside the application's open transaction.
  int32_t RecordsCopied() const { return FCopied; }
  /// Records skipped because OnCopyError set Continue to false for their error.
  int32_t RecordsRejected() const { return FRejected; }

  /// Runs the batch. Checks first, changing nothing: 1128 while Busy, 1129 without Destination,
  /// 1130 without Source, 1131 when both are the same component or name the same data file.
  /// Then, with the controls of both datasets disabled: OnProgress(psStarting); the destination
  /// is created anew (cmCopy, from the source's field definitions and, for a TCTTable, its
  /// index definitions) or opened; for cmUpdate, cmAppendUpdate and cmDelete the last unique
  /// index of the destination becomes its current index (1132 when it has none; EDatabaseError
  /// when the source lacks one of its key fields, since a partial key could match another
  /// record); the source is opened when closed and read from its first record, each record
  /// handled and followed by OnProgress(psRunning, n). A failing record's pending insert or edit
  /// is cancelled, then OnCopyError(nullptr, nullptr) decides: Continue true ends the batch
  /// with the error, false skips the record. A failing field goes to OnCopyError with the two
  /// fields first: Continue false skips that field, except a key field used for matching, which
  /// always fails its record (a seek without it could find another record). Finally, whatever
  /// happened:
  /// OnProgress(psEnding), both datasets back to their former activity, Busy false. The source
  /// is left at its end.
  void Execute();

  void Notification(fw::TComponent* AComponent, fw::TOperation Operation) override;

 protected:
  // --- Descendants may override ------------------------------------------------------------
  /// Copies the value of `SrcField` into `TrgField` (see the class comment); a failure goes to
  /// OnCopyError with both fields, and is raised again when Continue stays true.
  virtual void CopyField(fw::TField* SrcField, fw::TField* TrgField);
  /// Calls OnProgress, when set, with this component, the stage, the record number and the text.
  void DoProgress(TCTProgressStage Stage, int32_t RecNo, const std::string& Msg);
  /// Asks OnCopyError about `E`; returns Continue (true without a handler).
  bool DoCopyError(fw::TField* SrcField, fw::TField* TrgField, const std::exception& E);

 private:
  void CheckNotBusy() const;
  void CheckSameData() const;
  void PrepareDestination();
  void ChooseMatchingIndex();
  void MapFields();
  void RunRecords();
  bool CopyRecord();
  bool SeekMatch();
  void CopyMappedFields();
  void StoreValue(fw::TField* SrcField, fw::TField* TrgField);
  void CommitBatch();
  void CancelPending();

  bool FBusy = false;
  TCTCopyMode FCopyMode = cmCopy;
  TCTTable* FDestination = nullptr;
  fw::TDataSet* FSource = nullptr;
  TCTProgressEvent FOnProgress;
  TCTCopyErrorEvent FOnCopyError;
  int32_t FCopied = 0;
  int32_t FRejected = 0;
  // The work of one Execute: source and destination fields matched by name, the key fields of
  // the matching index, the records written since the last commit, and the raw value buffer.
  std::vector<std::pair<fw::TField*, fw::TField*>> FFieldMap;
  std::vector<std::string> FKeyFieldNames;
  std::vector<std::pair<fw::TField*, fw::TField*>> FKeyMap;
  bool FOwnTransactions = false;
  int32_t FUncommitted = 0;
  std::vector<uint8_t> FValue;
};

}  // namespace CTTables
