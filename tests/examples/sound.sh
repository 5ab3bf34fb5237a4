#!/bin/sh
# SPDX-License-Identifier: Zlib
# sound.sh PROGRAM: the lesson about sound, into a file in place of a device, and where there is no device.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE=$folder/played SDL_DISKAUDIODELAY=20 "$1" --frames 30 >"$folder/told"
if grep silent "$folder/told"; then
    echo "nothing is played into a file" >&2
    exit 1
fi
bytes=$(tr -d '\0' <"$folder/played" | wc -c)
if [ "$bytes" -lt 2000 ]; then
    echo "only $bytes bytes that are played are not 0" >&2
    exit 1
fi

SDL_AUDIODRIVER=none "$1" --frames 3 >"$folder/told"
grep -q "It is silent: " "$folder/told"
