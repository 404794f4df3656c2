// TCTConnection: appending, rewriting, deleting and checking records with their keys, each
// change inside one lock set (driver).
#include <cstring>
#include <new>

#include "CursorKeys.h"
#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "TCTCustomRecordBuffer.h"
#include "ctisam.h"

namespace Ctdb {

namespace cursorkeys {

int32_t AddKeyAt(CTDbIntf::TLoadAlignment a, int16_t keyNo, const std::vector<uint8_t>& data, int32_t pos) {
  const int32_t keyLength = CTDbIntf::GetCtFileInfo(a, keyNo, RECLEN);
  if (keyLength <= 0) return NotFound(a);
  std::vector<uint8_t> key;
  if (const int32_t r = BuildKey(a, keyNo, data, pos, keyLength, key)) return r;
  return CTDbIntf::AddKey(a, keyNo, key.data(), pos, 0);
}

int32_t DeleteKeyAt(CTDbIntf::TLoadAlignment a, int16_t keyNo, const std::vector<uint8_t>& data, int32_t pos) {
  const int32_t keyLength = CTDbIntf::GetCtFileInfo(a, keyNo, RECLEN);
  if (keyLength <= 0) return NotFound(a);
  std::vector<uint8_t> key;
  if (const int32_t r = BuildKey(a, keyNo, data, pos, keyLength, key)) return r;
  return CTDbIntf::DeleteKey(a, keyNo, key.data(), pos);
}

std::vector<uint8_t> RecordOf(const TCTCustomRecordBuffer* buffer) {
  if (buffer == nullptr || buffer->RecordPtr() == nullptr) return {};
  return std::vector<uint8_t>(buffer->RecordPtr(), buffer->RecordPtr() + buffer->RecordSize());
}

}  // namespace cursorkeys

using namespace cursorkeys;

namespace {

int32_t Check(const TCTConnection& connection, const TCTCursorDesc* cursor) {
  if (!connection.Active()) return kCtNotActive;
  if (cursor == nullptr) return kCtInvalidCursor;
  return 0;
}

// Modifying and deleting need a current record: at either end the position falls back to
// cpNone and the end is reported.
int32_t CheckPosition(TCTCursorDesc* cursor) {
  const TCTPosition position = cursor->Position;
  if (position == cpNone) return 0;
  cursor->Position = cpNone;
  return position == cpEof ? kCtEndOfTable : kCtBeginOfTable;
}

bool PackageMaintained(const CTIdxDesc& index) { return index.Maintained == 0; }

// Ends the lock set that a record change opened (LKISAM FREE releases every lock of the set).
int32_t EndLockSet(CTDbIntf::TLoadAlignment a) { return CTDbIntf::LockISAM(a, FREE); }

}  // namespace

// The keys of package-maintained indexes are added after the record itself, inside the same
// lock set, so that they carry the new record's position; a key that cannot be added takes the
// record out again, so that record and keys are written together or not at all.
int32_t TCTConnection::AppendRecord(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer) {
  if (const int32_t r = Check(*this, cursor)) return r;
  if (buffer == nullptr) return ICUR_ERR;
  const CTDbIntf::TLoadAlignment a = Alignment();
  if (!buffer->FillRecord() || buffer->RecordPtr() == nullptr) return kCtOutOfMemory;
  if (const int32_t r = CTDbIntf::LockISAM(a, ENABLE)) return r;
  const int16_t datno = cursor->DataFileNo;
  int32_t result = cursor->HasBlobs ? CTDbIntf::AddVRecord(a, datno, buffer->RecordPtr(), buffer->RecordSize())
                                    : CTDbIntf::AddRecord(a, datno, buffer->RecordPtr());
  if (result == 0 && OnIndexKey) {
    try {
      for (CTIdxDesc& index : cursor->Indexes) {
        if (!PackageMaintained(index)) continue;
        result = AddIndexKey(cursor, &index, buffer);
        if (result != 0) break;
      }
    } catch (...) {
      (void)EndLockSet(a);
      throw;
    }
    if (result != 0) {
      // Undo: the keys added so far, then the record.
      const int32_t pos = CTDbIntf::CurrentFileOffset(a, datno);
      const std::vector<uint8_t> data = RecordOf(buffer);
      for (const CTIdxDesc& index : cursor->Indexes)
        if (PackageMaintained(index)) (void)DeleteKeyAt(a, index.IndexId, data, pos);
      (void)(cursor->HasBlobs ? CTDbIntf::DeleteVRecord(a, datno) : CTDbIntf::DeleteRecord(a, datno));
    }
  }
  const int32_t released = EndLockSet(a);
  return result != 0 ? result : released;
}

int32_t TCTConnection::CheckRecord(TCTCursorDesc* cursor, TCTCustomRecordBuffer* oldBuffer,
                                   TCTCustomRecordBuffer* newBuffer) {
  if (const int32_t r = Check(*this, cursor)) return r;
  const CTDbIntf::TLoadAlignment a = Alignment();
  try {
    std::vector<uint8_t> stored;
    if (const int32_t r = ReadRecord(cursor, stored)) return r;
    const std::vector<uint8_t> old = RecordOf(oldBuffer);
    if (old.size() < stored.size() || std::memcmp(old.data(), stored.data(), stored.size()) != 0)
      return kCtRecordChanged;
    if (!OnIndexKey) return 0;
    const int32_t pos = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
    TCTCustomRecordBuffer* target = newBuffer != nullptr ? newBuffer : oldBuffer;
    for (CTIdxDesc& index : cursor->Indexes) {
      if (!PackageMaintained(index)) continue;
      const int32_t deleted = DeleteKeyAt(a, index.IndexId, stored, pos);
      // A record the hook kept out of the index has no key to remove.
      if (deleted != 0 && deleted != INOT_ERR) return deleted;
      if (const int32_t r = AddIndexKey(cursor, &index, target)) return r;
    }
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  return 0;
}

int32_t TCTConnection::ModifyRecord(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer,
                                    TCTCustomRecordBuffer* oldBuffer, bool release) {
  if (const int32_t r = Check(*this, cursor)) return r;
  if (const int32_t r = CheckPosition(cursor)) return r;
  if (buffer == nullptr) return ICUR_ERR;
  const CTDbIntf::TLoadAlignment a = Alignment();
  // Blob streams go into the record first, so that the keys moved below and the record written
  // are built from the same bytes.
  if (cursor->HasBlobs && !buffer->FillRecord()) return kCtOutOfMemory;
  if (const int32_t r = CTDbIntf::LockISAM(a, ENABLE)) return r;
  // Deliberately not silent: a record changed by someone else since it was read (1135) and a
  // rewrite the storage refuses (2 for a duplicate key, ...) are returned, so that the caller
  // does not report as posted an edit that was never written. The record is left as it was.
  int32_t result = 0;
  try {
    result = CheckRecord(cursor, oldBuffer, buffer);
    if (result == 0 && buffer->RecordPtr() == nullptr) result = kCtOutOfMemory;
    if (result == 0) {
      result = cursor->HasBlobs
                   ? CTDbIntf::ReWriteVRecord(a, cursor->DataFileNo, buffer->RecordPtr(), buffer->RecordSize())
                   : CTDbIntf::ReWriteRecord(a, cursor->DataFileNo, buffer->RecordPtr());
    }
    // Keys of package-maintained indexes may have been moved (all or some) before the refusal.
    if (result != 0 && result != kCtRecordChanged && OnIndexKey) RestorePackageKeys(cursor, buffer, oldBuffer);
  } catch (...) {
    (void)EndLockSet(a);
    throw;
  }
  const int32_t released = release ? EndLockSet(a) : 0;
  return result != 0 ? result : released;
}

// CheckRecord moves the keys of package-maintained indexes to the new record before the rewrite;
// when the change is refused they go back to the record as stored (which equals `oldBuffer`).
// Each step may find nothing to do (a key never moved, one the hook kept out): that is ignored.
void TCTConnection::RestorePackageKeys(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer,
                                       TCTCustomRecordBuffer* oldBuffer) {
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int32_t pos = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
  const std::vector<uint8_t> data = RecordOf(buffer);
  for (CTIdxDesc& index : cursor->Indexes) {
    if (!PackageMaintained(index)) continue;
    (void)DeleteKeyAt(a, index.IndexId, data, pos);
    (void)AddIndexKey(cursor, &index, oldBuffer);
  }
}

int32_t TCTConnection::RemoveRecord(TCTCursorDesc* cursor, TCTCustomRecordBuffer* buffer) {
  if (const int32_t r = Check(*this, cursor)) return r;
  if (const int32_t r = CheckPosition(cursor)) return r;
  const CTDbIntf::TLoadAlignment a = Alignment();
  if (const int32_t r = CTDbIntf::LockISAM(a, ENABLE)) return r;
  const int16_t datno = cursor->DataFileNo;
  const int32_t pos = CTDbIntf::CurrentFileOffset(a, datno);
  // The keys of package-maintained indexes were built from the stored record: read it before it
  // goes. The buffer's record stands in when the stored one cannot be read.
  std::vector<uint8_t> stored;
  bool anyPackageIndex = false;
  for (const CTIdxDesc& index : cursor->Indexes) anyPackageIndex = anyPackageIndex || PackageMaintained(index);
  if (anyPackageIndex && ReadRecord(cursor, stored) != 0) stored = RecordOf(buffer);
  const int32_t deleted = cursor->HasBlobs ? CTDbIntf::DeleteVRecord(a, datno) : CTDbIntf::DeleteRecord(a, datno);
  if (deleted == 0) {
    for (const CTIdxDesc& index : cursor->Indexes)
      if (PackageMaintained(index)) (void)DeleteKeyAt(a, index.IndexId, stored, pos);
  }
  // Kept so: the result of ending the lock set is returned, not the deletion's own.
  return EndLockSet(a);
}

}  // namespace Ctdb
