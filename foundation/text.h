// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_TEXT_H
#define KELTRA_FOUNDATION_TEXT_H

#include <cstddef>
#include <cstring>

namespace keltra {

// Copies text into a fixed array of 256 characters; null counts as empty, longer text is cut.
inline void copyText(char (&target)[256], const char *text) {
    std::size_t length = 0;
    if (text)
        while (length < sizeof target - 1 && text[length]) ++length;
    if (length) std::memmove(target, text, length);
    target[length] = '\0';
}

// Copies a name into its array when it is shorter than 256 characters; null and longer names leave the array
// as it was.
inline void copyName(char (&target)[256], const char *text) {
    if (!text || !std::memchr(text, '\0', sizeof target)) return;
    std::memmove(target, text, std::strlen(text) + 1);
}

}  // namespace keltra

#endif
