// Call wrappers of the binding layer: session, transactions, locks, sets and status.
#pragma once

#include <cstdint>

#include "TLoadAlignment.h"

namespace CTDbIntf {

// Every wrapper first loads the library of `A` (LoadCTreeDLL, which may raise its ECtreeException;
// nothing else in a wrapper raises), then calls the named entry point with the other arguments in
// their order and returns its result unchanged: an error number (0 = success) for the calls that
// return one, otherwise a position, count, length or pointer, with the error number then left for
// GetCtIsamErr. Definition records (IFIL, schema elements, batch key requests) are passed through
// untyped, laid out by the caller in the packing of `A`. Buffers are the caller's; the library
// never keeps them beyond the call.

/// TMPNAME: writes into the buffer a file name that no file in the current directory has.
std::int16_t GetCtTempFileName(TLoadAlignment A, void* buf, std::int32_t len);
/// INTISAM: starts the session with default limits (buffers, files, node sectors).
std::int16_t InitIsam(TLoadAlignment A, std::int16_t bufs, std::int16_t fils, std::int16_t sect);
/// OPNISAM: opens the files listed in a parameter file.
std::int16_t OpenISAM(TLoadAlignment A, char* parmfile);
/// CLISAM: closes every open file and ends the session.
std::int16_t CloseISAM(TLoadAlignment A);
/// LKISAM: starts, suspends, restores or ends a lock set.
std::int16_t LockISAM(TLoadAlignment A, std::int16_t mode);
/// CLSICON: closes an ISAM context.
std::int16_t CloseISAMContext(TLoadAlignment A, std::int16_t contextid);
/// OPNICON: opens a new ISAM context and makes it active.
std::int16_t OpenISAMContext(TLoadAlignment A, std::int16_t datno, std::int16_t contextid,
                             std::int16_t mode);
/// CHGICON: switches to an ISAM context.
std::int16_t ChangeISAMContext(TLoadAlignment A, std::int16_t contextid);
/// BATSET: performs a batch operation described by the key request.
std::int16_t DoBatch(TLoadAlignment A, std::int16_t keyno, void* request, void* buf,
                     std::int32_t bufsiz, std::int16_t mode);
/// LOKREC: locks or frees one record.
std::int16_t LockCtData(TLoadAlignment A, std::int16_t datno, std::int16_t mode, std::int32_t pos);
/// ViewCtreeError: lets the library show its own message for an error number.
std::int16_t ViewCTreeError(TLoadAlignment A, std::uint32_t code);
/// SERIALNUM: returns the last serial number given by a data file.
std::int32_t GetSerialNbr(TLoadAlignment A, std::int16_t datno);
/// IOPERFORMANCE: copies I/O statistics into the buffer.
std::int16_t IOPERFORMANCE(TLoadAlignment A, void* buf);
/// TRANBEG: begins a transaction.
std::int32_t TranBegin(TLoadAlignment A, std::int16_t mode);
/// TRANABT: aborts the transaction.
std::int16_t TranAbort(TLoadAlignment A);
/// TRANABTX: aborts the transaction with a mode.
std::int16_t TranAbortXtd(TLoadAlignment A, std::int16_t mode);
/// TRANEND: commits the transaction.
std::int16_t TranCommit(TLoadAlignment A, std::int16_t mode);
/// TRANCLR: clears the transaction state.
std::int16_t TranClear(TLoadAlignment A);
/// TRANSAV: sets a save point in the transaction.
std::int16_t TranSave(TLoadAlignment A);
/// TRANRST: rolls the transaction back to a save point.
std::int16_t TranRestore(TLoadAlignment A, std::int16_t savpnt);
/// INTISAMX: starts the session with limits, user profile, credentials and server name.
std::int16_t InitISAMXtd(TLoadAlignment A, std::int16_t bufs, std::int16_t fils, std::int16_t sect,
                         std::int16_t dbufs, std::int16_t userprof, char* userid, char* userword,
                         char* servname);
/// INTREE: starts the low-level session with default limits.
std::int16_t InitCTree(TLoadAlignment A, std::int16_t bufs, std::int16_t fils, std::int16_t sect);
/// INTREEX: starts the low-level session with credentials and server name.
std::int16_t InitCTreeXtd(TLoadAlignment A, std::int16_t bufs, std::int16_t fils, std::int16_t sect,
                          std::int16_t dbufs, std::int16_t userprof, char* userid, char* userword,
                          char* servname);
/// STPSRV: stops a server.
std::int16_t StopServer(TLoadAlignment A, char* userword, char* servname, std::int16_t delay);
/// STPUSR: ends the session of this user.
std::int16_t StopUser(TLoadAlignment A);
/// SECURITY: changes the security information of a file.
std::int16_t Security(TLoadAlignment A, std::int16_t filno, void* bufptr, std::int32_t bufsiz,
                      std::int16_t mode);
/// SETOPS: sets or clears operation state flags.
std::int32_t SetOperationState(TLoadAlignment A, std::int32_t status, std::int32_t mode);
/// SYSMON: waits for a system monitor event.
std::int16_t SystemMonitor(TLoadAlignment A, std::int16_t mode, std::int32_t timeout, char* buffer,
                           std::int32_t buflen);
/// Calls the one table slot that no entry point is bound to. The slot stays empty, so the
/// call reaches no function and returns kPerformNotBound (454, "call not supported").
inline constexpr std::int16_t kPerformNotBound = 454;
std::int16_t Perform(TLoadAlignment A, std::int16_t mode);
/// ALCBAT: allocates batch buffers.
std::int16_t AllocateBatch(TLoadAlignment A, std::int16_t numbat);
/// CHGBAT: switches to a batch.
std::int16_t ChangeBatch(TLoadAlignment A, std::int16_t batno);
/// FREBAT: frees the current batch.
std::int16_t FreeBatch(TLoadAlignment A);
/// ALCSET: allocates set buffers.
std::int16_t AllocateSet(TLoadAlignment A, std::int16_t numset);
/// CHGSET: switches to a set.
std::int16_t ChangeSet(TLoadAlignment A, std::int16_t setno);
/// FRESET: frees the current set.
std::int16_t FreeSet(TLoadAlignment A);
/// SETNODE: sets the node name of this client.
std::int16_t SetNodeName(TLoadAlignment A, char* nodename);
/// CHGHST: switches to a history set.
std::int16_t ChangeHistory(TLoadAlignment A, std::int16_t histno);
/// FREHST: frees the history set.
std::int16_t FreeHistory(TLoadAlignment A);
/// CTHIST: reads transaction history.
std::int16_t TransactionHistory(TLoadAlignment A, std::int16_t filno, char* target, char* bufptr,
                                std::int32_t recbyt, std::int32_t bufsiz, std::uint16_t mode);
/// SYSCFG: copies the system configuration into the buffer.
std::int16_t SystemConfiguration(TLoadAlignment A, void* buf);
/// IOPERFORMANCEX: copies extended I/O statistics into the buffer.
std::int16_t IOPERFORMANCEX(TLoadAlignment A, void* buf);
/// SETLOGPATH: sets the folder of the transaction logs.
std::int16_t SETLOGPATH(TLoadAlignment A, char* path, std::int32_t mode);
/// Calls GetCtreeError and returns the system I/O code of the last failing file operation; 0 when
/// GetCtreeError returns 0.
std::int16_t GetCtSysIOCode(TLoadAlignment A);
/// Calls GetCtreeError and returns the ISAM error number of the last ISAM call; 0 when
/// GetCtreeError returns 0.
std::int16_t GetCtIsamErr(TLoadAlignment A);
/// Calls GetCtreeError and returns the error number of the last call of any kind; 0 when
/// GetCtreeError returns 0.
std::int16_t GetCtUErrCod(TLoadAlignment A);

}  // namespace CTDbIntf
