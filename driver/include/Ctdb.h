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

/// Copies the 10-byte c-tree BCD at `ctBcd` (precision, sign and places, 8 digit bytes) over the
/// first 10 bytes of `bcd`; the other digit bytes are left as they are.
void CTreeBCDtoBDEBCD(const void* ctBcd, fw::TBcd& bcd);
/// Copies the first 10 bytes of `bcd` to the 10 bytes at `ctBcd`.
void BDEBCDtoCTreeBCD(const fw::TBcd& bcd, void* ctBcd);

}  // namespace Ctdb
