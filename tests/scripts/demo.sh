#!/usr/bin/env bash
# usage: demo.sh SOURCE_DIR BUILD_DIR
# The demo's picture is, to the frame, the last that the phone drew; no frame is lost on the way.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
demo=$1/scripts/demo programs=$2

# shows LAST OPTION...: a demo with these options ends with frame number LAST on the car's screen.
shows() {
  local counter
  output=$("$demo" --headless --programs "$programs" --out "$tmp" "${@:2}" 2>&1) || fail "the demo with ${*:2}: $output"
  counter=$("$programs/tests/scripts/picture_counter" "$tmp/screen.png") || fail "the screen cannot be read"
  [[ $counter == "$1" ]] || fail "the car shows frame $counter, and not $1, after ${*:2}"
  [[ $output == *" $(($1 + 1)) sent, $(($1 + 1)) decoded"* ]] || fail "not every frame was decoded: $output"
}

shows 0 --frames 1
shows 59 --frames 60 --fast
shows 24 --frames 25 --fast --size 1280x720
[[ $output != *' - '* ]] || fail "a figure is missing: $output"

if output=$("$demo" --headless --programs "$programs" --out "$tmp" --video "$tmp/phone.log" 2>&1); then
  fail "a file that is no video does not end the demo"
fi
[[ $output == *"the phone failed with exit status 1"* ]] || fail "it does not tell that the phone failed: $output"
