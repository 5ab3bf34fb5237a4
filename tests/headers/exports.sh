#!/bin/sh
# SPDX-License-Identifier: Zlib
# exports.sh NM LIBRARY
# The library exports its documented names and nothing else, private members left out.
set -u
nm=$1
library=$2

exported=$("$nm" -D --defined-only -C "$library" | sed 's/^[0-9a-f]* [A-Za-z] //') || exit 1
[ -n "$exported" ] || { echo "$library exports nothing" >&2; exit 1; }

# The linker's and the sanitizers' own marks are no interface; the tables of a class go with the class.
strangers=$(printf '%s\n' "$exported" |
    sed -E 's/^(vtable|typeinfo|typeinfo name|VTT) for //' |
    grep -Ev '^(KELTRA|KT[A-Z0-9]+(<[A-Z0-9]+>)?|R3X[A-Z0-9]+)($|::)' |
    grep -Ev '^operator[^(]*\(.*R3X' |
    grep -Ev '^(KT_gl[A-Za-z0-9]+|vnf[A-Z][A-Za-z0-9]*|releaseId)(\(|$)' |
    grep -Ev '^(_edata|_end|__end__|__bss_start|_?_bss_(start|end)__)$' |
    grep -Ev '^__(asan|odr_asan|ubsan|sanitizer|gcov|llvm)')
if [ -n "$strangers" ]; then
    printf 'these names must not be exported:\n%s\n' "$strangers" >&2
    exit 1
fi
# Each listed class has these private members.
private=$(printf '%s\n' "$exported" | grep -E '::(copyFields|letGo|setLink|enlist|joinAlive|forgetTexture)\(')
if [ -n "$private" ]; then
    printf 'these members are private and must not be exported:\n%s\n' "$private" >&2
    exit 1
fi
echo "$(printf '%s\n' "$exported" | wc -l) names are exported"
