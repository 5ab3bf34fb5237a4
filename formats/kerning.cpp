// SPDX-License-Identifier: Zlib
#include "formats/kerning.h"

#include "formats/limits.h"
#include "formats/plain_integer.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace keltra {

namespace {

constexpr std::size_t kPrefixLength = sizeof kKerningPrefix - 1;

constexpr unsigned int kNoKey = kKerningKeys;

// The key of the single character at `name`.
unsigned int characterKey(const char *name) {
    const unsigned int key = static_cast<unsigned char>(*name) - unsigned{' '};
    return key < kKerningCharacters ? key : kNoKey;
}

// The length of the named key at `name`, behind the prefix; 0 for another one.
std::size_t namedKey(const char *name, unsigned int named) {
    if (*name != *kKerningNames[named]) return 0;
    const std::size_t length = std::strlen(kKerningNames[named]);
    return std::strncmp(name, kKerningNames[named], length) == 0 ? length : 0;
}

// Keys match inside longer words, so the first place of each one counts.
void takeValue(KerningValues &values, unsigned int key, const char *separator) {
    if (values.isThere[key]) return;
    const char *const text = *separator ? separator + 1 : separator;
    long number;
    if (!plainInteger(text, number)) number = std::strtol(text, nullptr, 10);
    values.isThere[key] = true;
    values.value[key] = static_cast<signed char>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

void takeLine(KerningValues &values, const char *line) {
    for (const char *at = line; (at = std::strstr(at, kKerningPrefix)); ++at) {
        const char *name = at + kPrefixLength;
        const unsigned int key = characterKey(name);
        if (key != kNoKey) takeValue(values, key, name + 1);
        for (unsigned int i = 0; i < kKerningKeys - kKerningCharacters; ++i)
            if (const std::size_t length = namedKey(name, i))
                takeValue(values, kKerningCharacters + i, name + length);
    }
}

}  // namespace

void readKernings(const vnfParser &text, KerningValues &values) {
    values = {};
    vnfParser lines = text;
    lines.position = 0;
    char line[kLineSize];
    while (vnfReadLine(&lines, line)) {
        char *kept = line;
        for (const char *read = line; *read; ++read)
            if (static_cast<unsigned char>(*read) > ' ' || (*read != ' ' && *read != '\t')) *kept++ = *read;
        *kept = '\0';
        takeLine(values, line);
    }
}

}  // namespace keltra
