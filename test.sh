#!/usr/bin/env bash
# Installs what is missing, builds everything, and runs every test.
# QXMT_PRESET chooses another preset (dev: sanitizers, paranoid: self-checks); further arguments go to ctest.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
preset=${QXMT_PRESET:-release}
"$here/tools/install.sh"
"$here/tools/build.sh" "$preset"
cd "$here"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
status=0
ctest --preset "$preset" -j2 "$@" 2>&1 | tee "$log" || status=$?
total=$(sed -n 's/.*tests failed out of \([0-9]*\)$/\1/p' "$log" | tail -1)
failed=$(sed -n 's/.*, \([0-9]*\) tests failed out of .*/\1/p' "$log" | tail -1)
if [ "${total:-0}" -eq 0 ]; then
  echo "0 passed, 1 failed"
  exit 1
fi
echo "$((total - failed)) passed, ${failed} failed"
exit "$status"
