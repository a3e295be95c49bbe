# Shared by the tests of the package: claims, each a function named after what it claims.
# shellcheck shell=bash

claims_failed=0

# claim FUNCTION: silent but for its name, unless it fails.
claim() {
  local said
  if said=$("$1" 2>&1); then
    echo "PASS   : $1"
  else
    claims_failed=$((claims_failed + 1))
    echo "FAIL!  : $1"
    [ -z "$said" ] || printf '    %s\n' "${said//$'\n'/$'\n    '}"
  fi
}

conclude() { [ $claims_failed -eq 0 ]; }

# skip REASON: as CTest is told by this exit code.
skip() {
  echo "SKIP   : $*"
  exit 77
}
