#include "foundation/argument.h"

#include <cstring>

#include "foundation/fault.h"
#include "foundation/text.h"

void keltra::takeText(char (&target)[256], const char *text, const char *call, const char *argument) {
    // Checked first: the text may be the target itself.
    const bool cut = text && !std::memchr(text, '\0', sizeof target);
    copyText(target, text);
    if (cut) warnLong(call, argument);
}

bool keltra::takeName(char (&target)[256], const char *text, const char *call) {
    if (!text) return failNull(call, "text");
    if (!std::memchr(text, '\0', sizeof target)) return failLong(call, "text");
    copyName(target, text);
    return true;
}
