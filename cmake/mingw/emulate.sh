#!/bin/sh
# SPDX-License-Identifier: Zlib
# emulate.sh ROOT PROGRAM [ARGUMENT...]: runs a Windows program in wine, with the libraries of ROOT and of the program's build.
set -eu
root=$1
shift
build=$(cd "$(dirname "$1")" && pwd)
while [ ! -d "$build/bin" ] && [ "$build" != / ]; do build=$(dirname "$build"); done
WINEPATH=$(printf 'Z:%s;Z:%s' "$root/bin" "$build/bin" | tr / '\\')
unset SDL_VIDEODRIVER  # with_screen.sh names that of X
# Wine asks for neither .NET nor a browser.
export WINEPATH WINEDEBUG="${WINEDEBUG:--all}" WINEPREFIX="${WINEPREFIX:-$build/wine}" WINEDLLOVERRIDES="mscoree,mshtml="
# Several tests may be the first.
if [ ! -f "$WINEPREFIX/made" ]; then
    mkdir -p "$WINEPREFIX"
    flock "$WINEPREFIX" sh -c '[ -f "$WINEPREFIX/made" ] || { wine wineboot -i && wineserver -w && touch "$WINEPREFIX/made"; }' \
        >"$build/wine.log" 2>&1 || { cat "$build/wine.log" >&2; exit 1; }
fi
exec wine "$@"
