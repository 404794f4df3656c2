// Call wrappers of the binding layer: records, keys and key-ordered navigation.
#include "CtRecords.h"

#include "EntryPoints.h"
#include "LibraryLoader.h"

namespace CTDbIntf {

std::int16_t SetRecord(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2,
                       std::int32_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.SETCURI(a0, a1, a2, a3);
}

std::int32_t CurrentFileOffset(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.GETCURP(a0);
}

std::int16_t ResetRecord(TLoadAlignment A, std::int16_t a0, std::int16_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.UPDCURI(a0, a1);
}

std::int16_t AddRecord(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.ADDREC(a0, a1);
}

std::int16_t AddVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.ADDVREC(a0, a1, a2);
}

std::int16_t ReWriteRecord(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.RWTREC(a0, a1);
}

std::int16_t ReWriteVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.RWTVREC(a0, a1, a2);
}

std::int16_t DeleteRecord(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.DELREC(a0);
}

std::int16_t DeleteVRecord(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.DELVREC(a0);
}

std::int16_t ReadISAMData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.REDIREC(a0, a1, a2);
}

std::int16_t ReReadVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.REDVREC(a0, a1, a2);
}

std::int16_t ReReadRecord(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.RRDREC(a0, a1);
}

std::int16_t FirstInSet(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int16_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSSET(a0, a1, a2, a3);
}

std::int16_t NextInSet(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTSET(a0, a1);
}

std::int16_t LastInSet(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int16_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTSET(a0, a1, a2, a3);
}

std::int32_t VRecordLength(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.GETVLEN(a0);
}

std::int16_t CurrentISAMKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.GETCURK(a0, a1, a2);
}

std::int16_t GetRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.EQLREC(a0, a1, a2);
}

std::int16_t GetGTERecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.GTEREC(a0, a1, a2);
}

std::int16_t GetGTRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.GTREC(a0, a1, a2);
}

std::int16_t GetLTERecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.LTEREC(a0, a1, a2);
}

std::int16_t GetLTRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.LTREC(a0, a1, a2);
}

std::int16_t FirstRecord(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSREC(a0, a1);
}

std::int16_t NextRecord(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTREC(a0, a1);
}

std::int16_t PreviousRecord(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVREC(a0, a1);
}

std::int16_t LastRecord(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTREC(a0, a1);
}

std::int32_t NbrOfRecords(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.DATENT(a0);
}

std::int32_t NbrOfKeyEntries(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.IDXENT(a0);
}

std::int16_t CurrentLowLevelKey(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.GETCURKL(a0, a1);
}

std::int32_t BuildKey(TLoadAlignment A, std::int16_t a0, char* a1, char* a2, std::int32_t a3,
                      std::int32_t a4) {
  LoadCTreeDLL(A);
  return EntryPoints.frmkey(a0, a1, a2, a3, a4);
}

std::int16_t ReadData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.REDREC(a0, a1, a2);
}

std::int32_t GetKey(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.EQLKEY(a0, a1);
}

std::int32_t GetGTEKey(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.GTEKEY(a0, a1, a2);
}

std::int32_t GetGTKey(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.GTKEY(a0, a1, a2);
}

std::int32_t GetLTEKey(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.LTEKEY(a0, a1, a2);
}

std::int32_t GetLTKey(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.LTKEY(a0, a1, a2);
}

std::int32_t FirstKey(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSKEY(a0, a1);
}

std::int32_t KeyAtPercentile(TLoadAlignment A, std::int16_t a0, void* a1, std::int16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.FRCKEY(a0, a1, a2);
}

std::int32_t EstimateKeySpan(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.ESTKEY(a0, a1, a2);
}

std::int32_t NbrOfKeysInRange(TLoadAlignment A, std::int16_t a0, void* a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.RNGENT(a0, a1, a2);
}

std::int32_t GetORDKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2, void* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.ORDKEY(a0, a1, a2, a3);
}

std::int16_t PositionSet(TLoadAlignment A, std::int16_t a0, void* a1, std::int16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.MIDSET(a0, a1, a2);
}

std::int16_t PreviousInSet(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVSET(a0, a1);
}

std::int16_t AddKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2, std::int16_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.ADDKEY(a0, a1, a2, a3);
}

std::int16_t LoadKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2,
                     std::int16_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.LOADKEY(a0, a1, a2, a3);
}

std::int32_t NextKey(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTKEY(a0, a1);
}

std::int32_t LastKey(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTKEY(a0, a1);
}

std::int32_t PreviousKey(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVKEY(a0, a1);
}

std::int16_t TransformKey(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.TFRMKEY(a0, a1);
}

std::int16_t DeleteKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.DELCHK(a0, a1, a2);
}

std::int16_t DeleteKeyBlind(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.DELBLD(a0, a1);
}

std::int32_t VDataLength(TLoadAlignment A, std::int16_t a0, std::int32_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.GTVLEN(a0, a1);
}

std::int32_t NewData(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.NEWREC(a0);
}

std::int32_t NewVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.NEWVREC(a0, a1);
}

std::int16_t ReadVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2,
                       std::int32_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.RDVREC(a0, a1, a2, a3);
}

std::int16_t ReleaseData(TLoadAlignment A, std::int16_t a0, std::int32_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.RETREC(a0, a1);
}

std::int16_t ReleaseVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.RETVREC(a0, a1);
}

std::int16_t WriteData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.WRTREC(a0, a1, a2);
}

std::int16_t WriteVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2,
                        std::int32_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.WRTVREC(a0, a1, a2, a3);
}

std::int16_t FirstInVSet(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int16_t a3,
                         std::int32_t* a4) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSVSET(a0, a1, a2, a3, a4);
}

std::int16_t LastInVSet(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int16_t a3,
                        std::int32_t* a4) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTVSET(a0, a1, a2, a3, a4);
}

std::int16_t NextInVSet(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTVSET(a0, a1, a2);
}

std::int16_t PreviousInVSet(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVVSET(a0, a1, a2);
}

std::int16_t PositionVSet(TLoadAlignment A, std::int16_t a0, void* a1, std::int16_t a2,
                          std::int32_t* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.MIDVSET(a0, a1, a2, a3);
}

std::int16_t FirstVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSVREC(a0, a1, a2);
}

std::int16_t GetGTEVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2,
                           std::int32_t* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.GTEVREC(a0, a1, a2, a3);
}

std::int16_t GetGTVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.GTVREC(a0, a1, a2, a3);
}

std::int16_t GetLTEVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2,
                           std::int32_t* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.LTEVREC(a0, a1, a2, a3);
}

std::int16_t GetLTVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.LTVREC(a0, a1, a2, a3);
}

std::int16_t GetVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.EQLVREC(a0, a1, a2, a3);
}

std::int16_t LastVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTVREC(a0, a1, a2);
}

std::int16_t NextVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTVREC(a0, a1, a2);
}

std::int16_t PreviousVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVVREC(a0, a1, a2);
}

std::int16_t ReadIsamVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2,
                           std::int32_t* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.REDIVREC(a0, a1, a2, a3);
}

}  // namespace CTDbIntf
