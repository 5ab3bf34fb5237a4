#!/bin/sh
# SPDX-License-Identifier: Zlib
# manual.sh SOURCE: whether manual pages are made of every class and every file format, what they hold, and what mandoc has to say
# of these and of those of section 1.
set -eu
source=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
    echo "manual.sh: $1" >&2
    exit 1
}

"$source/cmake/manual/pages.sh" "$source" "$folder" 1.2.3 2026-11-22
for document in "$source"/docs/formats/*.md; do
    [ -s "$folder/man5/keltra-$(basename "$document" .md).5" ] || fail "$document has no page"
done
# Exported classes and structures, those of templates and of the library's own namespace left out.
classes=$(sed -nE 's/^(class|struct) (KT[A-Z]*_API )?([A-Z][A-Z0-9]*)( final)?( :.*)? \{$/\3/p' "$source"/include/keltra/*.h \
    "$source"/include/keltra/kit/*.h | grep -vE '^(KTREGISTERED|KTLISTED)$')
[ "$(echo "$classes" | wc -l)" -gt 45 ] || fail "only these classes are found: $classes"
for class in $classes; do
    [ -s "$folder/man3/$class.3" ] || fail "class $class has no page"
done

# has PAGE TEXT: the page as a reader sees it, its lines joined.
has() {
    mandoc -T utf8 "$folder/$1" | col -bx | tr -s ' \n' ' ' | grep -qF -- "$2" || fail "$1 does not say: $2"
}
# What man -k prints: the page's own name and a description.
for page in "$folder"/man[35]/*; do
    name=$(basename "${page%.[35]}")
    mandoc -T utf8 "$page" | col -bx | sed -n '/^NAME$/{n;p;}' | grep -qE "^ +$name - ." || fail "${page##*/} has no name or no description"
done
has man3/keltra_mesh.h.3 'what <keltra/mesh.h> declares'
has man3/KTNODE.3 'bool KTNODE::link (KTNODE * parent) Appends this node to the children of parent.'
has man3/keltra_foundation.h.3 'void * vnfMalloc (unsigned int size)'
has man5/keltra-kte.5 'keltra-kte - scene files (KTE)'
has man5/keltra-kte.5 '14 magic KTE file v1.6a or KTE file v1.5a'
has man5/keltra-kte.5 'interface descriptions (keltra-gui(5))'
has man5/keltra-gui.5 'Keltra 1.2.3'

sed -nE 's/^\.Xr (keltra-[a-z]+) ([15]).*/\1.\2/p' "$source"/docs/man/*.1 | sort -u >"$folder/references"
[ -s "$folder/references" ] || fail "no page refers to another"
while read -r page; do
    [ -f "$source/docs/man/$page" ] || [ -f "$folder/man5/$page" ] || fail "there is no $page, which a page refers to"
done <"$folder/references"

set -- "$source"/docs/man/*.1 "$folder"/man3/* "$folder"/man5/*
# The pages are not installed, so mandoc finds none that another refers to.
mandoc -T lint -W all "$@" >"$folder/lint" 2>/dev/null || true
grep -vE 'referenced manual not found|operating system explicitly|missing (Open|Net)BSD' "$folder/lint" >"$folder/faults" || true
[ ! -s "$folder/faults" ] || { head -n 20 "$folder/faults" >&2; fail "mandoc has complaints"; }
echo "manual.sh: $# pages"
