#!/bin/sh
# SPDX-License-Identifier: Zlib
# Tests compare.awk: what has to fail fails, and nothing else.
set -eu
here=$(dirname "$0")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# compare BUDGET FIGURE KIND FUNCTION: one row of 10 operations; true when the comparison passes.
compare() {
    printf 'row\t%s\n' "$1" >"$folder/budgets"
    printf 'row\t10\t%s\n' "$3" >"$folder/rows"
    printf 'region\t%s\n\t%s\t%s\n' "$2" "$2" "$4" >"$folder/counts"
    awk -v new="$folder/new" -f "$here/compare.awk" "$folder/budgets" "$folder/rows" "$folder/counts" >"$folder/table"
}
fail() {
    echo "compare_test.sh: $1" >&2
    cat "$folder/table" >&2
    exit 1
}

compare 100 1000 frame f || fail "a figure within its budget fails"
compare 100 1010 frame f || fail "1 % above the budget fails"
compare 100 1011 frame f && fail "more than 1 % above the budget passes"
compare 100 900 frame f || fail "a better figure fails"
grep -q 'better by 10.0 %' "$folder/table" || fail "a better figure is not reported"
grep -q "^row	90.0$" "$folder/new" || fail "the new budget is wrong"
for function in __aeabi_dadd __aeabi_f2d __muldf3 __extendsfdf2 __aeabi_cdcmple __floatunsidf; do
    compare 100 1000 frame $function && fail "$function passes in a frame"
    compare 100 1000 load $function || fail "$function fails outside of a frame"
done
for function in __aeabi_idiv __aeabi_fadd __mulsf3 __aeabi_lmul; do
    compare 100 1000 frame $function || fail "$function fails in a frame"
done
compare 1320000 13200000 game f || fail "a frame of a game of 33 ms fails"
compare 1320001 13200010 game f && fail "a longer frame of a game passes"
printf 'other\t1\n' >"$folder/budgets"
awk -v new="$folder/new" -f "$here/compare.awk" "$folder/budgets" "$folder/rows" "$folder/counts" >"$folder/table" &&
    fail "a row without a budget and a budget without a row pass"
# Two frames of a game: the mean, and the longest.
printf 'row\t15\nrow, longest of 2\t20\n' >"$folder/budgets"
printf 'row\t1\tgame\nrow\t1\tgame\n' >"$folder/rows"
printf 'region\t10\n\t10\tf\nregion\t20\n\t20\tf\n' >"$folder/counts"
awk -v new="$folder/new" -f "$here/compare.awk" "$folder/budgets" "$folder/rows" "$folder/counts" >"$folder/table" ||
    fail "frames of a game on their budgets fail"
printf 'row\t15\nrow, longest of 2\t19\n' >"$folder/budgets"
awk -v new="$folder/new" -f "$here/compare.awk" "$folder/budgets" "$folder/rows" "$folder/counts" >"$folder/table" &&
    fail "a frame above the budget of the longest passes"
exit 0
