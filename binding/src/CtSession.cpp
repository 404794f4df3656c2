// Call wrappers of the binding layer: session, transactions, locks, sets and status.
#include "CtSession.h"

#include "EntryPoints.h"
#include "LibraryLoader.h"

namespace CTDbIntf {

namespace {

// Reads the three numbers of GetCtreeError; `which` picks the one returned (0 ISAM error,
// 1 user error, 2 system I/O code). The other two land in a scratch word.
std::int16_t ReadCtreeError(TLoadAlignment A, int which) {
  LoadCTreeDLL(A);
  std::int16_t values[3] = {0, 0, 0};
  std::int16_t scratch = 0;
  std::int16_t* targets[3] = {&scratch, &scratch, &scratch};
  targets[which] = &values[which];
  if (EntryPoints.GetCtreeError(targets[0], targets[1], targets[2]) == 0) return 0;
  return values[which];
}

}  // namespace

std::int16_t GetCtTempFileName(TLoadAlignment A, void* buf, std::int32_t len) {
  LoadCTreeDLL(A);
  return EntryPoints.TMPNAME(buf, len);
}

std::int16_t InitIsam(TLoadAlignment A, std::int16_t bufs, std::int16_t fils, std::int16_t sect) {
  LoadCTreeDLL(A);
  return EntryPoints.INTISAM(bufs, fils, sect);
}

std::int16_t OpenISAM(TLoadAlignment A, char* parmfile) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNISAM(parmfile);
}

std::int16_t CloseISAM(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.CLISAM();
}

std::int16_t LockISAM(TLoadAlignment A, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.LKISAM(mode);
}

std::int16_t CloseISAMContext(TLoadAlignment A, std::int16_t contextid) {
  LoadCTreeDLL(A);
  return EntryPoints.CLSICON(contextid);
}

std::int16_t OpenISAMContext(TLoadAlignment A, std::int16_t datno, std::int16_t contextid,
                             std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNICON(datno, contextid, mode);
}

std::int16_t ChangeISAMContext(TLoadAlignment A, std::int16_t contextid) {
  LoadCTreeDLL(A);
  return EntryPoints.CHGICON(contextid);
}

std::int16_t DoBatch(TLoadAlignment A, std::int16_t keyno, void* request, void* buf,
                     std::int32_t bufsiz, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.BATSET(keyno, static_cast<pKEYREQ>(request), buf, bufsiz, mode);
}

std::int16_t LockCtData(TLoadAlignment A, std::int16_t datno, std::int16_t mode, std::int32_t pos) {
  LoadCTreeDLL(A);
  return EntryPoints.LOKREC(datno, mode, pos);
}

std::int16_t ViewCTreeError(TLoadAlignment A, std::uint32_t code) {
  LoadCTreeDLL(A);
  return EntryPoints.ViewCtreeError(code);
}

std::int32_t GetSerialNbr(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.SERIALNUM(datno);
}

std::int16_t IOPERFORMANCE(TLoadAlignment A, void* buf) {
  LoadCTreeDLL(A);
  return EntryPoints.IOPERFORMANCE(buf);
}

std::int32_t TranBegin(TLoadAlignment A, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANBEG(mode);
}

std::int16_t TranAbort(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANABT();
}

std::int16_t TranAbortXtd(TLoadAlignment A, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANABTX(mode);
}

std::int16_t TranCommit(TLoadAlignment A, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANEND(mode);
}

std::int16_t TranClear(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANCLR();
}

std::int16_t TranSave(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANSAV();
}

std::int16_t TranRestore(TLoadAlignment A, std::int16_t savpnt) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANRST(savpnt);
}

std::int16_t InitISAMXtd(TLoadAlignment A, std::int16_t bufs, std::int16_t fils, std::int16_t sect,
                         std::int16_t dbufs, std::int16_t userprof, char* userid, char* userword,
                         char* servname) {
  LoadCTreeDLL(A);
  return EntryPoints.INTISAMX(bufs, fils, sect, dbufs, userprof, userid, userword, servname);
}

