#!/bin/sh
# SPDX-License-Identifier: Zlib
# headers_alone.sh COMPILER INCLUDE_FOLDER HEADER...
# Every exported header compiles by itself, in the oldest C++ that applications use and with their warnings.
set -u
compiler=$1
folder=$2
shift 2

[ $# -gt 0 ] || { echo "no headers were given" >&2; exit 1; }
failed=0
for header in "$@"; do
    "$compiler" -std=c++11 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -fsyntax-only -I "$folder" \
        -include "$header" -x c++ /dev/null || { echo "$header does not compile alone" >&2; failed=1; }
done
[ "$failed" -eq 0 ] && echo "$# headers compile alone"
exit "$failed"
