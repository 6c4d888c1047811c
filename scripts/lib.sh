# Shared by the scripts: the build configurations and how to run their tests.
# Source it; it defines functions only.

TBXUTL_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
TBXUTL_BUILD=${TBXUTL_BUILD:-$TBXUTL_ROOT/build}

# configure_and_build NAME [CMAKE_ARGS...]: build/NAME, output in its log.
configure_and_build() {
  local name=$1
  shift
  local dir=$TBXUTL_BUILD/$name
  mkdir -p "$dir"
  {
    cmake -S "$TBXUTL_ROOT" -B "$dir" -G Ninja "$@" &&
      cmake --build "$dir"
  } >"$dir/build.log" 2>&1
}

# with_wine DIR COMMAND...: runs COMMAND with a persistent Wine server for
# the build's private prefix. The prefix's services are started first with
# no terminal or pipe, so that they hold none of the test runner's pipes.
with_wine() {
  local dir=$1
  shift
  export TBXUTL_WINEPREFIX=$dir/wineprefix
  export WINEPREFIX=$TBXUTL_WINEPREFIX
  setsid wineserver -p </dev/null >/dev/null 2>&1
  "$TBXUTL_ROOT/cmake/wine-run.sh" wineboot --init </dev/null >/dev/null 2>&1
  local status=0
  "$@" || status=$?
  wineserver -k >/dev/null 2>&1 || true
  wineserver -w >/dev/null 2>&1 || true
  return $status
}

have_wine32() {
  dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null | grep -q "install ok installed"
}
