// EngineApi: the engine reached the way the package reaches it: dlopen of a variant and one
// function pointer per entry point the tests call, typed from the public header.
#pragma once

#include <dlfcn.h>

#include <string>

#include "ctisam.h"

// The entry points the tests call, by family (the exports test checks the full list).
#define CT_ENTRY_POINTS(X) \
  /* session and settings */ \
  X(TMPNAME) X(INTISAM) X(INTISAMX) X(OPNISAM) X(CLISAM) X(CREISAM) X(CREISAMX) X(STPSRV) \
  X(SETNODE) X(SETLOGPATH) X(SYSMON) X(SETOPS) X(SECURITY) X(IOPERFORMANCE) X(IOPERFORMANCEX) \
  X(GetCtreeError) \
  /* files, definitions and resources */ \
  X(OPNRFIL) X(OPNRFILX) X(CLRFIL) X(DELRFIL) X(CREIFIL) X(CREIFILX) X(GETIFIL) X(PUTIFIL) \
  X(CLIFIL) X(PRMIIDX) X(TMPIIDXX) X(CMPIFIL) X(CMPIFILX) X(RBLIFIL) X(RBLIFILX) X(OPNFIL) X(OPNFILX) \
  X(OPNIFIL) X(OPNIFILX) X(CREDAT) X(CREIDX) X(CREMEM) \
  X(CLSFIL) X(DELFIL) X(AVLFILNUM) X(GETFIL) X(GETNAM) X(GETMNAME) X(ctRENFIL) X(PUTHDR) \
  X(setimap) X(GETDODA) X(PUTDODA) X(ADDRES) X(DELRES) X(ENARES) X(GETRES) X(UPDRES) X(GETALTSEQ) \
  X(SETALTSEQ) X(SETVARBYTS) X(GETCIDX) X(UPDCIDX) \
  /* records */ \
  X(ADDREC) X(ADDVREC) X(RWTREC) X(DELREC) X(REDVREC) X(RRDREC) X(GETVLEN) X(GTVLEN) X(SETCURI) \
  X(GETCURP) X(UPDCURI) X(DATENT) X(REDREC) X(NEWREC) X(RETREC) X(WRTREC) X(SERIALNUM) X(EQLREC) \
  X(GTEREC) X(GTREC) X(LTEREC) X(LTREC) X(FRSREC) X(NXTREC) X(PRVREC) X(LSTREC) X(FRSVREC) \
  X(LSTVREC) \
  /* keys */ \
  X(frmkey) X(TFRMKEY) X(IDXENT) X(GETCURK) X(GETCURKL) X(EQLKEY) X(GTEKEY) X(GTKEY) X(LTEKEY) \
  X(LTKEY) X(FRSKEY) X(NXTKEY) X(LSTKEY) X(FRCKEY) X(ESTKEY) X(RNGENT) X(ORDKEY) X(ADDKEY) \
  X(DELCHK) X(DELBLD) \
  /* sets and batches */ \
  X(FRSSET) X(NXTSET) X(LSTSET) X(PRVSET) X(MIDSET) X(ALCSET) X(CHGSET) X(FRESET) X(FRSVSET) \
  X(LSTVSET) X(NXTVSET) X(PRVVSET) X(MIDVSET) X(BATSET) X(ALCBAT) X(CHGBAT) X(FREBAT) \
  /* locks, transactions, contexts and history */ \
  X(LKISAM) X(LOKREC) X(TRANBEG) X(TRANABT) X(TRANEND) X(TRANSAV) X(TRANRST) X(OPNICON) \
  X(CLSICON) X(CHGICON) X(CHGHST) X(FREHST) X(CTHIST) \

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
