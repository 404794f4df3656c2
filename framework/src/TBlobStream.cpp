// TBlobStream: a memory-backed stream on one blob field of one record buffer (framework layer).
#include "TBlobStream.h"

#include "DataSetMessages.h"
#include "TBlobField.h"
#include "TDataSet.h"

namespace fw {

TBlobStream::TBlobStream(TField* Field, TBlobStreamMode Mode, const std::string& Content, TCommitProc Commit)
    : FField(Field), FCommit(std::move(Commit)), FModified(Mode == bmWrite) {
  if (Mode != bmRead) {
    TDataSet* dataSet = Field->DataSet();
    if (dataSet == nullptr || !dsWriteModes.Contains(dataSet->State())) DatabaseError(SNotEditing, dataSet);
    if (Field->ReadOnly()) DatabaseError(FmtMsg(SFieldReadOnly, {Field->DisplayName()}), dataSet);
  }
  if (Mode != bmWrite && !Content.empty()) {
    TMemoryStream::Write(Content.data(), static_cast<int64_t>(Content.size()));
    Seek(0, soBeginning);
  }
}

TBlobStream::~TBlobStream() {
  try {
    Commit();
  } catch (...) {
    // Destructors must not raise; callers that care call Commit() themselves.
  }
}

int64_t TBlobStream::Write(const void* buffer, int64_t count) {
  const int64_t written = TMemoryStream::Write(buffer, count);
  if (written > 0) FModified = true;
  return written;
}

void TBlobStream::SetSize(int64_t newSize) {
  TMemoryStream::SetSize(newSize);
  FModified = true;
}

void TBlobStream::Commit() {
  if (!FModified) return;
  FModified = false;
  const std::string content(static_cast<const char*>(Memory()), static_cast<std::size_t>(Size()));
  if (FCommit) FCommit(content);
  if (auto* blob = dynamic_cast<TBlobField*>(FField)) blob->SetModified(true);
  TDataSet* dataSet = FField->DataSet();
  if (dataSet == nullptr) return;
  const TDataSetState state = dataSet->State();
  if (state != dsCalcFields && state != dsFilter && state != dsNewValue)
    dataSet->DataEvent(deFieldChange, reinterpret_cast<intptr_t>(FField));
}

}  // namespace fw
