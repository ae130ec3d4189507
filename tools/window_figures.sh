#!/usr/bin/env bash
# Figures of the window for docs/performance.md: the real program on a virtual screen, on the software renderer. Clock times
# of a machine with other work are upper bounds; CPU times stand beside them.
# usage: [SIDES="100 316 1000"] [SAMPLES=12] tools/window_figures.sh [BINARY_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
source tests/window/lib.sh
open_screen "${1:-build/release}" 1440x900

milliseconds() { echo $(($(date +%s%N) / 1000000)); }
cpu() { awk '{ print ($14 + $15) * 10 }' "/proc/$program/stat"; }  # milliseconds, of all threads
memory() { awk '/^VmRSS/ { printf "%d", $2 / 1024 }' "/proc/$program/status"; }
frame() { awk '$1 == "view" { v = $2 } $1 == "frames" && v == "modelPanel4" { print $2, $3, $4 }' "$state"; }
has_frame() { [ -s "$state" ] && [ "$(frame | cut -d' ' -f1)" -gt "$1" ] 2>/dev/null; }
end_program() { kill "$program"; wait "$program" 2>/dev/null || true; program=0; }

begin=$(milliseconds)
start -c 'file -mf 0'
until_true "the first picture" has_frame 0
echo "start to the first picture, with the toolkit: $(($(milliseconds) - begin)) ms by the clock, $(cpu) ms CPU, $(memory) MB"
sleep 1
before=$(cpu)
sleep 10
echo "at rest: $(($(cpu) - before)) ms CPU in 10 s"
end_program

start -c "$(key_line j modelingWindow_QXMT_Proc)"
focus_view
sleep 1
before=$(cpu) begin=$(milliseconds)
xdotool key j
until_says "the toolkit's window" "^widget qx_modeling_ui "
echo "opening the toolkit's window: $(($(milliseconds) - begin)) ms by the clock, $(($(cpu) - before)) ms CPU"
end_program

samples=${SAMPLES:-12}
for side in ${SIDES:-100 316 1000}; do
  start -c "polyPlane -n p -w 10 -h 10 -sx $side -sy $side -ch 0; select -r p; viewFit -all; setToolTo moveSuperContext; file -mf 0" \
    -c "$(key_line j 'hilite p; select -r p.vtx[0:9999]; setToolTo moveSuperContext')" \
    -c "$(key_line k 'select -cl; hilite p; selectMode -component; selectType -allComponents 0; selectType -facet 1; select -cl; enterTool_QXMT_Proc("modelingContext")')"
  until_true "a picture" has_frame 0
  sleep 2
  echo "$((side * side)) faces: $(memory) MB"
  focus_view
  read -r x y w h <<<"$(view modelPanel4)"
  for what in drag hover; do
    if [ $what = drag ]; then
      xdotool key j
      until_says "vertices are selected" "^selected p.vtx"
      xdotool mousemove $((x + w / 2)) $((y + h / 2)) mousedown 2
    else
      xdotool key k
      until_says "the modelling tool" "^tool modeling"
    fi
    sleep 1
    times='' pictures=''
    for i in $(seq "$samples"); do
      count=$(frame | cut -d' ' -f1)
      xdotool mousemove $((x + w / 2 + 7 * i)) $((y + h / 2 + 3 * i))
      for _ in $(seq 3000); do has_frame "$count" && break; sleep 0.02; done
      times+="$(frame | cut -d' ' -f3) " pictures+="$(frame | cut -d' ' -f2) "
    done
    [ $what = hover ] || xdotool mouseup 2
    middle() { tr ' ' '\n' <<<"$1" | grep . | sort -g | sed -n $(((samples + 1) / 2))p; }
    echo "  $what: $(middle "$times") ms from the hand to the screen, of that the picture $(middle "$pictures") ms (medians of $samples)"
  done
  end_program
done
