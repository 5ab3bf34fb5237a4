#!/bin/sh
# SPDX-License-Identifier: Zlib
# windows.sh BUILD ROOT FOLDER: a zip of what an application on Windows needs, and of the demo: libraries, headers, import
# libraries, programs with their files, licences. BUILD is a build of the preset windows, ROOT what dependencies.sh made.
set -eu
build=$1
root=$2
folder=$3
source=$(cd "$(dirname "$0")/.." && pwd)
version=$(sed -n 's/.*KELTRA_VERSION_STRING "\(.*\)"/\1/p' "$source/include/keltra/version.h")
name=keltra-$version-windows-x86_64
strip=x86_64-w64-mingw32-strip

mkdir -p "$folder"
tree=$folder/$name
rm -rf "$tree" "$tree.zip"
mkdir -p "$tree/bin" "$tree/lib" "$tree/include" "$tree/demo" "$tree/licences"
cp "$build/bin/keltra.dll" "$build/bin/keltra-kit.dll" "$tree/bin/"
for library in SDL libEGL libGLESv1_CM libglapi libgallium_wgl libwinpthread-1; do cp "$root/bin/$library.dll" "$tree/bin/"; done
find "$build" -name 'libkeltra*.dll.a' -exec cp {} "$tree/lib/" \;
cp -r "$source/include/keltra" "$tree/include/"
# The programs find the libraries and their files beside them.
cp "$build"/examples/0*.exe "$tree/demo/"
cp -r "$build/examples/data" "$tree/demo/"
cp "$tree"/bin/*.dll "$tree/demo/"
$strip --strip-unneeded "$tree"/bin/*.dll "$tree"/demo/*.dll "$tree"/demo/*.exe
cp "$source/LICENSE" "$tree/licences/keltra.txt"
cp "$root"/licences/*.txt "$tree/licences/"
cp "$source/README.md" "$source/CHANGELOG.md" "$tree/"
(cd "$folder" && zip -q -r -9 "$name.zip" "$name")
rm -rf "$tree"
wc -c "$folder/$name.zip" | sed 's/^/package: /'
