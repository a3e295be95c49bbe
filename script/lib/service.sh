# Shared by the scripts that show Brimlet: starting and ending the placement service and the
# simulated program. Expects the machine file as $1, BRIMLET_BIN and BRIMLET_RUN_FOLDER.
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
# end PROCESS: no matter whether it runs; empty for none.
end() {
  if [ -n "$1" ] && kill "$1" 2>/dev/null; then
    kill -CONT "$1" 2>/dev/null || true # a stopped one takes notice only then
    wait "$1" 2>/dev/null || true
  fi
}

# within SECONDS COMMAND...: tries until it succeeds or the time is up.
within() {
  local deadline=$((SECONDS + $1))
  shift
  until "$@"; do
    [ "$SECONDS" -lt "$deadline" ] || return 1
    sleep 0.1
  done
}

# Starts the service on a free port and writes the machine file that points to it; further arguments
# are the service's own.
start_service() {
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

# Starts the program; further arguments are its own.
start_simulator() {
  # Named, since a program in the background would get an empty input otherwise.
  "$BRIMLET_BIN/brimlet-simulator" --machine "$out/machine.json" "$@" \
    <&0 2>"$out/simulator.log" &
  simulator=$!
}
