// CursorKeys: key, position and record helpers shared by the driver's cursor, record and index
// routines (driver, private).
#pragma once

#include <cstdint>
#include <vector>

#include "CTDbIntf.h"

namespace Ctdb {

class TCTCursorDesc;
class TCTCustomRecordBuffer;

namespace cursorkeys {

/// True when the cursor reads in physical order (no index is current).
bool PhysicalOrder(const TCTCursorDesc* cursor);
/// Key length of the current index (the cursor's key buffer, sized by GetCursorProps).
int32_t KeyLength(const TCTCursorDesc* cursor);
/// True when index `keyNo` allows duplicates (its keys end in a 4-byte record position).
bool AllowsDuplicates(CTDbIntf::TLoadAlignment a, int16_t keyNo);
/// A search target of `keyLength` bytes from `key`: the bytes of `key` that fit, the rest filled
/// with `fill`. On an index allowing duplicates the 4-byte position suffix is set to `fill` too,
/// so that 0x00 finds the first and 0xFF the last record of a value.
std::vector<uint8_t> Target(const std::vector<uint8_t>& key, int32_t keyLength, bool duplicates, uint8_t fill);
/// The ISAM error of the last failed call, or 101 when none is recorded.
int32_t NotFound(CTDbIntf::TLoadAlignment a);
/// Reads the record at `pos` without making it current. 0 or c-tree's number.
int32_t ReadAt(CTDbIntf::TLoadAlignment a, const TCTCursorDesc* cursor, int32_t pos, std::vector<uint8_t>& data);
/// Makes `pos` current again with every index's current key on it (reads the record for that).
int32_t Restore(CTDbIntf::TLoadAlignment a, const TCTCursorDesc* cursor, int32_t pos);
/// Builds the key of index `keyNo` for the record `data` at `pos` into `key` (resized to
/// `keyLength`); 0 or c-tree's number.
int32_t BuildKey(CTDbIntf::TLoadAlignment a, int16_t keyNo, const std::vector<uint8_t>& data, int32_t pos,
                 int32_t keyLength, std::vector<uint8_t>& key);

/// Adds the key of index `keyNo` built from record `data` for the record at `pos` (ADDKEY).
/// 2 when a unique index holds the value already.
int32_t AddKeyAt(CTDbIntf::TLoadAlignment a, int16_t keyNo, const std::vector<uint8_t>& data, int32_t pos);
/// Removes the key of index `keyNo` built from record `data` for the record at `pos` (DELCHK).
/// 101 when the index holds no such key.
int32_t DeleteKeyAt(CTDbIntf::TLoadAlignment a, int16_t keyNo, const std::vector<uint8_t>& data, int32_t pos);
/// The record bytes the buffer holds (empty when none).
std::vector<uint8_t> RecordOf(const TCTCustomRecordBuffer* buffer);

}  // namespace cursorkeys
}  // namespace Ctdb
