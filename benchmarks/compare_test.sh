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
header=$(awk -v old=peer -v new=ours -f "$here/compare.awk" "$folder/old.json" "$folder/new.json" | tr -s ' ' | head -n 1)
[ "$header" = 'row peer ours peer/ours spread, %' ] || { echo "headed: $header" >&2; exit 1; }

# plot: a block of three numbers, the least time of each, by the item where there are items.
{
    entry find/100 iteration 2.0e+02 ns
    entry find/100 iteration 3.0e+02 ns
    entry find/1000 iteration 1.0e+00 us
    printf '      "items_per_second": 1.0e+08\n'
    entry find/10000 iteration 2.0e+01 ns
    entry other/100 iteration 2.0e+01 ns
} >"$folder/growth.json"
blocks=$(awk -f "$here/growth.awk" "$folder/growth.json" | sed '/^$/d')
expected='"find"
100 200
1000 10
10000 20'
if [ "$blocks" != "$expected" ]; then
    printf 'printed:\n%s\nexpected:\n%s\n' "$blocks" "$expected" >&2
    exit 1
fi
