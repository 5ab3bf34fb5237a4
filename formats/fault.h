// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_FAULT_H
#define KELTRA_FORMATS_FAULT_H

// What the parsers report: where a file is damaged and, through a FaultSink, what has no effect in a file
// that loads. Neither depends on the reader of the file: the engine adds its call, keltra-info the file name.

#include <cstddef>

#include "foundation/fault.h"

namespace keltra {

// Where a file is damaged: the offset and name of the field, and what is wrong with it. The texts are
// literals; the reason may have two %ld for the limits.
struct Fault {
    std::size_t offset;
    const char *field;
    const char *reason;
    long first = 0, second = 0;  // limits
    bool hasFound = false;
    long found = 0;
    KT_FAULT_CODE code = KT_FAULT_DATA;
};

// Each stores the fault unless `fault` is null. Always false.
[[gnu::cold]] bool noteFault(Fault *fault, const Fault &noted);
[[gnu::cold]] bool refuseMemory(Fault *fault);
inline bool refuse(Fault *fault, std::size_t offset, const char *field, const char *reason, long first = 0,
                   long second = 0) {
    return noteFault(fault, {offset, faultText(field), faultText(reason), first, second});
}
inline bool refuseValue(Fault *fault, std::size_t offset, const char *field, long found, const char *reason,
                        long first = 0, long second = 0) {
    return noteFault(fault, {offset, faultText(field), faultText(reason), first, second, true, found});
}

// The fault without a call and a file.
KTFAULT toPublic(const Fault &fault);
// The same by line, for text.
KTFAULT toPublic(const Fault &fault, const char *text, std::size_t size);

// Number of the line, from 1, that the offset lies in; lines end in a line feed, a carriage return or both.
unsigned int lineAt(const char *text, std::size_t size, std::size_t offset);

// Takes the warnings of a parser, each with its line.
class FaultSink {
   public:
    virtual void warn(KTFAULT &fault) = 0;

   protected:
    ~FaultSink() = default;
};

// The scope of a load: its parser's warnings are reported under its call.
class LoadScope final : public FaultScope, public FaultSink {
   public:
    using FaultScope::FaultScope;
    void warn(KTFAULT &fault) override { FaultScope::warn(fault); }
};

// Finds the intended name for a misspelt one: the nearest by letters changed, added, left out or swapped,
// which may be a third of the name at most.
class NearestName {
   public:
    explicit NearestName(const char *wanted);
    void offer(const char *known);
    // Empty when none is near enough.
    const char *name() const { return nearest; }

   private:
    static constexpr std::size_t kLongest = 64;
    std::size_t distanceTo(const char *known, std::size_t length) const;

    const char *wanted, *nearest;
    std::size_t wantedLength, least;
};

}  // namespace keltra

#endif
