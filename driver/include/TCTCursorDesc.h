// TCTCursorDesc: the in-memory description and position of one open table (driver, unit Ctdb).
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CTIdxDesc.h"
#include "CtdbTypes.h"
#include "IfilDefinition.h"
#include "TCTFieldDesc.h"

namespace Ctdb {

class TCTConnection;
class TCTCustomRecordBuffer;

/// One open table: its c-tree file numbers, fields (from the DODA), indexes (from the IFIL),
/// current index, position, key range, record buffers and c-tree contexts. Made by the
/// connection when it opens a table and freed through the connection's cursor closing; the
/// record buffers registered with it are not owned and are detached when the cursor dies.
class TCTCursorDesc {
 public:
  TCTConnection* Connection = nullptr;  ///< The connection that opened the table; not owned.
  std::string TableName;                ///< Full file name of the data file.
  int16_t DataFileNo = -1;              ///< c-tree data file number.
  int16_t KeyNo = -1;                   ///< Current index; `DataFileNo` for physical order.
  int16_t SchemaFileNo = -1;            ///< Open schema (".dsf") file, -1 when none.
  int32_t OpenFlags = 0;                ///< c-tree open mode (1 shared, 8 read only, ...).
  std::vector<std::unique_ptr<TCTFieldDesc>> Fields;  ///< In schema order.
  TIndexDescList Indexes;               ///< Index descriptors in IFIL order.
  int32_t IndexCount = 0;               ///< Indexes of the table (from the IFIL).
  bool HasBlobs = false;                ///< Some field is variable-length.
  IfilDefinition Ifil;                  ///< The table's IFIL resource, decoded.
  int32_t IfilSize = 0;                 ///< Size of the IFIL resource image; 0 when none loaded.
  TCTPosition Position = cpNone;

  // Key fields of the current index (see InitializeIndexFields).
  int32_t KeyFieldCount = 0;
  bool KeyFieldsValid = false;
  std::array<int32_t, 256> KeyFields{};

  // Buffers of the current index's key and of the records steps and seeks read.
  std::vector<uint8_t> KeyBuffer;  ///< Sized to the current index's key length.
  std::vector<uint8_t> ReadBuffer;
  std::vector<uint8_t> FoundKey;   ///< The key the last step or seek in an index found.
  int32_t FixedRecLength = 0;

  // Key range of the current index.
  bool RangeActive = false;
  std::vector<uint8_t> RangeLow;
  bool RangeLowInclusive = true;
  std::vector<uint8_t> RangeHigh;
  bool RangeHighInclusive = true;
  int32_t SeqNo = 0;  ///< Number of the current record from the start of the table or range.

  /// Creates a cursor on an open table; position `cpNone`, no fields, no indexes.
  TCTCursorDesc(std::string tableName, int16_t dataFileNo, int16_t keyNo, int32_t openFlags,
                TCTConnection* connection);
  /// Detaches the registered record buffers (their cursor becomes null); frees nothing of c-tree.
  ~TCTCursorDesc();
  TCTCursorDesc(const TCTCursorDesc&) = delete;
  TCTCursorDesc& operator=(const TCTCursorDesc&) = delete;

  // ---- fields
  /// Appends a field descriptor; a blob field sets `HasBlobs`. Returns the new descriptor.
  TCTFieldDesc* AddField(std::string name, int32_t fieldType, int32_t size, int32_t length, int32_t offset,
                         int32_t blobNo);
  void ClearFields();
  int32_t FieldCount() const { return static_cast<int32_t>(Fields.size()); }
  /// 1-based number of the field whose c-tree `Offset` is `offset`; -1 when none.
  int32_t FieldByOffset(int32_t offset) const;
  /// Field at 0-based `index`; null when out of range.
  TCTFieldDesc* FieldDescByIndex(int32_t index) const;
  /// Field with that name (ignoring case); null when none.
  TCTFieldDesc* FieldDescByName(const std::string& name) const;
  /// 1-based number of the field with that name (ignoring case); -1 when none.
  int32_t FieldNumByName(const std::string& name) const;

  // ---- indexes
  /// Ordinal of an index, or -1. With `number` < 0 the index is found by name, ignoring case: an
  /// entry without a name is compared as its decimal ordinal, and an empty `name` finds the first
  /// primary index. With `number` >= 0 the entry whose `IndexId` equals `number` is found.
  int32_t FindIndex(const std::string& name, int32_t number) const;
  int32_t GetIndexCount() const { return IndexCount; }
  /// Appends a descriptor and counts it in `IndexCount`.
  void AddIndexToList(const CTIdxDesc& desc);
  /// Empties the descriptor list (`IndexCount` keeps the table's count).
  void ClearIndexes();
  /// Overwrites the descriptor at `ordinal`; out of range does nothing.
  void SetIndexes(int32_t ordinal, const CTIdxDesc& desc);
  /// Copy of the descriptor at `ordinal`; an empty descriptor with `IndexId` -1 when out of range.
  CTIdxDesc GetIndexes(int32_t ordinal) const;
  /// Overwrites the first descriptor whose name matches (ignoring case); none does nothing.
  void SetIndexDesc(const std::string& name, const CTIdxDesc& desc);
  /// Copy of the first descriptor whose name matches (ignoring case); otherwise an all-zero
  /// descriptor with an empty name and `IndexId` -1.
  CTIdxDesc GetIndexDesc(const std::string& name) const;

  // ---- key fields of the current index
  /// Makes `keyNo` the current index; nothing happens when it already is and its key fields are
  /// known, otherwise the key fields are taken again (`InitializeIndexFields`).
  void SetIndexNo(int16_t keyNo);
  /// When the key fields are not known and an index is current, copies them from the index
  /// descriptor whose `IndexId` is `KeyNo`.
  void InitializeIndexFields();
  /// 1-based field number of the `n`-th (1-based) key field of the current index; 0 when none.
  int32_t GetIndexFields(int32_t n) const;
  /// Number of key fields of the current index.
  int32_t GetIndexFieldNo() const { return KeyFieldCount; }
  /// Sum of `GetMaxSize` of the first `n` key fields; all of them when `n` is negative; 0 when
  /// `n` is 0 or beyond the key field count.
  int32_t GetKeyLen(int32_t n) const;

  // ---- c-tree contexts
  /// Opens a new c-tree context on the data file (OPNICON with -1, -1), remembers and returns its
  /// number; a negative engine result is returned as is and nothing is remembered.
  int32_t CreateContext();
  /// Closes a context this cursor opened (CLSICON) and forgets it; returns the engine's result,
  /// or 1113 when the context is not one of this cursor's.
  int32_t FreeContext(int32_t context);
  /// The most recently created context still open; -1 when none.
  int32_t LastContext() const { return FContexts.empty() ? -1 : FContexts.back(); }

  // ---- record buffers
  void AddBuffer(TCTCustomRecordBuffer* buffer);
  void RemoveBuffer(TCTCustomRecordBuffer* buffer);

  // ---- key range
  /// Sets the range of the current index from copies of the two keys.
  void SetRange(const void* low, int32_t lowLength, bool lowInclusive, const void* high, int32_t highLength,
                bool highInclusive);
  void ResetRange();

 private:
  std::vector<TCTCustomRecordBuffer*> FBuffers;
  std::vector<int32_t> FContexts;
};

}  // namespace Ctdb
