#!/bin/sh
# SPDX-License-Identifier: Zlib
# dependencies.sh 64|32 FOLDER: builds what the library needs on Windows of so many bits into FOLDER, from Debian's source packages:
# SDL 1.2, TinyXML, libmpeg2, and Mesa's EGL and OpenGL ES 1.1 with its software rasteriser; for tests and examples libpng,
# GoogleTest and CLI11. For 32 bits no Mesa: only tests that draw nothing run there.
#
# Mesa takes minutes. A part that was built by the same lines of this script is not built again.
set -eu
bits=$1
root=$(mkdir -p "$2" && cd "$2" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
script=$here/${0##*/}
case $bits in
    64) cpu=x86_64 host=x86_64-w64-mingw32 ;;
    32) cpu=x86 host=i686-w64-mingw32 ;;
    *) echo "dependencies.sh: 64 or 32 bits" >&2; exit 1 ;;
esac
jobs=$(nproc)
work=$root/work
mkdir -p "$work" "$root/built" "$root/bin" "$root/lib/pkgconfig" "$root/include" "$root/licences"
export PATH=/usr/bin:/bin:/usr/sbin:/sbin  # Debian's python3, which has mako

# shellcheck source=cmake/debian/private_apt.sh
. "$here/../debian/private_apt.sh"

# quietly NAME COMMAND...: keeps its output for the case that it fails.
quietly() {
    log=$work/$1.log
    shift
    "$@" >"$log" 2>&1 || { tail -n 30 "$log" >&2; echo "dependencies.sh: $* failed, see $log" >&2; exit 1; }
}

lists=old

# fetch PACKAGE: into work/download-PACKAGE the sources of its newest version that the archive has whole. An archive may list a
# version, or the patches of one, that it no longer has. Then the sources are taken without Debian's patches.
fetch() {
    if [ $lists = old ]; then
        echo "dependencies.sh: reading the lists of source packages"
        private_apt "$work/apt" amd64
        lists=new
    fi
    export APT_CONFIG="$work/apt/apt.conf"
    rm -rf "$work/download-$1"
    mkdir -p "$work/download-$1"
    cd "$work/download-$1"
    fetched=
    version=
    for version in $(apt-cache showsrc --only-source "$1" | sed -n 's/^Version: //p' | sort -Vru); do
        if apt-get -qq source --download-only "$1=$version" >"$work/fetch-$1.log" 2>&1; then
            fetched="$1 $version"
            break
        fi
        echo "dependencies.sh: the archive lacks files of $1 $version"
        rm -f ./*
    done
    if [ -z "$fetched" ]; then
        quietly "fetch-$1" apt-get -qq source --download-only --tar-only "$1"
        fetched="$1 $version without Debian's patches"
    fi
    unset APT_CONFIG
}

# source_of PACKAGE: its source in work/PACKAGE, a line in sources.txt and its licence.
source_of() {
    echo "dependencies.sh: building $1"
    fetch "$1"
    rm -rf "${work:?}/$1"
    licence=$root/licences/$1.txt
    if ls ./*.dsc >/dev/null 2>&1; then
        quietly "unpack-$1" dpkg-source --no-check -x ./*.dsc "$work/$1"
        cp "$work/$1/debian/copyright" "$licence"
    else
        mkdir "$work/$1"
        tar -C "$work/$1" --strip-components=1 -xf "$(find . -name '*.orig.tar.*' ! -name '*.asc')"
        find "$work/$1" -maxdepth 1 '(' -name 'COPYING*' -o -name 'LICENSE*' ')' -exec cat {} + >"$licence"
        [ -s "$licence" ] || cat "$work/$1"/readme.txt "$work/$1"/docs/license.rst >"$licence" 2>/dev/null || true
    fi
    [ -s "$licence" ] || { echo "dependencies.sh: $1 has no licence" >&2; exit 1; }
    touch "$root/sources.txt"
    { sed "/^$1 /d" "$root/sources.txt"; echo "$fetched"; } >"$work/sources.txt"
    mv "$work/sources.txt" "$root/sources.txt"
    case $1 in libsdl1.2 | mpeg2dec)  # who passes these libraries on passes on their sources
        mkdir -p "$root/sources"
        cp ./* "$root/sources/"
        ;;
    esac
    cd "$work"
}

# once NAME: runs build_NAME unless the same lines did so before.
once() {
    lines=$(sed -n "/^fetch() {/,/^}/p; /^source_of() {/,/^}/p; /^build_$1() {/,/^}/p" "$script")
    if [ -f "$root/built/$1" ] && [ "$(cat "$root/built/$1")" = "$lines" ]; then return 0; fi
    "build_$1"
    printf '%s\n' "$lines" >"$root/built/$1"
}

# describe NAME VERSION LIBRARIES [FLAGS]: a .pc file.
describe() {
    cat >"$root/lib/pkgconfig/$1.pc" <<PC
prefix=$root
Name: $1
Description: $1
Version: $2
Libs: -L\${prefix}/lib $3
Cflags: -I\${prefix}/include ${4:-}
PC
}

# autoconf NAME SOURCE OPTION...: configures SOURCE in work/build-NAME.
autoconf() {
    name=$1
    source=$2
    shift 2
    rm -rf "$work/build-$name"
    mkdir -p "$work/build-$name"
    (cd "$work/build-$name" && quietly "configure-$name" "$work/$source/configure" --host=$host --prefix="$root" \
        CC="$host-gcc-posix -static-libgcc" "$@")
}

build_sdl() {
    source_of libsdl1.2
    autoconf sdl libsdl1.2 --disable-static --enable-shared --disable-directx --disable-stdio-redirect
    quietly make-sdl make -C "$work/build-sdl" -j"$jobs"
    quietly install-sdl make -C "$work/build-sdl" install
    # Without what makes a program of every library and renames its main function.
    sed -i 's/^Libs:.*/Libs: -L${libdir} -lSDL/; s/^Cflags:.*/Cflags: -I${includedir}\/SDL/' "$root/lib/pkgconfig/sdl.pc"
}

