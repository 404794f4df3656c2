// TDataLink: a client's connection to a data source, receiving the dataset's notifications
// (framework layer).
#pragma once

#include <cstdint>

#include "DataSetTypes.h"

namespace fw {

class TDataSet;
class TDataSource;
class TField;

/// A data link follows one data source: it learns when the dataset becomes active or inactive,
/// when editing starts or ends, when the current record or its fields change, and it asks for a
/// window of BufferCount rows. Controls and master/detail links derive from it and override the
/// notification virtuals. A link is not a component; whoever creates it owns it. Destroying a
/// link detaches it from its source.
class TDataLink {
 public:
  TDataLink() = default;
  virtual ~TDataLink();
  TDataLink(const TDataLink&) = delete;
  TDataLink& operator=(const TDataLink&) = delete;

  // --- Properties -------------------------------------------------------------------------
  TDataSource* DataSource() const { return FDataSource; }
  /// Leaves the old source and joins the new one (each makes the dataset recompute its window),
  /// re-checking Active and Editing. Ignored when DataSourceFixed.
  void SetDataSource(TDataSource* Value);
  /// The source's dataset, or null.
  TDataSet* DataSet() const;
  /// Source set, enabled and its dataset active.
  bool Active() const { return FActive; }
  /// Source set, its state in dsEditModes and the link not ReadOnly.
  bool Editing() const { return FEditing; }
  bool ReadOnly() const { return FReadOnly; }
  void SetReadOnly(bool Value);
  /// Rows the link shows (default 1); an active link makes the dataset resize its window.
  int BufferCount() const { return FBufferCount; }
  void SetBufferCount(int Value);
  /// The dataset's window index of the link's first row.
  int FirstRecord() const { return FFirstRecord; }
  /// The current row relative to FirstRecord (0 in dsSetKey); setting moves the dataset's
  /// active record without events or fetching. Requires an active link.
  int ActiveRecord() const;
  void SetActiveRecord(int Value);
  /// min(window record count, BufferCount); 1 in dsSetKey; 0 when inactive.
  int RecordCount() const;
  bool Bof() const;
  bool Eof() const;
  bool VisualControl() const { return FVisualControl; }
  void SetVisualControl(bool Value) { FVisualControl = Value; }
  bool DataSourceFixed() const { return FDataSourceFixed; }
  void SetDataSourceFixed(bool Value) { FDataSourceFixed = Value; }

  // --- Public methods ---------------------------------------------------------------------
  /// DataSet()->MoveBy(Distance); 0 without dataset.
  int MoveBy(int Distance);
  /// Unless ReadOnly, asks the source to Edit (AutoEdit); returns Editing.
  bool Edit();
  /// Calls UpdateData with RecordChanged notifications suppressed for this link.
  void UpdateRecord();

 protected:
  // --- Descendants may override ------------------------------------------------------------
  /// Active changed (FirstRecord was already recomputed). Base: nothing.
  virtual void ActiveChanged() {}
  /// Editing changed. Base: nothing.
  virtual void EditingChanged() {}
  /// The dataset is about to leave the current record or post: base nothing.
  virtual void CheckBrowseMode() {}
  /// Base: RecordChanged(nullptr).
  virtual void DataSetChanged() { RecordChanged(nullptr); }
  /// Base: DataSetChanged(). `Distance` is how many rows the link's view moved.
  virtual void DataSetScrolled(int /*Distance*/) { DataSetChanged(); }
  /// Base: DataSetChanged().
  virtual void LayoutChanged() { DataSetChanged(); }
  /// A field (or, with null, the whole record) changed. Base: nothing.
  virtual void RecordChanged(TField* /*Field*/) {}
  /// Write pending control values into the fields. Base: nothing.
  virtual void UpdateData() {}
  /// Give focus to the control of `*Field` (set `*Field` to null when done). Base: nothing.
  virtual void FocusControl(TField** /*Field*/) {}

 private:
  friend class TDataSource;
  void DataEvent(TDataEvent Event, intptr_t Info);
  void UpdateState();
  void SetActive(bool Value);
  void SetEditing(bool Value);
  /// Moves FirstRecord by `Shift`, then as little as needed to keep the dataset's active record
  /// among the link's rows; returns that extra move.
  int AdjustFirstRecord(int Shift);
  /// Keeps the link's rows inside the dataset's window and around its active record.
  void UpdateRange();

  TDataSource* FDataSource = nullptr;
  bool FActive = false;
  bool FEditing = false;
  bool FReadOnly = false;
  bool FUpdating = false;
  bool FVisualControl = false;
  bool FDataSourceFixed = false;
  int FBufferCount = 1;
  int FFirstRecord = 0;
};

}  // namespace fw
