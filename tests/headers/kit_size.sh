#!/bin/sh
# SPDX-License-Identifier: Zlib
# kit_size.sh STRIP READELF LIBRARY LIMIT
# The kit's library needs the engine, SDL, OpenGL ES, the C and C++ runtime and nothing else; without symbols it is smaller than
# LIMIT bytes. A build without optimisation has no limit: "any".
set -u
strip=$1
readelf=$2
library=$3
limit=$4

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
"$strip" -o "$stripped" "$library" || exit 1
size=$(wc -c <"$stripped")
echo "$size bytes when stripped"
if [ "$limit" != any ] && [ "$size" -ge "$limit" ]; then
    echo "the kit may have $limit bytes at most" >&2
    exit 1
fi
needed=$("$readelf" -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p') || exit 1
printf '%s\n' "$needed" | grep -q '^libkeltra\.so' || { echo "the engine is not linked" >&2; exit 1; }
strangers=$(printf '%s\n' "$needed" |
    grep -Ev '^lib(keltra|SDL-1\.2|GLESv1_CM|stdc\+\+|m|c|gcc_s)\.so' |
    grep -Ev '^(ld-linux.*|lib(asan|ubsan))\.so')
if [ -n "$strangers" ]; then
    printf 'these libraries must not be needed:\n%s\n' "$strangers" >&2
    exit 1
fi
