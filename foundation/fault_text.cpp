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
static_assert(kPacking.size > 0, "the texts can be packed");

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
    const char *text = texts.begin();
    if (!text[1]) {  // the first text is empty
        PackedReader reader(kPacked.bytes);
        for (std::size_t i = 0; i < kTextSize; ++i) texts.take(i, reader);
    }
    for (; number; --number) text += std::strlen(text) + 1;
    return text;
}

// Writes what fits, and counts everything.
class Sentence {
   public:
    Sentence(char *text, std::size_t size) : target(text), size(size) {}

    [[gnu::noinline]] void add(const char *piece) {
        for (; *piece; ++piece)
            if (++length < size)
                target[length - 1] = static_cast<unsigned char>(*piece) < ' ' || *piece == 127 ? '?' : *piece;
    }
    [[gnu::noinline]] void add(const char *before, long number) {
        char digits[24];
        std::snprintf(digits, sizeof digits, "%ld", number);
        add(before);
        add(digits);
    }
    // The texts of the fault are in the places of $f, $g and $e. What is in brackets is left out when its
    // first one is empty.
    void addPattern(const char *pattern, const KTFAULT &fault) {
        for (char letter[2] = {}; (*letter = *pattern); ++pattern) {
            if (*letter == '[') {
                const char *const first = std::strchr(pattern, '$') + 1;
                if (!*textOf(*first, fault)) pattern = std::strchr(pattern, ']');
            } else if (*letter == '$') {
                add(textOf(*++pattern, fault));
            } else if (*letter != ']') {
                add(letter);
            }
        }
    }
    std::size_t end() {
        if (size) target[length < size ? length : size - 1] = '\0';
        return length;
    }

   private:
    static const char *textOf(char letter, const KTFAULT &fault) {
        return letter == 'f' ? fault.field : letter == 'g' ? fault.found : fault.expected;
    }

    char *const target;
    const std::size_t size;
    std::size_t length = 0;
};

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

void setFaultNumber(char (&target)[96], long number) { std::snprintf(target, sizeof target, "%ld", number); }

void writeFaultText(char (&target)[96], FaultText text, ...) {
    if (!kFaultTexts) return;
    std::va_list arguments;
    va_start(arguments, text);
    std::vsnprintf(target, sizeof target, unpacked(kCalls + static_cast<std::size_t>(text)), arguments);
    va_end(arguments);
}

const char *faultCallName(FaultCall call) { return unpacked(static_cast<std::size_t>(call)); }

unsigned int faultSentence(const KTFAULT &fault, char *text, std::size_t size) {
    Sentence sentence(text, size);
    if (fault.call && *fault.call) {
        sentence.add(fault.call);
        sentence.add(": ");
    }
    sentence.add(fault.file);
    const bool hasPlace = fault.line || fault.byte >= 0;
    if (hasPlace) {
        if (*fault.file) sentence.add(", ");
        fault.line ? sentence.add("line ", static_cast<long>(fault.line)) : sentence.add("byte ", fault.byte);
    }
    if (*fault.neededBy) {
        sentence.add(" (needed by ");
        sentence.add(fault.neededBy);
        if (fault.neededByLine) sentence.add(", line ", static_cast<long>(fault.neededByLine));
        sentence.add(")");
    }
    if (*fault.file || hasPlace) sentence.add(": ");
    if (!kFaultTexts) {
        sentence.add("fault ", fault.code);
        sentence.addPattern("[: $g]", fault);
    } else if (fault.code <= KT_FAULT_START) {
        sentence.addPattern(unpacked(kCalls + fault.code), fault);
    }
    return static_cast<unsigned int>(sentence.end());
}

}  // namespace keltra
