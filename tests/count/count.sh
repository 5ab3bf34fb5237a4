#!/bin/sh
# SPDX-License-Identifier: Zlib
# count.sh BUILD DATA GAME [--update | --profile [ROW]]: counts the instructions of BUILD/bin/keltra_count and compares them with
# the budgets. DATA and GAME, with a slash at their ends, hold the files of the examples and of the game.
set -eu
here=$(dirname "$0")
build=$1
data=$2
game=$3
option=${4:-}
row=${5:-all}
budgets=$here/budgets.txt

cc -O2 -Wall -Wextra -Werror -fPIC -shared -o "$build/count.so" "$here/plugin.c"
# The C library copies with other instructions where blocks lie otherwise, and the lengths of paths and of the environment move
# the heap and the stack: a demo frame differed by 2 percent from one checkout to the next. So neither depends on where this
# is. Twice, because only figures that repeat can be held to.
folder=$(mktemp -d /tmp/keltra.XXXXXX)
trap 'rm -rf "$folder"' EXIT
cp "$build/bin/keltra_count" "$folder"
ln -s "$data" "$folder/data"
ln -s "$game" "$folder/game"
for run in 1 2; do
    env -i "$(command -v qemu-arm)" -cpu pxa250 -plugin "$build/count.so,out=$build/counts.$run" \
        "$folder/keltra_count" "$folder/data/" "$folder/game/" >"$build/rows.$run"
done
if ! cmp "$build/counts.1" "$build/counts.2"; then
    echo "count.sh: two runs differ" >&2
    exit 1
fi

compare() { awk -v new="$build/budgets.txt" "$@" -f "$here/compare.awk" "$budgets" "$build/rows.1" "$build/counts.1"; }
case $option in
    '') compare ;;
    --profile) compare -v profile="$row" ;;
    --update)
        compare || true
        cp "$build/budgets.txt" "$budgets"
        ;;
    *)
        echo "count.sh: unknown option $option" >&2
        exit 2
        ;;
esac
