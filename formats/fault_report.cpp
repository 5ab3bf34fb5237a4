// SPDX-License-Identifier: Zlib
// Apart from the other functions of formats/fault.h: the tools report the faults of files without calls that
// fail.
#include "formats/fault.h"

namespace keltra {

bool refuse(FaultScope &scope, const Fault &fault) { return scope.fail(toPublic(fault)); }

bool refuse(FaultScope &scope, const Fault &fault, const char *text, std::size_t size) {
    return scope.fail(toPublic(fault, text, size));
}

}  // namespace keltra
