#!/usr/bin/env bash
# usage: make_credentials.sh MAKE_CREDENTIALS
# A set verifies, is kept while it is whole, and is renewed when it is not or when that is asked for.
set -euo pipefail
make=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  exit 1
}
root_now() { sha256sum <"$dir/root.pem"; }

"$make" "$dir"
for side in phone headunit; do
  openssl verify -CAfile "$dir/root.pem" "$dir/$side.pem" >/dev/null || fail "the $side's certificate does not verify"
  openssl x509 -in "$dir/$side.pem" -noout -checkend $((9 * 365 * 86400)) >/dev/null || fail "it ends within nine years"
  [[ $(stat -c %a "$dir/$side.key") == 600 ]] || fail "others may read the $side's key"
done
[[ $(find "$dir" -type f | wc -l) == 5 ]] || fail "the directory holds more than the five files"

first=$(root_now)
"$make" "$dir"
[[ $(root_now) == "$first" ]] || fail "a whole set was not kept"

cp "$dir/phone.key" "$dir/headunit.key"
"$make" "$dir"
second=$(root_now)
[[ $second != "$first" ]] || fail "a set with a key that does not match was kept"

"$make" --force "$dir"
[[ $(root_now) != "$second" ]] || fail "--force kept the set"

! "$make" 2>/dev/null || fail "it says nothing when no directory is named"
