// A small in-memory dataset that drives the TDataSet protocol in the framework's own tests
// (framework layer, tests only).
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "TDataSet.h"

namespace fwtest {

/// One column of the in-memory table.
struct MemColumn {
  std::string Name;
  fw::TFieldType Type;
  int Size = 0;
  bool Required = false;
};

/// Records live in a vector in physical order; each has a 4-byte id that serves as bookmark.
/// The cursor is an index, -1 for the BOF crack and Count() for the EOF crack. Record buffer
/// layout: per column one null byte (1 = has value) and DataSize bytes (none for blobs, whose
/// content sits in a side table per buffer); then the 4-byte bookmark; then the 1-byte
/// bookmark flag; then the calculated-field area.
class TMemDataSet : public fw::TDataSet {
 public:
  TMemDataSet(fw::TComponent* AOwner, std::vector<MemColumn> Columns);
  ~TMemDataSet() override;

  /// Number of stored records (ignores the filter).
  int StoredCount() const { return static_cast<int>(FRecords.size()); }
  /// Record buffers allocated and not yet freed.
  int AllocatedBuffers = 0;
  /// When set, InternalPost raises EDatabaseError this many times before succeeding.
  int FailPosts = 0;
  /// Window row count as the base class sees it.
  int WindowCount() const { return FRecordCount; }
  /// Setting a read-only dataset makes GetCanModify false.
  bool ReadOnlyTable = false;
  void SetUniDirectionalForTest(bool Value) { SetUniDirectional(Value); }
  /// Stands in for a detail dataset's master source.
  fw::TDataSource* MasterSource = nullptr;
  fw::TDataSource* DataSource() const override { return MasterSource; }

  bool GetFieldData(fw::TField* Field, void* Buffer) override;
  using fw::TDataSet::GetFieldData;
  void SetFieldData(fw::TField* Field, const void* Buffer) override;
  using fw::TDataSet::SetFieldData;
  fw::Variant Lookup(const std::string& KeyFields, const fw::Variant& KeyValues,
                     const std::string& ResultFields) override;
  bool BookmarkValid(const fw::TBookmark& Bookmark) override;
  int CompareBookmarks(const fw::TBookmark& Bookmark1, const fw::TBookmark& Bookmark2) override;
  void SetFiltered(bool Value) override;
  std::unique_ptr<fw::TStream> CreateBlobStream(fw::TField* Field, fw::TBlobStreamMode Mode) override;

 protected:
  fw::TGetResult GetRecord(fw::TRecordBuffer Buffer, fw::TGetMode GetMode, bool DoCheck) override;
  void InternalOpen() override;
  void InternalClose() override;
  void InternalInitFieldDefs() override;
  bool IsCursorOpen() const override { return FOpen; }
  fw::TRecordBuffer AllocRecordBuffer() override;
  void FreeRecordBuffer(fw::TRecordBuffer& Buffer) override;
  void InternalInitRecord(fw::TRecordBuffer Buffer) override;
  int GetRecordSize() const override { return FRecordSize; }
  void GetBookmarkData(fw::TRecordBuffer Buffer, void* Data) override;
  void SetBookmarkData(fw::TRecordBuffer Buffer, const void* Data) override;
  fw::TBookmarkFlag GetBookmarkFlag(fw::TRecordBuffer Buffer) override;
  void SetBookmarkFlag(fw::TRecordBuffer Buffer, fw::TBookmarkFlag Value) override;
  void InternalFirst() override { FCursor = -1; }
  void InternalLast() override { FCursor = StoredCount(); }
  void InternalGotoBookmark(const void* Bookmark) override;
  void InternalSetToRecord(fw::TRecordBuffer Buffer) override;
  void InternalPost() override;
  void InternalDelete() override;
  void InternalEdit() override;
  void InternalAddRecord(fw::TRecordBuffer Buffer, bool Append) override;
  int GetRecordCount() const override { return StoredCount(); }
  int GetRecNo() const override;
  bool GetCanModify() const override { return !ReadOnlyTable; }
  void ClearCalcFields(fw::TRecordBuffer Buffer) override;

 private:
  struct Record {
    uint32_t Id;
    std::vector<char> Data;
    std::vector<std::string> Blobs;  // per column; used by blob columns only
  };
  std::vector<std::string>& BlobsOf(fw::TRecordBuffer Buffer);
  int IndexOfId(uint32_t Id) const;
  uint32_t BufferId(fw::TRecordBuffer Buffer) const;
  /// The buffer field access uses in the current state; null when there is none.
  fw::TRecordBuffer CurrentBuffer() const;
  char* FieldPlace(fw::TRecordBuffer Buffer, const fw::TField* Field) const;
  bool AcceptRecord(fw::TRecordBuffer Buffer);
  /// Index of the first record whose `KeyFields` equal `KeyValues`, -1 when none.
  int FindRecord(const std::string& KeyFields, const fw::Variant& KeyValues);

  std::vector<MemColumn> FColumns;
  std::vector<Record> FRecords;
  std::vector<int> FOffsets;  // per column, offset of its null byte
  std::vector<char> FOldRecord;
  std::map<fw::TRecordBuffer, std::vector<std::string>> FBufferBlobs;
  fw::TRecordBuffer FFilterBuffer = nullptr;
  int FRecordSize = 0;
  int FCursor = -1;
  uint32_t FNextId = 1;
  bool FOpen = false;
};

}  // namespace fwtest
