# Shared by the tests of the packages. A claim is a function of the test that is named by a sentence:
# two words or more, joined by underscores. Helpers are named by one word.
# shellcheck shell=bash

# The test itself, in whose folder this is read.
claims=$PWD/${0##*/}

# conclude: runs the test's claims in their order. One that fails shows its output, and one that is skipped
# its reason.
conclude() {
  local claim said status failed=0
  for claim in $(sed -nE 's/^([a-z]+(_[a-z]+)+)\(\) .*/\1/p' "$claims"); do
    status=0
    said=$("$claim" 2>&1) || status=$?
    if [ $status -eq 0 ]; then
      echo "PASS   : $claim"
    elif [ $status -eq 77 ]; then
      echo "$said ($claim)"
    else
      failed=$((failed + 1))
      echo "FAIL!  : $claim"
      [ -z "$said" ] || printf '    %s\n' "${said//$'\n'/$'\n    '}"
    fi
  done
  [ $failed -eq 0 ]
}

# skip REASON: with the exit code that CTest takes for a skipped test.
skip() {
  echo "SKIP   : $*"
  exit 77
}
