#!/usr/bin/env bash
# usage: assertions.sh SOURCE_DIR CXX
# The library and the records are compiled with assertions in every build type, also where the builder's own flags
# ask for none: the compiler is asked what it makes of each command's flags.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source=$1 cxx=$2

# commands_with OPTION...: the flags of each compilation, in all build types, every set of them once.
commands_with() {
  rm -rf "$tmp/build"
  cmake -S "$source" -B "$tmp/build" -G "Ninja Multi-Config" -DCMAKE_CONFIGURATION_TYPES="$types" \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_COMPILER_LAUNCHER= -DVANTRY_BUILD_APPS=OFF -DVANTRY_BUILD_TESTS=OFF \
    "$@" >"$tmp/log" 2>&1 ||
    { cat "$tmp/log" >&2; fail "cmake $*"; }
  sed -n 's/^ *"command": "[^ ]* \(.*\) -o [^ ]* -c [^ ]*",\?$/\1/p' "$tmp/build/compile_commands.json" | sort -u
}

# have_no_assertions FLAGS
have_no_assertions() {
  local flags macros
  read -ra flags <<<"${1//\\/}"
  macros=$("$cxx" "${flags[@]}" -dM -E -x c++ /dev/null) || fail "the compiler refuses $1"
  grep -qw NDEBUG <<<"$macros"
}

types="Debug;Release;RelWithDebInfo;MinSizeRel"
have_no_assertions -DNDEBUG || fail "it would not be seen where assertions are gone"
for options in "" -DNDEBUG; do
  commands=$(commands_with -DCMAKE_CXX_FLAGS="$options")
  for type in ${types//;/ }; do
    [[ $commands == *"CMAKE_INTDIR=\\\\\\\"$type"* ]] || fail "nothing is compiled in $type: $commands"
  done
  while read -r of_one; do
    ! have_no_assertions "$of_one" || fail "assertions are gone with $of_one"
  done <<<"$commands"
done
