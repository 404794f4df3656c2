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

/// OPNRFIL: opens a data file and the indexes named by its IFIL resource as filno, filno+1, ....
std::int16_t OpenFileWithResources(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2);
/// CLRFIL: closes a data file opened with its indexes.
std::int16_t CloseRFile(TLoadAlignment A, std::int16_t a0);
/// DELRFIL: deletes a data file and its indexes (open exclusively).
std::int16_t DeleteRFile(TLoadAlignment A, std::int16_t a0);
/// CREIFIL: creates a data file and its index files from a definition record.
std::int16_t CreateIFile(TLoadAlignment A, void* a0);
/// GETIFIL: copies the data file's IFIL image into the buffer; returns its size.
std::int32_t GetIFile(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2);
/// PUTIFIL: replaces the stored IFIL of an open data file.
std::int16_t PutIFile(TLoadAlignment A, void* a0);
/// PRMIIDX: makes incremental indexes permanent.
std::int16_t PermIIndex(TLoadAlignment A, void* a0);
/// CMPIFIL: compacts a closed file set, reclaiming deleted records.
std::int16_t CompactIFile(TLoadAlignment A, void* a0);
/// RBLIFIL: rebuilds every index of a closed file set.
std::int16_t RebuildIFile(TLoadAlignment A, void* a0);
/// OPNFIL: opens one file under a file number.
std::int16_t OpenCtFile(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2);
/// CREDAT: creates a data file and leaves it open.
std::int16_t CreateDataFile(TLoadAlignment A, std::int16_t a0, char* a1, std::uint16_t a2,
                            std::uint16_t a3, std::int16_t a4);
/// AVLFILNUM: returns the first of n consecutive free file numbers (-1 when none).
std::int16_t AvailableFileNbr(TLoadAlignment A, std::int16_t a0);
/// PUTFIL: changes the mode of an open file.
std::int16_t UpdateFileMode(TLoadAlignment A, std::int16_t a0, std::int16_t a1);
/// GETDODA: copies the record schema into the buffer; returns its size.
std::int32_t GetDODA(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2, std::int16_t a3);
/// PUTDODA: stores the record schema of a data file.
std::int16_t PutDODA(TLoadAlignment A, std::int16_t a0, void* a1, std::uint16_t a2);
/// CLSFIL: closes one file.
std::int16_t CloseCtFile(TLoadAlignment A, std::int16_t a0, std::int16_t a1);
/// GETFIL: returns a file property (record length, key length, mode, ...).
std::int32_t GetCtFileInfo(TLoadAlignment A, std::int16_t a0, std::int16_t a1);
/// CMPIFILX: compacts a closed file set, with extensions, permissions and password.
std::int16_t CompactIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, std::int32_t a3,
                             char* a4, char* a5);
/// CREDATX: creates a data file, with permissions, group and password.
std::int16_t CreateDataFileXtd(TLoadAlignment A, std::int16_t a0, char* a1, std::uint16_t a2,
                               std::uint16_t a3, std::int16_t a4, std::int32_t a5, char* a6,
                               char* a7);
/// OPNFILX: opens one file, with a password.
std::int16_t OpenCtFileXtd(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2, char* a3);
/// RBLIFILX: rebuilds a closed file set, with extensions, permissions and password.
std::int16_t RebuildIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, std::int32_t a3,
                             char* a4, char* a5);
/// OPNRFILX: opens a data file and its indexes from its IFIL resource, with a password.
std::int16_t OpenFileWithResourceXtd(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2,
                                     char* a3);
/// CREIFILX: creates a file set from a definition record, with extensions and password.
std::int16_t CreateIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, std::int32_t a3,
                            char* a4, char* a5);
/// CLIFIL: closes the file set of a definition record.
std::int16_t CloseIFIle(TLoadAlignment A, void* a0);
/// CREIDX: creates an index file.
std::int16_t CreateIndexFile(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2,
                             std::int16_t a3, std::int16_t a4, std::int16_t a5, std::uint16_t a6,
                             std::int16_t a7);
/// CREIDXX: creates an index file, with permissions, group and password.
std::int16_t CreateIndexFileXtd(TLoadAlignment A, std::int16_t a0, char* a1, std::int16_t a2,
                                std::int16_t a3, std::int16_t a4, std::int16_t a5, std::uint16_t a6,
                                std::int16_t a7, std::int32_t a8, char* a9, char* a10);
