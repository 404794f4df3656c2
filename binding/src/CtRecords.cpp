// Call wrappers of the binding layer: records, keys and key-ordered navigation.
#include "CtRecords.h"

#include "EntryPoints.h"
#include "LibraryLoader.h"

namespace CTDbIntf {

std::int16_t SetRecord(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec,
                       std::int32_t len) {
  LoadCTreeDLL(A);
  return EntryPoints.SETCURI(datno, pos, rec, len);
}

std::int32_t CurrentFileOffset(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.GETCURP(datno);
}

std::int16_t ResetRecord(TLoadAlignment A, std::int16_t datno, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.UPDCURI(datno, mode);
}

std::int16_t AddRecord(TLoadAlignment A, std::int16_t datno, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.ADDREC(datno, rec);
}

std::int16_t AddVRecord(TLoadAlignment A, std::int16_t datno, void* rec, std::int32_t len) {
  LoadCTreeDLL(A);
  return EntryPoints.ADDVREC(datno, rec, len);
}

std::int16_t ReWriteRecord(TLoadAlignment A, std::int16_t datno, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.RWTREC(datno, rec);
}

std::int16_t ReWriteVRecord(TLoadAlignment A, std::int16_t datno, void* rec, std::int32_t len) {
  LoadCTreeDLL(A);
  return EntryPoints.RWTVREC(datno, rec, len);
}

std::int16_t DeleteRecord(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.DELREC(datno);
}

std::int16_t DeleteVRecord(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.DELVREC(datno);
}

std::int16_t ReadISAMData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.REDIREC(datno, pos, rec);
}

std::int16_t ReReadVRecord(TLoadAlignment A, std::int16_t datno, void* rec, std::int32_t bufsiz) {
  LoadCTreeDLL(A);
  return EntryPoints.REDVREC(datno, rec, bufsiz);
}

std::int16_t ReReadRecord(TLoadAlignment A, std::int16_t datno, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.RRDREC(datno, rec);
}

std::int16_t FirstInSet(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                        std::int16_t siglen) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSSET(keyno, target, rec, siglen);
}

std::int16_t NextInSet(TLoadAlignment A, std::int16_t keyno, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTSET(keyno, rec);
}

std::int16_t LastInSet(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                       std::int16_t siglen) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTSET(keyno, target, rec, siglen);
}

std::int32_t VRecordLength(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.GETVLEN(datno);
}

std::int16_t CurrentISAMKey(TLoadAlignment A, std::int16_t keyno, void* idxval,
                            std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.GETCURK(keyno, idxval, plen);
}

std::int16_t GetRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.EQLREC(keyno, target, rec);
}

std::int16_t GetGTERecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.GTEREC(keyno, target, rec);
}

std::int16_t GetGTRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.GTREC(keyno, target, rec);
}

std::int16_t GetLTERecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.LTEREC(keyno, target, rec);
}

std::int16_t GetLTRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.LTREC(keyno, target, rec);
}

std::int16_t FirstRecord(TLoadAlignment A, std::int16_t filno, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSREC(filno, rec);
}

std::int16_t NextRecord(TLoadAlignment A, std::int16_t filno, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTREC(filno, rec);
}

std::int16_t PreviousRecord(TLoadAlignment A, std::int16_t filno, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVREC(filno, rec);
}

std::int16_t LastRecord(TLoadAlignment A, std::int16_t filno, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTREC(filno, rec);
}

std::int32_t NbrOfRecords(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.DATENT(datno);
}

std::int32_t NbrOfKeyEntries(TLoadAlignment A, std::int16_t keyno) {
  LoadCTreeDLL(A);
  return EntryPoints.IDXENT(keyno);
}

std::int16_t CurrentLowLevelKey(TLoadAlignment A, std::int16_t keyno, void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.GETCURKL(keyno, idxval);
}

std::int16_t BuildKey(TLoadAlignment A, std::int16_t keyno, char* rec, char* key, std::int32_t pos,
                      std::int32_t len) {
  LoadCTreeDLL(A);
  return EntryPoints.frmkey(keyno, rec, key, pos, len);
}

std::int16_t ReadData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.REDREC(datno, pos, rec);
}

std::int32_t GetKey(TLoadAlignment A, std::int16_t keyno, void* target) {
  LoadCTreeDLL(A);
  return EntryPoints.EQLKEY(keyno, target);
}

std::int32_t GetGTEKey(TLoadAlignment A, std::int16_t keyno, void* target, void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.GTEKEY(keyno, target, idxval);
}

std::int32_t GetGTKey(TLoadAlignment A, std::int16_t keyno, void* target, void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.GTKEY(keyno, target, idxval);
}

std::int32_t GetLTEKey(TLoadAlignment A, std::int16_t keyno, void* target, void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.LTEKEY(keyno, target, idxval);
}

std::int32_t GetLTKey(TLoadAlignment A, std::int16_t keyno, void* target, void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.LTKEY(keyno, target, idxval);
}

std::int32_t FirstKey(TLoadAlignment A, std::int16_t keyno, void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSKEY(keyno, idxval);
}

std::int32_t KeyAtPercentile(TLoadAlignment A, std::int16_t keyno, void* idxval,
                             std::int16_t percent) {
  LoadCTreeDLL(A);
  return EntryPoints.FRCKEY(keyno, idxval, percent);
}

std::int32_t EstimateKeySpan(TLoadAlignment A, std::int16_t keyno, void* key1, void* key2) {
  LoadCTreeDLL(A);
  return EntryPoints.ESTKEY(keyno, key1, key2);
}

