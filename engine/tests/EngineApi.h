// EngineApi: the engine reached the way the package reaches it: dlopen of a variant and one
// function pointer per entry point, typed from the public header.
#pragma once

#include <dlfcn.h>

#include <string>

#include "ctisam.h"

#define CT_ENTRY_POINTS(X) \
  X(TMPNAME) \
  X(INTISAM) \
  X(OPNISAM) \
  X(CLISAM) \
  X(OPNRFIL) \
  X(CLRFIL) \
  X(DELRFIL) \
  X(CREIFIL) \
  X(SETCURI) \
  X(GETCURP) \
  X(UPDCURI) \
  X(ADDREC) \
  X(ADDVREC) \
  X(RWTREC) \
  X(RWTVREC) \
  X(DELREC) \
  X(DELVREC) \
  X(REDIREC) \
  X(REDVREC) \
  X(RRDREC) \
  X(GETIFIL) \
  X(PUTIFIL) \
  X(FRSSET) \
  X(NXTSET) \
  X(LSTSET) \
  X(LKISAM) \
  X(GETVLEN) \
  X(CLSICON) \
  X(OPNICON) \
  X(CHGICON) \
  X(PRMIIDX) \
  X(BATSET) \
  X(CMPIFIL) \
  X(RBLIFIL) \
  X(GETCURK) \
  X(EQLREC) \
  X(GTEREC) \
  X(GTREC) \
  X(LTEREC) \
  X(LTREC) \
  X(FRSREC) \
  X(NXTREC) \
  X(PRVREC) \
  X(LSTREC) \
  X(OPNFIL) \
  X(CREDAT) \
  X(AVLFILNUM) \
  X(PUTFIL) \
  X(GETDODA) \
  X(PUTDODA) \
  X(DATENT) \
  X(IDXENT) \
  X(GETCURKL) \
  X(CLSFIL) \
  X(LOKREC) \
  X(frmkey) \
  X(ViewCtreeError) \
  X(GETFIL) \
  X(REDREC) \
  X(EQLKEY) \
  X(GTEKEY) \
  X(GTKEY) \
  X(LTEKEY) \
  X(LTKEY) \
  X(FRSKEY) \
  X(FRCKEY) \
  X(ESTKEY) \
  X(RNGENT) \
  X(ORDKEY) \
  X(SERIALNUM) \
  X(IOPERFORMANCE) \
  X(TRANBEG) \
  X(TRANABT) \
  X(TRANABTX) \
  X(TRANEND) \
  X(TRANCLR) \
  X(TRANSAV) \
  X(TRANRST) \
  X(CMPIFILX) \
  X(CREDATX) \
  X(OPNFILX) \
  X(RBLIFILX) \
  X(OPNRFILX) \
  X(INTISAMX) \
  X(CREIFILX) \
  X(INTREE) \
  X(INTREEX) \
  X(STPSRV) \
  X(STPUSR) \
  X(SECURITY) \
  X(SETOPS) \
  X(SYSMON) \
  X(CLIFIL) \
  X(CREIDX) \
  X(CREIDXX) \
  X(CREMEM) \
  X(CREISAM) \
  X(CREISAMX) \
  X(DELFIL) \
  X(DELIFIL) \
  X(OPNIFIL) \
  X(OPNIFILX) \
  X(PUTIFILX) \
  X(GETNAM) \
  X(GETMNAME) \
  X(TMPIIDXX) \
  X(CTSBLDX) \
  X(ALCBAT) \
  X(CHGBAT) \
  X(FREBAT) \
  X(ADDRES) \
  X(DELRES) \
  X(ENARES) \
  X(GETRES) \
  X(UPDRES) \
  X(ALCSET) \
  X(CHGSET) \
  X(MIDSET) \
  X(PRVSET) \
  X(FRESET) \
  X(ADDKEY) \
  X(LOADKEY) \
  X(NXTKEY) \
  X(LSTKEY) \
  X(PRVKEY) \
  X(TFRMKEY) \
  X(DELCHK) \
  X(DELBLD) \
  X(GTVLEN) \
  X(NEWREC) \
  X(NEWVREC) \
  X(RDVREC) \
  X(RETREC) \
  X(RETVREC) \
  X(WRTREC) \
  X(WRTVREC) \
  X(GETALTSEQ) \
  X(SETALTSEQ) \
  X(PUTHDR) \
  X(SETVARBYTS) \
  X(SETNODE) \
  X(CHGHST) \
  X(FREHST) \
  X(CTHIST) \
  X(FRSVSET) \
  X(LSTVSET) \
  X(NXTVSET) \
  X(PRVVSET) \
  X(MIDVSET) \
  X(FRSVREC) \
  X(GTEVREC) \
  X(GTVREC) \
  X(LTEVREC) \
  X(LTVREC) \
  X(EQLVREC) \
  X(LSTVREC) \
  X(NXTVREC) \
  X(PRVVREC) \
  X(GETCIDX) \
  X(UPDCIDX) \
  X(SYSCFG) \
  X(IOPERFORMANCEX) \
  X(REDIVREC) \
  X(ctRENFIL) \
  X(SETLOGPATH) \
  X(GetCtreeError) \
  X(setimap) \

struct EngineApi {
#define CT_DECLARE(n) decltype(&::n) n = nullptr;
  CT_ENTRY_POINTS(CT_DECLARE)
#undef CT_DECLARE
  COUNT* ierr = nullptr;
  void* handle = nullptr;

  // Loads the variant file (e.g. "libctstd32b.so") from the build's library folder; false
  // when it or any name is missing.
  bool Load(const char* file) {
    handle = dlopen((std::string(CT_LIBRARY_DIR) + "/" + file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) return false;
    bool ok = true;
#define CT_BIND(n) ok = ok && (n = reinterpret_cast<decltype(n)>(dlsym(handle, #n))) != nullptr;
    CT_ENTRY_POINTS(CT_BIND)
#undef CT_BIND
    ierr = static_cast<COUNT*>(dlsym(handle, "ierr"));
    return ok && ierr;
  }
  ~EngineApi() {
    if (handle) dlclose(handle);
  }
};
