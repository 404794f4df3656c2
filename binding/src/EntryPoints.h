// The binding layer's table of entry points: one slot per bound name, shared by all variants.
#pragma once

#include <cstdint>
#include <span>

#include "ctisam.h"

namespace CTDbIntf {

/// One function pointer per entry point, typed by the engine header's prototype, plus the
/// address of the exported error variable and the Perform slot that is never bound. Filled by
/// the variant loaded last; null until a variant binds it.
struct TEntryPoints {
  decltype(&::TMPNAME) TMPNAME = nullptr;
  decltype(&::INTISAM) INTISAM = nullptr;
  decltype(&::OPNISAM) OPNISAM = nullptr;
  decltype(&::CLISAM) CLISAM = nullptr;
  decltype(&::OPNRFIL) OPNRFIL = nullptr;
  decltype(&::CLRFIL) CLRFIL = nullptr;
  decltype(&::DELRFIL) DELRFIL = nullptr;
  decltype(&::CREIFIL) CREIFIL = nullptr;
  decltype(&::SETCURI) SETCURI = nullptr;
  decltype(&::GETCURP) GETCURP = nullptr;
  decltype(&::UPDCURI) UPDCURI = nullptr;
  decltype(&::ADDREC) ADDREC = nullptr;
  decltype(&::ADDVREC) ADDVREC = nullptr;
  decltype(&::RWTREC) RWTREC = nullptr;
  decltype(&::RWTVREC) RWTVREC = nullptr;
  decltype(&::DELREC) DELREC = nullptr;
  decltype(&::DELVREC) DELVREC = nullptr;
  decltype(&::REDIREC) REDIREC = nullptr;
  decltype(&::REDVREC) REDVREC = nullptr;
  decltype(&::RRDREC) RRDREC = nullptr;
  decltype(&::GETIFIL) GETIFIL = nullptr;
  decltype(&::PUTIFIL) PUTIFIL = nullptr;
  decltype(&::FRSSET) FRSSET = nullptr;
  decltype(&::NXTSET) NXTSET = nullptr;
  decltype(&::LSTSET) LSTSET = nullptr;
  decltype(&::LKISAM) LKISAM = nullptr;
  decltype(&::GETVLEN) GETVLEN = nullptr;
  decltype(&::CLSICON) CLSICON = nullptr;
  decltype(&::OPNICON) OPNICON = nullptr;
  decltype(&::CHGICON) CHGICON = nullptr;
  decltype(&::PRMIIDX) PRMIIDX = nullptr;
  decltype(&::BATSET) BATSET = nullptr;
  decltype(&::CMPIFIL) CMPIFIL = nullptr;
  decltype(&::RBLIFIL) RBLIFIL = nullptr;
  decltype(&::GETCURK) GETCURK = nullptr;
  decltype(&::EQLREC) EQLREC = nullptr;
  decltype(&::GTEREC) GTEREC = nullptr;
  decltype(&::GTREC) GTREC = nullptr;
  decltype(&::LTEREC) LTEREC = nullptr;
  decltype(&::LTREC) LTREC = nullptr;
  decltype(&::FRSREC) FRSREC = nullptr;
  decltype(&::NXTREC) NXTREC = nullptr;
  decltype(&::PRVREC) PRVREC = nullptr;
  decltype(&::LSTREC) LSTREC = nullptr;
  decltype(&::OPNFIL) OPNFIL = nullptr;
  decltype(&::CREDAT) CREDAT = nullptr;
  decltype(&::AVLFILNUM) AVLFILNUM = nullptr;
  decltype(&::PUTFIL) PUTFIL = nullptr;
  decltype(&::GETDODA) GETDODA = nullptr;
  decltype(&::PUTDODA) PUTDODA = nullptr;
  decltype(&::DATENT) DATENT = nullptr;
  decltype(&::IDXENT) IDXENT = nullptr;
  decltype(&::GETCURKL) GETCURKL = nullptr;
  decltype(&::CLSFIL) CLSFIL = nullptr;
  decltype(&::LOKREC) LOKREC = nullptr;
  decltype(&::frmkey) frmkey = nullptr;
  decltype(&::ViewCtreeError) ViewCtreeError = nullptr;
  decltype(&::GETFIL) GETFIL = nullptr;
  decltype(&::REDREC) REDREC = nullptr;
  decltype(&::EQLKEY) EQLKEY = nullptr;
  decltype(&::GTEKEY) GTEKEY = nullptr;
  decltype(&::GTKEY) GTKEY = nullptr;
  decltype(&::LTEKEY) LTEKEY = nullptr;
  decltype(&::LTKEY) LTKEY = nullptr;
  decltype(&::FRSKEY) FRSKEY = nullptr;
  decltype(&::FRCKEY) FRCKEY = nullptr;
  decltype(&::ESTKEY) ESTKEY = nullptr;
  decltype(&::RNGENT) RNGENT = nullptr;
  decltype(&::ORDKEY) ORDKEY = nullptr;
  decltype(&::SERIALNUM) SERIALNUM = nullptr;
  decltype(&::IOPERFORMANCE) IOPERFORMANCE = nullptr;
  decltype(&::TRANBEG) TRANBEG = nullptr;
  decltype(&::TRANABT) TRANABT = nullptr;
  decltype(&::TRANABTX) TRANABTX = nullptr;
  decltype(&::TRANEND) TRANEND = nullptr;
  decltype(&::TRANCLR) TRANCLR = nullptr;
  decltype(&::TRANSAV) TRANSAV = nullptr;
  decltype(&::TRANRST) TRANRST = nullptr;
  decltype(&::CMPIFILX) CMPIFILX = nullptr;
  decltype(&::CREDATX) CREDATX = nullptr;
  decltype(&::OPNFILX) OPNFILX = nullptr;
  decltype(&::RBLIFILX) RBLIFILX = nullptr;
  decltype(&::OPNRFILX) OPNRFILX = nullptr;
  decltype(&::INTISAMX) INTISAMX = nullptr;
  decltype(&::CREIFILX) CREIFILX = nullptr;
  decltype(&::INTREE) INTREE = nullptr;
  decltype(&::INTREEX) INTREEX = nullptr;
  decltype(&::STPSRV) STPSRV = nullptr;
  decltype(&::STPUSR) STPUSR = nullptr;
  decltype(&::SECURITY) SECURITY = nullptr;
  decltype(&::SETOPS) SETOPS = nullptr;
  decltype(&::SYSMON) SYSMON = nullptr;
  std::int16_t (*Perform)(std::int16_t) = nullptr;  // never bound: stays null
  decltype(&::CLIFIL) CLIFIL = nullptr;
  decltype(&::CREIDX) CREIDX = nullptr;
  decltype(&::CREIDXX) CREIDXX = nullptr;
  decltype(&::CREMEM) CREMEM = nullptr;
  decltype(&::CREISAM) CREISAM = nullptr;
  decltype(&::CREISAMX) CREISAMX = nullptr;
  decltype(&::DELFIL) DELFIL = nullptr;
  decltype(&::DELIFIL) DELIFIL = nullptr;
  decltype(&::OPNIFIL) OPNIFIL = nullptr;
  decltype(&::OPNIFILX) OPNIFILX = nullptr;
  decltype(&::PUTIFILX) PUTIFILX = nullptr;
  decltype(&::GETNAM) GETNAM = nullptr;
  decltype(&::GETMNAME) GETMNAME = nullptr;
  decltype(&::TMPIIDXX) TMPIIDXX = nullptr;
  decltype(&::CTSBLDX) CTSBLDX = nullptr;
  decltype(&::ALCBAT) ALCBAT = nullptr;
  decltype(&::CHGBAT) CHGBAT = nullptr;
  decltype(&::FREBAT) FREBAT = nullptr;
  decltype(&::ADDRES) ADDRES = nullptr;
  decltype(&::DELRES) DELRES = nullptr;
  decltype(&::ENARES) ENARES = nullptr;
  decltype(&::GETRES) GETRES = nullptr;
  decltype(&::UPDRES) UPDRES = nullptr;
  decltype(&::ALCSET) ALCSET = nullptr;
  decltype(&::CHGSET) CHGSET = nullptr;
  decltype(&::MIDSET) MIDSET = nullptr;
  decltype(&::PRVSET) PRVSET = nullptr;
  decltype(&::FRESET) FRESET = nullptr;
  decltype(&::ADDKEY) ADDKEY = nullptr;
  decltype(&::LOADKEY) LOADKEY = nullptr;
  decltype(&::NXTKEY) NXTKEY = nullptr;
  decltype(&::LSTKEY) LSTKEY = nullptr;
  decltype(&::PRVKEY) PRVKEY = nullptr;
  decltype(&::TFRMKEY) TFRMKEY = nullptr;
  decltype(&::DELCHK) DELCHK = nullptr;
  decltype(&::DELBLD) DELBLD = nullptr;
  decltype(&::GTVLEN) GTVLEN = nullptr;
  decltype(&::NEWREC) NEWREC = nullptr;
  decltype(&::NEWVREC) NEWVREC = nullptr;
  decltype(&::RDVREC) RDVREC = nullptr;
  decltype(&::RETREC) RETREC = nullptr;
  decltype(&::RETVREC) RETVREC = nullptr;
  decltype(&::WRTREC) WRTREC = nullptr;
  decltype(&::WRTVREC) WRTVREC = nullptr;
  decltype(&::GETALTSEQ) GETALTSEQ = nullptr;
  decltype(&::SETALTSEQ) SETALTSEQ = nullptr;
  decltype(&::PUTHDR) PUTHDR = nullptr;
  decltype(&::SETVARBYTS) SETVARBYTS = nullptr;
  decltype(&::SETNODE) SETNODE = nullptr;
  decltype(&::CHGHST) CHGHST = nullptr;
  decltype(&::FREHST) FREHST = nullptr;
  decltype(&::CTHIST) CTHIST = nullptr;
  decltype(&::FRSVSET) FRSVSET = nullptr;
  decltype(&::LSTVSET) LSTVSET = nullptr;
  decltype(&::NXTVSET) NXTVSET = nullptr;
  decltype(&::PRVVSET) PRVVSET = nullptr;
  decltype(&::MIDVSET) MIDVSET = nullptr;
  decltype(&::FRSVREC) FRSVREC = nullptr;
  decltype(&::GTEVREC) GTEVREC = nullptr;
  decltype(&::GTVREC) GTVREC = nullptr;
  decltype(&::LTEVREC) LTEVREC = nullptr;
  decltype(&::LTVREC) LTVREC = nullptr;
  decltype(&::EQLVREC) EQLVREC = nullptr;
  decltype(&::LSTVREC) LSTVREC = nullptr;
  decltype(&::NXTVREC) NXTVREC = nullptr;
  decltype(&::PRVVREC) PRVVREC = nullptr;
  decltype(&::GETCIDX) GETCIDX = nullptr;
  decltype(&::UPDCIDX) UPDCIDX = nullptr;
  decltype(&::SYSCFG) SYSCFG = nullptr;
  decltype(&::IOPERFORMANCEX) IOPERFORMANCEX = nullptr;
  decltype(&::REDIVREC) REDIVREC = nullptr;
  decltype(&::ctRENFIL) ctRENFIL = nullptr;
  decltype(&::SETLOGPATH) SETLOGPATH = nullptr;
  decltype(&::setimap) setimap = nullptr;
  decltype(&::GetCtreeError) GetCtreeError = nullptr;
  decltype(&::ierr) ierr = nullptr;  // bound like the functions; nothing reads it
};

/// The one shared table all wrappers call through.
extern TEntryPoints EntryPoints;

/// One lookup of the binding: the exported name and how its address is stored in the table.
struct TBinding {
  const char* Name;
  void (*Store)(void* address);
};

/// The lookups in binding order: 169 of them, 168 distinct names ("DELRFIL" twice, into one
/// slot). The Perform slot has no lookup.
std::span<const TBinding> BindingOrder();

}  // namespace CTDbIntf
