// TCTRecordBuffer: one record of a table dataset with its calculated fields (dataset, unit CTTables).
#include "TCTRecordBuffer.h"

namespace CTTables {

void TCTRecordBuffer::Assign(const TCTRecordBuffer& source) {
  if (source.RecordPtr() != nullptr)
    SetRecord(source.RecordPtr(), source.RecordSize());
  else
    InitRecord();
  SetBookmark(const_cast<TCTRecordBuffer&>(source).GetBookmark());
  FBookmarkFlag = source.FBookmarkFlag;
  FCalcFields.Assign(source.FCalcFields);
}

}  // namespace CTTables
