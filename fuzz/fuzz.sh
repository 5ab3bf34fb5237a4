#!/bin/sh
# SPDX-License-Identifier: Zlib
# Runs fuzz targets that are built: fuzz.sh FOLDER [TARGET [SECONDS]], or all in turn, 60 seconds each.
# fuzz.sh FOLDER --nightly [MINUTES [SECONDS]] goes round all targets until the minutes are over (480), SECONDS each (300), keeps
# what reached something new, looks for leaks at the end, and prints the sums of all nights. While there are targets with fewer
# than three million executions in all nights, the others wait.
# fuzz.sh FOLDER --leaks [TARGET] only looks for leaks.
# fuzz.sh FOLDER --keep [TARGET] puts into fuzz/inputs the fewest inputs of the corpus that reach each edge.
#
# FOLDER, that of the build, has bin/fuzz_TARGET. In it: corpus/ (inputs that reached something new), found/ (those that
# failed), TARGET.txt (what the last run printed), history.txt (a line for each run) and figures.txt (the sums).
set -eu
cd "$(dirname "$0")/.."
build=$1
shift
all_targets=$(ls fuzz/inputs)
history=$build/history.txt
enough=3000000

# The allocator keeps little for later and short stacks, and gives nothing back to the system, which halves the time of a run; an
# input that fails is looked at with the defaults. Leaks are looked for in the end, not after each input.
fast="malloc_context_size=1:quarantine_size_mb=4:thread_local_quarantine_size_kb=64:max_redzone=64:max_malloc_fill_size=0"
fast="$fast:allocator_release_to_os_interval_ms=-1:clear_shadow_mmap_threshold=1000000000"
export LSAN_OPTIONS="suppressions=tests/support/lsan.supp"

value() { sed -n "s/^stat::$1: *//p" "$2"; }

# covered TARGET: the edges that all inputs together reach, whatever a run was given of them.
covered() {
    ASAN_OPTIONS=$fast "$build/bin/fuzz_$1" -runs=0 -timeout=600 -detect_leaks=0 "$build/corpus/$1" "fuzz/inputs/$1" 2>&1 |
        sed -n 's/.* cov: \([0-9]*\) .*/\1/p' | tail -n 1
}

# run_target TARGET SECONDS
run_target() {
    mkdir -p "$build/corpus/$1" "$build/found/$1"
    log=$build/$1.txt
    result=ok
    words=
    case $1 in
        emitter | interface | xml) words=-dict=fuzz/xml.dict ;;
    esac
    # Three runs of four take short inputs: what they reach is nearly the same, in a third of the time.
    if [ -f "$history" ] && [ $(($(grep -c " $1 " "$history") % 4)) -ne 3 ]; then
        case $1 in
            programs) words="$words -max_len=96" ;;
            settings | text) words="$words -max_len=128" ;;
            kerning | scene | emitter | targa | animation) words="$words -max_len=256" ;;
            interface | film) words="$words -max_len=512" ;;
        esac
    fi
    # shellcheck disable=SC2086  # options
    ASAN_OPTIONS=$fast "$build/bin/fuzz_$1" $words -max_total_time="$2" -rss_limit_mb=2048 -timeout=600 -print_final_stats=1 \
        -entropic=0 -detect_leaks=0 -artifact_prefix="$build/found/$1/" \
        "$build/corpus/$1" "fuzz/inputs/$1" >"$log" 2>&1 || result=failed
    executions=$(value number_of_executed_units "$log")
    edges=$(covered "$1")
    echo "$(date -u +%Y-%m-%dT%H:%M) $(git rev-parse --short HEAD) $1 ${executions:-0} ${edges:-0} $result" >>"$history"
    echo "run: $1: ${executions:-0} executions, ${edges:-0} edges"
    ! grep -E '^fuzz: |ERROR: |SUMMARY: |runtime error: |Test unit written' "$log" || true
    [ $result = ok ]
}

