// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_TRUSTED_RECORD_H
#define KELTRA_FORMATS_TRUSTED_RECORD_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "formats/fault.h"
#include "formats/field_reader.h"

namespace keltra {

// False, with an error of the scope's call, unless a record can be there.
inline bool isRecordPlace(FaultScope &scope, const char *buffer, const long *cursor) {
    if (!buffer || !cursor) return scope.failNull(buffer ? "cursor" : "buffer");
    return *cursor >= 0 || failValue(scope.call, "cursor", *cursor, "0 or more");
}

// Reads a record at the cursor with `read` and moves the cursor behind it; false leaves the cursor. A record
// in a caller's buffer has no known end: it is trusted, up to the last address.
template <class Read>
bool readTrusted(FaultScope &scope, const char *buffer, long *cursor, Read read) {
    if (!isRecordPlace(scope, buffer, cursor)) return false;
    const char *record = buffer + *cursor;
    const std::uintptr_t reach = UINTPTR_MAX - reinterpret_cast<std::uintptr_t>(record);
    FieldReader reader(record, std::min<std::uintptr_t>(reach, PTRDIFF_MAX));
    if (!read(reader)) {
        KTFAULT fault = toPublic(reader.fault());
        fault.byte += *cursor;
        return scope.fail(fault);
    }
    *cursor += static_cast<long>(reader.position());
    return true;
}

}  // namespace keltra

#endif
