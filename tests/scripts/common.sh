# shellcheck shell=bash
# Sourced by every script here: a temporary directory, gone at the end, and a way to fail.
set -euo pipefail
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  exit 1
}
