// exports: the C entry points that do not read definition records; each is a noexcept shim
// that validates its arguments and forwards to the session.
#include <cstdio>
#include <cstring>

#include "Shim.h"

using namespace cte;

namespace {

uint32_t Pos(LONG pos) {
  if (pos <= 0) Throw(CT_EBADARG);
  return static_cast<uint32_t>(pos);
}

void Need(const void* p) {
  if (!p) Throw(CT_EBADARG);
}

COUNT Init(COUNT fils, pTEXT servname) {
  return Run([&](Session& s) { s.Init(fils, servname); }, false);
}

COUNT NavRec(COUNT filno, NavOp op, pVOID target, pVOID rec) {
  return Run([&](Session& s) {
    Need(rec);
    s.Navigate(filno, op, target, rec, 0, true);
  });
}

COUNT NavVRec(COUNT filno, NavOp op, pVOID target, pVOID rec, pLONG plen) {
  return Run([&](Session& s) {
    Need(rec);
    Need(plen);
    *plen = static_cast<LONG>(s.Navigate(filno, op, target, rec, *plen, false));
  });
}

LONG NavKey(COUNT keyno, NavOp op, pVOID target, pVOID idxval) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.KeyNav(keyno, op, target, idxval)); });
}

}  // namespace

extern "C" {

CTISAM_API COUNT ierr = 0;

/* ---- session ---- */
CTISAM_API COUNT INTISAMX(COUNT, COUNT fils, COUNT, COUNT, COUNT, pTEXT, pTEXT, pTEXT servname) {
  return Init(fils, servname);
}
CTISAM_API COUNT INTISAM(COUNT, COUNT fils, COUNT) { return Init(fils, nullptr); }
CTISAM_API COUNT INTREE(COUNT, COUNT fils, COUNT) { return Init(fils, nullptr); }
CTISAM_API COUNT INTREEX(COUNT, COUNT fils, COUNT, COUNT, COUNT, pTEXT, pTEXT, pTEXT servname) {
  return Init(fils, servname);
}
CTISAM_API COUNT CLISAM(void) { return Run([](Session& s) { s.Close(); }); }
CTISAM_API COUNT STPUSR(void) { return Run([](Session& s) { s.Close(); }); }
CTISAM_API COUNT GetCtreeError(pCOUNT isamerr, pCOUNT usererr, pCOUNT sysiocod) {
  Session& s = TheSession();
  if (isamerr) *isamerr = s.isamErr;
  if (usererr) *usererr = s.userErr;
  if (sysiocod) *sysiocod = s.sysio;
  return 1;
}
CTISAM_API COUNT ViewCtreeError(ULONG code) {
  std::fprintf(stderr, "engine error %u\n", static_cast<unsigned>(code));
  return 0;
}
CTISAM_API COUNT SYSCFG(pVOID buf) {
  return Run([&](Session& s) {
    Need(buf);
    LONG cfg[3] = {s.Fils(), s.OpenCount(), LibraryPack()};
    std::memcpy(buf, cfg, sizeof cfg);
  });
}

/* ---- file numbers and names ---- */
CTISAM_API COUNT AVLFILNUM(COUNT n) {
  COUNT r = -1;
  Run([&](Session& s) { r = static_cast<COUNT>(s.AvlFilNum(n)); });
  return r;
}
CTISAM_API COUNT TMPNAME(pVOID buf, LONG len) {
  return Run([&](Session& s) { s.TmpName(static_cast<char*>(buf), len); }, false);
}
CTISAM_API COUNT GETNAM(COUNT filno, pTEXT buf, LONG len, COUNT) {
  return Run([&](Session& s) { s.GetNam(filno, buf, len); });
}
CTISAM_API COUNT GETMNAME(COUNT filno, pTEXT buf, LONG len, COUNT mode) {
  return Run([&](Session& s) {
    Need(buf);
    std::string name = s.NextMember(filno, mode);
    if (len <= static_cast<LONG>(name.size())) Throw(CT_EBADARG);
    std::memcpy(buf, name.c_str(), name.size() + 1);
  });
}
CTISAM_API LONG GETFIL(COUNT filno, COUNT mode) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.GetFil(filno, mode)); }, -1);
}
CTISAM_API COUNT PUTFIL(COUNT filno, COUNT mode) {
  return Run([&](Session& s) { s.PutFil(filno, mode); });
}

