// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_FAULT_SOURCE_H
#define KELTRA_KIT_FAULT_SOURCE_H

#include <keltra/fault.h>

namespace keltra {
namespace kit {

// What a fault says, without its code and call. Texts may be null.
struct FaultText {
    const char *file;
    unsigned int line;
    const char *field, *found, *expected;
};

// Both report a fault through the engine; the first is always false.
bool fail(KT_FAULT_CODE code, const char *call, const FaultText &text);
void warn(KT_FAULT_CODE code, const char *call, const FaultText &text);

// Always false.
inline bool failNull(const char *call, const char *field) {
    return fail(KT_FAULT_NULL, call, {nullptr, 0, field, nullptr, nullptr});
}
// An argument of 0 to `last`. Always false.
bool failRange(const char *call, const char *field, long found, long last);
inline bool failMemory(const char *call) {
    return fail(KT_FAULT_OUT_OF_MEMORY, call, {nullptr, 0, nullptr, nullptr, nullptr});
}

}  // namespace kit
}  // namespace keltra

#endif
