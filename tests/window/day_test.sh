#!/usr/bin/env bash
# A person's day with the toolkit: its buttons, a field, the undo list, the menus, UVs, and work saved under a name when the
# window closes.
# usage: day_test.sh BINARY_DIR
set -euo pipefail
source "$(dirname "$0")/lib.sh"
open_screen "$1"

start -c 'polyPlane -n p -w 6 -h 6 -sx 6 -sy 6 -ch 0; viewFit -all; select -cl; modelingWindow_QXMT_Proc; window -e -topLeftCorner 70 770 qx_modeling_ui; file -mf 0' \
  -c "$(key_line j 'select -r p.vtx[21:27]; move -r 0 0.7 0 p.vtx[23]; warning("ready")')" \
  -c "$(key_line k 'float $p[] = `pointPosition p.vtx[23]`; warning("height " + $p[1]); warning("intensity " + `intField -q -v intensity_QXMT_IF`)')" \
  -c "$(key_line l 'string $s[] = `ls p p1`; warning("objects " + size($s))')"
focus_view
xdotool key j
until_prints "a vertex is lifted" "ready"
click qxStraightenCmd_Straighten_QXMT_B
until_says "the button runs the command" "^undo straighten_QXMT_Proc"
click intensity_QXMT_IF
until_says "the field has the keys" "^focus intensity_QXMT_IF"
xdotool key ctrl+a
xdotool type 42
xdotool key Tab
until_true "Tab goes on to the next control" silent "^focus intensity_QXMT_IF"
focus_view
xdotool key k
until_prints "the command straightened" "height [-0]"
until_prints "and the field has what was typed" "intensity 42"

# The undo list: its last row is the straightening; a click on the one before takes that back.
read -r x y w h <<<"$(widget undoList)"
steps_of() { grep -c . <<<"$1"; }
xdotool mousemove $((x + 30)) $((y + 24)) click 1
until_says "a click in the list takes steps back" "^undo select -r p.vtx"
focus_view
xdotool key k
until_prints "the vertex stands as before" "height 0.[67]"

# A menu of the window by its keys, and a name typed into its dialog.
xdotool key ctrl+shift+s
until_modal "a name is asked for" ".*Save As"
xdotool type "$work/day.ma"
xdotool key Return
until_true "the scene is saved" test -s "$work/day.ma"
until_true "and the dialog gone" silent "^modal"
grep -q 'createNode mesh -n "pShape"' "$work/day.ma" || fail "the scene is not what was saved"

# Unsaved work: Cancel stays, Save keeps it.
focus_view
xdotool key ctrl+d
until_says "a copy" "^undo duplicate"
focus_view
xdotool key ctrl+q
until_modal "unsaved work is asked for" ".*Unsaved changes"
xdotool key Escape
until_true "Escape stays" silent "^modal"
focus_view
xdotool key l
until_prints "with the work in place" "objects 2"
focus_view
xdotool key ctrl+q
until_modal "it is asked for again" ".*Unsaved changes"
xdotool key alt+s
until_ended
[ "$status" = 0 ] || fail "the window ended with status $status"
grep -q 'createNode mesh -n "pShape1"' "$work/day.ma" || fail "the copy was not saved"

# What was damaged of the preferences is put aside, with a word; what a broken table of keys says is passed over.
settings=$(find "$work" -name preferences.mel | head -1)
[ -n "$settings" ] || fail "no preferences were kept"
printf 'optionVar -iv "broken' >"$settings"
start --no-module -c 'polyCube -n box; select -r box; file -mf 0'
until_says "the window opens all the same" "^selected box"
until_prints "and says what it put aside" "put aside"
echo "the toolkit, the undo list, saving and preferences do what a person expects"
