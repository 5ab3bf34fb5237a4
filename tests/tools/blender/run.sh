#!/bin/sh
# SPDX-License-Identifier: Zlib
# run.sh BUILD: tries the Blender add-on with what is in the build folder; pictures of its panel stay in BUILD/blender.
set -eu
build=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
out=$build/blender
rm -rf "$out"
mkdir -p "$out/home"
# Its own home: the add-on is installed there, and the user's preferences stay as they are.
export HOME="$out/home" XDG_CONFIG_HOME="$out/home/.config" PYTHONDONTWRITEBYTECODE=1
blender -b --factory-startup --python-exit-code 1 --python "$here/addon_test.py" -- \
    "$build/keltra-blender.zip" "$build/bin" "$build/bin/blender_poses_test" >"$out/log" 2>&1 || status=$?
grep -E '^(test_|FAIL|ERROR|Traceback|Ran |OK|.* frames, )' "$out/log" || true
if [ "${status:-0}" -ne 0 ] || grep -q 'fails on' "$out/log"; then
    echo "run.sh: the log is $out/log" >&2
    exit 1
fi

# Its window is on a screen in memory, drawn by Mesa's own processor driver.
mkdir -p "$out/pictures"
xvfb-run -a -s "-screen 0 1280x960x24" env LIBGL_ALWAYS_SOFTWARE=1 GALLIUM_DRIVER=llvmpipe \
    timeout 300 blender --factory-startup --enable-event-simulate --window-geometry 0 0 1280 960 \
    --python "$here/panel_shots.py" -- "$build/bin" "$out/pictures" >"$out/panel.log" 2>&1 || true
grep '^panel: ' "$out/panel.log" || true
if ! grep -q '^panel: done' "$out/panel.log" || grep -qE 'Traceback|panel: FAILED' "$out/panel.log"; then
    echo "run.sh: the log is $out/panel.log" >&2
    exit 1
fi
echo "run.sh: pictures of the panel are in $out/pictures"
