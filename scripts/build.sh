#!/usr/bin/env bash
# Configures and builds the whole tree in ./build (or $BUILD_DIR).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
"$root/scripts/setup.sh"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=${BUILD_TYPE:-RelWithDebInfo} >/dev/null
cmake --build "$build" -j "$(nproc)"
