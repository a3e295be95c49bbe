# Screenshots of the simulated program. Read after console.sh.
# shellcheck shell=bash
# shellcheck disable=SC2154 # $out and $simulator come from service.sh, $area from the script

scale=$BRIMLET_SESSION_SCALE
scenario=$out/scenario.json
mkdir -p "$out/pictures"

# pixels POINTS...: prints them in whole pixels.
pixels() { jq -nr '$ARGS.positional | map(tonumber * $scale | floor) | join(" ")' \
  --argjson scale "$scale" --args "$@"; }

# on_machine CHANGE: applies a jq filter to the machine file of the next program.
on_machine() {
  jq "$1" "$out/machine.json" >"$out/machine.new"
  mv "$out/machine.new" "$out/machine.json"
}

# Sets the background and starts the service.
set_scene() {
  set_background
  echo '{}' >"$scenario"
  start_service --scenario "$scenario"
}

# photograph FILE: saves the area WIDTHxHEIGHT+X+Y in $area, without metadata, so that equal pictures
# are equal files.
photograph() {
  import -window root -crop "$area" +repage -strip -define png:exclude-chunks=date,time "$1"
}
is_at_rest() {
  photograph "$out/before.png"
  photograph "$out/after.png"
  cmp -s "$out/before.png" "$out/after.png"
}

# take NAME: saves a picture once the screen has stopped changing.
take() {
  within 10 is_at_rest || fail "$1: the screen does not come to rest"
  mv "$out/after.png" "$out/pictures/$1-${scale}x.png"
  echo "taken:     $1-${scale}x.png"
}

# enter NAME CONDITION CREATIVES [REST]: starts the program with a scenario of these creatives and REST,
# and waits until its state meets the condition.
enter() {
  jq -n --argjson creatives "$3" --argjson rest "${4:-{\}}" '$rest + {creatives: $creatives}' \
    >"$scenario"
  stop_simulator
  start_simulator_with_console
  within 30 shows "$2" || fail "$1 was not reached; the program says: $(state | jq -c '{statusLine, panel, pills}')"
}
# shellcheck disable=SC2034 # for the scripts
both='(.pills | length) == 2'

# creative SLOT BRAND TAGLINE [NAME]: prints a creative, with picture and page of the sample brand NAME.
creative() {
  jq -n '$ARGS.positional | {slotId: .[0], brandName: .[1], tagline: .[2]}
    + if .[3] then {assetUrl: "/assets/\(.[3]).png", brandUrl: "/brands/\(.[3])"} else {} end' \
    --args "$@"
}

# The reply to a host who earns, with fixed figures, independent of the date.
figures='{"estimatedCents": 1234, "pendingStipendCents": 1500, "liveHostCount": 42,
  "liveDaysThisWeek": 3, "liveBucketsToday": 2, "agreed": true}'
# shellcheck disable=SC2034 # for the scripts
week=$(jq -n --argjson figures "$figures" '{endpoints: {
  "/api/host/me": {merge: $figures}, "/api/host/heartbeat": {merge: $figures}}}')
# shellcheck disable=SC2034 # for the scripts
earns='.statusLine | startswith("Ads on. This week")'

# with_token TOKEN CONDITION: saves the token and waits for the condition.
with_token() {
  tell "save-token $1"
  within 20 shows "$2" || fail "the state was not reached; the program says: $(state | jq -c .statusLine)"
}
