// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_KEY_CHECK_H
#define KELTRA_FORMATS_KEY_CHECK_H

#include <keltra/foundation.h>

namespace keltra {

inline void checkSettings(const vnfParser &) {}
inline void checkKerning(const vnfParser &) {}

}  // namespace keltra

#endif
