#!/usr/bin/env bash
# Runs a Windows program under Wine with a private prefix, quietly, and
# without Wine offering to install Mono or Gecko.
set -eu
: "${TBXUTL_WINEPREFIX:=${WINEPREFIX:-$PWD/wineprefix}}"
export WINEPREFIX=$TBXUTL_WINEPREFIX
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree=;mshtml="
exec wine "$@"
