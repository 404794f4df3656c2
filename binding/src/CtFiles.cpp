// Call wrappers of the binding layer: files, definition records, resources and indexes.
#include "CtFiles.h"

#include "EntryPoints.h"
#include "LibraryLoader.h"

namespace CTDbIntf {

std::int16_t OpenFileWithResources(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNRFIL(a0, a1, a2);
}

std::int16_t CloseRFile(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CLRFIL(a0);
}

std::int16_t DeleteRFile(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.DELRFIL(a0);
}

std::int16_t CreateIFile(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CREIFIL(static_cast<pIFIL>(a0));
}

std::int32_t GetIFile(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.GETIFIL(a0, a1, a2);
}

std::int16_t PutIFile(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTIFIL(static_cast<pIFIL>(a0));
}

std::int16_t PermIIndex(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.PRMIIDX(static_cast<pIFIL>(a0));
}

std::int16_t CompactIFile(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CMPIFIL(static_cast<pIFIL>(a0));
}

std::int16_t RebuildIFile(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.RBLIFIL(static_cast<pIFIL>(a0));
}

std::int16_t OpenCtFile(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNFIL(a0, a1, a2);
}

std::int16_t CreateDataFile(TLoadAlignment A, std::int16_t a0, char* a1, std::uint16_t a2,
                            std::uint16_t a3, std::int16_t a4) {
  LoadCTreeDLL(A);
  return EntryPoints.CREDAT(a0, a1, a2, a3, a4);
}

std::int16_t AvailableFileNbr(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.AVLFILNUM(a0);
}

std::int16_t UpdateFileMode(TLoadAlignment A, std::int16_t a0, std::int16_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTFIL(a0, a1);
}

std::int32_t GetDODA(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2,
                     std::int16_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.GETDODA(a0, a1, a2, a3);
}

std::int16_t PutDODA(TLoadAlignment A, std::int16_t a0, void* a1, std::uint16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTDODA(a0, static_cast<pDATOBJ>(a1), a2);
}

std::int16_t CloseCtFile(TLoadAlignment A, std::int16_t a0, std::int16_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.CLSFIL(a0, a1);
}

std::int32_t GetCtFileInfo(TLoadAlignment A, std::int16_t a0, std::int16_t a1) {
  LoadCTreeDLL(A);
  return EntryPoints.GETFIL(a0, a1);
}

std::int16_t CompactIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, std::int32_t a3,
                             char* a4, char* a5) {
  LoadCTreeDLL(A);
  return EntryPoints.CMPIFILX(static_cast<pIFIL>(a0), a1, a2, a3, a4, a5);
}

std::int16_t CreateDataFileXtd(TLoadAlignment A, std::int16_t a0, char* a1, std::uint16_t a2,
                               std::uint16_t a3, std::int16_t a4, std::int32_t a5, char* a6,
                               char* a7) {
  LoadCTreeDLL(A);
  return EntryPoints.CREDATX(a0, a1, a2, a3, a4, a5, a6, a7);
}

std::int16_t OpenCtFileXtd(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2, char* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNFILX(a0, a1, a2, a3);
}

std::int16_t RebuildIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, std::int32_t a3,
                             char* a4, char* a5) {
  LoadCTreeDLL(A);
  return EntryPoints.RBLIFILX(static_cast<pIFIL>(a0), a1, a2, a3, a4, a5);
}

std::int16_t OpenFileWithResourceXtd(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2,
                                     char* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNRFILX(a0, a1, a2, a3);
}

std::int16_t CreateIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, std::int32_t a3,
                            char* a4, char* a5) {
  LoadCTreeDLL(A);
  return EntryPoints.CREIFILX(static_cast<pIFIL>(a0), a1, a2, a3, a4, a5);
}

std::int16_t CloseIFIle(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CLIFIL(static_cast<pIFIL>(a0));
}

std::int16_t CreateIndexFile(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2,
                             std::int16_t a3, std::int16_t a4, std::int16_t a5, std::uint16_t a6,
                             std::int16_t a7) {
  LoadCTreeDLL(A);
  return EntryPoints.CREIDX(a0, a1, a2, a3, a4, a5, a6, a7);
}

std::int16_t CreateIndexFileXtd(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2,
                                std::int16_t a3, std::int16_t a4, std::int16_t a5, std::uint16_t a6,
                                std::int16_t a7, std::int32_t a8, char* a9, char* a10) {
  LoadCTreeDLL(A);
  return EntryPoints.CREIDXX(a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10);
}

