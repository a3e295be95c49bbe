# Starts and ends the placement service and the simulated program; for the scripts that show Brimlet.
# Expects the machine file in $1, BRIMLET_BIN and BRIMLET_RUN_FOLDER.
# shellcheck shell=bash disable=SC2317 # functions called by way of an argument

machine=$1
out=$BRIMLET_RUN_FOLDER
service='' simulator=''

fail() {
  printf '%s: %s\n' "${BRIMLET_CALLER:-run}" "$*" >&2
  local log
  for log in service simulator; do
    if [ -s "$out/$log.log" ]; then sed "s/^/  $log: /" "$out/$log.log" >&2; fi
  done
  exit 1
}

stop() {
  end "$simulator"
  end "$service"
}
stop_simulator() {
  end "$simulator"
  simulator=''
}
# end PROCESS: ends the process if it runs; nothing for an empty number.
end() {
  if [ -n "$1" ] && kill "$1" 2>/dev/null; then
    kill -CONT "$1" 2>/dev/null || true # a stopped process handles the signal only then
    wait "$1" 2>/dev/null || true
  fi
}

# alive PROCESS
alive() { kill -0 "$1" 2>/dev/null; }

# within SECONDS COMMAND...: repeats the command until it succeeds; fails after that time.
within() {
  local deadline=$((SECONDS + $1))
  shift
  until "$@"; do
    [ "$SECONDS" -lt "$deadline" ] || return 1
    sleep 0.1
  done
}

# start_service ARGUMENT...: starts the service on a free port, and writes the machine file with its
# address.
start_service() {
  rm -f "$out/service.log" # of an earlier one
  "$BRIMLET_BIN/brimlet-placement" --port 0 --log "$out/requests.jsonl" "$@" \
    >"$out/service.log" 2>&1 &
  service=$!
  listening() { grep -q '^Listening on ' "$out/service.log"; }
  within 10 listening || fail "the placement service did not start"
  local root
  root=$(sed -n 's/^Listening on //p' "$out/service.log" | head -n 1)
  jq --arg root "$root" '.infoDictionary.BrimletAPIURL = $root' "$machine" >"$out/machine.json" ||
    fail "$machine is not a machine file"
  echo "service:   $root"
}

# start_simulator ARGUMENT...: starts the program on that machine.
start_simulator() {
  local program=$BRIMLET_BIN/brimlet-simulator
  # On a Mac it is in a bundle.
  [ -x "$program" ] || program=$BRIMLET_BIN/BrimletSimulator.app/Contents/MacOS/BrimletSimulator
  # Explicit, since a background process gets an empty standard input otherwise.
  "$program" --machine "$out/machine.json" "$@" \
    <&0 2>"$out/simulator.log" &
  simulator=$!
}
