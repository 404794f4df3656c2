/* ctisam.h - the storage engine's public C interface: types, definition records, constants,
 * error numbers; the entry points are declared in ctisam_calls.h, included at the end.
 *
 * Plain C11, usable from C++20. Every entry point is exported with its exact spelling by each of
 * the six library variants (libctstd32b/w/d, libctreebm/br/bc). The variants differ only in the
 * packing of the definition records they read: 1 (b, bm, br, bc), 2 (w) or 4 (d). The records
 * are declared here in all three packings (suffix _P1, _P2, _P4); the unsuffixed names (IFIL,
 * IIDX, ISEG, DATOBJ, KEYREQ and their pointer types) select the packing given by CTISAM_PACK
 * (default 1), which must match the variant the caller loads.
 *
 * Conventions of every call:
 *  - Calls returning COUNT return 0 or an error number below. Calls returning LONG (positions,
 *    counts, lengths) return 0 on failure; the number is then available from GetCtreeError.
 *  - The caller owns every buffer it passes; the engine never allocates memory for the caller
 *    and never keeps a caller's pointer after the call returns.
 *  - A failing call writes nothing to any file and leaves the session's positions as they were,
 *    unless its comment says otherwise.
 *  - Outside a lock set a successful write is committed when the call returns.
 */
#ifndef CTISAM_H
#define CTISAM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(CTISAM_BUILD)
#define CTISAM_API __attribute__((visibility("default")))
#else
#define CTISAM_API
#endif

/* ---- scalar types ------------------------------------------------------------------------ */
typedef int16_t COUNT;
typedef uint16_t UCOUNT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef uint32_t VRLEN;
typedef char TEXT;
typedef unsigned char UTEXT;
typedef TEXT *pTEXT;
typedef UTEXT *pUTEXT;
typedef void *pVOID;
typedef COUNT *pCOUNT;
typedef UCOUNT *pUCOUNT;
typedef LONG *pLONG;

/* ---- file modes (dfilmod, ifilmod, OPN*, CRE*) ------------------------------------------- */
#define EXCLUSIVE 0x0000  /* no other handle or process may open the file */
#define SHARED 0x0001     /* other shared opens allowed */
#define VLENGTH 0x0004    /* variable-length records */
#define READFIL 0x0008    /* read only: every write returns CT_EREADONLY */
#define PREIMG 0x0010     /* transaction pre-images (accepted, no effect in this engine) */
#define TRNLOG 0x0030     /* transaction logging: commits are flushed to disk */
#define WRITETHRU 0x0040  /* every commit is flushed to disk */
#define CHECKLOCK 0x0080  /* rewrites and deletes require this handle's write lock (DLOK_ERR) */
#define SUPERFILE 0x0200  /* the file is a superfile host */
#define CHECKREAD 0x0400  /* accepted; reads never require a lock in this engine */

/* ---- key segment modes (ISEG.segmode) ---------------------------------------------------- */
#define REGSEG 0     /* bytes as stored */
#define INTSEG 1     /* unsigned little-endian integer of slength bytes */
#define UREGSEG 2    /* bytes, upper-cased */
#define SRLSEG 3     /* serial number (4 bytes), assigned by ADDREC */
#define VARSEG 4     /* field number soffset, bytes as stored */
#define UVARSEG 5    /* field number soffset, upper-cased */
#define SGNSEG 6     /* signed little-endian integer of slength bytes */
#define FLTSEG 7     /* little-endian IEEE float (4) or double (8) */
#define SCHSEG 12    /* field number soffset, transformed by its schema type */
#define USCHSEG 13   /* the same, upper-cased */
#define VSCHSEG 14   /* variable-length field number soffset, by its schema type */
#define UVSCHSEG 15  /* the same, upper-cased */
#define DSCSEG 16    /* add: descending order (every key byte inverted) */
#define ALTSEG 32    /* add: bytes weighed by the index's alternate collating sequence (SETALTSEQ
                      or IIDX.altseq); bytes as stored while the index has none */

/* ---- lock modes (LKISAM, LOKREC) --------------------------------------------------------- */
#define FREE 0
#define RESET 1
#define ENABLE 2
#define ENABLE_BLK 3
#define READREC 5
#define SUSPEND 6
#define RESTORE 7

/* ---- batch modes (BATSET): one of BAT_GET, BAT_NXT, BAT_DEL, BAT_CAN; BAT_POS or BAT_KEY may be
 * added to BAT_GET to choose what each entry of the buffer holds ----------------------------- */
