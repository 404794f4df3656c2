// TCTConnection: opening, reading and deleting a table's c-tree files (driver).
#include <cstring>
#include <new>

#include "CText.h"
#include "StringUtils.h"
#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "ctisam.h"

namespace Ctdb {
namespace {

// How many consecutive free file numbers to ask for when opening a file set whose index count
// is not known before it is open: a set that does not fit is retried with a larger run.
constexpr int16_t kFileRuns[] = {1, 8, 32, 128};

}  // namespace

int32_t TCTConnection::OpenTableFiles(const std::string& name, int16_t mode, int16_t& fileNo) {
  int32_t result = FUSE_ERR;
  for (const int16_t run : kFileRuns) {
    const int16_t candidate = CTDbIntf::AvailableFileNbr(FAlignment, run);
    if (candidate < 0) return CTDbIntf::GetCtIsamErr(FAlignment);
    result = CTDbIntf::OpenFileWithResourceXtd(FAlignment, candidate, CText(name), mode, CText(FPassword));
    if (result == 0) fileNo = candidate;
    if (result != FUSE_ERR) break;
  }
  // A file made by a library of another packing cannot be read through this one.
  return result == CT_EALIGN ? kCtAlignmentMismatch : result;
}

int32_t TCTConnection::DeleteTable(const std::string& dir, const std::string& name) {
  if (!FActive) return kCtNotActive;
  int16_t fileNo = -1;
  if (const int32_t r = OpenTableFiles(BuildFullPath(dir, name), EXCLUSIVE, fileNo)) return r;
  const int32_t result = CTDbIntf::DeleteRFile(FAlignment, fileNo);
  if (result != 0) (void)CTDbIntf::CloseRFile(FAlignment, fileNo);
  return result;
}

int32_t TCTConnection::ReadRecord(TCTCursorDesc* cursor, std::vector<uint8_t>& data) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  const int16_t datno = cursor->DataFileNo;
  try {
    if (cursor->HasBlobs) {
      const int32_t length = CTDbIntf::VRecordLength(FAlignment, datno);
      if (length <= 0) return CTDbIntf::GetCtIsamErr(FAlignment);
      data.assign(static_cast<size_t>(length), 0);
      return CTDbIntf::ReReadVRecord(FAlignment, datno, data.data(), length);
    }
    int32_t length = cursor->FixedRecLength;
    if (length <= 0) length = CTDbIntf::GetCtFileInfo(FAlignment, datno, RECLEN);
    if (length <= 0) return CTDbIntf::GetCtIsamErr(FAlignment);
    data.assign(static_cast<size_t>(length), 0);
    return CTDbIntf::ReReadRecord(FAlignment, datno, data.data());
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
}

std::vector<std::string> TCTConnection::SuperFileMembers(const std::string& path) {
  std::vector<std::string> members;
  const int16_t fileNo = CTDbIntf::AvailableFileNbr(FAlignment, 2);
  if (fileNo < 0 || CTDbIntf::OpenCtFile(FAlignment, fileNo, CText(path), SHARED | SUPERFILE | READFIL) != 0)
    return members;
  char member[1024];
  for (int16_t mode = 0; CTDbIntf::GetSuperFileNames(FAlignment, fileNo, member, sizeof member, mode) == 0; mode = 1)
    if (std::strstr(member, ".idx") == nullptr) members.emplace_back(member);
  static_cast<void>(CTDbIntf::CloseCtFile(FAlignment, fileNo, 1));
  return members;
}

}  // namespace Ctdb