std::int16_t CreateIndexMember(TLoadAlignment A, std::int16_t a0, std::int16_t a1, std::int16_t a2,
                               std::int16_t a3, std::int16_t a4) {
  LoadCTreeDLL(A);
  return EntryPoints.CREMEM(a0, a1, a2, a3, a4);
}

std::int16_t CreateISAM(TLoadAlignment A, char* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.CREISAM(a0);
}

std::int16_t CreateISAMXtd(TLoadAlignment A, char* a0, std::int16_t a1, char* a2, char* a3,
                           char* a4, std::int32_t a5, char* a6, char* a7) {
  LoadCTreeDLL(A);
  return EntryPoints.CREISAMX(a0, a1, a2, a3, a4, a5, a6, a7);
}

std::int16_t DeleteCtFile(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.DELFIL(a0);
}

std::int16_t DeleteIFile(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.DELIFIL(static_cast<pIFIL>(a0));
}

std::int16_t OpenIFile(TLoadAlignment A, void* a0) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNIFIL(static_cast<pIFIL>(a0));
}

std::int16_t OpenIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, char* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.OPNIFILX(static_cast<pIFIL>(a0), a1, a2, a3);
}

std::int16_t PutIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, char* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTIFILX(static_cast<pIFIL>(a0), a1, a2, a3);
}

std::int16_t GetSymbolicNames(TLoadAlignment A, std::int16_t a0, char* a1, std::int32_t a2,
                              std::int16_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.GETNAM(a0, a1, a2, a3);
}

std::int16_t GetSuperFileNames(TLoadAlignment A, std::int16_t a0, char* a1, std::int32_t a2,
                               std::int16_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.GETMNAME(a0, a1, a2, a3);
}

std::int16_t TempIIndexXtd(TLoadAlignment A, void* a0, std::int32_t a1, char* a2, char* a3) {
  LoadCTreeDLL(A);
  return EntryPoints.TMPIIDXX(static_cast<pIFIL>(a0), a1, a2, a3);
}

std::int16_t SuperfilePrePassXtd(TLoadAlignment A, char* a0, char* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.CTSBLDX(a0, a1);
}

std::int16_t AddCtResource(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.ADDRES(a0, a1, a2);
}

std::int16_t DeleteCtResource(TLoadAlignment A, std::int16_t a0, void* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.DELRES(a0, a1);
}

std::int16_t EnableCtResource(TLoadAlignment A, std::int16_t a0) {
  LoadCTreeDLL(A);
  return EntryPoints.ENARES(a0);
}

std::int16_t GetCtResource(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t a3,
                           std::int16_t a4) {
  LoadCTreeDLL(A);
  return EntryPoints.GETRES(a0, a1, a2, a3, a4);
}

std::int16_t UpdateCtResource(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.UPDRES(a0, a1, a2);
}

std::int16_t GetAltSequence(TLoadAlignment A, std::int16_t a0, std::int16_t* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.GETALTSEQ(a0, a1);
}

std::int16_t SetAlternateSequence(TLoadAlignment A, std::int16_t a0, std::int16_t* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.SETALTSEQ(a0, a1);
}

std::int16_t UpdateHeader(TLoadAlignment A, std::int16_t a0, std::int32_t a1, std::int16_t a2) {
  LoadCTreeDLL(A);
  return EntryPoints.PUTHDR(a0, a1, a2);
}

std::int16_t SetVariableBytes(TLoadAlignment A, std::int16_t a0, std::uint8_t* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.SETVARBYTS(a0, a1);
}

std::int32_t GetConditionalIndex(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2) {
  LoadCTreeDLL(A);
  return EntryPoints.GETCIDX(a0, a1, a2);
}

std::int16_t UpdateConditionalIndex(TLoadAlignment A, std::int16_t a0, char* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.UPDCIDX(a0, a1);
}

std::int16_t RenameFile(TLoadAlignment A, std::int16_t a0, char* a1) {
  LoadCTreeDLL(A);
  return EntryPoints.ctRENFIL(a0, a1);
}

std::int16_t SetIndexMap(TLoadAlignment A, std::int16_t a0, void* a1, std::int16_t a2,
                         std::int16_t a3) {
  LoadCTreeDLL(A);
  return EntryPoints.setimap(a0, static_cast<pIFIL>(a1), a2, a3);
}

}  // namespace CTDbIntf
