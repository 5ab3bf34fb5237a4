#!/bin/sh
# SPDX-License-Identifier: Zlib
# startup.sh FOLDER [TIMES]: on a screen, what the programs startup_bare, startup_sdl and startup_keltra in FOLDER take to their
# first frame: the least of many starts in turn, which is what is left when other programs take no part of it.
set -eu
folder=$1
times=${2:-20}
figures=$(mktemp)
trap 'rm -f "$figures"' EXIT
i=0
while [ "$i" -lt "$times" ]; do
    for kind in bare sdl keltra; do echo "$kind $("$folder/startup_$kind" "$(date +%s%N)")" >>"$figures"; done
    i=$((i + 1))
done
awk '!($1 in cpu) || $2 < cpu[$1] { cpu[$1] = $2 }
     !($1 in wall) || $3 < wall[$1] { wall[$1] = $3 }
     !($1 in pages) || $4 < pages[$1] { pages[$1] = $4 }
     END {
         printf "%-10s %14s %14s %16s %8s\n", "window by", "processor, ms", "in all, ms", "over bare, ms", "pages"
         split("bare sdl keltra", kinds)
         for (i = 1; i <= 3; ++i) {
             kind = kinds[i]
             printf "%-10s %14.2f %14.2f %8.2f %7.2f %8d\n", kind, cpu[kind], wall[kind], cpu[kind] - cpu["bare"], wall[kind] - wall["bare"], pages[kind]
         }
     }' "$figures"
