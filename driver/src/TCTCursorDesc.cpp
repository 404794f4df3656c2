// TCTCursorDesc: the in-memory description and position of one open table (driver, unit Ctdb).
#include "TCTCursorDesc.h"

#include <algorithm>
#include <cstring>

#include "CTDbIntf.h"
#include "StringUtils.h"
#include "TCTConnection.h"
#include "TCTCustomRecordBuffer.h"

namespace Ctdb {

TCTCursorDesc::TCTCursorDesc(std::string tableName, int16_t dataFileNo, int16_t keyNo, int32_t openFlags,
                             TCTConnection* connection)
    : Connection(connection),
      TableName(std::move(tableName)),
      DataFileNo(dataFileNo),
      KeyNo(keyNo),
      OpenFlags(openFlags) {}

TCTCursorDesc::~TCTCursorDesc() {
  for (TCTCustomRecordBuffer* buffer : FBuffers) buffer->DetachCursor();
}

TCTFieldDesc* TCTCursorDesc::AddField(std::string name, int32_t fieldType, int32_t size, int32_t length,
                                      int32_t offset, int32_t blobNo) {
  auto field = std::make_unique<TCTFieldDesc>(this, std::move(name), fieldType, size, length, offset);
  field->BlobNo = blobNo;
  if (field->IsBlob) HasBlobs = true;
  Fields.push_back(std::move(field));
  return Fields.back().get();
}

void TCTCursorDesc::ClearFields() {
  Fields.clear();
  HasBlobs = false;
}

int32_t TCTCursorDesc::FieldByOffset(int32_t offset) const {
  for (size_t i = 0; i < Fields.size(); ++i)
    if (Fields[i]->Offset == offset) return static_cast<int32_t>(i) + 1;
  return -1;
}

TCTFieldDesc* TCTCursorDesc::FieldDescByIndex(int32_t index) const {
  if (index < 0 || index >= FieldCount()) return nullptr;
  return Fields[static_cast<size_t>(index)].get();
}

TCTFieldDesc* TCTCursorDesc::FieldDescByName(const std::string& name) const {
  const int32_t n = FieldNumByName(name);
  return n > 0 ? Fields[static_cast<size_t>(n - 1)].get() : nullptr;
}

int32_t TCTCursorDesc::FieldNumByName(const std::string& name) const {
  for (size_t i = 0; i < Fields.size(); ++i)
    if (fw::SameText(Fields[i]->Name, name)) return static_cast<int32_t>(i) + 1;
  return -1;
}

int32_t TCTCursorDesc::FindIndex(const std::string& name, int32_t number) const {
  for (size_t i = 0; i < Indexes.size(); ++i) {
    const CTIdxDesc& desc = Indexes[i];
    if (number >= 0) {
      if (desc.IndexId == number) return static_cast<int32_t>(i);
    } else if (name.empty()) {
      if (desc.Primary != 0) return static_cast<int32_t>(i);
    } else {
      const std::string own = desc.Name.empty() ? std::to_string(i) : desc.Name;
      if (fw::SameText(own, name)) return static_cast<int32_t>(i);
    }
  }
  return -1;
}

void TCTCursorDesc::AddIndexToList(const CTIdxDesc& desc) {
  Indexes.push_back(desc);
  ++IndexCount;
}

void TCTCursorDesc::ClearIndexes() { Indexes.clear(); }

void TCTCursorDesc::SetIndexes(int32_t ordinal, const CTIdxDesc& desc) {
  if (ordinal >= 0 && static_cast<size_t>(ordinal) < Indexes.size()) Indexes[static_cast<size_t>(ordinal)] = desc;
}

CTIdxDesc TCTCursorDesc::GetIndexes(int32_t ordinal) const {
  if (ordinal >= 0 && static_cast<size_t>(ordinal) < Indexes.size()) return Indexes[static_cast<size_t>(ordinal)];
  CTIdxDesc none;
  none.IndexId = -1;
  return none;
}

void TCTCursorDesc::SetIndexDesc(const std::string& name, const CTIdxDesc& desc) {
  for (CTIdxDesc& entry : Indexes)
    if (fw::SameText(entry.Name, name)) {
      entry = desc;
      return;
    }
}

CTIdxDesc TCTCursorDesc::GetIndexDesc(const std::string& name) const {
  for (const CTIdxDesc& entry : Indexes)
    if (fw::SameText(entry.Name, name)) return entry;
  CTIdxDesc none;
  none.IndexId = -1;
  return none;
}

void TCTCursorDesc::SetIndexNo(int16_t keyNo) {
  if (keyNo == KeyNo && KeyFieldsValid) return;
  KeyNo = keyNo;
  KeyFieldsValid = false;
  InitializeIndexFields();
}

void TCTCursorDesc::InitializeIndexFields() {
  if (KeyFieldsValid || KeyNo == DataFileNo) return;
  for (const CTIdxDesc& entry : Indexes)
    if (entry.IndexId == KeyNo) {
      KeyFieldCount = std::clamp<int32_t>(entry.FieldsInKey, 0, static_cast<int32_t>(KeyFields.size()));
      KeyFields = entry.KeyFields;
      KeyFieldsValid = true;
      return;
    }
}

int32_t TCTCursorDesc::GetIndexFields(int32_t n) const {
  if (n < 1 || n > KeyFieldCount) return 0;
  return KeyFields[static_cast<size_t>(n - 1)];
}

int32_t TCTCursorDesc::GetKeyLen(int32_t n) const {
  if (n < 0) n = KeyFieldCount;
  if (n < 1 || n > KeyFieldCount) return 0;
  int32_t length = 0;
  for (int32_t i = 0; i < n; ++i) {
    if (const TCTFieldDesc* field = FieldDescByIndex(KeyFields[static_cast<size_t>(i)] - 1))
      length += field->GetMaxSize();
  }
  return length;
}

int32_t TCTCursorDesc::CreateContext() {
  const int32_t context = CTDbIntf::OpenISAMContext(Connection->Alignment(), DataFileNo, -1, -1);
  if (context >= 0) FContexts.push_back(context);
  return context;
}

int32_t TCTCursorDesc::FreeContext(int32_t context) {
  const auto it = std::find(FContexts.begin(), FContexts.end(), context);
  if (it == FContexts.end()) return kCtInvalidCursor;
  FContexts.erase(it);
  return CTDbIntf::CloseISAMContext(Connection->Alignment(), static_cast<int16_t>(context));
}

void TCTCursorDesc::AddBuffer(TCTCustomRecordBuffer* buffer) {
  if (buffer != nullptr && std::find(FBuffers.begin(), FBuffers.end(), buffer) == FBuffers.end())
    FBuffers.push_back(buffer);
}

void TCTCursorDesc::RemoveBuffer(TCTCustomRecordBuffer* buffer) {
  FBuffers.erase(std::remove(FBuffers.begin(), FBuffers.end(), buffer), FBuffers.end());
}

void TCTCursorDesc::SetRange(const void* low, int32_t lowLength, bool lowInclusive, const void* high,
                             int32_t highLength, bool highInclusive) {
  const auto* lowBytes = static_cast<const uint8_t*>(low);
  const auto* highBytes = static_cast<const uint8_t*>(high);
  RangeLow.assign(lowBytes, lowBytes + (low != nullptr && lowLength > 0 ? lowLength : 0));
  RangeHigh.assign(highBytes, highBytes + (high != nullptr && highLength > 0 ? highLength : 0));
  RangeLowInclusive = lowInclusive;
  RangeHighInclusive = highInclusive;
  RangeActive = true;
}

void TCTCursorDesc::ResetRange() {
  RangeActive = false;
  RangeLow.clear();
  RangeHigh.clear();
}

}  // namespace Ctdb
