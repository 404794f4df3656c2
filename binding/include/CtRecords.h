// Call wrappers of the binding layer: records, keys and key-ordered navigation.
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

/// SETCURI: makes a record position current; with the record image, sets every current key.
std::int16_t SetRecord(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec,
                       std::int32_t len);
/// GETCURP: returns the current record position (0 when none).
std::int32_t CurrentFileOffset(TLoadAlignment A, std::int16_t datno);
/// UPDCURI: resets the current ISAM record information.
std::int16_t ResetRecord(TLoadAlignment A, std::int16_t datno, std::int16_t mode);
/// ADDREC: adds a fixed-length record with its keys in every index.
std::int16_t AddRecord(TLoadAlignment A, std::int16_t datno, void* rec);
/// ADDVREC: adds a variable-length record with its keys.
std::int16_t AddVRecord(TLoadAlignment A, std::int16_t datno, void* rec, std::int32_t len);
/// RWTREC: rewrites the current fixed-length record and moves the keys that changed.
std::int16_t ReWriteRecord(TLoadAlignment A, std::int16_t datno, void* rec);
/// RWTVREC: rewrites the current variable-length record.
std::int16_t ReWriteVRecord(TLoadAlignment A, std::int16_t datno, void* rec, std::int32_t len);
/// DELREC: deletes the current fixed-length record and its keys.
std::int16_t DeleteRecord(TLoadAlignment A, std::int16_t datno);
/// DELVREC: deletes the current variable-length record and its keys.
std::int16_t DeleteVRecord(TLoadAlignment A, std::int16_t datno);
/// REDIREC: reads the record at a position and makes it current.
std::int16_t ReadISAMData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec);
/// REDVREC: re-reads the current variable-length record.
std::int16_t ReReadVRecord(TLoadAlignment A, std::int16_t datno, void* rec, std::int32_t bufsiz);
/// RRDREC: re-reads the current fixed-length record.
std::int16_t ReReadRecord(TLoadAlignment A, std::int16_t datno, void* rec);
/// FRSSET: positions on the first record of the set sharing a key prefix.
std::int16_t FirstInSet(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                        std::int16_t siglen);
/// NXTSET: reads the next record of the current set.
std::int16_t NextInSet(TLoadAlignment A, std::int16_t keyno, void* rec);
/// LSTSET: positions on the last record of the set sharing a key prefix.
std::int16_t LastInSet(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                       std::int16_t siglen);
/// GETVLEN: returns the length of the current variable-length record.
std::int32_t VRecordLength(TLoadAlignment A, std::int16_t datno);
/// GETCURK: copies the current key of an index; the length goes to the last argument.
std::int16_t CurrentISAMKey(TLoadAlignment A, std::int16_t keyno, void* idxval, std::int32_t* plen);
/// EQLREC: reads the record whose key equals the target.
std::int16_t GetRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec);
/// GTEREC: reads the first record whose key is greater than or equal to the target.
std::int16_t GetGTERecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec);
/// GTREC: reads the first record whose key is greater than the target.
std::int16_t GetGTRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec);
/// LTEREC: reads the last record whose key is less than or equal to the target.
std::int16_t GetLTERecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec);
/// LTREC: reads the last record whose key is less than the target.
std::int16_t GetLTRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec);
/// FRSREC: reads the first record (physical order for a data file, key order for an index).
std::int16_t FirstRecord(TLoadAlignment A, std::int16_t filno, void* rec);
/// NXTREC: reads the next record.
std::int16_t NextRecord(TLoadAlignment A, std::int16_t filno, void* rec);
/// PRVREC: reads the previous record.
std::int16_t PreviousRecord(TLoadAlignment A, std::int16_t filno, void* rec);
/// LSTREC: reads the last record.
std::int16_t LastRecord(TLoadAlignment A, std::int16_t filno, void* rec);
/// DATENT: returns the number of records of a data file.
std::int32_t NbrOfRecords(TLoadAlignment A, std::int16_t datno);
/// IDXENT: returns the number of keys of an index.
std::int32_t NbrOfKeyEntries(TLoadAlignment A, std::int16_t keyno);
/// GETCURKL: copies the current low-level key of an index.
std::int16_t CurrentLowLevelKey(TLoadAlignment A, std::int16_t keyno, void* idxval);
/// frmkey: builds the key of an index from a record image; returns its length.
std::int16_t BuildKey(TLoadAlignment A, std::int16_t keyno, char* rec, char* key, std::int32_t pos,
                      std::int32_t len);
