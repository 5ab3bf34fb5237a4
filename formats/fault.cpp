// SPDX-License-Identifier: Zlib
#include "formats/fault.h"

#include "formats/plain_integer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace keltra {

namespace {

constexpr unsigned int kLongestName = 64;

// The edit distance, from the table of all prefixes. Of `wanted` a row each, of `known` a column.
unsigned int distanceOf(const char *wanted, unsigned int rows, const char *known, unsigned int columns) {
    unsigned char table[kLongestName][kLongestName];
    for (unsigned int w = 0; w <= rows; ++w)
        for (unsigned int k = 0; k <= columns; ++k) {
            unsigned char *const cell = &table[w][k];
            *cell = static_cast<unsigned char>(w + k);
            if (w == 0 || k == 0) continue;
            int steps = std::min(cell[-int{kLongestName}], cell[-1]) + 1;
            steps = std::min(steps, cell[-int{kLongestName} - 1] + (wanted[w - 1] != known[k - 1]));
            if (w > 1 && k > 1 && wanted[w - 1] == known[k - 2] && wanted[w - 2] == known[k - 1])
                steps = std::min(steps, cell[-2 * int{kLongestName} - 2] + 1);
            *cell = static_cast<unsigned char>(steps);
        }
    return table[rows][columns];
}

}  // namespace

bool refuse(Fault *fault, std::size_t offset, FaultText field, FaultText reason) {
    if (!fault) return false;
    fault->offset = offset;
    fault->limit = 0;
    fault->hasFound = false;
    fault->field = field;
    fault->reason = reason;
    fault->code = KT_FAULT_DATA;
    return false;
}

bool refuseValue(Fault *fault, std::size_t offset, FaultText field, long found, FaultText reason,
                 long limit) {
    refuse(fault, offset, field, reason);
    if (fault) {
        fault->limit = limit;
        fault->found = found;
        fault->hasFound = true;
    }
    return false;
}

bool refuseMemory(Fault *fault) {
    refuse(fault, 0, {}, KT_TEXT("out of memory"));
    if (fault) fault->code = KT_FAULT_OUT_OF_MEMORY;
    return false;
}

KTFAULT &toPublic(const Fault &fault) {
    KTFAULT &result =
        newFault(static_cast<KT_FAULT_CODE>(fault.code), fault.field, {}, fault.reason, fault.limit);
    if (fault.hasFound) setFaultNumber(result.found, fault.found);
    result.byte = static_cast<long>(fault.offset);
    return result;
}

KTFAULT &toPublic(const Fault &fault, const char *text, std::size_t size) {
    KTFAULT &result = toPublic(fault);
    result.byte = -1;
    result.line = lineAt(text, size, fault.offset);
    return result;
}

KTFAULT &unknownName(FaultText what, const char *whole, const NearestName &name) {
    KTFAULT &fault = newFault(KT_FAULT_UNKNOWN, what, {}, {}, whole);
    fault.severity = KT_FAULT_WARNING;
    setFaultText(fault.found, name.found());
    setFaultText(fault.expected, name.name());
    return fault;
}

FaultText integerFlaw(const char *text, long least, long most) {
    long plain;
    if (plainInteger(text, plain) && plain >= least && plain <= most) return {};
    char *end = nullptr;
    errno = 0;
    const long number = std::strtol(text, &end, 10);
    if (end == text || *end) return KT_TEXT("a whole number");
    return errno == 0 && number >= least && number <= most ? FaultText() : KT_TEXT("%ld to %ld");
}

unsigned int lineAt(const char *text, std::size_t size, std::size_t offset) {
    unsigned int line = 1;
    for (std::size_t i = 0; i < offset && i < size; ++i)
        line += text[i] == '\n' || (text[i] == '\r' && (i + 1 == size || text[i + 1] != '\n'));
    return line;
}

NearestName::NearestName(const char *wanted)
    : wanted(wanted), nearest(""), least(static_cast<unsigned int>(std::strlen(wanted) / 3 + 1)) {}

void NearestName::offer(const char *known) {
    const std::size_t length = std::strlen(wanted), knownLength = std::strlen(known);
    const std::size_t difference = knownLength > length ? knownLength - length : length - knownLength;
    if (length >= kLongestName || knownLength >= kLongestName || difference >= least) return;
    const unsigned int distance =
        distanceOf(wanted, static_cast<unsigned int>(length), known, static_cast<unsigned int>(knownLength));
    if (distance >= least) return;
    least = distance;
    nearest = known;
}

void NearestName::offerEach(const char *const *name, std::size_t count, std::size_t step) {
    for (; count; --count, name += step) offer(*name);
}

}  // namespace keltra
