#!/bin/sh
# SPDX-License-Identifier: Zlib
# pages.sh SOURCE FOLDER VERSION DATE: manual pages of section 3, by doxygen from the headers of the project SOURCE, and of section
# 5, by pandoc from docs/formats, in FOLDER/man3 and FOLDER/man5.
set -eu
source=$1
folder=$2
version=$3
date=$4
here=$(cd "$(dirname "$0")" && pwd)
folder=$(mkdir -p "$folder" && cd "$folder" && pwd)
rm -rf "$folder/man3" "$folder/man5" "$folder/doxygen"
mkdir -p "$folder/man3" "$folder/man5"

# tidy TITLE SECTION: a page's heading: the title in upper case, the day, what it belongs to.
tidy() {
    awk -f "$here/tidy.awk" -v title="$1" -v section="$2" -v date="$date" -v version="Keltra $version"
}

cd "$source"
{
    cat docs/Doxyfile
    echo "INPUT = include/keltra"
    echo "USE_MDFILE_AS_MAINPAGE ="
    echo "GENERATE_HTML = NO"
    echo "GENERATE_MAN = YES"
    echo "OUTPUT_DIRECTORY = \"$folder/doxygen\""
} | doxygen -
for page in "$folder"/doxygen/man/man3/*.3; do
    # A header is found by its path: keltra_mesh.h(3) is <keltra/mesh.h>.
    name=$(sed -n '1s/^\.TH "\([^"]*\)".*/\1/p' "$page" | tr / _)
    case $name in
        *[!A-Za-z0-9_.]* | keltra) continue ;;  # templates, namespaces and folders
    esac
    tidy "$name" 3 <"$page" >"$folder/man3/$name.3"
done
rm -rf "$folder/doxygen"

for document in docs/formats/*.md; do
    name=$(basename "$document" .md)
    pandoc -s -t man -L "$here/page.lua" "$document" | tidy "keltra-$name" 5 >"$folder/man5/keltra-$name.5"
done
