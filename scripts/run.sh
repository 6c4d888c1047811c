#!/usr/bin/env bash
# Sets up, builds the Linux release and runs the tbxutl tool on its defaults.
# Extra arguments go to the tool instead.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
"$here/setup.sh"
source "$here/lib.sh"

if ! configure_and_build linux-release -DCMAKE_BUILD_TYPE=Release; then
  tail -n 40 "$TBXUTL_BUILD/linux-release/build.log" >&2
  exit 1
fi
tool=$TBXUTL_BUILD/linux-release/bin/tbxutl
if [[ $# -gt 0 ]]; then
  exec "$tool" "$@"
fi
"$tool" --version
"$tool" --help
