#!/bin/sh
# SPDX-License-Identifier: Zlib
# emulate.sh ROOT PROGRAM [ARGUMENT...]: runs a Windows program in wine, with the libraries of ROOT and of the program's build.
set -eu
build=$(cd "$(dirname "$2")/../bin" && pwd)
WINEPATH=$(printf 'Z:%s;Z:%s' "$1/bin" "$build" | tr / '\\')
unset SDL_VIDEODRIVER  # with_screen.sh names that of X
export WINEPATH WINEDEBUG="${WINEDEBUG:--all}" WINEPREFIX="${WINEPREFIX:-$build/../wine}"
shift
exec wine "$@"
