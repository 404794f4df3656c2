// TDataSource: the connector between one dataset and its data links (framework layer).
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "DataSetTypes.h"
#include "TComponent.h"

namespace fw {

class TDataLink;
class TDataSet;
class TDataSource;
class TField;

using TDataSourceNotifyEvent = std::function<void(TDataSource* Sender)>;
/// OnDataChange(Sender, Field): Field is the changed field, or null for a record/dataset change.
using TDataChangeEvent = std::function<void(TDataSource* Sender, TField* Field)>;

/// A data source passes the notifications of its dataset to its data links and reports the
/// dataset's state to them (dsInactive while disabled or without dataset).
class TDataSource : public TComponent {
 public:
  explicit TDataSource(TComponent* AOwner);
  /// Drops OnStateChange, leaves the dataset and detaches every link (last first).
  ~TDataSource() override;
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
  /// Leaves a dataset that is being removed.
  void Notification(TComponent* AComponent, TOperation Operation) override;

  // --- Properties -------------------------------------------------------------------------
  TDataSet* DataSet() const { return FDataSet; }
  /// Leaves the old dataset (links see the state become inactive) and joins the new one, taking
  /// over its state. A dataset whose master chain leads back to this source raises
  /// EDatabaseError (circular link) and nothing changes.
  void SetDataSet(TDataSet* ADataSet);
  bool Enabled() const { return FEnabled; }
  /// false: the links see dsInactive without the dataset being touched.
  void SetEnabled(bool Value);
  bool AutoEdit() const { return FAutoEdit; }
  void SetAutoEdit(bool Value) { FAutoEdit = Value; }
  /// The dataset's state as seen by the links.
  TDataSetState State() const { return FState; }
  int DataLinkCount() const { return static_cast<int>(FDataLinks.size()); }

  // --- Public methods ---------------------------------------------------------------------
  /// DataSet()->Edit() when AutoEdit and the state is dsBrowse.
  void Edit();
  /// True when `ADataSet` reaches this source through its chain of master sources.
  bool IsLinkedTo(const TDataSet* ADataSet) const;

  // --- Events ------------------------------------------------------------------------------
  TDataSourceNotifyEvent OnStateChange;
  TDataChangeEvent OnDataChange;
  TDataSourceNotifyEvent OnUpdateData;

 protected:
  // --- Descendants may override ------------------------------------------------------------
  /// An event from the dataset: state changes update State; other events are dropped while
  /// inactive, else passed to the links (non-visual first), then to OnDataChange/OnUpdateData.
  virtual void DataEvent(TDataEvent Event, intptr_t Info);

 private:
  friend class TDataLink;
  friend class TDataSet;
  void AddDataLink(TDataLink* Link);
  void RemoveDataLink(TDataLink* Link);
  void UpdateState();
  void NotifyDataLinks(TDataEvent Event, intptr_t Info);

  TDataSet* FDataSet = nullptr;
  std::vector<TDataLink*> FDataLinks;
  TDataSetState FState = dsInactive;
  bool FEnabled = true;
  bool FAutoEdit = true;
};

}  // namespace fw
