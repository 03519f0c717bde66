#!/usr/bin/env bash
# usage: phone_ends.sh SOURCE_DIR BUILD_DIR
# However the phone simulator comes to its end, it leaves behind what it was asked for.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
source=$1 phone=$2/apps/phone/vantry-phone
"$source/scripts/make-credentials" "$tmp/credentials"

# Runs the phone with the arguments, interrupts it once it listens, and sets `status`.
interrupt() {
  exec {output}< <(exec "$phone" "$@" --listen 127.0.0.1:0 --credentials "$tmp/credentials" 2>"$tmp/log")
  pid=$!
  read -r -t 20 _ <&"$output" || fail "the phone does not listen: $(cat "$tmp/log")"
  kill -s "$signal" "$pid"
  cat <&"$output" >"$tmp/out"
  status=0
  wait "$pid" || status=$?
}

status=0
# Nobody listens on port 1.
"$phone" --connect 127.0.0.1:1 --credentials "$tmp/credentials" --stats "$tmp/refused.json" 2>"$tmp/log" || status=$?
((status == 2)) || fail "status $status without a head unit: $(cat "$tmp/log")"
grep -q '"exit_status": 2' "$tmp/refused.json" || fail "no statistics without a head unit"

for signal in INT TERM HUP; do
  interrupt --stats "$tmp/$signal.json"
  ((status == 0)) || fail "status $status after SIG$signal: $(cat "$tmp/log")"
  grep -q '"clean": true' "$tmp/$signal.json" || fail "no statistics after SIG$signal"
done

# A conformance run says what it has come to, however soon it is told to end.
for signal in INT TERM HUP; do
  interrupt verify --junit "$tmp/$signal.xml" --html "$tmp/$signal.html"
  ((status == 2)) || fail "status $status of a conformance run after SIG$signal: $(cat "$tmp/log")"
  grep -q 'The run was broken off: interrupted' "$tmp/out" || fail "no last word after SIG$signal: $(cat "$tmp/out")"
  grep -q 'not run: interrupted' "$tmp/$signal.xml" || fail "no JUnit XML after SIG$signal"
  grep -q 'not run' "$tmp/$signal.html" || fail "no page after SIG$signal"
done

# Interrupted before it has read what it needs, it ends in good order, too. It reads its credentials from a pipe here, and
# so waits until it was interrupted.
cp -r "$tmp/credentials" "$tmp/slow"
rm "$tmp/slow/root.pem"
mkfifo "$tmp/slow/root.pem"
interrupt_early() {
  exec {output}< <(exec "$phone" "$@" --listen 127.0.0.1:0 --credentials "$tmp/slow" 2>"$tmp/log")
  pid=$!
  exec {input}>"$tmp/slow/root.pem"
  kill -s "$signal" "$pid"
  cat "$tmp/credentials/root.pem" >&"$input"
  exec {input}>&-
  cat <&"$output" >"$tmp/out"
  status=0
  wait "$pid" || status=$?
}
for signal in INT TERM HUP; do
  interrupt_early --stats "$tmp/early.json"
  ((status == 0)) || fail "status $status after SIG$signal at the start: $(cat "$tmp/log")"
  grep -q '"clean": true' "$tmp/early.json" || fail "no statistics after SIG$signal at the start"
  rm "$tmp/early.json"
  interrupt_early verify
  ((status == 2)) || fail "status $status of a conformance run after SIG$signal at the start: $(cat "$tmp/log")"
  interrupt_early --scenario radio
  ((status == 3)) || fail "status $status of a scenario after SIG$signal at the start: $(cat "$tmp/log")"
done
