#!/bin/sh
# SPDX-License-Identifier: Zlib
# fault_bytes.sh FOLDER [--update]: compares the bytes that the faults add to the library, code, texts and tables together, with the
# budget. FOLDER has the library, and the same without faults.
set -eu
here=$(dirname "$0")
[ $# -eq 1 ] || [ "$2" = --update ] || exit 0

bytes() { arm-linux-gnueabi-size "$1" | awk 'NR == 2 { print $1 + $2 }'; }
with=$(bytes "$1/libkeltra.so")
without=$(bytes "$1/libkeltra_no_faults.so")
added=$((with - without))
[ $# -eq 1 ] || echo "$added" >"$here/fault_bytes.txt"
budget=$(cat "$here/fault_bytes.txt")
echo "faults add $added bytes to the library; the budget is $budget"
[ "$added" -gt 0 ] && [ "$added" -le "$budget" ]
