// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_FAULT_TEXT_H
#define KELTRA_FORMATS_FAULT_TEXT_H

#include "formats/fault.h"

#include <string>

namespace keltra::formats {

inline std::string reasonOf(const Fault &fault) { return toPublic(fault).expected; }

inline std::string textOf(const Fault &fault) {
    const KTFAULT &stored = toPublic(fault);
    return "byte " + std::to_string(fault.offset) + ", " + stored.field + ": " + stored.expected;
}

}  // namespace keltra::formats

#endif
