#!/usr/bin/env bash
# Writes docs/reference/commands.md from the commands themselves.
# usage: docs/scripts/reference.sh [PROGRAM]
set -euo pipefail
cd "$(dirname "$0")/../.."
program=${1:-build/release/bin/qxmt}
mkdir -p docs/reference
"$program" reference commands tests/scripts host >docs/reference/commands.md
