#!/bin/sh
# Compares what a shared library exports with a reviewed list: checkExportedSymbols.sh LIBRARY LIST
#
# Symbols are reduced to the classes and functions of the namespaces zov and zovlog that they belong to; what the
# standard library instantiates is left out. In the list a plain line must be exported, a line after "? " may be (inline
# and template code, which depends on the compiler and the build), a line after "! " names a member that must not be.
# Anything else that is exported is a leak.
set -eu

library=$1
list=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The name in front of the parameters, without template arguments and without a return type.
nm -D --defined-only -C "$library" | cut -d' ' -f3- |
    sed -E 's/^((typeinfo|typeinfo name|vtable|VTT|guard variable|non-virtual thunk|virtual thunk|construction vtable) (for|to) )+//' |
    awk '{
        name = ""
        depth = 0
        for (at = 1; at <= length($0); ++at) {
            unit = substr($0, at, 1)
            if (unit == "<") ++depth
            else if (unit == ">" && depth > 0) --depth
            else if (depth == 0 && unit == "(") break
            else if (depth == 0) name = name unit
        }
        sub(/ const$/, "", name)
        sub(/.* /, "", name)
        if (name ~ /^(zov|zovlog)::/) print name
    }' | sort -u >"$work/members"
[ -s "$work/members" ] || { echo "$library exports nothing of zov: is this the library?"; exit 1; }

sed -E 's/^((zov::(metamodel|typeconvert|conditions|detail)|zov|zovlog)::[^:]+).*/\1/' "$work/members" |
    sort -u >"$work/exported"

grep -v '^[?!#]' "$list" | sort -u >"$work/required"
sed -n 's/^? //p' "$list" | sort -u >"$work/optional"
sed -n 's/^! //p' "$list" | sort -u >"$work/forbidden"
sort -u "$work/required" "$work/optional" >"$work/allowed"

status=0
complain() { # TEXT FILE
    if [ -s "$2" ]; then
        sed "s/^/$1: /" "$2"
        status=1
    fi
}
comm -23 "$work/exported" "$work/allowed" >"$work/leaked"
comm -13 "$work/exported" "$work/required" >"$work/missing"
comm -12 "$work/members" "$work/forbidden" >"$work/private"
complain "exported, but not in the list" "$work/leaked"
complain "in the list, but not exported" "$work/missing"
complain "exported, but no part of the interface" "$work/private"
[ $status -ne 0 ] || echo "$(basename "$library") exports what $(basename "$list") says"
exit $status
