// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_TGA_FILE_H
#define KELTRA_FORMATS_TGA_FILE_H

#include "formats/tga.h"
#include "foundation/fault.h"

#include <cstdint>

namespace keltra {

// Reads the Targa file of the scope into a new block, `image.bytes()` of it: R, G, B(, A), bottom row first.
// The block stays null for a file of another kind, with a warning. No memory is taken but that of the pixels
// and, for a run-length file, of a piece of it. False, with a fault, when there is no picture.
bool readTga(FaultScope &scope, TgaImage &image, std::uint8_t *&pixels);

}  // namespace keltra

#endif
