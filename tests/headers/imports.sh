#!/bin/sh
# SPDX-License-Identifier: Zlib
# imports.sh NM OBJDUMP LIBRARY DOCUMENT OBJECT...
# What the engine's own OBJECTs call of Win32 is what the table of DOCUMENT lists: a call too many is one that Windows CE may
# lack, one too few is a line that is no longer true. They are made in one place, and the library needs the libraries that it should, no others.
set -eu
nm=$1
objdump=$2
library=$3
document=$4
shift 4

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# The names that the library takes of the system, the compiler's runtime included.
"$objdump" -p "$library" | awk '
    /DLL Name:/ { dll = $3 }
    tolower(dll) !~ /^(msvcrt|sdl|libegl|libglesv1_cm)\.dll$/ && NF == 3 && $1 ~ /^[0-9a-f]+$/ { print $3 }' |
    sort -u >"$folder/system"
[ -s "$folder/system" ] || { echo "$library takes nothing of the system" >&2; exit 1; }
# With 32 bits a name has _ before it and, after @, the bytes of its arguments.
undecorated=
case $("$objdump" -f "$library") in *pei-i386*) undecorated='s/ \(__imp_\)\{0,1\}_\([^ @]*\)\(@[0-9]*\)\{0,1\}$/ \1\2/' ;; esac
"$nm" -u "$@" | sed "$undecorated" | sed -n 's/^ *U \(__imp_\)\{0,1\}//p' | sort -u | comm -12 - "$folder/system" >"$folder/called"
awk '/^### Calls of Win32/ { on = 1; next } /^#/ { on = 0 } on && /^\| `/ { print $2 }' "$document" |
    tr -d '`' | sort >"$folder/listed"
if ! cmp -s "$folder/called" "$folder/listed"; then
    diff "$folder/called" "$folder/listed" >&2 || true
    echo "called by the engine (<) and listed in $document (>) differ" >&2
    exit 1
fi
# Of the engine's rooms only platform/ calls the system, whose names of files are UTF-16; and no variable is one of a thread.
for object in "$@"; do
    "$nm" "$object" | sed "$undecorated" | sed -n 's/^.* \([UTtDdBbRr]\) \(__imp_\)\{0,1\}/\1 /p' | sort -u >"$folder/names"
    if grep -q ' __emutls' "$folder/names"; then
        echo "$object has variables of threads" >&2
        exit 1
    fi
    case $object in *platform/windows*) continue ;; esac
    if strangers=$(sed -n 's/^U //p' "$folder/names" | sort -u | comm -12 - "$folder/system" | grep .); then
        printf '%s calls the system, which only platform/ does:\n%s\n' "$object" "$strangers" >&2
        exit 1
    fi
done
"$objdump" -p "$library" | sed -n 's/.*DLL Name: //p' | sort >"$folder/libraries"
if strangers=$(grep -Eivx '(KERNEL32|USER32|msvcrt|SDL|libEGL|libGLESv1_CM)\.dll' "$folder/libraries"); then
    printf 'these libraries must not be needed:\n%s\n' "$strangers" >&2
    exit 1
fi
echo "$(wc -l <"$folder/called") calls of Win32; needed: $(tr '\n' ' ' <"$folder/libraries")"
