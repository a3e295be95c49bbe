# Read by the scripts whose tools are Linux's; ends them anywhere else.
# shellcheck shell=bash
[ "$(uname -s)" = Linux ] || { echo "${0##*/}: this needs Linux; docs/mac.md tells what a Mac can do" >&2; exit 2; }