#define BAT_CAN 0x0001  /* cancel the active batch */
#define BAT_NXT 0x0002  /* next chunk of the active batch */
#define BAT_GET 0x0004  /* start a batch read and return its first chunk */
#define BAT_DEL 0x0008  /* delete every record of the batch, in one storage transaction */
#define BAT_POS 0x0010  /* entries: LONG position only */
#define BAT_KEY 0x0020  /* entries: LONG position, then the key (ikeylen bytes) */

/* ---- SECURITY modes ---------------------------------------------------------------------- */
#define SEC_PASSWORD 1  /* bufptr: the new file password (zero-terminated; empty removes it) */
#define SEC_PERMMASK 2  /* bufptr: a LONG of permission bits (0 .. 0777) for the data and index files */

/* ---- PUTHDR modes ------------------------------------------------------------------------ */
#define HDR_SERIAL 1  /* the last serial number given (the next ADDREC gives value + 1) */

/* ---- SETOPS: state bits and modes -------------------------------------------------------- */
#define OPS_FLUSH 0x0001  /* every commit of the session is flushed to disk (as WRITETHRU) */
#define OPS_STATE_OFF 0   /* clear the bits of status */
#define OPS_STATE_SET 1   /* the state becomes status */
#define OPS_STATE_ON 2    /* set the bits of status */
#define OPS_STATE_RET 3   /* change nothing */

/* ---- schema field type codes (DATOBJ.ftype) ---------------------------------------------- */
#define CT_BOOL 8
#define CT_CHAR 16
#define CT_CHARU 24
#define CT_INT2 33
#define CT_INT2U 41
#define CT_INT4 51
#define CT_INT4U 59
#define CT_MONEY 67
#define CT_DATE 75
#define CT_TIME 83
#define CT_SFLOAT 91
#define CT_DFLOAT 103
#define CT_BCDOLD 107
#define CT_BCD 108
#define CT_EFLOAT 119
#define CT_TIMES 124
#define CT_ARRAY 128
#define CT_RESRVD 136
#define CT_FSTRING 144
#define CT_STRING 146
#define CT_FPSTRING 152
#define CT_PSTRING 154
#define CT_F2STRING 160
#define CT_2STRING 162
#define CT_F4STRING 168
#define CT_4STRING 170

/* ---- GETDODA modes ----------------------------------------------------------------------- */
#define SCHEMA_MAP 1   /* opaque schema image (its size tells the caller the schema exists) */
#define SCHEMA_DODA 4  /* array of DATOBJ followed by the names they point to */

/* ---- GETFIL modes ------------------------------------------------------------------------ */
#define RECLEN 1    /* record length of a data file, key length of an index */
#define FILMOD 2    /* file mode the file was opened with */
#define KEYTYP 3    /* key type of an index (ikeytyp) */
#define KEYDUP 4    /* 1 when the index allows duplicates */
#define FILALIGN 5  /* packing (1, 2, 4) of the library that created the file */
#define NUMMEMB 6   /* number of index members of an index file; 0 for a data file */
#define FILTYP 7    /* 0 data file, 1 index */
#define FILVERIFY 8 /* walks every page of the file in a child process: 0 when it reads through,
                     * -1 and CT_EDAMAGED when not; FMOD_ERR unless open EXCLUSIVE, NSUP_ERR for a
                     * superfile member */

/* ---- limits ------------------------------------------------------------------------------ */
#define CT_MAXKEYLEN 480  /* longest key, including a duplicate index's 4-byte position */
#define CT_MAXSEG 32      /* most segments in one index */
#define CT_MAXFILES 4096  /* most file numbers in a session */

