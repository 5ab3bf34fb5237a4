// SPDX-License-Identifier: Zlib
#include "tools/formats/version.h"

namespace keltra::formats {

const char *projectVersion() { return KELTRA_PROJECT_VERSION; }

}  // namespace keltra::formats
