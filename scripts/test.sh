#!/usr/bin/env bash
# Sets up, builds and runs every test with CTest. Extra arguments go to ctest (e.g. -L engine).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
"$root/scripts/build.sh"
cd "$build"
ctest --output-on-failure -j "$(nproc)" --timeout 600 "$@"
