#!/usr/bin/env bash
# Writes the rows of docs/modelling.md from the declarations of the commands.
# usage: docs/scripts/modelling.sh [PROGRAM]
set -euo pipefail
cd "$(dirname "$0")/../.."
program=${1:-build/release/bin/qxmt}
rows=$(mktemp)
trap 'rm -f "$rows"' EXIT
"$program" reference >"$rows"
awk -v rows="$rows" '
  /^<!-- docs\/scripts\/modelling.sh wrote this -->/ { skipping = 0 }
  !skipping { print }
  /^<!-- docs\/scripts\/modelling.sh writes what follows -->/ {
    while ((getline line < rows) > 0) print line
    skipping = 1
  }
' docs/modelling.md >"$rows.page"
mv "$rows.page" docs/modelling.md
