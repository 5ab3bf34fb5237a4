#!/bin/sh
# SPDX-License-Identifier: Zlib
# compare_test.sh: what compare.awk prints of two small files.
set -eu
here=$(dirname "$0")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# entry NAME RUN_TYPE TIME UNIT
entry() {
    printf '    {\n      "name": "%s",\n      "run_type": "%s",\n      "real_time": 9.0e+09,\n' "$1" "$2"
    printf '      "cpu_time": %s,\n      "time_unit": "%s"\n    },\n' "$3" "$4"
}
{
    entry pass iteration 2.0e+02 ns
    entry pass iteration 3.0e+02 ns
    entry pass aggregate 1.0e+00 ns
    entry gone iteration 1.0e+00 ns
} >"$folder/old.json"
{
    entry pass iteration 1.0e-01 us
    entry load/1000 iteration 2.5e+01 ms
} >"$folder/new.json"

lines=$(awk -f "$here/compare.awk" "$folder/old.json" "$folder/new.json" | tr -s ' ')
expected='row old new old/new spread, %
pass 200.0 ns 100.0 ns 2.00 50 0
load/1000 - 25.00 ms - - 0'
if [ "$lines" != "$expected" ]; then
    printf 'printed:\n%s\nexpected:\n%s\n' "$lines" "$expected" >&2
    exit 1
fi
if awk -f "$here/compare.awk" "$folder/old.json" /dev/null >/dev/null 2>&1; then
    echo 'an empty file passes' >&2
    exit 1
fi
