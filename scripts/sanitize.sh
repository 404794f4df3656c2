#!/usr/bin/env bash
# Builds the whole tree with AddressSanitizer and UndefinedBehaviorSanitizer (gcc) in a build
# folder of its own and runs every test with CTest. Extra arguments go to ctest (e.g. -L engine).
# The engine libraries are loaded with dlopen: every executable links the sanitizer runtime, so
# it is loaded first and the libraries use it.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${SANITIZE_BUILD_DIR:-$root/build-sanitize}
flags="-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined"
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DCTREE_BUILD_BENCH=OFF "${launcher[@]}" \
  -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" \
  -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" \
  -DCMAKE_SHARED_LINKER_FLAGS="-fsanitize=address,undefined" >/dev/null
cmake --build "$build" -j "$(nproc)"
# Leaks count as faults; the first report stops the process. Child processes that leave with
# _exit skip the leak check (LeakSanitizer runs at exit), so forking tests are not affected.
export ASAN_OPTIONS="detect_leaks=1:halt_on_error=1:abort_on_error=1:strict_string_checks=1:detect_stack_use_after_return=0"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
# The sanitizer runtime intercepts dlopen and calls the loader itself, so the program's RUNPATH
# no longer applies to the engine libraries: name their folder.
export LD_LIBRARY_PATH="$build/lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
cd "$build"
# The installed-package test builds a program without the sanitizer against the instrumented
# libraries, which cannot link: it is left out here.
ctest --output-on-failure -j "$(nproc)" --timeout 1200 -E '^package\.' "$@"