/* ---- error numbers ----------------------------------------------------------------------- */
#define NO_ERROR 0
#define KDUP_ERR 2     /* key value already exists (unique index); nothing was written */
#define FNOP_ERR 12    /* file cannot be opened: not there, or locked by an exclusive user */
#define FCRP_ERR 14    /* file was not closed properly / inconsistent; rebuild before use */
#define DCRAT_ERR 17   /* file cannot be created: it exists or the path is unusable */
#define FNUM_ERR 22    /* file number out of range */
#define DLOK_ERR 33    /* record not locked where a lock is required */
#define DLOK2_ERR 42   /* record lock held by another user */
#define FUSE_ERR 46    /* file number already in use */
#define FINT_ERR 47    /* engine not initialised (no INTISAMX yet) */
#define FMOD_ERR 48    /* invalid file mode or combination of modes */
#define ICUR_ERR 100   /* no current record */
#define INOT_ERR 101   /* not found: no such key, or end/start reached */
#define IINT_ERR 125   /* already initialised */
#define NSRV_ERR 133   /* server is not active: this engine is embedded */
#define VBSZ_ERR 153   /* buffer too small for the variable-length record */
#define DTMO_ERR 156   /* time-out waiting for a lock */
#define NCON_ERR 401   /* the index has no condition */
#define RNOT_ERR 408   /* resource not found (IFIL or DODA missing) */
#define NSUP_ERR 454   /* call not supported by this engine (yet) */
#define BPWD_ERR 455   /* wrong file password */
#define CT_EALIGN 801    /* file was created by a library of another packing (alignment) */
#define CT_EBADDEF 802   /* malformed definition: no name, no segments, segment beyond record */
#define CT_EDAMAGED 803  /* damaged file, or not a file of this engine */
#define CT_EDISKFULL 804 /* disk or file system full; nothing was written */
#define CT_EKEYLEN 805   /* key longer than CT_MAXKEYLEN or more than CT_MAXSEG segments */
#define CT_EBADARG 806   /* NULL or too short buffer, or an argument out of its range */
#define CT_ENOTOPEN 807  /* file number not open */
#define CT_ENOTIDX 808   /* file number is not an index where one is required */
#define CT_ENOTDAT 809   /* file number is not a data file where one is required */
#define CT_EREADONLY 810 /* write to a file opened read-only (READFIL) */
#define CT_EIO 811       /* storage I/O failure (system code in GetCtreeError's sysio) */
#define CT_EBADCOND 812  /* malformed condition expression */
#define CT_ENOCTX 813    /* no such context */
#define CT_ERESDUP 814   /* a resource with that type and number already exists */
#define CT_ETRAN 815     /* no transaction / lock set for the call, one already begun, or no such save point */
#define CT_EUNMAPPED 816 /* index file opened on its own: map it onto a data file (setimap) first */
#define CT_ELOCKFILE 817 /* the file's lock table ("<file>-rlock") is damaged, of another version, or full */
#define CT_EBADPARM 820  /* malformed parameter file (sysio of GetCtreeError: the line number) */

/* ---- definition records, one block per packing ------------------------------------------- *
 * ISEG: one key segment. soffset is a byte offset in the record (modes 0-3, 6, 7) or a 0-based
 *   field number of the schema (modes 4, 5, 12-15); slength its length in the key.
 * IIDX: one index. ikeylen is the key length including the 4-byte position a duplicate index
 *   appends; ikeydup 1 allows duplicates; inulkey 1 suppresses keys made only of iempchr bytes;
 *   iempchr pads text segments; ridxnam the index's symbolic name; aidxnam, when set, names the
 *   index file holding it (otherwise it lives in the index file of the set's first index);
 *   altseq, when set, points to 256 weights (0 .. 255) used by ALTSEG segments; pvbyte is ignored.
 * IFIL: a data file with its indexes. pfilnam is the data file name without extension; dfilno
 *   the file number wanted (-1: the engine picks); dreclen the fixed record length (the minimum
 *   with VLENGTH); dfilmod, ifilmod the modes of the data and index files; dnumidx the count of
 *   entries in ix; tfilno receives the number assigned. The extension sizes, rfstfld and rlstfld
 *   are kept as given.
 * DATOBJ: one schema field: fsymb the name, fadr unused (NULL), ftype a CT_ type code, flen the
 *   length in the record, fhrc unused (0).
 * KEYREQ: the batch request of BATSET. In: target, a key value of the index (ikeylen bytes, already
 *   transformed) whose first siglen bytes (0 .. ikeylen) select the batch. Out: btotal, the
 *   records selected when the batch started (records deleted, for BAT_DEL); bavail, those not
 *   yet returned after this call; breclen, the bytes this call wrote into the buffer (with
 *   VBSZ_ERR: the bytes the next entry needs). */
