#!/usr/bin/env bash
# usage: bootstrap.sh BOOTSTRAP
# Nothing is asked of apt when nothing is missing; what is missing is installed in one go; a failure is told. The
# package tools are played by scripts of a line or two.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
bootstrap=$1
export calls=$tmp/calls

mkdir "$tmp/bin"
cat >"$tmp/bin/dpkg-query" <<'E2'
#!/bin/sh
for package; do :; done
case " $absent " in *" $package "*) exit 1 ;; esac
printf installed
E2
cat >"$tmp/bin/apt-get" <<'E2'
#!/bin/sh
echo "$DEBIAN_FRONTEND $*" >>"$calls"
[ "$broken" != "$2" ] || { echo "no such mirror"; exit 100; }
E2
printf '#!/bin/sh\nexec "$@"\n' >"$tmp/bin/sudo"
chmod +x "$tmp"/bin/*
export PATH=$tmp/bin:$PATH absent='' broken=''

"$bootstrap" || fail "it fails when everything is there"
[[ ! -e $calls ]] || fail "it called apt-get though nothing was missing"

absent="cmake libssl-dev" "$bootstrap" >/dev/null || fail "it fails when two packages are missing"
diff - "$calls" <<'E2' || fail "it did not update once and install what was missing, and nothing else"
noninteractive -qq update
noninteractive -qq install -y --no-install-recommends cmake libssl-dev
E2

if words=$(absent=cmake broken=install "$bootstrap" 2>&1); then fail "it does not see that apt-get failed"; fi
[[ $words == *"no such mirror"*"apt-get install failed"* ]] || fail "it does not tell why apt-get failed: $words"