/* ---- files ---- */
CTISAM_API COUNT CREDATX(COUNT filno, pTEXT name, UCOUNT reclen, UCOUNT, COUNT filmod, LONG,
                         pTEXT, pTEXT password) {
  return Run([&](Session& s) { s.CreateData(filno, name, reclen, filmod, password); });
}
CTISAM_API COUNT CREDAT(COUNT filno, pTEXT name, UCOUNT reclen, UCOUNT xtdsiz, COUNT filmod) {
  return CREDATX(filno, name, reclen, xtdsiz, filmod, 0, nullptr, nullptr);
}
CTISAM_API COUNT OPNFILX(COUNT filno, pTEXT name, COUNT filmod, pTEXT password) {
  return Run([&](Session& s) { s.OpenFile(filno, name, filmod, password); });
}
CTISAM_API COUNT OPNFIL(COUNT filno, pTEXT name, COUNT filmod) {
  return OPNFILX(filno, name, filmod, nullptr);
}
CTISAM_API COUNT CLSFIL(COUNT filno, COUNT) { return Run([&](Session& s) { s.CloseFile(filno); }); }
CTISAM_API COUNT DELFIL(COUNT filno) { return Run([&](Session& s) { s.DeleteFile(filno); }); }
CTISAM_API COUNT CREIDXX(COUNT keyno, pTEXT name, COUNT keylen, COUNT keytyp, COUNT keydup, COUNT nomemb,
                         UCOUNT, COUNT filmod, LONG, pTEXT, pTEXT password) {
  return Run([&](Session& s) { s.CreateIndexFile(keyno, name, keylen, keytyp, keydup, nomemb, filmod, password); });
}
CTISAM_API COUNT CREIDX(COUNT keyno, pTEXT name, COUNT keylen, COUNT keytyp, COUNT keydup, COUNT nomemb,
                        UCOUNT xtdsiz, COUNT filmod) {
  return CREIDXX(keyno, name, keylen, keytyp, keydup, nomemb, xtdsiz, filmod, 0, nullptr, nullptr);
}
CTISAM_API COUNT CREMEM(COUNT keyno, COUNT keylen, COUNT keytyp, COUNT keydup, COUNT membno) {
  return Run([&](Session& s) { s.CreateMember(keyno, keylen, keytyp, keydup, membno); });
}
CTISAM_API COUNT ctRENFIL(COUNT filno, pTEXT newname) {
  return Run([&](Session& s) { s.Rename(filno, newname); });
}
CTISAM_API COUNT OPNRFILX(COUNT filno, pTEXT name, COUNT filmod, pTEXT password) {
  return Run([&](Session& s) {
    Need(name);
    s.OpenIfil(filno, name, filmod, password);
  });
}
CTISAM_API COUNT OPNRFIL(COUNT filno, pTEXT name, COUNT filmod) {
  return OPNRFILX(filno, name, filmod, nullptr);
}
CTISAM_API COUNT CLRFIL(COUNT datno) { return Run([&](Session& s) { s.CloseSet(datno); }); }
CTISAM_API COUNT DELRFIL(COUNT datno) { return Run([&](Session& s) { s.DeleteSet(datno); }); }
CTISAM_API COUNT CTSBLDX(pTEXT, pTEXT) { return NotSupported(); }

/* ---- resources ---- */
CTISAM_API COUNT ADDRES(COUNT datno, pVOID resptr, LONG len) {
  return Run([&](Session& s) { s.AddRes(datno, resptr, len, false); });
}
CTISAM_API COUNT UPDRES(COUNT datno, pVOID resptr, LONG len) {
  return Run([&](Session& s) { s.AddRes(datno, resptr, len, true); });
}
CTISAM_API COUNT DELRES(COUNT datno, pVOID resptr) {
  return Run([&](Session& s) { s.DelRes(datno, resptr); });
}
// Resources are always enabled: ENARES only checks that datno is an open data file.
CTISAM_API COUNT ENARES(COUNT datno) { return Run([&](Session& s) { s.DatEnt(datno); }); }
CTISAM_API pVOID GETRES(COUNT datno, pVOID resptr, pVOID bufptr, LONG bufsiz, COUNT) {
  return RunValue<pVOID>([&](Session& s) -> pVOID {
    s.GetRes(datno, resptr, bufptr, bufsiz);
    return bufptr;
  });
}

