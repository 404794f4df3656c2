// TCTConnection: bulk record scans for searches by value, below the record buffers (driver).
#include <new>

#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "ctisam.h"

namespace Ctdb {

int32_t TCTConnection::ScanRecords(TCTCursorDesc* cursor, const TCTRecordTest& test, int32_t& position,
                                   bool physicalOrder) {
  position = 0;
  if (const int32_t r = CheckCursor(cursor)) return r;
  if (cursor->HasBlobs || cursor->RangeActive || !test) return kCtInvalidIndexDesc;
  const CTDbIntf::TLoadAlignment a = Alignment();
  // NXTREC walks the data file in physical order, or an index in key order when given its
  // number, and copies each record straight into one reused buffer: no key is built, no record
  // is read twice and nothing is allocated per record.
  const int16_t fileNo = physicalOrder || cursor->KeyNo <= cursor->DataFileNo ? cursor->DataFileNo : cursor->KeyNo;
  const int32_t length = cursor->FixedRecLength;
  if (length <= 0) return kCtInvalidIndexDesc;
  int32_t result = 0;
  (void)SetContext(cursor);
  try {
    std::vector<uint8_t> record(static_cast<size_t>(length), 0);
    result = CTDbIntf::FirstRecord(a, fileNo, record.data());
    while (result == 0) {
      if (test(record.data(), length)) {
        position = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
        if (position == 0) result = CTDbIntf::GetCtIsamErr(a) != 0 ? CTDbIntf::GetCtIsamErr(a) : ICUR_ERR;
        break;
      }
      result = CTDbIntf::NextRecord(a, fileNo, record.data());
    }
  } catch (const std::bad_alloc&) {
    result = kCtOutOfMemory;
  } catch (...) {
    (void)RestoreContext(cursor);
    throw;
  }
  (void)RestoreContext(cursor);
  return result == INOT_ERR ? kCtNoRecord : result;
}

}  // namespace Ctdb
