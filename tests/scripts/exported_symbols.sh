#!/usr/bin/env bash
# usage: exported_symbols.sh LIBRARY SOURCE_DIR GENERATED_DIR
# The shared library offers what the headers mark for export and nothing else, and takes its log functions from
# the host.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
library=$1 source=$2 generated=$3
headers=("$source"/include/*.h "$generated/protos.pb.h")

# Every name that stands behind the export macro: classes and records, their default instances, the enumerations'
# _IsValid, and what the schema compiler keeps for itself.
marked=$(grep -ohE 'VANTRY_EXPORT [^;{(]*' "${headers[@]}" | sed -E 's/(final|extern|class|struct|:? ?public .*)//g' |
  grep -oE '[A-Za-z_][A-Za-z_0-9]*' | sort -u)

# `vtable for X`, `typeinfo for X`, `X::operation(...)` and `X` come down to X. The creation of a record by its
# arena is inline code of the host's that calls a specialization in the library, marked like the record itself.
exported=$(nm -DC --defined-only "$library" | sed -E 's/^[0-9a-f]+ . //')
owner='s/^(vtable|typeinfo|typeinfo name|guard variable|VTT|construction vtable|(non-)?virtual thunk) (for|to) //
  s/^([A-Za-z_0-9]+)\* google::protobuf::Arena::CreateMaybeMessage<\1>\(.*/\1/
  s/(<|::|\(|\[).*//'
strangers=$(comm -13 <(echo "$marked") <(sed -E "$owner" <<<"$exported" | sort -u))
[[ -z $strangers ]] || fail "exported, but no header marks it so: $(grep -wFf <(echo "$strangers") <<<"$exported" | head -n 20)"
grep -q '^VantryReceiver::init(' <<<"$exported" || fail "VantryReceiver::init is not exported"

undefined=$(nm -D --undefined-only "$library")
for name in print_debug_i print_critical_i; do
  grep -qw "$name" <<<"$undefined" || fail "$name is not left to the host"
done