/* ---- records ---- */
CTISAM_API COUNT ADDREC(COUNT datno, pVOID rec) { return Run([&](Session& s) { s.AddRec(datno, rec, 0); }); }
CTISAM_API COUNT ADDVREC(COUNT datno, pVOID rec, LONG len) {
  return Run([&](Session& s) {
    if (len <= 0) Throw(CT_EBADARG);
    s.AddRec(datno, rec, len);
  });
}
CTISAM_API COUNT RWTREC(COUNT datno, pVOID rec) { return Run([&](Session& s) { s.Rewrite(datno, rec, 0); }); }
CTISAM_API COUNT RWTVREC(COUNT datno, pVOID rec, LONG len) {
  return Run([&](Session& s) {
    if (len <= 0) Throw(CT_EBADARG);
    s.Rewrite(datno, rec, len);
  });
}
CTISAM_API COUNT DELREC(COUNT datno) { return Run([&](Session& s) { s.DeleteRec(datno); }); }
CTISAM_API COUNT DELVREC(COUNT datno) { return Run([&](Session& s) { s.DeleteRec(datno); }); }
CTISAM_API COUNT RRDREC(COUNT datno, pVOID rec) {
  return Run([&](Session& s) {
    Need(rec);
    s.ReadCur(datno, rec, 0, true);
  });
}
CTISAM_API COUNT REDVREC(COUNT datno, pVOID rec, LONG bufsiz) {
  return Run([&](Session& s) {
    Need(rec);
    s.ReadCur(datno, rec, bufsiz, false);
  });
}
CTISAM_API LONG GETVLEN(COUNT datno) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.ReadCur(datno, nullptr, 0, false)); });
}
CTISAM_API COUNT REDREC(COUNT datno, LONG pos, pVOID rec) {
  return Run([&](Session& s) {
    Need(rec);
    s.ReadAt(datno, Pos(pos), rec, 0, true, false);
  });
}
CTISAM_API COUNT RDVREC(COUNT datno, LONG pos, pVOID rec, LONG bufsiz) {
  return Run([&](Session& s) {
    Need(rec);
    s.ReadAt(datno, Pos(pos), rec, bufsiz, false, false);
  });
}
CTISAM_API LONG GTVLEN(COUNT datno, LONG pos) {
  return RunValue<LONG>([&](Session& s) {
    return static_cast<LONG>(s.ReadAt(datno, Pos(pos), nullptr, 0, false, false));
  });
}
CTISAM_API COUNT REDIREC(COUNT datno, LONG pos, pVOID rec) {
  return Run([&](Session& s) {
    Need(rec);
    s.ReadAt(datno, Pos(pos), rec, 0, true, true);
  });
}
CTISAM_API COUNT REDIVREC(COUNT datno, LONG pos, pVOID rec, pLONG plen) {
  return Run([&](Session& s) {
    Need(rec);
    Need(plen);
    *plen = static_cast<LONG>(s.ReadAt(datno, Pos(pos), rec, *plen, false, true));
  });
}
CTISAM_API COUNT SETCURI(COUNT datno, LONG pos, pVOID rec, LONG len) {
  return Run([&](Session& s) { s.SetCur(datno, Pos(pos), rec, len); });
}
CTISAM_API LONG GETCURP(COUNT datno) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.CurPos(datno)); });
}
CTISAM_API COUNT UPDCURI(COUNT datno, COUNT) { return Run([&](Session& s) { s.ForgetCur(datno); }); }
CTISAM_API COUNT FRSREC(COUNT filno, pVOID rec) { return NavRec(filno, kFirst, nullptr, rec); }
CTISAM_API COUNT NXTREC(COUNT filno, pVOID rec) { return NavRec(filno, kNext, nullptr, rec); }
CTISAM_API COUNT PRVREC(COUNT filno, pVOID rec) { return NavRec(filno, kPrev, nullptr, rec); }
CTISAM_API COUNT LSTREC(COUNT filno, pVOID rec) { return NavRec(filno, kLast, nullptr, rec); }
CTISAM_API COUNT EQLREC(COUNT keyno, pVOID target, pVOID rec) { return NavRec(keyno, kEq, target, rec); }
CTISAM_API COUNT GTEREC(COUNT keyno, pVOID target, pVOID rec) { return NavRec(keyno, kGte, target, rec); }
CTISAM_API COUNT GTREC(COUNT keyno, pVOID target, pVOID rec) { return NavRec(keyno, kGt, target, rec); }
CTISAM_API COUNT LTEREC(COUNT keyno, pVOID target, pVOID rec) { return NavRec(keyno, kLte, target, rec); }
CTISAM_API COUNT LTREC(COUNT keyno, pVOID target, pVOID rec) { return NavRec(keyno, kLt, target, rec); }
CTISAM_API COUNT FRSVREC(COUNT filno, pVOID rec, pLONG plen) { return NavVRec(filno, kFirst, nullptr, rec, plen); }
CTISAM_API COUNT NXTVREC(COUNT filno, pVOID rec, pLONG plen) { return NavVRec(filno, kNext, nullptr, rec, plen); }
CTISAM_API COUNT PRVVREC(COUNT filno, pVOID rec, pLONG plen) { return NavVRec(filno, kPrev, nullptr, rec, plen); }
CTISAM_API COUNT LSTVREC(COUNT filno, pVOID rec, pLONG plen) { return NavVRec(filno, kLast, nullptr, rec, plen); }
CTISAM_API COUNT EQLVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) {
  return NavVRec(keyno, kEq, target, rec, plen);
}
CTISAM_API COUNT GTEVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) {
  return NavVRec(keyno, kGte, target, rec, plen);
}
CTISAM_API COUNT GTVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) {
  return NavVRec(keyno, kGt, target, rec, plen);
}
CTISAM_API COUNT LTEVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) {
  return NavVRec(keyno, kLte, target, rec, plen);
}
CTISAM_API COUNT LTVREC(COUNT keyno, pVOID target, pVOID rec, pLONG plen) {
  return NavVRec(keyno, kLt, target, rec, plen);
}
CTISAM_API LONG NEWREC(COUNT datno) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.NewRec(datno, 0)); });
}
CTISAM_API LONG NEWVREC(COUNT datno, LONG len) {
  return RunValue<LONG>([&](Session& s) {
    if (len <= 0) Throw(CT_EBADARG);
    return static_cast<LONG>(s.NewRec(datno, len));
  });
}
CTISAM_API COUNT WRTREC(COUNT datno, LONG pos, pVOID rec) {
  return Run([&](Session& s) { s.WriteAt(datno, Pos(pos), rec, 0); });
}
CTISAM_API COUNT WRTVREC(COUNT datno, LONG pos, pVOID rec, LONG len) {
  return Run([&](Session& s) {
    if (len <= 0) Throw(CT_EBADARG);
    s.WriteAt(datno, Pos(pos), rec, len);
  });
}
CTISAM_API COUNT RETREC(COUNT datno, LONG pos) { return Run([&](Session& s) { s.ReleaseAt(datno, Pos(pos)); }); }
CTISAM_API COUNT RETVREC(COUNT datno, LONG pos) { return RETREC(datno, pos); }
CTISAM_API LONG DATENT(COUNT datno) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.DatEnt(datno)); });
}
CTISAM_API LONG IDXENT(COUNT keyno) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.IdxEnt(keyno)); });
}

