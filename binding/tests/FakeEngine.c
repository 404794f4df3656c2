/* A stand-in storage library for the binding's tests: exports every entry point name with the
   engine header's prototype. Each function records its own name and returns FAKE_RESULT, so a
   test can tell which library and which entry point a wrapper reached. Built several times:
   with different FAKE_RESULT values, and once with FAKE_WITHOUT_SETLOGPATH to lack one name. */
#include <stdint.h>

#include "ctisam.h"

static const char* lastCall = "";
static COUNT errorResult = 1;
static COUNT errorValues[3];

/* Name of the last entry point called in this library ("" before any). */
const char* fake_last_call(void) { return lastCall; }

/* Sets what GetCtreeError returns and writes through its three pointers. */
void fake_set_ctree_error(COUNT result, COUNT isam, COUNT uerr, COUNT sysio) {
  errorResult = result;
  errorValues[0] = isam;
  errorValues[1] = uerr;
  errorValues[2] = sysio;
}

COUNT ierr;

/* One line per entry point. */
/* clang-format off */
COUNT TMPNAME(pVOID buf, LONG len) { lastCall = "TMPNAME"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT INTISAM(COUNT bufs, COUNT fils, COUNT sect) { lastCall = "INTISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNISAM(pTEXT parmfile) { lastCall = "OPNISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CLISAM(void) { lastCall = "CLISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNRFIL(COUNT filno, pTEXT name, COUNT filmod) { lastCall = "OPNRFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CLRFIL(COUNT datno) { lastCall = "CLRFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELRFIL(COUNT datno) { lastCall = "DELRFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREIFIL(pIFIL ifil) { lastCall = "CREIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SETCURI(COUNT datno, LONG pos, pVOID rec, LONG len) { lastCall = "SETCURI"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETCURP(COUNT datno) { lastCall = "GETCURP"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT UPDCURI(COUNT datno, COUNT mode) { lastCall = "UPDCURI"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ADDREC(COUNT datno, pVOID rec) { lastCall = "ADDREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ADDVREC(COUNT datno, pVOID rec, LONG len) { lastCall = "ADDVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RWTREC(COUNT datno, pVOID rec) { lastCall = "RWTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RWTVREC(COUNT datno, pVOID rec, LONG len) { lastCall = "RWTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELREC(COUNT datno) { lastCall = "DELREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELVREC(COUNT datno) { lastCall = "DELVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT REDIREC(COUNT datno, LONG pos, pVOID rec) { lastCall = "REDIREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT REDVREC(COUNT datno, pVOID rec, LONG bufsiz) { lastCall = "REDVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RRDREC(COUNT datno, pVOID rec) { lastCall = "RRDREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETIFIL(COUNT datno, LONG len, pVOID buf) { lastCall = "GETIFIL"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT PUTIFIL(pIFIL ifil) { lastCall = "PUTIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRSSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen) { lastCall = "FRSSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT NXTSET(COUNT keyno, pVOID rec) { lastCall = "NXTSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LSTSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen) { lastCall = "LSTSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LKISAM(COUNT mode) { lastCall = "LKISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETVLEN(COUNT datno) { lastCall = "GETVLEN"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT CLSICON(COUNT contextid) { lastCall = "CLSICON"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNICON(COUNT datno, COUNT contextid, COUNT mode) { lastCall = "OPNICON"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CHGICON(COUNT contextid) { lastCall = "CHGICON"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRMIIDX(pIFIL ifil) { lastCall = "PRMIIDX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT BATSET(COUNT keyno, pKEYREQ request, pVOID buf, LONG bufsiz, COUNT mode) { lastCall = "BATSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CMPIFIL(pIFIL ifil) { lastCall = "CMPIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RBLIFIL(pIFIL ifil) { lastCall = "RBLIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GETCURK(COUNT keyno, pVOID idxval, pLONG plen) { lastCall = "GETCURK"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT EQLREC(COUNT keyno, pVOID target, pVOID rec) { lastCall = "EQLREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GTEREC(COUNT keyno, pVOID target, pVOID rec) { lastCall = "GTEREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GTREC(COUNT keyno, pVOID target, pVOID rec) { lastCall = "GTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LTEREC(COUNT keyno, pVOID target, pVOID rec) { lastCall = "LTEREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LTREC(COUNT keyno, pVOID target, pVOID rec) { lastCall = "LTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRSREC(COUNT filno, pVOID rec) { lastCall = "FRSREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT NXTREC(COUNT filno, pVOID rec) { lastCall = "NXTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRVREC(COUNT filno, pVOID rec) { lastCall = "PRVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LSTREC(COUNT filno, pVOID rec) { lastCall = "LSTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNFIL(COUNT filno, pTEXT name, COUNT filmod) { lastCall = "OPNFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREDAT(COUNT filno, pTEXT name, UCOUNT reclen, UCOUNT xtdsiz, COUNT filmod) { lastCall = "CREDAT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT AVLFILNUM(COUNT n) { lastCall = "AVLFILNUM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PUTFIL(COUNT filno, COUNT mode) { lastCall = "PUTFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETDODA(COUNT datno, LONG len, pVOID buf, COUNT mode) { lastCall = "GETDODA"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT PUTDODA(COUNT datno, pDATOBJ doda, UCOUNT count) { lastCall = "PUTDODA"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG DATENT(COUNT datno) { lastCall = "DATENT"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG IDXENT(COUNT keyno) { lastCall = "IDXENT"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT GETCURKL(COUNT keyno, pVOID idxval) { lastCall = "GETCURKL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CLSFIL(COUNT filno, COUNT mode) { lastCall = "CLSFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LOKREC(COUNT datno, COUNT mode, LONG pos) { lastCall = "LOKREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT frmkey(COUNT keyno, pTEXT rec, pTEXT key, LONG pos, LONG len) { lastCall = "frmkey"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ViewCtreeError(ULONG code) { lastCall = "ViewCtreeError"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETFIL(COUNT filno, COUNT mode) { lastCall = "GETFIL"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT REDREC(COUNT datno, LONG pos, pVOID rec) { lastCall = "REDREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG EQLKEY(COUNT keyno, pVOID target) { lastCall = "EQLKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG GTEKEY(COUNT keyno, pVOID target, pVOID idxval) { lastCall = "GTEKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG GTKEY(COUNT keyno, pVOID target, pVOID idxval) { lastCall = "GTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG LTEKEY(COUNT keyno, pVOID target, pVOID idxval) { lastCall = "LTEKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG LTKEY(COUNT keyno, pVOID target, pVOID idxval) { lastCall = "LTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG FRSKEY(COUNT keyno, pVOID idxval) { lastCall = "FRSKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG FRCKEY(COUNT keyno, pVOID idxval, COUNT percent) { lastCall = "FRCKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG ESTKEY(COUNT keyno, pVOID key1, pVOID key2) { lastCall = "ESTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG RNGENT(COUNT keyno, pVOID low, pVOID high) { lastCall = "RNGENT"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG ORDKEY(COUNT keyno, pVOID target, LONG offset, pVOID idxval) { lastCall = "ORDKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG SERIALNUM(COUNT datno) { lastCall = "SERIALNUM"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT IOPERFORMANCE(pVOID buf) { lastCall = "IOPERFORMANCE"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG TRANBEG(COUNT mode) { lastCall = "TRANBEG"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT TRANABT(void) { lastCall = "TRANABT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANABTX(COUNT mode) { lastCall = "TRANABTX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANEND(COUNT mode) { lastCall = "TRANEND"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANCLR(void) { lastCall = "TRANCLR"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANSAV(void) { lastCall = "TRANSAV"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANRST(COUNT savpnt) { lastCall = "TRANRST"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CMPIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, LONG permmask, pTEXT group, pTEXT password) { lastCall = "CMPIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREDATX(COUNT filno, pTEXT name, UCOUNT reclen, UCOUNT xtdsiz, COUNT filmod, LONG permmask, pTEXT group, pTEXT password) { lastCall = "CREDATX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNFILX(COUNT filno, pTEXT name, COUNT filmod, pTEXT password) { lastCall = "OPNFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RBLIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, LONG permmask, pTEXT group, pTEXT password) { lastCall = "RBLIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNRFILX(COUNT filno, pTEXT name, COUNT filmod, pTEXT password) { lastCall = "OPNRFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT INTISAMX(COUNT bufs, COUNT fils, COUNT sect, COUNT dbufs, COUNT userprof, pTEXT userid, pTEXT userword, pTEXT servname) { lastCall = "INTISAMX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, LONG permmask, pTEXT group, pTEXT password) { lastCall = "CREIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT INTREE(COUNT bufs, COUNT fils, COUNT sect) { lastCall = "INTREE"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT INTREEX(COUNT bufs, COUNT fils, COUNT sect, COUNT dbufs, COUNT userprof, pTEXT userid, pTEXT userword, pTEXT servname) { lastCall = "INTREEX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT STPSRV(pTEXT userword, pTEXT servname, COUNT delay) { lastCall = "STPSRV"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT STPUSR(void) { lastCall = "STPUSR"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SECURITY(COUNT filno, pVOID bufptr, LONG bufsiz, COUNT mode) { lastCall = "SECURITY"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG SETOPS(LONG status, LONG mode) { lastCall = "SETOPS"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT SYSMON(COUNT mode, LONG timeout, pTEXT buffer, LONG buflen) { lastCall = "SYSMON"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CLIFIL(pIFIL ifil) { lastCall = "CLIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREIDX(COUNT keyno, pTEXT name, COUNT keylen, COUNT keytyp, COUNT keydup, COUNT nomemb, UCOUNT xtdsiz, COUNT filmod) { lastCall = "CREIDX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREIDXX(COUNT keyno, pTEXT name, COUNT keylen, COUNT keytyp, COUNT keydup, COUNT nomemb, UCOUNT xtdsiz, COUNT filmod, LONG permmask, pTEXT group, pTEXT password) { lastCall = "CREIDXX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREMEM(COUNT keyno, COUNT keylen, COUNT keytyp, COUNT keydup, COUNT membno) { lastCall = "CREMEM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREISAM(pTEXT parmfile) { lastCall = "CREISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREISAMX(pTEXT parmfile, COUNT usrprf, pTEXT userid, pTEXT userword, pTEXT servname, LONG permmask, pTEXT group, pTEXT password) { lastCall = "CREISAMX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELFIL(COUNT filno) { lastCall = "DELFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELIFIL(pIFIL ifil) { lastCall = "DELIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNIFIL(pIFIL ifil) { lastCall = "OPNIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, pTEXT password) { lastCall = "OPNIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PUTIFILX(pIFIL ifil, pTEXT dataext, pTEXT indexext, pTEXT password) { lastCall = "PUTIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GETNAM(COUNT filno, pTEXT buf, LONG len, COUNT mode) { lastCall = "GETNAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GETMNAME(COUNT filno, pTEXT buf, LONG len, COUNT mode) { lastCall = "GETMNAME"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TMPIIDXX(pIFIL ifil, LONG permmask, pTEXT group, pTEXT password) { lastCall = "TMPIIDXX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CTSBLDX(pTEXT superfile, pTEXT tempname) { lastCall = "CTSBLDX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ALCBAT(COUNT numbat) { lastCall = "ALCBAT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CHGBAT(COUNT batno) { lastCall = "CHGBAT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FREBAT(void) { lastCall = "FREBAT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ADDRES(COUNT datno, pVOID resptr, LONG len) { lastCall = "ADDRES"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELRES(COUNT datno, pVOID resptr) { lastCall = "DELRES"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ENARES(COUNT datno) { lastCall = "ENARES"; return (COUNT)(intptr_t)FAKE_RESULT; }
pVOID GETRES(COUNT datno, pVOID resptr, pVOID bufptr, LONG bufsiz, COUNT mode) { lastCall = "GETRES"; return (pVOID)(intptr_t)FAKE_RESULT; }
COUNT UPDRES(COUNT datno, pVOID resptr, LONG len) { lastCall = "UPDRES"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ALCSET(COUNT numset) { lastCall = "ALCSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CHGSET(COUNT setno) { lastCall = "CHGSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT MIDSET(COUNT keyno, pVOID rec, COUNT siglen) { lastCall = "MIDSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRVSET(COUNT keyno, pVOID rec) { lastCall = "PRVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRESET(void) { lastCall = "FRESET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ADDKEY(COUNT keyno, pVOID key, LONG pos, COUNT mode) { lastCall = "ADDKEY"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LOADKEY(COUNT keyno, pVOID key, LONG pos, COUNT mode) { lastCall = "LOADKEY"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG NXTKEY(COUNT keyno, pVOID idxval) { lastCall = "NXTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG LSTKEY(COUNT keyno, pVOID idxval) { lastCall = "LSTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG PRVKEY(COUNT keyno, pVOID idxval) { lastCall = "PRVKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
pTEXT TFRMKEY(COUNT keyno, pVOID key) { lastCall = "TFRMKEY"; return (pTEXT)(intptr_t)FAKE_RESULT; }
COUNT DELCHK(COUNT keyno, pVOID key, LONG pos) { lastCall = "DELCHK"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELBLD(COUNT keyno, pVOID key) { lastCall = "DELBLD"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GTVLEN(COUNT datno, LONG pos) { lastCall = "GTVLEN"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG NEWREC(COUNT datno) { lastCall = "NEWREC"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG NEWVREC(COUNT datno, LONG len) { lastCall = "NEWVREC"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT RDVREC(COUNT datno, LONG pos, pVOID rec, LONG bufsiz) { lastCall = "RDVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RETREC(COUNT datno, LONG pos) { lastCall = "RETREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RETVREC(COUNT datno, LONG pos) { lastCall = "RETVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT WRTREC(COUNT datno, LONG pos, pVOID rec) { lastCall = "WRTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT WRTVREC(COUNT datno, LONG pos, pVOID rec, LONG len) { lastCall = "WRTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GETALTSEQ(COUNT keyno, pCOUNT altseq) { lastCall = "GETALTSEQ"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SETALTSEQ(COUNT keyno, pCOUNT altseq) { lastCall = "SETALTSEQ"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PUTHDR(COUNT filno, LONG value, COUNT mode) { lastCall = "PUTHDR"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SETVARBYTS(COUNT filno, pUTEXT pvbyte) { lastCall = "SETVARBYTS"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SETNODE(pTEXT nodename) { lastCall = "SETNODE"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CHGHST(COUNT histno) { lastCall = "CHGHST"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FREHST(void) { lastCall = "FREHST"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CTHIST(COUNT filno, pTEXT target, pTEXT bufptr, LONG recbyt, LONG bufsiz, UCOUNT mode) { lastCall = "CTHIST"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRSVSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen, pLONG plen) { lastCall = "FRSVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LSTVSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen, pLONG plen) { lastCall = "LSTVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT NXTVSET(COUNT keyno, pVOID rec, pLONG plen) { lastCall = "NXTVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRVVSET(COUNT keyno, pVOID rec, pLONG plen) { lastCall = "PRVVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT MIDVSET(COUNT keyno, pVOID rec, COUNT siglen, pLONG plen) { lastCall = "MIDVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRSVREC(COUNT filno, pVOID rec, pLONG plen) { lastCall = "FRSVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GTEVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) { lastCall = "GTEVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GTVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) { lastCall = "GTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LTEVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) { lastCall = "LTEVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LTVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) { lastCall = "LTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT EQLVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) { lastCall = "EQLVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LSTVREC(COUNT filno, pVOID rec, pLONG plen) { lastCall = "LSTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT NXTVREC(COUNT filno, pVOID rec, pLONG plen) { lastCall = "NXTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRVVREC(COUNT filno, pVOID rec, pLONG plen) { lastCall = "PRVVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETCIDX(COUNT keyno, LONG len, pVOID buf) { lastCall = "GETCIDX"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT UPDCIDX(COUNT keyno, pTEXT expr) { lastCall = "UPDCIDX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SYSCFG(pVOID buf) { lastCall = "SYSCFG"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT IOPERFORMANCEX(pVOID buf) { lastCall = "IOPERFORMANCEX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT REDIVREC(COUNT datno, LONG pos, pVOID rec, pLONG plen) { lastCall = "REDIVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ctRENFIL(COUNT filno, pTEXT newname) { lastCall = "ctRENFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
#ifndef FAKE_WITHOUT_SETLOGPATH
COUNT SETLOGPATH(pTEXT path, LONG mode) { lastCall = "SETLOGPATH"; return (COUNT)(intptr_t)FAKE_RESULT; }
#endif
COUNT setimap(COUNT imapno, pIFIL ifil, COUNT datno, COUNT mode) { lastCall = "setimap"; return (COUNT)(intptr_t)FAKE_RESULT; }
/* clang-format on */

COUNT GetCtreeError(pCOUNT isamerr, pCOUNT usererr, pCOUNT sysiocod) {
  lastCall = "GetCtreeError";
  *isamerr = errorValues[0];
  *usererr = errorValues[1];
  *sysiocod = errorValues[2];
  return errorResult;
}
