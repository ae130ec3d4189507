#!/usr/bin/env bash
# What the two libraries show. The toolkit's module: its three entry points and nothing else, so that what two plug-ins
# both have inside never meets. The host: API classes (M...), the functions on them, and the program's entry; nothing of
# its inside. usage: exports.sh MODULE HOST
set -euo pipefail
shown() { nm -D -C --defined-only "$1" | cut -d' ' -f3- | sort -u; }

found=$(shown "$1")
wanted='initializePlugin(MObject)
MApiVersion
uninitializePlugin(MObject)'
if [ "$found" != "$(sort <<<"$wanted")" ]; then
  echo "the module exports:"
  head -20 <<<"$found"
  exit 1
fi

api='M[A-Z3][A-Za-z0-9]*::|(vtable|typeinfo|typeinfo name) for M[A-Z3]|operator.*\((std::ostream&, |double, )?M[A-Z]|(slerp|squad)\(MQuaternion'
others=$(shown "$2" | grep -vE "^($api)|^host::app::runProgram\(" || true)
if [ -n "$others" ]; then
  echo "the host's library exports what is no part of the API:"
  head -20 <<<"$others"
  exit 1
fi
[ "$(shown "$2" | grep -cE "^MFnMesh::")" -gt 100 ] || { echo "the host's library hides its API"; exit 1; }
echo "the module exports its entry points alone, the host its API"
