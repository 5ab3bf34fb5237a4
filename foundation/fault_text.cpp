// SPDX-License-Identifier: Zlib
#include "foundation/fault.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace keltra {
namespace {

// What follows the place, by code: $f is the field, $g what was found, $e what was expected; a part in
// brackets is dropped when its text is empty.
#if KELTRA_FAULT_TEXTS
const char *bodyOf(KT_FAULT_CODE code) {
    switch (code) {
        case KT_FAULT_NULL:
            return "`$f` is null";
        case KT_FAULT_ARGUMENT:
            return "`$f` is $g[, expected $e]";
        case KT_FAULT_STATE:
            return "$g";
        case KT_FAULT_FULL:
            return "$f[, $e at most]: full";
        case KT_FAULT_OUT_OF_MEMORY:
            return "out of memory";
        case KT_FAULT_FILE_NAME:
            return "the file name is empty or too long";
        case KT_FAULT_FILE_MISSING:
            return "the file does not exist";
        case KT_FAULT_FILE_ACCESS:
            return "the file cannot be opened: no permission, or it is locked";
        case KT_FAULT_FILE_KIND:
            return "not a regular file";
        case KT_FAULT_FILE_EMPTY:
            return "the file is empty";
        case KT_FAULT_FILE_SIZE:
            return "the file is too large[: $e at most]";
        case KT_FAULT_FILE_READ:
            return "the file cannot be read to its end";
        case KT_FAULT_FILE_WRITE:
            return "the file cannot be written";
        case KT_FAULT_DATA:
            return "[$f: ]$e[ (found $g)]";
        case KT_FAULT_UNKNOWN:
            return "`$g`: unknown $f[; did you mean `$e`?]";
        case KT_FAULT_MISSING:
            return "[`$f`: ]$e is missing";
        case KT_FAULT_VALUE:
            return "`$f`: found `$g`[, expected $e]";
        case KT_FAULT_REPEATED:
            return "`$g` is there again: the first one counts";
        case KT_FAULT_LINE:
            return "`$g`: the line cannot be read[, expected $e]";
        case KT_FAULT_LIMIT:
            return "$f: $g[, $e]";
        case KT_FAULT_DISPLAY:
            return "no display[: $g]";
        case KT_FAULT_START:
            return "the step `$f` of start-up failed[: $g]";
        default:
            return "";
    }
}
#endif

// Writes what fits and counts everything.
class Sentence {
   public:
    Sentence(char *text, std::size_t size) : target(text), room(size), length(0) {
        if (room) *target = '\0';
    }

    void add(char c) {
        if (length + 1 < room) {
            target[length] = static_cast<unsigned char>(c) < ' ' || c == 127 ? '?' : c;
            target[length + 1] = '\0';
        }
        ++length;
    }
    void add(const char *text) {
        for (; *text; ++text) add(*text);
    }
    void addNumber(const char *before, long number) {
        char digits[24];
        std::snprintf(digits, sizeof digits, "%ld", number);
        add(before);
        add(digits);
    }
    std::size_t size() const { return length; }

   private:
    char *target;
    std::size_t room, length;
};

void addPlace(const KTFAULT &fault, Sentence &sentence) {
    if (fault.call && *fault.call) {
        sentence.add(fault.call);
        sentence.add(": ");
    }
    const bool hasPlace = *fault.file || fault.line || fault.byte >= 0;
    sentence.add(fault.file);
    const char *comma = *fault.file ? ", " : "";
    if (fault.line || fault.byte >= 0) sentence.add(comma);
    if (fault.line)
        sentence.addNumber("line ", static_cast<long>(fault.line));
    else if (fault.byte >= 0)
        sentence.addNumber("byte ", fault.byte);
    if (*fault.neededBy) {
        sentence.add(" (needed by ");
        sentence.add(fault.neededBy);
        if (fault.neededByLine) sentence.addNumber(", line ", static_cast<long>(fault.neededByLine));
        sentence.add(")");
    }
    if (hasPlace) sentence.add(": ");
}

#if KELTRA_FAULT_TEXTS
const char *partOf(const KTFAULT &fault, char letter) {
    if (letter == 'f') return fault.field;
    return letter == 'g' ? fault.found : fault.expected;
}

void addBody(const KTFAULT &fault, Sentence &sentence) {
    for (const char *c = bodyOf(fault.code); *c; ++c) {
        if (*c == '[') {
            const char *part = std::strchr(c, '$');
            if (!*partOf(fault, part[1])) c = std::strchr(c, ']');
        } else if (*c == '$') {
            sentence.add(partOf(fault, *++c));
        } else if (*c != ']') {
            sentence.add(*c);
        }
    }
}
#else
void addBody(const KTFAULT &fault, Sentence &sentence) {
    sentence.addNumber("fault ", fault.code);
    if (!*fault.found) return;
    sentence.add(": ");
    sentence.add(fault.found);
}
#endif

}  // namespace

KTFAULT newFault(KT_FAULT_CODE code) {
    KTFAULT fault = {};
    fault.severity = KT_FAULT_ERROR;
    fault.code = code;
    fault.call = "";
    fault.byte = -1;
    return fault;
}

void setFaultText(char *target, std::size_t size, const char *text) {
    std::size_t length = 0;
    if (text)
        while (length < size - 1 && text[length]) ++length;
    if (length) std::memmove(target, text, length);
    target[length] = '\0';
}

void setFaultPath(char (&target)[256], const char *path) {
    const std::size_t length = path ? std::strlen(path) : 0;
    if (length < sizeof target) return setFaultText(target, path);
    std::memcpy(target, "...", 3);
    std::memcpy(target + 3, path + length - (sizeof target - 4), sizeof target - 3);
}

void setExpected(KTFAULT &fault, const char *format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(fault.expected, sizeof fault.expected, format, arguments);
    va_end(arguments);
}

unsigned int faultSentence(const KTFAULT &fault, char *text, std::size_t size) {
    Sentence sentence(text, size);
    addPlace(fault, sentence);
    addBody(fault, sentence);
    return static_cast<unsigned int>(sentence.size());
}

}  // namespace keltra
