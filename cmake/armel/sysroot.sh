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
apt=$root/apt
mkdir -p "$apt/etc/sources.list.d" "$apt/etc/preferences.d" "$apt/etc/apt.conf.d" "$apt/state/lists/partial" \
    "$apt/cache/archives/partial"
: >"$apt/status"
# Debian's own archives; other sources of the machine seldom have this architecture.
for list in /etc/apt/sources.list /etc/apt/sources.list.d/*; do
    [ -f "$list" ] || continue
    case $list in
        *.list) grep -hE '^deb .*debian' "$list" >"$apt/etc/sources.list.d/${list##*/}" || true ;;
        *.sources) if grep -q '^URIs:.*/debian' "$list"; then cp "$list" "$apt/etc/sources.list.d/"; fi ;;
    esac
done
cat >"$apt/apt.conf" <<CONF
Dir::Etc "$apt/etc";
Dir::Etc::trusted "/etc/apt/trusted.gpg";
Dir::Etc::trustedparts "/etc/apt/trusted.gpg.d";
Dir::State "$apt/state";
Dir::State::status "$apt/status";
Dir::Cache "$apt/cache";
APT::Architecture "armel";
APT::Architectures {"armel";};
APT::Install-Recommends "false";
APT::Sandbox::User "root";
Acquire::Retries "5";
Debug::NoLocking "true";
CONF
echo "sysroot.sh: fetching the packages of the ARM sysroot"
export APT_CONFIG="$apt/apt.conf"
apt-get -qq update
# shellcheck disable=SC2086  # a list of names
apt-get -qq -y --download-only install $packages >/dev/null
for package in "$apt"/cache/archives/*.deb; do dpkg-deb -x "$package" "$root"; done
# Absolute links lead to this machine's own files.
find "$root" -type l -lname '/*' | while read -r link; do
    ln -sfn "$(realpath -m --relative-to="$(dirname "$link")" "$root$(readlink "$link")")" "$link"
done
rm -rf "$apt"
echo "$packages" >"$stamp"
