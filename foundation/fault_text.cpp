// SPDX-License-Identifier: Zlib
#include "foundation/fault.h"

#include "foundation/packed_text.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace keltra {
namespace {

// The names and texts of foundation/fault_texts.h.
constexpr std::size_t kCalls = countOf(kFaultCalls), kTexts = kFaultTexts ? countOf(kFaultTextList) : 0;

constexpr const char *textAt(std::size_t number) {
    return number < kCalls ? kFaultCalls[number] : kFaultTextList[number - kCalls];
}

constexpr std::size_t sizeOfTexts() {
    std::size_t size = 0;
    for (std::size_t i = 0; i < kCalls + kTexts; ++i) size += sharedLength(textAt(i), textAt(i)) + 1;
    return size;
}
constexpr std::size_t kTextSize = sizeOfTexts();

struct Packing {
    unsigned char bytes[kTextSize];
    std::size_t size;
};

constexpr Packing packTexts() {
    Packing packing = {};
    PackedText<kTextSize> text;
    PackedWriter writer(packing.bytes);
    std::size_t number = 0;
    for (std::size_t i = 0; i < kCalls + kTexts; ++i) {
        const char *c = textAt(i);
        do text.take(number++, writer, *c);
        while (*c++);
    }
    packing.size = writer.finish();
    return packing;
}

constexpr Packing kPacking = packTexts();

struct Packed {
    unsigned char bytes[kPacking.size];
};

constexpr Packed firstOf(const Packing &packing) {
    Packed packed = {};
    for (std::size_t i = 0; i < packing.size; ++i) packed.bytes[i] = packing.bytes[i];
    return packed;
}
constexpr Packed kPacked = firstOf(kPacking);

// Text `number` of both lists. The first call unpacks them.
const char *unpacked(std::size_t number) {
    static PackedText<kTextSize> texts;
    const bool isUnpacked = texts.begin()[1];  // the first text is empty
    if (!isUnpacked) {
        PackedReader reader(kPacked.bytes);
        for (std::size_t i = 0; i < kTextSize; ++i) texts.take(i, reader);
    }
    const char *text = texts.begin();
    for (; number; --number) text += std::strlen(text) + 1;
    return text;
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
    if (!kFaultTexts) return;
    std::va_list arguments;
    va_start(arguments, text);
    std::vsnprintf(target, sizeof target, unpacked(kCalls + static_cast<std::size_t>(text)), arguments);
    va_end(arguments);
}

const char *faultCallName(FaultCall call) { return unpacked(static_cast<std::size_t>(call)); }

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
        std::strcpy(body, unpacked(kCalls + fault.code));
    }
    const bool hasFile = *fault.file, hasPlace = *place;
    const Pieces pieces = {{fault.call ? fault.call : "", fault.file, hasFile && hasPlace ? ", " : "", place,
                            fault.neededBy, needLine, hasFile || hasPlace ? ": " : "", fault.field,
                            fault.found, fault.expected, code}};
    return static_cast<unsigned int>(writePattern(pattern, pieces, text, size));
}

}  // namespace keltra
