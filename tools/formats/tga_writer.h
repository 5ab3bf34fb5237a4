// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_TGA_WRITER_H
#define KELTRA_FORMATS_TGA_WRITER_H

// Writes Targa images: uncompressed or run-length, 24 or 32 bits, rows from the bottom up or the top down.

#include <cstdint>
#include <vector>

namespace keltra::formats {

struct Rgba {
    std::uint8_t r = 0, g = 0, b = 0, a = 255;
};

inline bool operator==(Rgba x, Rgba y) { return x.r == y.r && x.g == y.g && x.b == y.b && x.a == y.a; }

// Row 0 is the top of the picture.
struct Image {
    Image() = default;
    Image(unsigned w, unsigned h) : width(w), height(h), pixels(w * h) {}
    Rgba &at(unsigned x, unsigned y) { return pixels[y * width + x]; }
    const Rgba &at(unsigned x, unsigned y) const { return pixels[y * width + x]; }

    unsigned width = 0;
    unsigned height = 0;
    std::vector<Rgba> pixels;
};

struct TgaOptions {
    bool runLength = false;
    unsigned bits = 24;    // 24 drops the alpha
    bool topDown = false;  // descriptor bit 5
};

// The bytes of the file. Run-length packets do not cross rows, as the format requires.
std::vector<std::uint8_t> writeTga(const Image &image, const TgaOptions &options);

}  // namespace keltra::formats

#endif
