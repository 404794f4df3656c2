#!/usr/bin/env bash
# Installs the Debian packages the build needs, if any is missing. Safe to run again.
set -euo pipefail

# libsqlite3-dev is only for the benchmarks that compare with SQLite (bench/); libncurses-dev is
# for the designer ctdesign, and tmux drives it in its end-to-end test; doxygen makes the API
# reference and checks that the table, connection and batch copy are documented.
packages=(g++ cmake make pkg-config liblmdb-dev libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev
          nlohmann-json3-dev libsqlite3-dev libncurses-dev tmux doxygen)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  sudo=""
  [[ $(id -u) -ne 0 ]] && sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq || true
  $sudo apt-get install -y -qq "${missing[@]}"
fi
