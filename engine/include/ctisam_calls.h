/* ctisam_calls.h - the engine's entry points (included by ctisam.h; do not include directly).
 *
 * Common error numbers, not repeated below: FINT_ERR (47) for any call but the session starters
 * before INTISAMX; FNUM_ERR (22) for a file number outside 0 .. fils-1; CT_ENOTOPEN (807) for a
 * number not open; CT_ENOTIDX (808) / CT_ENOTDAT (809) for a number of the wrong kind;
 * CT_EBADARG (806) for a NULL or short buffer; CT_EREADONLY (810) for a write to a READFIL file;
 * CT_EDISKFULL (804) and CT_EIO (811) for storage failures; for a write, DTMO_ERR (156) when
 * another process holds the file in a lock set or transaction for longer than the lock
 * time-out, and CT_ELOCKFILE (817) when the file's lock region is damaged while other processes
 * use it. A file that is not a regular file gives CT_EDAMAGED (803) at once. "datno" is a data file number,
 * "keyno" an index (key) number, "filno" either. Calls marked "(not supported)" always return
 * NSUP_ERR (454). A name of the form host "!" member names a member of superfile host (see
 * FORMAT.md) in every call that takes a file name.
 */
#ifndef CTISAM_CALLS_H
#define CTISAM_CALLS_H

