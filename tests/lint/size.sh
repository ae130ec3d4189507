#!/usr/bin/env bash
# A source file past 600 lines has a seam that was not cut.
# usage: size.sh ROOT
set -euo pipefail
cd "$1"
limit=600
folders=()
for folder in host plugin shared commands modeling quaddraw uv brushes scripts tests bench; do
  if [ -d "$folder" ]; then folders+=("$folder"); fi
done
bad=$(find "${folders[@]}" \( -name '*.h' -o -name '*.cpp' -o -name '*.mel' \) -print0 |
      xargs -0 awk -v limit=$limit '
        FNR == 1 && NR > 1 && lines > limit { print lines, name }
        { lines = FNR; name = FILENAME }
        END { if (lines > limit) print lines, name }')
if [ -n "$bad" ]; then
  echo "files past $limit lines:"
  echo "$bad"
  exit 1
fi
echo "no source file is past $limit lines"
