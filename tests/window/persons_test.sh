#!/usr/bin/env bash
# What only a person meets: dialogs, the button that stops work, hot keys, UVs picked in their panel, work taken up after a crash.
# usage: persons_test.sh BINARY_DIR
set -euo pipefail
source "$(dirname "$0")/lib.sh"
open_screen "$1"

start --no-module -c 'polyCube -n box -w 4 -h 4 -d 4; select -cl; viewFit -all; file -mf 0' \
  -c "$(key_line j 'warning("answer " + `confirmDialog -title "Sure" -message "Really?" -button "Yes" -button "No" -defaultButton "Yes" -cancelButton "No" -dismissString "No"`)')" \
  -c "$(key_line y 'string $b = `promptDialog -title "Name it" -message "Name:" -text "first" -button "OK" -button "No" -defaultButton "OK" -cancelButton "No" -dismissString "No"`; warning("prompt " + $b + ($b == "OK" ? " " + `promptDialog -q -text` : ""))')" \
  -c "$(key_line v "string \$f[] = \`fileDialog2 -fileMode 0 -caption \"Put it there\" -fileFilter \"Scenes (*.ma)\" -dir \"$work\"\`; warning(\"file \" + size(\$f) + \" \" + \$f[0])")" \
  -c "$(key_line b "string \$f[] = \`fileDialog2 -fileMode 1 -caption \"Which\" -dir \"$work\"\`; warning(\"files \" + size(\$f))")" \
  -c 'global proc askLayout() { columnLayout; button -label "Take it" -command "layoutDialog -dismiss \"taken\"" takeIt; }' \
  -c "$(key_line x 'warning("layout " + `layoutDialog -title "Own" -ui "askLayout"`)')" \
  -c "$(key_line k 'while (1) {}')" \
  -c "$(key_line o 'progressWindow -title "Counting" -isInterruptable 1; int $i = 0; while (!`progressWindow -q -isCancelled`) { $i++; progressWindow -e -progress ($i % 100); } progressWindow -endProgress; warning("cancelled")')" \
  -c "$(key_line u 'warning("still here")')"
focus_view

# A confirmation is a real dialog; its button's name comes back.
xdotool key j
until_modal "the question is asked" ".*Sure"
click Yes
until_prints "and answered" "answer Yes"

# A prompt gives back what is typed; Escape is the button that dismisses.
focus_view
xdotool key y
until_modal "a text is asked for" ".*Name it"
xdotool key ctrl+a
xdotool type 'a "name"'
xdotool key Return
until_prints "and given" 'prompt OK a "name"'
focus_view
xdotool key y
until_modal "it is asked for again" ".*Name it"
xdotool key Escape
until_prints "and dismissed" "prompt No"

# Files: one to write that is typed, and one that is there.
focus_view
xdotool key v
until_modal "a file is asked for" "fileDialog Put it there"
xdotool type "$work/some file.ma"
xdotool key Return
until_prints "its name comes back" "file 1 $work/some file.ma"
focus_view
xdotool key b
until_modal "one that is there is asked for" "fileDialog Which"
xdotool type "$work/nothing.ma"
xdotool key Return
until_true "one that is not there is told of" says "^modal [^f]"
xdotool key Return
until_says "and the dialog goes on" "^modal fileDialog"
xdotool windowfocus --sync "$(xdotool search --onlyvisible --name "^Which$" | tail -1)" key Escape
until_prints "nothing is chosen" "files 0"

# A dialog of a script's own controls.
focus_view
xdotool key x
until_says "the script's dialog" "^widget takeIt "
click takeIt
until_prints "says which button" "layout taken"

# A script that never ends: the button stops it, and the window goes on.
focus_view
xdotool key k
for _ in $(seq 100); do
  # The program can't write its state meanwhile; the button stands at the lower right.
  prints Interrupted && break
  xdotool mousemove 1400 890 key Escape
  sleep 0.2
done
until_prints "Escape stops a script" "Interrupted"
focus_view
xdotool key u
until_prints "and the next one runs" "still here"

# Progress of a script, cancelled.
focus_view
xdotool key o
for _ in $(seq 100); do
  prints "cancelled" && break
  box=$(xdotool search --name "Counting" 2>/dev/null | tail -1 || true)
  [ -z "$box" ] || xdotool windowfocus "$box" mousemove --window "$box" 20 20 key Escape 2>/dev/null || true
  sleep 0.2
done
until_prints "progress can be cancelled" "cancelled"

# UVs: a click in the panel picks in the scene, and what the scene has picked shows there.
xdotool mousemove $(($(view modelPanel4 | cut -d' ' -f1) + 300)) $(($(view modelPanel4 | cut -d' ' -f2) + 300)) click 1
until_says "the box is picked" "^selected box"
read -r x y w h <<<"$(widget uvView)"
xdotool mousemove $((x + 3)) $((y + 3)) mousedown 1 mousemove $((x + w / 2)) $((y + h / 2)) mousemove $((x + w - 4)) $((y + h - 4)) mouseup 1
until_says "a frame in the UV panel picks all UVs" "^selected box.map\[0:13\]"
xdotool mousemove $((x + 3)) $((y + 3)) click 1
until_says "a click beside them picks none" "^selected *$"
xdotool key ctrl+z
until_says "and undo brings them back" "^selected box.map\[0:13\]"

# Work is taken up after a crash.
focus_view
kill -9 "$program"
wait "$program" 2>/dev/null || true
start --no-module -c 'polyCube -n lost; autoSave -perform'
kill -9 "$program"
wait "$program" 2>/dev/null || true
rm -f "$state"
"$build/bin/qxmt" -w --no-module >"$work/out" 2>"$work/err" &
program=$!
until_modal "the crash is told of" ".*Recovery"
dialog=$(xdotool search --name "Recovery" 2>/dev/null | tail -1 || true)
for _ in $(seq 50); do
  silent "^modal" && break
  xdotool mousemove --window "$dialog" 20 12 windowfocus "$dialog" key alt+r 2>/dev/null || true
  sleep 0.3
done
focus_view
xdotool key a
xdotool mousemove $(($(view modelPanel4 | cut -d' ' -f1) + $(view modelPanel4 | cut -d' ' -f3) / 2)) $(($(view modelPanel4 | cut -d' ' -f2) + $(view modelPanel4 | cut -d' ' -f4) / 2)) click 1
until_says "the scene is back" "^selected lost"
[ "$(find "$work/.local/state/qxmt/recovery" -name '*.ma' | wc -l)" = 1 ] || fail "the file was not handed over"
echo "dialogs, stopping, UVs and recovery do what a person expects"
