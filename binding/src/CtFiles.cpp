// Call wrappers of the binding layer: files, definition records, resources and indexes.
#include "CtFiles.h"

#include "EntryPoints.h"
#include "LibraryLoader.h"

namespace CTDbIntf {

std::int16_t OpenFileWithResources(TLoadAlignment A, std::int16_t filno, char* name,
                                   std::int16_t filmod) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNRFIL(filno, name, filmod);
}

std::int16_t CloseRFile(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.CLRFIL(datno);
}

std::int16_t DeleteRFile(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.DELRFIL(datno);
}

std::int16_t CreateIFile(TLoadAlignment A, void* ifil) {
  LoadCTreeDLL(A);
  return EntryPoints.CREIFIL(static_cast<pIFIL>(ifil));
}

std::int32_t GetIFile(TLoadAlignment A, std::int16_t datno, std::int32_t len, void* buf) {
  LoadCTreeDLL(A);
  return EntryPoints.GETIFIL(datno, len, buf);
}

std::int16_t PutIFile(TLoadAlignment A, void* ifil) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTIFIL(static_cast<pIFIL>(ifil));
}

std::int16_t PermIIndex(TLoadAlignment A, void* ifil) {
  LoadCTreeDLL(A);
  return EntryPoints.PRMIIDX(static_cast<pIFIL>(ifil));
}

std::int16_t CompactIFile(TLoadAlignment A, void* ifil) {
  LoadCTreeDLL(A);
  return EntryPoints.CMPIFIL(static_cast<pIFIL>(ifil));
}

std::int16_t RebuildIFile(TLoadAlignment A, void* ifil) {
  LoadCTreeDLL(A);
  return EntryPoints.RBLIFIL(static_cast<pIFIL>(ifil));
}

std::int16_t OpenCtFile(TLoadAlignment A, std::int16_t filno, char* name, std::int16_t filmod) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNFIL(filno, name, filmod);
}

std::int16_t CreateDataFile(TLoadAlignment A, std::int16_t filno, char* name, std::uint16_t reclen,
                            std::uint16_t xtdsiz, std::int16_t filmod) {
  LoadCTreeDLL(A);
  return EntryPoints.CREDAT(filno, name, reclen, xtdsiz, filmod);
}

std::int16_t AvailableFileNbr(TLoadAlignment A, std::int16_t n) {
  LoadCTreeDLL(A);
  return EntryPoints.AVLFILNUM(n);
}

std::int16_t UpdateFileMode(TLoadAlignment A, std::int16_t filno, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTFIL(filno, mode);
}

std::int32_t GetDODA(TLoadAlignment A, std::int16_t datno, std::int32_t len, void* buf,
                     std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.GETDODA(datno, len, buf, mode);
}

std::int16_t PutDODA(TLoadAlignment A, std::int16_t datno, void* doda, std::uint16_t count) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTDODA(datno, static_cast<pDATOBJ>(doda), count);
}

std::int16_t CloseCtFile(TLoadAlignment A, std::int16_t filno, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.CLSFIL(filno, mode);
}

std::int32_t GetCtFileInfo(TLoadAlignment A, std::int16_t filno, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.GETFIL(filno, mode);
}

std::int16_t CompactIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                             std::int32_t permmask, char* group, char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.CMPIFILX(static_cast<pIFIL>(ifil), dataext, indexext, permmask, group,
                              password);
}

std::int16_t CreateDataFileXtd(TLoadAlignment A, std::int16_t filno, char* name,
                               std::uint16_t reclen, std::uint16_t xtdsiz, std::int16_t filmod,
                               std::int32_t permmask, char* group, char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.CREDATX(filno, name, reclen, xtdsiz, filmod, permmask, group, password);
}

std::int16_t OpenCtFileXtd(TLoadAlignment A, std::int16_t filno, char* name, std::int16_t filmod,
                           char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNFILX(filno, name, filmod, password);
}

std::int16_t RebuildIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                             std::int32_t permmask, char* group, char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.RBLIFILX(static_cast<pIFIL>(ifil), dataext, indexext, permmask, group,
                              password);
}

std::int16_t OpenFileWithResourceXtd(TLoadAlignment A, std::int16_t filno, char* name,
                                     std::int16_t filmod, char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNRFILX(filno, name, filmod, password);
}

std::int16_t CreateIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                            std::int32_t permmask, char* group, char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.CREIFILX(static_cast<pIFIL>(ifil), dataext, indexext, permmask, group,
                              password);
}

std::int16_t CloseIFIle(TLoadAlignment A, void* ifil) {
  LoadCTreeDLL(A);
  return EntryPoints.CLIFIL(static_cast<pIFIL>(ifil));
}

std::int16_t CreateIndexFile(TLoadAlignment A, std::int16_t keyno, char* name, std::int16_t keylen,
                             std::int16_t keytyp, std::int16_t keydup, std::int16_t nomemb,
                             std::uint16_t xtdsiz, std::int16_t filmod) {
  LoadCTreeDLL(A);
  return EntryPoints.CREIDX(keyno, name, keylen, keytyp, keydup, nomemb, xtdsiz, filmod);
}

std::int16_t CreateIndexFileXtd(TLoadAlignment A, std::int16_t keyno, char* name,
                                std::int16_t keylen, std::int16_t keytyp, std::int16_t keydup,
                                std::int16_t nomemb, std::uint16_t xtdsiz, std::int16_t filmod,
                                std::int32_t permmask, char* group, char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.CREIDXX(keyno, name, keylen, keytyp, keydup, nomemb, xtdsiz, filmod, permmask,
                             group, password);
}

