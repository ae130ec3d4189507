#!/usr/bin/env bash
# The window as a person meets it: the real program on a virtual screen, driven by real key and mouse events. The program
# says in a file when all that was done has been looked at, so nothing here waits by the clock alone.
# usage: window_test.sh BINARY_DIR [FOLDER FOR PICTURES]
set -euo pipefail
build=$1
pictures=${2:-}
for tool in Xvfb xdotool; do
  command -v $tool >/dev/null || { echo "there is no $tool; the window is not tested"; exit 77; }
done
[ -x "$build/bin/qxmtWindow" ] || { echo "this build has no window"; exit 77; }

work=$(mktemp -d)
state=$work/state
cleanup() {
  kill "${program:-0}" 2>/dev/null || true
  kill "${screen:-0}" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "window_test: $1"; cat "$state" "$work/err" 2>/dev/null | tail -20; exit 1; }

exec 3<>"$work/display"
Xvfb -displayfd 3 -screen 0 1500x950x24 >/dev/null 2>&1 &
screen=$!
for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.1; done
[ -s "$work/display" ] || { echo "no virtual screen starts here; the window is not tested"; exit 77; }
export DISPLAY=:$(cat "$work/display") HOME=$work XDG_CONFIG_HOME= XDG_STATE_HOME= QXMT_WINDOW_STATE=$state
export QT_QPA_PLATFORM=xcb

# until COMMAND...: the state fits, or half a minute has gone by
until_state() {
  local what=$1
  shift
  for _ in $(seq 300); do
    [ -s "$state" ] && "$@" && return 0
    kill -0 "$program" 2>/dev/null || fail "the program ended while waiting: $what"
    sleep 0.1
  done
  fail "$what"
}
says() { grep -q -- "$1" "$state"; }
view() { awk -v name="$1" '$1 == "view" && $2 == name { print $3, $4, $5, $6 }' "$state"; }

"$build/bin/qxmt" --no-module -w -c 'polyCube -n box -w 4 -h 4 -d 4; select -cl; viewFit -all; file -mf 0' \
  >"$work/out" 2>"$work/err" &
program=$!
until_state "the view shows" says "^view modelPanel4"
read -r x y w h <<<"$(view modelPanel4)"
[ "$w" -gt 300 ] && [ "$h" -gt 200 ] || fail "the view is ${w}x${h}"
middle="$((x + w / 2)) $((y + h / 2))"

xdotool mousemove $middle click 1
until_state "a click picks the box" says "^selected box"
xdotool key w mousemove $((x + w / 2 + 2)) $((y + h / 2))
xdotool key ctrl+z
until_state "Ctrl+Z takes the picking back" says "^selected *$"
xdotool mousemove $middle click 1
until_state "the box is picked again" says "^selected box"
xdotool key Delete
until_state "Delete takes the box away" says "^undo delete"
xdotool key ctrl+z
until_state "and undo brings it back" says "^selected box"
if [ -n "$pictures" ]; then
  import -window root "$pictures/window.png"
fi
# Unsaved work is asked for; without it the window goes at once.
xdotool key ctrl+q
until_dialog() { xdotool search --name "Unsaved changes" >/dev/null 2>&1; }
for _ in $(seq 100); do until_dialog && break; sleep 0.1; done
until_dialog || fail "unsaved work is not asked for"
dialog=$(xdotool search --name "Unsaved changes" | tail -1)
# Without a window manager the keys go where the pointer is.
for _ in $(seq 100); do
  kill -0 "$program" 2>/dev/null || break
  xdotool mousemove --window "$dialog" 20 12 windowfocus "$dialog" key alt+d 2>/dev/null || true
  [ -z "$pictures" ] || import -window root "$pictures/window-question.png" 2>/dev/null || true
  sleep 0.3
done
kill -0 "$program" 2>/dev/null && fail "the window does not go when its work may be dropped"
wait "$program" || fail "the window ended with status $?"
echo "the window picks, deletes, undoes and asks about unsaved work"
