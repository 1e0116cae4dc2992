#!/usr/bin/env bash
# Checks that programs were built with what makes mistakes in them hard to exploit.
# Usage: scripts/check-hardening.sh [--release] PROGRAM...   (--release = stack protector and checked library calls, too)
set -euo pipefail

release=no
if [ "${1-}" = --release ]; then
    release=yes
    shift
fi
if [[ $# -eq 0 || $1 = -* ]]; then
    sed -n '3s/^# //p' "$0" >&2
    exit 2
fi

faults=0
fortified=0
must() { # PROGRAM WHAT TEXT PATTERN: the text has a line with the pattern
    if ! grep -qE "$4" <<<"$3"; then
        echo "check-hardening: $1: $2" >&2
        faults=$((faults + 1))
    fi
}

for program in "$@"; do
    head=$(readelf -hW "$program")
    segments=$(readelf -lW "$program")
    dynamic=$(readelf -dW "$program")
    symbols=$(readelf --dyn-syms -W "$program")
    must "$program" "is not position-independent" "$head$dynamic" 'FLAGS_1.*PIE'
    must "$program" "has no read-only relocations" "$segments" 'GNU_RELRO'
    must "$program" "binds its functions late" "$dynamic" 'FLAGS.*NOW'
    must "$program" "has an executable stack" "$segments" 'GNU_STACK.* RW '
    [ "$release" = no ] || must "$program" "has no stack protector" "$symbols" '__stack_chk_fail@'
    if grep -qE '\((RPATH|RUNPATH)\)' <<<"$dynamic"; then
        echo "check-hardening: $program: looks for libraries in a folder of its own" >&2
        faults=$((faults + 1))
    fi
    if grep -qE '__[a-z]+_chk@' <<<"$symbols"; then fortified=$((fortified + 1)); fi
done
# Not every program calls a function that has a checked form.
if [ "$release" = yes ] && [ "$fortified" -eq 0 ]; then
    echo "check-hardening: no program calls checked library functions" >&2
    faults=$((faults + 1))
fi
[ "$faults" -eq 0 ] || exit 1
echo "check-hardening: $# programs are hardened"
