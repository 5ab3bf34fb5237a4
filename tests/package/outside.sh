#!/bin/sh
# SPDX-License-Identifier: Zlib
# outside.sh WAY CMAKE BUILD SOURCE SCENE
# Builds a project of somebody else and the README's program with the library and runs both on a screen. The ways: "installed",
# "build-folder", "pkg-config", "subdirectory" and "fetch".
set -eu
way=$1
cmake=$2
build=$3
source=$4
scene=$5
here=$(cd "$(dirname "$0")" && pwd)

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# The blank in the name is a test: a prefix may have one. The tree is moved after the installation, since it may be.
prefix="$folder/a prefix"

install_moved() {
    "$cmake" --install "$build" --prefix "$folder/first" --component runtime >/dev/null
    "$cmake" --install "$build" --prefix "$folder/first" --component development >/dev/null
    mv "$folder/first" "$prefix"
}
# consume [ARGUMENT...]: configures, builds and runs them.
consume() {
    mkdir "$folder/readme"
    (cd "$source" && awk -v out="$folder/readme" -v source="$source" -f tests/docs/blocks.awk README.md)
    if ! { "$cmake" -S "$here/consumer" -B "$folder/build" -DCMAKE_BUILD_TYPE=Debug \
        -DREADME="$folder/readme/program_README.cpp" "$@" &&
        "$cmake" --build "$folder/build" --parallel 2; } >"$folder/log" 2>&1; then
        cat "$folder/log" >&2
        return 1
    fi
    "$here/../support/with_screen.sh" 16 "$folder/build/consumer" "$scene"
    "$here/../docs/in_folder.sh" "$(dirname "$scene")" "build/release/examples/data/scene.kte=$(basename "$scene")" -- \
        "$here/../support/with_screen.sh" 16 "$folder/build/readme"
}

case $way in
    installed)
        install_moved
        consume -DWAY=package -DCMAKE_PREFIX_PATH="$prefix"
        # A component that is not installed is refused with its name.
        if "$cmake" -S "$here/consumer" -B "$folder/without" -DWAY=package -DCMAKE_PREFIX_PATH="$prefix" \
            -DKELTRA_COMPONENTS=tools >"$folder/log" 2>&1; then
            echo "the tools are found where they are not installed" >&2
            exit 1
        fi
        ;;
    build-folder) consume -DWAY=package -Dkeltra_DIR="$build" ;;
    pkg-config)
        install_moved
        PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name keltra.pc)")
        export PKG_CONFIG_PATH
        pkg-config --static --libs keltra | grep -q -- -lGLESv1_CM
        consume -DWAY=pkg-config
        ;;
    # Unoptimised: only that it builds and links is tested.
    subdirectory) consume -DWAY=subdirectory -DKELTRA_SOURCE="$source" -DCMAKE_CXX_FLAGS_DEBUG=-O0 ;;
    fetch)
        tar -C "$source" --exclude=./build --exclude=./.git -czf "$folder/keltra.tar.gz" .
        consume -DWAY=fetch -DKELTRA_SOURCE="file://$folder/keltra.tar.gz" -DCMAKE_CXX_FLAGS_DEBUG=-O0
        ;;
    *) echo "outside.sh: no way $way" >&2; exit 1 ;;
esac
