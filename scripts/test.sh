#!/usr/bin/env bash
# Sets up, builds and runs every test on both platforms:
#   linux-asan     Debug with AddressSanitizer and UndefinedBehaviorSanitizer
#   linux-tsan     Debug with ThreadSanitizer
#   linux-release  Release, with the installed-package consumer test
#   windows-x64    x86_64 tbxutl.dll and tests, run under Wine
#   windows-x86    i686 tbxutl.dll and tests; run when a 32-bit Wine exists
# Prints one line per stage and exits non-zero if any stage failed.
# Usage: scripts/test.sh [STAGE...]
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
"$here/setup.sh" || exit 1
source "$here/lib.sh"

all_stages=(linux-asan linux-tsan linux-release windows-x64 windows-x86)
stages=("$@")
[[ ${#stages[@]} -gt 0 ]] || stages=("${all_stages[@]}")

jobs=$(nproc)
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export GTEST_COLOR=no

total_passed=0
total_failed=0
summaries=()
failed_stages=0

# run_ctest NAME DIR: runs the tests, adds to the totals, leaves the
# stage's note in $note.
run_ctest() {
  local name=$1 dir=$2 out
  out=$(cd "$dir" && ctest --output-on-failure -j "$jobs" 2>&1)
  local status=$?
  echo "$out" | sed "s/^/[$name] /"
  local line passed=0 failed=0
  line=$(echo "$out" | grep -E 'tests passed, [0-9]+ tests? failed out of [0-9]+' | tail -1)
  if [[ $line =~ ([0-9]+)\ tests?\ failed\ out\ of\ ([0-9]+) ]]; then
    failed=${BASH_REMATCH[1]}
    passed=$((BASH_REMATCH[2] - failed))
  fi
  total_passed=$((total_passed + passed))
  total_failed=$((total_failed + failed))
  note="$passed passed, $failed failed"
  [[ $status -eq 0 && $passed -gt 0 ]]
}

run_stage() {
  local name=$1 dir=$TBXUTL_BUILD/$1
  note=""
  case $name in
    linux-asan)
      configure_and_build "$name" -DCMAKE_BUILD_TYPE=Debug -DTBXUTL_SANITIZE=address,undefined || return 1
      run_ctest "$name" "$dir" ;;
    linux-tsan)
      configure_and_build "$name" -DCMAKE_BUILD_TYPE=Debug -DTBXUTL_SANITIZE=thread \
        -DTBXUTL_BUILD_BENCHMARKS=OFF || return 1
      run_ctest "$name" "$dir" ;;
    linux-release)
      configure_and_build "$name" -DCMAKE_BUILD_TYPE=Release || return 1
      run_ctest "$name" "$dir" ;;
    windows-x64)
      configure_and_build "$name" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$TBXUTL_ROOT/cmake/toolchains/x86_64-w64-mingw32.cmake" || return 1
      with_wine "$dir" run_ctest "$name" "$dir" ;;
    windows-x86)
      configure_and_build "$name" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$TBXUTL_ROOT/cmake/toolchains/i686-w64-mingw32.cmake" || return 1
      if have_wine32; then
        with_wine "$dir" run_ctest "$name" "$dir"
      else
        note="built and linked; tests skipped: no 32-bit Wine here (package wine32:i386)"
      fi ;;
    *)
      echo "test.sh: unknown stage '$name' (stages: ${all_stages[*]})" >&2
      return 2 ;;
  esac
}

for stage in "${stages[@]}"; do
  start=$(date +%s)
  if run_stage "$stage"; then
    result=ok
  else
    result=FAILED
    failed_stages=$((failed_stages + 1))
    log=$TBXUTL_BUILD/$stage/build.log
    if [[ -z $note && -f $log ]]; then
      echo "[$stage] build failed; the end of $log:"
      tail -n 40 "$log" | sed "s/^/[$stage] /"
      note="build failed"
    fi
  fi
  summaries+=("stage $stage: $result in $(($(date +%s) - start)) s ($note)")
  echo "${summaries[-1]}"
done

echo
printf '%s\n' "${summaries[@]}"
echo "tests: $total_passed passed, $total_failed failed"
[[ $failed_stages -eq 0 ]]
