// SPDX-License-Identifier: Zlib
#include "foundation/fault.h"

#include "foundation/packed_text.h"

#include <cstdarg>
#include <cstddef>
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

    // The parts of the fault are in the places of $C, $f and so on. What is between a bracket and the next
    // closing one is left out when the part whose letter follows the bracket is empty.
    void addPattern(const char *pattern) {
        for (; *pattern; ++pattern) {
            const char letter = *pattern;
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
    [[gnu::noinline]] void add(char c) {
        if (++length < size) target[length - 1] = c;
    }
    // Good until the next one.
    const char *part(char letter) {
        static constexpr unsigned short kOffsets[] = {offsetof(KTFAULT, expected), offsetof(KTFAULT, field),
                                                      offsetof(KTFAULT, found), offsetof(KTFAULT, neededBy),
                                                      offsetof(KTFAULT, file)};
        if (letter >= 'e') return reinterpret_cast<const char *>(&fault) + kOffsets[letter - 'e'];
        if (letter == 'C') return fault.call ? fault.call : "";
        const unsigned int line = letter == 'M' ? fault.neededByLine : fault.line;
        long number = static_cast<long>(line) - !line;
        if (letter == 'B') number = line ? -1 : fault.byte;
        if (!kFaultTexts && letter == 'K') number = fault.code;
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

KTFAULT &newFault(KT_FAULT_CODE code, FaultText field, FaultText found, FaultText expected, ...) {
    KTFAULT &fault = newFault(code);
    static_assert(offsetof(KTFAULT, expected) - offsetof(KTFAULT, field) == 2 * sizeof fault.field,
                  "one is behind the other");
    char *target = reinterpret_cast<char *>(&fault) + offsetof(KTFAULT, field);
    const FaultText texts[] = {field, found, expected};
    for (const FaultText text : texts) {
        if (!kFaultTexts) break;
        std::va_list values;
        va_start(values, expected);
        std::vsnprintf(target, sizeof fault.field, unpacked(kCalls + static_cast<std::size_t>(text)), values);
        va_end(values);
        target += sizeof fault.field;
    }
    return fault;
}

void setFaultText(char (&target)[96], const char *text) {
    if (text) std::snprintf(target, sizeof target, "%s", text);
}

void setFaultPath(char (&target)[256], const char *path) {
    const std::size_t length = std::strlen(path);
    const bool isCut = length >= sizeof target;
    std::snprintf(target, sizeof target, isCut ? "...%s" : "%s",
                  path + (isCut ? length - (sizeof target - 4) : 0));
}

void setFaultNumber(char (&target)[96], long number) { std::snprintf(target, sizeof target, "%ld", number); }

const char *faultCallName(FaultCall call) { return unpacked(static_cast<std::size_t>(call)); }

unsigned int faultSentence(const KTFAULT &fault, char *text, std::size_t size) {
    Sentence sentence(fault, text, size);
    const unsigned int place = *fault.file ? kPlaceInFile : kPlace;
    if (kFaultTexts) {
        sentence.addPattern(unpacked(kCalls + place));
        if (fault.code <= KT_FAULT_START) sentence.addPattern(unpacked(kCalls + fault.code));
    } else {
        sentence.addPattern(kFaultTextList[place]);
        sentence.addPattern("fault $K[g: $g]");
    }
    return static_cast<unsigned int>(sentence.end());
}

}  // namespace keltra
