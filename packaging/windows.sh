#!/bin/sh
# SPDX-License-Identifier: Zlib
# windows.sh BUILD ROOT FOLDER: a zip of what an application on Windows needs, of the examples and of the game: libraries, headers,
# import libraries, programs with their files, licences. BUILD is a build of the preset windows, ROOT what dependencies.sh made.
# Then the zip is unpacked into an empty folder, and the demo and the game are run from there.
set -eu
build=$1
root=$2
folder=$3
source=$(cd "$(dirname "$0")/.." && pwd)
version=$(sed -n 's/.*KELTRA_VERSION_STRING "\(.*\)"/\1/p' "$source/include/keltra/version.h")
name=keltra-$version-windows-x86_64
strip=x86_64-w64-mingw32-strip

# licences: what each library, the compiler's runtime and the font ask for, and the sources of those under the GPL and the LGPL.
licences() {
    cp "$source/LICENSE" "$tree/licences/keltra.txt"
    cp "$source/docs/dependencies.md" "$tree/licences/"  # what libmpeg2's means for the library
    cp "$root"/licences/*.txt "$tree/licences/"
    for package in libz-mingw-w64-dev mingw-w64-x86-64-dev gcc-mingw-w64-x86-64-posix-runtime fonts-dejavu-core; do
        cp "/usr/share/doc/$package/copyright" "$tree/licences/$package.txt"
    done
    # They name the texts of licences by their files of Debian.
    for text in $(grep -oh '/usr/share/common-licenses/[A-Za-z0-9.-]*[A-Za-z0-9]' "$tree"/licences/*.txt | sort -u); do
        cp -L "$text" "$tree/licences/common-${text##*/}.txt"
    done
    cp "$root/sources.txt" "$tree/licences/"
    cp -r "$root/sources" "$tree/"
}

mkdir -p "$folder"
tree=$folder/$name
rm -rf "$tree" "$tree.zip"
mkdir -p "$tree/bin" "$tree/lib" "$tree/include" "$tree/examples" "$tree/game" "$tree/licences"
cp "$build/bin/keltra.dll" "$build/bin/keltra-kit.dll" "$tree/bin/"
for library in SDL libEGL libGLESv1_CM libglapi libgallium_wgl libwinpthread-1; do cp "$root/bin/$library.dll" "$tree/bin/"; done
find "$build" -name 'libkeltra*.dll.a' -exec cp {} "$tree/lib/" \;
cp -r "$source/include/keltra" "$tree/include/"
# Programs find the libraries and their files beside them.
cp "$build"/examples/[0-9]*.exe "$tree/examples/"
cp -r "$build/examples/data" "$tree/examples/"
cp "$build/games/lantern_walk/lantern_walk.exe" "$tree/game/"
cp -r "$build/games/lantern_walk/data" "$tree/game/"
$strip --strip-unneeded "$tree"/bin/*.dll "$tree"/*/*.exe
for programs in examples game; do cp "$tree"/bin/*.dll "$tree/$programs/"; done
licences
cp "$source/README.md" "$source/CHANGELOG.md" "$tree/"
(cd "$folder" && zip -q -r -9 "$name.zip" "$name")
rm -rf "$tree"

empty=$(mktemp -d)
export WINEPREFIX="$empty/wine" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
trap 'wineserver -k || true; rm -rf "$empty"' EXIT
unzip -q "$folder/$name.zip" -d "$empty"
run() {
    (cd "$empty/$name/$1" && "$source/tests/support/with_screen.sh" 24 \
        env -u SDL_VIDEODRIVER wine "$2.exe" --frames 30 --shot "$3")
    wineserver -k || true  # it keeps to the screen that it started on
    # A picture of one colour is a hundredth of this.
    [ "$(wc -c <"$empty/$name/$1/$3")" -gt 10000 ] || { echo "windows.sh: $2 draws nothing" >&2; exit 1; }
    cp "$empty/$name/$1/$3" "$folder/"
}
run examples 02_scene windows-demo.png
run game lantern_walk windows-game.png
wc -c "$folder/$name.zip" | sed 's/^/package: /'
wc -c "$empty/$name"/bin/keltra*.dll | sed 's/^/package: /; s,[^ ]*/,,'
