#!/usr/bin/env bash
# Builds the fuzz targets with clang's libFuzzer and runs each for a bounded time.
# Usage: scripts/fuzz.sh [SECONDS per target, default 60]. Skipped (exit 0) without clang.
# New inputs go to a scratch corpus; the seeds in the repository are only read. A crash, a
# disagreement or a hang leaves its input in the build folder and fails the run.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
build=${FUZZ_BUILD_DIR:-$root/build-fuzz}
if ! command -v clang++ >/dev/null; then
  echo "fuzz: clang++ not found, fuzzing skipped"
  exit 0
fi
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S "$root/fuzz" -B "$build" -DCMAKE_CXX_COMPILER=clang++ "${launcher[@]}" >/dev/null
cmake --build "$build" -j "$(nproc)" >/dev/null
# target:layer whose fuzz folder holds its seed corpus.
for entry in form_parser:framework parameter_file:engine engine_open:engine filter_parser:dataset csv_reader:tools; do
  target=${entry%%:*} layer=${entry#*:}
  scratch=$(mktemp -d)
  trap 'rm -rf "$scratch"' EXIT
  echo "fuzz: $target for ${seconds}s"
  "$build/${target}_fuzz" -max_total_time="$seconds" -max_len=4096 -timeout=10 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="$build/${target}-" "$scratch" "$root/$layer/fuzz/corpus/$target" \
    2>"$build/$target.log" || { tail -n 40 "$build/$target.log"; exit 1; }
  grep -E 'stat::number_of_executed_units|Done' "$build/$target.log" || true
  rm -rf "$scratch"
done