/* ---- keys ---- */
CTISAM_API COUNT frmkey(COUNT keyno, pTEXT rec, pTEXT key, LONG pos, LONG len) {
  return RunValue<COUNT>([&](Session& s) {
    return static_cast<COUNT>(s.FormKey(keyno, rec, key, static_cast<uint32_t>(pos), len));
  });
}
CTISAM_API pTEXT TFRMKEY(COUNT keyno, pVOID key) {
  return RunValue<pTEXT>([&](Session& s) {
    s.TransformKey(keyno, key);
    return static_cast<pTEXT>(key);
  });
}
CTISAM_API LONG FRSKEY(COUNT keyno, pVOID idxval) { return NavKey(keyno, kFirst, nullptr, idxval); }
CTISAM_API LONG NXTKEY(COUNT keyno, pVOID idxval) { return NavKey(keyno, kNext, nullptr, idxval); }
CTISAM_API LONG PRVKEY(COUNT keyno, pVOID idxval) { return NavKey(keyno, kPrev, nullptr, idxval); }
CTISAM_API LONG LSTKEY(COUNT keyno, pVOID idxval) { return NavKey(keyno, kLast, nullptr, idxval); }
CTISAM_API LONG EQLKEY(COUNT keyno, pVOID target) { return NavKey(keyno, kEq, target, nullptr); }
CTISAM_API LONG GTEKEY(COUNT keyno, pVOID target, pVOID idxval) { return NavKey(keyno, kGte, target, idxval); }
CTISAM_API LONG GTKEY(COUNT keyno, pVOID target, pVOID idxval) { return NavKey(keyno, kGt, target, idxval); }
CTISAM_API LONG LTEKEY(COUNT keyno, pVOID target, pVOID idxval) { return NavKey(keyno, kLte, target, idxval); }
CTISAM_API LONG LTKEY(COUNT keyno, pVOID target, pVOID idxval) { return NavKey(keyno, kLt, target, idxval); }
CTISAM_API COUNT GETCURK(COUNT keyno, pVOID idxval, pLONG plen) {
  return Run([&](Session& s) {
    long len = 0;
    s.GetCurKey(keyno, idxval, &len);
    if (plen) *plen = static_cast<LONG>(len);
  });
}
CTISAM_API COUNT GETCURKL(COUNT keyno, pVOID idxval) {
  return Run([&](Session& s) { s.GetCurKey(keyno, idxval, nullptr); });
}
CTISAM_API COUNT ADDKEY(COUNT keyno, pVOID key, LONG pos, COUNT) {
  return Run([&](Session& s) { s.AddKey(keyno, key, Pos(pos)); });
}
CTISAM_API COUNT LOADKEY(COUNT keyno, pVOID key, LONG pos, COUNT mode) { return ADDKEY(keyno, key, pos, mode); }
CTISAM_API COUNT DELCHK(COUNT keyno, pVOID key, LONG pos) {
  return Run([&](Session& s) { s.DeleteKey(keyno, key, Pos(pos), true); });
}
CTISAM_API COUNT DELBLD(COUNT keyno, pVOID key) {
  return Run([&](Session& s) { s.DeleteKey(keyno, key, 0, false); });
}
CTISAM_API LONG RNGENT(COUNT keyno, pVOID low, pVOID high) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.RangeCount(keyno, low, high)); });
}
CTISAM_API LONG FRCKEY(COUNT keyno, pVOID idxval, COUNT percent) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.KeyAtPercent(keyno, idxval, percent)); });
}
CTISAM_API LONG ESTKEY(COUNT keyno, pVOID key1, pVOID key2) {
  return RunValue<LONG>([&](Session& s) {
    Need(key1);
    Need(key2);
    long a = s.RangeCount(keyno, key1, key2);
    return static_cast<LONG>(a ? a : s.RangeCount(keyno, key2, key1));
  });
}
CTISAM_API LONG ORDKEY(COUNT keyno, pVOID target, LONG offset, pVOID idxval) {
  return RunValue<LONG>([&](Session& s) {
    return static_cast<LONG>(s.KeyByOrdinal(keyno, target, offset, idxval));
  });
}
CTISAM_API LONG SERIALNUM(COUNT datno) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.SerialNum(datno)); });
}
CTISAM_API LONG GETCIDX(COUNT keyno, LONG len, pVOID buf) {
  return RunValue<LONG>([&](Session& s) {
    std::string cond = s.GetCondition(keyno);
    const LONG need = static_cast<LONG>(cond.size() + 1);
    if (buf) {
      if (len < need) Throw(CT_EBADARG);
      std::memcpy(buf, cond.c_str(), cond.size() + 1);
    }
    return need;
  });
}
CTISAM_API COUNT UPDCIDX(COUNT keyno, pTEXT expr) { return Run([&](Session& s) { s.UpdateCondition(keyno, expr); }); }