#ifdef __cplusplus
extern "C" {
#endif

/* ---- session ----------------------------------------------------------------------------- */
/* Starts the session. fils bounds file numbers to 0 .. fils-1 (1 .. CT_MAXFILES; others give
 * CT_EBADARG); bufs, sect, dbufs, userprof, userid, userword are accepted. A non-empty servname
 * gives NSRV_ERR (133); a second start gives IINT_ERR (125) and changes nothing. */
CTISAM_API COUNT INTISAMX(COUNT bufs, COUNT fils, COUNT sect, COUNT dbufs, COUNT userprof,
                          pTEXT userid, pTEXT userword, pTEXT servname);
/* INTISAMX with defaults for the missing arguments. */
CTISAM_API COUNT INTISAM(COUNT bufs, COUNT fils, COUNT sect);
CTISAM_API COUNT INTREE(COUNT bufs, COUNT fils, COUNT sect);
CTISAM_API COUNT INTREEX(COUNT bufs, COUNT fils, COUNT sect, COUNT dbufs, COUNT userprof,
                         pTEXT userid, pTEXT userword, pTEXT servname);
/* Close every open file (ending any lock set) and end the session. 0, or FINT_ERR. */
CTISAM_API COUNT CLISAM(void);
CTISAM_API COUNT STPUSR(void);
/* Writes the last ISAM error, the last error of any call and the last system I/O code (errno)
 * through the non-NULL pointers; returns 1. */
CTISAM_API COUNT GetCtreeError(pCOUNT isamerr, pCOUNT usererr, pCOUNT sysiocod);
/* Writes the error number to stderr (the messages live in the binding's table); returns 0. */
CTISAM_API COUNT ViewCtreeError(ULONG code);
/* Sessions from a parameter file (text format in FORMAT.md, "Parameter files"): OPNISAM starts
 * the session with the file's limit and opens every table it lists (with the indexes the data
 * file's definition names); CREISAM creates them instead, left open. CREISAMX also gives the
 * files password and, when permmask is not 0, the permission bits permmask (0 .. 0777, else
 * CT_EBADARG); a non-empty servname gives NSRV_ERR. IINT_ERR while a session is active;
 * FNOP_ERR when the parameter file cannot be read; CT_EBADPARM for a malformed one (sysio of
 * GetCtreeError: its line). Any failure leaves no session, and CREISAM* no file it created. */
CTISAM_API COUNT OPNISAM(pTEXT parmfile);
CTISAM_API COUNT CREISAM(pTEXT parmfile);
CTISAM_API COUNT CREISAMX(pTEXT parmfile, COUNT usrprf, pTEXT userid, pTEXT userword,
                          pTEXT servname, LONG permmask, pTEXT group, pTEXT password);
/* Server control, node names, transaction logs and their history (not supported: no server,
 * no log files). */
CTISAM_API COUNT STPSRV(pTEXT userword, pTEXT servname, COUNT delay);
CTISAM_API COUNT SYSMON(COUNT mode, LONG timeout, pTEXT buffer, LONG buflen);
CTISAM_API COUNT SETNODE(pTEXT nodename);
CTISAM_API COUNT SETLOGPATH(pTEXT path, LONG mode);
CTISAM_API COUNT CHGHST(COUNT histno);
CTISAM_API COUNT FREHST(void);
CTISAM_API COUNT CTHIST(COUNT filno, pTEXT target, pTEXT bufptr, LONG recbyt, LONG bufsiz,
                        UCOUNT mode);
/* Changes a setting of data file filno, open EXCLUSIVE (FMOD_ERR otherwise) and writable:
 * SEC_PASSWORD, bufptr the new password, zero-terminated within bufsiz (NULL or "" removes it;
 * later opens need the new one, BPWD_ERR otherwise); SEC_PERMMASK, bufptr a LONG of permission
 * bits 0 .. 0777 given to the data file and its index files (CT_EIO when refused). CT_EBADARG
 * for another mode or a malformed buffer. */
CTISAM_API COUNT SECURITY(COUNT filno, pVOID bufptr, LONG bufsiz, COUNT mode);
/* Changes the session's operation state word by mode (OPS_STATE_OFF, _SET, _ON, _RET) with
 * the bits of status (OPS_FLUSH only) and returns the previous word; -1 and CT_EBADARG for
 * other bits or modes. The state starts at 0 with every session. */
CTISAM_API LONG SETOPS(LONG status, LONG mode);
/* I/O statistics of this process since the library was loaded, eight figures in this order:
 * write transactions committed, commits flushed to disk, records copied to callers, blocks
 * read and written by the file system, page faults that read from disk, open files of the
 * session, 0. IOPERFORMANCE writes them as LONGs (32 bytes, a figure beyond 2^31 wraps),
 * IOPERFORMANCEX as 64-bit integers (64 bytes). CT_EBADARG for a NULL buf. */
CTISAM_API COUNT IOPERFORMANCE(pVOID buf);
CTISAM_API COUNT IOPERFORMANCEX(pVOID buf);
/* Copies the configuration (three LONGs: fils, open files, packing) to buf (12 bytes); 0. */
CTISAM_API COUNT SYSCFG(pVOID buf);

/* ---- file numbers and names -------------------------------------------------------------- */
/* Returns the first of n consecutive free file numbers, or -1 (ierr FNUM_ERR). */
CTISAM_API COUNT AVLFILNUM(COUNT n);
/* Writes into buf (len bytes) a file name no file in the current directory has. CT_EBADARG
 * when len is too short (at least 16). */
CTISAM_API COUNT TMPNAME(pVOID buf, LONG len);
/* Writes the name the file was opened with (len bytes, zero-terminated); mode is ignored. */
CTISAM_API COUNT GETNAM(COUNT filno, pTEXT buf, LONG len, COUNT mode);
/* Writes the next member name of the superfile host open as filno into buf (len bytes): the
 * first with mode 0, the following with any other mode, in name order, as the members were when
 * the walk began (members added or deleted meanwhile show in the next walk). INOT_ERR after the
 * last; CT_ENOTDAT when filno is not a host; CT_EBADARG for a short buffer. */
CTISAM_API COUNT GETMNAME(COUNT filno, pTEXT buf, LONG len, COUNT mode);
/* Returns information on an open file by mode (see GETFIL modes in ctisam.h); -1 and ierr on
 * failure (0 is a valid answer for several modes). */
CTISAM_API LONG GETFIL(COUNT filno, COUNT mode);
/* Changes the open mode of an open file: only READFIL may be added or removed; 0 or FMOD_ERR. */
CTISAM_API COUNT PUTFIL(COUNT filno, COUNT mode);

/* ---- data files and index files ---------------------------------------------------------- */
/* Creates data file name+".dat" exactly as named, fixed length reclen (or minimum with VLENGTH),
 * and leaves it open as filno in mode filmod. DCRAT_ERR when it exists; FUSE_ERR when filno is
 * in use. A non-empty password must be given again to open it. With SUPERFILE and a name that
 * is no member, creates an empty superfile host instead and leaves it open as filno. */
CTISAM_API COUNT CREDAT(COUNT filno, pTEXT name, UCOUNT reclen, UCOUNT xtdsiz, COUNT filmod);
CTISAM_API COUNT CREDATX(COUNT filno, pTEXT name, UCOUNT reclen, UCOUNT xtdsiz, COUNT filmod,
                         LONG permmask, pTEXT group, pTEXT password);
/* Opens one data file (named exactly) as filno, without its indexes; a superfile host opens as a
 * host (GETMNAME; GETFIL FILTYP gives 2). FNOP_ERR when missing or
 * held exclusively; BPWD_ERR for a wrong password; CT_EALIGN when made by another packing;
 * CT_EDAMAGED for a foreign or damaged file. An index file opens on its own: it can be mapped
 * onto an open data file (setimap), closed or deleted; other calls on it give CT_EUNMAPPED. */
CTISAM_API COUNT OPNFIL(COUNT filno, pTEXT name, COUNT filmod);
CTISAM_API COUNT OPNFILX(COUNT filno, pTEXT name, COUNT filmod, pTEXT password);
/* Closes one file (mode ignored); closing a data file also closes its open indexes, and the
 * last open of it anywhere removes its temporary indexes (TMPIIDXX without PRMIIDX:
 * definitions, keys and index files) and mapped ones (setimap). Closing a mapped index removes it from its data file (the index file
 * stays). */
CTISAM_API COUNT CLSFIL(COUNT filno, COUNT mode);
/* Deletes a data file (or superfile host) that is open EXCLUSIVE, with the index files of its
 * set, closing them. For an index number: deletes its index file, and every index that file
 * holds leaves its data file with its keys (their numbers close; later indexes keep their
 * numbers). FMOD_ERR when the file (or the index's data file) is open shared. */
CTISAM_API COUNT DELFIL(COUNT filno);
/* Creates index file name (exactly as named; DCRAT_ERR when it exists) holding one index of
 * keylen bytes (keydup 1: duplicates allowed) and room for nomemb more members, and leaves it open
 * on its own as keyno (>= 0, FNUM_ERR otherwise) in mode filmod. CREMEM defines member membno
 * (1..nomemb: CT_EBADARG otherwise; DCRAT_ERR when defined already) of such a file open
 * EXCLUSIVE and unmapped (FUSE_ERR when mapped). Keys live in the data file: setimap gives the
 * members their segments and fills them. CT_EKEYLEN for a key length out of 1..CT_MAXKEYLEN;
 * a non-empty password must be given again to open the file on its own (OPNFILX); permmask and
 * group are ignored. */
CTISAM_API COUNT CREIDX(COUNT keyno, pTEXT name, COUNT keylen, COUNT keytyp, COUNT keydup,
                        COUNT nomemb, UCOUNT xtdsiz, COUNT filmod);
CTISAM_API COUNT CREIDXX(COUNT keyno, pTEXT name, COUNT keylen, COUNT keytyp, COUNT keydup,
                         COUNT nomemb, UCOUNT xtdsiz, COUNT filmod, LONG permmask, pTEXT group,
                         pTEXT password);
CTISAM_API COUNT CREMEM(COUNT keyno, COUNT keylen, COUNT keytyp, COUNT keydup, COUNT membno);
/* Renames an EXCLUSIVE open data file and its index files to newname (without extension; the
 * index files take newname with their own extensions); the files stay open. DCRAT_ERR when a
 * target exists. */
CTISAM_API COUNT ctRENFIL(COUNT filno, pTEXT newname);

/* ---- IFIL sets --------------------------------------------------------------------------- */
/* Creates the data file pfilnam+dataext (NULL: ".dat") and the index files (index extension
 * NULL or "": ".idx") of ifil, stores the IFIL in the data file and leaves the set open as
 * tfilno, tfilno+1, ... (tfilno written back into ifil). CT_EBADDEF for a malformed ifil;
 * DCRAT_ERR when a file exists (nothing is left behind). */
CTISAM_API COUNT CREIFIL(pIFIL ifil);
CTISAM_API COUNT CREIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, LONG permmask, pTEXT group,
                          pTEXT password);
