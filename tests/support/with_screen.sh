#!/bin/sh
# SPDX-License-Identifier: Zlib
# with_screen.sh [-w] DEPTH command...; installed as keltra-screen
#
# Runs the command on a 240x320 screen of its own, of 16 or 24 bits: in memory, or with -w in a window of the present
# display. In memory it draws with Mesa's reference rasteriser, whose pixels are the same on every machine. Returns the
# command's status. The server takes a free display number by itself, so several may run at once.
set -u
name=${0##*/}
window=
[ "${1:-}" != -w ] || { window=yes; shift; }
if [ $# -lt 2 ] || { [ "$1" != 16 ] && [ "$1" != 24 ]; }; then
    echo "usage: $name [-w] 16|24 command [argument ...]" >&2
    exit 2
fi
depth=$1
shift

folder=$(mktemp -d) || exit 125
server=
command=
stop() {
    # The command first: without the server it could not clean up.
    [ -z "$command" ] || { kill "$command" && wait "$command"; } 2>/dev/null
    [ -z "$server" ] || { kill "$server" && wait "$server"; } 2>/dev/null
    rm -rf "$folder"
}
trap stop EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

# -noreset: the server would reset itself whenever its last client leaves, which a program that starts and stops the
# engine in turn would run into.
mkfifo "$folder/display" || exit 125
if [ -n "$window" ]; then
    set -- env SDL_VIDEODRIVER=x11 "$@"
    Xephyr -displayfd 3 -screen "240x320x$depth" -noreset -nolisten tcp -title "240 x 320" \
        3>"$folder/display" >"$folder/log" 2>&1 &
else
    set -- env SDL_VIDEODRIVER=x11 LIBGL_ALWAYS_SOFTWARE=1 GALLIUM_DRIVER=softpipe "$@"
    Xvfb -displayfd 3 -screen 0 "240x320x$depth" -noreset -nolisten tcp \
        3>"$folder/display" >"$folder/log" 2>&1 &
fi
server=$!
if ! read -r display <"$folder/display"; then
    echo "$name: the screen does not start:" >&2
    cat "$folder/log" >&2
    exit 125
fi

DISPLAY=:$display KELTRA_SCREEN_DEPTH=$depth "$@" &
command=$!
wait "$command"
status=$?
command=
exit "$status"
