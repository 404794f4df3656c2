// exports_batches: BATSET, which reads and fills the caller's KEYREQ. Compiled once per packing
// (CTISAM_PACK 1, 2, 4) into each library variant.
#include "Shim.h"

using namespace cte;

extern "C" {

CTISAM_API COUNT BATSET(COUNT keyno, pKEYREQ request, pVOID buf, LONG bufsiz, COUNT mode) {
  return Run([&](Session& s) {
    if (!request) Throw(CT_EBADARG);
    BatchRequest req;
    req.siglen = request->siglen;
    req.target = reinterpret_cast<const uint8_t*>(request->target);
    // The totals are written back also when the call fails (an empty batch, a short buffer).
    auto report = [&] {
      request->btotal = static_cast<LONG>(req.total);
      request->bavail = static_cast<LONG>(req.avail);
      request->breclen = static_cast<VRLEN>(req.used);
    };
    try {
      s.Batch(keyno, req, buf, bufsiz, mode);
    } catch (...) {
      report();
      throw;
    }
    report();
  });
}

}  // extern "C"
