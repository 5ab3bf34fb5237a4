#!/bin/sh
# SPDX-License-Identifier: Zlib
# try.sh FOLDER: whether the packages of FOLDER are good for somebody who has nothing else: they are installed, one need after the
# other, on a bare Debian in a folder of its own, and used; the source archive is built there without a network. Needs root.
set -eu
folder=$(cd "$1" && pwd)
[ "$(id -u)" -eq 0 ] || { echo "try: has to be run as root" >&2; exit 1; }
# Mounts of what follows go with this process.
[ "${KELTRA_TRY:-}" = inside ] || exec env KELTRA_TRY=inside unshare --mount --propagation private "$0" "$folder"

root=$(mktemp -d /var/tmp/keltra-try-XXXXXX)
log=$folder/try.log
clean() {
    umount "$root/proc" 2>/dev/null || true
    rm -rf --one-file-system "$root"
}
trap clean EXIT
: >"$log"

say() { echo "try: $1" | tee -a "$log"; }
# quiet COMMAND...: its output goes to the log, the end of which is shown when it fails.
quiet() {
    "$@" >>"$log" 2>&1 || { tail -n 30 "$log" >&2; echo "try: failed: $*; the log is $log" >&2; exit 1; }
}
inside() { env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive chroot "$root" "$@"; }
install() { quiet inside apt-get install -y -q --no-install-recommends "$@"; }
# package NAME: the file of a package, as it is inside.
package() { (cd "$root" && echo packages/"$1"_*.deb) | sed 's|^|/|'; }

say "a bare Debian 12"
quiet mmdebstrap --variant=apt bookworm "$root"
mount -t proc proc "$root/proc"
[ ! -f /etc/resolv.conf ] || cp -L /etc/resolv.conf "$root/etc/resolv.conf"
mkdir "$root/packages" "$root/try"
cp "$folder"/*.deb "$folder"/keltra-[0-9]*.tar.gz "$root/packages"
quiet inside apt-get update -q
tar -C "$root/try" -xf "$folder"/keltra-[0-9]*.tar.gz
source=/$(cd "$root" && echo try/keltra-*)

say "the tools: a model becomes a scene, is checked and shown without a display"
install "$(package libkeltra1)" "$(package keltra-tools)"
quiet inside sh -ec "cd /try && keltra-convert $source/examples/assets/figure.gltf --fps 24 -o figure
    keltra-info --check figure/*
    keltra-view figure/figure.kte --clip figure/figure_walk.kta --frames 5 --shot figure.png
    for page in keltra-convert.1 keltra-view.1 keltra-screen.1 keltra-kte.5 keltra-settings.5; do
        zcat /usr/share/man/man\${page##*.}/\$page.gz | grep -q SEE
    done"
say "$(inside sh -c 'cd /try && keltra-info --version && ls figure | wc -l && wc -c <figure.png' | tr '\n' ' ')files, bytes of the picture"

say "the examples: the demo and the game, on a screen of keltra-screen"
install "$(package keltra-examples)"
quiet inside sh -ec 'cd /try
    for program in /usr/lib/*/keltra/examples/[0-9]*; do
        keltra-screen 16 "$program" --frames 10 --shot "$(basename "$program").png"
    done
    keltra-screen 16 /usr/lib/*/keltra/games/lantern_walk/lantern_walk --play --no-film --save /try/saved --frames 60 --shot game.png
    programs=$(find /usr/lib/*/keltra/examples -maxdepth 1 -name "[0-9]*" | wc -l)
    [ "$programs" -gt 1 ] && [ "$(find . -maxdepth 1 -name "[0-9g]*.png" -size +99c | wc -l)" -eq $((programs + 1)) ]'
say "$(inside sh -c 'ls /try/[0-9]*.png | wc -l') examples and the game ran"

say "the consumer, by CMake's package and by pkg-config"
needs=$(sed -n 's/^Depends: *//p' "$root$source/packaging/debian/tests/control" | tr -d , | sed -E 's/(lib)?keltra-[a-z]+//g')
# shellcheck disable=SC2086  # a list of names
install "$(package libkeltra-dev)" $needs
quiet inside sh -ec "mkdir /try/consumer; cd $source; AUTOPKGTEST_TMP=/try/consumer packaging/debian/tests/consumer
    for page in KTNODE keltra_foundation.h; do zcat /usr/share/man/man3/\$page.3.gz | grep -q SYNOPSIS; done"
say "$(grep -c '^keltra .*: drawn$' "$log") times: $(grep '^keltra .*: drawn$' "$log" | tail -n 1)"
quiet inside sh -c "apt-get install -y -q $(package keltra-doc) && test -f /usr/share/doc/keltra-doc/html/index.html"

say "the source archive, built without a network and run"
quiet inside apt-get purge -y -q keltra-tools keltra-examples libkeltra-dev libkeltra1
needs=$(sed -n '/^Build-Depends:/,/^[A-Z].*:/p' "$root$source/packaging/debian/control" | grep -v '^Standards' |
    sed 's/^Build-Depends://; s/([^)]*)//g' | tr -d ,)
# shellcheck disable=SC2086
install $needs g++ libgles1 libegl-mesa0 libgl1-mesa-dri xvfb
# Unoptimised, for that takes half of the time: what is optimised are the packages.
quiet unshare --net chroot "$root" sh -ec "! getent hosts deb.debian.org
    cmake -S $source -B /try/build -G Ninja -DCMAKE_BUILD_TYPE= -DKELTRA_TESTS=OFF
    cmake --build /try/build
    cmake --install /try/build --prefix /try/prefix
    /try/prefix/bin/keltra-screen 16 /try/prefix/lib/*/keltra/examples/02_scene --frames 10 --shot /try/built.png ||
        /try/prefix/bin/keltra-screen 16 /try/prefix/lib/keltra/examples/02_scene --frames 10 --shot /try/built.png"
say "the demo of the archive: $(wc -c <"$root/try/built.png") bytes of picture"
say "all good"
