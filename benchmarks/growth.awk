# SPDX-License-Identifier: Zlib
# awk -f growth.awk FILE.json: nanoseconds an item of the rows NAME/NUMBER, the least of the repetitions, as data of gnuplot: a
# block of each row's name with a line of number and time for each number, for rows of three numbers or more. Repetitions come in
# random order: the rows stand by name, their lines by number.
function value(line) {
    sub(/^[^:]*: */, "", line)
    sub(/,?[ \r]*$/, "", line)
    gsub(/"/, "", line)
    return line
}
function nanoseconds(time, unit) {
    if (unit == "us") return time * 1e3
    if (unit == "ms") return time * 1e6
    return unit == "s" ? time * 1e9 : time
}
function sort(list, count,    i, k, held) {
    for (i = 2; i <= count; ++i) {
        held = list[i]
        for (k = i - 1; k > 0 && list[k] > held; --k) list[k + 1] = list[k]
        list[k + 1] = held
    }
}
function take() {
    if (!isRun || time == "" || row !~ /^[^\/]*\/[0-9]+$/) return
    name = number = row
    sub(/\/.*/, "", name)
    sub(/.*\//, "", number)
    each = rate > 0 ? 1e9 / rate : time
    if (!((name, number) in least)) {
        least[name, number] = each
        if (!(name in count)) order[++rows] = name
        numbers[name, ++count[name]] = number + 0
    }
    if (each < least[name, number]) least[name, number] = each
}
/^ *"name":/ { take(); row = value($0); time = rate = "" }
/^ *"run_type":/ { isRun = value($0) == "iteration" }
/^ *"error_occurred": true/ { isRun = 0 }
/^ *"cpu_time":/ { time = value($0) + 0 }
/^ *"time_unit":/ { time = nanoseconds(time, value($0)) }
/^ *"items_per_second":/ { rate = value($0) + 0 }
END {
    take()
    sort(order, rows)
    for (i = 1; i <= rows; ++i) {
        name = order[i]
        if (count[name] < 3) continue
        printf "\n\n\"%s\"\n", name
        for (k = 1; k <= count[name]; ++k) line[k] = numbers[name, k]
        sort(line, count[name])
        for (k = 1; k <= count[name]; ++k) print line[k], least[name, line[k]]
        ++drawn
    }
    if (!drawn) {
        print "growth.awk: there are no rows to draw" >"/dev/stderr"
        exit 1
    }
}
