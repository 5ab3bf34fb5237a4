// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_KERNING_H
#define KELTRA_FORMATS_KERNING_H

// The keys of kerning files: one for each character from 32 to 126, then three named keys. Keys match inside
// longer words: that of 'S' matches the line of SPACE too, so files list the characters that have named keys
// at their end, and so does this table.

#include <keltra/foundation.h>

#include "foundation/hidden.h"

#include <cstddef>
#include <cstring>

namespace keltra {

constexpr char kKerningComment = '#';
KT_HIDDEN extern const char kKerningPrefix[sizeof "KELTRA_kerning_"];
KT_HIDDEN extern const char *const kKerningNames[3];
KT_HIDDEN extern const char kNamedCharacters[3];
constexpr unsigned int kKerningCharacters = 127 - 32, kKerningKeys = kKerningCharacters + 3;
constexpr std::size_t kKerningKeySize = sizeof kKerningPrefix + 6;

inline char kerningCharacter(unsigned int key) {
    return key < kKerningCharacters ? static_cast<char>(' ' + key)
                                    : kNamedCharacters[key - kKerningCharacters];
}

// The text of a key, in `text`.
inline const char *kerningKey(unsigned int key, char (&text)[kKerningKeySize]) {
    std::strcpy(text, kKerningPrefix);
    char *const name = text + sizeof kKerningPrefix - 1;
    name[0] = static_cast<char>(' ' + key);
    name[1] = '\0';
    if (key >= kKerningCharacters) std::strcpy(name, kKerningNames[key - kKerningCharacters]);
    return text;
}

// The values that a text without comments has, key by key.
struct KerningValues {
    bool isThere[kKerningKeys];
    signed char value[kKerningKeys];
};

// Looks all keys up at once, each as `vnfParseInt` does: the first line that contains it. True when there is
// nothing that `checkKerning` would warn of; false when it has to look.
bool readKernings(const vnfParser &text, KerningValues &values);

}  // namespace keltra

#endif
