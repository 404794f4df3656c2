// The clocks the benchmarks read besides Google Benchmark's own (bench).
#pragma once

#include <time.h>

#include <chrono>

namespace bench {

/// Seconds of CPU time used by the whole process: steadier than wall time on a shared machine.
inline double CpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Seconds of a monotonic wall clock.
inline double WallSeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace bench
