#!/usr/bin/env bash
# Reads mesh files and scenes while somebody else rewrites them in place: cut to nothing, filled again, cut in half.
# usage: tools/rewrite_reads.sh [ROUNDS [PROGRAM]]
#
# Each read may give what was there or an error; the program must live.
set -u
rounds=${1:-200}
program=${2:-build/release/bin/qxmt}
folder=$(mktemp -d)
writer=
trap '[ -z "$writer" ] || kill $writer; rm -rf "$folder"' EXIT

cat > "$folder/make.mel" <<MEL
polySphere -sx 200 -sy 200 -ch 0;
file -f -exportAll -type "OBJexport" "$folder/whole.obj";
file -rename "$folder/whole.ma"; file -f -s -type "mayaAscii";
MEL
"$program" "$folder/make.mel" > "$folder/log" 2>&1 || { cat "$folder/log"; exit 2; }
cp "$folder/whole.obj" "$folder/mesh.obj"; cp "$folder/whole.ma" "$folder/scene.ma"

rewrite() {
  local half
  while :; do
    for name in mesh.obj scene.ma; do
      half=$(($(stat -c %s "$folder/whole.${name#*.}") / 2))
      : > "$folder/$name"
      cat "$folder/whole.${name#*.}" > "$folder/$name"
      truncate -s $half "$folder/$name"
      cat "$folder/whole.${name#*.}" > "$folder/$name"
    done
  done
}
cat > "$folder/read.mel" <<MEL
int \$i, \$whole, \$other;
for (\$i = 0; \$i < $rounds; \$i++) {
  file -f -new;
  int \$failed = \$i % 2 ? catchQuiet(\`file -import "$folder/mesh.obj"\`)
                         : catchQuiet(\`file -f -open "$folder/scene.ma"\`);
  string \$meshes[] = \`ls -type mesh\`;
  int \$faces[] = {0};
  if (size(\$meshes)) \$faces = \`polyEvaluate -f \$meshes[0]\`;
  if (!\$failed && \$faces[0] == 40000) \$whole++; else \$other++;
}
print("$rounds reads of files that were rewritten meanwhile: " + \$whole + " whole, " + \$other +
      " gave an error or a part\n");
MEL
rewrite &
writer=$!
"$program" --no-module "$folder/read.mel" > "$folder/log" 2> "$folder/errors"
status=$?
cat "$folder/log"
[ $status -eq 0 ] || { tail -5 "$folder/errors"; echo "the program ended with status $status"; exit 1; }
