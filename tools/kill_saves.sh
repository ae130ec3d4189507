#!/usr/bin/env bash
# Kills the program while it saves, again and again, and looks at what is left of the scene.
# usage: tools/kill_saves.sh [ROUNDS [PROGRAM]]
#
# The scene is saved in turn with two contents, as fast as it goes; each round ends with SIGKILL after a random
# time. Whole old, whole new: one of the two contents to the byte. Anything else is a lost scene.
set -u
rounds=${1:-200}
program=${2:-build/release/bin/qxmt}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cat > "$folder/one.mel" <<MEL
polySphere -n ball -sx 120 -sy 120 -ch 0;
file -rename "$folder/scene.ma";
setAttr ball.ty 1; file -f -s -type "mayaAscii"; sysFile -copy "$folder/first.ma" "$folder/scene.ma";
setAttr ball.ty 2; file -f -s -type "mayaAscii"; sysFile -copy "$folder/second.ma" "$folder/scene.ma";
MEL
cat > "$folder/many.mel" <<MEL
file -f -open "$folder/first.ma";
file -rename "$folder/scene.ma";
int \$i;
for (\$i = 0; \$i < 100000; \$i++) {
  setAttr ball.ty (1 + \$i % 2);
  file -f -s -type "mayaAscii";
}
MEL
"$program" "$folder/one.mel" > "$folder/log" 2>&1 || { cat "$folder/log"; exit 2; }
# A scene that was opened is saved as it was made: the references come from the loop's own saves.
body() { grep -v '^//' "$1" | cksum; }
first=$(body "$folder/first.ma"); second=$(body "$folder/second.ma")
[ "$first" != "$second" ] || { echo "the two contents do not differ"; exit 2; }

isFirst=0 isSecond=0 lost=0 parts=0 saves=0
for ((round = 0; round < rounds; ++round)); do
  before=$(stat -c %Y.%i "$folder/scene.ma")
  "$program" "$folder/many.mel" > "$folder/log" 2>&1 &
  pid=$!
  sleep "0.$((RANDOM % 8 + 2))$((RANDOM % 10))"
  kill -KILL $pid 2> /dev/null
  wait $pid 2> /dev/null
  [ "$before" = "$(stat -c %Y.%i "$folder/scene.ma")" ] || saves=$((saves + 1))
  now=$(body "$folder/scene.ma")
  case "$now" in
    "$first") isFirst=$((isFirst + 1)) ;;
    "$second") isSecond=$((isSecond + 1)) ;;
    *) lost=$((lost + 1)); cp "$folder/scene.ma" "lost_$round.ma" ;;
  esac
  left=$(find "$folder" -name '.*.part' | wc -l)
  [ "$left" -le "$parts" ] || parts=$left
done
echo "$rounds kills, $saves of them after the file was replaced at least once: $isFirst times the one content," \
  "$isSecond times the other, $lost lost; at most $parts part files at a time"
[ "$lost" -eq 0 ]
