#!/usr/bin/env bash
# Installs the built project into a fresh prefix, then builds and runs a
# small program against it twice: with find_package and with pkg-config.
# Usage: run.sh BUILD_DIR WORK_DIR CXX LIBDIR [EXTRA_FLAGS...]
set -euo pipefail
build_dir=$1 work=$2 cxx=$3 libdir=$4
shift 4
extra_flags="$*"
here=$(cd "$(dirname "$0")" && pwd)

rm -rf "$work"
mkdir -p "$work"
prefix=$work/prefix
cmake --install "$build_dir" --prefix "$prefix" >"$work/install.log"

echo "== CMake package"
cmake -S "$here" -B "$work/cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$extra_flags" \
  -DCMAKE_EXE_LINKER_FLAGS="$extra_flags" >"$work/cmake-configure.log"
cmake --build "$work/cmake-build" >"$work/cmake-build.log"
"$work/cmake-build/consumer"

echo "== pkg-config"
export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
# shellcheck disable=SC2046,SC2086
"$cxx" $extra_flags -o "$work/consumer-pc" "$here/main.cpp" $(pkg-config --cflags --libs tbxutl)
LD_LIBRARY_PATH=$prefix/$libdir "$work/consumer-pc"
