// exports_sets: the entry points of sets (FRSSET .. MIDVSET, ALCSET, CHGSET, FRESET) and of the
// batch table (ALCBAT, CHGBAT, FREBAT); BATSET reads a KEYREQ and lives in exports_batches.
#include "Shim.h"

using namespace cte;

namespace {

COUNT SetRec(COUNT keyno, NavOp op, pVOID target, pVOID rec, COUNT siglen) {
  return Run([&](Session& s) {
    if (!rec) Throw(CT_EBADARG);
    s.SetNav(keyno, op, target, siglen, rec, 0, true);
  });
}

COUNT SetVRec(COUNT keyno, NavOp op, pVOID target, pVOID rec, COUNT siglen, pLONG plen) {
  return Run([&](Session& s) {
    if (!rec || !plen) Throw(CT_EBADARG);
    *plen = static_cast<LONG>(s.SetNav(keyno, op, target, siglen, rec, *plen, false));
  });
}

}  // namespace

extern "C" {

CTISAM_API COUNT FRSSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen) {
  return SetRec(keyno, kFirst, target, rec, siglen);
}
CTISAM_API COUNT NXTSET(COUNT keyno, pVOID rec) { return SetRec(keyno, kNext, nullptr, rec, 0); }
CTISAM_API COUNT PRVSET(COUNT keyno, pVOID rec) { return SetRec(keyno, kPrev, nullptr, rec, 0); }
CTISAM_API COUNT LSTSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen) {
  return SetRec(keyno, kLast, target, rec, siglen);
}
CTISAM_API COUNT MIDSET(COUNT keyno, pVOID rec, COUNT siglen) {
  return Run([&](Session& s) {
    if (!rec) Throw(CT_EBADARG);
    s.SetMid(keyno, siglen, rec, 0, true);
  });
}
CTISAM_API COUNT FRSVSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen, pLONG plen) {
  return SetVRec(keyno, kFirst, target, rec, siglen, plen);
}
CTISAM_API COUNT NXTVSET(COUNT keyno, pVOID rec, pLONG plen) { return SetVRec(keyno, kNext, nullptr, rec, 0, plen); }
CTISAM_API COUNT PRVVSET(COUNT keyno, pVOID rec, pLONG plen) { return SetVRec(keyno, kPrev, nullptr, rec, 0, plen); }
CTISAM_API COUNT LSTVSET(COUNT keyno, pVOID target, pVOID rec, COUNT siglen, pLONG plen) {
  return SetVRec(keyno, kLast, target, rec, siglen, plen);
}
CTISAM_API COUNT MIDVSET(COUNT keyno, pVOID rec, COUNT siglen, pLONG plen) {
  return Run([&](Session& s) {
    if (!rec || !plen) Throw(CT_EBADARG);
    *plen = static_cast<LONG>(s.SetMid(keyno, siglen, rec, *plen, false));
  });
}
CTISAM_API COUNT ALCSET(COUNT numset) { return Run([&](Session& s) { s.AllocSets(numset); }); }
CTISAM_API COUNT CHGSET(COUNT setno) { return Run([&](Session& s) { s.ChangeSet(setno); }); }
CTISAM_API COUNT FRESET(void) { return Run([](Session& s) { s.FreeSets(); }); }
CTISAM_API COUNT ALCBAT(COUNT numbat) { return Run([&](Session& s) { s.AllocBatches(numbat); }); }
CTISAM_API COUNT CHGBAT(COUNT batno) { return Run([&](Session& s) { s.ChangeBatch(batno); }); }
CTISAM_API COUNT FREBAT(void) { return Run([](Session& s) { s.FreeBatches(); }); }

}  // extern "C"
