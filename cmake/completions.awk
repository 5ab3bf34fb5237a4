# SPDX-License-Identifier: Zlib
# awk -v shell=bash|zsh|fish -v tool=NAME: completions for a tool, made of what its --help prints.

# "  -o,--output TEXT            Output folder": two blanks, then the names, then what they take; the description on this line or
# on the next.
/^Options:/ { options = 1; next }
/^[^ ]/ || /^$/ { options = 0 }
options && /^  -/ {
    match($0, /^  [^ ]+/)
    split(substr($0, 3, RLENGTH - 2), names, ",")
    rest = substr($0, RLENGTH + 1)
    count++
    short[count] = names[2] != "" ? names[1] : ""
    long[count] = names[2] != "" ? names[2] : names[1]
    description[count] = ""
    takes[count] = ""
    repeated[count] = rest ~ /^ [^ ]+ \.\.\./ || rest ~ /may be (given|repeated)/
    if (match(rest, /^ [A-Z][^ ]*/)) takes[count] = substr(rest, 2, RLENGTH - 1)
    if (takes[count] ~ /^(Excludes|Needs):/) takes[count] = ""
    if (match(rest, /  +[^ ].*$/)) description[count] = substr(rest, RSTART)
    sub(/^ +/, "", description[count])
    next
}
options && /^ +[^ ]/ && description[count] == "" { sub(/^ +/, ""); description[count] = $0 }

# "FILE", "FOLDER", "NONE", or the words between braces.
function kind(i) {
    if (takes[i] == "") return ""
    if (match(takes[i], /\{[^}]*\}/)) return substr(takes[i], RSTART + 1, RLENGTH - 2)
    if (takes[i] ~ /^(U?INT|FLOAT|NUMBER)/) return "NONE"
    if (takes[i] ~ /DIR/ || description[i] ~ /[Ff]older/) return "FOLDER"
    if (takes[i] ~ /^FILE/ || description[i] ~ /[Ff]ile([ ,.;]|$)/) return "FILE"
    return "NONE"
}

function escaped(text, signs) {
    gsub("[" signs "]", "\\\\&", text)
    return text
}

function bash(  i, all, function_name) {
    function_name = "_" tool
    gsub("-", "_", function_name)
    print "# bash completion for " tool ", made of its --help"
    print function_name "() {"
    print "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}"
    print "    case $before in"
    for (i = 1; i <= count; i++) {
        all = all (i > 1 ? " " : "") long[i] (short[i] != "" ? " " short[i] : "")
        if (takes[i] == "") continue
        printf "        %s) ", (short[i] != "" ? short[i] "|" : "") long[i]
        if (kind(i) == "NONE") print "COMPREPLY=(); return ;;"
        else if (kind(i) == "FOLDER") print "mapfile -t COMPREPLY < <(compgen -d -- \"$word\"); return ;;"
        else if (kind(i) == "FILE") print "mapfile -t COMPREPLY < <(compgen -f -- \"$word\"); return ;;"
        else {
            words = kind(i)
            gsub(",", " ", words)
            print "mapfile -t COMPREPLY < <(compgen -W '" words "' -- \"$word\"); return ;;"
        }
    }
    print "    esac"
    print "    if [[ $word == -* ]]; then"
    print "        mapfile -t COMPREPLY < <(compgen -W '" all "' -- \"$word\")"
    print "    else"
    print "        mapfile -t COMPREPLY < <(compgen -f -- \"$word\")"
    print "    fi"
    print "}"
    print "complete -o filenames -F " function_name " " tool
}

function zsh(  i, names, action) {
    print "#compdef " tool
    print "# made of its --help"
    print "_arguments -s \\"
    for (i = 1; i <= count; i++) {
        action = ""
        if (kind(i) == "NONE") action = ":value:"
        else if (kind(i) == "FOLDER") action = ":folder:_files -/"
        else if (kind(i) == "FILE") action = ":file:_files"
        else if (takes[i] != "") {
            action = kind(i)
            gsub(",", " ", action)
            action = ":kind:(" action ")"
        }
        names = short[i] != "" ? "'(" short[i] " " long[i] ")'{" short[i] "," long[i] "}'" : "'" (repeated[i] ? "*" : "") long[i]
        gsub("'", "’", description[i])
        print "    " names "[" escaped(description[i], "]\\[:") "]" action "' \\"
    }
    print "    '*:file:_files'"
}

function fish(  i, line, words) {
    print "# fish completion for " tool ", made of its --help"
    for (i = 1; i <= count; i++) {
        line = "complete -c " tool (short[i] != "" ? " -s " substr(short[i], 2) : "") " -l " substr(long[i], 3)
        if (kind(i) == "NONE") line = line " -x"
        else if (kind(i) == "FOLDER") line = line " -x -a '(__fish_complete_directories)'"
        else if (kind(i) == "FILE") line = line " -r -F"
        else if (takes[i] != "") {
            words = kind(i)
            gsub(",", " ", words)
            line = line " -x -a '" words "'"
        }
        print line " -d '" escaped(description[i], "'\\\\") "'"
    }
}

END {
    if (count == 0) {
        print "completions.awk: " tool " --help lists no options" >"/dev/stderr"
        exit 1
    }
    if (shell == "bash") bash()
    else if (shell == "zsh") zsh()
    else fish()
}