/* Opens the data file named exactly name and the indexes of its stored IFIL as filno,
 * filno+1, ... (filno -1: the engine picks). Errors as OPNFILX; RNOT_ERR without an IFIL. */
CTISAM_API COUNT OPNRFIL(COUNT filno, pTEXT name, COUNT filmod);
CTISAM_API COUNT OPNRFILX(COUNT filno, pTEXT name, COUNT filmod, pTEXT password);
/* Closes (CLRFIL) or deletes (DELRFIL, requires EXCLUSIVE) the set opened with datno. */
CTISAM_API COUNT CLRFIL(COUNT datno);
CTISAM_API COUNT DELRFIL(COUNT datno);
/* Opens / closes / deletes the set described by ifil (pfilnam+".dat" and its index files). */
CTISAM_API COUNT OPNIFIL(pIFIL ifil);
CTISAM_API COUNT OPNIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, pTEXT password);
CTISAM_API COUNT CLIFIL(pIFIL ifil);
CTISAM_API COUNT DELIFIL(pIFIL ifil);
/* Replaces the stored IFIL of the open data file dfilno. With the same index count the indexes
 * correspond by place. With fewer, each given index must be one the file has (matched by
 * ridxnam, an unnamed one by its key layout); the others leave the file with their keys, their
 * numbers close, and an index file no index uses any more is deleted. CT_EBADDEF for a
 * malformed ifil, more indexes than the file has (TMPIIDXX adds them) or an unknown index.
 * The kept indexes keep their index files and open numbers. Mapped indexes (setimap) stay. */
CTISAM_API COUNT PUTIFIL(pIFIL ifil);
CTISAM_API COUNT PUTIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, pTEXT password);
/* Returns the size of the stored IFIL image; with buf (len bytes) copies it: an IFIL followed
 * by its IIDX, ISEG and names, the pointers pointing into buf. 0 and RNOT_ERR when none;
 * 0 and CT_EBADARG when len is too small. */
