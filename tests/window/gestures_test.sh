#!/usr/bin/env bash
# What real mouse events do in the window is, to the last digit, what the same gestures do by `viewGesture`: both scenes are
# saved and compared. Each gesture is written once, as acts; `hand` does them with the mouse, `script` writes their MEL.
# usage: gestures_test.sh BINARY_DIR
set -euo pipefail
source "$(dirname "$0")/lib.sh"
open_screen "$1"

# compare NAME MEL_BEFORE ACTS PATTERN [ARGUMENTS]: PATTERN is on a line that the acts add to the scene.
compare() {
  local name=$1 before=$2 acts=$3 pattern=$4 make
  shift 4
  # What the camera frames depends on the view's size, so the scene is made for that size.
  make="viewGesture -port $W $H modelPanel4; file -f -new; $before; file -mf 0; file -rename \"$work/$name.ma\""
  start "$@" -c "$make"
  focus_view
  road=hand $acts
  focus_view
  xdotool key ctrl+s
  until_true "$name: the scene is saved" test -s "$work/$name.ma"
  mv "$work/$name.ma" "$work/$name-hand.ma"
  quit_program
  road=script $acts >"$work/$name.mel"
  "$build/bin/qxmt" "$@" -c "$make; $(cat "$work/$name.mel"); file -save -type mayaAscii" >"$work/script.out" 2>&1 ||
    { cat "$work/script.out"; fail "$name: the script fails"; }
  diff <(body "$work/$name-hand.ma") <(body "$work/$name.ma") >"$work/diff" ||
    { head -20 "$work/diff"; fail "$name: the hand and the script made different scenes"; }
  cp "$work/$name.ma" "$work/$name-after.ma"
  "$build/bin/qxmt" "$@" -c "$make; file -save -type mayaAscii" >"$work/script.out" 2>&1
  diff <(body "$work/$name.ma") <(body "$work/$name-after.ma") >"$work/diff" || true
  grep -qE -- "^> .*$pattern" "$work/diff" || { head -20 "$work/diff"; fail "$name: the gestures did something else"; }
  rm "$work/$name"*
}
body() { grep -vE '^//|rename -uid' "$1"; }
quit_program() {
  kill "$program" 2>/dev/null || true
  wait "$program" 2>/dev/null || true
  program=0
}