std::int32_t NbrOfKeysInRange(TLoadAlignment A, std::int16_t keyno, void* low, void* high) {
  LoadCTreeDLL(A);
  return EntryPoints.RNGENT(keyno, low, high);
}

std::int32_t GetORDKey(TLoadAlignment A, std::int16_t keyno, void* target, std::int32_t offset,
                       void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.ORDKEY(keyno, target, offset, idxval);
}

std::int16_t PositionSet(TLoadAlignment A, std::int16_t keyno, void* rec, std::int16_t siglen) {
  LoadCTreeDLL(A);
  return EntryPoints.MIDSET(keyno, rec, siglen);
}

std::int16_t PreviousInSet(TLoadAlignment A, std::int16_t keyno, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVSET(keyno, rec);
}

std::int16_t AddKey(TLoadAlignment A, std::int16_t keyno, void* key, std::int32_t pos,
                    std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.ADDKEY(keyno, key, pos, mode);
}

std::int16_t LoadKey(TLoadAlignment A, std::int16_t keyno, void* key, std::int32_t pos,
                     std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.LOADKEY(keyno, key, pos, mode);
}

std::int32_t NextKey(TLoadAlignment A, std::int16_t keyno, void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTKEY(keyno, idxval);
}

std::int32_t LastKey(TLoadAlignment A, std::int16_t keyno, void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTKEY(keyno, idxval);
}

std::int32_t PreviousKey(TLoadAlignment A, std::int16_t keyno, void* idxval) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVKEY(keyno, idxval);
}

char* TransformKey(TLoadAlignment A, std::int16_t keyno, void* key) {
  LoadCTreeDLL(A);
  return EntryPoints.TFRMKEY(keyno, key);
}

std::int16_t DeleteKey(TLoadAlignment A, std::int16_t keyno, void* key, std::int32_t pos) {
  LoadCTreeDLL(A);
  return EntryPoints.DELCHK(keyno, key, pos);
}

std::int16_t DeleteKeyBlind(TLoadAlignment A, std::int16_t keyno, void* key) {
  LoadCTreeDLL(A);
  return EntryPoints.DELBLD(keyno, key);
}

std::int32_t VDataLength(TLoadAlignment A, std::int16_t datno, std::int32_t pos) {
  LoadCTreeDLL(A);
  return EntryPoints.GTVLEN(datno, pos);
}

std::int32_t NewData(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.NEWREC(datno);
}

std::int32_t NewVData(TLoadAlignment A, std::int16_t datno, std::int32_t len) {
  LoadCTreeDLL(A);
  return EntryPoints.NEWVREC(datno, len);
}

std::int16_t ReadVData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec,
                       std::int32_t bufsiz) {
  LoadCTreeDLL(A);
  return EntryPoints.RDVREC(datno, pos, rec, bufsiz);
}

std::int16_t ReleaseData(TLoadAlignment A, std::int16_t datno, std::int32_t pos) {
  LoadCTreeDLL(A);
  return EntryPoints.RETREC(datno, pos);
}

std::int16_t ReleaseVData(TLoadAlignment A, std::int16_t datno, std::int32_t pos) {
  LoadCTreeDLL(A);
  return EntryPoints.RETVREC(datno, pos);
}

std::int16_t WriteData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec) {
  LoadCTreeDLL(A);
  return EntryPoints.WRTREC(datno, pos, rec);
}

std::int16_t WriteVData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec,
                        std::int32_t len) {
  LoadCTreeDLL(A);
  return EntryPoints.WRTVREC(datno, pos, rec, len);
}

std::int16_t FirstInVSet(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                         std::int16_t siglen, std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSVSET(keyno, target, rec, siglen, plen);
}

std::int16_t LastInVSet(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                        std::int16_t siglen, std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTVSET(keyno, target, rec, siglen, plen);
}

std::int16_t NextInVSet(TLoadAlignment A, std::int16_t keyno, void* rec, std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTVSET(keyno, rec, plen);
}

std::int16_t PreviousInVSet(TLoadAlignment A, std::int16_t keyno, void* rec, std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVVSET(keyno, rec, plen);
}

std::int16_t PositionVSet(TLoadAlignment A, std::int16_t keyno, void* rec, std::int16_t siglen,
                          std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.MIDVSET(keyno, rec, siglen, plen);
}

std::int16_t FirstVRecord(TLoadAlignment A, std::int16_t filno, void* rec, std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.FRSVREC(filno, rec, plen);
}

std::int16_t GetGTEVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                           std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.GTEVREC(keyno, target, rec, plen);
}

std::int16_t GetGTVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                          std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.GTVREC(keyno, target, rec, plen);
}

std::int16_t GetLTEVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                           std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.LTEVREC(keyno, target, rec, plen);
}

std::int16_t GetLTVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                          std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.LTVREC(keyno, target, rec, plen);
}

std::int16_t GetVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                        std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.EQLVREC(keyno, target, rec, plen);
}

std::int16_t LastVRecord(TLoadAlignment A, std::int16_t filno, void* rec, std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.LSTVREC(filno, rec, plen);
}

std::int16_t NextVRecord(TLoadAlignment A, std::int16_t filno, void* rec, std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.NXTVREC(filno, rec, plen);
}

std::int16_t PreviousVRecord(TLoadAlignment A, std::int16_t filno, void* rec, std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.PRVVREC(filno, rec, plen);
}

std::int16_t ReadIsamVData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec,
                           std::int32_t* plen) {
  LoadCTreeDLL(A);
  return EntryPoints.REDIVREC(datno, pos, rec, plen);
}

}  // namespace CTDbIntf
