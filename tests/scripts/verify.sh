#!/usr/bin/env bash
# usage: verify.sh SOURCE_DIR BUILD_DIR
# The conformance run finds no fault in the example host, which offers everything that there is to be checked but a
# sensor that it lacks.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source=$1 programs=$2
"$source/scripts/make-credentials" "$tmp/credentials"
# Half a second of a tone, 16 kHz, 16 bits, mono.
perl -e 'binmode STDOUT;
  print "RIFF", pack("V", 16036), "WAVEfmt ", pack("VvvVVvv", 16, 1, 1, 16000, 32000, 2, 16), "data", pack("V", 16000),
    map { pack "s<", 9000 * sin($_ / 8) } 1 .. 8000' >"$tmp/voice.wav"

exec {output}< <(exec "$programs/apps/headunit/vantry-headunit" --listen 127.0.0.1:0 --headless --auto-pair --verification \
  --credentials "$tmp/credentials" --microphone "$tmp/voice.wav" 2>"$tmp/headunit.log")
headunit=$!
trap 'kill "$headunit" 2>/dev/null || true; rm -rf "$tmp"' EXIT
read -r -t 20 line <&"$output" || fail "the head unit does not listen: $(cat "$tmp/headunit.log")"

"$programs/apps/phone/vantry-phone" verify --connect "${line#listening on }" --credentials "$tmp/credentials" \
  >"$tmp/table" 2>&1 || fail "a check failed: $(grep -v '^passed' "$tmp/table")"
passed=$(grep -c '^passed' "$tmp/table")
((passed > 100)) || fail "only $passed checks passed"
missing=$(grep '^not offered' "$tmp/table" | grep -v ' sensor\.unlisted ') && fail "the host does not offer: $missing"

# A scenario is played to a head unit that connects, too.
kill "$headunit"
exec {scenario}< <(exec "$programs/apps/phone/vantry-phone" --scenario radio --listen 127.0.0.1:0 \
  --credentials "$tmp/credentials" 2>"$tmp/scenario.log")
read -r -t 20 line <&"$scenario" || fail "the scenario does not listen: $(cat "$tmp/scenario.log")"
"$programs/apps/headunit/vantry-headunit" --connect "${line#listening on }" --once --headless \
  --credentials "$tmp/credentials" 2>>"$tmp/headunit.log" || fail "the link failed: $(cat "$tmp/headunit.log")"
grep -q 'radio: all as written' <&"$scenario" || fail "the scenario went otherwise: $(cat "$tmp/scenario.log")"
