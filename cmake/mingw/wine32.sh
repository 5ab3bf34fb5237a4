#!/bin/sh
# SPDX-License-Identifier: Zlib
# wine32.sh FOLDER: unpacks a wine for programs of 32 bits into FOLDER. FOLDER/usr/lib/wine/wine is the program, for emulate.sh.
#
# Nothing is installed: packages of two architectures at once conflict, so these are only unpacked. Wine's programs are
# started through the unpacked loader of shared libraries, which needs no rights of root.
set -eu
root=$(mkdir -p "$1" && cd "$1" && pwd)
packages="wine32"

stamp=$root/made-by
if cmp -s "$0" "$stamp"; then exit 0; fi  # by the same lines

rm -rf "$root"
mkdir -p "$root"
# shellcheck source=cmake/debian/private_apt.sh
. "$(dirname "$0")/../debian/private_apt.sh"
echo "wine32.sh: fetching a wine of 32 bits"
private_apt "$root/apt" i386
# shellcheck disable=SC2086  # a list of names
apt-get -qq -y --download-only install $packages >/dev/null
for package in "$root"/apt/cache/archives/*.deb; do
    dpkg-deb --fsys-tarfile "$package" | tar -C "$root" -xf - --keep-directory-symlink
done
rm -rf "$root/apt"

# What the package's script does when it is installed: zlib1.dll becomes one of wine's own.
from=$root/usr/i686-w64-mingw32/lib/zlib1.dll
to=$root/usr/lib/i386-linux-gnu/wine/i386-windows/zlib1.dll
{ head -c 64 "$from"; printf 'Wine builtin DLL\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0'; tail -c +97 "$from"; } >"$to"

# Wine finds its files, and the programs that it starts by itself, where the running program lies, which is the loader then.
programs=$root/usr/lib/wine
cp -L "$root/lib/i386-linux-gnu/ld-linux.so.2" "$programs/ld.so"
mv "$programs/wine" "$programs/wine32"
for name in wine wineserver; do
    cat >"$programs/$name" <<SCRIPT
#!/bin/sh
export WINELOADERNOEXEC=1
exec '$programs/ld.so' --library-path '$root/lib/i386-linux-gnu:$root/usr/lib/i386-linux-gnu' '$programs/${name}32' "\$@"
SCRIPT
    chmod +x "$programs/$name"
done
cp "$0" "$stamp"
