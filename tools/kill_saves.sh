#!/usr/bin/env bash
# Kills the program that often in the middle of saving, again and again, and looks at what is left of the scene.
# usage: tools/kill_saves.sh [ROUNDS [PROGRAM]]
#
# A scene is saved in turn with two contents, as fast as it goes. Each round waits until a save has begun its
# temporary file, a little more, and ends with SIGKILL: while the content is written, while it waits for the disk, or
# when it has just taken the file's place. Even rounds save a small scene, odd ones a big one. Whole old, whole new:
# one of the two contents to the byte. Anything else is a lost scene.
set -u
rounds=${1:-200}
program=${2:-build/release/bin/qxmt}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

now() { microseconds=${EPOCHREALTIME/[.,]/}; }
# A scene that was opened is saved as it was made: the references come from the loop's own saves.
body() { grep -v '^//' "$1" | cksum; }
parts() { find "$folder" -name '.*.part' | wc -l; }

# prepare NAME SIDES: the scene NAME.ma, its two contents, the loop of saves
prepare() {
  local scene=$folder/$1.ma
  cat > "$folder/$1_once.mel" <<MEL
polySphere -n ball -sx $2 -sy $2 -ch 0;
file -rename "$scene";
setAttr ball.ty 1; file -f -s -type "mayaAscii"; sysFile -copy "$folder/$1_first.ma" "$scene";
setAttr ball.ty 2; file -f -s -type "mayaAscii"; sysFile -copy "$folder/$1_second.ma" "$scene";
MEL
  cat > "$folder/$1.mel" <<MEL
file -f -open "$folder/$1_first.ma";
file -rename "$scene";
int \$i, \$saves = \`getenv QXMT_SAVES\`;
for (\$i = 0; \$i < \$saves; \$i++) {
  setAttr ball.ty (1 + \$i % 2);
  file -f -s -type "mayaAscii";
}
MEL
  "$program" --no-module "$folder/$1_once.mel" > "$folder/log" 2>&1 || { cat "$folder/log"; exit 2; }
  first[$3]=$(body "$folder/$1_first.ma"); second[$3]=$(body "$folder/$1_second.ma")
  bytes[$3]=$(stat -c %s "$folder/$1_second.ma")
  [ "${first[$3]}" != "${second[$3]}" ] || { echo "the two contents do not differ"; exit 2; }
}
# begin NAME SAVES: the loop in the background; $pid and the name of its temporary file
begin() {
  QXMT_SAVES=$2 "$program" --no-module "$folder/$1.mel" > "$folder/log" 2>&1 &
  pid=$!
  part=$folder/.$1.ma.$pid.part
}
# await NTH: until the NTH temporary file is there
await() {
  local n
  for ((n = 1; n <= $1; ++n)); do
    until [ -e "$part" ]; do [ -d /proc/$pid ] || { cat "$folder/log"; exit 2; }; done
    [ $n -eq $1 ] || while [ -e "$part" ]; do :; done
  done
}
# span NAME: how long a temporary file is there, the shortest of five, in microseconds
span() {
  local i start shortest=1000000
  for i in 1 2 3 4 5; do
    begin "$1" 100000
    await 2
    now; start=$microseconds
    while [ -e "$part" ]; do :; done
    now
    kill -KILL $pid
    wait $pid 2> /dev/null
    [ $((microseconds - start)) -ge $shortest ] || shortest=$((microseconds - start))
  done
  echo $shortest
}

names=(small big)
prepare small 40 0
prepare big 400 1
spans=("$(span small)" "$(span big)")
echo "temporary files are there for ${spans[0]} and ${spans[1]} us, ${bytes[0]} and ${bytes[1]} bytes"

writing=0 waiting=0 replaced=0 elsewhere=0 isFirst=0 isSecond=0 lost=0 most=0
for ((round = 0; writing + waiting + replaced < rounds; ++round)); do
  kind=$((round % 2)) name=${names[round % 2]}
  delay=$((spans[kind] * RANDOM / 32768))
  begin "$name" 100000
  # The one before the last has been replaced when the last begins.
  await $((RANDOM % 3 + 1))
  before=$(stat -c %i "$folder/$name.ma")
  now; until=$((microseconds + delay))
  while ((microseconds < until)); do now; done
  kill -KILL $pid
  wait $pid 2> /dev/null
  if [ -e "$part" ]; then
    if [ "$(stat -c %s "$part")" -lt "${bytes[kind]}" ]; then writing=$((writing + 1)); else waiting=$((waiting + 1)); fi
  elif [ "$before" != "$(stat -c %i "$folder/$name.ma")" ]; then
    replaced=$((replaced + 1))
  else
    elsewhere=$((elsewhere + 1))
  fi
  case "$(body "$folder/$name.ma")" in
    "${first[kind]}") isFirst=$((isFirst + 1)) ;;
    "${second[kind]}") isSecond=$((isSecond + 1)) ;;
    *) lost=$((lost + 1)); cp "$folder/$name.ma" "lost_$round.ma" ;;
  esac
  left=$(parts)
  [ "$left" -le "$most" ] || most=$left
done
for name in "${names[@]}"; do
  begin "$name" 1
  wait $pid
done
left=$(parts)
echo "$rounds kills during saves: $writing while the content was written, $waiting while it waited for the disk," \
  "$replaced when it had taken the file's place, and $elsewhere more between two saves; $isFirst times the one content," \
  "$isSecond times the other, $lost lost; at most $most part files at a time, $left after one more save"
[ "$lost" -eq 0 ] && [ "$left" -eq 0 ]
