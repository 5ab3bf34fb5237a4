// SPDX-License-Identifier: Zlib
#ifndef KELTRA_RESOURCES_MIPMAP_H
#define KELTRA_RESOURCES_MIPMAP_H

#include <cstdint>

namespace keltra {

// The number of levels above level 0: floor(log2(larger side)).
unsigned int mipmapLevels(unsigned int sizeX, unsigned int sizeY);

// Writes the next smaller level over the start of the buffer and updates the sizes. Each pixel is the
// truncated mean of a 2 x 2 block; a side of one pixel stays one, and the last row or column of an odd side
// is left out.
void halveImage(std::uint8_t *pixels, unsigned int &sizeX, unsigned int &sizeY, unsigned int bytesPerPixel);

}  // namespace keltra

#endif
