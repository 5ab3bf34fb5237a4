// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_FAULT_H
#define KELTRA_FORMATS_FAULT_H

// What the parsers report. Neither depends on the reader of the file: the engine adds its call, keltra-info
// the file name. What has no effect in a file that loads is reported as warnings, without a call.

#include <cstddef>

#include "foundation/fault.h"

namespace keltra {

// Where a file is damaged: the offset and name of the field, and what is wrong with it. The reason may have a
// %ld for the limit.
struct Fault {
    std::size_t offset = 0;
    long limit = 0, found = 0;
    FaultText field = {}, reason = {};
    bool hasFound = false;
    unsigned char code = KT_FAULT_NONE;
};

// Each stores the fault unless `fault` is null. Always false.
[[gnu::cold]] bool refuse(Fault *fault, std::size_t offset, FaultText field, FaultText reason,
                          long limit = 0);
[[gnu::cold]] bool refuseValue(Fault *fault, std::size_t offset, FaultText field, long found,
                               FaultText reason, long limit = 0);
[[gnu::cold]] bool refuseMemory(Fault *fault);

// The fault without a call and a file; see newFault.
KTFAULT &toPublic(const Fault &fault);
// The same by line, for text.
KTFAULT &toPublic(const Fault &fault, const char *text, std::size_t size);

// What is wrong with the text of an integer, a text for the limits; nothing when it is one within them.
FaultText integerFlaw(const char *text, long least, long most);

// Number of the line, from 1, that the offset lies in; lines end in a line feed, a carriage return or both.
unsigned int lineAt(const char *text, std::size_t size, std::size_t offset);

// Finds the intended name for a misspelt one: the nearest by letters changed, added, left out or swapped,
// which may be a third of the name at most.
class NearestName {
   public:
    explicit NearestName(const char *wanted);
    void offer(const char *known);
    // Empty when none is near enough.
    const char *name() const { return nearest; }

   private:
    const char *wanted, *nearest;
    unsigned int least;
};

}  // namespace keltra

#endif