/// CREMEM: adds an index member to an index file.
std::int16_t CreateIndexMember(TLoadAlignment A, std::int16_t a0, std::int16_t a1, std::int16_t a2,
                               std::int16_t a3, std::int16_t a4);
/// CREISAM: creates the files listed in a parameter file.
std::int16_t CreateISAM(TLoadAlignment A, char* a0);
/// CREISAMX: creates the files listed in a parameter file, with credentials.
std::int16_t CreateISAMXtd(TLoadAlignment A, char* a0, std::int16_t a1, char* a2, char* a3,
                           char* a4, std::int32_t a5, char* a6, char* a7);
/// DELFIL: deletes one file (open exclusively).
std::int16_t DeleteCtFile(TLoadAlignment A, std::int16_t a0);
/// DELIFIL: deletes the file set of a definition record.
std::int16_t DeleteIFile(TLoadAlignment A, void* a0);
/// OPNIFIL: opens the file set of a definition record.
std::int16_t OpenIFile(TLoadAlignment A, void* a0);
/// OPNIFILX: opens the file set of a definition record, with extensions and password.
std::int16_t OpenIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, char* a3);
/// PUTIFILX: replaces the stored IFIL, with extensions and password.
std::int16_t PutIFileXtd(TLoadAlignment A, void* a0, char* a1, char* a2, char* a3);
/// GETNAM: copies the name a file was opened with.
std::int16_t GetSymbolicNames(TLoadAlignment A, std::int16_t a0, char* a1, std::int32_t a2,
                              std::int16_t a3);
/// GETMNAME: copies the name of the next member of an open superfile.
std::int16_t GetSuperFileNames(TLoadAlignment A, std::int16_t a0, char* a1, std::int32_t a2,
                               std::int16_t a3);
/// TMPIIDXX: creates temporary incremental indexes for an open data file.
/// (The only wrapper that historically used the C calling convention; here all do.)
std::int16_t TempIIndexXtd(TLoadAlignment A, void* a0, std::int32_t a1, char* a2, char* a3);
/// CTSBLDX: prepares a superfile for rebuilding.
std::int16_t SuperfilePrePassXtd(TLoadAlignment A, char* a0, char* a1);
/// ADDRES: adds a resource to a file.
std::int16_t AddCtResource(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2);
/// DELRES: deletes a resource.
std::int16_t DeleteCtResource(TLoadAlignment A, std::int16_t a0, void* a1);
/// ENARES: enables resources for a file.
std::int16_t EnableCtResource(TLoadAlignment A, std::int16_t a0);
/// GETRES: reads a resource.
std::int16_t GetCtResource(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t a3,
                           std::int16_t a4);
/// UPDRES: replaces a resource.
std::int16_t UpdateCtResource(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2);
/// GETALTSEQ: copies the alternate collating sequence of an index.
std::int16_t GetAltSequence(TLoadAlignment A, std::int16_t a0, std::int16_t* a1);
/// SETALTSEQ: sets the alternate collating sequence of an index.
std::int16_t SetAlternateSequence(TLoadAlignment A, std::int16_t a0, std::int16_t* a1);
/// PUTHDR: changes a header value of a file.
std::int16_t UpdateHeader(TLoadAlignment A, std::int16_t a0, std::int32_t a1, std::int16_t a2);
/// SETVARBYTS: sets the padding bytes of an index.
std::int16_t SetVariableBytes(TLoadAlignment A, std::int16_t a0, std::uint8_t* a1);
/// GETCIDX: copies the condition of an index; returns its length.
std::int32_t GetConditionalIndex(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2);
/// UPDCIDX: sets or removes the condition of an index.
std::int16_t UpdateConditionalIndex(TLoadAlignment A, std::int16_t a0, char* a1);
/// ctRENFIL: renames an exclusively open data file together with its index files.
std::int16_t RenameFile(TLoadAlignment A, std::int16_t a0, char* a1);
/// setimap: maps the indexes of a definition record onto an open data file.
std::int16_t SetIndexMap(TLoadAlignment A, std::int16_t a0, void* a1, std::int16_t a2,
                         std::int16_t a3);

}  // namespace CTDbIntf
