# Shared by the scripts that take minutes: says where they are and how long it took.
# shellcheck shell=bash

# seconds as m:ss
clock() { printf '%d:%02d' $(($1 / 60)) $(($1 % 60)); }

# begin_steps COUNT: before the first.
begin_steps() {
  steps=$1
  step=0
  times=
  SECONDS=0
  step_began=0
}
# end_step: notes how long it took.
end_step() {
  [ $step -eq 0 ] || times+="${times:+, }$step_name $(clock $((SECONDS - step_began)))"
}
# step NAME: ends the one before.
step() {
  end_step
  step=$((step + 1))
  step_name=$1
  step_began=$SECONDS
  printf '== %d/%d %s, after %s\n' "$step" "$steps" "$1" "$(clock $SECONDS)"
}
# passed WHAT: the last line.
passed() {
  end_step
  printf '%s: %s in %s (%s)\n' "${0##*/}" "$1" "$(clock $SECONDS)" "$times"
}
