// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_VERSION_H
#define KELTRA_FORMATS_VERSION_H

namespace keltra::formats {

// The project's version as the tools' --version prints it: "1.6.6".
const char *projectVersion();

}  // namespace keltra::formats

#endif
