# Shared by the tests of this directory, which source it.
# shellcheck shell=bash
set -euo pipefail
unset VORQUIL_TASKNAME VORQUIL_INPUTNAME VORQUIL_STRUCID

scratch=$(realpath "$(mktemp -d)")
trap 'rm -rf "$scratch"' EXIT

# Skips the test, with a message, unless all these commands exist.
require() { # COMMAND...
  local command
  for command; do
    if ! command -v "$command" >/dev/null; then
      echo "skipped: $command is not installed"
      exit 77
    fi
  done
}

fail() {
  printf 'failed: %s\n' "$*" >&2
  exit 1
}

expect_equal() { # WHAT EXPECTED ACTUAL
  [[ $2 == "$3" ]] || fail "$(printf '%s\nexpected: %q\ngot:      %q' "$1" "$2" "$3")"
}
