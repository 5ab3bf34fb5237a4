// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_FAULT_H
#define KELTRA_FORMATS_FAULT_H

// What the parsers report. Neither depends on the reader of the file: the engine adds its call, keltra-info
// the file name. What has no effect in a file that loads is reported as warnings, without a call.

#include "foundation/fault.h"

#include <cstddef>
#include <type_traits>

namespace keltra {

// Where a file is damaged: the offset and name of the field, and what is wrong with it. The reason may have a
// %ld for the limit. Without a code there is no fault, and the rest says nothing.
struct Fault {
    std::size_t offset;
    long limit, found;
    FaultText field, reason;
    bool hasFound;
    unsigned char code = KT_FAULT_NONE;
};

// Each stores the fault unless `fault` is null. Always false.
[[gnu::cold]] bool refuse(Fault *fault, std::size_t offset, FaultText field, FaultText reason);
inline bool refuse(Fault *fault, std::size_t offset, FaultText field, FaultText reason, long limit) {
    refuse(fault, offset, field, reason);
    if (fault) fault->limit = limit;
    return false;
}
[[gnu::cold]] bool refuseValue(Fault *fault, std::size_t offset, FaultText field, long found,
                               FaultText reason, long limit = 0);
[[gnu::cold]] bool refuseMemory(Fault *fault);

// The fault without a call and a file; see newFault.
KTFAULT &toPublic(const Fault &fault);
// The same by line, for text.
KTFAULT &toPublic(const Fault &fault, const char *text, std::size_t size);

// Fails a call with it. Always false.
[[gnu::cold]] bool refuse(FaultScope &scope, const Fault &fault);
[[gnu::cold]] bool refuse(FaultScope &scope, const Fault &fault, const char *text, std::size_t size);

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
    // Names, or records that begin with a name.
    template <class Record>
    void offerAll(const Record *records, std::size_t count) {
        static_assert(std::is_standard_layout<Record>::value, "the name is where the record is");
        offerEach(reinterpret_cast<const char *const *>(records), count, sizeof *records / sizeof(char *));
    }
    // Takes the name, however near it is.
    void take(const char *known) { nearest = known; }
    const char *found() const { return wanted; }
    // Empty when none is near enough.
    const char *name() const { return nearest; }
    // The name is one of those that were offered.
    bool isKnown() const { return least == 0; }

   private:
    void offerEach(const char *const *name, std::size_t count, std::size_t step);

    const char *wanted, *nearest;
    unsigned int least;
};

// A warning of a name that is not known; `what` it names may have a %s for `whole`.
KTFAULT &unknownName(FaultText what, const char *whole, const NearestName &name);

}  // namespace keltra

#endif
