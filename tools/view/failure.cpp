// SPDX-License-Identifier: Zlib
#include "tools/view/failure.h"

#include <keltra/fault.h>

namespace keltra::view {

std::string engineReason() {
    if (!KTFAULTS::getLast()) return "no reason is known";
    KTFAULT fault = *KTFAULTS::getLast();
    fault.call = "";
    *fault.file = '\0';
    char sentence[1024];
    KTFAULTS::format(&fault, sentence, sizeof sentence);
    return sentence;
}

Failure failure(const std::string &path, const std::string &reason) {
    std::string line = path;
    for (char &c : line) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte < 32 || byte == 127) c = '?';
    }
    return Failure(line + ": " + reason);
}

}  // namespace keltra::view
