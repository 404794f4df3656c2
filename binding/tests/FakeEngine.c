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
pTEXT TMPNAME(pVOID a0, LONG a1) { lastCall = "TMPNAME"; return (pTEXT)(intptr_t)FAKE_RESULT; }
COUNT INTISAM(COUNT a0, COUNT a1, COUNT a2) { lastCall = "INTISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNISAM(pTEXT a0) { lastCall = "OPNISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CLISAM(void) { lastCall = "CLISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNRFIL(COUNT a0, pTEXT a1, COUNT a2) { lastCall = "OPNRFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CLRFIL(COUNT a0) { lastCall = "CLRFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELRFIL(COUNT a0) { lastCall = "DELRFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREIFIL(pIFIL a0) { lastCall = "CREIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SETCURI(COUNT a0, LONG a1, pVOID a2, LONG a3) { lastCall = "SETCURI"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETCURP(COUNT a0) { lastCall = "GETCURP"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT UPDCURI(COUNT a0, COUNT a1) { lastCall = "UPDCURI"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ADDREC(COUNT a0, pVOID a1) { lastCall = "ADDREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ADDVREC(COUNT a0, pVOID a1, LONG a2) { lastCall = "ADDVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RWTREC(COUNT a0, pVOID a1) { lastCall = "RWTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RWTVREC(COUNT a0, pVOID a1, LONG a2) { lastCall = "RWTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELREC(COUNT a0) { lastCall = "DELREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELVREC(COUNT a0) { lastCall = "DELVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT REDIREC(COUNT a0, LONG a1, pVOID a2) { lastCall = "REDIREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT REDVREC(COUNT a0, pVOID a1, LONG a2) { lastCall = "REDVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RRDREC(COUNT a0, pVOID a1) { lastCall = "RRDREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETIFIL(COUNT a0, LONG a1, pVOID a2) { lastCall = "GETIFIL"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT PUTIFIL(pIFIL a0) { lastCall = "PUTIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRSSET(COUNT a0, pVOID a1, pVOID a2, COUNT a3) { lastCall = "FRSSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT NXTSET(COUNT a0, pVOID a1) { lastCall = "NXTSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LSTSET(COUNT a0, pVOID a1, pVOID a2, COUNT a3) { lastCall = "LSTSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LKISAM(COUNT a0) { lastCall = "LKISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETVLEN(COUNT a0) { lastCall = "GETVLEN"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT CLSICON(COUNT a0) { lastCall = "CLSICON"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNICON(COUNT a0, COUNT a1, COUNT a2) { lastCall = "OPNICON"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CHGICON(COUNT a0) { lastCall = "CHGICON"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRMIIDX(pIFIL a0) { lastCall = "PRMIIDX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT BATSET(COUNT a0, pVOID a1, pVOID a2, LONG a3, COUNT a4) { lastCall = "BATSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CMPIFIL(pIFIL a0) { lastCall = "CMPIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RBLIFIL(pIFIL a0) { lastCall = "RBLIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GETCURK(COUNT a0, pVOID a1, LONG* a2) { lastCall = "GETCURK"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT EQLREC(COUNT a0, pVOID a1, pVOID a2) { lastCall = "EQLREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GTEREC(COUNT a0, pVOID a1, pVOID a2) { lastCall = "GTEREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GTREC(COUNT a0, pVOID a1, pVOID a2) { lastCall = "GTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LTEREC(COUNT a0, pVOID a1, pVOID a2) { lastCall = "LTEREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LTREC(COUNT a0, pVOID a1, pVOID a2) { lastCall = "LTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRSREC(COUNT a0, pVOID a1) { lastCall = "FRSREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT NXTREC(COUNT a0, pVOID a1) { lastCall = "NXTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRVREC(COUNT a0, pVOID a1) { lastCall = "PRVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LSTREC(COUNT a0, pVOID a1) { lastCall = "LSTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNFIL(COUNT a0, pTEXT a1, COUNT a2) { lastCall = "OPNFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREDAT(COUNT a0, pTEXT a1, UCOUNT a2, UCOUNT a3, COUNT a4) { lastCall = "CREDAT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT AVLFILNUM(COUNT a0) { lastCall = "AVLFILNUM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PUTFIL(COUNT a0, COUNT a1) { lastCall = "PUTFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETDODA(COUNT a0, LONG a1, pVOID a2, COUNT a3) { lastCall = "GETDODA"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT PUTDODA(COUNT a0, pDATOBJ a1, UCOUNT a2) { lastCall = "PUTDODA"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG DATENT(COUNT a0) { lastCall = "DATENT"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG IDXENT(COUNT a0) { lastCall = "IDXENT"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT GETCURKL(COUNT a0, pVOID a1) { lastCall = "GETCURKL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CLSFIL(COUNT a0, COUNT a1) { lastCall = "CLSFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LOKREC(COUNT a0, COUNT a1, LONG a2) { lastCall = "LOKREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG frmkey(COUNT a0, pTEXT a1, pTEXT a2, LONG a3, LONG a4) { lastCall = "frmkey"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT ViewCtreeError(ULONG a0) { lastCall = "ViewCtreeError"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETFIL(COUNT a0, COUNT a1) { lastCall = "GETFIL"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT REDREC(COUNT a0, LONG a1, pVOID a2) { lastCall = "REDREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG EQLKEY(COUNT a0, pVOID a1) { lastCall = "EQLKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG GTEKEY(COUNT a0, pVOID a1, pVOID a2) { lastCall = "GTEKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG GTKEY(COUNT a0, pVOID a1, pVOID a2) { lastCall = "GTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG LTEKEY(COUNT a0, pVOID a1, pVOID a2) { lastCall = "LTEKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG LTKEY(COUNT a0, pVOID a1, pVOID a2) { lastCall = "LTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG FRSKEY(COUNT a0, pVOID a1) { lastCall = "FRSKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG FRCKEY(COUNT a0, pVOID a1, COUNT a2) { lastCall = "FRCKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG ESTKEY(COUNT a0, pVOID a1, pVOID a2) { lastCall = "ESTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG RNGENT(COUNT a0, pVOID a1, pVOID a2) { lastCall = "RNGENT"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG ORDKEY(COUNT a0, pVOID a1, LONG a2, pVOID a3) { lastCall = "ORDKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG SERIALNUM(COUNT a0) { lastCall = "SERIALNUM"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT IOPERFORMANCE(pVOID a0) { lastCall = "IOPERFORMANCE"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANBEG(COUNT a0) { lastCall = "TRANBEG"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANABT(void) { lastCall = "TRANABT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANABTX(COUNT a0) { lastCall = "TRANABTX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANEND(COUNT a0) { lastCall = "TRANEND"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANCLR(void) { lastCall = "TRANCLR"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANSAV(void) { lastCall = "TRANSAV"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TRANRST(COUNT a0) { lastCall = "TRANRST"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CMPIFILX(pIFIL a0, pTEXT a1, pTEXT a2, LONG a3, pTEXT a4, pTEXT a5) { lastCall = "CMPIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREDATX(COUNT a0, pTEXT a1, UCOUNT a2, UCOUNT a3, COUNT a4, LONG a5, pTEXT a6, pTEXT a7) { lastCall = "CREDATX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNFILX(COUNT a0, pTEXT a1, COUNT a2, pTEXT a3) { lastCall = "OPNFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RBLIFILX(pIFIL a0, pTEXT a1, pTEXT a2, LONG a3, pTEXT a4, pTEXT a5) { lastCall = "RBLIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNRFILX(COUNT a0, pTEXT a1, COUNT a2, pTEXT a3) { lastCall = "OPNRFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT INTISAMX(COUNT a0, COUNT a1, COUNT a2, COUNT a3, COUNT a4, pTEXT a5, pTEXT a6, pTEXT a7) { lastCall = "INTISAMX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREIFILX(pIFIL a0, pTEXT a1, pTEXT a2, LONG a3, pTEXT a4, pTEXT a5) { lastCall = "CREIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT INTREE(COUNT a0, COUNT a1, COUNT a2) { lastCall = "INTREE"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT INTREEX(COUNT a0, COUNT a1, COUNT a2, COUNT a3, COUNT a4, pTEXT a5, pTEXT a6, pTEXT a7) { lastCall = "INTREEX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT STPSRV(pTEXT a0, pTEXT a1, COUNT a2) { lastCall = "STPSRV"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT STPUSR(void) { lastCall = "STPUSR"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SECURITY(COUNT a0, pVOID a1, LONG a2, COUNT a3) { lastCall = "SECURITY"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SETOPS(LONG a0, LONG a1) { lastCall = "SETOPS"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SYSMON(COUNT a0, LONG a1, pTEXT a2, LONG a3) { lastCall = "SYSMON"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CLIFIL(pIFIL a0) { lastCall = "CLIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREIDX(COUNT a0, pTEXT a1, COUNT a2, COUNT a3, COUNT a4, COUNT a5, UCOUNT a6, COUNT a7) { lastCall = "CREIDX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREIDXX(COUNT a0, pTEXT a1, COUNT a2, COUNT a3, COUNT a4, COUNT a5, UCOUNT a6, COUNT a7, LONG a8, pTEXT a9, pTEXT a10) { lastCall = "CREIDXX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREMEM(COUNT a0, COUNT a1, COUNT a2, COUNT a3, COUNT a4) { lastCall = "CREMEM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREISAM(pTEXT a0) { lastCall = "CREISAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CREISAMX(pTEXT a0, COUNT a1, pTEXT a2, pTEXT a3, pTEXT a4, LONG a5, pTEXT a6, pTEXT a7) { lastCall = "CREISAMX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELFIL(COUNT a0) { lastCall = "DELFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELIFIL(pIFIL a0) { lastCall = "DELIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNIFIL(pIFIL a0) { lastCall = "OPNIFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT OPNIFILX(pIFIL a0, pTEXT a1, pTEXT a2, pTEXT a3) { lastCall = "OPNIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PUTIFILX(pIFIL a0, pTEXT a1, pTEXT a2, pTEXT a3) { lastCall = "PUTIFILX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GETNAM(COUNT a0, pTEXT a1, LONG a2, COUNT a3) { lastCall = "GETNAM"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GETMNAME(COUNT a0, pTEXT a1, LONG a2, COUNT a3) { lastCall = "GETMNAME"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT TMPIIDXX(pIFIL a0, LONG a1, pTEXT a2, pTEXT a3) { lastCall = "TMPIIDXX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CTSBLDX(pTEXT a0, pTEXT a1) { lastCall = "CTSBLDX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ALCBAT(COUNT a0) { lastCall = "ALCBAT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CHGBAT(COUNT a0) { lastCall = "CHGBAT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FREBAT(void) { lastCall = "FREBAT"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ADDRES(COUNT a0, pVOID a1, LONG a2) { lastCall = "ADDRES"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELRES(COUNT a0, pVOID a1) { lastCall = "DELRES"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ENARES(COUNT a0) { lastCall = "ENARES"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GETRES(COUNT a0, pVOID a1, pVOID a2, LONG a3, COUNT a4) { lastCall = "GETRES"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT UPDRES(COUNT a0, pVOID a1, LONG a2) { lastCall = "UPDRES"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ALCSET(COUNT a0) { lastCall = "ALCSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CHGSET(COUNT a0) { lastCall = "CHGSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT MIDSET(COUNT a0, pVOID a1, COUNT a2) { lastCall = "MIDSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRVSET(COUNT a0, pVOID a1) { lastCall = "PRVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRESET(void) { lastCall = "FRESET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ADDKEY(COUNT a0, pVOID a1, LONG a2, COUNT a3) { lastCall = "ADDKEY"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LOADKEY(COUNT a0, pVOID a1, LONG a2, COUNT a3) { lastCall = "LOADKEY"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG NXTKEY(COUNT a0, pVOID a1) { lastCall = "NXTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG LSTKEY(COUNT a0, pVOID a1) { lastCall = "LSTKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG PRVKEY(COUNT a0, pVOID a1) { lastCall = "PRVKEY"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT TFRMKEY(COUNT a0, pVOID a1) { lastCall = "TFRMKEY"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELCHK(COUNT a0, pVOID a1, LONG a2) { lastCall = "DELCHK"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT DELBLD(COUNT a0, pVOID a1) { lastCall = "DELBLD"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GTVLEN(COUNT a0, LONG a1) { lastCall = "GTVLEN"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG NEWREC(COUNT a0) { lastCall = "NEWREC"; return (LONG)(intptr_t)FAKE_RESULT; }
LONG NEWVREC(COUNT a0, LONG a1) { lastCall = "NEWVREC"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT RDVREC(COUNT a0, LONG a1, pVOID a2, LONG a3) { lastCall = "RDVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RETREC(COUNT a0, LONG a1) { lastCall = "RETREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT RETVREC(COUNT a0, LONG a1) { lastCall = "RETVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT WRTREC(COUNT a0, LONG a1, pVOID a2) { lastCall = "WRTREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT WRTVREC(COUNT a0, LONG a1, pVOID a2, LONG a3) { lastCall = "WRTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GETALTSEQ(COUNT a0, COUNT* a1) { lastCall = "GETALTSEQ"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SETALTSEQ(COUNT a0, COUNT* a1) { lastCall = "SETALTSEQ"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PUTHDR(COUNT a0, LONG a1, COUNT a2) { lastCall = "PUTHDR"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SETVARBYTS(COUNT a0, pUTEXT a1) { lastCall = "SETVARBYTS"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SETNODE(pTEXT a0) { lastCall = "SETNODE"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CHGHST(COUNT a0) { lastCall = "CHGHST"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FREHST(void) { lastCall = "FREHST"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT CTHIST(COUNT a0, pTEXT a1, pTEXT a2, LONG a3, LONG a4, UCOUNT a5) { lastCall = "CTHIST"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRSVSET(COUNT a0, pVOID a1, pVOID a2, COUNT a3, LONG* a4) { lastCall = "FRSVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LSTVSET(COUNT a0, pVOID a1, pVOID a2, COUNT a3, LONG* a4) { lastCall = "LSTVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT NXTVSET(COUNT a0, pVOID a1, LONG* a2) { lastCall = "NXTVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRVVSET(COUNT a0, pVOID a1, LONG* a2) { lastCall = "PRVVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT MIDVSET(COUNT a0, pVOID a1, COUNT a2, LONG* a3) { lastCall = "MIDVSET"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT FRSVREC(COUNT a0, pVOID a1, LONG* a2) { lastCall = "FRSVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GTEVREC(COUNT a0, pVOID a1, pVOID a2, LONG* a3) { lastCall = "GTEVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT GTVREC(COUNT a0, pVOID a1, pVOID a2, LONG* a3) { lastCall = "GTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LTEVREC(COUNT a0, pVOID a1, pVOID a2, LONG* a3) { lastCall = "LTEVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LTVREC(COUNT a0, pVOID a1, pVOID a2, LONG* a3) { lastCall = "LTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT EQLVREC(COUNT a0, pVOID a1, pVOID a2, LONG* a3) { lastCall = "EQLVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT LSTVREC(COUNT a0, pVOID a1, LONG* a2) { lastCall = "LSTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT NXTVREC(COUNT a0, pVOID a1, LONG* a2) { lastCall = "NXTVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT PRVVREC(COUNT a0, pVOID a1, LONG* a2) { lastCall = "PRVVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
LONG GETCIDX(COUNT a0, LONG a1, pVOID a2) { lastCall = "GETCIDX"; return (LONG)(intptr_t)FAKE_RESULT; }
COUNT UPDCIDX(COUNT a0, pTEXT a1) { lastCall = "UPDCIDX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT SYSCFG(pVOID a0) { lastCall = "SYSCFG"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT IOPERFORMANCEX(pVOID a0) { lastCall = "IOPERFORMANCEX"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT REDIVREC(COUNT a0, LONG a1, pVOID a2, LONG* a3) { lastCall = "REDIVREC"; return (COUNT)(intptr_t)FAKE_RESULT; }
COUNT ctRENFIL(COUNT a0, pTEXT a1) { lastCall = "ctRENFIL"; return (COUNT)(intptr_t)FAKE_RESULT; }
#ifndef FAKE_WITHOUT_SETLOGPATH
COUNT SETLOGPATH(pTEXT a0, LONG a1) { lastCall = "SETLOGPATH"; return (COUNT)(intptr_t)FAKE_RESULT; }
#endif
COUNT setimap(COUNT a0, pIFIL a1, COUNT a2, COUNT a3) { lastCall = "setimap"; return (COUNT)(intptr_t)FAKE_RESULT; }
/* clang-format on */

COUNT GetCtreeError(COUNT* isam_err, COUNT* uerr_cod, COUNT* sysiocod) {
  lastCall = "GetCtreeError";
  *isam_err = errorValues[0];
  *uerr_cod = errorValues[1];
  *sysiocod = errorValues[2];
  return errorResult;
}
