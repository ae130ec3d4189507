#!/usr/bin/env bash
# What goes wrong around a window: no display, no graphics, a window of one pixel, scripts that take away what they run in.
# usage: faults_test.sh BINARY_DIR
set -euo pipefail
source "$(dirname "$0")/lib.sh"
open_screen "$1"

# No display: a sentence and status 2.
code=0
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$build/bin/qxmt" --no-module -w >"$work/none" 2>&1 || code=$?
[ "$code" = 2 ] && grep -q "no display" "$work/none" || fail "without a display: status $code, $(cat "$work/none")"
code=0
DISPLAY=:4711 "$build/bin/qxmt" --no-module -w >"$work/none" 2>&1 || code=$?
[ "$code" = 2 ] && grep -q "display :4711 can't be opened" "$work/none" || fail "at a display that is none: status $code, $(cat "$work/none")"

# No GL that is new enough: the window comes, and its views say why they are empty.
MESA_GL_VERSION_OVERRIDE=2.1 start --no-module -c 'polyCube -n box; select -r box; file -mf 0'
until_says "the window shows without graphics" "^selected box"
until_says "its views say what they need" "^fault modelPanel4 .*OpenGL"
kill "$program"; wait "$program" 2>/dev/null || true

start -c 'polyCube -n box -w 4 -h 4 -d 4; viewFit -all; select -r box; file -mf 0' \
  -c "$(key_line j 'window -title gone gone; columnLayout; button -label kill -command "deleteUI gone; warning(\"deleted\")" killer; showWindow gone')" \
  -c "$(key_line k 'window many; columnLayout; for ($i = 0; $i < 10000; $i++) button -label ("b" + $i); showWindow many; warning("shown")')" \
  -c "$(key_line l 'deleteUI many; warning("hidden")')" \
  -c "$(key_line o 'file -f -new; polySphere -n ball; select -r ball; warning("opened")')" \
  -c "$(key_line p 'unloadPlugin -f qxModelingToolkit; warning("unloaded")')" \
  -c "$(key_line t 'setToolTo moveSuperContext; warning("tool")')" \
  -c "$(key_line n 'paneLayout -e -setPane modelPanel1 1 -setPane modelPanel4 2 -configuration "single" viewPanes')" \
  -c "$(key_line i 'modelingWindow_QXMT_Proc; uvWindow_QXMT_Proc; enterTool_QXMT_Proc("modelingContext")')" \
  -c "$(key_line m 'confirmDialog -title Middle -message "in a drag" -button Fine; warning("went on")')"

size_of() { awk '$1 == "view" && $2 == "modelPanel4" { print $5 }' "$state"; }
is_wider() { [ "$(size_of)" -gt "$1" ] 2>/dev/null; }
is_narrower() { [ "$(size_of)" -lt "$1" ] 2>/dev/null; }

# A script deletes the window that it runs in.
focus_view
xdotool key j
click killer
until_prints "the window is gone" "deleted"
until_true "and shows no more" silent "^widget killer"

# Ten thousand controls.
focus_view
xdotool key k
until_prints "ten thousand controls show" "shown"
focus_view
xdotool key l
until_prints "and go" "hidden"

# A modal dialog in the middle of a drag: it ends the drag where it is, as one step.
focus_view
xdotool key t
until_prints "the move tool" "tool"
# begin_drag: the middle button is down in the middle of the view, and has moved.
begin_drag() {
  read -r x y w h <<<"$(view modelPanel4)"
  xdotool mousemove $((x + w / 2)) $((y + h / 2)) mousedown 2 mousemove $((x + w / 2 + 40)) $((y + h / 2))
  until_says "the drag has begun" "^hand modelPanel4"
}
begin_drag
xdotool key m
until_modal "the dialog comes in the drag" ".*Middle"
until_true "and ends it" silent "^hand"
xdotool mouseup 2
click Fine
until_prints "and the script goes on" "went on"
until_says "what was dragged can be taken back" "^undo move"

# A panel closed in mid-gesture.
focus_view
xdotool key space
until_says "four views" "^view modelPanel1"
until_true "side by side" is_narrower 600
begin_drag
xdotool key n
until_true "the view that is dragged in goes" silent "^view modelPanel4"
until_true "and the drag with it" silent "^hand"
xdotool mousemove_relative 20 0 mouseup 2
until_says "what was dragged can be taken back" "^undo move"
focus_view modelPanel1
xdotool key space
until_true "its view comes back" is_narrower 600
focus_view
until_says "the pointer is over it" "^focus modelPanel4"
xdotool key space
until_true "alone" silent "^view modelPanel1"
until_true "and large" is_wider 600

# Another scene in the middle of a drag of a tool.
begin_drag
xdotool key o
until_prints "another scene while a tool is current" "opened"
xdotool mousemove_relative 20 0 mouseup 2
until_says "and it is there" "^selected ball"
until_true "with no button down" silent "^hand"

# The module goes with its windows open and its tool in hand; the scene stays.
focus_view
xdotool key i
until_says "the toolkit's windows are open" "^widget qx_modeling_ui "
until_says "and its tool is in hand" "^tool modeling"
focus_view
xdotool key p
until_prints "the module is unloaded" "unloaded"
until_says "its tool is gone" "^tool selectSuperContext"
until_says "the scene is as it was" "^selected ball"

# A window of one pixel, and one of five screens.
main=$(xdotool search --onlyvisible --name " - qxmt$" | tail -1)
xdotool windowsize "$main" 1 1
until_says "a window of one pixel" "^widget MayaWindow .* 1 1\$"
xdotool windowsize "$main" 9600 1080
until_true "a window of five screens draws" is_wider 8000
xdotool windowsize "$main" 1400 900
until_true "and is as before" is_narrower 1400
silent "^fault" || fail "a view says that it can't draw"

# After all this clicks and keys still reach the scene.
read -r x y w h <<<"$(view modelPanel4)"
xdotool windowfocus "$main" mousemove $((x + 5)) $((y + h / 2)) click 1
until_says "a click beside the ball" "^selected *$"
xdotool key ctrl+z
until_says "and back" "^selected ball"
kill -0 "$program" || fail "the program ended"
echo "what goes wrong around the window is told, and no scene is lost"
