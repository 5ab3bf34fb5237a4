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
export WINEPATH WINEDEBUG="${WINEDEBUG:--all}" WINEPREFIX="$build/wine" WINEDLLOVERRIDES="mscoree,mshtml="
[ ! -d "$root/wine" ] || PATH=$root/wine/usr/lib/wine:$PATH  # of 32 bits, by wine32.sh

# Several tests may be the first. Windows lie on a desktop of wine's own, as large as the screen: on one without a window manager it
# waits seconds for what no manager tells it.
if [ ! -f "$WINEPREFIX/made" ]; then
    mkdir -p "$WINEPREFIX"
    flock "$WINEPREFIX" sh -ec '
        [ ! -f "$WINEPREFIX/made" ] || exit 0
        wine wineboot -i
        wine reg add "HKCU\\Software\\Wine\\Explorer" /v Desktop /d Default /f
        wine reg add "HKCU\\Software\\Wine\\Explorer\\Desktops" /v Default /d 240x320 /f
        wineserver -w
        touch "$WINEPREFIX/made"' >"$build/wine.log" 2>&1 || { cat "$build/wine.log" >&2; exit 1; }
fi
[ -n "${KELTRA_SCREEN_DEPTH:-}" ] || exec wine "$@"

# A desktop is on one screen, which each program with a window has for itself: it gets a wine of its own, which ends with it.
number=1
while exec 9>"$build/wine$number.lock" && ! flock -n 9; do number=$((number + 1)); done
WINEPREFIX=$build/wine$number
[ -f "$WINEPREFIX/made" ] || { rm -rf "$WINEPREFIX" && cp -a "$build/wine" "$WINEPREFIX"; }
trap 'wineserver -k 9>&- || true' EXIT
trap 'exit 143' TERM
wine "$@" 9>&- &
wait $!
