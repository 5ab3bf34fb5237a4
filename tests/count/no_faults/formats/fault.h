// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_FAULT_H
#define KELTRA_FORMATS_FAULT_H

#include <cstddef>

#include "foundation/fault.h"

namespace keltra {

struct Fault {
    std::size_t offset = 0;
    static constexpr unsigned char code = 0;
};

inline bool refuse(Fault *, std::size_t, FaultText, FaultText, long = 0) { return false; }
inline bool refuseValue(Fault *, std::size_t, FaultText, long, FaultText, long = 0) { return false; }
inline bool refuseMemory(Fault *) { return false; }
inline bool refuse(FaultScope &, const Fault &) { return false; }
inline bool refuse(FaultScope &, const Fault &, const char *, std::size_t) { return false; }
inline KTFAULT &toPublic(const Fault &) { return newFault(KT_FAULT_NONE); }
inline KTFAULT &toPublic(const Fault &, const char *, std::size_t) { return newFault(KT_FAULT_NONE); }

class NearestName {
   public:
    explicit NearestName(const char *) {}
    void offer(const char *) {}
    template <class Record>
    void offerAll(const Record *, std::size_t) {}
};

inline KTFAULT &unknownName(FaultText, const char *, const NearestName &) { return newFault(KT_FAULT_NONE); }

}  // namespace keltra

#endif
