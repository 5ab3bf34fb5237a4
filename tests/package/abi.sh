#!/bin/sh
# SPDX-License-Identifier: Zlib
# abi.sh SCRIPT: whether packaging/abi/abi.sh accepts what adds to a library and refuses what breaks programs.
set -eu
script=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/include" "$folder/dumps"

# library SONAME MEMBERS CALLS: a class with these members, and its functions.
library() {
    echo "class __attribute__((visibility(\"default\"))) THING { public: THING(); int id; $2 };" >"$folder/include/thing.h"
    printf '#include "thing.h"\nTHING::THING() : id(0) {}\n%s\n' "$3" >"$folder/thing.cpp"
    ${CXX:-c++} -g -shared -fPIC -Wl,-soname,"$1" -I"$folder/include" "$folder/thing.cpp" -o "$folder/libthing.so"
}
run() { "$script" "$1" "$folder/libthing.so" "$folder/include" "$folder/dumps" >"$folder/log" 2>&1; }
expect() {
    what=$1
    shift
    "$@" || { echo "abi.sh: $what" >&2; cat "$folder/log" >&2; exit 1; }
}
refused() { ! run check && grep -q "$1" "$folder/log"; }

library libthing.so.1 'int size;' 'int count() { return 1; }'
run update
expect "the same library is refused" run check
library libthing.so.1 'int size;' 'int count() { return 1; } int more() { return 2; }'
expect "a new function is refused" run check
library libthing.so.1 'int size; int longer;' 'int count() { return 1; }'
expect "a class that grew is accepted" refused 'may not run'
library libthing.so.1 'int size;' ''
expect "a function that is gone is accepted" refused 'may not run'
library libthing.so.2 'int size; int longer;' 'int count() { return 1; }'
expect "a raised soname without a dump is accepted" refused 'no dump of libthing.so.2'
run update
expect "a raised soname with its dump is refused" run check
strip --strip-debug "$folder/libthing.so"
expect "a library without debugging information is accepted" refused 'no debugging information'
echo "abi.sh: 7 cases"
