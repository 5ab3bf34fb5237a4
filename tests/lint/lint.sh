#!/bin/sh
# SPDX-License-Identifier: Zlib
# lint.sh BUILD [FILE...]: what other readers of the sources say: clang-tidy with .clang-tidy, cppcheck with what cppcheck.txt leaves
# out, the compiler's -Wconversion, and gcc's -fanalyzer for sources without classes. BUILD is configured with clang. Without
# FILEs: the library and its kit. Returns 1 when one of them says anything.
set -u
cd "$(dirname "$0")/../.." || exit 2
build=$1
shift
rooms='platform foundation math formats core resources scene gui engine kit'
# shellcheck disable=SC2046,SC2086  # lists of names
[ $# -gt 0 ] || set -- $(git ls-files $(printf '%s/*.cpp ' $rooms) | grep -v '[_/]windows')
status=0
flags="-std=c++17 -fconstexpr-ops-limit=1000000000 -DKELTRA_BUILDING -DKELTRA_FAULT_TEXTS=1 -I. -Iinclude $(pkg-config --cflags sdl libmpeg2)"

say() { echo "lint: $1"; }

say clang-tidy
printf '%s\n' "$@" | xargs -P "$(nproc)" -n 1 clang-tidy -p "$build" --quiet 2>/dev/null || status=1

say cppcheck
cppcheck --std=c++17 --language=c++ --enable=warning,performance,portability --inline-suppr --quiet --error-exitcode=1 \
    --suppressions-list=tests/lint/cppcheck.txt -j "$(nproc)" -DKELTRA_FAULT_TEXTS=1 -Iinclude -I. "$@" || status=1

say -Wconversion
for file in "$@"; do
    case $file in
        tools/*) continue ;; # floats there come from doubles of models
    esac
    # shellcheck disable=SC2086  # a list of options
    g++ $flags -fsyntax-only -Wconversion -Werror "$file" || status=1
done

say -fanalyzer
for file in "$@"; do
    case $file in
        platform/linux.cpp | foundation/*) ;;
        *) continue ;; # it knows few classes
    esac
    # shellcheck disable=SC2086
    g++ $flags -O1 -S -o /dev/null -fanalyzer -Wno-analyzer-null-dereference -Werror=analyzer-double-free -Werror=analyzer-use-after-free \
        -Werror=analyzer-file-leak -Werror=analyzer-malloc-leak "$file" || status=1
done
[ $status -ne 0 ] || say "nothing to say"
exit $status
