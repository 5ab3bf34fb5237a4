#!/bin/sh
# SPDX-License-Identifier: Zlib
# abi.sh check|update LIBRARY HEADERS [FOLDER]
# Compares what programs need of a library with the dump of its soname in FOLDER, this script's without it, or writes that dump.
# The library needs debugging information. New functions and enumerators are no change; a class that grows is one.
set -eu
mode=$1
library=$2
headers=$3
folder=${4:-$(cd "$(dirname "$0")" && pwd)}

soname=$(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
dump=$folder/$soname.$(uname -m).abi.xz
objdump -h "$library" | grep -q '\.debug_info' || { echo "abi: $library has no debugging information" >&2; exit 1; }
# What no header declares is left out, and places in sources, which change with every edit.
write_dump() {
    abidw --headers-dir "$headers" --drop-private-types --exported-interfaces-only --no-corpus-path --no-comp-dir-path \
        --no-show-locs --no-elf-needed --type-id-style hash "$library" >"$1"
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
case $mode in
    update)
        write_dump "$work/now.abi"
        xz -c "$work/now.abi" >"$dump"
        echo "abi: wrote $dump"
        ;;
    check)
        if [ ! -f "$dump" ]; then
            others=$(ls "$folder"/*.so.*."$(uname -m)".abi.xz 2>/dev/null || true)
            [ -n "$others" ] || { echo "abi: not compared: no dump is of $(uname -m)"; exit 0; }
            echo "abi: there is no dump of $soname: write it with update, and remove that of the soname before" >&2
            exit 1
        fi
        xz -dc "$dump" >"$work/then.abi"
        write_dump "$work/now.abi"
        if ! abidiff --no-added-syms "$work/then.abi" "$work/now.abi"; then
            echo "abi: programs that were linked to $soname may not run with this library: undo it, or raise the soname" >&2
            exit 1
        fi
        echo "abi: $soname is as in $dump"
        ;;
    *) echo "abi: check or update, not $mode" >&2; exit 2 ;;
esac
