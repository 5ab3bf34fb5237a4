// SPDX-License-Identifier: Zlib
#include "formats/kerning.h"

#include "formats/key_lines.h"
#include "formats/plain_integer.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace keltra {

namespace {

constexpr std::size_t kPrefixLength = sizeof kKerningPrefix - 1;

constexpr unsigned int kNoKey = kKerningKeys;

bool hasPrefix(const char *line) {
    for (const char *c = kKerningPrefix; *c; ++c, ++line)
        if (*line != *c) return false;
    return true;
}

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

class KerningCheck {
   public:
    KerningCheck(const vnfParser &text, FaultSink &sink) : lines(text), faults(lines, sink), met() {}

    void run() {
        while (lines.next()) checkLine();
    }

   private:
    void checkLine() {
        if (lines.isCut()) faults.cut();
        if (!hasPrefix(lines.text())) return checkStranger();
        const char *name = lines.text() + kPrefixLength;
        for (unsigned int i = kKerningKeys - kKerningCharacters; i-- > 0;) {
            const std::size_t length = namedKey(name, i);
            if (length && name[length] == '=') return checkValue(kKerningCharacters + i, name + length + 1);
        }
        const unsigned int key = characterKey(name);
        if (key != kNoKey && name[1] == '=') return checkValue(key, name + 2);
        checkName();
    }

    void checkValue(unsigned int key, const char *value) {
        long number;
        const bool isGood = plainInteger(value, number) && number >= SCHAR_MIN && number <= SCHAR_MAX;
        if (isGood && !met[key]) return void(met[key] = true);
        char text[kKerningKeySize];
        kerningKey(key, text);
        if (met[key]) return faults.repeated(text);
        met[key] = true;
        faults.integer(text, value, SCHAR_MIN, SCHAR_MAX);
    }

    // The name is unknown, or nothing separates it from its value.
    void checkName() {
        char word[kLineSize];
        std::strcpy(word, lines.text());
        char *equals = std::strchr(word, '=');
        if (!equals) return faults.unread();
        *equals = '\0';
        NearestName nearest(word);
        char keys[kKerningKeys - kKerningCharacters][kKerningKeySize];
        for (unsigned int i = 0; i < kKerningKeys - kKerningCharacters; ++i)
            nearest.offer(kerningKey(kKerningCharacters + i, keys[i]));
        faults.unknown(word, nearest.name());
    }

    // A line that does not begin like a key may still be one that is misspelt.
    void checkStranger() {
        char word[kLineSize];
        std::strcpy(word, lines.text());
        if (char *equals = std::strchr(word, '=')) {
            *equals = '\0';
            char nearestKey[kKerningKeySize] = "";
            const std::size_t length = std::strlen(word);
            if (length > 0) {
                // The last character is the one that the key is for.
                std::strcpy(nearestKey, kKerningPrefix);
                nearestKey[kPrefixLength] = word[length - 1];
                nearestKey[kPrefixLength + 1] = '\0';
            }
            NearestName nearest(word);
            nearest.offer(nearestKey);
            if (*nearest.name()) return faults.unknown(word, nearest.name());
        }
        faults.unread();
    }

    KeyLines lines;
    KeyLineFaults faults;
    bool met[kKerningKeys];
};

}  // namespace

void readKernings(const vnfParser &text, KerningValues &values) {
    values = {};
    vnfParser lines = text;
    lines.position = 0;
    char line[kLineSize];
    while (vnfReadLine(&lines, line)) {
        char *kept = line;
        for (const char *read = line; *read; ++read)
            if (*read != ' ' && *read != '\t') *kept++ = *read;
        *kept = '\0';
        takeLine(values, line);
    }
}

void checkKerning(const vnfParser &text, FaultSink &sink) { KerningCheck(text, sink).run(); }

}  // namespace keltra
