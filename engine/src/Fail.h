// Fail: the engine core's internal error, turned into an error number by the exported shims.
#pragma once

#include <cerrno>

namespace cte {

// Thrown by the core with the error number the call returns; sysio carries errno when an I/O
// failure caused it. Never crosses the C interface: every export catches it.
struct Fail {
  int code;
  int sysio = 0;
};

[[noreturn]] inline void Throw(int code, int sysio = 0) { throw Fail{code, sysio}; }

// Internal: a write found that another process changed the file's definition since this
// process loaded it. The definition is reloaded and the exported call runs again; never
// returned to a caller.
constexpr int kStaleDefinition = 0x7001;

}  // namespace cte
