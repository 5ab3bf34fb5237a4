#!/bin/sh
# SPDX-License-Identifier: Zlib
# in_folder.sh SAMPLES FILE=SAMPLE... -- COMMAND...
# Runs a command in a new folder, in which each FILE is one of the sample files; their textures lie beside them.
set -eu
samples=$1
shift

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
while [ "$1" != -- ]; do
    file=$folder/${1%%=*}
    mkdir -p "$(dirname "$file")"
    cp "$samples"/*.tga "$(dirname "$file")"
    cp "$samples/${1#*=}" "$file"
    shift
done
shift
cd "$folder"
"$@"
