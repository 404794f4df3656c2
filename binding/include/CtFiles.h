// Call wrappers of the binding layer: files, definition records, resources and indexes.
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

/// OPNRFIL: opens a data file and the indexes named by its IFIL resource as filno, filno+1 and on.
std::int16_t OpenFileWithResources(TLoadAlignment A, std::int16_t filno, char* name,
                                   std::int16_t filmod);
/// CLRFIL: closes a data file opened with its indexes.
std::int16_t CloseRFile(TLoadAlignment A, std::int16_t datno);
/// DELRFIL: deletes a data file and its indexes (open exclusively).
std::int16_t DeleteRFile(TLoadAlignment A, std::int16_t datno);
/// CREIFIL: creates a data file and its index files from a definition record.
std::int16_t CreateIFile(TLoadAlignment A, void* ifil);
/// GETIFIL: copies the data file's IFIL image into the buffer; returns its size.
std::int32_t GetIFile(TLoadAlignment A, std::int16_t datno, std::int32_t len, void* buf);
/// PUTIFIL: replaces the stored IFIL of an open data file.
std::int16_t PutIFile(TLoadAlignment A, void* ifil);
/// PRMIIDX: makes incremental indexes permanent.
std::int16_t PermIIndex(TLoadAlignment A, void* ifil);
/// CMPIFIL: compacts a closed file set, reclaiming deleted records.
std::int16_t CompactIFile(TLoadAlignment A, void* ifil);
/// RBLIFIL: rebuilds every index of a closed file set.
std::int16_t RebuildIFile(TLoadAlignment A, void* ifil);
/// OPNFIL: opens one file under a file number.
std::int16_t OpenCtFile(TLoadAlignment A, std::int16_t filno, char* name, std::int16_t filmod);
/// CREDAT: creates a data file and leaves it open.
std::int16_t CreateDataFile(TLoadAlignment A, std::int16_t filno, char* name, std::uint16_t reclen,
                            std::uint16_t xtdsiz, std::int16_t filmod);
/// AVLFILNUM: returns the first of n consecutive free file numbers (-1 when none).
std::int16_t AvailableFileNbr(TLoadAlignment A, std::int16_t n);
/// PUTFIL: changes the mode of an open file.
std::int16_t UpdateFileMode(TLoadAlignment A, std::int16_t filno, std::int16_t mode);
/// GETDODA: copies the record schema into the buffer; returns its size.
std::int32_t GetDODA(TLoadAlignment A, std::int16_t datno, std::int32_t len, void* buf,
                     std::int16_t mode);
/// PUTDODA: stores the record schema of a data file.
std::int16_t PutDODA(TLoadAlignment A, std::int16_t datno, void* doda, std::uint16_t count);
/// CLSFIL: closes one file.
std::int16_t CloseCtFile(TLoadAlignment A, std::int16_t filno, std::int16_t mode);
/// GETFIL: returns a file property (record length, key length, mode, ...).
std::int32_t GetCtFileInfo(TLoadAlignment A, std::int16_t filno, std::int16_t mode);
/// CMPIFILX: compacts a closed file set, with extensions, permissions and password.
std::int16_t CompactIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                             std::int32_t permmask, char* group, char* password);
/// CREDATX: creates a data file, with permissions, group and password.
std::int16_t CreateDataFileXtd(TLoadAlignment A, std::int16_t filno, char* name,
                               std::uint16_t reclen, std::uint16_t xtdsiz, std::int16_t filmod,
                               std::int32_t permmask, char* group, char* password);
/// OPNFILX: opens one file, with a password.
std::int16_t OpenCtFileXtd(TLoadAlignment A, std::int16_t filno, char* name, std::int16_t filmod,
                           char* password);
/// RBLIFILX: rebuilds a closed file set, with extensions, permissions and password.
std::int16_t RebuildIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                             std::int32_t permmask, char* group, char* password);
/// OPNRFILX: opens a data file and its indexes from its IFIL resource, with a password.
std::int16_t OpenFileWithResourceXtd(TLoadAlignment A, std::int16_t filno, char* name,
                                     std::int16_t filmod, char* password);
/// CREIFILX: creates a file set from a definition record, with extensions and password.
std::int16_t CreateIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                            std::int32_t permmask, char* group, char* password);
/// CLIFIL: closes the file set of a definition record.
std::int16_t CloseIFIle(TLoadAlignment A, void* ifil);
/// CREIDX: creates an index file.
std::int16_t CreateIndexFile(TLoadAlignment A, std::int16_t keyno, char* name, std::int16_t keylen,
                             std::int16_t keytyp, std::int16_t keydup, std::int16_t nomemb,
                             std::uint16_t xtdsiz, std::int16_t filmod);
