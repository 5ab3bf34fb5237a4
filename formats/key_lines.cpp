// SPDX-License-Identifier: Zlib
#include "formats/key_lines.h"

#include "formats/plain_integer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace keltra {

bool KeyLines::next() {
    char raw[kLineSize];
    for (;;) {
        const std::int32_t begin = parser.position;
        if (!vnfReadLine(&parser, raw)) return false;
        ++line;
        std::int32_t end = std::min(parser.position, parser.size);
        if (end > begin && (parser.buffer[end - 1] == '\n' || parser.buffer[end - 1] == '\r')) --end;
        cut = end - begin >= static_cast<std::int32_t>(kLineSize);
        lostBlanks = false;
        wordLength = 0;
        bool isQuoted = false, hasBlank = false;  // since the first quote
        char *kept = squeezed;
        for (const char *c = raw; *c; ++c) {
            const bool isBlank = *c == ' ' || *c == '\t';
            if (isBlank && wordLength == 0) wordLength = static_cast<std::size_t>(kept - squeezed);
            hasBlank = hasBlank || (isBlank && isQuoted);
            if (*c == '"') {
                isQuoted = true;
                lostBlanks = hasBlank;
            }
            if (!isBlank && *c != '\r') *kept++ = *c;
        }
        *kept = '\0';
        if (wordLength == 0) wordLength = static_cast<std::size_t>(kept - squeezed);
        if (kept != squeezed) return true;
    }
}

void KeyLineFaults::tell(KT_FAULT_CODE code, const char *field, const char *found, const char *expected) {
    KTFAULT fault = newFault(code);
    fault.severity = KT_FAULT_WARNING;
    fault.line = lines.number();
    setFaultText(fault.field, field);
    setFaultText(fault.found, found);
    setFaultText(fault.expected, expected);
    sink.warn(fault);
}

bool KeyLineFaults::integer(const char *key, const char *found, long least, long most) {
    long plain;
    if (plainInteger(found, plain) && plain >= least && plain <= most) return true;
    char *end = nullptr;
    errno = 0;
    const long number = std::strtol(found, &end, 10);
    const bool isNumber = end != found && *end == '\0';
    if (isNumber && errno == 0 && number >= least && number <= most) return true;
    char range[64];
    std::snprintf(range, sizeof range, "%ld to %ld", least, most);
    value(key, found, isNumber ? range : faultText("a whole number"));
    return false;
}

}  // namespace keltra
