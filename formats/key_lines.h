// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_KEY_LINES_H
#define KELTRA_FORMATS_KEY_LINES_H

// The lines of a key-value text as its readers see them, for the checks that find lines without effect.

#include <keltra/foundation.h>

#include "formats/fault.h"
#include "formats/limits.h"

namespace keltra {

// Reads a text without comments line by line, without blanks and tabs.
class KeyLines {
   public:
    explicit KeyLines(const vnfParser &text) : parser(text), line(0) { parser.position = 0; }

    // Moves to the next line that is not empty; false at the end.
    bool next();
    const char *text() const { return squeezed; }
    // How many characters of it come before the first blank.
    std::size_t firstWord() const { return wordLength; }
    unsigned int number() const { return line; }
    // The text is longer than a line may be, and was cut.
    bool isCut() const { return cut; }
    // There were blanks or tabs between the first and the last quote.
    bool hasLostBlanks() const { return lostBlanks; }

   private:
    vnfParser parser;
    unsigned int line;
    std::size_t wordLength = 0;
    bool cut = false, lostBlanks = false;
    char squeezed[kLineSize];
};

// The warnings about the lines of a text, worded alike for all keys.
class KeyLineFaults {
   public:
    KeyLineFaults(KeyLines &lines, FaultSink &sink) : lines(lines), sink(sink) {}

    void unknown(const char *word, const char *nearest) {
        tell(KT_FAULT_UNKNOWN, faultText("key"), word, nearest);
    }
    void repeated(const char *word) { tell(KT_FAULT_REPEATED, "", word, ""); }
    void unread() { tell(KT_FAULT_LINE, "", lines.text(), faultText("a key, `=` and a value")); }
    void cut() {
        tell(KT_FAULT_LIMIT, faultText("line"), faultText("longer than 255 characters"),
             faultText("the rest is not read"));
    }
    void withoutEquals(const char *key) { tell(KT_FAULT_MISSING, key, "", "`=`"); }
    void value(const char *key, const char *found, const char *expected) {
        tell(KT_FAULT_VALUE, key, found, expected);
    }
    // True for an integer within the range; otherwise warns.
    bool integer(const char *key, const char *found, long least, long most);

   private:
    void tell(KT_FAULT_CODE code, const char *field, const char *found, const char *expected);

    KeyLines &lines;
    FaultSink &sink;
};

}  // namespace keltra

#endif
