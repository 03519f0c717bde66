#!/usr/bin/env bash
# usage: lint.sh SCRIPTS_DIR SOURCE_DIR
# Every rule of the lint can fail: in a small tree that breaks each of them once, each is named. A tree that breaks
# none passes.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
scripts=$1 source=$2
cd "$tmp"

mkdir -p scripts tests/scripts .ci src include apps/phone apps/headunit build/release/proto/generated
cp "$scripts/lint" "$scripts/common.sh" scripts/
cp "$source/.clang-format" "$source/.shellcheckrc" .
printf '#!/usr/bin/env bash\ntrue\n' >scripts/build
chmod +x scripts/build
git init -q . && git config user.name nobody && git config user.email nobody@localhost

printf '#pragma once\n\nclass Fine {};\n' >include/Fine.h
git add scripts && git commit -qm "Start"
scripts/lint || fail "a tree without a fault does not pass"

git commit -q --allow-empty -m "As the $(printf 'sp%s' ec) says"
printf 'See %s/road.\n' '/wo''rk' >notes.md
printf 'void throwing() { throw 1; }\n' >src/Throwing.cpp
printf '#ifdef NDEB%s\n#endif\n' UG >src/Assertions.cpp
printf 'unsigned high(unsigned x) { return x >> 8; }\n' >src/Order.cpp
printf 'void f() { print_debug_i("no prefix"); }\n' >src/Words.cpp
printf 'void f() { us%s(1); }\n' leep >tests/Wait_test.cpp
printf '#include "Fine.h"\n' >apps/phone/Sharing.cpp
printf '#pragma once\n' | tee src/Inner.h >/dev/null
printf '#include "Inner.h"\n' >apps/headunit/Prying.cpp
{ yes '//' || true; } 2>/dev/null | head -n 601 >src/Long.cpp
{ echo 'void f() {'; yes '  f();' | head -n 60; echo '}'; } >src/LongFunction.cpp || true
printf 'int  badly( );\n' >src/Badly.cpp
printf "#!/usr/bin/env bash\nrm %s1\n" "\$" >tests/scripts/careless.sh
printf '#pragma once\n\nMissing x();\n' >include/NotAlone.h

if output=$(scripts/lint 2>&1); then fail "a tree full of faults passes"; fi
while read -r place; do
  grep -qF "$place" <<<"$output" || fail "the lint overlooks $place; it says: $output"
done <<'E2'
reword these commit messages
notes.md:1
src/Throwing.cpp:1
src/Assertions.cpp:1
src/Order.cpp:1
src/Words.cpp:1
tests/Wait_test.cpp:1
apps/phone/Sharing.cpp:1
apps/headunit/Prying.cpp:1
src/Long.cpp: 601 lines
src/LongFunction.cpp:1: 62 lines
src/Badly.cpp
tests/scripts/careless.sh:2
include/NotAlone.h:3
E2