CTISAM_API LONG GETIFIL(COUNT datno, LONG len, pVOID buf);
/* Adds the dnumidx indexes of ifil to the open data file dfilno and fills them from its records,
 * in one transaction. pfilnam names their index file (".idx" added, placed beside the data file;
 * an index with aidxnam gets a file of that name). tfilno in: the first file number wanted for
 * them (-1: the engine picks); out: the number given to the first. The indexes are stored in
 * the table's IFIL at once and marked temporary until PRMIIDX (a temporary index is removed,
 * with its index file, when the data file closes). DCRAT_ERR when an index of
 * that name or an index file of that name exists; KDUP_ERR when a unique index meets a
 * duplicate; nothing is left behind on failure. */
CTISAM_API COUNT TMPIIDXX(pIFIL ifil, LONG permmask, pTEXT group, pTEXT password);
/* Makes the temporary indexes of data file ifil->dfilno permanent; CT_ENOTIDX when it has none. */
CTISAM_API COUNT PRMIIDX(pIFIL ifil);
/* Maps index file imapno, open on its own (OPNFIL, CREIDX), onto the open data file datno: its
 * members become indexes imapno, imapno+1, ... of datno, filled from its records in one
 * transaction and maintained by every write, until the index file or the data file closes.
 * Members that have no segments (CREIDX/CREMEM) take those of ifil's index of the same place,
 * whose key length and duplicate flag must agree. ifil is the caller's IFIL of the data file:
 * its record length must be the data file's. mode must be 0 (CT_EBADARG). CT_EBADDEF for a
 * malformed ifil or a member that cannot be built; CT_ENOTIDX when imapno is not an index file;
 * FUSE_ERR when it is mapped already or a member's number is in use; DCRAT_ERR when the data
 * file has an index of that name or from that file; KDUP_ERR when a unique member meets a
 * duplicate. GETIFIL does not list mapped indexes. */
CTISAM_API COUNT setimap(COUNT imapno, pIFIL ifil, COUNT datno, COUNT mode);
/* Rebuilds the closed set pfilnam+dataext (".dat"): its index files are made again from the
 * data file's stored IFIL (ifil's when it has none) and every index is refilled from the
 * records. A set whose open reported FCRP_ERR opens normally afterwards. FNOP_ERR when the data
 * file is missing or open anywhere; KDUP_ERR when a unique index meets a duplicate (the keys
 * stay as they were). CMPIFIL also reclaims the space of deleted records (not for superfile
 * members: NSUP_ERR). */
CTISAM_API COUNT RBLIFIL(pIFIL ifil);
CTISAM_API COUNT RBLIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, LONG permmask,
                          pTEXT group, pTEXT password);
CTISAM_API COUNT CMPIFIL(pIFIL ifil);
CTISAM_API COUNT CMPIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, LONG permmask,
                          pTEXT group, pTEXT password);
/* Rebuilds a whole superfile (not supported: rebuild its tables with RBLIFIL on member names). */
CTISAM_API COUNT CTSBLDX(pTEXT superfile, pTEXT tempname);

/* ---- resources and schema ---------------------------------------------------------------- */
/* A resource image is: ULONG type, ULONG number, zero-terminated name, then the data; len
 * counts the whole image (at least 9 bytes, the name terminated inside it, else CT_EBADARG;
 * the IFIL and schema are kept apart from these). ADDRES: CT_ERESDUP when the
 * (type, number) exists. UPDRES replaces one (RNOT_ERR when missing), DELRES removes the one the
 * image's type and number name. ENARES enables resources of a file (always enabled; 0). */
CTISAM_API COUNT ADDRES(COUNT datno, pVOID resptr, LONG len);
CTISAM_API COUNT UPDRES(COUNT datno, pVOID resptr, LONG len);
CTISAM_API COUNT DELRES(COUNT datno, pVOID resptr);
CTISAM_API COUNT ENARES(COUNT datno);
/* Finds the resource whose type and number are given by resptr's first 8 bytes and copies its
 * whole image into bufptr (bufsiz bytes). Returns bufptr, or NULL with RNOT_ERR / VBSZ_ERR.
 * mode is ignored. */
CTISAM_API pVOID GETRES(COUNT datno, pVOID resptr, pVOID bufptr, LONG bufsiz, COUNT mode);
/* Returns the size of the schema image of mode SCHEMA_MAP or SCHEMA_DODA; with buf (len bytes)
 * copies it. SCHEMA_DODA: count DATOBJs then their names, fsymb pointing into buf. 0 and
 * RNOT_ERR when no schema; 0 and CT_EBADARG for another mode or a short buffer. */
