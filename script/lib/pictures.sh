# Shared by the scripts that take pictures of the simulated program. Follows console.sh.
# shellcheck shell=bash
# shellcheck disable=SC2154 # $out and $simulator come from service.sh, $area from the script

scale=$BRIMLET_SESSION_SCALE
scenario=$out/scenario.json
mkdir -p "$out/pictures"

# pixels POINTS...: prints them in whole pixels of the screen.
pixels() { jq -nr '$ARGS.positional | map(tonumber * $scale | floor) | join(" ")' \
  --argjson scale "$scale" --args "$@"; }

# The ground of the pictures, and the service.
set_scene() {
  hsetroot -add '#9fb2c9' -add '#4a5a72' -gradient 0 >/dev/null
  echo '{}' >"$scenario"
  start_service --scenario "$scenario"
}

# photograph FILE: the area WIDTHxHEIGHT+X+Y in $area, only pixels, so that equal pictures are equal
# files.
photograph() {
  import -window root -crop "$area" +repage -strip -define png:exclude-chunks=date,time "$1"
}
is_at_rest() {
  photograph "$out/before.png"
  photograph "$out/after.png"
  cmp -s "$out/before.png" "$out/after.png"
}

# take NAME: once the screen stands still.
take() {
  within 10 is_at_rest || fail "$1: the screen does not come to rest"
  mv "$out/after.png" "$out/pictures/$1-${scale}x.png"
  echo "taken:     $1-${scale}x.png"
}

# enter NAME CONDITION CREATIVES [REST]: starts the program with these creatives, and REST of a
# scenario, and waits until its state meets the condition.
enter() {
  jq -n --argjson creatives "$3" --argjson rest "${4:-{\}}" '$rest + {creatives: $creatives}' \
    >"$scenario"
  stop_simulator
  start_simulator_with_console
  within 30 shows "$2" || fail "$1 was not reached; the program says: $(state | jq -c '{statusLine, panel, pills}')"
}
# shellcheck disable=SC2034 # for the scripts
both='(.pills | length) == 2'

# creative SLOT BRAND TAGLINE [NAME]: of a sample brand, whose picture and page it has.
creative() {
  jq -n '$ARGS.positional | {slotId: .[0], brandName: .[1], tagline: .[2]}
    + if .[3] then {assetUrl: "/assets/\(.[3]).png", brandUrl: "/brands/\(.[3])"} else {} end' \
    --args "$@"
}
