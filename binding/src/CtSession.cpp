// Call wrappers of the binding layer: session, transactions, locks, contexts, sets, batches and
// status.
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

char* GetCtTempFileName(TLoadAlignment A, void* a0, std::int32_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.TMPNAME(a0, a1);
}

std::int16_t InitIsam(TLoadAlignment A, std::int16_t a0, std::int16_t a1, std::int16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.INTISAM(a0, a1, a2);
}

std::int16_t OpenISAM(TLoadAlignment A, char* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNISAM(a0);
}

std::int16_t CloseISAM(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.CLISAM();
}

std::int16_t LockISAM(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.LKISAM(a0);
}

std::int16_t CloseISAMContext(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CLSICON(a0);
}

std::int16_t OpenISAMContext(TLoadAlignment A, std::int16_t a0, std::int16_t a1, std::int16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNICON(a0, a1, a2);
}

std::int16_t ChangeISAMContext(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CHGICON(a0);
}

std::int16_t DoBatch(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t a3,
                     std::int16_t a4) {
  LoadCTreeDLL(A);
  return EntryPoints.BATSET(a0, static_cast<pVOID>(a1), a2, a3, a4);
}

std::int16_t LockCtData(TLoadAlignment A, std::int16_t a0, std::int16_t a1, std::int32_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.LOKREC(a0, a1, a2);
}

std::int16_t ViewCTreeError(TLoadAlignment A, std::uint32_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.ViewCtreeError(a0);
}

std::int32_t GetSerialNbr(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.SERIALNUM(a0);
}

std::int16_t IOPERFORMANCE(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.IOPERFORMANCE(a0);
}

std::int16_t TranBegin(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANBEG(a0);
}

std::int16_t TranAbort(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANABT();
}

std::int16_t TranAbortXtd(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANABTX(a0);
}

std::int16_t TranCommit(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANEND(a0);
}

std::int16_t TranClear(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANCLR();
}

std::int16_t TranSave(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANSAV();
}

std::int16_t TranRestore(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.TRANRST(a0);
}

std::int16_t InitISAMXtd(TLoadAlignment A, std::int16_t a0, std::int16_t a1, std::int16_t a2,
                         std::int16_t a3, std::int16_t a4, char* a5, char* a6, char* a7) {
  LoadCTreeDLL(A);
  return EntryPoints.INTISAMX(a0, a1, a2, a3, a4, a5, a6, a7);
}

std::int16_t InitCTree(TLoadAlignment A, std::int16_t a0, std::int16_t a1, std::int16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.INTREE(a0, a1, a2);
}

std::int16_t InitCTreeXtd(TLoadAlignment A, std::int16_t a0, std::int16_t a1, std::int16_t a2,
                          std::int16_t a3, std::int16_t a4, char* a5, char* a6, char* a7) {
  LoadCTreeDLL(A);
  return EntryPoints.INTREEX(a0, a1, a2, a3, a4, a5, a6, a7);
}

std::int16_t StopServer(TLoadAlignment A, char* a0, char* a1, std::int16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.STPSRV(a0, a1, a2);
}

std::int16_t StopUser(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.STPUSR();
}

std::int16_t Security(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2,
                      std::int16_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.SECURITY(a0, a1, a2, a3);
}

std::int16_t SetOperationState(TLoadAlignment A, std::int32_t a0, std::int32_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.SETOPS(a0, a1);
}

std::int16_t SystemMonitor(TLoadAlignment A, std::int16_t a0, std::int32_t a1, char* a2,
                           std::int32_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.SYSMON(a0, a1, a2, a3);
}

std::int16_t Perform(TLoadAlignment A, std::int16_t mode) {
  LoadCTreeDLL(A);
  // The slot is never bound; checking it keeps a call from jumping to address zero.
  if (EntryPoints.Perform == nullptr) return kPerformNotBound;
  return EntryPoints.Perform(mode);
}

std::int16_t AllocateBatch(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.ALCBAT(a0);
}

std::int16_t ChangeBatch(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CHGBAT(a0);
}

std::int16_t FreeBatch(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.FREBAT();
}

std::int16_t AllocateSet(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.ALCSET(a0);
}

std::int16_t ChangeSet(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CHGSET(a0);
}

std::int16_t FreeSet(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.FRESET();
}

std::int16_t SetNodeName(TLoadAlignment A, char* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.SETNODE(a0);
}

std::int16_t ChangeHistory(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CHGHST(a0);
}

std::int16_t FreeHistory(TLoadAlignment A) {
  LoadCTreeDLL(A);
  return EntryPoints.FREHST();
}

std::int16_t TransactionHistory(TLoadAlignment A, std::int16_t a0, char* a1, char* a2,
                                std::int32_t a3, std::int32_t a4, std::uint16_t a5) {
  LoadCTreeDLL(A);
  return EntryPoints.CTHIST(a0, a1, a2, a3, a4, a5);
}

std::int16_t SystemConfiguration(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.SYSCFG(a0);
}

std::int16_t IOPERFORMANCEX(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.IOPERFORMANCEX(a0);
}

std::int16_t SETLOGPATH(TLoadAlignment A, char* a0, std::int32_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.SETLOGPATH(a0, a1);
}

std::int16_t GetCtSysIOCode(TLoadAlignment A) { return ReadCtreeError(A, 2); }

std::int16_t GetCtIsamErr(TLoadAlignment A) { return ReadCtreeError(A, 0); }

std::int16_t GetCtUErrCod(TLoadAlignment A) { return ReadCtreeError(A, 1); }

}  // namespace CTDbIntf
