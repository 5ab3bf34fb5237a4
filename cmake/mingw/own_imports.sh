#!/bin/sh
# SPDX-License-Identifier: Zlib
# own_imports.sh NM LIBRARY FILE: for programs that hold the objects of a DLL themselves, whose import library is LIBRARY. Their
# calls go through the table of imports all the same: FILE, of C, defines its entries.
set -eu
"$1" "$2" 2>/dev/null | sed -n 's/.* I __imp_//p' | sort -u | awk '
    { printf "extern char own%d[] __asm__(\"%s\"); void *entry%d __asm__(\"__imp_%s\") = own%d;\n", NR, $0, NR, $0, NR }
    END { if (!NR) exit 1 }' >"$3"
