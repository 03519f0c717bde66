#!/usr/bin/env bash
# usage: installed_consumer.sh BUILD_DIR CXX
# Installs the build into a temporary place, moves it, and builds and runs a host against what is there: by the
# CMake package, with log functions of its own and with the ready-made ones, and by pkg-config.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
build=$1 cxx=$2
here=$(cd "$(dirname "$0")" && pwd)

run() {
  "$@" >"$tmp/log" 2>&1 && return
  cat "$tmp/log" >&2
  fail "$1 $2 ..."
}

run cmake --install "$build" --prefix "$tmp/first"
mv "$tmp/first" "$tmp/moved"
prefix=$tmp/moved

for name in VantryReceiver.h shared_ptr.h protos.pb.h protos.proto; do
  [[ -f $prefix/include/receiver-lib/$name ]] || fail "include/receiver-lib/$name is not installed"
done
! grep -rn '#include *[<"]openssl/' "$prefix/include" || fail "a host would need OpenSSL's headers"

run cmake -S "$here/installed_consumer" -B "$tmp/build" -G Ninja \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_PREFIX_PATH="$prefix"
run cmake --build "$tmp/build"

[[ $("$tmp/build/with_own_log" | tail -n 1) == "[LHU] VTP Version : VTP_1.0_001_160829" ]] ||
  fail "the host's own log functions did not get the library's lines"
[[ $("$tmp/build/with_stderr_log" 2>&1 >/dev/null | tail -n 1) == "[LHU] VTP Version : VTP_1.0_001_160829" ]] ||
  fail "the ready-made log functions did not print the library's lines on stderr"

libdir=$(dirname "$(find "$prefix" -name libreceiver-lib.so)")
export PKG_CONFIG_PATH=$libdir/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs receiver-lib)"
run "$cxx" -std=c++17 "$here/installed_consumer/host.cpp" "$here/installed_consumer/own_log.cpp" "${flags[@]}" \
  -o "$tmp/by_pkg_config"
LD_LIBRARY_PATH=$libdir "$tmp/by_pkg_config" >/dev/null || fail "the host built by pkg-config does not run"
