#!/bin/sh
# SPDX-License-Identifier: Zlib
# fault_coverage.sh EXCEPTIONS TABLE... -- HEADER...
# Every exported call that returns a bool, a pointer or a number of its own has a row in the tables of faults, or stands in
# EXCEPTIONS with the reason why it makes none. Searches and questions (find..., is..., get..., has...) and accessors without
# arguments that stand in the header are answers by rule.
set -u
exceptions=$1
shift
tables=
while [ $# -gt 0 ] && [ "$1" != -- ]; do
    tables="$tables $1"
    shift
done
shift

# CALL for each such call, one a line.
calls=$(for header in "$@"; do
    awk '
    {
        text = text $0 "\n"
    }
    END {
        while (match(text, /\/\*([^*]|\*+[^*\/])*\*+\//))
            text = substr(text, 1, RSTART - 1) " " substr(text, RSTART + RLENGTH)
        gsub(/\/\/[^\n]*/, "", text)
        gsub(/(^|\n)#([^\n]*\\\n)*[^\n]*/, "\n", text)
        gsub(/[ \t\n]+/, " ", text)
        depth = 0; access = "public"; class = ""; part = ""
        for (i = 1; i <= length(text); ++i) {
            c = substr(text, i, 1)
            if (c == "{") {
                if (depth == 0 && match(part, /(class|struct) (KT_API )?[A-Z0-9a-z]+/) && part !~ /\(/) {
                    class = part
                    sub(/ ?(final )?:.*/, "", class)
                    sub(/ +$/, "", class)
                    sub(/.* /, "", class)
                    access = part ~ /struct/ ? "public" : "private"
                    inner = 0
                    depth = 1
                    part = ""
                } else if (depth == 0 && part ~ /enum|extern/) {
                    depth = 2; skipping = 1
                } else {
                    if (++inner == 1) { declare(part, 1); part = "" }
                }
            } else if (c == "}") {
                if (skipping) { skipping = 0; depth = 0 }
                else if (inner > 0) { if (--inner == 0) part = "" }
                else { depth = 0; class = ""; access = "public"; part = "" }
            } else if (inner > 0 || skipping) {
                continue
            } else if (c == ";") {
                declare(part, 0); part = ""
            } else {
                part = part c
                if (part ~ /(public|private|protected) ?:$/ && substr(text, i + 1, 1) != ":") {
                    access = part; gsub(/[ :]/, "", access); part = ""
                }
            }
        }
    }
    function declare(what, isInline,    name, type) {
        if (access != "public" || what !~ /\(/ || what ~ /typedef|friend|using|template|operator|define/) return
        if (class == "" && what !~ /KT_API/) return
        gsub(/ ?(KT_API|static|virtual|inline|explicit|const )/, " ", what)
        type = what
        sub(/\(.*/, "", type)
        sub(/^ +/, "", type)
        if (type !~ /[ *&]/) return
        name = type
        sub(/.*[ *&]/, "", name)
        sub(/[A-Za-z0-9_~]+$/, "", type)
        if (type !~ /\*|bool|int|long|short/) return
        if (name ~ /^(find|is|get|has)[A-Z]/ || name ~ /^~/) return
        if (isInline && what ~ /\( ?\)/) return
        print (class == "" ? "" : class "::") name
    }' "$header"
done | sort -u)
[ -n "$calls" ] || { echo "no calls were found" >&2; exit 1; }

# shellcheck disable=SC2086  # lists of names
covered=$(cat $tables | grep -Eo '^ *\{"[A-Za-z0-9_]+(::[A-Za-z0-9_]+)?"' | grep -Eo '[A-Za-z0-9_:]+' | sort -u)
excepted=$(grep -v '^#' "$exceptions" | grep -v '^$' | sed 's/ .*//' | sort)
failed=0
for call in $calls; do
    printf '%s\n%s\n' "$covered" "$excepted" | grep -qx "$call" ||
        { echo "$call has neither a row of a failure nor a reason in $exceptions" >&2; failed=1; }
done
for call in $excepted; do
    printf '%s\n' "$calls" | grep -qx "$call" || { echo "$exceptions names $call, which is no such call" >&2; failed=1; }
done
for call in $covered; do
    printf '%s\n' "$excepted" | grep -qx "$call" && { echo "$exceptions names $call, which has a row" >&2; failed=1; }
done
printf '%s\n' "$excepted" | uniq -d | while read -r call; do echo "$exceptions names $call twice" >&2; done
grep -v '^#' "$exceptions" | grep -v '^$' | grep -vE '^[A-Za-z0-9_:]+ +[a-z]+: .' &&
    { echo "lines of $exceptions are: CALL KIND: REASON" >&2; failed=1; }
echo "$(printf '%s\n' "$calls" | wc -l) calls, $(printf '%s\n' "$covered" | wc -l) with rows," \
    "$(printf '%s\n' "$excepted" | wc -l) without a failure"
exit "$failed"
