# SPDX-License-Identifier: Zlib
# awk -v out=FILE -f exports.awk HEADER...: writes the linker's version script, which says what of the public headers' names
# stays inside the library: the private members of its classes, which would be a fifth of it. A name that the class also has
# as a public or protected one stays exported.
BEGIN { end = "[!A-Za-z0-9_]*" }

# Notes the name that a declaration of a function or of static data has.
function declare(text) {
    gsub(/<[^<>]*>/, "", text)
    if (text ~ /friend|operator|^ *(class|struct|enum|using) /) return
    if (text !~ /\(/ && text !~ /static/) return
    sub(/[(=;[].*/, "", text)
    if (!match(text, /[A-Za-z_0-9]+ *$/)) return
    text = substr(text, RSTART)
    sub(/ +$/, "", text)
    if (text != class) names[class "::" text] = names[class "::" text] " " access
}

/^ *(\/\/|\/\*|\*)/ { next }
{ sub(/\/\/.*/, "") }
opening {
    opening = $0 !~ /\{/
    next
}
/^class [^;]*$/ {
    opening = $0 !~ /\{/
    sub(/^class (KT(KIT)?_API )?/, "")
    sub(/[ :].*/, "")
    class = $0
    access = "private"
    depth = 0
    text = ""
    next
}
/^};/ { class = "" }
class == "" { next }
/^ *(public|protected|private):/ {
    access = $1
    sub(/:.*/, "", access)
    text = ""
    next
}
# What an inline function takes the address of is exported.
match($0, /&KT[A-Z]+::[a-z][A-Za-z0-9]*/) {
    name = substr($0, RSTART + 1, RLENGTH - 1)
    names[name] = names[name] " public"
}
# Of a nested class or a body only the line that opens it is looked at.
{
    opened = gsub(/\{/, "{") - gsub(/\}/, "}")
    if (depth == 0) text = text " " $0
    if (depth == 0 && ($0 ~ /[;{]/)) {
        declare(text)
        text = ""
    }
    depth += opened
}

END {
    print "{ local:" >out
    # Templates of the C++ library that are instantiated in the engine.
    print "_ZSt*; _ZNSt*; _ZNKSt*;" >out
    print "extern \"C++\" {" >out
    # Of the base of all listed classes, a template: what is inline, of which each program has its own, and what no inline
    # function calls.
    count = split("KTREGISTERED ?KTREGISTERED operator? objectOf isRegistered isFromNew isHeld markHeld setHeld" \
        " registeredNext registeredPrevious count destroyAll enlist fieldsAssigned findRegistered firstRegistered list" \
        " nameChanged nameOf show", base, " ")
    print "KTREGISTERED*::operator?new*??void??; KTREGISTERED*::operator?delete*??void??;" >out
    for (i = 1; i <= count; ++i) print "KTREGISTERED*::" base[i] end ";" >out
    for (name in names)
        if (names[name] !~ /public|protected/) print name "; " name end ";" >out
    print "}; };" >out
}
