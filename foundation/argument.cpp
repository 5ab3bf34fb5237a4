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

void keltra::writeName(char (&target)[256], const char *pattern, unsigned int id) {
    const std::size_t before = std::strcspn(pattern, "%");
    const char *const behind = pattern + before + 2;
    char digits[10];
    if (before + sizeof digits >= sizeof target / 2 || std::strncmp(pattern + before, "%d", 2) != 0 ||
        std::strchr(behind, '%') || std::strlen(behind) >= sizeof target / 2 || id > INT_MAX) {
        std::snprintf(target, sizeof target, pattern, id);
        return;
    }
    std::memcpy(target, pattern, before);
    unsigned int length = 0;
    do digits[length++] = static_cast<char>('0' + id % 10);
    while (id /= 10);
    char *end = target + before;
    while (length > 0) *end++ = digits[--length];
    std::strcpy(end, behind);
}