/// REDREC: reads the record at a position without making it current.
std::int16_t ReadData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec);
/// EQLKEY: finds the key equal to the target; returns its record position.
std::int32_t GetKey(TLoadAlignment A, std::int16_t keyno, void* target);
/// GTEKEY: finds the first key greater than or equal to the target; returns its position.
std::int32_t GetGTEKey(TLoadAlignment A, std::int16_t keyno, void* target, void* idxval);
/// GTKEY: finds the first key greater than the target; returns its position.
std::int32_t GetGTKey(TLoadAlignment A, std::int16_t keyno, void* target, void* idxval);
/// LTEKEY: finds the last key less than or equal to the target; returns its position.
std::int32_t GetLTEKey(TLoadAlignment A, std::int16_t keyno, void* target, void* idxval);
/// LTKEY: finds the last key less than the target; returns its position.
std::int32_t GetLTKey(TLoadAlignment A, std::int16_t keyno, void* target, void* idxval);
/// FRSKEY: finds the first key of an index; returns its position.
std::int32_t FirstKey(TLoadAlignment A, std::int16_t keyno, void* idxval);
/// FRCKEY: positions on the key at a percentile of the index.
std::int32_t KeyAtPercentile(TLoadAlignment A, std::int16_t keyno, void* idxval,
                             std::int16_t percent);
/// ESTKEY: estimates the number of keys between two key values.
std::int32_t EstimateKeySpan(TLoadAlignment A, std::int16_t keyno, void* key1, void* key2);
/// RNGENT: counts the keys between two key values.
std::int32_t NbrOfKeysInRange(TLoadAlignment A, std::int16_t keyno, void* low, void* high);
/// ORDKEY: finds a key by its ordinal.
std::int32_t GetORDKey(TLoadAlignment A, std::int16_t keyno, void* target, std::int32_t offset,
                       void* idxval);
/// MIDSET: positions within the current set.
std::int16_t PositionSet(TLoadAlignment A, std::int16_t keyno, void* rec, std::int16_t siglen);
/// PRVSET: reads the previous record of the current set.
std::int16_t PreviousInSet(TLoadAlignment A, std::int16_t keyno, void* rec);
/// ADDKEY: adds one key value to an index.
std::int16_t AddKey(TLoadAlignment A, std::int16_t keyno, void* key, std::int32_t pos,
                    std::int16_t mode);
/// LOADKEY: loads one key value into an index in ascending order.
std::int16_t LoadKey(TLoadAlignment A, std::int16_t keyno, void* key, std::int32_t pos,
                     std::int16_t mode);
