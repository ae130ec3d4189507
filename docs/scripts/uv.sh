#!/usr/bin/env bash
# Draws the pictures of docs/uv.md anew: docs/scripts/uv.sh [QXMT] [MODELS], from the project's folder.
set -euo pipefail
qxmt=${1:-build/release/bin/qxmt}
models=${2:-../shared/models}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$qxmt" unwrap "$models/suzanne.obj" -o "$work/suzanne.obj" --seams "$models/suzanne.seams.txt"
"$qxmt" unwrap "$models/fandisk_quads.obj" -o "$work/fandisk.obj" --seams angle=40
"$qxmt" unwrap "$models/spot.obj" -o "$work/spot.obj" --seams uvs
"$qxmt" --no-module docs/scripts/uv.mel "$work" "$models" docs/images
