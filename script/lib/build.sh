# Shared by the scripts that show Brimlet: installs what is missing and builds what they show.
# Expects `fail` and the project's folder as the current one.
# shellcheck shell=bash

# Quiet unless it fails.
build_programs() {
  script/bootstrap run
  mkdir -p build
  echo "building; the first time it takes a few minutes (build/programs.log)" >&2
  { cmake --preset dev && cmake --build --preset dev --parallel "$(getconf _NPROCESSORS_ONLN)" \
    --target brimlet-simulator brimlet-placement; } >build/programs.log 2>&1 ||
    { cat build/programs.log >&2; fail "the build failed"; }
  export BRIMLET_BIN=$PWD/build/dev/bin
}
