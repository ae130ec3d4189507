#!/usr/bin/env bash
# Pictures of the window for docs/window.md: the real program on a virtual screen.
# usage: docs/scripts/window.sh [BINARY_DIR [FOLDER]]
set -euo pipefail
cd "$(dirname "$0")/../.."
source tests/window/lib.sh
folder=${2:-docs/images}
open_screen "${1:-build/release}" 1440x900
drawn() { awk '$1 == "looks" || $1 == "frames" { print $1, $2 }' "$state"; }
# shot NAME: once the window has nothing more to look at, and has drawn that.
shot() {
  local before quiet=0
  for _ in $(seq 200); do
    before=$(drawn)
    sleep 0.5
    [ "$(drawn)" = "$before" ] && quiet=$((quiet + 1)) || quiet=0
    [ $quiet -lt 4 ] || break
  done
  import -window root "$folder/$1.png"
  echo "$folder/$1.png"
}
fill_screen() {
  local main
  main=$(xdotool search --onlyvisible --name " - qxmt$" | tail -1)
  xdotool windowmove "$main" 0 0 windowsize "$main" 1440 900
  until_true "the window fills the screen" fills_screen
}
fills_screen() { [ "$(widget helpLine | awk '{ print ($2 > 860) }')" = 1 ]; }
scene() { start -c 'source "docs/scripts/windowScene.mel"' "$@" && fill_screen && focus_view && xdotool key 6; }
is_wide() { [ "$(widget uvPanelDock | cut -d' ' -f3)" -gt 600 ]; }
end_program() {
  kill "$program"
  wait "$program" 2>/dev/null || true
  program=0
}

# The toolkit's own windows, over a model with textures.
scene
xdotool key F2
until_prints "the toolkit's windows open" "^windows open"
until_says "and show" "^widget customUvWindow_QXMT "
shot window
end_program

# Four views.
scene
xdotool key space
until_says "four views" "^view modelPanel1"
shot window-views
end_program

# The UV panel, wide: pins, borders and stretch over squares; the table of hot keys.
scene -c 'qxmtDocsUvs'
read -r x y _ h <<<"$(widget uvPanelDock)"
xdotool mousemove $((x - 3)) $((y + h / 2)) mousedown 1 mousemove $((x - 200)) $((y + h / 2)) sleep 1 mousemove $((x - 420)) $((y + h / 2)) sleep 2 mouseup 1
until_true "the panel is wide" is_wide
read -r x y w _ <<<"$(widget uvPanelDock)"
xdotool mousemove $((x + w / 2)) $((y - 3)) mousedown 1 mousemove $((x + w / 2)) $((y - 100)) sleep 1 mousemove $((x + w / 2)) $((y - 260)) sleep 2 mouseup 1
focus_view
shot window-uvs
end_program
