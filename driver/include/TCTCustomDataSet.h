// TCTCustomDataSet: the dataset base class of the package's tables (driver, unit Ctdb).
#pragma once

#include <cstdint>

#include "TComponent.h"
#include "TDataSet.h"

namespace Ctdb {

class TCTConnection;

/// Where a table is in its open/close cycle: ofClosed -> ofOpening -> ofOpen -> ofClosing ->
/// ofClosed. An open that fails stays at ofOpening until the framework closes the dataset.
enum TOpenFlag : uint8_t { ofOpen, ofClosed, ofOpening, ofClosing };
/// Which kind of new record is pending: isNone outside an insert, isInsert or isAppend until it
/// is posted.
enum TInsertType : uint8_t { isInsert, isAppend, isNone };

/// A dataset that reaches its storage through a TCTConnection. It keeps the connection reference
/// (not owned; cleared when the connection is destroyed) and registers itself in the connection's
/// DataSets list while it is open, so that deactivating the connection closes it.
class TCTCustomDataSet : public fw::TDataSet {
 public:
  explicit TCTCustomDataSet(fw::TComponent* AOwner);
  static const fw::TClassInfo& StaticClass();
  const fw::TClassInfo& ClassType() const override { return StaticClass(); }

  /// The connection the dataset uses; null when none.
  TCTConnection* Connection() const { return FConnection; }
  /// A connection is stored and asked for a free notification. Null closes the dataset but
  /// keeps the stored reference (on purpose: only the connection's removal clears it).
  void SetConnection(TCTConnection* Value);

  void Notification(fw::TComponent* AComponent, fw::TOperation Operation) override;

 protected:
  // --- Descendants must implement -----------------------------------------------------------
  /// Descendants open their storage first, then call this, which registers the dataset with its
  /// connection (once).
  void InternalOpen() override;
  /// Descendants call this first: it removes the dataset from its connection's list.
  void InternalClose() override;

 private:
  TCTConnection* FConnection = nullptr;
};

}  // namespace Ctdb
