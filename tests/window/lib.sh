# What the tests of the window share: a virtual screen, the program on it, and a hand. The program says in a file when all
# that was done has been looked at, so nothing here waits by the clock alone.
# usage: source lib.sh; open_screen BINARY_DIR [WIDTHxHEIGHT]; start ARGUMENTS...

open_screen() {
  build=$1
  local size=${2:-1500x950} tool
  for tool in Xvfb xdotool; do
    command -v $tool >/dev/null || { echo "there is no $tool; the window is not tested"; exit 77; }
  done
  [ -x "$build/bin/qxmtWindow" ] || { echo "this build has no window"; exit 77; }
  work=$(mktemp -d)
  state=$work/state
  program=0 screen=0
  trap clean_up EXIT
  exec 3<>"$work/display"
  Xvfb -displayfd 3 -screen 0 "${size}x24" >/dev/null 2>&1 3>&3 &
  screen=$!
  for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.1; done
  [ -s "$work/display" ] || { echo "no virtual screen starts here; the window is not tested"; exit 77; }
  DISPLAY=:$(cat "$work/display")
  export DISPLAY HOME=$work XDG_CONFIG_HOME= XDG_STATE_HOME= QXMT_WINDOW_STATE=$state QT_QPA_PLATFORM=xcb
}

clean_up() {
  [ "$program" = 0 ] || kill "$program" 2>/dev/null || true
  [ "$screen" = 0 ] || kill "$screen" 2>/dev/null || true
  rm -rf "$work"
}

fail() {
  echo "$(basename "$0"): $1"
  grep -v "^widget" "$state" 2>/dev/null
  tail -n 30 "$work/err" 2>/dev/null
  exit 1
}

# The program with these arguments, once its view shows.
start() {
  rm -f "$state"
  "$build/bin/qxmt" -w "$@" >"$work/out" 2>"$work/err" &
  program=$!
  until_says "the view shows" "^view modelPanel4"
}

# until_true WHAT COMMAND...: half a minute long.
until_true() {
  local what=$1
  shift
  for _ in $(seq 1500); do
    "$@" && return 0
    kill -0 "$program" 2>/dev/null || fail "the program ended while waiting: $what"
    sleep 0.02
  done
  fail "$what"
}
says() { [ -s "$state" ] && grep -q -- "$1" "$state"; }
until_says() { until_true "$1" says "$2"; }
silent() { ! says "$1"; }
prints() { grep -q -- "$1" "$work/out" "$work/err"; }
until_prints() { until_true "$1" prints "$2"; }

# key_line KEY MEL: binds a key to a script, in the words that start the program.
key_line() {
  local text
  text=$(sed 's/\\/\\\\/g; s/"/\\"/g' <<<"$2")
  printf 'nameCommand -c "%s" test_%s; hotkey -k "%s" -n "test_%s";' "$text" "$1" "$1" "$1"
}

# How often the window has looked at what was done.
looks() { awk '$1 == "looks" { print $2 }' "$state"; }
looked_since() { [ -s "$state" ] && [ "$(looks)" -gt "$1" ]; }

# until_modal WHAT PATTERN: a dialog waits, and keys go to it.
until_modal() {
  until_says "$1" "^modal $2"
  until_true "$1: keys go to it" keys_leave_main
}
# What the window believes of its focus may be ahead of the screen.
keys_leave_main() {
  silent "^focus modelPanel" && ! xdotool getwindowfocus getwindowname 2>/dev/null | grep -q " - qxmt$"
}

# Where a view or a widget is on the screen: its corner and its size.
view() { awk -v name="$1" '$1 == "view" && $2 == name { print $3, $4, $5, $6 }' "$state"; }
widget() { awk -v name="$1" '$1 == "widget" && $2 == name { print $3, $4, $5, $6; exit }' "$state"; }
# click NAME [BUTTON]: the middle of a widget.
click() {
  local x y w h
  until_says "there is a widget $1" "^widget $1 "
  read -r x y w h <<<"$(widget "$1")"
  xdotool mousemove $((x + w / 2)) $((y + h / 2)) click "${2:-1}"
}
# Keys go to what has the focus; there is no window manager that would give it.
focus_view() {
  local x y w h main
  main=$(xdotool search --onlyvisible --name " - qxmt$" 2>/dev/null | tail -1 || true)
  [ -z "$main" ] || xdotool windowfocus --sync "$main" 2>/dev/null || true
  read -r x y w h <<<"$(view "${1:-modelPanel4}")"
  xdotool mousemove $((x + w / 2)) $((y + 12))
}
# drag BUTTON X Y X Y: by steps (quarters of the way), as a hand does; from the upper left of the active view.
drag() {
  local button=$1 x0=$2 y0=$3 x1=$4 y1=$5 x y w h i
  read -r x y w h <<<"$(view modelPanel4)"
  xdotool mousemove $((x + x0)) $((y + y0)) mousedown "$button"
  for i in ${steps:-1 2 3 4}; do
    xdotool mousemove $((x + x0 + (x1 - x0) * i / 4)) $((y + y0 + (y1 - y0) * i / 4))
  done
  xdotool mouseup "$button"
}
has_ended() { ! kill -0 "$program" 2>/dev/null; }
until_ended() {
  for _ in $(seq 300); do has_ended && break; sleep 0.1; done
  has_ended || fail "the program does not end"
  status=0
  wait "$program" || status=$?
  program=0
}
