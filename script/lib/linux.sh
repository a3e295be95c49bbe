# Ends the script on any other system; for scripts whose tools need Linux.
# shellcheck shell=bash
[ "$(uname -s)" = Linux ] || { echo "${0##*/}: this needs Linux; docs/mac.md says what a Mac can do" >&2; exit 2; }
