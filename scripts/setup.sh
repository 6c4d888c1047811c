#!/usr/bin/env bash
# Installs every Debian package the project needs. Idempotent: quiet and
# quick when everything is present; runs apt-get update once otherwise.
set -euo pipefail

packages=(
  # build
  cmake ninja-build g++ pkg-config git
  # libraries of the Linux build
  libxml2-dev libsqlite3-dev libssl-dev
  # tests and benchmarks
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  # Windows builds and running them
  g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix binutils-mingw-w64-x86-64
  binutils-mingw-w64-i686 wine wine64
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ $status == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo=""
[[ $(id -u) -eq 0 ]] || sudo="sudo"
echo "setup: installing ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}" >/dev/null
echo "setup: done"
