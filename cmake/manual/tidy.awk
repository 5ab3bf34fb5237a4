# SPDX-License-Identifier: Zlib
# awk -v title= -v section= -v date= -v version=: a manual page as pandoc or doxygen writes it, with a heading of its own and without
# what mandoc complains of: paragraphs that are empty, begin a section or end one, fonts that a terminal does not have, and blanks
# at the end of a line. The author, who is doxygen, is left out.
# The line in pieces of at most 79 bytes, none of which reads as a request.
function wrapped(line,  i) {
    while (length(line) > 79) {
        for (i = 79; i > 1 && substr(line, i, 1) != " "; i--) continue
        if (i == 1) break
        print substr(line, 1, i - 1)
        line = substr(line, i + 1)
        if (line ~ /^[.']/) line = "\\&" line
    }
    print line
}
/^\.TH/ {
    print ".TH \"" toupper(title) "\" \"" section "\" \"" date "\" \"" version "\" \"" version "\""
    print ".ad l"
    next
}
/^\.SH "?Author/ { exit }
{
    gsub(/\\f(\[C\]|\[V\]|C)/, "\\fB")
    gsub(/\\f[BI]\\f[BI]/, "\\fB")
    gsub(/\\fP\\fP/, "\\fP")
    sub(/[ \t]+"$/, "\"")
    sub(/[ \t]+$/, "")
}
# The name as it is looked for, and what man -k prints of a header that says nothing of itself.
/^\.SH NAME/ { inName = 1 }
inName && /^[^.]/ {
    inName = 0
    header = $1
    description = match($0, / \\?- /) ? substr($0, RSTART) : " \\- what <" header "> declares"
    $0 = title description
}
/^\.nf/ { verbatim = 1 }
/^\.fi/ { verbatim = 0 }
/^$/ && !verbatim { next }
/^\.(PP|br|sp)$/ && !verbatim {
    if (begun && (held == "" || $0 == ".PP")) held = $0
    next
}
/^\.(SH|SS)/ { held = ""; begun = 0; print; next }
/^\.(RS|RE|in|ti)/ { held = ""; print; next }
{
    if (held != "") print held
    held = ""
    begun = 1
    if (/^\./ || verbatim) print
    else wrapped($0)
}
