#!/bin/bash
# SPDX-License-Identifier: Zlib
# completions.sh PROGRAM FOLDER: whether the completions in FOLDER hold every option that the program lists, and whether bash,
# zsh and fish, those of them that are installed, take them.
set -eu
program=$1
folder=$2
tool=$(basename "$program")
fail() {
    echo "completions.sh: $tool: $1" >&2
    exit 1
}

mapfile -t options < <("$program" --help | grep -oE -- '^  (-[a-z],)?--[a-z][a-z-]*' | grep -oE -- '--[a-z-]+')
[ "${#options[@]}" -gt 1 ] || fail "it lists no options"
for option in "${options[@]}"; do
    grep -qE -- "[ '{,*]${option}[]' [*}]" "$folder/_$tool" || fail "zsh: no $option"
    grep -qE -- " -l ${option#--} " "$folder/$tool.fish" || fail "fish: no $option"
done

# complete WORD...: what bash offers for the last word.
# shellcheck source=/dev/null
. "$folder/$tool"
offered() {
    COMP_WORDS=("$tool" "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    "_${tool//-/_}"
    printf '%s\n' "${COMPREPLY[@]}"
}
for option in "${options[@]}"; do
    offered "$option" | grep -qx -- "$option" || fail "bash: no $option"
done
[ -z "$(offered --no-such-option)" ] || fail "bash offers an option that is none"
cd "$folder"
offered "$tool.f" | grep -qx "$tool.fish" || fail "bash offers no files"
case $tool in
    keltra-convert) [ -z "$(offered --fps '')" ] || fail "bash offers files for a number" ;;
    keltra-info) [ "$(offered --as kt)" = "$(printf 'kte\nkta')" ] || fail "bash does not offer the words of --as" ;;
esac

! command -v zsh >/dev/null || zsh -n "$folder/_$tool" || fail "zsh does not take it"
if command -v fish >/dev/null; then
    found=$(fish --no-config -c "source $folder/$tool.fish; complete -C '$tool --'") || fail "fish does not take it"
    for option in "${options[@]}"; do
        grep -q -- "^$option" <<<"$found" || fail "fish does not offer $option"
    done
fi
echo "${#options[@]} options"
