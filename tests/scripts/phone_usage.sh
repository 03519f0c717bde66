#!/usr/bin/env bash
# usage: phone_usage.sh SOURCE_DIR BUILD_DIR
# Wrong usage of the phone simulator ends at once, with status 1, a sentence on stderr, and every file as it was.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source=$1 phone=$2/apps/phone/vantry-phone
"$source/scripts/make-credentials" "$tmp/credentials"
cd "$tmp"
nobody=127.0.0.1:1
printf kept >kept
ln -s kept link
mkdir folder

# refuses SENTENCE ARGUMENT...
refuses() {
  local sentence=$1 status=0
  shift
  "$phone" "$@" >out 2>log || status=$?
  ((status == 1)) || fail "status $status of $*: $(cat log)"
  grep -qF -- "$sentence" log || fail "of $* is told: $(cat log)"
  [[ ! -s out ]] || fail "$* has begun: $(cat out)"
  [[ $(cat kept) == kept ]] || fail "$* has written over a file"
}

# A port that is in use.
exec {output}< <(exec "$phone" --listen 127.0.0.1:0 2>"$tmp/holder")
holder=$!
trap 'kill "$holder" 2>/dev/null || true; rm -rf "$tmp"' EXIT
read -r -t 20 line <&"$output" || fail "the phone does not listen: $(cat "$tmp/holder")"
taken=${line#listening on }
for command in "" verify "--scenario radio"; do
  # shellcheck disable=SC2086  # words of a command
  refuses "cannot listen on $taken: Address already in use" $command --listen "$taken"
done
refuses "cannot listen on $taken" --listen "$taken" --stats kept

# One file for two purposes.
refuses '--stats and --record name one file' --connect $nobody --stats kept --record link
refuses '--record and --microphone name one file' --connect $nobody --record new --microphone ./new
refuses '--stats and --video name one file' --connect $nobody --stats link --video kept
refuses '--stats and --credentials name one file' --connect $nobody --stats credentials/phone.key
refuses '--junit and --html name one file' verify --connect $nobody --junit kept --html folder/../kept
refuses '--html and --credentials name one file' verify --connect $nobody --html credentials/root.pem

# A place that cannot be written.
refuses 'cannot write folder: Is a directory; name another file with --junit' \
  verify --connect $nobody --junit folder --html kept
refuses 'cannot write no/such.html: No such file or directory; name another file with --html' \
  verify --connect $nobody --junit kept --html no/such.html
refuses 'cannot write kept/stats.json: Not a directory; name another file with --stats' \
  --connect $nobody --stats kept/stats.json
refuses 'cannot write folder: Is a directory; name another file with --record' \
  --connect $nobody --stats kept --record folder
refuses 'cannot write folder: Is a directory; name another file with --microphone' \
  --connect $nobody --stats kept --microphone folder
mkfifo pipe
refuses 'cannot write pipe: nobody is there to read it; name another file with --record' \
  --connect $nobody --stats kept --record pipe
[[ ! -e new ]] || fail "a file was made"

# Values that are none.
refuses '"foo" is not HOST:PORT' --connect foo
refuses 'names no port' --connect 127.0.0.1:0
refuses '"640x480" is not 800x480, 1280x720 or 1920x1080' --connect $nobody --size 640x480
refuses '"30.5" is no whole number from 1 to 120' --connect $nobody --fps 30.5
refuses 'not expected: --bogus' --bogus
refuses 'not expected: --bogus' verify --bogus
refuses 'not expected: --bogus' --bogus --scenario radio
refuses '--connect' --fast
refuses '"29.97" is no whole number from 1 to 120' --connect $nobody --fps 29.97
refuses '"-1" is no number of frames' --connect $nobody --frames -1
refuses '"loud" is none of media, guidance, system, telephony and none' --connect $nobody --sounds loud
refuses 'none stands alone' --connect $nobody --sounds none,media
refuses '--stats: a name is missing before --verbose' --connect $nobody --stats --verbose
refuses '--video: the name is empty' --connect $nobody --video ''
refuses 'no check has a name that begins with "lnk."' verify --connect $nobody --only link. lnk.
refuses '--scenario needs the name' --connect $nobody --scenario
refuses 'has to tell where the head unit is' --scenario radio

# Credentials and scenarios that are none.
refuses 'cannot read folder/root.pem: No such file or directory; make a set of credentials' \
  verify --connect $nobody --credentials folder
refuses 'cannot read folder: Is a directory' --connect $nobody --scenario folder
refuses 'kept: parse error at line 1' --connect $nobody --scenario kept

# The help names the other commands, and each has a help and a list.
"$phone" --help >help
for words in 'vantry-phone verify ' 'verify --help' 'verify --list' 'vantry-phone --scenario NAME|FILE' \
  '--scenario --help' '--list-scenarios'; do
  grep -qF -- "$words" help || fail "the help does not name: $words"
done
"$phone" verify --help | grep -q -- --junit || fail "verify has no help"
"$phone" --scenario --help | grep -q -- --list-scenarios || fail "scenarios have no help"
