#!/usr/bin/env bash
# Installs the build into a temporary prefix and uses it from outside the tree: a program built
# with find_package and with pkg-config creates a table and reads it back, and the installed ctt
# creates, fills and lists one. Each must load the engine from the prefix, not from the build.
# Usage: install_test.sh BUILD_DIR CONSUMER_SOURCE CMAKE CXX LIBDIR BINDIR
set -euo pipefail
build=$1 consumer=$2 cmake=$3 cxx=$4 libdir=$5 bindir=$6
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix=$tmp/prefix
fail() { echo "package test: $*" >&2; exit 1; }

"$cmake" --install "$build" --prefix "$prefix" >/dev/null

# The engine is opened by its plain name, a link to the versioned file.
[[ -L $prefix/$libdir/libctstd32b.so ]] || fail "libctstd32b.so is not installed as a link"

# Runs a program and checks that the engine it loaded came from the prefix.
loads_engine_from_prefix() {
  LD_DEBUG=libs LD_DEBUG_OUTPUT=$tmp/ld "$@"
  local engine
  engine=$(grep -h -o "calling init: .*/libct[a-z0-9]*\.so" "$tmp"/ld.* | head -n 1 | sed 's/calling init: //')
  [[ -n $engine && $(readlink -f "$(dirname "$engine")") == "$(readlink -f "$prefix/$libdir")" ]] ||
    fail "$1 did not load the engine from $prefix/$libdir (loaded: ${engine:-nothing})"
  rm -f "$tmp"/ld.*
}

# find_package and the namespaced target.
"$cmake" -S "$consumer" -B "$tmp/cmake-build" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=Release >/dev/null
"$cmake" --build "$tmp/cmake-build" >/dev/null
mkdir "$tmp/t1"
loads_engine_from_prefix "$tmp/cmake-build/consumer" "$tmp/t1"

# pkg-config, with the .pc file found in the prefix.
PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
export PKG_CONFIG_PATH
flags=$(pkg-config --cflags --libs ctree-components)
# shellcheck disable=SC2086
"$cxx" -std=c++20 -Wall -Wextra -Werror -o "$tmp/consumer-pc" "$consumer/consumer.cpp" $flags
mkdir "$tmp/t2"
loads_engine_from_prefix "$tmp/consumer-pc" "$tmp/t2"

# The installed tool, which finds the engine through its RUNPATH of $ORIGIN/../lib.
ctt=$prefix/$bindir/ctt
"$ctt" --help | grep -q "create" || fail "ctt --help does not list create"
mkdir "$tmp/t3"
printf 'id,name\n7,Ada Quill\n3,Tor Minde\n' >"$tmp/staff.csv"
loads_engine_from_prefix "$ctt" create staff --dir "$tmp/t3" -f id:integer,name:string:20 -x byid:id:primary
"$ctt" import staff "$tmp/staff.csv" --dir "$tmp/t3" >/dev/null
listing=$("$ctt" list staff --dir "$tmp/t3" --index byid)
grep -q "3 *Tor Minde" <<<"$listing" && grep -q "7 *Ada Quill" <<<"$listing" ||
  fail "ctt list shows: $listing"
echo "package test: installed package works from $prefix"
