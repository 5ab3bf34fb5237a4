#!/bin/sh
# SPDX-License-Identifier: Zlib
# options.sh PROGRAM PAGE
# The options that a program lists with --help are those of its page: a manual page, or a document with a table, which
# leaves out --help and --version.
set -u
program=$1
page=$2

listed=$("$program" --help | grep -oE -- '(^|[ ,])--[a-z][a-z-]*' | grep -oE -- '--[a-z-]+' | sort -u)
case $page in
    *.1) documented=$(grep '^\.It Fl' "$page" | grep -oE 'Fl (-|Fl )[a-z][a-z-]*' | sed -E 's/^Fl (-|Fl )/--/' | sort -u) ;;
    *)
        documented=$(grep -oE '^\| `--[a-z-]+`' "$page" | grep -oE -- '--[a-z-]+' | sort -u)
        listed=$(printf '%s\n' "$listed" | grep -vE -- '^--(help|version)$')
        ;;
esac
[ -n "$listed" ] || { echo "$program lists no options" >&2; exit 1; }
if [ "$documented" != "$listed" ]; then
    printf 'in %s:\n%s\nby --help:\n%s\n' "$page" "$documented" "$listed" >&2
    exit 1
fi
echo "$(printf '%s\n' "$listed" | wc -l) options"
