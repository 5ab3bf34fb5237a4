#!/bin/sh
# SPDX-License-Identifier: Zlib
# in_an_application.sh COMPILER INCLUDE_FOLDER
# What applications write compiles in the oldest C++ that they use, and wrong formats are warned of.
set -u
compiler=$1
folder=$2
failed=0

compiles() {
    printf '#include <keltra/keltra.h>\n%s\n' "$1" |
        "$compiler" -std=c++11 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -fsyntax-only -I "$folder" -x c++ -
}
accept() { compiles "$1" || { echo "should compile: $1" >&2; failed=1; }; }
refuse() { ! compiles "$1" 2>/dev/null || { echo "should be warned of: $1" >&2; failed=1; }; }

accept 'vnfParser parser = {nullptr, 0, 0};'
accept 'void say(KTLABEL &label, KTWINDOW &window) { label.write("%d", 1); window.write("%s", "text"); }'
refuse 'void say(KTLABEL &label) { label.write("%d", "text"); }'
refuse 'void say(KTWINDOW &window) { window.write("%s", 1); }'
refuse 'void say(KTFONT &font) { font.putString(0, 0, "%s", 1); }'
refuse 'void say() { vnfLog("%s", 1); }'

[ "$failed" -eq 0 ] && echo "all as expected"
exit "$failed"
