// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_KEY_CHECK_H
#define KELTRA_FORMATS_KEY_CHECK_H

// Warnings of the lines of a text without comments that have no effect, or not the one that they seem to
// have. They are reported without a call of their own.

#include <keltra/foundation.h>

namespace keltra {

void checkKeys(const vnfParser &text, bool isKerning);

// Keys that do not begin like the engine's belong to another program.
inline void checkSettings(const vnfParser &text) { checkKeys(text, false); }
inline void checkKerning(const vnfParser &text) { checkKeys(text, true); }

}  // namespace keltra

#endif
