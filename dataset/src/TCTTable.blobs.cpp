// TCTTable: blob streams on the table's record buffers (dataset, unit CTTables).
#include "TBlobField.h"
#include "TCTBlobStream.h"
#include "TCTTable.h"

namespace CTTables {

std::unique_ptr<fw::TStream> TCTTable::CreateBlobStream(fw::TField* Field,
                                                        fw::TBlobStreamMode Mode) {
  auto* blob = dynamic_cast<fw::TBlobField*>(Field);
  if (blob == nullptr)
    fw::DatabaseError("Field '" + (Field != nullptr ? Field->DisplayName() : std::string()) +
                          "' is not a blob field",
                      this);
  return std::make_unique<TCTBlobStream>(blob, Mode, GetActiveRecBuf());
}

void TCTTable::CopyMemoToKey(TCTRecordBuffer& Buffer, fw::TField* Detail,
                             const fw::TField* Master) {
  auto* memo = dynamic_cast<fw::TBlobField*>(Detail);
  if (memo == nullptr) return;
  const std::string text = Master->AsString();
  // The key buffer is filled outside any editing state (a master moving, a range being set up):
  // the stream is written in dsSetKey, and the field's and the table's Modified flags are put
  // back afterwards, so that this buffer's content does not pass for an unsaved edit of the
  // record the table shows.
  const bool fieldModified = memo->Modified();
  const bool tableModified = Modified();
  try {
    fw::TTempState keyState(this, fw::dsSetKey);
    memo->SetModified(false);
    TCTBlobStream stream(memo, fw::bmWrite, &Buffer);
    if (!text.empty()) stream.WriteBuffer(text.data(), static_cast<int64_t>(text.size()));
    stream.Commit();
  } catch (...) {
    memo->SetModified(fieldModified);
    SetModified(tableModified);
    throw;
  }
  memo->SetModified(fieldModified);
  SetModified(tableModified);
}

}  // namespace CTTables
