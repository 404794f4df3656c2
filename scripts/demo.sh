#!/usr/bin/env bash
# Sets up, builds and runs the main job on the embedded engine.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
"$root/scripts/build.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
"$build/engine/ctdemo"