CTISAM_API LONG GETDODA(COUNT datno, LONG len, pVOID buf, COUNT mode);
/* Stores count schema fields (names 1..63 bytes). CT_EBADDEF for an empty name. */
CTISAM_API COUNT PUTDODA(COUNT datno, pDATOBJ doda, UCOUNT count);

/* ---- records ----------------------------------------------------------------------------- */
/* Adds the record with its key in every index. KDUP_ERR (2) on a unique clash, nothing
 * written. A serial segment gets the next serial number, written into rec too. ADDVREC: len
 * bytes (at least the fixed length). The new record becomes current. */
CTISAM_API COUNT ADDREC(COUNT datno, pVOID rec);
CTISAM_API COUNT ADDVREC(COUNT datno, pVOID rec, LONG len);
/* Rewrites the current record, moving the keys that changed. ICUR_ERR without a current
 * record; KDUP_ERR with nothing written. */
CTISAM_API COUNT RWTREC(COUNT datno, pVOID rec);
CTISAM_API COUNT RWTVREC(COUNT datno, pVOID rec, LONG len);
/* Deletes the current record and its keys; NXTREC/NXTKEY then give the following record. */
CTISAM_API COUNT DELREC(COUNT datno);
CTISAM_API COUNT DELVREC(COUNT datno);
/* Re-read the current record: RRDREC (fixed length), REDVREC (bufsiz bytes; VBSZ_ERR when
 * short). GETVLEN returns its length (0 and ICUR_ERR without one). */
CTISAM_API COUNT RRDREC(COUNT datno, pVOID rec);
CTISAM_API COUNT REDVREC(COUNT datno, pVOID rec, LONG bufsiz);
CTISAM_API LONG GETVLEN(COUNT datno);
/* Read at pos without changing the current record. INOT_ERR when no record is there. */
CTISAM_API COUNT REDREC(COUNT datno, LONG pos, pVOID rec);
CTISAM_API COUNT RDVREC(COUNT datno, LONG pos, pVOID rec, LONG bufsiz);
CTISAM_API LONG GTVLEN(COUNT datno, LONG pos);
/* Read at pos and make it current (REDIVREC: *plen in = buffer size, out = length). */
CTISAM_API COUNT REDIREC(COUNT datno, LONG pos, pVOID rec);
CTISAM_API COUNT REDIVREC(COUNT datno, LONG pos, pVOID rec, pLONG plen);
/* Makes pos current (INOT_ERR when no record there); given rec (len bytes, else the stored
 * record is used) sets every index's current key to that record's key. */
CTISAM_API COUNT SETCURI(COUNT datno, LONG pos, pVOID rec, LONG len);
/* Returns the current position of datno's active context, 0 (ICUR_ERR) without one. */
CTISAM_API LONG GETCURP(COUNT datno);
/* Forgets the current record of datno (mode ignored). */
CTISAM_API COUNT UPDCURI(COUNT datno, COUNT mode);
/* Navigation. filno a data file: physical order; an index: key order. The record found is
 * copied to rec (fixed length) and becomes current. INOT_ERR at the ends / not found.
 * EQLREC..LTREC take a key number and a target key (ikeylen bytes, already transformed). */
CTISAM_API COUNT FRSREC(COUNT filno, pVOID rec);
CTISAM_API COUNT NXTREC(COUNT filno, pVOID rec);
CTISAM_API COUNT PRVREC(COUNT filno, pVOID rec);
CTISAM_API COUNT LSTREC(COUNT filno, pVOID rec);
CTISAM_API COUNT EQLREC(COUNT keyno, pVOID target, pVOID rec);
CTISAM_API COUNT GTEREC(COUNT keyno, pVOID target, pVOID rec);
CTISAM_API COUNT GTREC(COUNT keyno, pVOID target, pVOID rec);
CTISAM_API COUNT LTEREC(COUNT keyno, pVOID target, pVOID rec);
CTISAM_API COUNT LTREC(COUNT keyno, pVOID target, pVOID rec);
/* The same for variable-length records: *plen in = buffer size, out = record length. */
CTISAM_API COUNT FRSVREC(COUNT filno, pVOID rec, pLONG plen);
CTISAM_API COUNT NXTVREC(COUNT filno, pVOID rec, pLONG plen);
CTISAM_API COUNT PRVVREC(COUNT filno, pVOID rec, pLONG plen);
CTISAM_API COUNT LSTVREC(COUNT filno, pVOID rec, pLONG plen);
CTISAM_API COUNT EQLVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen);
CTISAM_API COUNT GTEVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen);
CTISAM_API COUNT GTVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen);
CTISAM_API COUNT LTEVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen);
CTISAM_API COUNT LTVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen);
/* Low-level records (no keys touched): NEWREC/NEWVREC reserve a position (returned; 0 on
 * failure) holding a zero record; WRTREC/WRTVREC write at a position; RETREC/RETVREC free one. */
