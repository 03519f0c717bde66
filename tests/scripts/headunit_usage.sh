#!/usr/bin/env bash
# usage: headunit_usage.sh SOURCE_DIR BUILD_DIR
# What the example host cannot use it says first, in a line of its own, and ends with exit status 1.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source=$1 host=$2/apps/headunit/vantry-headunit good=$tmp/credentials
"$source/scripts/make-credentials" "$good"
mkdir "$tmp/empty" && echo 'no sound' >"$tmp/text" && printf '{"steps": [{"t_s": 0}]}' >"$tmp/drive.json"
# No look at what the machine has.
export SDL_VIDEODRIVER=none SDL_AUDIODRIVER=none

# refuses WORDS OPTION...: the first line that these options get has the words. A program that goes on is ended.
refuses() {
  local status=0
  timeout 20 "$host" "${@:2}" >"$tmp/out" 2>"$tmp/log" </dev/null || status=$?
  ((status == 1)) || fail "status $status after ${*:2}: $(cat "$tmp/log")"
  [[ $(head -n 1 "$tmp/log") == *"$1"* ]] || fail "not '$1' after ${*:2}: $(cat "$tmp/log")"
  [[ ! -s $tmp/out ]] || fail "after ${*:2} it says: $(cat "$tmp/out")"
}

refuses 'Cannot open a window' --credentials "$good"

refuses '--credentials is required'
refuses "root.pem: No such file or directory; scripts/make-credentials DIR makes" --headless --credentials "$tmp/empty"
refuses "root.pem: No such file or directory; scripts/make-credentials DIR makes" --headless --credentials "$tmp/none"
refuses 'root.pem: Not a directory' --headless --credentials "$tmp/text"

usable=(--headless --credentials "$good")
refuses 'drive cannot be used' "${usable[@]}" --drive "$tmp/none"
refuses 'Is a directory' "${usable[@]}" --drive "$tmp"
refuses 'more than 16 MiB, if it ends at all' "${usable[@]}" --drive /dev/zero
refuses 'more than 128 MiB, if it ends at all' "${usable[@]}" --microphone /dev/zero
refuses 'cannot be read as a WAVE file' "${usable[@]}" --microphone "$tmp/text"
for option in --stats --snapshot --audio-out; do
  refuses "Is a directory; choose another file with $option" "${usable[@]}" "$option" "$tmp"
  refuses "No such file or directory; choose another file with $option" "${usable[@]}" "$option" "$tmp/none/file"
done
refuses '--stats and --snapshot name one file' "${usable[@]}" --stats "$tmp/new" --snapshot "$tmp/empty/../new"
[[ ! -e $tmp/new ]] || fail "a file that is refused has been opened"

refuses 'is no HOST:PORT' "${usable[@]}" --listen 7411
refuses 'is no X,Y,EVERY_MS' "${usable[@]}" --touch 1,2
refuses "port 0 is nobody's" "${usable[@]}" --connect 127.0.0.1:0
refuses "leaves nothing of a picture of 800x480" "${usable[@]}" --margins 900x0
