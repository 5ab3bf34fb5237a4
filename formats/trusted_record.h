// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_TRUSTED_RECORD_H
#define KELTRA_FORMATS_TRUSTED_RECORD_H

#include "formats/fault.h"
#include "formats/field_reader.h"

namespace keltra {

// False, with an error of the scope's call, unless a record can be there.
bool isRecordPlace(FaultScope &scope, const char *buffer, const long *cursor);
// A reader of the record at the address. A record in a caller's buffer has no known end: it is trusted, up to
// the last address.
FieldReader trustedReader(const char *record);
// Moves the cursor behind a record that was read. Otherwise false, with an error of the scope's call.
bool finishTrusted(FaultScope &scope, const FieldReader &reader, bool isRead, long *cursor);

// Reads a record at the cursor with `read` and moves the cursor behind it; false leaves the cursor.
template <class Read>
bool readTrusted(FaultScope &scope, const char *buffer, long *cursor, Read read) {
    if (!isRecordPlace(scope, buffer, cursor)) return false;
    FieldReader reader = trustedReader(buffer + *cursor);
    return finishTrusted(scope, reader, read(reader), cursor);
}

}  // namespace keltra

#endif
