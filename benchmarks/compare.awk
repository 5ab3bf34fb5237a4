# SPDX-License-Identifier: Zlib
# awk -f compare.awk OLD.json NEW.json: two files of Google Benchmark side by side, row by row: the least CPU time of the
# repetitions of each, their ratio, and the spread, by how much the slowest repetition exceeds the least. The columns are headed
# `old` and `new`, unless these variables say otherwise; the first file may hold several, one behind the other.
function value(line) {
    sub(/^[^:]*: */, "", line)
    sub(/,?[ \r]*$/, "", line)
    gsub(/"/, "", line)
    return line
}
function spread(file, row) { return least[file, row] > 0 ? (most[file, row] / least[file, row] - 1) * 100 : 0 }
function nanoseconds(time, unit) {
    if (unit == "us") return time * 1e3
    if (unit == "ms") return time * 1e6
    return unit == "s" ? time * 1e9 : time
}
function shown(ns) {
    if (ns < 1e4) return sprintf("%.1f ns", ns)
    return ns < 1e7 ? sprintf("%.1f us", ns / 1e3) : sprintf("%.2f ms", ns / 1e6)
}
FNR == 1 { ++file }
/^ *"name":/ { row = value($0); time = "" }
/^ *"run_type":/ { isRun = value($0) == "iteration" }
/^ *"error_occurred": true/ { isRun = 0 }
/^ *"cpu_time":/ { time = value($0) + 0 }
/^ *"time_unit":/ && isRun && time != "" {
    ns = nanoseconds(time, value($0))
    if (!((file, row) in least)) {
        least[file, row] = most[file, row] = ns
        if (file == 2) order[++rows] = row
    }
    if (ns < least[file, row]) least[file, row] = ns
    if (ns > most[file, row]) most[file, row] = ns
}
END {
    if (!rows) {
        print "compare.awk: there are no rows to compare" >"/dev/stderr"
        exit 1
    }
    if (old == "") { old = "old"; new = "new" }
    printf "%-44s %12s %12s %12s %14s\n", "row", old, new, old "/" new, "spread, %"
    for (i = 1; i <= rows; ++i) {
        row = order[i]
        if ((1, row) in least) {
            ratio = least[2, row] > 0 ? sprintf("%.2f", least[1, row] / least[2, row]) : "-"
            printf "%-44s %12s %12s %12s %6.0f %6.0f\n", row, shown(least[1, row]), shown(least[2, row]), ratio, spread(1, row),
                spread(2, row)
        } else {
            printf "%-44s %12s %12s %12s %6s %6.0f\n", row, "-", shown(least[2, row]), "-", "-", spread(2, row)
        }
    }
}
