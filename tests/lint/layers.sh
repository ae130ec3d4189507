#!/usr/bin/env bash
# Holds every include to host/layers.txt and to the toolkit's own order; prints each offence as file:line.
# usage: layers.sh ROOT [--self-test]
set -euo pipefail
root=$1
awk_program='
  FNR == NR {
    if ($0 ~ /^#/ || NF == 0) next
    folder = $1; sub(/:$/, "", folder)
    known[folder] = 1
    for (i = 2; i <= NF; i++) allowed[folder, $i] = 1
    next
  }
  FNR == 1 {
    file = FILENAME; sub("^" root "/", "", file)
    n = split(file, parts, "/")
    side = parts[1]; layer = parts[2]
  }
  !/^[ \t]*#[ \t]*include/ { next }
  {
    quoted = match($0, /"[^"]+"/) ? substr($0, RSTART + 1, RLENGTH - 2) : ""
    angled = match($0, /<[^>]+>/) ? substr($0, RSTART + 1, RLENGTH - 2) : ""
    if (side == "host") host_include(); else toolkit_include()
  }
  function offence(text) { printf "%s:%d: %s\n", file, FNR, text; bad = 1 }
  function host_include(  target, p) {
    if (layer == "include") {
      if (quoted != "") offence("API headers include no project file: " quoted)
      else if (angled ~ /\// && angled !~ /^(maya|GL)\//) offence("API headers include maya/, GL/ and std only: " angled)
      return
    }
    if (quoted == "") {
      if (angled ~ /^maya\// && layer != "api" && layer != "app") offence(layer " may not include the API: " angled)
      if (angled ~ /^(GL|EGL)\// && layer != "viewport") offence("only viewport knows OpenGL: " angled)
      return
    }
    split(quoted, p, "/")
    if (p[1] != "host") { offence("host files include host files only: " quoted); return }
    target = p[2]
    if (target == layer || target == "base" || (layer, "*") in allowed) return
    if (!((layer, target) in allowed)) offence("host/" layer " may not include host/" target)
  }
  function toolkit_include(  p) {
    if (quoted == "") return
    split(quoted, p, "/")
    if (p[1] == "host") { offence("the toolkit includes nothing of host/: " quoted); return }
    if (p[1] == side || side == "plugin") return
    if (side == "shared") offence("shared/ includes no other toolkit folder: " quoted)
    else if (side == "brushes" && (p[1] == "modeling" || p[1] == "uv")) return
    else if (p[1] != "shared") offence(side "/ may include shared/ only: " quoted)
  }
  END { exit bad }
'
check() {
  local folders=() folder
  for folder in host plugin shared commands modeling quaddraw uv brushes; do
    if [ -d "$1/$folder" ]; then folders+=("$1/$folder"); fi
  done
  find "${folders[@]}" \( -name '*.h' -o -name '*.cpp' \) -print0 | sort -z |
    xargs -0 awk -v root="$1" "$awk_program" "$root/host/layers.txt"
}

# The lint proves itself on a planted offence before it judges the tree.
planted=$(mktemp -d)
trap 'rm -rf "$planted"' EXIT
mkdir -p "$planted/host/mel" "$planted/shared" "$planted/uv" "$planted/brushes"
echo '#include "host/scene/document.h"' >"$planted/host/mel/bad.h"
echo '#include "commands/straightenCmd.h"' >"$planted/shared/bad.h"
echo '#include "modeling/modelingContext.h"' >"$planted/uv/bad.h"
printf '#include "modeling/modelingContext.h"\n#include "uv/uvPlacement.h"\n' >"$planted/brushes/good.h"
if check "$planted" >"$planted/out"; then
  echo "the layer lint does not see a planted offence"
  exit 1
fi
[ "$(wc -l <"$planted/out")" -eq 3 ] || { echo "planted offences:"; cat "$planted/out"; exit 1; }

check "$root" && echo "includes keep to the layers"
