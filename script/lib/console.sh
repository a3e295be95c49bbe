# Commands to the simulated program's console; for the scripts that read its state. Read after service.sh.
# shellcheck shell=bash
# shellcheck disable=SC2154 # $out and $simulator come from service.sh

# Starts the program with its console on descriptors 7 and 8.
start_simulator_with_console() {
  rm -f "$out/commands" "$out/answers"
  mkfifo "$out/commands" "$out/answers"
  # Opened for both reading and writing, so that opening does not wait for the other side.
  exec 7<>"$out/commands" 8<>"$out/answers"
  start_simulator --console <&7 >&8
}

running() { kill -0 "$simulator" 2>/dev/null; }

# Prints the program's answer, one line of JSON.
state() {
  local answer
  while read -t 0 -u 8 && read -r -t 1 -u 8 answer; do :; done # late answers to earlier commands
  echo state >&7
  IFS= read -r -t 2 -u 8 answer && printf '%s\n' "$answer"
}

# tell COMMAND: sends a command and expects it to succeed.
tell() {
  local answer=
  echo "$1" >&7
  IFS= read -r -t 2 -u 8 answer || true
  [ "$answer" = '{"ok":true}' ] || fail "\"$1\" was answered: $answer"
}

# shows CONDITION: whether a jq condition on the state holds. Fails when the program has ended.
shows() {
  running || fail "the program ended"
  [ "$(state | jq "$1")" = true ]
}

# The desktop's background in the pictures. One colour: a gradient starts again within a large screen.
set_background() { hsetroot -solid '#75869e' >/dev/null; }

# shellcheck disable=SC2034 # for the scripts
# find_window TITLE: sets $x, $y, $width and $height, in pixels of the screen. Not a window of
# one pixel: Qt gives such a helper window the program's name.
find_window() {
  local window
  # A line ends with WIDTHxHEIGHT+X+Y in its parent and +X+Y on the screen.
  window=$(xwininfo -root -tree | grep -F " \"$1\": " |
    sed -nE '/ 1x1\+/d; s/.* ([0-9]+)x([0-9]+)[-+0-9]+ +\+(-?[0-9]+)\+(-?[0-9]+)$/\1 \2 \3 \4/p' |
    head -n 1) || true # reported below
  [ -n "$window" ] || fail "the window $1 is not on the X server"
  read -r width height x y <<<"$window"
}