# The acts. Places count from the view's upper left corner, as a screen's do; those of viewGesture from the lower left.
# stroke BUTTON MODIFIERS X Y [X Y]...: a press at the first place, a drag to the others, a release at the last.
stroke() {
  local button=$1 modifiers=$2 x y i vx vy flags="-button $1 -shift 0 -control 0 -alt 0" looked
  shift 2
  local places=("$@")
  if [ "$road" = script ]; then
    for i in $modifiers; do flags=${flags/-${i/ctrl/control} 0/-${i/ctrl/control} 1}; done
    echo "viewGesture $flags -press $1 $((H - 1 - $2)) modelPanel4;"
    for ((i = 2; i < ${#places[@]}; i += 2)); do
      echo "viewGesture -drag ${places[i]} $((H - 1 - places[i + 1])) modelPanel4;"
    done
    echo "viewGesture -release ${places[i - 2]} $((H - 1 - places[i - 1])) modelPanel4;"
    return
  fi
  read -r vx vy _ _ <<<"$(view modelPanel4)"
  for i in $modifiers; do xdotool keydown "$i"; done
  xdotool mousemove $((vx + $1)) $((vy + $2)) mousedown "$button"
  for ((i = 2; i < ${#places[@]}; i += 2)); do
    # A screen may join the movements of a fast hand: the next one waits until this one has been looked at.
    looked=$(looks)
    xdotool mousemove $((vx + places[i])) $((vy + places[i + 1]))
    until_true "the movement is seen" looked_since "$looked"
  done
  looked=$(looks)
  xdotool mouseup "$button"
  for i in $modifiers; do xdotool keyup "$i"; done
  until_true "the release is seen" looked_since "$looked"
}
# line BUTTON MODIFIERS X Y X Y: a stroke in quarters of the way.
line() {
  local i places=()
  for i in 1 2 3 4; do places+=($(($3 + ($5 - $3) * i / 4)) $(($4 + ($6 - $4) * i / 4))); done
  stroke "$1" "$2" "$3" "$4" "${places[@]}"
}
# strike KEY MEL TOLD: a key, what it does as MEL, and what the window says then.
strike() {
  [ "$road" = hand ] || { echo "$2;"; return; }
  xdotool key "$1"
  until_says "$1 did its work" "$3"
}
# press_control NAME: a button of a script's window. type_number NAME NUMBER: a field of one, left with Return.
press_control() {
  [ "$road" = hand ] || { echo "uiGesture -press $1;"; return; }
  local looked
  looked=$(looks)
  click "$1"
  until_true "$1 is pressed" looked_since "$looked"
}
type_number() {
  [ "$road" = hand ] || { echo "uiGesture -set $2 $1;"; return; }
  local looked
  click "$1"
  until_says "keys go to $1" "^focus $1\$"
  looked=$(looks)
  xdotool key ctrl+a
  xdotool type "$2"
  xdotool key Return
  until_true "$2 is typed" looked_since "$looked"
}
# Leaves the tool, and with it what it shows under a pointer that only the hand has left in the view.
leave_tool() { strike q "setToolTo selectSuperContext" "^tool selectSuperContext"; }
# Pixels of a place in centimetres in the top view that is 12 cm wide, hundredths taken.
px() { echo $((W / 2 + $1 * W / 1200)); }
py() { echo $((H / 2 + $1 * W / 1200)); }

start --no-module -c polyCube
read -r _ _ W H <<<"$(view modelPanel4)"
quit_program

plane='polyPlane -n p -w 8 -h 8 -sx 8 -sy 8 -ch 0; move 0 0.5 0 p.vtx[40]; select -r p; viewFit -f 0.8 p'
above='lookThru modelPanel4 top; setAttr topShape.orthographicWidth 12'

move_acts() {
  strike w "setToolTo moveSuperContext" "^tool moveSuperContext"
  line 2 "" $((W / 2)) $((H / 2)) $((W / 2 + 84)) $((H / 2 - 40))
}
compare move "$plane" move_acts 'setAttr "\.t"' --no-module

frame_acts() {
  strike q "setToolTo selectSuperContext" "^tool selectSuperContext"
  line 1 "" $((W / 2 - 60)) $((H / 2 - 40)) $((W / 2 + 70)) $((H / 2 + 50))
  line 1 alt 200 200 260 230
  line 1 shift $((W / 2 - 90)) $((H / 2 - 70)) $((W / 2 - 20)) $((H / 2 - 10))
  strike Delete "delete" "^undo delete"
}
compare frame "$plane; selectMode -component; selectType -allComponents 0; selectType -facet 1; hilite p" frame_acts 'deleteComponent' --no-module

# The modelling tool: a click picks, and the middle button with Shift and Ctrl bevels edges and extrudes faces.
toolkit="polyPlane -n p -w 6 -h 6 -sx 6 -sy 6 -ch 0; $above; modelingWindow_QXMT_Proc; checkBox -e -v 0 mirror_QXMT_CB; optionChanged_QXMT_Proc"
bevel_acts() {
  stroke 1 "" "$(px 50)" "$(py 0)"
  stroke 1 shift "$(px 150)" "$(py 0)"
  line 2 "shift ctrl" "$(px 60)" "$(py 40)" "$(px 130)" "$(py 80)"
  leave_tool
}
compare bevel "$toolkit; doMenuComponentSelection(\"p\", \"edge\"); select -cl; enterTool_QXMT_Proc(\"modelingContext\")" bevel_acts 'createNode polyBevel '
extrude_acts() {
  stroke 1 "" "$(px 50)" "$(py 50)"
  line 1 "" "$(px 150)" "$(py 50)" "$(px 150)" "$(py 250)"
  line 2 "shift ctrl" "$(px 60)" "$(py 40)" "$(px 20)" "$(py 10)"
  leave_tool
}
compare extrude "$toolkit; doMenuComponentSelection(\"p\", \"facet\"); select -cl; enterTool_QXMT_Proc(\"modelingContext\")" extrude_acts 'createNode polyExtrudeFace'

# Quad draw: six points on a live surface, and two quads that share a side.
quad_acts() {
  local x y
  for y in -110 70; do
    for x in -170 10 190; do stroke 1 "" "$(px $x)" "$(py $y)"; done
  done
  stroke 1 shift "$(px -80)" "$(py -20)"
  stroke 1 shift "$(px 100)" "$(py -20)"
  leave_tool
}
compare quads "$toolkit; rename p ground; select -r ground; loadSlideObject_QXMT_Proc; optionChanged_QXMT_Proc; select -cl; enterTool_QXMT_Proc(\"quadDrawContext\")" quad_acts 'createNode mesh -n "(poly|quad)'

# Seams: painted along edges with the middle button, and taken away from one again with Ctrl.
seam_acts() {
  local x places=()
  for x in -250 -150 -50 50 150; do places+=("$(px $x)" "$(py 0)"); done
  stroke 2 "" "${places[@]}"
  stroke 2 ctrl "$(px -150)" "$(py 0)" "$(px -145)" "$(py 1)"
  leave_tool
}
compare seams "$toolkit; select -r p; qxLoadUvObjectForMarking -loadType \"load\"; enterTool_QXMT_Proc(\"uvSelectContext\")" seam_acts 'qxuvMarkedEdgeArray" -type "Int32Array" [1-9]'

# The toolkit's buttons and fields.
button_acts() {
  press_control qxStraightenCmd_Straighten_QXMT_B
  type_number uvRatio_QXMT_FF 2.5
  press_control uvRatio_QXMT_B
}
compare buttons "$toolkit; uvWindow_QXMT_Proc; window -e -topLeftCorner 20 460 customUvWindow_QXMT; move -r 0 0.7 0.3 p.vtx[22] p.vtx[25]; select -r p.vtx[21:27]" button_acts 'qxStraighten|createNode poly'
echo "hands and scripts make the same scenes"
