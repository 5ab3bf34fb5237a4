#!/bin/sh
# SPDX-License-Identifier: Zlib
# dependencies.sh READELF LIBRARY
# The library needs SDL, EGL, OpenGL ES, TinyXML, the C and C++ runtime, libmpeg2 unless it is built without video, and nothing
# else.
set -u
readelf=$1
library=$2

needed=$("$readelf" -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p') || exit 1
for wanted in libSDL-1.2.so libEGL.so libGLESv1_CM.so libtinyxml.so; do
    printf '%s\n' "$needed" | grep -q "^$wanted" || { echo "$wanted is not linked" >&2; exit 1; }
done
strangers=$(printf '%s\n' "$needed" |
    grep -Ev '^lib(SDL-1\.2|EGL|GLESv1_CM|tinyxml|mpeg2|mpeg2convert|stdc\+\+|m|c|gcc_s)\.so' |
    grep -Ev '^(ld-linux.*|lib(asan|ubsan))\.so')
if [ -n "$strangers" ]; then
    printf 'these libraries must not be needed:\n%s\n' "$strangers" >&2
    exit 1
fi
printf 'needed:\n%s\n' "$needed"