std::int16_t InitCTree(TLoadAlignment A, std::int16_t bufs, std::int16_t fils, std::int16_t sect) {
  LoadCTreeDLL(A);
  return EntryPoints.INTREE(bufs, fils, sect);
}

std::int16_t InitCTreeXtd(TLoadAlignment A, std::int16_t bufs, std::int16_t fils, std::int16_t sect,
                          std::int16_t dbufs, std::int16_t userprof, char* userid, char* userword,
                          char* servname) {
  LoadCTreeDLL(A);
  return EntryPoints.INTREEX(bufs, fils, sect, dbufs, userprof, userid, userword, servname);
}

std::int16_t StopServer(TLoadAlignment A, char* userword, char* servname, std::int16_t delay) {
  LoadCTreeDLL(A);
  return EntryPoints.STPSRV(userword, servname, delay);
}

std::int16_t StopUser(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.STPUSR();
}

std::int16_t Security(TLoadAlignment A, std::int16_t filno, void* bufptr, std::int32_t bufsiz,
                      std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.SECURITY(filno, bufptr, bufsiz, mode);
}

std::int32_t SetOperationState(TLoadAlignment A, std::int32_t status, std::int32_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.SETOPS(status, mode);
}

std::int16_t SystemMonitor(TLoadAlignment A, std::int16_t mode, std::int32_t timeout, char* buffer,
                           std::int32_t buflen) {
  LoadCTreeDLL(A);
  return EntryPoints.SYSMON(mode, timeout, buffer, buflen);
}

std::int16_t Perform(TLoadAlignment A, std::int16_t mode) {
  LoadCTreeDLL(A);
  // The slot is never bound; checking it keeps a call from jumping to address zero.
  if (EntryPoints.Perform == nullptr) return kPerformNotBound;
  return EntryPoints.Perform(mode);
}

std::int16_t AllocateBatch(TLoadAlignment A, std::int16_t numbat) {
  LoadCTreeDLL(A);
  return EntryPoints.ALCBAT(numbat);
}

std::int16_t ChangeBatch(TLoadAlignment A, std::int16_t batno) {
  LoadCTreeDLL(A);
  return EntryPoints.CHGBAT(batno);
}

std::int16_t FreeBatch(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.FREBAT();
}

std::int16_t AllocateSet(TLoadAlignment A, std::int16_t numset) {
  LoadCTreeDLL(A);
  return EntryPoints.ALCSET(numset);
}

std::int16_t ChangeSet(TLoadAlignment A, std::int16_t setno) {
  LoadCTreeDLL(A);
  return EntryPoints.CHGSET(setno);
}

std::int16_t FreeSet(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.FRESET();
}

std::int16_t SetNodeName(TLoadAlignment A, char* nodename) {
  LoadCTreeDLL(A);
  return EntryPoints.SETNODE(nodename);
}

std::int16_t ChangeHistory(TLoadAlignment A, std::int16_t histno) {
  LoadCTreeDLL(A);
  return EntryPoints.CHGHST(histno);
}

std::int16_t FreeHistory(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.FREHST();
}

std::int16_t TransactionHistory(TLoadAlignment A, std::int16_t filno, char* target, char* bufptr,
                                std::int32_t recbyt, std::int32_t bufsiz, std::uint16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.CTHIST(filno, target, bufptr, recbyt, bufsiz, mode);
}

std::int16_t SystemConfiguration(TLoadAlignment A, void* buf) {
  LoadCTreeDLL(A);
  return EntryPoints.SYSCFG(buf);
}

std::int16_t IOPERFORMANCEX(TLoadAlignment A, void* buf) {
  LoadCTreeDLL(A);
  return EntryPoints.IOPERFORMANCEX(buf);
}

std::int16_t SETLOGPATH(TLoadAlignment A, char* path, std::int32_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.SETLOGPATH(path, mode);
}

std::int16_t GetCtSysIOCode(TLoadAlignment A) { return ReadCtreeError(A, 2); }

std::int16_t GetCtIsamErr(TLoadAlignment A) { return ReadCtreeError(A, 0); }

std::int16_t GetCtUErrCod(TLoadAlignment A) { return ReadCtreeError(A, 1); }

}  // namespace CTDbIntf
