// TCTMasterDataLink: the link by which a detail table follows its master's current record (dataset, unit CTTables).
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "TDataLink.h"

namespace fw {
class TDataSet;
class TField;
}  // namespace fw

namespace CTTables {

/// A master link's handler; `Sender` is the link.
using TMasterLinkEvent = std::function<void(class TCTMasterDataLink* Sender)>;

/// Attached to the master's data source, the link keeps the master's fields named by FieldNames
/// and tells its detail table when the master's current record or activity changes. The detail
/// table owns the link; the link never owns the detail, the master or the master's fields.
class TCTMasterDataLink : public fw::TDataLink {
 public:
  /// `Detail` is the table that owns the link (not null).
  explicit TCTMasterDataLink(fw::TDataSet* Detail);
  ~TCTMasterDataLink() override;

  fw::TDataSet* Detail() const { return FDetail; }
  /// The master-fields text as given (";"-separated names or "Master=Detail" pairs).
  const std::string& FieldNames() const { return FFieldNames; }
  /// Stores a different text and re-reads the master's fields (ActiveChanged). A name the
  /// master does not have raises the framework's EDatabaseError and leaves the text as it was
  /// and the link unlinked (empty field list, detail unrestricted).
  void SetFieldNames(const std::string& Value);
  /// The master's fields named by FieldNames, in order; empty while the link is inactive.
  const std::vector<fw::TField*>& Fields() const { return FFields; }

  /// Called when the master's current record (or the link itself) changes and the detail must
  /// follow; called when the link loses its master or its fields ("disable").
  TMasterLinkEvent OnMasterChange;
  TMasterLinkEvent OnMasterDisable;

 protected:
  // --- Descendants may override ------------------------------------------------------------
  /// Re-reads the master's fields; an active detail then follows (fields found) or is released.
  void ActiveChanged() override;
  /// Posts a pending edit of an active detail before the master moves.
  void CheckBrowseMode() override;
  void LayoutChanged() override;
  /// The detail follows unless the master is in dsSetKey, the detail is inactive, the field
  /// list is empty or `Field` is not one of the master fields.
  void RecordChanged(fw::TField* Field) override;

 private:
  fw::TDataSet* FDetail;
  std::string FFieldNames;
  std::vector<fw::TField*> FFields;
};

}  // namespace CTTables
