#!/usr/bin/env bash
# Configures and builds one preset; prints to standard error, and little when nothing changed.
# usage: tools/build.sh PRESET [target ...]
set -euo pipefail
exec 1>&2
cd "$(dirname "$0")/.."
preset=$1
shift
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
export CCACHE_DIR="${CCACHE_DIR:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/ccache}"
if [ ! -f "build/$preset/build.ninja" ]; then
  cmake --preset "$preset" >"/tmp/qxmt-configure.$$" 2>&1 || { cat "/tmp/qxmt-configure.$$"; rm -f "/tmp/qxmt-configure.$$"; exit 1; }
  rm -f "/tmp/qxmt-configure.$$"
fi
targets=()
for target in "$@"; do targets+=(--target "$target"); done
NINJA_STATUS='[%f/%t] ' cmake --build --preset "$preset" "${targets[@]}"
