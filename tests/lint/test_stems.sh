#!/usr/bin/env bash
# Every operation of host/ops has a test of its own stem, or stands in tests/lint/shared_stems.txt with
# the test that covers it together with others; what only other operations use stands there with the
# operation that it is a part of, what scripts reach by a command with `by` and their file, and what has
# no test with `none`: those are named each time.
# usage: test_stems.sh ROOT
set -euo pipefail

# OPERATION and its folder, a line each: what has a header and a source.
operations() {
  find host/ops -name '*.h' | sort | while read -r header; do
    if [ -f "${header%.h}.cpp" ]; then echo "$(basename "$header" .h) $header"; fi
  done
}
check() {
  untested=""
  local status=0 name header test covered all list=tests/lint/shared_stems.txt
  all=$(operations)
  while read -r name header; do
    if [ -f "tests/host/ops/${name}_test.cpp" ]; then
      grep -q "^$name:" "$list" && { echo "$list: $name has a test of its own"; status=1; }
      continue
    fi
    covered=$(sed -n "s/^$name: *//p" "$list")
    if [ -z "$covered" ]; then
      echo "$header: no tests/host/ops/${name}_test.cpp, and no line in $list"
      status=1
    elif [[ $covered == "part of "* ]]; then
      for test in ${covered#part of }; do
        grep -rlq "\"${header}\"" host/ops --include="${test}.cpp" --include="${test}.h" ||
          { echo "$list: $name is no part of $test"; status=1; }
      done
    elif [[ $covered == "by "* ]]; then
      [ -f "${covered#by }" ] || { echo "$list: there is no ${covered#by }"; status=1; }
    elif [ "$covered" = none ]; then
      untested+=" $name"
    elif ! grep -q "\"${header}\"" "tests/host/ops/${covered}_test.cpp" 2>/dev/null; then
      echo "$list: ${covered}_test.cpp doesn't include $header"
      status=1
    fi
  done <<<"$all"
  while read -r name; do
    grep -q "^$name " <<<"$all" || { echo "$list: there is no operation $name"; status=1; }
  done < <(sed -n 's/^\([a-z_0-9]*\):.*/\1/p' "$list")
  return $status
}

planted=$(mktemp -d)
trap 'rm -rf "$planted"' EXIT
mkdir -p "$planted/host/ops" "$planted/tests/host/ops" "$planted/tests/lint"
for name in alone shared inner bare; do touch "$planted/host/ops/$name.h" "$planted/host/ops/$name.cpp"; done
echo '#include "host/ops/inner.h"' >"$planted/host/ops/alone.cpp"
echo '#include "host/ops/shared.h"' >"$planted/tests/host/ops/several_test.cpp"
touch "$planted/tests/host/ops/alone_test.cpp"
printf 'shared: several\ninner: part of alone\ngone: several\n' >"$planted/tests/lint/shared_stems.txt"
found=$(cd "$planted" && check | sed 's/.* //; s/:$//' | paste -sd' ' || true)
[ "$found" = "tests/lint/shared_stems.txt gone" ] || { echo "the stem lint finds '$found' in its plant"; exit 1; }

cd "$1"
check && echo "every operation has its test${untested:+ but for$untested}"
