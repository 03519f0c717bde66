#!/usr/bin/env bash
# usage: shared_library.sh LIBRARY PATH...
# The shared library has its soname, needs nothing beyond protobuf-lite, OpenSSL and the runtime, carries no
# run path, and holds none of the PATHs, under which it was built.
set -euo pipefail
library=$1
shift
fail=0

complain() {
  printf 'FAILED: %s\n' "$*" >&2
  fail=1
}

dynamic=$(readelf -dW "$library")
grep -q 'SONAME.*\[libreceiver-lib\.so\.1\]' <<<"$dynamic" || complain "the soname is not libreceiver-lib.so.1"
! grep -E 'RPATH|RUNPATH' <<<"$dynamic" || complain "it carries a run path"

allowed='lib(protobuf-lite|ssl|crypto|stdc\+\+|m|gcc_s|c|pthread)\.so\.|ld-linux'
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic")
others=$(grep -vE "^($allowed)" <<<"$needed") && complain "it needs" "$others"
for name in libprotobuf-lite libssl libcrypto; do
  grep -q "^$name\.so" <<<"$needed" || complain "it does not name $name, which it uses"
done

for path; do
  ! strings -a "$library" | grep -m 3 -F "$path/" || complain "the path of the build stands in it"
done
exit $fail
