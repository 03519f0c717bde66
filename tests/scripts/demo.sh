#!/usr/bin/env bash
# usage: demo.sh SOURCE_DIR BUILD_DIR
# The demo's picture is, to the frame, the last that the phone drew; no frame is lost on the way. The sound that it
# leaves behind is, sample by sample, what was sent, in both directions; touches and sensors have come through, and
# what stands beside the picture.
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

same() { "$programs/tests/scripts/sound_check" "$@" >/dev/null || fail "$1 is not what was sent"; }
tells() { grep -q "$1" "$tmp/car.jsonl" || fail "the car's record has no $1"; }

shows 0 --frames 1
shows 24 --frames 25 --fast --size 1280x720
shows 89 --frames 90 --sounds media
[[ $output != *' - '* && $output != *'-,'* && $output != *'- ms'* ]] || fail "a figure is missing: $output"
same "$tmp/sound.wav" tone 2
same "$tmp/microphone.wav" "$tmp/voice.wav" 1.5
(($("$programs/tests/scripts/picture_counter" "$tmp/screen.png" touches) > 0)) || fail "the screen shows no touch"
for figure in turns distances songs images_decoded accepted; do
  grep -Eq "\"$figure\": [1-9]" "$tmp/headunit.json" || fail "beside the picture there are no $figure"
done
for message in sensor_batch input_report; do tells "\"message\":\"$message\""; done
for field in speed_e3 latitude_e7 gear night_mode pointer_data; do tells "\"$field\":"; done

[[ $output == *"Its sound has not been played; it is in sound.wav."* ]] || fail "it does not tell of its sound: $output"

# in_window AUDIO_DRIVER WORDS: with a display, the demo says this of its sound, of which there is no file.
in_window() {
  output=$(DISPLAY=:0 SDL_VIDEODRIVER=dummy SDL_AUDIODRIVER=$1 "$demo" --programs "$programs" --out "$tmp" --frames 25 2>&1) ||
    fail "the demo with the sound device '$1': $output"
  [[ ! -e $tmp/sound.wav ]] || fail "a window and a file of its sound"
  [[ $output == *"$2"* ]] || fail "with the sound device '$1' it does not say '$2': $output"
}
in_window dummy 'Its sound has been played, and is in no file'
in_window none 'Its sound has not been heard, for want of a sound device'

if output=$("$demo" --headless --programs "$programs" --out "$tmp" --video "$tmp/phone.log" 2>&1); then
  fail "a file that is no video does not end the demo"
fi
[[ $output == *"the phone failed with exit status 1"* ]] || fail "it does not tell that the phone failed: $output"
