#!/usr/bin/env bash
# The long form of the reliability tests, with their figures: 1,000 crash cycles, 500 increments
# per program through TCTTable and through the engine's lock calls, 20 kills of `ctt import` per
# table, the damage sweep, and every other slow case (lock matrix, processes). CI runs the short
# form (100 cycles, 60 increments, 5 kills). Builds first; extra arguments go to ctest.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
"$root/scripts/build.sh"
cd "$build"
# Only the figures and the verdict are shown; the exit status is ctest's.
set +e
CT_CRASH_CYCLES=${CT_CRASH_CYCLES:-1000} ctest --output-on-failure -V -L 'reliability|slow' --timeout 7200 "$@" |
  grep -E "crash loop:|contention:|ctt import kill:|damage:|tests passed|Failed|FAILED"
status=${PIPESTATUS[0]}
exit "$status"