# check_leaks TARGET: replays the corpus, with leak checking after each input that did not release what it allocated, and with all
# that a run leaves out for most inputs.
check_leaks() {
    KELTRA_FUZZ_PLAIN=1 "$build/bin/fuzz_$1" -runs=0 -timeout=600 -artifact_prefix="$build/found/$1/" "$build/corpus/$1" "fuzz/inputs/$1" \
        >"$build/$1.leaks.txt" 2>&1 && return
    echo "run: $1: fails when it is replayed, see $build/$1.leaks.txt"
    return 1
}

# minimise TARGET: keeps of the corpus what all of it reaches.
minimise() {
    rm -rf "$build/corpus/$1.new"
    mkdir "$build/corpus/$1.new"
    ASAN_OPTIONS=$fast "$build/bin/fuzz_$1" -merge=1 -timeout=600 -detect_leaks=0 "$build/corpus/$1.new" "$build/corpus/$1" \
        >"$build/$1.merge.txt" 2>&1 || return 0
    rm -rf "$build/corpus/$1"
    mv "$build/corpus/$1.new" "$build/corpus/$1"
}

# keep TARGET: they lie beside those that have names, under their hashes.
keep() {
    rm -rf "$build/kept"
    mkdir "$build/kept"
    "$build/bin/fuzz_$1" -set_cover_merge=1 -use_counters=0 -timeout=600 -detect_leaks=0 \
        "$build/kept" "fuzz/inputs/$1" "$build/corpus/$1" >"$build/$1.keep.txt" 2>&1
    find "fuzz/inputs/$1" -regextype posix-extended -regex '.*/[0-9a-f]{40}' -delete
    (cd "fuzz/inputs/$1" && sha1sum -- *) | while read -r hash _; do rm -f "$build/kept/$hash"; done
    find "$build/kept" -type f -exec mv -t "fuzz/inputs/$1" {} +
    echo "run: $1: $(find "fuzz/inputs/$1" -type f | wc -l) inputs are kept"
}

# behind: the targets with few executions so far.
behind() {
    for target in $all_targets; do
        awk -v target="$target" -v enough=$enough '$3 == target { sum += $4 } END { if (sum < enough) print target }' "$history"
    done
}

# For each target: executions, the most edges with the sources of the last run, the most before the last tenth of the executions,
# runs that failed.
sum_up() {
    awk '{ total[$3] += $4; sum[$3, ++runs[$3]] = total[$3]; edges[$3, runs[$3]] = $5; sources[$3, runs[$3]] = $2; failed[$3] += $6 != "ok" }
         END {
             printf "%-12s %12s %8s %14s %7s\n", "target", "executions", "edges", "at nine tenths", "failed"
             for (name in total) {
                 most = before = 0; all += total[name]; bad += failed[name]
                 for (i = 1; i <= runs[name]; ++i) {
                     if (sources[name, i] != sources[name, runs[name]] || edges[name, i] <= most) continue
                     most = edges[name, i]
                     if (sum[name, i] <= 0.9 * total[name]) before = most
                 }
                 printf "%-12s %12d %8d %14d %7d\n", name, total[name], most, before, failed[name] | "sort"
             }
             close("sort")
             printf "%-12s %12d %31d\n", "all", all, bad
         }' "$history" | tee "$build/figures.txt"
}

status=0
if [ "${1:-}" = --leaks ]; then
    for target in ${2:-$all_targets}; do check_leaks "$target" || status=1; done
    exit $status
fi
if [ "${1:-}" = --keep ]; then
    for target in ${2:-$all_targets}; do keep "$target"; done
    exit
fi
if [ "${1:-}" != --nightly ]; then
    for target in ${1:-$all_targets}; do run_target "$target" "${2:-60}" || status=1; done
    for target in ${1:-$all_targets}; do check_leaks "$target" || status=1; done
    exit $status
fi
end=$(($(date +%s) + 60 * ${2:-480}))
touch "$history"
while [ "$(date +%s)" -lt $end ]; do
    targets=$(behind)
    for target in ${targets:-$all_targets}; do
        left=$((end - $(date +%s)))
        [ $left -gt 0 ] || break
        seconds=${3:-300}
        run_target "$target" $((left < seconds ? left : seconds)) || status=1
    done
    sum_up >/dev/null
done
for target in $all_targets; do
    minimise "$target"
    check_leaks "$target" || status=1
done
sum_up
exit $status
