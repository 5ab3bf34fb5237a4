#!/bin/sh
# SPDX-License-Identifier: Zlib
# run.sh BUILD: tries the Blender add-on with what is in the build folder. Pictures of the panel stay in BUILD/blender/pictures,
# those of docs/first_character.md in BUILD/blender/guide; with KELTRA_UPDATE_GOLDEN=1 the latter replace the page's.
set -eu
build=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
out=$build/blender
rm -rf "$out"
mkdir -p "$out/home" "$out/pictures" "$out/guide" "$out/data"

# A home of its own: the add-on is installed there, and the user's preferences stay as they are.
export HOME="$out/home" XDG_CONFIG_HOME="$out/home/.config" PYTHONDONTWRITEBYTECODE=1

fail() {
    echo "run.sh: the log is $1" >&2
    exit 1
}

# in_window SIZE SCRIPT ARGUMENT...: on a screen in memory, drawn by Mesa's own processor driver.
in_window() {
    size=$1
    script=$2
    shift 2
    log=$out/$script.log
    xvfb-run -a -s "-screen 0 ${size}x24" env LIBGL_ALWAYS_SOFTWARE=1 GALLIUM_DRIVER=llvmpipe \
        timeout 1800 blender --factory-startup --enable-event-simulate --window-geometry 0 0 "${size%x*}" "${size#*x}" \
        --python "$here/$script.py" -- "$build/bin" "$@" >"$log" 2>&1 || true
    grep '^panel: ' "$log" || true
    if ! grep -q '^panel: done' "$log" || grep -qE 'Traceback|panel: FAILED' "$log"; then fail "$log"; fi
}

status=0
blender -b --factory-startup --python-exit-code 1 --python "$here/addon_test.py" -- \
    "$build/keltra-blender.zip" "$build/bin" "$build/bin/blender_poses_test" >"$out/log" 2>&1 || status=$?
grep -E '^(test_|FAIL|ERROR|Traceback|Ran |OK|.* frames, )' "$out/log" || true
if [ "$status" -ne 0 ] || grep -q 'fails on' "$out/log"; then fail "$out/log"; fi

in_window 1280x960 panel_shots "$out/pictures"
in_window 1120x760 guide_shots "$out/guide" "$out/data"
"$build/bin/keltra-info" --check --strict "$out"/data/*.kt? "$out"/data/*.tga || fail "$out/guide_shots.log"
echo "run.sh: pictures are in $out/pictures and $out/guide"
[ -z "${KELTRA_UPDATE_GOLDEN:-}" ] || /usr/bin/python3 - "$out/guide" "$here/../../../docs/images" <<'PYTHON'
import pathlib, sys
from PIL import Image
for picture in pathlib.Path(sys.argv[1]).glob("blender_*.png"):
    Image.open(picture).convert("RGB").quantize(255).save(pathlib.Path(sys.argv[2]) / picture.name, optimize=True)
PYTHON
