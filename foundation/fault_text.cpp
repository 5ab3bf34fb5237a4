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
    Sentence(const KTFAULT &fault, char *text, std::size_t size) : fault(fault), target(text), size(size) {}

    // The parts of the fault are in the places of $c, $f and so on. What is in brackets is left out when the
    // part whose letter follows the bracket is empty.
    void addPattern(const char *pattern) {
        for (; const char letter = *pattern; ++pattern) {
            if (letter == '[') {
                if (!*part(*++pattern)) pattern = std::strchr(pattern, ']');
            } else if (letter == '$') {
                for (const char *c = part(*++pattern); *c; ++c)
                    add(static_cast<unsigned char>(*c) < ' ' || *c == 127 ? '?' : *c);
            } else if (letter != ']') {
                add(letter);
            }
        }
    }
    std::size_t end() {
        if (size) target[length < size ? length : size - 1] = '\0';
        return length;
    }

   private:
    void add(char c) {
        if (++length < size) target[length - 1] = c;
    }
    // Good until the next one.
    const char *part(char letter) {
        if (letter == 'c') return fault.call ? fault.call : "";
        if (letter == 'e') return fault.expected;
        if (letter == 'f') return fault.field;
        if (letter == 'g') return fault.found;
        if (letter == 'n') return fault.neededBy;
        if (letter == 'p') return fault.file;
        const unsigned int line = letter == 'm' ? fault.neededByLine : fault.line;
        long number = static_cast<long>(line) - !line;
        if (letter == 'b') number = line ? -1 : fault.byte;
        if (!kFaultTexts && letter == 'k') number = fault.code;
        *digits = '\0';
        if (number >= 0) std::snprintf(digits, sizeof digits, "%ld", number);
        return digits;
    }

    const KTFAULT &fault;
    char *const target;
    const std::size_t size;
    std::size_t length = 0;
    char digits[24];
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
    Sentence sentence(fault, text, size);
    const unsigned int place = *fault.file ? kPlaceInFile : kPlace;
    if (kFaultTexts) {
        sentence.addPattern(unpacked(kCalls + place));
        if (fault.code <= KT_FAULT_START) sentence.addPattern(unpacked(kCalls + fault.code));
    } else {
        sentence.addPattern(kFaultTextList[place]);
        sentence.addPattern("fault $k[g: $g]");
    }
    return static_cast<unsigned int>(sentence.end());
}

}  // namespace keltra
