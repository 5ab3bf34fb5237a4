// SPDX-License-Identifier: Zlib
#include "foundation/argument.h"

#include "foundation/fault.h"
#include "foundation/text.h"

#include <climits>
#include <cstdio>
#include <cstring>

void keltra::takeText(char (&target)[256], const char *text, FaultCall call, FaultText argument) {
    // Checked first: the text may be the target itself.
    const bool cut = text && !std::memchr(text, '\0', sizeof target);
    copyText(target, text);
    if (cut) warnLong(call, argument);
}

bool keltra::takeName(char (&target)[256], const char *text, FaultCall call) {
    if (!text) return failNull(call, KT_TEXT("text"));
    if (!std::memchr(text, '\0', sizeof target)) return failLong(call, KT_TEXT("text"));
    copyName(target, text);
    return true;
}

namespace {

// Writes the number and returns its end. Smaller ones are divided by a multiplication.
char *writeNumber(char *target, unsigned int number) {
    char digits[10];
    unsigned int length = 0;
    do {
        const unsigned int rest = number < 65536 ? number * 52429 >> 19 : number / 10;
        digits[length++] = static_cast<char>('0' + (number - 10 * rest));
        number = rest;
    } while (number);
    while (length > 0) *target++ = digits[--length];
    return target;
}

}  // namespace

void keltra::writeName(char (&target)[256], const char *pattern, unsigned int id) {
    char *to = target, *const full = target + sizeof target / 2;
    bool isWritten = id > INT_MAX;
    for (const char *from = pattern; to < full; ++from) {
        *to = *from;
        if (*from == '\0') return;
        if (*from != '%') {
            ++to;
            continue;
        }
        if (isWritten || *++from != 'd') break;
        isWritten = true;
        to = writeNumber(to, id);
    }
    std::snprintf(target, sizeof target, pattern, id);
}
