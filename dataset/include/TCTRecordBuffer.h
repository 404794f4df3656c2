// TCTRecordBuffer: one record of a table dataset with its calculated fields (dataset, unit CTTables).
#pragma once

#include "DataSetTypes.h"
#include "TCTCalcFields.h"
#include "TCTCustomRecordBuffer.h"

namespace CTTables {

/// A driver record buffer as the table dataset uses it: the record bytes and bookmark of the
/// driver's buffer, the framework's bookmark flag, and the store of calculated and lookup field
/// values. The dataset's window buffers, key and range buffers and the old record of an edit are
/// all of this class; each is owned by the table.
class TCTRecordBuffer : public Ctdb::TCTCustomRecordBuffer {
 public:
  /// Takes the field layout of `cursor` (may be null); holds no record until InitRecord.
  explicit TCTRecordBuffer(Ctdb::TCTCursorDesc* cursor) : Ctdb::TCTCustomRecordBuffer(cursor) {}

  TCTCalcFields& CalcFields() { return FCalcFields; }
  const TCTCalcFields& CalcFields() const { return FCalcFields; }
  fw::TBookmarkFlag BookmarkFlag() const { return FBookmarkFlag; }
  void SetBookmarkFlag(fw::TBookmarkFlag Value) { FBookmarkFlag = Value; }
  /// Copies the record bytes (or the empty state), the bookmark, the flag and the calculated
  /// values of `source`, which must belong to the same cursor. Blob streams are not copied.
  void Assign(const TCTRecordBuffer& source);

 private:
  TCTCalcFields FCalcFields;
  fw::TBookmarkFlag FBookmarkFlag = fw::bfInserted;
};

}  // namespace CTTables
