// Shared enumerations, logical field-type numbers and result numbers of the driver (unit Ctdb).
#pragma once

#include <cstdint>
#include <functional>

namespace Ctdb {

class TCTCursorDesc;
struct CTIdxDesc;

/// Where a cursor stands: on a record, after the last record, before the first record.
enum TCTPosition : uint8_t { cpNone, cpEof, cpBof };

/// The lock taken when the current record is re-read.
enum CTLockType : uint8_t { dbiNOLOCK, dbiWRITELOCK, dbiREADLOCK };
/// Whether a table is opened for writing.
enum CTOpenMode : uint8_t { dbiREADWRITE, dbiREADONLY };
/// Whether a table is opened shared or exclusively.
enum CTShareMode : uint8_t { dbiOPENSHARED, dbiOPENEXCL };

/// Which key buffer a table is filling, and whether a master/detail range is in force; rfNone: no
/// range (a table's initial value) or the key buffer of a seek.
enum TRangeFlag : uint8_t { rfRangeStart, rfRangeEnd, rfMasterDetail, rfNone };

/// The connection's index-key hook: asked, for an index the package maintains itself, whether the
/// record `recPtr` (`recLen` bytes) belongs in the index `indexDesc`; clearing `accept` keeps the
/// record out of it. `sender` is the cursor of the table being written.
using TCTIndexKeyEvent =
    std::function<void(TCTCursorDesc* sender, CTIdxDesc* indexDesc, const void* recPtr, int32_t recLen,
                       bool& accept)>;

/// Logical field types of the framework view of a field (`CTFldDesc::FieldType`).
enum : int16_t {
  fldUNKNOWN = 0,
  fldZSTRING = 1,
  fldDATE = 2,
  fldBLOB = 3,
  fldBOOL = 4,
  fldINT16 = 5,
  fldINT32 = 6,
  fldFLOAT = 7,
  fldBCD = 8,
  fldBYTES = 9,
  fldTIME = 10,
  fldTIMESTAMP = 11,
  fldUINT16 = 12,
  fldUINT32 = 13,
  fldFLOATIEEE = 14,
  fldVARBYTES = 15,
};

/// Logical subtypes (`CTFldDesc::SubType`): the framework's money and auto-increment numbers and
/// the driver's own numbers that remember which c-tree form a field had.
enum : int16_t {
  fldstINT16 = 5,      // 16-bit integers, signed and unsigned
  fldstMONEY = 21,     // 4-byte money (hundredths)
  fldstAUTOINC = 29,   // serial-number key segment
  fldstSFLOAT = 64,    // 4-byte float
  fldstFSTRING = 65,   // fixed string, no prefix
  fldstFPSTRING = 66,  // fixed string, 1-byte length prefix
  fldstF2STRING = 67,  // fixed string, 2-byte length prefix
  fldstF4STRING = 68,  // fixed string, 4-byte length prefix
  fldstCHAR = 69,      // one character
  fldstCHARU = 70,     // one unsigned character
  fldstSTRING = 71,    // variable zero-terminated text (memo)
  fldstPSTRING = 72,   // variable, 1-byte length prefix
  fldst2STRING = 73,   // variable, 2-byte length prefix
  fldst4STRING = 74,   // variable, 4-byte length prefix
};

/// Result numbers of the driver besides the engine's own (0 is success). Each has a message in
/// the binding's table (30000 + number).
enum : int32_t {
  kCtNotActive = 47,         // the connection is not active
  kCtNoRecord = 101,         // no record: end, start, outside the range, key not found
  kCtNoResource = 408,       // IFIL or DODA resource missing, empty or unreadable
  kCtBeginOfTable = 1101,    // current record asked for before the first record
  kCtEndOfTable = 1102,      // current record asked for after the last record
  kCtRecordTooLong = 1103,   // a table definition whose record exceeds kCtMaxRecordLength
  kCtValueDoesNotFit = 1104,  // a value the field's stored form cannot hold (BCD over 16 digits)
  kCtOffsetBeyondData = 1112,  // a field lies beyond the end of the record held
  kCtInvalidCursor = 1113,   // nil cursor
  kCtNoIndexes = 1114,       // the table has no index
  kCtNoFields = 1115,        // a table definition without fields
  kCtOutOfMemory = 1116,     // an allocation failed
  kCtRecordCorrupted = 1117,  // a stored value contradicts its field (a length prefix too large)
  kCtRecordChanged = 1135,   // the stored record changed since it was read
  kCtAlignmentMismatch = 1136,  // the file was made by a library of another alignment
  kCtInvalidIndexDesc = 1137,   // nil index descriptor or index ordinal out of range
};

/// Longest record the storage keeps: record lengths are 16-bit signed numbers in its definitions.
inline constexpr int32_t kCtMaxRecordLength = 32767;

/// c-tree's day 0 (2 March 1700) as a framework day number (days since 0001-01-01, plus one).
inline constexpr int32_t kCtDateOffset = 620606;

/// The 16-bit Boolean words of the descriptors: -1 is true, 0 is false.
inline constexpr int16_t kWordTrue = -1;
inline constexpr int16_t kWordFalse = 0;

}  // namespace Ctdb
