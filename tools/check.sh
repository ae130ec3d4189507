#!/usr/bin/env bash
# What every commit can't afford: other compilers and settings, self-checks, sanitizers, fuzzing.
# usage: tools/check.sh [STEP ...]    without steps: all of them, one after the other
#   lint      the rules of the tree, and names
#   dev       all tests with AddressSanitizer and UndefinedBehaviorSanitizer
#   paranoid  all tests with check() after every edit, undo and redo after every command
#   clang     all tests, built by clang
#   headers   builds without precompiled headers, so that every file includes what it uses
#   windowless  builds the program as it is where there is no Qt: no window, and it says so
#   fuzz      each fuzz target for a minute (QXMT_FUZZ_SECONDS)
set -euo pipefail
cd "$(dirname "$0")/.."
all=(lint dev paranoid clang headers windowless fuzz)
steps=("$@")
[ ${#steps[@]} -gt 0 ] || steps=("${all[@]}")

tests() {
  tools/build.sh "$1"
  ctest --test-dir "build/$1" -j2 --output-on-failure
}
step_lint() {
  local lint
  for lint in layers size format functions test_stems; do bash "tests/lint/$lint.sh" .; done
  tools/tidy.sh
}
step_dev() { tests dev; }
step_paranoid() { tests paranoid; }
step_clang() {
  tools/install.sh clang
  tests clang
}
step_headers() {
  cmake -S . -B build/headers -G Ninja -DCMAKE_BUILD_TYPE=Release -DQXMT_PRECOMPILE=OFF >/dev/null
  cmake --build build/headers
}
step_windowless() {
  local out=build/windowless status=0
  cmake -S . -B $out -G Ninja -DCMAKE_BUILD_TYPE=Release -DQXMT_WINDOW=OFF -DQXMT_BENCH=OFF >/dev/null
  cmake --build $out --target qxmt
  [ ! -e $out/bin/qxmtWindow ] || { echo "a build without the window made one"; return 1; }
  if ldd $out/bin/qxmt | grep -i qt; then echo "the program is linked to Qt"; return 1; fi
  $out/bin/qxmt --no-module -w >$out/said 2>&1 || status=$?
  [ $status -eq 2 ] && grep -q "no window" $out/said || { cat $out/said; echo "-w ended with status $status"; return 1; }
  [ "$($out/bin/qxmt --no-module -c 'print(size(`polyCube`) + "\n")' | head -1)" = 2 ]
}
step_fuzz() {
  tools/install.sh clang
  tools/build.sh fuzz
  local target kind found=0
  for target in build/fuzz/bin/*_fuzz; do
    found=1
    kind=$(basename "$target" _fuzz)
    echo "$target"
    mkdir -p "build/fuzz/corpus/${kind}_fuzz"
    "$target" -max_total_time="${QXMT_FUZZ_SECONDS:-60}" -timeout=20 -max_len=1024 -rss_limit_mb=4096 \
      -dict="tests/fuzz/${kind}_fuzz.dict" -print_final_stats=0 \
      "build/fuzz/corpus/${kind}_fuzz" "tests/fuzz/seeds/$kind"
  done
  [ $found -eq 1 ] || { echo "there are no fuzz targets in build/fuzz/bin"; return 1; }
}

for step in "${steps[@]}"; do
  declare -F "step_$step" >/dev/null || { echo "there is no step '$step'; steps: ${all[*]}"; exit 2; }
done
for step in "${steps[@]}"; do
  echo "== $step"
  # Not in a condition: there a step's first failure would not end it.
  "step_$step"
done
echo "all steps passed: ${steps[*]}"
