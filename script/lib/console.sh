# Shared by the scripts that ask the simulated program what it shows. Follows service.sh.
# shellcheck shell=bash
# shellcheck disable=SC2154 # $out and $simulator come from service.sh

# Starts the program with its console at hand.
start_simulator_with_console() {
  rm -f "$out/commands" "$out/answers"
  mkfifo "$out/commands" "$out/answers"
  # Each both ways, so that neither side waits for the other to open it.
  exec 7<>"$out/commands" 8<>"$out/answers"
  start_simulator --console <&7 >&8
}

running() { kill -0 "$simulator" 2>/dev/null; }

# Prints the program's answer, one line of JSON.
state() {
  local answer
  while read -t 0 -u 8 && read -r -t 1 -u 8 answer; do :; done # late answers to earlier questions
  echo state >&7
  IFS= read -r -t 2 -u 8 answer && printf '%s\n' "$answer"
}

# tell COMMAND: has it done; the answer is that it is.
tell() {
  local answer=
  echo "$1" >&7
  IFS= read -r -t 2 -u 8 answer || true
  [ "$answer" = '{"ok":true}' ] || fail "\"$1\" was answered: $answer"
}

# shows CONDITION: a jq condition on the state holds. A program that ended fails.
shows() {
  running || fail "the program ended"
  [ "$(state | jq "$1")" = true ]
}
