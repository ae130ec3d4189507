#!/usr/bin/env bash
# The toolkit's module shows the host its three entry points and nothing else: what two plug-ins both have inside never
# meets. usage: exports.sh MODULE
set -euo pipefail
found=$(nm -D -C --defined-only "$1" | awk '{ $1 = ""; $2 = ""; sub(/^ +/, ""); print }' | sort)
wanted='initializePlugin(MObject)
MApiVersion
uninitializePlugin(MObject)'
if [ "$found" != "$(sort <<<"$wanted")" ]; then
  echo "the module exports:"
  head -20 <<<"$found"
  exit 1
fi
echo "the module exports its entry points alone"
