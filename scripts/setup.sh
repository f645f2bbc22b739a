#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
#
# Installs what building and testing needs on Debian 12: distribution packages, then HDF5 for
# Windows and a Wine prefix in the cache folder. What is there is skipped, so it is cheap to run
# again.
#
#   scripts/setup.sh            everything
#   scripts/setup.sh --native   only what the Linux build and its tests need

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
. "$root/scripts/env.sh"

native=(
  g++ cmake ninja-build ccache pkg-config
  libhdf5-dev zlib1g-dev googletest
  python3 python3-matplotlib clang-format git
)
windows=(
  g++-mingw-w64-x86-64-posix libz-mingw-w64-dev
  wine64 dpkg-dev
)
# The solver's own examples: decks of every kind for the importer's tests.
decks=(calculix-ccx calculix-ccx-test)

case "${1:-}" in
  "") packages=("${native[@]}" "${decks[@]}" "${windows[@]}") ;;
  --native) packages=("${native[@]}" "${decks[@]}") ;;
  *)
    echo "usage: scripts/setup.sh [--native]" >&2
    exit 2
    ;;
esac

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
  if [ "$status" != installed ]; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  asRoot=()
  if [ "$(id -u)" -ne 0 ]; then
    asRoot=(sudo)
  fi
  "${asRoot[@]}" apt-get -q update
  "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get -q install -y --no-install-recommends "${missing[@]}"
fi

if [ "${1:-}" = "" ]; then
  "$root/scripts/build_hdf5_mingw.sh"
  "$root/scripts/wine64" cmd /c exit
fi
echo "setup: done"
