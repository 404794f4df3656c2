#!/usr/bin/env bash
# Sets up, builds and runs the main job: sample customers and orders imported into c-tree tables
# on the embedded engine with the `ctt` tool, then listed by two indexes, seeked and restricted to
# a range. The tables are made in a fresh temporary directory that is removed afterwards.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
"$root/scripts/build.sh"
"$root/tools/sample/main_job.sh" "$build"
