#!/usr/bin/env bash
# What hierarchies of 1,000, 4,000 and 16,000 levels cost: create, list, save, open, and the memory of a program
# that has opened them.
# usage: tools/depth_figures.sh [PROGRAM]
set -euo pipefail
program=${1:-build/release/bin/qxmt}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

echo 'print(`system("grep VmHWM /proc/$PPID/status")`)' > "$folder/memory.mel"
echo "the program alone: $("$program" --no-module "$folder/memory.mel" | tr -s '\t ' ' ')"
for depth in 1000 4000 16000; do
  scene=$folder/$depth.ma
  cat > "$folder/make.mel" <<MEL
float \$start = \`timerX\`;
string \$above = \`createNode transform -n "level"\`;
int \$i;
for (\$i = 1; \$i < $depth; \$i++) \$above = \`createNode transform -n "level#" -p \$above\`;
float \$made = \`timerX\`;
int \$all = size(\`ls -dag level\`) + size(\`ls -type transform\`);
float \$listed = \`timerX\`;
file -rename "$scene"; file -f -s -type "mayaAscii";
float \$saved = \`timerX\`;
print("$depth: create " + (\$made - \$start) + ", list " + \$all + " names " + (\$listed - \$made) + ", save " +
      (\$saved - \$listed));
MEL
  cat > "$folder/open.mel" <<MEL
float \$start = \`timerX\`;
file -f -open "$scene";
print(", open " + (\`timerX\` - \$start) + " s");
if (size(\`ls -dag level\`) != $depth) error("levels are missing");
print(" " + \`system("grep VmHWM /proc/\$PPID/status")\`);
MEL
  "$program" --no-module "$folder/make.mel"
  "$program" --no-module "$folder/open.mel" | tr -s '\t ' ' '
done
