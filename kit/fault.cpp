// SPDX-License-Identifier: Zlib
#include "kit/fault.h"

#include <cstdio>
#include <cstring>

namespace keltra {
namespace kit {
namespace {

template <std::size_t kSize>
void take(char (&target)[kSize], const char *text) {
    if (text) std::strncpy(target, text, kSize - 1);
}

// Of a longer path the end.
void takePath(char (&target)[256], const char *path) {
    if (!path) return;
    const std::size_t length = std::strlen(path);
    take(target, length < sizeof target ? path : path + length - (sizeof target - 1));
}

void report(KT_FAULT_SEVERITY severity, KT_FAULT_CODE code, const char *call, const FaultText &text) {
    KTFAULT fault = {};
    fault.severity = severity;
    fault.code = code;
    fault.call = call;
    fault.byte = -1;
    fault.line = text.line;
    takePath(fault.file, text.file);
    take(fault.field, text.field);
    take(fault.found, text.found);
    take(fault.expected, text.expected);
    KTFAULTS::report(&fault);
}

}  // namespace

bool fail(KT_FAULT_CODE code, const char *call, const FaultText &text) {
    report(KT_FAULT_ERROR, code, call, text);
    return false;
}

void warn(KT_FAULT_CODE code, const char *call, const FaultText &text) {
    report(KT_FAULT_WARNING, code, call, text);
}

bool failRange(const char *call, const char *field, long found, long last) {
    char value[24], range[32];
    std::snprintf(value, sizeof value, "%ld", found);
    std::snprintf(range, sizeof range, last < 0 ? "none" : "0 to %ld", last);
    return fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, field, value, range});
}

}  // namespace kit
}  // namespace keltra
