// Unit Ctdb, the driver layer: the connection, table descriptors, record buffers, field
// conversion. Start with TCTConnection.h; TCTCursorDesc.h describes an open table,
// TCTCustomRecordBuffer.h one record in memory.
#pragma once

#include <cstdint>

#include "TBcd.h"
#include "CTCurProps.h"
#include "CTFldDesc.h"
#include "CTIdxDesc.h"
#include "CTTblDesc.h"
#include "CtdbTypes.h"
#include "DateTime.h"
#include "IfilDefinition.h"
#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "TCTCustomDataSet.h"
#include "TCTCustomRecordBuffer.h"
#include "TCTFieldDesc.h"

namespace Ctdb {

// ---- field value helpers (FieldConversion.cpp)

/// True when each of the `length` bytes at `buffer` equals `ch`; true for a length of 0 or less.
bool IsBlankBuffer(const void* buffer, int32_t length, char ch);

/// The framework date of c-tree day number `day` (109514 is 1 January 2000); 0 for day 0 (the
/// empty date) and when the day does not give a valid date. The year is counted as 365.25 days, so the
/// routine is the exact inverse of DateTimeToCtDate from 1 March 1900 on and counts earlier
/// century years as leap years.
fw::TDateTime CTDateToDateTime(int32_t day);
/// The c-tree day number of the day part of `date`; 0 for 0 and for dates outside years 1-9999.
int32_t DateTimeToCtDate(fw::TDateTime date);

/// Digits the 10-byte c-tree BCD holds: two a byte in its 8 digit bytes.
inline constexpr int kCtBcdDigits = 16;

/// Copies the 10-byte c-tree BCD at `ctBcd` (precision, sign and places, 8 digit bytes packed
/// from the first) over the first 10 bytes of `bcd` and zeroes the other 24 digit bytes.
void CTreeBCDtoBDEBCD(const void* ctBcd, fw::TBcd& bcd);
/// Writes `bcd` normalised to the 10 bytes at `ctBcd`: no leading zeros, no trailing fraction
/// zeros, precision = the significant digits left, packed from the first digit byte, places
/// kept (they may exceed the precision: 0.05 is one digit with 2 places); zero is precision 1,
/// places 0, positive. Returns false, writing nothing, when that form needs
/// more than kCtBcdDigits digits or `bcd` is malformed (precision above 64, a digit nibble
/// above 9): a value is never cut.
bool BDEBCDtoCTreeBCD(const fw::TBcd& bcd, void* ctBcd);

}  // namespace Ctdb
