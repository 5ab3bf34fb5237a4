// SPDX-License-Identifier: Zlib
#include "formats/fault.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace keltra {

namespace {

KTFAULT withReason(const Fault &fault) {
    KTFAULT result = newFault(fault.code);
    setFaultText(result.field, fault.field);
    if (fault.hasFound) std::snprintf(result.found, sizeof result.found, "%ld", fault.found);
    std::snprintf(result.expected, sizeof result.expected, fault.reason ? fault.reason : "", fault.first,
                  fault.second);
    return result;
}

}  // namespace

bool noteFault(Fault *fault, const Fault &noted) {
    if (fault) *fault = noted;
    return false;
}

bool refuseMemory(Fault *fault) {
    return noteFault(fault, {0, "", faultText("out of memory"), 0, 0, false, 0, KT_FAULT_OUT_OF_MEMORY});
}

KTFAULT toPublic(const Fault &fault) {
    KTFAULT result = withReason(fault);
    result.byte = static_cast<long>(fault.offset);
    return result;
}

KTFAULT toPublic(const Fault &fault, const char *text, std::size_t size) {
    KTFAULT result = withReason(fault);
    result.line = lineAt(text, size, fault.offset);
    return result;
}

unsigned int lineAt(const char *text, std::size_t size, std::size_t offset) {
    unsigned int line = 1;
    for (std::size_t i = 0; i < offset && i < size; ++i)
        line += text[i] == '\n' || (text[i] == '\r' && (i + 1 == size || text[i + 1] != '\n'));
    return line;
}

NearestName::NearestName(const char *wanted)
    : wanted(wanted), nearest(""), wantedLength(std::strlen(wanted)), least(wantedLength / 3 + 1) {}

void NearestName::offer(const char *known) {
    const std::size_t length = std::strlen(known);
    const std::size_t difference = length > wantedLength ? length - wantedLength : wantedLength - length;
    if (wantedLength >= kLongest || length >= kLongest || difference >= least) return;
    const std::size_t distance = distanceTo(known, length);
    if (distance >= least) return;
    least = distance;
    nearest = known;
}

// The edit distance, computed one row of the table of prefixes at a time.
std::size_t NearestName::distanceTo(const char *known, std::size_t length) const {
    unsigned char rows[3][kLongest];
    for (std::size_t k = 0; k <= length; ++k) rows[0][k] = static_cast<unsigned char>(k);
    for (std::size_t w = 1; w <= wantedLength; ++w) {
        unsigned char *row = rows[w % 3], *above = rows[(w + 2) % 3], *second = rows[(w + 1) % 3];
        row[0] = static_cast<unsigned char>(w);
        for (std::size_t k = 1; k <= length; ++k) {
            int steps = std::min(above[k], row[k - 1]) + 1;
            steps = std::min(steps, above[k - 1] + (wanted[w - 1] != known[k - 1]));
            if (w > 1 && k > 1 && wanted[w - 1] == known[k - 2] && wanted[w - 2] == known[k - 1])
                steps = std::min(steps, second[k - 2] + 1);
            row[k] = static_cast<unsigned char>(steps);
        }
    }
    return rows[wantedLength % 3][length];
}

}  // namespace keltra