std::int16_t CreateIndexMember(TLoadAlignment A, std::int16_t keyno, std::int16_t keylen,
                               std::int16_t keytyp, std::int16_t keydup, std::int16_t membno) {
  LoadCTreeDLL(A);
  return EntryPoints.CREMEM(keyno, keylen, keytyp, keydup, membno);
}

std::int16_t CreateISAM(TLoadAlignment A, char* parmfile) {
  LoadCTreeDLL(A);
  return EntryPoints.CREISAM(parmfile);
}

std::int16_t CreateISAMXtd(TLoadAlignment A, char* parmfile, std::int16_t usrprf, char* userid,
                           char* userword, char* servname, std::int32_t permmask, char* group,
                           char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.CREISAMX(parmfile, usrprf, userid, userword, servname, permmask, group,
                              password);
}

std::int16_t DeleteCtFile(TLoadAlignment A, std::int16_t filno) {
  LoadCTreeDLL(A);
  return EntryPoints.DELFIL(filno);
}

std::int16_t DeleteIFile(TLoadAlignment A, void* ifil) {
  LoadCTreeDLL(A);
  return EntryPoints.DELIFIL(static_cast<pIFIL>(ifil));
}

std::int16_t OpenIFile(TLoadAlignment A, void* ifil) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNIFIL(static_cast<pIFIL>(ifil));
}

std::int16_t OpenIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                          char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNIFILX(static_cast<pIFIL>(ifil), dataext, indexext, password);
}

std::int16_t PutIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                         char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTIFILX(static_cast<pIFIL>(ifil), dataext, indexext, password);
}

std::int16_t GetSymbolicNames(TLoadAlignment A, std::int16_t filno, char* buf, std::int32_t len,
                              std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.GETNAM(filno, buf, len, mode);
}

std::int16_t GetSuperFileNames(TLoadAlignment A, std::int16_t filno, char* buf, std::int32_t len,
                               std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.GETMNAME(filno, buf, len, mode);
}

std::int16_t TempIIndexXtd(TLoadAlignment A, void* ifil, std::int32_t permmask, char* group,
                           char* password) {
  LoadCTreeDLL(A);
  return EntryPoints.TMPIIDXX(static_cast<pIFIL>(ifil), permmask, group, password);
}

std::int16_t SuperfilePrePassXtd(TLoadAlignment A, char* superfile, char* tempname) {
  LoadCTreeDLL(A);
  return EntryPoints.CTSBLDX(superfile, tempname);
}

std::int16_t AddCtResource(TLoadAlignment A, std::int16_t datno, void* resptr, std::int32_t len) {
  LoadCTreeDLL(A);
  return EntryPoints.ADDRES(datno, resptr, len);
}

std::int16_t DeleteCtResource(TLoadAlignment A, std::int16_t datno, void* resptr) {
  LoadCTreeDLL(A);
  return EntryPoints.DELRES(datno, resptr);
}

std::int16_t EnableCtResource(TLoadAlignment A, std::int16_t datno) {
  LoadCTreeDLL(A);
  return EntryPoints.ENARES(datno);
}

void* GetCtResource(TLoadAlignment A, std::int16_t datno, void* resptr, void* bufptr,
                    std::int32_t bufsiz, std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.GETRES(datno, resptr, bufptr, bufsiz, mode);
}

std::int16_t UpdateCtResource(TLoadAlignment A, std::int16_t datno, void* resptr,
                              std::int32_t len) {
  LoadCTreeDLL(A);
  return EntryPoints.UPDRES(datno, resptr, len);
}

std::int16_t GetAltSequence(TLoadAlignment A, std::int16_t keyno, std::int16_t* altseq) {
  LoadCTreeDLL(A);
  return EntryPoints.GETALTSEQ(keyno, altseq);
}

std::int16_t SetAlternateSequence(TLoadAlignment A, std::int16_t keyno, std::int16_t* altseq) {
  LoadCTreeDLL(A);
  return EntryPoints.SETALTSEQ(keyno, altseq);
}

std::int16_t UpdateHeader(TLoadAlignment A, std::int16_t filno, std::int32_t value,
                          std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTHDR(filno, value, mode);
}

std::int16_t SetVariableBytes(TLoadAlignment A, std::int16_t filno, std::uint8_t* pvbyte) {
  LoadCTreeDLL(A);
  return EntryPoints.SETVARBYTS(filno, pvbyte);
}

std::int32_t GetConditionalIndex(TLoadAlignment A, std::int16_t keyno, std::int32_t len,
                                 void* buf) {
  LoadCTreeDLL(A);
  return EntryPoints.GETCIDX(keyno, len, buf);
}

std::int16_t UpdateConditionalIndex(TLoadAlignment A, std::int16_t keyno, char* expr) {
  LoadCTreeDLL(A);
  return EntryPoints.UPDCIDX(keyno, expr);
}

std::int16_t RenameFile(TLoadAlignment A, std::int16_t filno, char* newname) {
  LoadCTreeDLL(A);
  return EntryPoints.ctRENFIL(filno, newname);
}

std::int16_t SetIndexMap(TLoadAlignment A, std::int16_t imapno, void* ifil, std::int16_t datno,
                         std::int16_t mode) {
  LoadCTreeDLL(A);
  return EntryPoints.setimap(imapno, static_cast<pIFIL>(ifil), datno, mode);
}

}  // namespace CTDbIntf