CTISAM_API LONG NEWREC(COUNT datno);
CTISAM_API LONG NEWVREC(COUNT datno, LONG len);
CTISAM_API COUNT WRTREC(COUNT datno, LONG pos, pVOID rec);
CTISAM_API COUNT WRTVREC(COUNT datno, LONG pos, pVOID rec, LONG len);
CTISAM_API COUNT RETREC(COUNT datno, LONG pos);
CTISAM_API COUNT RETVREC(COUNT datno, LONG pos);
/* Counts: records of a data file, keys of an index (0 and ierr on failure). */
CTISAM_API LONG DATENT(COUNT datno);
CTISAM_API LONG IDXENT(COUNT keyno);
/* Changes a header value of data file filno: HDR_SERIAL sets the last serial number given to
 * value (>= 0). CT_EBADARG for another mode or a negative value. */
CTISAM_API COUNT PUTHDR(COUNT filno, LONG value, COUNT mode);

/* ---- keys -------------------------------------------------------------------------------- */
/* Builds the key of index keyno from record image rec into key (ikeylen bytes): pos is the
 * position a duplicate index appends; len the record length (0: fixed length). Returns the key
 * length, or 0 with ierr (CT_EBADARG, CT_ENOTIDX, RNOT_ERR when a schema segment has no DODA). */
CTISAM_API COUNT frmkey(COUNT keyno, pTEXT rec, pTEXT key, LONG pos, LONG len);
/* Transforms a key value in place by the index's segment modes; returns key (NULL on error). */
CTISAM_API pTEXT TFRMKEY(COUNT keyno, pVOID key);
/* Key navigation: returns the position of the key found and copies the key to idxval; 0 when
 * none (ierr INOT_ERR, or another number). Moves only the index's current key. */
CTISAM_API LONG FRSKEY(COUNT keyno, pVOID idxval);
CTISAM_API LONG NXTKEY(COUNT keyno, pVOID idxval);
CTISAM_API LONG PRVKEY(COUNT keyno, pVOID idxval);
CTISAM_API LONG LSTKEY(COUNT keyno, pVOID idxval);
CTISAM_API LONG EQLKEY(COUNT keyno, pVOID target);
CTISAM_API LONG GTEKEY(COUNT keyno, pVOID target, pVOID idxval);
CTISAM_API LONG GTKEY(COUNT keyno, pVOID target, pVOID idxval);
CTISAM_API LONG LTEKEY(COUNT keyno, pVOID target, pVOID idxval);
CTISAM_API LONG LTKEY(COUNT keyno, pVOID target, pVOID idxval);
/* Copies the current key of keyno (GETCURK: *plen receives its length). ICUR_ERR without one. */
CTISAM_API COUNT GETCURK(COUNT keyno, pVOID idxval, pLONG plen);
CTISAM_API COUNT GETCURKL(COUNT keyno, pVOID idxval);
/* Single keys: ADDKEY/LOADKEY add key (ikeylen bytes) for pos (KDUP_ERR on clash), DELCHK
 * removes key for pos, DELBLD removes key whatever its position. INOT_ERR when absent. */
CTISAM_API COUNT ADDKEY(COUNT keyno, pVOID key, LONG pos, COUNT mode);
CTISAM_API COUNT LOADKEY(COUNT keyno, pVOID key, LONG pos, COUNT mode);
CTISAM_API COUNT DELCHK(COUNT keyno, pVOID key, LONG pos);
CTISAM_API COUNT DELBLD(COUNT keyno, pVOID key);
/* Exact count of keys with low <= key <= high (0 and ierr on failure or when none). */
CTISAM_API LONG RNGENT(COUNT keyno, pVOID low, pVOID high);
/* Positions on the key at percent (0..100) of the index; returns its position (0 when empty). */
CTISAM_API LONG FRCKEY(COUNT keyno, pVOID idxval, COUNT percent);
/* Returns an estimate (here exact) of the keys between key1 and key2. */
CTISAM_API LONG ESTKEY(COUNT keyno, pVOID key1, pVOID key2);
/* Positions on the key with ordinal offset (0-based) among keys >= target (target NULL: from
 * the first); copies it into idxval and returns its position. */
CTISAM_API LONG ORDKEY(COUNT keyno, pVOID target, LONG offset, pVOID idxval);
/* Returns the last serial number given in datno (0 before the first). */
CTISAM_API LONG SERIALNUM(COUNT datno);
/* SETALTSEQ gives index keyno an alternate collating sequence: altseq points to 256 weights
 * (0 .. 255, else CT_EBADARG), one per byte value; bytes of its ALTSEG segments (and their
 * padding) are replaced by their weights. The index's keys are rebuilt at once (KDUP_ERR, with
 * nothing changed, when weights make two keys of a unique index equal). GETALTSEQ copies the
 * 256 weights (RNOT_ERR when the index has none). SETVARBYTS: pvbyte[0] becomes the pad byte
 * (iempchr) of index filno, or of every index of data file filno, whose keys are rebuilt;
 * pvbyte[1], the delimiter of variable-length fields, must be 0 (CT_EBADARG otherwise). */
