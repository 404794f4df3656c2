#!/usr/bin/env bash
# The long form of the reliability tests: 1,000 crash cycles and 500 increments per program
# (CI runs 100 cycles and 60 increments). Builds first; extra arguments go to ctest.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
"$root/scripts/build.sh"
cd "$build"
CT_CRASH_CYCLES=${CT_CRASH_CYCLES:-1000} ctest --output-on-failure -V -L reliability --timeout 7200 "$@" |
  grep -E "crash loop:|contention:|damage:|tests passed|Failed|FAILED" || true
