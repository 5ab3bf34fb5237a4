// SPDX-License-Identifier: Zlib
#include "formats/kerning.h"

#include "formats/limits.h"
#include "formats/plain_integer.h"
#include "foundation/quiet.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace keltra {

const char kKerningPrefix[] = "KELTRA_kerning_";
const char *const kKerningNames[] = {"SPACE", "DIESIS", "EQUAL"};
const char kNamedCharacters[] = {' ', '#', '='};

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

const char *skipBlanks(const char *c) {
    while (*c == ' ' || *c == '\t') ++c;
    return c;
}

// The line feed behind a number of up to three digits that fits; null for anything else.
const char *readPlainValue(const char *c, int &value) {
    const bool isNegative = *c == '-';
    const char *const first = c += isNegative;
    for (value = 0; *c >= '0' && *c <= '9' && c - first < 3; ++c) value = 10 * value + (*c - '0');
    if (c == first) return nullptr;
    if (isNegative) value = -value;
    c = skipBlanks(c);
    c += *c == '\r';
    return *c == '\n' && value >= SCHAR_MIN && value <= SCHAR_MAX ? c : nullptr;
}

// Takes the value of a line as tools write it: blank, or a key that was not there yet, `=` and a value that
// fits. Returns what is behind its line feed, and null for all other lines.
const char *takePlainLine(KerningValues &values, const char *const line) {
    const char *c = skipBlanks(line);
    if (*c == '\n') return c + 1;
    c = line;
    for (const char *prefix = kKerningPrefix; *prefix; ++prefix, ++c)
        if (*c != *prefix) return nullptr;
    unsigned int key = characterKey(c);
    if (key == kNoKey || *c == ' ') return nullptr;
    const char *separator = skipBlanks(c + 1);
    if (*separator != '=') {
        // Its first letter is a key too, which this line would set.
        if (!values.isThere[key]) return nullptr;
        std::size_t length = 0;
        for (key = kKerningCharacters; key < kKerningKeys; ++key)
            if ((length = namedKey(c, key - kKerningCharacters))) break;
        separator = skipBlanks(c + length);
    }
    int value;
    if (*separator != '=' || key == kNoKey || values.isThere[key]) return nullptr;
    const char *const end = readPlainValue(skipBlanks(separator + 1), value);
    if (!end || static_cast<std::size_t>(end - line) >= kLineSize) return nullptr;
    values.isThere[key] = true;
    values.value[key] = static_cast<signed char>(value);
    return end + 1;
}

// The place behind the plain lines from `line` on.
const char *takePlainLines(KerningValues &values, const char *line, const char *end) {
    while (end > line && end[-1] != '\n') --end;
    while (line < end) {
        const char *const next = takePlainLine(values, line);
        if (!next) break;
        line = next;
    }
    return line;
}

}  // namespace

bool readKernings(const vnfParser &text, KerningValues &values) {
    values = {};
    vnfParser lines = text;
    const char *const begin = text.buffer, *const plain = takePlainLines(values, begin, begin + text.size);
    lines.position = static_cast<std::int32_t>(plain - begin);
    if (lines.position == lines.size) return true;
    char line[kLineSize];
    while (vnfReadLine(&lines, line)) {
        squeezeLine(line);
        takeLine(values, line);
    }
    return false;
}

}  // namespace keltra
