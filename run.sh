#!/usr/bin/env bash
# Installs what is missing, builds, and runs qxmt: the tour without arguments, else with the arguments given.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
"$here/tools/install.sh"
"$here/tools/build.sh" release qxmt qxModelingToolkit
if [ $# -eq 0 ]; then
  set -- tour
fi
exec "$here/build/release/bin/qxmt" "$@"
