#!/bin/sh
# SPDX-License-Identifier: Zlib
# build.sh FOLDER: the Debian packages and the source archive of what is committed, and lintian's opinion of them.
set -eu
folder=$1
source=$(cd "$(dirname "$0")/.." && pwd)
version=$(sed -n 's/.*KELTRA_VERSION_STRING "\(.*\)"/\1/p' "$source/include/keltra/version.h")

rm -rf "$folder"
mkdir -p "$folder"
echo "package: keltra-$version.tar.gz"
git -C "$source" archive --prefix="keltra-$version/" -o "$folder/keltra-$version.tar.gz" HEAD
cp "$folder/keltra-$version.tar.gz" "$folder/keltra_$version.orig.tar.gz"
tar -C "$folder" -xf "$folder/keltra-$version.tar.gz"
cd "$folder/keltra-$version"
cp -r packaging/debian .
echo "package: building; the log is $folder/log"
dpkg-buildpackage -us -uc -b >"$folder/log" 2>&1 || { tail -n 30 "$folder/log" >&2; exit 1; }
cd ..
library=$(find "keltra-$version" -name "libkeltra.so.$version" -path '*/lib/*' -not -path '*/debian/*')
"$source/packaging/abi/abi.sh" check "$library" "$source/include/keltra"
find "keltra-$version" -maxdepth 2 -name keltra-blender.zip -exec mv {} "keltra-blender-$version.zip" \;
rm -rf "keltra-$version"
# Only a package that enters the distribution closes a bug.
lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs keltra_*.changes
wc -c ./*.deb ./*.tar.gz ./*.zip | sed 's/^/package: /'
