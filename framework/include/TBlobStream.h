// TBlobStream: a memory-backed stream on one blob field of one record buffer (framework layer).
#pragma once

#include <functional>
#include <string>

#include "DataSetTypes.h"
#include "TMemoryStream.h"

namespace fw {

class TField;

/// The stream a dataset may hand out from CreateBlobStream when it keeps blob content in
/// memory: it starts with a copy of the field's content (empty for bmWrite) and gives the
/// content back through `Commit` when it was written to or opened for writing. Committing
/// marks the field Modified and, unless the dataset is in dsCalcFields, dsFilter or dsNewValue,
/// sends deFieldChange for the field.
class TBlobStream : public TMemoryStream {
 public:
  /// Receives the new content (empty means null).
  using TCommitProc = std::function<void(const std::string& Content)>;

  /// bmWrite and bmReadWrite require the dataset in dsWriteModes and a field that is not
  /// ReadOnly (EDatabaseError otherwise; nothing is created). bmWrite starts empty.
  TBlobStream(TField* Field, TBlobStreamMode Mode, const std::string& Content, TCommitProc Commit);
  /// Commits when still pending; errors raised while committing here are dropped (a destructor
  /// cannot raise): call Commit() first to see them.
  ~TBlobStream() override;

  int64_t Write(const void* buffer, int64_t count) override;
  void SetSize(int64_t newSize) override;
  /// Hands the content to the dataset now if it was written (or opened for writing) and not yet
  /// committed; may raise what the dataset or the field's OnChange raise.
  void Commit() override;
  bool Modified() const { return FModified; }

 private:
  TField* FField;
  TCommitProc FCommit;
  bool FModified;
};

}  // namespace fw
