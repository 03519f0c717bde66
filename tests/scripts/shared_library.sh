#!/usr/bin/env bash
# usage: shared_library.sh LIBRARY PATH...
# The shared library has its soname, needs nothing beyond protobuf-lite, OpenSSL and the runtime, carries no
# run path, and holds none of the PATHs, under which it was built.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
library=$1
shift

dynamic=$(readelf -dW "$library")
grep -q 'SONAME.*\[libreceiver-lib\.so\.1\]' <<<"$dynamic" || fail "the soname is not libreceiver-lib.so.1"
! grep -E 'RPATH|RUNPATH' <<<"$dynamic" || fail "it carries a run path"

allowed='lib(protobuf-lite|ssl|crypto|stdc\+\+|m|gcc_s|c|pthread)\.so\.|ld-linux'
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic")
others=$(grep -vE "^($allowed)" <<<"$needed") && fail "it needs $others"
for name in libprotobuf-lite libssl libcrypto; do
  grep -q "^$name\.so" <<<"$needed" || fail "it does not name $name, which it uses"
done

for path; do
  ! strings -a "$library" | grep -m 3 -F "$path/" || fail "the path of the build stands in it"
done
