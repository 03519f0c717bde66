#!/usr/bin/env bash
# usage: make_credentials.sh MAKE_CREDENTIALS
# A set verifies, is kept while it is whole, and is renewed when it is not or when that is asked for.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
make=$1
root_now() { sha256sum <"$tmp/root.pem"; }

"$make" "$tmp"
for side in phone headunit; do
  openssl verify -CAfile "$tmp/root.pem" "$tmp/$side.pem" >/dev/null || fail "the $side's certificate does not verify"
  openssl x509 -in "$tmp/$side.pem" -noout -checkend $((9 * 365 * 86400)) >/dev/null || fail "it ends within nine years"
  [[ $(stat -c %a "$tmp/$side.key") == 600 ]] || fail "others may read the $side's key"
done
[[ $(find "$tmp" -type f | wc -l) == 5 ]] || fail "the directory holds more than the five files"

first=$(root_now)
"$make" "$tmp"
[[ $(root_now) == "$first" ]] || fail "a whole set was not kept"

cp "$tmp/phone.key" "$tmp/headunit.key"
"$make" "$tmp"
second=$(root_now)
[[ $second != "$first" ]] || fail "a set with a key that does not match was kept"

"$make" --force "$tmp"
[[ $(root_now) != "$second" ]] || fail "--force kept the set"

! "$make" 2>/dev/null || fail "it says nothing when no directory is named"
! "$make" "$tmp" "$tmp/other" 2>/dev/null || fail "it forgets one of two directories"
