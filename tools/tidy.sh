#!/usr/bin/env bash
# Holds the host's names to .clang-tidy, by the compile commands of a preset that is configured.
# usage: tools/tidy.sh [PRESET] [FILE...]    without files: all sources of host/
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}
[ $# -gt 0 ] && shift
command -v clang-tidy >/dev/null || { echo "clang-tidy is missing: run tools/install.sh clang-tidy"; exit 1; }
build=build/$preset
[ -f "$build/build.ninja" ] || cmake --preset "$preset" >/dev/null
# clang reads no precompiled header of another compiler.
commands=$(mktemp -d)
trap 'rm -rf "$commands"' EXIT
ninja -C "$build" -t compdb |
  sed -e 's/ -include [^ ]*cmake_pch[^ ]*//g; s/ -Winvalid-pch//g; s/ -fpch-preprocess//g; s/ -fpch-instantiate-templates//g' \
    >"$commands/compile_commands.json"
files=("$@")
[ ${#files[@]} -gt 0 ] || mapfile -t files < <(git ls-files 'host/*.cpp')
log=$commands/log
printf '%s\0' "${files[@]}" |
  { xargs -0 -n 8 -P 2 nice clang-tidy -p "$commands" --quiet 2>/dev/null || true; } |
  grep -E ': (warning|error): ' | sort -u >"$log" || true
if [ -s "$log" ]; then
  cat "$log"
  exit 1
fi
echo "names keep to .clang-tidy in ${#files[@]} sources"
