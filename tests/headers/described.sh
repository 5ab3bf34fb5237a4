#!/bin/sh
# SPDX-License-Identifier: Zlib
# described.sh HEADER...
# Every class and structure of the exported headers has a documentation comment directly before it: the reference shows
# nothing for one that has not.
set -u
awk '
    FNR == 1 { before = "" }
    /^template / { next }
    /^(class|struct) .*\{$/ && before !~ /\*\/$/ {
        print FILENAME ":" FNR ": " $0
        missing = 1
    }
    /^(class|struct) .*\{$/ { described += 1 }
    { before = $0 }
    END {
        if (!described) { print "no classes were found"; missing = 1 }
        print described " classes"
        exit missing
    }' "$@"
