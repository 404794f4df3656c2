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
std::int16_t SetRecord(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2,
                       std::int32_t a3);
/// GETCURP: returns the current record position (0 when none).
std::int32_t CurrentFileOffset(TLoadAlignment A, std::int16_t a0);
/// UPDCURI: resets the current ISAM record information.
std::int16_t ResetRecord(TLoadAlignment A, std::int16_t a0, std::int16_t a1);
/// ADDREC: adds a fixed-length record with its keys in every index.
std::int16_t AddRecord(TLoadAlignment A, std::int16_t a0, void* a1);
/// ADDVREC: adds a variable-length record with its keys.
std::int16_t AddVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2);
/// RWTREC: rewrites the current fixed-length record and moves the keys that changed.
std::int16_t ReWriteRecord(TLoadAlignment A, std::int16_t a0, void* a1);
/// RWTVREC: rewrites the current variable-length record.
std::int16_t ReWriteVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2);
/// DELREC: deletes the current fixed-length record and its keys.
std::int16_t DeleteRecord(TLoadAlignment A, std::int16_t a0);
/// DELVREC: deletes the current variable-length record and its keys.
std::int16_t DeleteVRecord(TLoadAlignment A, std::int16_t a0);
/// REDIREC: reads the record at a position and makes it current.
std::int16_t ReadISAMData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2);
/// REDVREC: re-reads the current variable-length record.
std::int16_t ReReadVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2);
/// RRDREC: re-reads the current fixed-length record.
std::int16_t ReReadRecord(TLoadAlignment A, std::int16_t a0, void* a1);
/// FRSSET: positions on the first record of the set sharing a key prefix.
std::int16_t FirstInSet(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int16_t a3);
/// NXTSET: reads the next record of the current set.
std::int16_t NextInSet(TLoadAlignment A, std::int16_t a0, void* a1);
/// LSTSET: positions on the last record of the set sharing a key prefix.
std::int16_t LastInSet(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int16_t a3);
/// GETVLEN: returns the length of the current variable-length record.
std::int32_t VRecordLength(TLoadAlignment A, std::int16_t a0);
/// GETCURK: copies the current key of an index; the length goes to the last argument.
std::int16_t CurrentISAMKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2);
/// EQLREC: reads the record whose key equals the target.
std::int16_t GetRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// GTEREC: reads the first record whose key is greater than or equal to the target.
std::int16_t GetGTERecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// GTREC: reads the first record whose key is greater than the target.
std::int16_t GetGTRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// LTEREC: reads the last record whose key is less than or equal to the target.
std::int16_t GetLTERecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// LTREC: reads the last record whose key is less than the target.
std::int16_t GetLTRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// FRSREC: reads the first record (physical order for a data file, key order for an index).
std::int16_t FirstRecord(TLoadAlignment A, std::int16_t a0, void* a1);
/// NXTREC: reads the next record.
std::int16_t NextRecord(TLoadAlignment A, std::int16_t a0, void* a1);
/// PRVREC: reads the previous record.
std::int16_t PreviousRecord(TLoadAlignment A, std::int16_t a0, void* a1);
/// LSTREC: reads the last record.
std::int16_t LastRecord(TLoadAlignment A, std::int16_t a0, void* a1);
/// DATENT: returns the number of records of a data file.
std::int32_t NbrOfRecords(TLoadAlignment A, std::int16_t a0);
/// IDXENT: returns the number of keys of an index.
std::int32_t NbrOfKeyEntries(TLoadAlignment A, std::int16_t a0);
/// GETCURKL: copies the current low-level key of an index.
std::int16_t CurrentLowLevelKey(TLoadAlignment A, std::int16_t a0, void* a1);
/// frmkey: builds the key of an index from a record image; returns its length.
std::int32_t BuildKey(TLoadAlignment A, std::int16_t a0, char* a1, char* a2, std::int32_t a3,
                      std::int32_t a4);
