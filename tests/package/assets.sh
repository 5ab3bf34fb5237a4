#!/bin/sh
# SPDX-License-Identifier: Zlib
# assets.sh CMAKE BUILD SOURCE [COUNT]
# Builds a project of somebody else whose assets are made by the installed tools: COUNT models (20), each with a picture of its
# own and a buffer that they share. Prints how long it takes to build all, to find that there is nothing to do, and to build
# after one picture was touched; each has to convert as many models as it should.
set -eu
cmake=$1
build=$2
source=$(cd "$3" && pwd)
count=${4:-20}
here=$(cd "$(dirname "$0")" && pwd)

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
prefix="$folder/a prefix"
models="$folder/some models"
fail() {
    echo "assets.sh: $1" >&2
    tail -n 30 "$folder/log" >&2
    exit 1
}

for component in runtime development tools; do
    "$cmake" --install "$build" --prefix "$prefix" --component "$component" >/dev/null
done
mkdir "$models"
cp "$here/crate.bin" "$models"
i=0
while [ "$i" -lt "$count" ]; do
    i=$((i + 1))
    cp "$source/examples/assets/drop.png" "$models/crate$i.png"
    sed -e 's/"baseColorFactor"/"baseColorTexture":{"index":0},&/' -e "s/^\"meshes\"/\"textures\":[{\"source\":0}],\n\
\"images\":[{\"uri\":\"crate$i.png\"}],\n&/" "$here/crate.gltf" >"$models/crate$i.gltf"
done

configure() {
    "$cmake" -S "$here/assets" -B "$folder/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DMODELS="$models" \
        -DSAMPLES="$source/examples" "$@" >"$folder/log" 2>&1 || fail "the project is not configured"
}
# step WHAT CONVERTED: builds; so many models have to be converted.
step() {
    began=$(date +%s%N)
    "$cmake" --build "$folder/build" >"$folder/log" 2>&1 || fail "$1: the build fails"
    milliseconds=$((($(date +%s%N) - began) / 1000000))
    converted=$(grep -c 'Converting crate' "$folder/log" || true)
    echo "assets: $1: $converted of $count models converted in $milliseconds ms"
    [ "$converted" -eq "$2" ] || fail "$1: $converted models were converted, not $2"
}

configure
step "everything" "$count"
made=$(find "$folder/build/data" "$folder/build/fonts" -type f | sed 's|.*/||' | sort | tr '\n' ' ')
for file in crate1.kte crate1_crate1_d.tga panel.tga fountain.xml scene.cfg DejaVuSans.tga DejaVuSans.txt; do
    case $made in *"$file "*) ;; *) fail "$file is missing of: $made" ;; esac
done
step "nothing to do" 0
touch "$models/crate1.png"
step "one picture touched" 1
step "nothing to do again" 0
before=$(cat "$folder/build/data"/* | cksum)
touch "$models/crate.bin"
step "the common buffer touched" "$count"
[ "$before" = "$(cat "$folder/build/data"/* | cksum)" ] || fail "the same models become other files"

# A file that the engine would refuse stops the build.
echo '<emitter><rate' >"$folder/broken.xml"
configure -DBROKEN="$folder/broken.xml"
! "$cmake" --build "$folder/build" >"$folder/log" 2>&1 || fail "a broken file builds"
grep -q 'broken.xml' "$folder/log" || fail "the broken file is not named"
