// SPDX-License-Identifier: Zlib
#include "foundation/fault.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace keltra {
namespace {

// The parts, names and texts of foundation/fault_texts.h, one behind the other, each with its zero. A byte
// from 128 on stands for a part.
constexpr unsigned char kFirstPart = 128;
constexpr std::size_t kParts = countOf(kFaultParts), kCalls = countOf(kFaultCalls),
                      kTexts = kFaultTexts ? countOf(kFaultTextList) : 0;
static_assert(kParts <= 128, "a part is a byte");

// For each first character the parts that begin with it, longest first, as kFaultParts has them.
struct PartIndex {
    unsigned char first[128], behind[128];
};

constexpr PartIndex indexOfParts() {
    PartIndex index = {};
    for (std::size_t i = 0; i < kParts; ++i) {
        const std::size_t c = static_cast<unsigned char>(*kFaultParts[i]);
        if (index.behind[c] == 0) index.first[c] = static_cast<unsigned char>(i);
        index.behind[c] = static_cast<unsigned char>(i + 1);
    }
    return index;
}
constexpr PartIndex kPartIndex = indexOfParts();

// Packs the text behind `used` bytes and returns how many are used then. Null counts only. A part may hold
// others.
constexpr std::size_t pack(const char *text, bool isPart, unsigned char *packed, std::size_t used) {
    const char *const begin = text;
    while (*text) {
        const std::size_t c = static_cast<unsigned char>(*text);
        unsigned char byte = static_cast<unsigned char>(c);
        std::size_t length = 1;
        for (std::size_t i = kPartIndex.first[c]; i < kPartIndex.behind[c]; ++i) {
            const std::size_t shared = sharedLength(kFaultParts[i], text);
            const bool isItself = isPart && text == begin && !text[shared];
            if (kFaultParts[i][shared] || isItself) continue;
            byte = static_cast<unsigned char>(kFirstPart + i);
            length = shared;
            break;
        }
        if (packed) packed[used] = byte;
        ++used;
        text += length;
    }
    if (packed) packed[used] = 0;
    return used + 1;
}

constexpr std::size_t packAll(unsigned char *packed) {
    std::size_t used = 0;
    for (std::size_t i = 0; i < kParts; ++i) used = pack(kFaultParts[i], true, packed, used);
    for (std::size_t i = 0; i < kCalls; ++i) used = pack(kFaultCalls[i], false, packed, used);
    for (std::size_t i = 0; i < kTexts; ++i) used = pack(kFaultTextList[i], false, packed, used);
    return used;
}

struct Packed {
    unsigned char bytes[packAll(nullptr)];
};

constexpr Packed packed() {
    Packed result = {};
    packAll(result.bytes);
    return result;
}
constexpr Packed kPacked = packed();

// Writes entry `number` of what is packed, without a zero, and returns the end.
char *unpack(char *target, std::size_t number) {
    const unsigned char *byte = kPacked.bytes;
    while (number)
        if (!*byte++) --number;
    for (; *byte; ++byte)
        if (*byte < kFirstPart)
            *target++ = static_cast<char>(*byte);
        else
            target = unpack(target, *byte - kFirstPart);
    return target;
}

void unpackText(char (&target)[96], FaultText text) {
    *(kFaultTexts ? unpack(target, kParts + kCalls + static_cast<std::size_t>(text)) : target) = '\0';
}

// What comes before the text of the code.
constexpr char kPlace[] = "[$c: ]$p$,$l[ (needed by $n$m)]$:";
constexpr char kCodeOnly[] = "fault $k[: $g]";

// A pattern: a letter behind `$` stands for a piece, and a part in brackets is dropped when its first piece
// is empty.
constexpr char kLetters[] = "cp,lnm:fgek";
struct Pieces {
    const char *texts[sizeof kLetters - 1];
    const char *of(const char *letter) const { return texts[std::strchr(kLetters, *letter) - kLetters]; }
};

// Writes what fits and returns the length of everything.
std::size_t writePattern(const char *pattern, const Pieces &pieces, char *text, std::size_t size) {
    std::size_t length = 0;
    for (const char *c = pattern; *c; ++c) {
        if (*c == ']') continue;
        if (*c == '[') {
            if (!*pieces.of(std::strchr(c, '$') + 1)) c = std::strchr(c, ']');
            continue;
        }
        const char letter[] = {*c, '\0'};
        for (const char *piece = *c == '$' ? pieces.of(++c) : letter; *piece; ++piece)
            if (++length < size)
                text[length - 1] = static_cast<unsigned char>(*piece) < ' ' || *piece == 127 ? '?' : *piece;
    }
    if (size) text[length < size ? length : size - 1] = '\0';
    return length;
}

}  // namespace

KTFAULT &newFault(KT_FAULT_CODE code) {
    static KTFAULT fault;
    fault = {};
    fault.severity = KT_FAULT_ERROR;
    fault.code = code;
    fault.call = "";
    fault.byte = -1;
    return fault;
}

void setFaultText(char (&target)[96], const char *text) {
    std::snprintf(target, sizeof target, "%s", text ? text : "");
}

void setFaultPath(char (&target)[256], const char *path) {
    const std::size_t length = path ? std::strlen(path) : 0;
    const bool isCut = length >= sizeof target;
    std::snprintf(target, sizeof target, "%s%s", isCut ? "..." : "",
                  path ? path + (isCut ? length - (sizeof target - 4) : 0) : "");
}

void writeFaultText(char (&target)[96], FaultText text, ...) {
    char format[96];
    unpackText(format, text);
    std::va_list arguments;
    va_start(arguments, text);
    std::vsnprintf(target, sizeof target, format, arguments);
    va_end(arguments);
}

const char *faultCallName(FaultCall call) {
    static char names[kCalls][32];
    char(&name)[32] = names[static_cast<std::size_t>(call)];
    if (!*name) *unpack(name, kParts + static_cast<std::size_t>(call)) = '\0';
    return name;
}

unsigned int faultSentence(const KTFAULT &fault, char *text, std::size_t size) {
    char place[32] = "", needLine[32] = "", code[16], pattern[160];
    const long at = fault.line ? static_cast<long>(fault.line) : fault.byte;
    if (at >= 0) std::snprintf(place, sizeof place, fault.line ? "line %ld" : "byte %ld", at);
    if (fault.neededByLine) std::snprintf(needLine, sizeof needLine, ", line %u", fault.neededByLine);
    std::strcpy(pattern, kPlace);
    char *const body = pattern + sizeof kPlace - 1;
    if (!kFaultTexts) {
        std::snprintf(code, sizeof code, "%d", fault.code);
        std::strcpy(body, kCodeOnly);
    } else if (fault.code <= KT_FAULT_START) {
        *unpack(body, kParts + kCalls + fault.code) = '\0';
    }
    const bool hasFile = *fault.file, hasPlace = *place;
    const Pieces pieces = {{fault.call ? fault.call : "", fault.file, hasFile && hasPlace ? ", " : "", place,
                            fault.neededBy, needLine, hasFile || hasPlace ? ": " : "", fault.field,
                            fault.found, fault.expected, code}};
    return static_cast<unsigned int>(writePattern(pattern, pieces, text, size));
}

}  // namespace keltra
