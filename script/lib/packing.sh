# Shared by the scripts that make packages: messages, and commands whose output is shown only if they
# fail.
# shellcheck shell=bash

fail() { printf '%s: %s\n' "${0##*/}" "$*" >&2; exit 1; }

started=$SECONDS
step() { printf '== %s (%d s)\n' "$*" $((SECONDS - started)); }

# quietly COMMAND...: its output goes to $log, and is printed if it fails.
log=$(mktemp)
trap 'rm -f "$log"' EXIT
quietly() { "$@" >"$log" 2>&1 || { cat "$log" >&2; fail "$1 failed"; }; }
