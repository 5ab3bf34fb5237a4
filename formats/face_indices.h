// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_FACE_INDICES_H
#define KELTRA_FORMATS_FACE_INDICES_H

#include <cstddef>

namespace keltra {

// Whether all of the indices, little-endian numbers of 16 bits at any address, are below the limit, which has
// 16 bits too. The words that have a byte of them are read whole.
bool areIndicesBelow(const unsigned char *indices, std::size_t count, unsigned int limit);

}  // namespace keltra

#endif
