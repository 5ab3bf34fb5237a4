#ifndef KELTRA_FORMATS_TGA_H
#define KELTRA_FORMATS_TGA_H

#include <cstddef>
#include <cstdint>

#include "formats/fault.h"
#include "formats/limits.h"

namespace keltra {

enum class TgaKind { kUncompressed, kRunLength, kOther };

// What the header of a Targa file says. `data` points into the file.
struct TgaImage {
    TgaKind kind;
    unsigned int sizeX, sizeY;
    unsigned int bytesPerPixel;  // 3 or 4
    bool topDown;
    const std::uint8_t *data;
    std::size_t dataSize;

    std::size_t bytes() const { return std::size_t{sizeX} * sizeY * bytesPerPixel; }
};

// Reads the header and checks that enough data follows. False for a depth other than 24 or 32, for a size
// outside 1 to 512 and for data that cannot hold the image. Neither an uncompressed nor a run-length file is
// kOther, which has no pixels: that is true. `fault`, here and below, may be null.
bool parseTga(const void *file, std::size_t size, TgaImage &image, Fault *fault = nullptr);

// The fault of a file of kind kOther.
Fault otherTgaKind();

// Unpacks the pixels into `target`, `image.bytes()` of it: R, G, B(, A), bottom row first. False when the
// data ends early, after writing a part of them.
bool decodeTga(const TgaImage &image, std::uint8_t *target, Fault *fault = nullptr);

}  // namespace keltra

#endif
