# shellcheck shell=bash
# Sourced by every script here: where the project is, how to fail, how to be quiet.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# A script's help is the comment at its top.
help() {
  awk 'NR > 1 { if (!sub(/^# ?/, "")) exit; print }' "$0"
  exit 0
}

# quietly WHAT COMMAND...: runs it with its output in a log. If it fails, the log's end is shown without the lines
# that report success.
quietly() {
  local what=$1 log
  shift
  mkdir -p "$root/build/logs"
  log=$root/build/logs/${what// /-}.log
  "$@" >"$log" 2>&1 && return
  grep -vE '^\[[0-9]+/[0-9]+\] |^ *Start +[0-9]+:| Passed +[0-9]' "$log" | tail -n 100 >&2
  die "$what failed; the whole output is in ${log#"$root"/}"
}
