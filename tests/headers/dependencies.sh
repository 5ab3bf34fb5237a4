#!/bin/sh
# SPDX-License-Identifier: Zlib
# dependencies.sh READELF LIBRARY "WANTED..." "OPTIONAL..."
# The library needs those that are wanted, may need those that are optional and the C and C++ runtime, and nothing else.
set -u
readelf=$1
library=$2
wanted=$3
optional=$4

needed=$("$readelf" -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p') || exit 1
for name in $wanted; do
    printf '%s\n' "$needed" | grep -q "^lib$name\.so" || { echo "lib$name is not linked" >&2; exit 1; }
done
known=$(echo $wanted $optional | tr ' ' '|')
strangers=$(printf '%s\n' "$needed" |
    grep -Ev "^lib($known|stdc\+\+|m|c|gcc_s)\.so" |
    grep -Ev '^(ld-linux.*|lib(asan|ubsan))\.so')
if [ -n "$strangers" ]; then
    printf 'these libraries must not be needed:\n%s\n' "$strangers" >&2
    exit 1
fi
printf 'needed:\n%s\n' "$needed"
