#ifndef KELTRA_FORMATS_TRUSTED_RECORD_H
#define KELTRA_FORMATS_TRUSTED_RECORD_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "formats/field_reader.h"

namespace keltra {

// Reads a record at the cursor with `read` and moves the cursor behind it; false leaves the cursor. A record
// in a caller's buffer has no known end: it is trusted, up to the last address.
template <class Read>
bool readTrusted(const char *buffer, long *cursor, Read read) {
    if (!buffer || !cursor || *cursor < 0) return false;
    const char *record = buffer + *cursor;
    const std::uintptr_t reach = UINTPTR_MAX - reinterpret_cast<std::uintptr_t>(record);
    FieldReader reader(record, std::min<std::uintptr_t>(reach, PTRDIFF_MAX));
    if (!read(reader)) return false;
    *cursor += static_cast<long>(reader.position());
    return true;
}

}  // namespace keltra

#endif
