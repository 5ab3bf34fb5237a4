// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MD3_FILE_H
#define KELTRA_CONVERT_MD3_FILE_H

#include <string>

namespace keltra::convert {

// The bytes of an MD3 file as its importer reads them well: without surfaces that have no triangles or no
// vertices, on which it crashes, and with the vertices of a frame in the place of the first one's, which is
// the only one that it reads. Empty for a file of another format, a damaged one, and one that stays as it is.
std::string readableMd3(const std::string &bytes, unsigned frame);

}  // namespace keltra::convert

#endif
