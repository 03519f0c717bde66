#!/usr/bin/env bash
# usage: scripts_usage.sh SCRIPTS_DIR
# What a script cannot do is told at once, in a sentence that names it, and before anything is installed or built.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
scripts=$1

# In a folder of their own, where there is nothing to install or build with: who tries is noticed.
mkdir "$tmp/scripts"
cp "$scripts"/* "$tmp/scripts/"
printf '#!/bin/sh\necho "set up" >>"%s/done"\n' "$tmp" | tee "$tmp/scripts/bootstrap" >"$tmp/scripts/build"
mkdir "$tmp/fuzz" && touch "$tmp/fuzz/some_fuzz.cpp" "$tmp/fuzz/Helper.cpp"

# refuses WORDS SCRIPT ARGUMENT...: with status 1 and a sentence that has these words.
refuses() {
  local words=$1 output status=0
  output=$("$tmp/scripts/$2" "${@:3}" 2>&1) || status=$?
  ((status == 1)) || fail "$* ends with status $status: $output"
  [[ $output == *"$words"* ]] || fail "$* does not tell '$words': $output"
  [[ ! -e $tmp/done ]] || fail "$* sets up before it refuses"
}

refuses "two numbers at most" soak 1 2 3
refuses "'x' is no number" soak x
refuses "'0' is no number" soak 1 0
refuses "'x' is no number of seconds" fuzz x
refuses "no target 'none_fuzz'" fuzz 1 none_fuzz
refuses "no target 'Helper'" fuzz 1 some_fuzz Helper
refuses "'--bogus' is no option" bench --benchmark_filter=send --bogus
refuses "no stage 'none'" test lint none