#pragma pack(push, 1)
typedef struct ISEG_P1 { COUNT soffset, slength, segmode; } ISEG_P1;
typedef struct IIDX_P1 {
  COUNT ikeylen, ikeytyp, ikeydup, inulkey, iempchr, inumseg;
  ISEG_P1 *seg;
  pTEXT ridxnam, aidxnam;
  pCOUNT altseq;
  pUCOUNT pvbyte;
} IIDX_P1;
typedef struct IFIL_P1 {
  pTEXT pfilnam;
  COUNT dfilno, dreclen, dxtdsiz, dfilmod, dnumidx, ixtdsiz, ifilmod;
  IIDX_P1 *ix;
  pTEXT rfstfld, rlstfld;
  COUNT tfilno;
} IFIL_P1;
typedef struct DATOBJ_P1 { pTEXT fsymb; pVOID fadr; UCOUNT ftype; VRLEN flen; UCOUNT fhrc; } DATOBJ_P1;
typedef struct KEYREQ_P1 { LONG btotal, bavail; VRLEN breclen; COUNT siglen; TEXT target[CT_MAXKEYLEN]; } KEYREQ_P1;
#pragma pack(pop)

#pragma pack(push, 2)
typedef struct ISEG_P2 { COUNT soffset, slength, segmode; } ISEG_P2;
typedef struct IIDX_P2 {
  COUNT ikeylen, ikeytyp, ikeydup, inulkey, iempchr, inumseg;
  ISEG_P2 *seg;
  pTEXT ridxnam, aidxnam;
  pCOUNT altseq;
  pUCOUNT pvbyte;
} IIDX_P2;
typedef struct IFIL_P2 {
  pTEXT pfilnam;
  COUNT dfilno, dreclen, dxtdsiz, dfilmod, dnumidx, ixtdsiz, ifilmod;
  IIDX_P2 *ix;
  pTEXT rfstfld, rlstfld;
  COUNT tfilno;
} IFIL_P2;
typedef struct DATOBJ_P2 { pTEXT fsymb; pVOID fadr; UCOUNT ftype; VRLEN flen; UCOUNT fhrc; } DATOBJ_P2;
typedef struct KEYREQ_P2 { LONG btotal, bavail; VRLEN breclen; COUNT siglen; TEXT target[CT_MAXKEYLEN]; } KEYREQ_P2;
#pragma pack(pop)

#pragma pack(push, 4)
typedef struct ISEG_P4 { COUNT soffset, slength, segmode; } ISEG_P4;
typedef struct IIDX_P4 {
  COUNT ikeylen, ikeytyp, ikeydup, inulkey, iempchr, inumseg;
  ISEG_P4 *seg;
  pTEXT ridxnam, aidxnam;
  pCOUNT altseq;
  pUCOUNT pvbyte;
} IIDX_P4;
typedef struct IFIL_P4 {
  pTEXT pfilnam;
  COUNT dfilno, dreclen, dxtdsiz, dfilmod, dnumidx, ixtdsiz, ifilmod;
  IIDX_P4 *ix;
  pTEXT rfstfld, rlstfld;
  COUNT tfilno;
} IFIL_P4;
typedef struct DATOBJ_P4 { pTEXT fsymb; pVOID fadr; UCOUNT ftype; VRLEN flen; UCOUNT fhrc; } DATOBJ_P4;
typedef struct KEYREQ_P4 { LONG btotal, bavail; VRLEN breclen; COUNT siglen; TEXT target[CT_MAXKEYLEN]; } KEYREQ_P4;
#pragma pack(pop)

#ifndef CTISAM_PACK
#define CTISAM_PACK 1
#endif
#if CTISAM_PACK == 1
typedef ISEG_P1 ISEG; typedef IIDX_P1 IIDX; typedef IFIL_P1 IFIL;
typedef DATOBJ_P1 DATOBJ; typedef KEYREQ_P1 KEYREQ;
#elif CTISAM_PACK == 2
typedef ISEG_P2 ISEG; typedef IIDX_P2 IIDX; typedef IFIL_P2 IFIL;
typedef DATOBJ_P2 DATOBJ; typedef KEYREQ_P2 KEYREQ;
#elif CTISAM_PACK == 4
typedef ISEG_P4 ISEG; typedef IIDX_P4 IIDX; typedef IFIL_P4 IFIL;
typedef DATOBJ_P4 DATOBJ; typedef KEYREQ_P4 KEYREQ;
#else
#error "CTISAM_PACK must be 1, 2 or 4"
#endif
typedef ISEG *pISEG;
typedef IIDX *pIIDX;
typedef IFIL *pIFIL;
typedef DATOBJ *pDATOBJ;
typedef KEYREQ *pKEYREQ;

/* The last ISAM error of the calling session (also returned by GetCtreeError). */
CTISAM_API extern COUNT ierr;

#ifdef __cplusplus
}
#endif

#include "ctisam_calls.h"

#endif /* CTISAM_H */
