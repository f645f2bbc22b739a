#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
#
# Builds the HDF5 C library for Windows x86-64 from the distribution's own source package, once,
# into $ODBS_CACHE; does nothing when it is there. cmake/OdbsHdf5.cmake picks it up.
#
# Static, with zlib, without tools, tests, C++, Fortran and the high-level part. The source is
# fetched with a separate apt configuration (below), so neither root nor a change to the machine's
# package sources is needed.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
. "$root/scripts/env.sh"

version=1.10.8
# Counts the recipes: raise it here and in cmake/OdbsHdf5.cmake when the build's settings change.
recipe=1
target=$ODBS_CACHE/hdf5-$version-mingw-$recipe
triple=x86_64-w64-mingw32

mkdir -p "$ODBS_CACHE"
exec 9>"$target.lock"
flock 9
if [ -e "$target/lib/libhdf5.a" ]; then
  echo "HDF5 $version for Windows: in $target"
  exit 0
fi

work=$(mktemp -d "$ODBS_CACHE/hdf5-build.XXXXXX")
trap 'rm -rf "$work"' EXIT

# The machine's own package sources, turned from binary to source packages.
mirrorSources() {
  mkdir -p "$work/apt/parts" "$work/apt/lists/partial" "$work/apt/cache/archives/partial"
  local file
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    if [ -f "$file" ]; then
      sed -n '/^[[:space:]]*deb[[:space:]]\+cdrom:/d; s/^[[:space:]]*deb[[:space:]]/deb-src /p' \
        "$file" >"$work/apt/parts/$(basename "$file" .list).list"
    fi
  done
  for file in /etc/apt/sources.list.d/*.sources; do
    if [ -f "$file" ]; then
      sed 's/^Types:.*/Types: deb-src/' "$file" >"$work/apt/parts/$(basename "$file")"
    fi
  done
}

aptSource() {
  apt-get -q -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$work/apt/parts" \
    -o Dir::State::Lists="$work/apt/lists" -o Dir::Cache="$work/apt/cache" \
    -o APT::Sandbox::User= "$@"
}

echo "HDF5 $version for Windows: building into $target (about two minutes)"
mirrorSources
cd "$work"
# apt checks the signature of the lists and by them the sums of the files.
{
  aptSource update
  aptSource source --only-source --download-only hdf5
  dpkg-source --no-check -x hdf5_"$version"*.dsc src
} >"$work/fetch.log" 2>&1 || {
  cat "$work/fetch.log" >&2
  echo "error: no source package of HDF5 $version from the machine's package sources" >&2
  exit 1
}

# The POSIX header that one file includes without needing it.
mkdir -p stub/sys build
: >stub/sys/wait.h

# HDF5's configuration runs probes that write into the current folder: start from the build folder.
cd build
{
  cmake -G Ninja ../src \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" \
    -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_C_FLAGS="-isystem $work/stub -w" \
    -DBUILD_SHARED_LIBS=OFF -DBUILD_TESTING=OFF \
    -DHDF5_BUILD_TOOLS=OFF -DHDF5_BUILD_EXAMPLES=OFF -DHDF5_BUILD_UTILS=OFF \
    -DHDF5_BUILD_CPP_LIB=OFF -DHDF5_BUILD_HL_LIB=OFF -DHDF5_BUILD_FORTRAN=OFF \
    -DHDF5_ENABLE_SZIP_SUPPORT=OFF -DHDF5_ENABLE_Z_LIB_SUPPORT=ON \
    -DZLIB_LIBRARY=/usr/$triple/lib/libz.a -DZLIB_INCLUDE_DIR=/usr/$triple/include
  cmake --build . --target hdf5-static
  cmake --install . --component libraries --prefix "$work/install"
  cmake --install . --component headers --prefix "$work/install"
} >"$work/build.log" 2>&1 9>&- || {
  tail -n 60 "$work/build.log" >&2
  echo "error: HDF5 $version for Windows did not build" >&2
  exit 1
}
grep -q '#define H5_HAVE_FILTER_DEFLATE 1' "$work/install/include/H5pubconf.h" || {
  echo "error: HDF5 $version for Windows came out without zlib" >&2
  exit 1
}

rm -rf "$target"
mv "$work/install" "$target"
echo "HDF5 $version for Windows: done"