/// CREIDXX: creates an index file, with permissions, group and password.
std::int16_t CreateIndexFileXtd(TLoadAlignment A, std::int16_t keyno, char* name,
                                std::int16_t keylen, std::int16_t keytyp, std::int16_t keydup,
                                std::int16_t nomemb, std::uint16_t xtdsiz, std::int16_t filmod,
                                std::int32_t permmask, char* group, char* password);
/// CREMEM: adds an index member to an index file.
std::int16_t CreateIndexMember(TLoadAlignment A, std::int16_t keyno, std::int16_t keylen,
                               std::int16_t keytyp, std::int16_t keydup, std::int16_t membno);
/// CREISAM: creates the files listed in a parameter file.
std::int16_t CreateISAM(TLoadAlignment A, char* parmfile);
/// CREISAMX: creates the files listed in a parameter file, with credentials.
std::int16_t CreateISAMXtd(TLoadAlignment A, char* parmfile, std::int16_t usrprf, char* userid,
                           char* userword, char* servname, std::int32_t permmask, char* group,
                           char* password);
/// DELFIL: deletes one file (open exclusively).
std::int16_t DeleteCtFile(TLoadAlignment A, std::int16_t filno);
/// DELIFIL: deletes the file set of a definition record.
std::int16_t DeleteIFile(TLoadAlignment A, void* ifil);
/// OPNIFIL: opens the file set of a definition record.
std::int16_t OpenIFile(TLoadAlignment A, void* ifil);
/// OPNIFILX: opens the file set of a definition record, with extensions and password.
std::int16_t OpenIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                          char* password);
/// PUTIFILX: replaces the stored IFIL, with extensions and password.
std::int16_t PutIFileXtd(TLoadAlignment A, void* ifil, char* dataext, char* indexext,
                         char* password);
/// GETNAM: copies the name a file was opened with.
std::int16_t GetSymbolicNames(TLoadAlignment A, std::int16_t filno, char* buf, std::int32_t len,
                              std::int16_t mode);
/// GETMNAME: copies the name of the next member of an open superfile.
std::int16_t GetSuperFileNames(TLoadAlignment A, std::int16_t filno, char* buf, std::int32_t len,
                               std::int16_t mode);
/// TMPIIDXX: creates temporary incremental indexes for an open data file.
std::int16_t TempIIndexXtd(TLoadAlignment A, void* ifil, std::int32_t permmask, char* group,
                           char* password);
/// CTSBLDX: prepares a superfile for rebuilding.
std::int16_t SuperfilePrePassXtd(TLoadAlignment A, char* superfile, char* tempname);
/// ADDRES: adds a resource to a file.
std::int16_t AddCtResource(TLoadAlignment A, std::int16_t datno, void* resptr, std::int32_t len);
/// DELRES: deletes a resource.
std::int16_t DeleteCtResource(TLoadAlignment A, std::int16_t datno, void* resptr);
/// ENARES: enables resources for a file.
std::int16_t EnableCtResource(TLoadAlignment A, std::int16_t datno);
/// GETRES: reads a resource.
void* GetCtResource(TLoadAlignment A, std::int16_t datno, void* resptr, void* bufptr,
                    std::int32_t bufsiz, std::int16_t mode);
/// UPDRES: replaces a resource.
std::int16_t UpdateCtResource(TLoadAlignment A, std::int16_t datno, void* resptr, std::int32_t len);
/// GETALTSEQ: copies the alternate collating sequence of an index.
std::int16_t GetAltSequence(TLoadAlignment A, std::int16_t keyno, std::int16_t* altseq);
/// SETALTSEQ: sets the alternate collating sequence of an index.
std::int16_t SetAlternateSequence(TLoadAlignment A, std::int16_t keyno, std::int16_t* altseq);
/// PUTHDR: changes a header value of a file.
std::int16_t UpdateHeader(TLoadAlignment A, std::int16_t filno, std::int32_t value,
                          std::int16_t mode);
/// SETVARBYTS: sets the padding bytes of an index.
std::int16_t SetVariableBytes(TLoadAlignment A, std::int16_t filno, std::uint8_t* pvbyte);
/// GETCIDX: copies the condition of an index; returns its length.
std::int32_t GetConditionalIndex(TLoadAlignment A, std::int16_t keyno, std::int32_t len, void* buf);
/// UPDCIDX: sets or removes the condition of an index.
std::int16_t UpdateConditionalIndex(TLoadAlignment A, std::int16_t keyno, char* expr);
/// ctRENFIL: renames an exclusively open data file together with its index files.
std::int16_t RenameFile(TLoadAlignment A, std::int16_t filno, char* newname);
/// setimap: maps the indexes of a definition record onto an open data file.
std::int16_t SetIndexMap(TLoadAlignment A, std::int16_t imapno, void* ifil, std::int16_t datno,
                         std::int16_t mode);

}  // namespace CTDbIntf
