// IoCounters: counts of storage work done by this process since the library was loaded.
#pragma once

#include <cstdint>

namespace cte {

// Reported by IOPERFORMANCE.
struct IoCounters {
  uint64_t commits = 0;  // write transactions committed to a file (held ones when they end)
  uint64_t flushes = 0;  // commits flushed to disk (WRITETHRU, TRNLOG, OPS_FLUSH)
  uint64_t reads = 0;    // records copied into a caller's buffer (reads, batches)
};

// The process's counters.
inline IoCounters& Io() {
  static IoCounters counters;
  return counters;
}

}  // namespace cte
