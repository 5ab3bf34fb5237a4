// SPDX-License-Identifier: Zlib
#include "formats/trusted_record.h"

#include <algorithm>
#include <cstdint>

namespace keltra {

bool isRecordPlace(FaultScope &scope, const char *buffer, const long *cursor) {
    if (!buffer || !cursor) return scope.failNull(buffer ? KT_TEXT("cursor") : KT_TEXT("buffer"));
    return *cursor >= 0 || failValue(scope.call, KT_TEXT("cursor"), *cursor, KT_TEXT("0 or more"));
}

FieldReader trustedReader(const char *record) {
    const std::uintptr_t reach = UINTPTR_MAX - reinterpret_cast<std::uintptr_t>(record);
    return FieldReader(record, std::min<std::uintptr_t>(reach, PTRDIFF_MAX));
}

bool finishTrusted(FaultScope &scope, const FieldReader &reader, bool isRead, long *cursor) {
    if (isRead) {
        *cursor += static_cast<long>(reader.position());
        return true;
    }
    KTFAULT &fault = toPublic(reader.fault());
    fault.byte += *cursor;
    return scope.fail(fault);
}

}  // namespace keltra
