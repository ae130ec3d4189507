#!/usr/bin/env bash
# What real mouse events do in the window is, to the last digit, what the same gestures do by `viewGesture`: both scenes are
# saved and compared.
# usage: gestures_test.sh BINARY_DIR
set -euo pipefail
source "$(dirname "$0")/lib.sh"
open_screen "$1"

# The line that gives the scene, the same for both.
scene='file -f -new; polyPlane -n p -w 8 -h 8 -sx 8 -sy 8 -ch 0; move 0 0.5 0 p.vtx[40]; select -r p; viewFit -f 0.8 p; file -mf 0'

# compare NAME MEL_BEFORE WINDOW_GESTURES SCRIPT_GESTURES
compare() {
  local name=$1 before=$2 byHand=$3 byScript=$4 x y w h
  local module=${5:---no-module}
  start $module -c "polyCube"
  read -r x y w h <<<"$(view modelPanel4)"
  until_ended_by_quit
  # The view's size decides what the camera frames, so the scene is made for that size.
  local make="viewGesture -port $w $h modelPanel4; $scene; $before; file -rename \"$work/$name.ma\""
  start $module -c "$make"
  focus_view
  $byHand "$w" "$h"
  xdotool key ctrl+s
  until_true "$name: the scene is saved" test -s "$work/$name.ma"
  mv "$work/$name.ma" "$work/$name-hand.ma"
  until_ended_by_quit
  "$build/bin/qxmt" $module -c "$make; $($byScript "$w" "$h"); file -save -type mayaAscii" >"$work/script.out" 2>&1 ||
    { cat "$work/script.out"; fail "$name: the script fails"; }
  diff <(grep -vE '^//|rename -uid' "$work/$name-hand.ma") <(grep -vE '^//|rename -uid' "$work/$name.ma") >"$work/diff" ||
    { head -20 "$work/diff"; fail "$name: the hand and the script made different scenes"; }
  [ -z "${6:-}" ] || grep -qE "$6" "$work/$name.ma" || fail "$name: nothing was done"
}
until_ended_by_quit() {
  kill "$program" 2>/dev/null || true
  wait "$program" 2>/dev/null || true
  program=0
}
# script_drag FLAGS HEIGHT X Y X Y: what drag() does, for viewGesture, which counts from the lower left.
script_drag() {
  local flags=$1 h=$2 x0=$3 y0=$4 x1=$5 y1=$6 i line
  line="viewGesture $flags -press $x0 $((h - 1 - y0)) modelPanel4"
  for i in ${steps:-1 2 3 4}; do
    line+="; viewGesture -drag $((x0 + (x1 - x0) * i / 4)) $((h - 1 - (y0 + (y1 - y0) * i / 4))) modelPanel4"
  done
  echo "$line; viewGesture -release $x1 $((h - 1 - y1)) modelPanel4"
}

# The move tool's middle button drags what is selected.
move_hand() {
  xdotool key w
  until_says "the move tool" "^tool moveSuperContext"
  drag 2 $(($1 / 2)) $(($2 / 2)) $(($1 / 2 + 84)) $(($2 / 2 - 40))
  until_says "the plane is moved" "^undo move"
}
move_script() { echo "setToolTo moveSuperContext; $(script_drag "-button 2" "$2" $(($1 / 2)) $(($2 / 2)) $(($1 / 2 + 84)) $(($2 / 2 - 40)))"; }
compare move "" move_hand move_script --no-module 'setAttr "\.t"'

# Faces picked by a frame, and the camera turned with Alt: in one step, since a screen may join those of a hand, and a turn in
# two is another one in its last digit.
steps=4
frame_hand() {
  xdotool key q
  until_says "the select tool" "^tool selectSuperContext"
  drag 1 $(($1 / 2 - 60)) $(($2 / 2 - 40)) $(($1 / 2 + 70)) $(($2 / 2 + 50))
  until_says "faces are picked" "^selected p.f"
  xdotool keydown alt
  drag 1 200 200 260 230
  xdotool keyup alt
  xdotool key Delete
  until_says "and deleted" "^undo delete"
}
frame_script() {
  echo "setToolTo selectSuperContext; $(script_drag "-button 1" "$2" $(($1 / 2 - 60)) $(($2 / 2 - 40)) $(($1 / 2 + 70)) $(($2 / 2 + 50))); $(script_drag "-button 1 -alt 1" "$2" 200 200 260 230); viewGesture -alt 0 modelPanel4; delete"
}
compare frame 'selectMode -component; selectType -allComponents 0; selectType -facet 1; hilite p' frame_hand frame_script --no-module
echo "hands and scripts make the same scenes"