/* ---- contexts ---- */
CTISAM_API COUNT OPNICON(COUNT datno, COUNT contextid, COUNT) {
  COUNT id = 0;
  COUNT rc = Run([&](Session& s) { id = static_cast<COUNT>(s.OpenContext(datno, contextid)); });
  return rc ? static_cast<COUNT>(-rc) : id;
}
CTISAM_API COUNT CHGICON(COUNT contextid) { return Run([&](Session& s) { s.ChangeContext(contextid); }); }
CTISAM_API COUNT CLSICON(COUNT contextid) { return Run([&](Session& s) { s.CloseContext(contextid); }); }

/* ---- lock sets, record locks, transactions ---- */
CTISAM_API COUNT LKISAM(COUNT mode) { return Run([&](Session& s) { s.LockSet(mode); }); }
CTISAM_API COUNT LOKREC(COUNT datno, COUNT mode, LONG pos) {
  return Run([&](Session& s) { s.LockRecord(datno, mode, Pos(pos)); });
}
CTISAM_API LONG TRANBEG(COUNT mode) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.TranBegin(mode)); });
}
CTISAM_API COUNT TRANEND(COUNT mode) { return Run([&](Session& s) { s.TranEnd(mode); }); }
CTISAM_API COUNT TRANABT(void) { return Run([](Session& s) { s.TranAbort(); }); }
CTISAM_API COUNT TRANABTX(COUNT) { return TRANABT(); }
CTISAM_API COUNT TRANSAV(void) {
  COUNT sp = 0;
  COUNT rc = Run([&](Session& s) { sp = static_cast<COUNT>(s.TranSave()); });
  return rc ? static_cast<COUNT>(-rc) : sp;
}
CTISAM_API COUNT TRANRST(COUNT savpnt) { return Run([&](Session& s) { s.TranRestore(savpnt); }); }
CTISAM_API COUNT TRANCLR(void) { return TRANABT(); }

}  // extern "C"