/// REDREC: reads the record at a position without making it current.
std::int16_t ReadData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2);
/// EQLKEY: finds the key equal to the target; returns its record position.
std::int32_t GetKey(TLoadAlignment A, std::int16_t a0, void* a1);
/// GTEKEY: finds the first key greater than or equal to the target; returns its position.
std::int32_t GetGTEKey(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// GTKEY: finds the first key greater than the target; returns its position.
std::int32_t GetGTKey(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// LTEKEY: finds the last key less than or equal to the target; returns its position.
std::int32_t GetLTEKey(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// LTKEY: finds the last key less than the target; returns its position.
std::int32_t GetLTKey(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// FRSKEY: finds the first key of an index; returns its position.
std::int32_t FirstKey(TLoadAlignment A, std::int16_t a0, void* a1);
/// FRCKEY: positions on the key at a percentile of the index.
std::int32_t KeyAtPercentile(TLoadAlignment A, std::int16_t a0, void* a1, std::int16_t a2);
/// ESTKEY: estimates the number of keys between two key values.
std::int32_t EstimateKeySpan(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// RNGENT: counts the keys between two key values.
std::int32_t NbrOfKeysInRange(TLoadAlignment A, std::int16_t a0, void* a1, void* a2);
/// ORDKEY: finds a key by its ordinal.
std::int32_t GetORDKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2, void* a3);
/// MIDSET: positions within the current set.
std::int16_t PositionSet(TLoadAlignment A, std::int16_t a0, void* a1, std::int16_t a2);
/// PRVSET: reads the previous record of the current set.
std::int16_t PreviousInSet(TLoadAlignment A, std::int16_t a0, void* a1);
/// ADDKEY: adds one key value to an index.
std::int16_t AddKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2, std::int16_t a3);
/// LOADKEY: loads one key value into an index in ascending order.
std::int16_t LoadKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2, std::int16_t a3);
/// NXTKEY: finds the next key; returns its position.
std::int32_t NextKey(TLoadAlignment A, std::int16_t a0, void* a1);
/// LSTKEY: finds the last key of an index; returns its position.
std::int32_t LastKey(TLoadAlignment A, std::int16_t a0, void* a1);
/// PRVKEY: finds the previous key; returns its position.
std::int32_t PreviousKey(TLoadAlignment A, std::int16_t a0, void* a1);
/// TFRMKEY: transforms a key value as the index stores it.
std::int16_t TransformKey(TLoadAlignment A, std::int16_t a0, void* a1);
/// DELCHK: deletes a key value after checking its record position.
std::int16_t DeleteKey(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t a2);
/// DELBLD: deletes a key value without checking its position.
std::int16_t DeleteKeyBlind(TLoadAlignment A, std::int16_t a0, void* a1);
/// GTVLEN: returns the length of the variable-length record at a position.
std::int32_t VDataLength(TLoadAlignment A, std::int16_t a0, std::int32_t a1);
/// NEWREC: allocates a fixed-length record; returns its position.
std::int32_t NewData(TLoadAlignment A, std::int16_t a0);
/// NEWVREC: allocates a variable-length record; returns its position.
std::int32_t NewVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1);
/// RDVREC: reads a variable-length record at a position.
std::int16_t ReadVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2,
                       std::int32_t a3);
/// RETREC: releases a fixed-length record.
std::int16_t ReleaseData(TLoadAlignment A, std::int16_t a0, std::int32_t a1);
/// RETVREC: releases a variable-length record.
std::int16_t ReleaseVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1);
/// WRTREC: writes a fixed-length record at a position.
std::int16_t WriteData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2);
/// WRTVREC: writes a variable-length record at a position.
std::int16_t WriteVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2,
                        std::int32_t a3);
/// FRSVSET: positions on the first variable-length record of a set.
std::int16_t FirstInVSet(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int16_t a3,
                         std::int32_t* a4);
/// LSTVSET: positions on the last variable-length record of a set.
std::int16_t LastInVSet(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int16_t a3,
                        std::int32_t* a4);
/// NXTVSET: reads the next variable-length record of the set.
std::int16_t NextInVSet(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2);
/// PRVVSET: reads the previous variable-length record of the set.
std::int16_t PreviousInVSet(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2);
/// MIDVSET: positions within the current set of variable-length records.
std::int16_t PositionVSet(TLoadAlignment A, std::int16_t a0, void* a1, std::int16_t a2,
                          std::int32_t* a3);
/// FRSVREC: reads the first variable-length record.
std::int16_t FirstVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2);
/// GTEVREC: reads the first variable-length record with key greater than or equal to the target.
std::int16_t GetGTEVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t* a3);
/// GTVREC: reads the first variable-length record with key greater than the target.
std::int16_t GetGTVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t* a3);
/// LTEVREC: reads the last variable-length record with key less than or equal to the target.
std::int16_t GetLTEVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t* a3);
/// LTVREC: reads the last variable-length record with key less than the target.
std::int16_t GetLTVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t* a3);
/// EQLVREC: reads the variable-length record whose key equals the target.
std::int16_t GetVRecord(TLoadAlignment A, std::int16_t a0, void* a1, void* a2, std::int32_t* a3);
/// LSTVREC: reads the last variable-length record.
std::int16_t LastVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2);
/// NXTVREC: reads the next variable-length record.
std::int16_t NextVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2);
/// PRVVREC: reads the previous variable-length record.
std::int16_t PreviousVRecord(TLoadAlignment A, std::int16_t a0, void* a1, std::int32_t* a2);
/// REDIVREC: reads the variable-length record at a position and makes it current.
std::int16_t ReadIsamVData(TLoadAlignment A, std::int16_t a0, std::int32_t a1, void* a2,
                           std::int32_t* a3);

}  // namespace CTDbIntf
