// Shim: the guard every exported call runs its body in, turning Fail and any other exception
// into an error number, so that nothing is thrown across the C interface.
#pragma once

#include <new>

#include "Fail.h"
#include "Session.h"
#include "ctisam.h"

namespace cte {

// Runs f(session) for a COUNT-returning call: 0 on success, otherwise the error number, which
// is also recorded for GetCtreeError and ierr. A call that met a definition another process had
// changed runs again on the reloaded one.
template <typename F>
COUNT Run(F&& f, bool needSession = true) noexcept {
  Session& s = TheSession();
  for (int attempt = 0;; ++attempt) {
    try {
      if (needSession && !s.Active()) Throw(FINT_ERR);
      f(s);
      s.SetError(0, 0);
      return 0;
    } catch (const Fail& e) {
      if (e.code == kStaleDefinition && attempt < 3) continue;
      s.SetError(e.code, e.sysio);
      return static_cast<COUNT>(e.code);
    } catch (const std::bad_alloc&) {
      s.SetError(CT_EIO, ENOMEM);
      return CT_EIO;
    } catch (...) {
      s.SetError(CT_EIO, 0);
      return CT_EIO;
    }
  }
}

// Runs f(session) for a call returning a value (position, count, length, pointer): the value
// on success, fail on failure with the error number recorded; retried as Run is.
template <typename R, typename F>
R RunValue(F&& f, R fail = R{}) noexcept {
  Session& s = TheSession();
  for (int attempt = 0;; ++attempt) {
    try {
      if (!s.Active()) Throw(FINT_ERR);
      R r = f(s);
      s.SetError(0, 0);
      return r;
    } catch (const Fail& e) {
      if (e.code == kStaleDefinition && attempt < 3) continue;
      s.SetError(e.code, e.sysio);
    } catch (const std::bad_alloc&) {
      s.SetError(CT_EIO, ENOMEM);
    } catch (...) {
      s.SetError(CT_EIO, 0);
    }
    return fail;
  }
}

// For calls this engine does not (yet) provide.
inline COUNT NotSupported() noexcept {
  TheSession().SetError(NSUP_ERR, 0);
  return NSUP_ERR;
}

}  // namespace cte
