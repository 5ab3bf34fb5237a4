// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_PLAIN_INTEGER_H
#define KELTRA_FORMATS_PLAIN_INTEGER_H

#include <cstdint>

namespace keltra {

// True for a text of up to nine digits and a minus sign at most, which `strtol` would read as a whole; it
// takes over a hundred instructions more.
[[gnu::noinline]] inline bool plainInteger(const char *text, long &value) {
    const bool isNegative = *text == '-';
    const char *const first = text + isNegative, *c = first;
    std::int32_t digits = 0;
    for (; *c >= '0' && *c <= '9' && c - first < 9; ++c) digits = 10 * digits + (*c - '0');
    if (*c || c == first) return false;
    value = isNegative ? -digits : digits;
    return true;
}

}  // namespace keltra

#endif
