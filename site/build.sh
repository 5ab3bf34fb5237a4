#!/bin/sh
# SPDX-License-Identifier: Zlib
# build.sh SITE: makes the site in the folder SITE. Warnings of doxygen and of Sphinx are failures. The examples are those of
# build/release.
set -eu
cd "$(dirname "$0")/.."
site=$1
work=build/site-work
movies=$work/movies
tools=$work/tools
mkdir -p "$movies"

# record PROGRAM FROM [ARGUMENT...]: NAME.webp, 120 frames that the program shows behind the frame FROM, half of the 30 of each
# second; NAME.png, the last of them. They are recorded again when the program is newer.
record() {
    program=$1
    from=$2
    last=$(($2 + 120))
    shift 2
    name=${program##*/}
    [ ! -e "$movies/$name.webp" ] || [ -n "$(find "$program" -newer "$movies/$name.webp")" ] || return 0
    echo "site: recording $name"
    KELTRA_RECORD=3 tests/support/with_screen.sh 16 env LD_PRELOAD="$PWD/$work/record.so" \
        "$program" --frames "$last" "$@" 3>"$work/frames"
    raw="-loglevel error -y -f rawvideo -pixel_format rgba -video_size 240x320 -framerate 30"
    # shellcheck disable=SC2086  # a list of options
    ffmpeg $raw -i "$work/frames" -vf "vflip,trim=start_frame=$from,setpts=PTS-STARTPTS,fps=15" \
        -c:v libwebp_anim -quality 65 -compression_level 6 -loop 0 "$work/movie.webp"
    # shellcheck disable=SC2086
    ffmpeg $raw -i "$work/frames" -vf "vflip,select=eq(n\,$last-1)" -frames:v 1 "$movies/$name.png"
    mv "$work/movie.webp" "$movies/$name.webp"
    rm "$work/frames"
}

mkdir -p "$tools"
cp site/package.json site/package-lock.json "$tools"
npm ci --prefix "$tools" --silent --no-audit --no-fund

${CXX:-c++} -std=c++17 -Wall -Wextra -Werror -O1 -shared -fPIC tests/support/record_frames.cpp -o "$work/record.so" -lEGL -lGLESv1_CM -ldl
for main in examples/*/main.cpp; do
    record "build/release/${main%/main.cpp}" 30
done
for main in games/*/main.cpp; do
    game=${main%/main.cpp}
    record "build/release/$game/${game##*/}" 240 --play --no-film --save "$work/saved"
    rm -f "$work/saved"*
done

echo "site: reading the headers"
rm -rf "$work/xml"
{
    cat docs/Doxyfile
    echo "INPUT = include/keltra"
    echo "USE_MDFILE_AS_MAINPAGE ="
    echo "GENERATE_HTML = NO"
    echo "GENERATE_XML = YES"
    echo "OUTPUT_DIRECTORY = $work"
} | doxygen -
python3 site/pages.py . "$work"

echo "site: making the pages"
rm -rf "$site"
sphinx-build -q -W --keep-going -b html -d "$work/doctrees" -c site "$work/source" "$site"
# Debian's theme loads a style sheet from a server's root and its scripts as modules, which no browser does from a folder, and has
# lost the colours of the dark screen. It is built again of its own sources.
static=$site/_static
theme=/usr/lib/python3/dist-packages/furo/assets
for sheet in furo furo-extensions; do
    "$tools/node_modules/.bin/sass" --no-source-map "$theme/styles/$sheet.sass" "$work/$sheet.css"
done
cat /usr/share/nodejs/normalize.css/normalize.css "$work/furo.css" | grep -v '^@import' >"$static/styles/furo.css"
cp "$work/furo-extensions.css" "$static/styles"
esbuild --log-level=warning --bundle --allow-overwrite --outfile="$static/scripts/furo.js" "$theme/scripts/furo.js"
rm "$static/scripts/gumshoe-patched.js"
mkdir -p "$site/_static/movies"
cp "$movies"/* "$site/_static/movies"
rm -f "$site/.buildinfo" "$site/objects.inv"
echo "site: $(find "$site" -name '*.html' | wc -l) pages, $site/index.html"
