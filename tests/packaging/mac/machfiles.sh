# Makes programs and libraries of a Mac, as its linker would, for the tests to look into. Expects a
# folder $scratch.
# shellcheck shell=bash
# shellcheck disable=SC2154 # the folder

mkdir -p "$scratch/link"
echo 'int main(void) { return 0; }' |
  clang-14 --target=arm64-apple-macos11 -x c -c - -o "$scratch/link/main.o"

# mach_file FILE OLDEST_SYSTEM LOOKS_IN LOADS...: a library that any other may load by
# /opt/homebrew/lib/NAME; without ".dylib" in its name, a program.
mach_file() {
  local kind=(-execute) stub=$scratch/link/stub.tbd name stubs=()
  [ "${1%.dylib}" = "$1" ] || kind=(-dylib -install_name "/opt/homebrew/lib/${1##*/}")
  for name in /usr/lib/libSystem.B.dylib "${@:4}"; do
    stub=$scratch/link/${#stubs[@]}.tbd
    printf '%s\n' '--- !tapi-tbd' 'tbd-version: 4' 'targets: [ arm64-macos ]' "install-name: '$name'" \
      'exports: [ { targets: [ arm64-macos ], symbols: [ dyld_stub_binder ] } ]' '...' >"$stub"
    stubs+=("$stub")
  done
  mkdir -p "$(dirname "$1")"
  ld64.lld-14 -arch arm64 -platform_version macos "$2" 26.0 "${kind[@]}" -rpath "$3" \
    "$scratch/link/main.o" "${stubs[@]}" -o "$1"
}
