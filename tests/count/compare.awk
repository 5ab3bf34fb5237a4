# SPDX-License-Identifier: Zlib
# awk -v new=FILE [-v profile=ROW] -f compare.awk BUDGETS ROWS COUNTS: prints the table and writes its figures to `new`.
#
# ROWS is what keltra_count prints, COUNTS what plugin.c writes: a region each, in the same order. Fails when a figure is
# more than 1 % above its budget, a row has none, a budget has no row, double precision was computed in a frame, or a frame of
# a game took more than 33 ms, at 400 MHz and an instruction a cycle.
# With `profile`, prints the functions of the rows whose names contain it instead, "all" for all rows.
BEGIN { FS = OFS = "\t"; mostOfGame = 0.033 * 400e6 }

FILENAME == ARGV[1] {
    if ($0 !~ /^#/ && NF == 2) { budget[$1] = $2; listed[++budgets] = $1 }
    next
}

FILENAME == ARGV[2] {
    name[++regions] = $1
    games[$1] += $3 == "game"
    if (!($1 in operations)) order[++rows] = $1
    operations[$1] += $2
    frame[$1] = $3 == "frame"
    next
}

$1 == "region" {
    row = name[++region]
    total[row] += $2
    if ($2 + 0 > longest[row]) longest[row] = $2 + 0
    next
}

{
    functions[row, ++functionCount[row]] = $3
    executed[row, $3] += $2
    if (frame[row] && isDouble($3) && !index(doubles[row] " ", " " $3 " ")) doubles[row] = doubles[row] " " $3
}

# The helpers that a compiler calls for double precision, by both of their names.
function isDouble(function_name) {
    return function_name ~ /^__aeabi_(d[a-z0-9]*|cd[a-z0-9]*|f2d|i2d|ui2d|l2d|ul2d)$/ ||
           function_name ~ /^__(add|sub|mul|div|neg|eq|ne|lt|le|gt|ge|unord|cmp)df[23]$/ ||
           function_name ~ /^__(extendsfdf2|truncdfsf2|floatu?n?[sd]idf|fix(uns)?df[sd]i)$/
}

function printProfile(row,    i, function_name, share, command) {
    printf "%s: %.1f\n", row, total[row] / operations[row]
    fflush()
    command = "sort -rn | head -40"
    for (i = 1; i <= functionCount[row]; ++i) {
        function_name = functions[row, i]
        if (!((row, function_name) in executed)) continue
        printf "%12.1f %5.1f %%  %s\n", executed[row, function_name] / operations[row],
               100 * executed[row, function_name] / total[row], function_name | command
        delete executed[row, function_name]
    }
    close(command)
}

function note(row, figure,    change) {
    if (!(row in budget)) { failed = 1; return "no budget" }
    change = figure / budget[row] - 1
    if (change > 0.010001) { failed = 1; return sprintf("WORSE by %.1f %%", 100 * change) }
    if (change < 0) { better = 1; return sprintf("better by %.1f %%", -100 * change) }
    return change > 0 ? "within 1 %" : ""
}

function printRow(row, figure,    remark) {
    figure = sprintf("%.1f", figure)
    remark = note(row, figure)
    printf "%-52s %12s %12s  %s\n", row, figure, budget[row], remark
    print row, figure > new
    printed[row] = 1
}

END {
    if (region != regions) { print "compare.awk: " regions " rows, but " region " regions" ; exit 1 }
    for (i = 1; profile != "" && i <= rows; ++i)
        if (profile == "all" || index(order[i], profile)) printProfile(order[i])
    if (profile != "") exit 0
    printf "%-52s %12s %12s\n", "instructions an operation", "now", "budget"
    print "# Instructions an operation on soft-float ARM; ./run count --update writes this file." > new
    for (i = 1; i <= rows; ++i) {
        row = order[i]
        printRow(row, total[row] / operations[row])
        if (games[row] > 1) printRow(row ", longest of " games[row], longest[row])
        if (longest[row] > mostOfGame && games[row]) { failed = 1; print "  a frame of the game takes longer than 33 ms" }
        if (doubles[row] != "") { failed = 1; printf "  double precision in a frame:%s\n", doubles[row] }
    }
    for (i = 1; i <= budgets; ++i)
        if (!(listed[i] in printed)) { failed = 1; print listed[i] ": a budget without a row" }
    if (better && !failed) print "Some rows are better than their budgets: ./run count --update keeps that."
    exit failed
}