CTISAM_API COUNT GETALTSEQ(COUNT keyno, pCOUNT altseq);
CTISAM_API COUNT SETALTSEQ(COUNT keyno, pCOUNT altseq);
CTISAM_API COUNT SETVARBYTS(COUNT filno, pUTEXT pvbyte);
/* GETCIDX returns the size of keyno's condition with its terminator and, with buf (len bytes),
 * copies it; 0 with NCON_ERR when the index has none, CT_EBADARG when len is short.
 * UPDCIDX gives keyno the condition expr (the language is described in src/Condition.h:
 * field names, numbers, quoted texts, + - * / %, comparisons, ! && ||, parentheses) and refills
 * the index with the records that satisfy it; NULL or "" removes the condition. CT_EBADCOND
 * for a malformed expression, RNOT_ERR when the file has no schema (PUTDODA), KDUP_ERR when the
 * refilled unique index meets a duplicate; on failure nothing changes. */
CTISAM_API LONG GETCIDX(COUNT keyno, LONG len, pVOID buf);
CTISAM_API COUNT UPDCIDX(COUNT keyno, pTEXT expr);

/* ---- contexts ---------------------------------------------------------------------------- */
/* Opens a context on datno holding a copy of the active positions and makes it active. Returns
 * the context number (contextid when >= 0, otherwise one the engine picks), or a negative error. */
CTISAM_API COUNT OPNICON(COUNT datno, COUNT contextid, COUNT mode);
/* Makes a context active (CT_ENOCTX when unknown). */
CTISAM_API COUNT CHGICON(COUNT contextid);
/* Closes a context; when it was active, the one active before it is active again. */
CTISAM_API COUNT CLSICON(COUNT contextid);

/* ---- lock sets, record locks, transactions ------------------------------------------------ *
 * A record lock belongs to the file number (handle) that took it and holds against every other
 * handle of this process and every other process; a process that dies holds none. A record
 * another owner has locked cannot be locked (DLOK2_ERR), rewritten or deleted (DLOK2_ERR); with
 * CHECKLOCK a rewrite or delete also needs this handle's write lock (DLOK_ERR). Waiting modes
 * (ENABLE_BLK) wait up to the session's time-out (CTISAM_LOCK_TIMEOUT_MS in the environment
 * when the session starts, default 5000 ms) and then give DTMO_ERR.
 * Inside a lock set or a transaction the writes of each file go to one storage transaction
 * committed when the set or transaction ends: other users see them together, a process that
 * dies inside leaves none of them, and the session reads its own writes meanwhile. A failing
 * call inside still writes nothing. */
/* ENABLE / ENABLE_BLK start a lock set: records read (record navigation, REDIREC, RRDREC,
 * REDVREC) or added afterwards are write-locked (READREC: read-locked; a rewrite or delete
 * still takes a write lock). A lock refused by a read gives DLOK2_ERR or DTMO_ERR and leaves
 * the positions as they were. FREE commits the set's writes and releases the locks the set took
 * (locks taken with LOKREC stay); RESET does the same and starts a new set in the same mode;
 * SUSPEND stops taking locks, RESTORE resumes (CT_ETRAN outside a set). Inside a transaction
 * FREE and RESET only stop taking locks: writes and locks stay until the transaction ends.
 * A commit failure (CT_EDISKFULL, CT_EIO) discards the set's writes. CT_EBADARG for other modes.
 * A set that wrote several files commits all or none of them even if the process dies between
 * the files' commits: a journal next to each file lets the next open roll back the ones that
 * committed (other processes may see the first files' part for the instant of the commits). */
CTISAM_API COUNT LKISAM(COUNT mode);
/* Locks (ENABLE, ENABLE_BLK: write; READREC: read) or frees (FREE) the record at pos of datno.
 * DLOK2_ERR / DTMO_ERR when refused; FREE of a lock this handle does not hold gives DLOK_ERR.
 * The lock lasts until freed, until the file is closed or until the session ends. */
CTISAM_API COUNT LOKREC(COUNT datno, COUNT mode, LONG pos);
/* Begins a transaction over every file of the session; mode's low bits ENABLE, ENABLE_BLK or
 * READREC also start a lock set. Returns a transaction number > 0, or 0 with CT_ETRAN when one
 * is active (CT_EBADARG for another mode). */
