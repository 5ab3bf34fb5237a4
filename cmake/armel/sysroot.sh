#!/bin/sh
# SPDX-License-Identifier: Zlib
# sysroot.sh FOLDER: unpacks what a soft-float ARM build needs into FOLDER, from the package sources of this machine.
#
# Nothing is installed: packages of two architectures at once conflict, so these are only unpacked. A sysroot that was
# made from the same list stays as it is.
set -eu
root=$1
packages="libc6-dev libstdc++-12-dev libsdl1.2-dev libgles-dev libegl-dev libtinyxml-dev libmpeg2-4-dev libpng-dev
 libfreetype-dev libcli11-dev libgtest-dev libgmock-dev libgl1-mesa-dri libegl1 libegl-mesa0 libgles1"

stamp=$root/packages.txt
if [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$packages" ]; then exit 0; fi

rm -rf "$root"
mkdir -p "$root"
# shellcheck source=cmake/debian/private_apt.sh
. "$(dirname "$0")/../debian/private_apt.sh"
echo "sysroot.sh: fetching the packages of the ARM sysroot"
private_apt "$root/apt" armel
# shellcheck disable=SC2086  # a list of names
apt-get -qq -y --download-only install $packages >/dev/null
for package in "$root"/apt/cache/archives/*.deb; do dpkg-deb -x "$package" "$root"; done
# Absolute links lead to this machine's own files.
find "$root" -type l -lname '/*' | while read -r link; do
    ln -sfn "$(realpath -m --relative-to="$(dirname "$link")" "$root$(readlink "$link")")" "$link"
done
rm -rf "$root/apt"
echo "$packages" >"$stamp"