# With the C++ library's streams and strings, as Debian builds it.
build_tinyxml() {
    source_of tinyxml
    for source in tinyxml tinyxmlparser tinyxmlerror tinystr; do
        $host-g++-posix -O2 -DTIXML_USE_STL -c "$work/tinyxml/$source.cpp" -o "$work/$source.o"
        $host-ar rcs "$root/lib/libtinyxml.a" "$work/$source.o"
    done
    cp "$work/tinyxml/tinyxml.h" "$work/tinyxml/tinystr.h" "$root/include/"
    describe tinyxml 2.6.2 -ltinyxml -DTIXML_USE_STL
}

build_mpeg2() {
    source_of mpeg2dec
    # Without the instructions of one processor: compiled for Windows they leave wrong blocks in the picture.
    autoconf mpeg2 mpeg2dec --disable-sdl --without-x --disable-shared --enable-static --disable-accel-detect
    sed -i '/^#define inline/d' "$work/build-mpeg2/include/config.h"  # the compiler's own headers use the word
    for folder in libmpeg2 include; do
        quietly "make-$folder" make -C "$work/build-mpeg2/$folder" -j"$jobs"
        quietly "install-$folder" make -C "$work/build-mpeg2/$folder" install
    done
}

build_mesa() {
    source_of mesa
    # A display that was ended keeps the address of what is freed here: its next start uses it.
    sed -i 's/^   free(wgl_dpy);$/&\n   disp->DriverData = NULL;/' "$work/mesa/src/egl/drivers/wgl/egl_wgl.c"
    grep -q 'disp->DriverData = NULL' "$work/mesa/src/egl/drivers/wgl/egl_wgl.c"
    cat >"$work/mesa.cross" <<CROSS
[binaries]
c = '$host-gcc-posix'
cpp = '$host-g++-posix'
ar = '$host-ar'
strip = '$host-strip'
windres = '$host-windres'
[built-in options]
c_link_args = ['-static-libgcc']
cpp_link_args = ['-static-libgcc', '-static-libstdc++', '-Wl,-Bstatic', '-lpthread']
[host_machine]
system = 'windows'
cpu_family = '$cpu'
cpu = '$cpu'
endian = 'little'
CROSS
    rm -rf "$work/build-mesa"
    # Hardly optimised: it compiles in half to two thirds of the time, and tests draw little.
    quietly configure-mesa meson setup "$work/build-mesa" "$work/mesa" --cross-file "$work/mesa.cross" -Doptimization=1 \
        -Ddebug=false -Db_ndebug=true -Dplatforms=windows -Degl=enabled -Dgles1=enabled -Dgles2=disabled -Dopengl=true \
        -Dgallium-drivers=swrast -Dvulkan-drivers= -Dllvm=disabled -Dzlib=disabled -Dshared-glapi=enabled -Dbuild-tests=false \
        -Dvideo-codecs= --wrap-mode=nofallback
    quietly make-mesa ninja -C "$work/build-mesa" src/egl/libEGL.dll src/mapi/es1api/libGLESv1_CM.dll
    made=$work/build-mesa/src
    cp "$made/egl/libEGL.dll" "$made/mapi/es1api/libGLESv1_CM.dll" "$made/mapi/shared-glapi/libglapi.dll" \
        "$made/gallium/targets/wgl/libgallium_wgl.dll" /usr/$host/lib/libwinpthread-1.dll "$root/bin/"
    $host-strip "$root"/bin/*.dll
    cp "$made/egl/libEGL.dll.a" "$made/mapi/es1api/libGLESv1_CM.dll.a" "$root/lib/"
    for api in EGL GLES KHR; do
        mkdir -p "$root/include/$api"
        cp "$work/mesa/include/$api"/*.h "$root/include/$api/"
    done
    describe egl 1.5 -lEGL
    describe glesv1_cm 1.1 -lGLESv1_CM
}

# In the place of Mesa, where nothing is drawn.
build_silence() {
    for api in EGL GLES KHR; do cp -r "/usr/include/$api" "$root/include/"; done
    for library in libEGL libGLESv1_CM; do
        if [ $library = libEGL ]; then flag=KELTRA_SILENT_EGL; else flag=KELTRA_SILENT_GL; fi
        $host-g++-posix -std=c++17 -O1 -shared -static -D$flag -DKHRONOS_STATIC -I"$root/include" -I"$here/../.." \
            "$here/../../tests/support/silent_driver.cpp" -o "$root/bin/$library.dll" -Wl,--add-stdcall-alias \
            -Wl,--out-implib,"$root/lib/$library.dll.a"
    done
    describe egl 1.5 -lEGL
    describe glesv1_cm 1.1 -lGLESv1_CM
}

# cmake_build PACKAGE OPTION...: builds and installs a source with a CMakeLists.txt.
cmake_build() {
    package=$1
    shift
    source_of "$package"
    rm -rf "$work/build-$package"
    quietly "configure-$package" cmake -S "$work/$package" -B "$work/build-$package" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$here/toolchain$bits.cmake" -DKELTRA_MINGW_ROOT="$root" -DCMAKE_INSTALL_PREFIX="$root" \
        -DCMAKE_INSTALL_LIBDIR=lib "$@"
    quietly "make-$package" cmake --build "$work/build-$package" --target install
}

build_googletest() {
    cmake_build googletest -DBUILD_GMOCK=ON -DBUILD_SHARED_LIBS=OFF
}

build_png() {
    cmake_build libpng1.6 -DPNG_SHARED=OFF -DPNG_STATIC=ON -DPNG_TESTS=OFF
}

build_cli11() {
    cmake_build cli11 -DCLI11_BUILD_TESTS=OFF -DCLI11_BUILD_DOCS=OFF -DCLI11_BUILD_EXAMPLES=OFF -DCLI11_SINGLE_FILE=OFF
}

if [ "$bits" = 64 ]; then driver=mesa; else driver=silence; fi
for dependency in tinyxml mpeg2 googletest png cli11 sdl $driver; do once $dependency; done
rm -rf "$work"
