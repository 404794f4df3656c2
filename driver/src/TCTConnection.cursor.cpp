// TCTConnection: opening and closing cursors, keys, navigation within ranges, seeks, counts and
// record locks (driver).
#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "CText.h"
#include "CursorKeys.h"
#include "StringUtils.h"
#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "TCTCustomRecordBuffer.h"
#include "ctisam.h"

namespace Ctdb {

namespace cursorkeys {

bool PhysicalOrder(const TCTCursorDesc* cursor) { return cursor->KeyNo <= cursor->DataFileNo; }

int32_t KeyLength(const TCTCursorDesc* cursor) { return static_cast<int32_t>(cursor->KeyBuffer.size()); }

bool AllowsDuplicates(CTDbIntf::TLoadAlignment a, int16_t keyNo) {
  return CTDbIntf::GetCtFileInfo(a, keyNo, KEYDUP) == 1;
}

std::vector<uint8_t> Target(const std::vector<uint8_t>& key, int32_t keyLength, bool duplicates, uint8_t fill) {
  std::vector<uint8_t> target(static_cast<size_t>(std::max(keyLength, 0)), fill);
  const size_t valueLength = duplicates && target.size() >= 4 ? target.size() - 4 : target.size();
  std::copy_n(key.begin(), std::min(key.size(), valueLength), target.begin());
  return target;
}

int32_t NotFound(CTDbIntf::TLoadAlignment a) {
  const int32_t error = CTDbIntf::GetCtIsamErr(a);
  return error != 0 ? error : INOT_ERR;
}

int32_t ReadAt(CTDbIntf::TLoadAlignment a, const TCTCursorDesc* cursor, int32_t pos, std::vector<uint8_t>& data) {
  const int16_t datno = cursor->DataFileNo;
  if (cursor->HasBlobs) {
    const int32_t length = CTDbIntf::VDataLength(a, datno, pos);
    if (length <= 0) return NotFound(a);
    data.assign(static_cast<size_t>(length), 0);
    return CTDbIntf::ReadVData(a, datno, pos, data.data(), length);
  }
  int32_t length = cursor->FixedRecLength;
  if (length <= 0) length = CTDbIntf::GetCtFileInfo(a, datno, RECLEN);
  if (length <= 0) return NotFound(a);
  data.assign(static_cast<size_t>(length), 0);
  return CTDbIntf::ReadData(a, datno, pos, data.data());
}

int32_t Restore(CTDbIntf::TLoadAlignment a, const TCTCursorDesc* cursor, int32_t pos) {
  if (pos == 0) return 0;
  std::vector<uint8_t> data;
  if (const int32_t r = ReadAt(a, cursor, pos, data)) return r;
  return CTDbIntf::SetRecord(a, cursor->DataFileNo, pos, data.data(), static_cast<int32_t>(data.size()));
}

int32_t BuildKey(CTDbIntf::TLoadAlignment a, int16_t keyNo, const std::vector<uint8_t>& data, int32_t pos,
                 int32_t keyLength, std::vector<uint8_t>& key) {
  // The engine writes up to the index's key length; keep room for the longest key it allows.
  key.assign(static_cast<size_t>(std::max<int32_t>(keyLength, CT_MAXKEYLEN)), 0);
  std::vector<uint8_t> record(data);
  const int16_t length = CTDbIntf::BuildKey(a, keyNo, reinterpret_cast<char*>(record.data()),
                                            reinterpret_cast<char*>(key.data()), pos,
                                            static_cast<int32_t>(record.size()));
  if (length <= 0) return NotFound(a);
  key.resize(static_cast<size_t>(keyLength > 0 ? keyLength : length));
  return 0;
}

}  // namespace cursorkeys

using namespace cursorkeys;

namespace {

int32_t Check(const TCTConnection* connection, const TCTCursorDesc* cursor) {
  if (!connection->Active()) return kCtNotActive;
  if (cursor == nullptr) return kCtInvalidCursor;
  return 0;
}

int16_t LockMode(CTLockType lockType) { return lockType == dbiREADLOCK ? READREC : ENABLE; }

// Compares `length` bytes of `key` with `bound` over the shorter of the two lengths.
int Compare(const uint8_t* key, int32_t length, const std::vector<uint8_t>& bound) {
  const size_t n = std::min(static_cast<size_t>(std::max(length, 0)), bound.size());
  return n == 0 ? 0 : std::memcmp(key, bound.data(), n);
}

}  // namespace

int32_t TCTConnection::OpenCursor(std::unique_ptr<TCTCursorDesc>& cursor, const std::string& tableName,
                                  const std::string& database, int32_t openFlags) {
  cursor.reset();
  if (!Active()) return kCtNotActive;
  const CTDbIntf::TLoadAlignment a = Alignment();
  // A member "host!member" is opened by its full name: the engine finds the member inside its
  // host, so the host needs no open of its own.
  std::string fullName = BuildFullPath(database, tableName);
  fullName = fullName.c_str();  // BuildFullPath may end the name with a NUL where a dot was
  if (!fullName.empty() && fullName.front() != fw::PathDelim && ServerName().empty())
    fullName = fw::IncludeTrailingPathDelimiter(fw::GetCurrentDir()) + fullName;
  std::string oldDir;
  int16_t fileNo = -1;
  int32_t result = 0;
  try {
    ChangeToFileDir(fullName, oldDir);
    result = OpenTableFiles(fullName, static_cast<int16_t>(openFlags), fileNo);
    fw::SetCurrentDir(oldDir);
  } catch (const std::exception&) {
    if (!oldDir.empty()) fw::SetCurrentDir(oldDir);
    return FNOP_ERR;
  }
  if (result == CT_EALIGN) return kCtAlignmentMismatch;
  if (result != 0) return result;

  try {
    auto opened = std::make_unique<TCTCursorDesc>(fullName, fileNo, fileNo, openFlags, this);
    CTCurProps props;
    result = LoadIFIL(opened.get());
    if (result == 0) result = ReadFieldsDescriptions(opened.get());
    if (result == 0) result = GetCursorProps(opened.get(), props);
    if (result == 0) {
      opened->FixedRecLength = CTDbIntf::GetCtFileInfo(a, fileNo, RECLEN);
      if (opened->FixedRecLength <= 0) result = NotFound(a);
    }
    if (result == 0) {
      opened->ReadBuffer.assign(static_cast<size_t>(opened->FixedRecLength), 0);
      cursor = std::move(opened);
      return 0;
    }
  } catch (const std::bad_alloc&) {
    result = kCtOutOfMemory;
  }
  const int32_t isamError = CTDbIntf::GetCtIsamErr(a);
  (void)CTDbIntf::CloseRFile(a, fileNo);
  return result == kCtOutOfMemory || isamError == 0 ? result : isamError;
}

int32_t TCTConnection::CloseCursor(std::unique_ptr<TCTCursorDesc>& cursor) {
  if (const int32_t r = Check(this, cursor.get())) return r;
  const CTDbIntf::TLoadAlignment a = Alignment();
  if (cursor->DataFileNo < 0) {  // RenameTable closed the files already
    cursor.reset();
    return 0;
  }
  // Index files opened by OpenIndex are not part of the data file's set: their numbers lie past
  // the set's own indexes, and they are closed one by one.
  const int32_t setEnd = cursor->DataFileNo + static_cast<int32_t>(cursor->Ifil.ix.size());
  for (const CTIdxDesc& index : cursor->Indexes)
    if (index.IndexId > setEnd) (void)CTDbIntf::CloseCtFile(a, index.IndexId, 0);
  while (cursor->LastContext() >= 0) (void)cursor->FreeContext(cursor->LastContext());
  if (cursor->SchemaFileNo >= 0) (void)CTDbIntf::CloseRFile(a, cursor->SchemaFileNo);
  const int32_t result = CTDbIntf::CloseRFile(a, cursor->DataFileNo);
  cursor.reset();
  return result;
}

int32_t TCTConnection::AllocateKey(TCTCursorDesc* cursor, std::vector<uint8_t>& key) {
  if (cursor == nullptr) return 0;
  key.assign(static_cast<size_t>(KeyLength(cursor)), 0);
  return KeyLength(cursor);
}

int32_t TCTConnection::ExtractKey(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, std::vector<uint8_t>& key) {
  if (const int32_t r = Check(this, cursor)) return r;
  if (PhysicalOrder(cursor)) return kCtInvalidIndexDesc;
  if (buffer == nullptr || buffer->RecordPtr() == nullptr) return ICUR_ERR;
  try {
    const std::vector<uint8_t> data(buffer->RecordPtr(), buffer->RecordPtr() + buffer->RecordSize());
    return BuildKey(Alignment(), cursor->KeyNo, data, 0, KeyLength(cursor), key);
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
}

int32_t TCTConnection::IsInRange(TCTCursorDesc* cursor, const void* key, int32_t length) {
  if (cursor == nullptr) return kCtInvalidCursor;
  const auto* bytes = static_cast<const uint8_t*>(key);
  cursor->Position = cpNone;
  if (cursor->RangeActive) {
    const int low = Compare(bytes, length, cursor->RangeLow);
    if (low < 0 || (low == 0 && !cursor->RangeLowInclusive)) {
      cursor->Position = cpBof;
    } else {
      const int high = Compare(bytes, length, cursor->RangeHigh);
      if (high > 0 || (high == 0 && !cursor->RangeHighInclusive)) cursor->Position = cpEof;
    }
  }
  return cursor->Position == cpNone ? 0 : INOT_ERR;
}

// Range keys may be shorter than the index's keys (fewer key fields, or no position suffix on an
// index allowing duplicates). The search target fills what the range key leaves open so that an
// inclusive low end starts at the first key of its value and an inclusive high end at the last
// one (0x00 and 0xFF suffixes), while an exclusive end steps over every key of its value.
int32_t TCTConnection::GetGKey(TCTCursorDesc* cursor, std::vector<uint8_t>& key) {
  if (cursor == nullptr || PhysicalOrder(cursor)) return 0;
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int32_t keyLength = KeyLength(cursor);
  key.assign(static_cast<size_t>(keyLength), 0);
  std::vector<uint8_t> target = Target(cursor->RangeLow, keyLength, AllowsDuplicates(a, cursor->KeyNo),
                                       cursor->RangeLowInclusive ? 0x00 : 0xFF);
  return cursor->RangeLowInclusive ? CTDbIntf::GetGTEKey(a, cursor->KeyNo, target.data(), key.data())
                                   : CTDbIntf::GetGTKey(a, cursor->KeyNo, target.data(), key.data());
}

int32_t TCTConnection::GetLKey(TCTCursorDesc* cursor, std::vector<uint8_t>& key) {
  if (cursor == nullptr || PhysicalOrder(cursor)) return 0;
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int32_t keyLength = KeyLength(cursor);
  key.assign(static_cast<size_t>(keyLength), 0);
  std::vector<uint8_t> target = Target(cursor->RangeHigh, keyLength, AllowsDuplicates(a, cursor->KeyNo),
                                       cursor->RangeHighInclusive ? 0xFF : 0x00);
  return cursor->RangeHighInclusive ? CTDbIntf::GetLTEKey(a, cursor->KeyNo, target.data(), key.data())
                                    : CTDbIntf::GetLTKey(a, cursor->KeyNo, target.data(), key.data());
}

namespace {

// The cursor's buffer for fixed-length records read by a step or a seek.
uint8_t* RecordSpace(TCTCursorDesc* cursor) {
  std::vector<uint8_t>& record = cursor->ReadBuffer;
  const size_t length = static_cast<size_t>(std::max(cursor->FixedRecLength, 0));
  if (record.size() != length) record.assign(length, 0);
  return record.data();
}

// The cursor's buffer for the key a step or a seek found (room for the longest key).
uint8_t* KeySpace(TCTCursorDesc* cursor) {
  const size_t length = static_cast<size_t>(std::max<int32_t>(KeyLength(cursor), CT_MAXKEYLEN));
  if (cursor->FoundKey.size() < length) cursor->FoundKey.assign(length, 0);
  return cursor->FoundKey.data();
}

// Reads the first record of the range from its low end (forward) or its high end, with the
// search calls that read the record they find.
int32_t ReadRangeEnd(TCTConnection& conn, TCTCursorDesc* cursor, bool forward, void* record) {
  const CTDbIntf::TLoadAlignment a = conn.Alignment();
  const int16_t keyno = cursor->KeyNo;
  const bool duplicates = AllowsDuplicates(a, keyno);
  if (forward) {
    std::vector<uint8_t> target =
        Target(cursor->RangeLow, KeyLength(cursor), duplicates, cursor->RangeLowInclusive ? 0x00 : 0xFF);
    return cursor->RangeLowInclusive ? CTDbIntf::GetGTERecord(a, keyno, target.data(), record)
                                     : CTDbIntf::GetGTRecord(a, keyno, target.data(), record);
  }
  std::vector<uint8_t> target =
      Target(cursor->RangeHigh, KeyLength(cursor), duplicates, cursor->RangeHighInclusive ? 0xFF : 0x00);
  return cursor->RangeHighInclusive ? CTDbIntf::GetLTERecord(a, keyno, target.data(), record)
                                    : CTDbIntf::GetLTRecord(a, keyno, target.data(), record);
}

// Checks the key the index stands on against the cursor's range after a call that read a
// record. Outside the range, the record that was current before (`previous`) becomes current
// again, so that a step or seek past the range leaves the data file where it was.
int32_t KeepInRange(TCTConnection& conn, TCTCursorDesc* cursor, int32_t previous) {
  if (!cursor->RangeActive) return 0;
  const CTDbIntf::TLoadAlignment a = conn.Alignment();
  uint8_t* key = KeySpace(cursor);
  int32_t length = 0;
  if (const int16_t r = CTDbIntf::CurrentISAMKey(a, cursor->KeyNo, key, &length)) return r;
  const int32_t result = conn.IsInRange(cursor, key, KeyLength(cursor));
  if (result != 0 && previous != 0) (void)CTDbIntf::SetRecord(a, cursor->DataFileNo, previous, nullptr, 0);
  return result;
}

// Moves one record forward (forward true) or backward in the current order and makes it current;
// `pos` receives its position. `read` tells whether the cursor's ReadBuffer now holds the whole
// record (fixed-length records: the navigation call read it, so it is not read a second time).
int32_t StepRecord(TCTConnection& conn, TCTCursorDesc* cursor, bool forward, int32_t& pos, bool& read) {
  const CTDbIntf::TLoadAlignment a = conn.Alignment();
  const int16_t datno = cursor->DataFileNo;
  const bool fromEnd = cursor->Position == (forward ? cpBof : cpEof);
  read = false;
  if (PhysicalOrder(cursor)) {
    uint8_t* record = RecordSpace(cursor);
    int32_t r;
    if (forward)
      r = fromEnd ? CTDbIntf::FirstRecord(a, datno, record) : CTDbIntf::NextRecord(a, datno, record);
    else
      r = fromEnd ? CTDbIntf::LastRecord(a, datno, record) : CTDbIntf::PreviousRecord(a, datno, record);
    if (r != 0) return r;
    pos = CTDbIntf::CurrentFileOffset(a, datno);
    read = !cursor->HasBlobs;
    return pos == 0 ? NotFound(a) : 0;
  }
  const int16_t keyno = cursor->KeyNo;
  if (!cursor->HasBlobs) {
    // One call steps the index and reads the record it lands on, making it current.
    const int32_t previous = cursor->RangeActive ? CTDbIntf::CurrentFileOffset(a, datno) : 0;
    uint8_t* record = RecordSpace(cursor);
    int32_t r;
    if (fromEnd && cursor->RangeActive)
      r = ReadRangeEnd(conn, cursor, forward, record);
    else if (fromEnd)
      r = forward ? CTDbIntf::FirstRecord(a, keyno, record) : CTDbIntf::LastRecord(a, keyno, record);
    else
      r = forward ? CTDbIntf::NextRecord(a, keyno, record) : CTDbIntf::PreviousRecord(a, keyno, record);
    if (r != 0) return r;
    if (const int32_t out = KeepInRange(conn, cursor, previous)) return out;
    pos = CTDbIntf::CurrentFileOffset(a, datno);
    read = true;
    return pos == 0 ? NotFound(a) : 0;
  }
  // Variable-length records: the key step, then the record is read at its length.
  uint8_t* key = KeySpace(cursor);
  std::vector<uint8_t> rangeKey;
  if (fromEnd && cursor->RangeActive) {
    pos = forward ? conn.GetGKey(cursor, rangeKey) : conn.GetLKey(cursor, rangeKey);
    key = rangeKey.data();
  } else if (fromEnd) {
    pos = forward ? CTDbIntf::FirstKey(a, keyno, key) : CTDbIntf::LastKey(a, keyno, key);
  } else {
    pos = forward ? CTDbIntf::NextKey(a, keyno, key) : CTDbIntf::PreviousKey(a, keyno, key);
  }
  if (pos == 0) return NotFound(a);
  if (cursor->RangeActive) {
    if (const int32_t r = conn.IsInRange(cursor, key, KeyLength(cursor))) return r;
  }
  return CTDbIntf::SetRecord(a, datno, pos, nullptr, 0);
}

int32_t LoadCurrent(TCTConnection& conn, TCTCursorDesc* cursor, CTLockType lockType, TCTCustomRecordBuffer* buffer,
                    int32_t pos, bool read) {
  if (lockType != dbiNOLOCK) {
    if (const int32_t r = conn.LockData(cursor->DataFileNo, LockMode(lockType))) return r;
  }
  if (buffer == nullptr) return 0;
  // A record locked after it was read is read again: another user may have changed it meanwhile.
  if (read && lockType == dbiNOLOCK) {
    buffer->SetRecord(cursor->ReadBuffer.data(), static_cast<int32_t>(cursor->ReadBuffer.size()));
  } else {
    std::vector<uint8_t> data;
    if (const int32_t r = conn.ReadRecord(cursor, data)) return r;
    buffer->SetRecord(std::move(data));
  }
  buffer->SetBookmark(&pos);
  return 0;
}

}  // namespace

int32_t TCTConnection::GetNextRecord(TCTCursorDesc* cursor, CTLockType lockType, TCTCustomRecordBuffer* buffer) {
  if (const int32_t r = Check(this, cursor)) return r;
  if (cursor->Position == cpEof) return INOT_ERR;
  int32_t result;
  try {
    int32_t pos = 0;
    bool read = false;
    result = StepRecord(*this, cursor, true, pos, read);
    if (result == 0) result = LoadCurrent(*this, cursor, lockType, buffer, pos, read);
  } catch (const std::bad_alloc&) {
    result = kCtOutOfMemory;
  }
  if (result == 0) {
    cursor->Position = cpNone;
    ++cursor->SeqNo;
  } else {
    cursor->Position = cpEof;
    int32_t count = 0;
    if (GetRecordCount(cursor, count) == 0) cursor->SeqNo = count;
  }
  return result;
}

int32_t TCTConnection::GetPriorRecord(TCTCursorDesc* cursor, CTLockType lockType, TCTCustomRecordBuffer* buffer) {
  if (const int32_t r = Check(this, cursor)) return r;
  if (cursor->Position == cpBof) return INOT_ERR;
  int32_t result;
  try {
    int32_t pos = 0;
    bool read = false;
    result = StepRecord(*this, cursor, false, pos, read);
    if (result == 0) result = LoadCurrent(*this, cursor, lockType, buffer, pos, read);
  } catch (const std::bad_alloc&) {
    result = kCtOutOfMemory;
  }
  if (result == 0) {
    cursor->Position = cpNone;
    --cursor->SeqNo;
  } else {
    cursor->Position = cpBof;
    cursor->SeqNo = -1;
  }
  return result;
}

int32_t TCTConnection::GetCurrentRecord(TCTCursorDesc* cursor, CTLockType lockType, TCTCustomRecordBuffer* buffer) {
  if (const int32_t r = Check(this, cursor)) return r;
  if (cursor->Position == cpEof) return kCtEndOfTable;
  if (cursor->Position == cpBof) return kCtBeginOfTable;
  const CTDbIntf::TLoadAlignment a = Alignment();
  try {
    if (lockType != dbiNOLOCK) {
      if (const int32_t r = LockData(cursor->DataFileNo, LockMode(lockType))) return r;
    }
    std::vector<uint8_t> data;
    if (const int32_t r = ReadRecord(cursor, data)) return r;
    const int32_t pos = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
    if (!PhysicalOrder(cursor)) {
      std::vector<uint8_t> key;
      if (const int32_t r = BuildKey(a, cursor->KeyNo, data, pos, KeyLength(cursor), key)) return r;
      if (cursor->RangeActive) {
        if (const int32_t r = IsInRange(cursor, key.data(), static_cast<int32_t>(key.size()))) return r;
      }
      // After a step or a seek the index stands on this record already: its current key is the
      // record's key. Otherwise the key is looked up, and the record made current again when
      // the index finds another record with the same key.
      uint8_t* current = KeySpace(cursor);
      int32_t currentLength = 0;
      const bool standing = CTDbIntf::CurrentISAMKey(a, cursor->KeyNo, current, &currentLength) == 0 &&
                            std::memcmp(current, key.data(), key.size()) == 0;
      int32_t foundPos = pos;
      if (!standing) {
        std::vector<uint8_t> found(static_cast<size_t>(std::max<int32_t>(KeyLength(cursor), CT_MAXKEYLEN)), 0);
        foundPos = CTDbIntf::GetGTEKey(a, cursor->KeyNo, key.data(), found.data());
      }
      if (foundPos == 0) return NotFound(a);
      if (foundPos != pos) {
        // The index stands on another record with the same key: go back to our own record.
        if (const int32_t r = CTDbIntf::SetRecord(a, cursor->DataFileNo, pos, data.data(),
                                                  static_cast<int32_t>(data.size())))
          return r;
        if (const int32_t r = ReadRecord(cursor, data)) return r;
      }
    }
    if (buffer != nullptr) {
      buffer->SetRecord(std::move(data));
      buffer->SetBookmark(&pos);
    }
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  cursor->Position = cpNone;
  return 0;
}

int32_t TCTConnection::SetToBegin(TCTCursorDesc* cursor) {
  if (const int32_t r = Check(this, cursor)) return r;
  cursor->Position = cpBof;
  cursor->SeqNo = 0;
  return 0;
}

int32_t TCTConnection::SetToEnd(TCTCursorDesc* cursor) {
  if (const int32_t r = Check(this, cursor)) return r;
  cursor->Position = cpEof;
  return 0;
}

int32_t TCTConnection::GetBookMark(TCTCursorDesc* cursor, int32_t& bookmark) {
  if (const int32_t r = Check(this, cursor)) return r;
  bookmark = CTDbIntf::CurrentFileOffset(Alignment(), cursor->DataFileNo);
  if (bookmark != 0) return 0;
  const int32_t error = CTDbIntf::GetCtIsamErr(Alignment());
  return error != 0 ? error : ICUR_ERR;
}

int32_t TCTConnection::SetToBookMark(TCTCursorDesc* cursor, int32_t bookmark) {
  if (const int32_t r = Check(this, cursor)) return r;
  const CTDbIntf::TLoadAlignment a = Alignment();
  try {
    if (const int32_t r = CTDbIntf::SetRecord(a, cursor->DataFileNo, bookmark, nullptr, 0)) return r;
    std::vector<uint8_t> data;
    if (const int32_t r = ReadRecord(cursor, data)) return r;
    if (!PhysicalOrder(cursor)) {
      std::vector<uint8_t> key;
      if (const int32_t r = BuildKey(a, cursor->KeyNo, data, bookmark, KeyLength(cursor), key)) return r;
      if (CTDbIntf::GetKey(a, cursor->KeyNo, key.data()) == 0) return NotFound(a);
      if (cursor->RangeActive) return IsInRange(cursor, key.data(), static_cast<int32_t>(key.size()));
    }
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  cursor->Position = cpNone;
  return 0;
}

int32_t TCTConnection::SetToAppended(TCTCursorDesc* cursor) {
  int32_t added = 0;
  if (const int32_t r = GetBookMark(cursor, added)) return r;
  if (PhysicalOrder(cursor)) {
    cursor->Position = cpNone;
    return 0;
  }
  const auto index = std::find_if(cursor->Indexes.begin(), cursor->Indexes.end(),
                                  [cursor](const CTIdxDesc& i) { return i.IndexId == cursor->KeyNo; });
  if (index == cursor->Indexes.end() || index->Maintained == 0 || !index->Condition.empty())
    return SetToBookMark(cursor, added);
  if (!cursor->RangeActive) {
    cursor->Position = cpNone;
    return 0;
  }
  const CTDbIntf::TLoadAlignment a = Alignment();
  try {
    std::vector<uint8_t> key(static_cast<size_t>(std::max<int32_t>(KeyLength(cursor), CT_MAXKEYLEN)), 0);
    int32_t length = 0;
    if (const int32_t r = CTDbIntf::CurrentISAMKey(a, cursor->KeyNo, key.data(), &length)) return r;
    return IsInRange(cursor, key.data(), length);
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
}

namespace {

// What a key seek looks for, relative to the buffer's key.
enum SeekKind { skEqual, skGreaterOrEqual, skGreater, skLessOrEqual, skLess };

// Seeks in the current index from the buffer's key. The target's open suffix is filled so that
// "or equal" and "greater" searches start past (0xFF) or before (0x00) every key of the value.
int32_t SeekKey(TCTConnection& conn, TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, SeekKind kind) {
  if (const int32_t r = Check(&conn, cursor)) return r;
  const CTDbIntf::TLoadAlignment a = conn.Alignment();
  try {
    std::vector<uint8_t> key;
    if (const int32_t r = conn.ExtractKey(cursor, buffer, key)) return r;
    const int32_t keyLength = KeyLength(cursor);
    const bool duplicates = AllowsDuplicates(a, cursor->KeyNo);
    const size_t valueLength = duplicates && keyLength >= 4 ? static_cast<size_t>(keyLength - 4) : key.size();
    const uint8_t fill = kind == skGreater || kind == skLessOrEqual ? 0xFF : 0x00;
    std::vector<uint8_t> target = Target(key, keyLength, duplicates, fill);
    if (!cursor->HasBlobs) {
      // One call finds the key and reads its record, making it current; a record that does not
      // match or lies outside the range gives the data file its previous record back.
      const int32_t previous = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
      uint8_t* record = RecordSpace(cursor);
      int32_t r;
      switch (kind) {
        case skEqual:
        case skGreaterOrEqual: r = CTDbIntf::GetGTERecord(a, cursor->KeyNo, target.data(), record); break;
        case skGreater: r = CTDbIntf::GetGTRecord(a, cursor->KeyNo, target.data(), record); break;
        case skLessOrEqual: r = CTDbIntf::GetLTERecord(a, cursor->KeyNo, target.data(), record); break;
        default: r = CTDbIntf::GetLTRecord(a, cursor->KeyNo, target.data(), record); break;
      }
      if (r != 0) return r;
      uint8_t* found = KeySpace(cursor);
      int32_t length = 0;
      if (const int16_t k = CTDbIntf::CurrentISAMKey(a, cursor->KeyNo, found, &length)) return k;
      if (kind == skEqual && std::memcmp(found, key.data(), valueLength) != 0) {
        if (previous != 0) (void)CTDbIntf::SetRecord(a, cursor->DataFileNo, previous, nullptr, 0);
        return INOT_ERR;
      }
      if (const int32_t out = KeepInRange(conn, cursor, previous)) return out;
      cursor->Position = cpNone;
      return 0;
    }
    std::vector<uint8_t> found(static_cast<size_t>(std::max<int32_t>(keyLength, CT_MAXKEYLEN)), 0);
    int32_t pos = 0;
    switch (kind) {
      case skEqual:
      case skGreaterOrEqual: pos = CTDbIntf::GetGTEKey(a, cursor->KeyNo, target.data(), found.data()); break;
      case skGreater: pos = CTDbIntf::GetGTKey(a, cursor->KeyNo, target.data(), found.data()); break;
      case skLessOrEqual: pos = CTDbIntf::GetLTEKey(a, cursor->KeyNo, target.data(), found.data()); break;
      default: pos = CTDbIntf::GetLTKey(a, cursor->KeyNo, target.data(), found.data()); break;
    }
    if (pos == 0) return NotFound(a);
    if (kind == skEqual && std::memcmp(found.data(), key.data(), valueLength) != 0) return INOT_ERR;
    if (cursor->RangeActive) {
      if (const int32_t r = conn.IsInRange(cursor, found.data(), keyLength)) return r;
    }
    if (const int32_t r = CTDbIntf::SetRecord(a, cursor->DataFileNo, pos, nullptr, 0)) return r;
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  cursor->Position = cpNone;
  return 0;
}

}  // namespace

int32_t TCTConnection::GotoKey(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer) {
  return SeekKey(*this, cursor, buffer, skEqual);
}

int32_t TCTConnection::GotoGTKey(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, bool inclusive) {
  return SeekKey(*this, cursor, buffer, inclusive ? skGreaterOrEqual : skGreater);
}

int32_t TCTConnection::GotoLTKey(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer, bool inclusive) {
  return SeekKey(*this, cursor, buffer, inclusive ? skLessOrEqual : skLess);
}

int32_t TCTConnection::GetRecordCount(TCTCursorDesc* cursor, int32_t& count) {
  if (const int32_t r = Check(this, cursor)) return r;
  const CTDbIntf::TLoadAlignment a = Alignment();
  count = 0;
  const int32_t saved = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
  int32_t result = 0;
  try {
    if (PhysicalOrder(cursor)) {
      count = CTDbIntf::NbrOfRecords(a, cursor->DataFileNo);
    } else if (!cursor->RangeActive) {
      count = CTDbIntf::NbrOfKeyEntries(a, cursor->KeyNo);
    } else {
      std::vector<uint8_t> low;
      std::vector<uint8_t> high;
      if (GetGKey(cursor, low) != 0 && GetLKey(cursor, high) != 0)
        count = CTDbIntf::NbrOfKeysInRange(a, cursor->KeyNo, low.data(), high.data());
    }
    if (count == 0) {
      // A count of 0 is either an empty table or range, or a failure the engine recorded.
      const int32_t error = CTDbIntf::GetCtUErrCod(a);
      if (error != INOT_ERR && error != ICUR_ERR) result = error;
    }
    // The range count walks keys of the index; DATENT and IDXENT read only the files' counts and
    // leave every position as it was, so there is nothing to restore after them (the restore
    // would read the record twice, on every append of a table).
    if (cursor->RangeActive || CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo) != saved) {
      // A current record deleted since it was read has no position to go back to.
      const int32_t restored = Restore(a, cursor, saved);
      if (result == 0 && restored != INOT_ERR && restored != ICUR_ERR) result = restored;
    }
  } catch (const std::bad_alloc&) {
    result = kCtOutOfMemory;
  }
  return result;
}

int32_t TCTConnection::GetAlmostRecordNumber(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer,
                                             int32_t& number) {
  if (const int32_t r = Check(this, cursor)) return r;
  number = 0;
  if (PhysicalOrder(cursor)) {
    number = cursor->SeqNo;
    return 0;
  }
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int16_t keyno = cursor->KeyNo;
  try {
    const int32_t keyLength = KeyLength(cursor);
    std::vector<uint8_t> current(static_cast<size_t>(std::max<int32_t>(keyLength, CT_MAXKEYLEN)), 0);
    int32_t pos = 0;
    if (buffer != nullptr && buffer->RecordPtr() != nullptr) {
      std::memcpy(&pos, buffer->GetBookmark(), sizeof pos);
      const std::vector<uint8_t> data(buffer->RecordPtr(), buffer->RecordPtr() + buffer->RecordSize());
      if (const int32_t r = BuildKey(a, keyno, data, pos, keyLength, current)) return r;
    } else {
      int32_t length = 0;
      if (const int32_t r = CTDbIntf::CurrentISAMKey(a, keyno, current.data(), &length)) return r;
      pos = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
    }
    std::vector<uint8_t> low(current.size(), 0);
    const int32_t first = cursor->RangeActive ? GetGKey(cursor, low) : CTDbIntf::FirstKey(a, keyno, low.data());
    if (first != 0) number = CTDbIntf::NbrOfKeysInRange(a, keyno, low.data(), current.data());
    // Stand the index and the data file on the record again.
    if (CTDbIntf::GetKey(a, keyno, current.data()) != 0 && pos != 0)
      (void)CTDbIntf::SetRecord(a, cursor->DataFileNo, pos, nullptr, 0);
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  return 0;
}

int32_t TCTConnection::GetSeqNo(TCTCursorDesc* cursor, int32_t& seqNo) {
  if (const int32_t r = Check(this, cursor)) return r;
  seqNo = 0;
  if (PhysicalOrder(cursor) || cursor->Position == cpBof) return 0;
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int16_t keyno = cursor->KeyNo;
  try {
    const int32_t keyLength = KeyLength(cursor);
    const bool duplicates = AllowsDuplicates(a, keyno);
    std::vector<uint8_t> low = Target(cursor->RangeLow, keyLength, duplicates, 0x00);
    if (cursor->Position == cpEof) {
      if (cursor->RangeActive) {
        std::vector<uint8_t> high = Target(cursor->RangeHigh, keyLength, duplicates, 0xFF);
        seqNo = CTDbIntf::NbrOfKeysInRange(a, keyno, low.data(), high.data());
      } else {
        seqNo = CTDbIntf::NbrOfKeyEntries(a, keyno);
      }
    } else {
      std::vector<uint8_t> data;
      if (const int32_t r = ReadRecord(cursor, data)) return r;
      std::vector<uint8_t> current(static_cast<size_t>(std::max<int32_t>(keyLength, CT_MAXKEYLEN)), 0);
      int32_t length = 0;
      if (const int32_t r = CTDbIntf::CurrentISAMKey(a, keyno, current.data(), &length)) return r;
      if (!cursor->RangeActive) {
        low.assign(current.size(), 0);
        if (CTDbIntf::FirstKey(a, keyno, low.data()) == 0) return CTDbIntf::GetCtUErrCod(a);
        // FRSKEY moved the index: put it back on the current key.
        (void)CTDbIntf::GetKey(a, keyno, current.data());
      }
      seqNo = CTDbIntf::NbrOfKeysInRange(a, keyno, low.data(), current.data());
    }
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  if (seqNo == 0) {
    const int32_t error = CTDbIntf::GetCtUErrCod(a);
    if (error != 0 && error != INOT_ERR) return error;
  }
  return 0;
}

int32_t TCTConnection::LockData(int16_t dataFileNo, int16_t mode) {
  if (!Active()) return kCtNotActive;
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int32_t pos = CTDbIntf::CurrentFileOffset(a, dataFileNo);
  if (pos == 0) {
    const int32_t error = CTDbIntf::GetCtIsamErr(a);
    return error != 0 ? error : ICUR_ERR;
  }
  return CTDbIntf::LockCtData(a, dataFileNo, mode, pos);
}

int32_t TCTConnection::LockRecord(TCTCursorDesc* cursor, int32_t& handle) {
  if (const int32_t r = Check(this, cursor)) return r;
  if (const int32_t r = LockData(cursor->DataFileNo, ENABLE)) return r;
  return GetBookMark(cursor, handle);
}

int32_t TCTConnection::UnlockRecord(TCTCursorDesc* cursor, int32_t handle) {
  if (const int32_t r = Check(this, cursor)) return r;
  const CTDbIntf::TLoadAlignment a = Alignment();
  // The lock is freed from a context of its own, so the table's position stays where it was.
  (void)SetContext(cursor);
  int32_t result = CTDbIntf::SetRecord(a, cursor->DataFileNo, handle, nullptr, 0);
  if (result == 0) result = CTDbIntf::LockCtData(a, cursor->DataFileNo, FREE, handle);
  (void)RestoreContext(cursor);
  return result;
}

}  // namespace Ctdb