CTISAM_API LONG TRANBEG(COUNT mode);
/* Commits the transaction (CT_ETRAN without one). mode FREE also ends the lock set and
 * releases its locks; any other mode keeps the lock set going. Files commit one after the
 * other, all or none: a failure of one (CT_EDISKFULL, CT_EIO) discards the whole transaction,
 * and a process dying between two commits leaves a journal by which the next open of any of
 * the files rolls back those that committed. */
CTISAM_API COUNT TRANEND(COUNT mode);
/* Discards every write of the transaction, ends its lock set and releases its locks (CT_ETRAN
 * without one). Current records may then name records that no longer exist. */
CTISAM_API COUNT TRANABT(void);
CTISAM_API COUNT TRANABTX(COUNT mode);
/* Makes a save point; returns its number (1, 2, ...), or the negated error (CT_ETRAN). */
CTISAM_API COUNT TRANSAV(void);
/* Discards the writes made since save point savpnt, which stays usable; later save points are
 * gone. CT_ETRAN without a transaction or for an unknown save point. */
CTISAM_API COUNT TRANRST(COUNT savpnt);
/* Clears the transaction: the same as TRANABT. */
CTISAM_API COUNT TRANCLR(void);

/* ---- sets and batches ------------------------------------------------------------------- *
 * A set is the records of index keyno whose keys start with the first siglen bytes (0 .. ikeylen,
 * else CT_EBADARG) of target, a key value already transformed (TFRMKEY). FRSSET / LSTSET start
 * the active set and read its first / last record; NXTSET / PRVSET read the next / previous
 * one; MIDSET starts the set from the current record's key in keyno and re-reads that record
 * (ICUR_ERR without one). Each set keeps its own place, so other navigation between set calls
 * does not move it; the record a set call reads becomes the current record (as EQLREC would,
 * locking inside a lock set). INOT_ERR when the set is empty or its end is reached: the place,
 * the current record and rec stay as they were. ICUR_ERR from NXTSET / PRVSET when the active
 * set was not started on keyno (or its file was closed since). The V forms read variable-length
 * records: *plen in = buffer size, out = record length (VBSZ_ERR when short).
 * ALCSET(numset) replaces the sets by numset (>= 1) empty ones numbered 0 .. numset-1, set 0
 * active; CHGSET makes another active (CT_EBADARG out of range); FRESET goes back to the one
 * set every session starts with. */
CTISAM_API COUNT FRSSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen);
CTISAM_API COUNT NXTSET(COUNT keyno, pVOID rec);
CTISAM_API COUNT PRVSET(COUNT keyno, pVOID rec);
CTISAM_API COUNT LSTSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen);
CTISAM_API COUNT MIDSET(COUNT keyno, pVOID rec, COUNT siglen);
CTISAM_API COUNT FRSVSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen, pLONG plen);
CTISAM_API COUNT NXTVSET(COUNT keyno, pVOID rec, pLONG plen);
CTISAM_API COUNT PRVVSET(COUNT keyno, pVOID rec, pLONG plen);
CTISAM_API COUNT LSTVSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen, pLONG plen);
CTISAM_API COUNT MIDVSET(COUNT keyno, pVOID rec, COUNT siglen, pLONG plen);
CTISAM_API COUNT ALCSET(COUNT numset);
CTISAM_API COUNT CHGSET(COUNT setno);
CTISAM_API COUNT FRESET(void);
/* Batches: BAT_GET selects the records whose keys in keyno start with request->target's first
 * request->siglen bytes, as they are now, and writes the first chunk into buf (bufsiz bytes);
 * BAT_NXT writes the next chunk. Entries follow one another without padding: a LONG position,
 * then by default a VRLEN length and the record, with BAT_KEY the key (ikeylen bytes), with
 * BAT_POS nothing more. The request receives btotal, bavail and breclen (see KEYREQ in
 * ctisam.h), also on failure. INOT_ERR when nothing is selected or nothing remains; VBSZ_ERR
 * when the next entry alone does not fit (breclen = its size; nothing is consumed); ICUR_ERR
 * for BAT_NXT without an active batch on keyno. Records deleted after the selection are
 * skipped. Batches read no locks and do not move the current record.
 * BAT_DEL deletes every selected record with its keys in one storage transaction (btotal =
 * records deleted; INOT_ERR when none); DLOK2_ERR, with nothing deleted, when another owner
 * holds a lock on one. BAT_CAN forgets the active batch. CT_EBADARG for other modes.
 * ALCBAT, CHGBAT, FREBAT number the batches as ALCSET, CHGSET, FRESET number the sets. */
CTISAM_API COUNT BATSET(COUNT keyno, pKEYREQ request, pVOID buf, LONG bufsiz, COUNT mode);
CTISAM_API COUNT ALCBAT(COUNT numbat);
CTISAM_API COUNT CHGBAT(COUNT batno);
CTISAM_API COUNT FREBAT(void);

#ifdef __cplusplus
}
#endif

#endif /* CTISAM_CALLS_H */
