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
mkdir "$folder/keltra-$version"
git -C "$source" archive HEAD | tar -C "$folder/keltra-$version" -xf -
cd "$folder"
cmake -S "keltra-$version" -B configured -DKELTRA_TESTS=OFF -DKELTRA_EXAMPLES=OFF -DKELTRA_TOOLS=OFF -DKELTRA_BENCHMARKS=OFF >log
cpack --config configured/CPackSourceConfig.cmake >>log
rm -rf configured _CPack_Packages
ln "keltra-$version.tar.gz" "keltra_$version.orig.tar.gz"
cd "keltra-$version"
cp -r packaging/debian .
echo "package: building; the log is $folder/log"
dpkg-buildpackage -us -uc -b >"$folder/log" 2>&1 || { tail -n 30 "$folder/log" >&2; exit 1; }
cd ..
for library in libkeltra:include/keltra libkeltra-kit:include/keltra/kit; do
    file=$(find "keltra-$version" -name "${library%:*}.so.$version" -path '*/lib/*' -not -path '*/debian/*')
    "$source/packaging/abi/abi.sh" check "$file" "$source/${library#*:}"
done
find "keltra-$version" -maxdepth 2 -name keltra-blender.zip -exec mv {} "keltra-blender-$version.zip" \;
rm -rf "keltra-$version"
# What desktops read of the installed files.
dpkg-deb -x keltra-examples_*.deb desktop
desktop-file-validate desktop/usr/share/applications/*.desktop
appstreamcli validate --no-net desktop/usr/share/metainfo/*.xml
rm -rf desktop
# Only a package that enters the distribution closes a bug.
lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs keltra_*.changes
wc -c ./*.deb ./*.tar.gz ./*.zip | sed 's/^/package: /'
