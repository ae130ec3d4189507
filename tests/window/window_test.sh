#!/usr/bin/env bash
# The window as a person meets it: picking, deleting, undoing, and unsaved work.
# usage: window_test.sh BINARY_DIR
set -euo pipefail
source "$(dirname "$0")/lib.sh"
open_screen "$1"

start --no-module -c 'polyCube -n box -w 4 -h 4 -d 4; select -cl; viewFit -all; file -mf 0'
read -r x y w h <<<"$(view modelPanel4)"
[ "$w" -gt 300 ] && [ "$h" -gt 200 ] || fail "the view is ${w}x${h}"
middle="$((x + w / 2)) $((y + h / 2))"
xdotool mousemove $middle click 1
until_says "a click picks the box" "^selected box"
xdotool key w mousemove $((x + w / 2 + 2)) $((y + h / 2))
until_says "w takes the move tool" "^tool moveSuperContext"
xdotool key ctrl+z
until_says "Ctrl+Z takes the picking back" "^selected *$"
xdotool mousemove $middle click 1
until_says "the box is picked again" "^selected box"
xdotool key Delete
until_says "Delete takes the box away" "^undo delete"
xdotool key ctrl+z
until_says "and undo brings it back" "^selected box"

# Keys that modellers know.
xdotool key space
until_says "Space shows four views" "^view modelPanel1"
xdotool key space
until_true "and one again" silent "^view modelPanel1"
xdotool key ctrl+d
until_says "Ctrl+D makes a copy" "^undo duplicate"

# Unsaved work is asked for; without it the window goes at once.
xdotool key ctrl+q
until_modal "unsaved work is asked for" ".*Unsaved changes"
for _ in $(seq 100); do
  has_ended && break
  dialog=$(xdotool search --name "Unsaved changes" 2>/dev/null | tail -1 || true)
  [ -z "$dialog" ] || xdotool mousemove --window "$dialog" 20 12 windowfocus "$dialog" key alt+d 2>/dev/null || true
  sleep 0.3
done
until_ended
[ "$status" = 0 ] || fail "the window ended with status $status"
echo "the window picks, deletes, undoes and asks about unsaved work"
