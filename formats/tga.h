// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_TGA_H
#define KELTRA_FORMATS_TGA_H

#include "formats/fault.h"
#include "formats/limits.h"

#include <cstddef>
#include <cstdint>

namespace keltra {

constexpr std::size_t kTgaHeaderSize = 18;

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

// Unpacks the pixels into `target`, `image.bytes()` of it at a multiple of four: R, G, B(, A), bottom row
// first. False when the data ends early, after writing a part of them.
bool decodeTga(const TgaImage &image, std::uint8_t *target, Fault *fault = nullptr);

// The same for the pixels of an uncompressed file, which were read into their place.
void decodeTgaInPlace(const TgaImage &image, std::uint8_t *pixels);

// Unpacks the packets of a run-length file that is read in pieces.
class TgaUnpacker {
   public:
    static constexpr std::size_t kLongestPacket = 1 + 128 * 4;

    TgaUnpacker(const TgaImage &image, std::uint8_t *target);

    // Returns how many of the bytes were taken. Unless they are the last ones, less than a packet is left of
    // them, which comes again before the next ones.
    std::size_t unpack(const std::uint8_t *bytes, std::size_t size, bool isLast);
    bool isFull() const { return left == 0; }
    // At the end of the file's data, `size` bytes of which `taken` are the packets that were unpacked to
    // `pixels`: turns the picture if need be. False when pixels are missing.
    bool finish(const TgaImage &image, std::uint8_t *pixels, std::size_t taken, std::size_t size,
                Fault *fault) const;

   private:
    template <unsigned int kBytes>
    std::size_t unpackAs(const std::uint8_t *bytes, std::size_t size, bool isLast);

    const unsigned int bytesPerPixel;
    std::uint8_t *target;
    std::size_t left;  // pixels
};

}  // namespace keltra

#endif
