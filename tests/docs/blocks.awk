# SPDX-License-Identifier: Zlib
# awk -v out=FOLDER -v source=FOLDER -f blocks.awk DOCUMENT...
# Writes the C++ blocks of documents into files: one with a main() as program_DOCUMENT.cpp, all others into fragments.cpp,
# each in a function of its own. Messages of the compiler name the document's line.

function finish(    name, place) {
    name = FILENAME
    sub(/.*\//, "", name)
    sub(/\.md$/, "", name)
    place = "#line " first " \"" source "/" FILENAME "\"\n"
    if (block ~ /int main\(/)
        printf "%s%s", place, block > (out "/program_" name ".cpp")
    else
        printf "void %s_%d() {\n%s%s}\n", name, first, place, block > (out "/fragments.cpp")
}

BEGIN { print "#include \"tests/docs/prelude.h\"" > (out "/fragments.cpp") }

/^```/ {
    inside = !inside
    if (inside) {
        language = substr($0, 4)
        first = FNR + 1
        block = ""
    } else if (language == "cpp") {
        finish()
    }
    next
}

inside { block = block $0 "\n" }
