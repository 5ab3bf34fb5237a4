#!/bin/sh
# SPDX-License-Identifier: Zlib
# stages.sh CMAKE SOURCE
# Installs each component when nothing is built, and when the library is built alone: what is not built is left out, and
# projects find the library without the kit and the tools.
set -eu
cmake=$1
source=$2

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
    echo "stages.sh: $1" >&2
    tail -n 30 "$folder/log" >&2
    exit 1
}
# install STAGE: by components, and as a whole.
install() {
    for component in runtime development tools examples docs; do
        "$cmake" --install "$folder/build" --prefix "$folder/$1" --component $component >"$folder/log" 2>&1 ||
            fail "$1: $component is not installed"
    done
    "$cmake" --install "$folder/build" --prefix "$folder/$1-whole" >"$folder/log" 2>&1 || fail "$1: not installed as a whole"
}
# find_package PREFIX: whether a project finds the library there.
find_package() {
    mkdir -p "$folder/project"
    echo 'cmake_minimum_required(VERSION 3.16)
        project(stage CXX)
        find_package(keltra 1.6 REQUIRED)
        add_library(user OBJECT user.cpp)
        target_link_libraries(user PRIVATE keltra::keltra)
        if(TARGET keltra::kit OR TARGET keltra::keltra-convert)
          message(FATAL_ERROR "what was not built is found")
        endif()' >"$folder/project/CMakeLists.txt"
    echo '#include <keltra/keltra.h>' >"$folder/project/user.cpp"
    "$cmake" -S "$folder/project" -B "$folder/$1-user" -DCMAKE_PREFIX_PATH="$folder/$1" >"$folder/log" 2>&1 &&
        "$cmake" --build "$folder/$1-user" >>"$folder/log" 2>&1
}

"$cmake" -S "$source" -B "$folder/build" -G Ninja -DKELTRA_TESTS=OFF -DKELTRA_BENCHMARKS=OFF >"$folder/log" 2>&1 ||
    fail "the project is not configured"
install configured
[ -z "$(find "$folder/configured" -name 'libkeltra*')" ] || fail "a library is installed that was not built"
! find_package configured || fail "a library is found that was not built"
grep -q 'keltra::keltra' "$folder/log" || fail "the missing library is not named"

"$cmake" --build "$folder/build" --target keltra >"$folder/log" 2>&1 || fail "the library is not built"
for prefix in library library-whole; do
    [ "$prefix" != library ] || install library
    find_package "$prefix" || fail "$prefix: the library is not found"
    [ -e "$(find "$folder/$prefix" -name libkeltra.so)" ] || fail "$prefix: no library"
done