/// NXTKEY: finds the next key; returns its position.
std::int32_t NextKey(TLoadAlignment A, std::int16_t keyno, void* idxval);
/// LSTKEY: finds the last key of an index; returns its position.
std::int32_t LastKey(TLoadAlignment A, std::int16_t keyno, void* idxval);
/// PRVKEY: finds the previous key; returns its position.
std::int32_t PreviousKey(TLoadAlignment A, std::int16_t keyno, void* idxval);
/// TFRMKEY: transforms a key value as the index stores it.
char* TransformKey(TLoadAlignment A, std::int16_t keyno, void* key);
/// DELCHK: deletes a key value after checking its record position.
std::int16_t DeleteKey(TLoadAlignment A, std::int16_t keyno, void* key, std::int32_t pos);
/// DELBLD: deletes a key value without checking its position.
std::int16_t DeleteKeyBlind(TLoadAlignment A, std::int16_t keyno, void* key);
/// GTVLEN: returns the length of the variable-length record at a position.
std::int32_t VDataLength(TLoadAlignment A, std::int16_t datno, std::int32_t pos);
/// NEWREC: allocates a fixed-length record; returns its position.
std::int32_t NewData(TLoadAlignment A, std::int16_t datno);
/// NEWVREC: allocates a variable-length record; returns its position.
std::int32_t NewVData(TLoadAlignment A, std::int16_t datno, std::int32_t len);
/// RDVREC: reads a variable-length record at a position.
std::int16_t ReadVData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec,
                       std::int32_t bufsiz);
/// RETREC: releases a fixed-length record.
std::int16_t ReleaseData(TLoadAlignment A, std::int16_t datno, std::int32_t pos);
/// RETVREC: releases a variable-length record.
std::int16_t ReleaseVData(TLoadAlignment A, std::int16_t datno, std::int32_t pos);
/// WRTREC: writes a fixed-length record at a position.
std::int16_t WriteData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec);
/// WRTVREC: writes a variable-length record at a position.
std::int16_t WriteVData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec,
                        std::int32_t len);
/// FRSVSET: positions on the first variable-length record of a set.
std::int16_t FirstInVSet(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                         std::int16_t siglen, std::int32_t* plen);
/// LSTVSET: positions on the last variable-length record of a set.
std::int16_t LastInVSet(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                        std::int16_t siglen, std::int32_t* plen);
/// NXTVSET: reads the next variable-length record of the set.
std::int16_t NextInVSet(TLoadAlignment A, std::int16_t keyno, void* rec, std::int32_t* plen);
/// PRVVSET: reads the previous variable-length record of the set.
std::int16_t PreviousInVSet(TLoadAlignment A, std::int16_t keyno, void* rec, std::int32_t* plen);
/// MIDVSET: positions within the current set of variable-length records.
std::int16_t PositionVSet(TLoadAlignment A, std::int16_t keyno, void* rec, std::int16_t siglen,
                          std::int32_t* plen);
/// FRSVREC: reads the first variable-length record.
std::int16_t FirstVRecord(TLoadAlignment A, std::int16_t filno, void* rec, std::int32_t* plen);
/// GTEVREC: reads the first variable-length record with key greater than or equal to the target.
std::int16_t GetGTEVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                           std::int32_t* plen);
/// GTVREC: reads the first variable-length record with key greater than the target.
std::int16_t GetGTVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                          std::int32_t* plen);
/// LTEVREC: reads the last variable-length record with key less than or equal to the target.
std::int16_t GetLTEVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                           std::int32_t* plen);
/// LTVREC: reads the last variable-length record with key less than the target.
std::int16_t GetLTVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                          std::int32_t* plen);
/// EQLVREC: reads the variable-length record whose key equals the target.
std::int16_t GetVRecord(TLoadAlignment A, std::int16_t keyno, void* target, void* rec,
                        std::int32_t* plen);
/// LSTVREC: reads the last variable-length record.
std::int16_t LastVRecord(TLoadAlignment A, std::int16_t filno, void* rec, std::int32_t* plen);
/// NXTVREC: reads the next variable-length record.
std::int16_t NextVRecord(TLoadAlignment A, std::int16_t filno, void* rec, std::int32_t* plen);
/// PRVVREC: reads the previous variable-length record.
std::int16_t PreviousVRecord(TLoadAlignment A, std::int16_t filno, void* rec, std::int32_t* plen);
/// REDIVREC: reads the variable-length record at a position and makes it current.
std::int16_t ReadIsamVData(TLoadAlignment A, std::int16_t datno, std::int32_t pos, void* rec,
                           std::int32_t* plen);

}  // namespace CTDbIntf
