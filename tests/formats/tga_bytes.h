// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TGA_BYTES_H
#define KELTRA_TESTS_TGA_BYTES_H

// Targa files byte by byte, valid and damaged.

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace keltra::test {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kUncompressed = 2;
constexpr std::uint8_t kRunLength = 10;

inline Bytes tgaHeader(std::uint8_t kind, unsigned sizeX, unsigned sizeY, unsigned bits,
                       std::uint8_t descriptor = 0) {
    Bytes file(18);
    file[2] = kind;
    file[12] = static_cast<std::uint8_t>(sizeX);
    file[13] = static_cast<std::uint8_t>(sizeX >> 8);
    file[14] = static_cast<std::uint8_t>(sizeY);
    file[15] = static_cast<std::uint8_t>(sizeY >> 8);
    file[16] = static_cast<std::uint8_t>(bits);
    file[17] = descriptor;
    return file;
}

inline Bytes joined(Bytes first, const Bytes &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// Numbered bytes as pixels: no two neighbours are equal.
inline Bytes numbered(std::size_t count) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + 1);
    return bytes;
}

/// The same pixels with the first and third channel exchanged: what a loaded file of them holds.
inline Bytes exchanged(Bytes pixels, unsigned bytesPerPixel) {
    for (std::size_t i = 0; i + 2 < pixels.size(); i += bytesPerPixel) std::swap(pixels[i], pixels[i + 2]);
    return pixels;
}

inline Bytes uncompressedTga(unsigned sizeX, unsigned sizeY, unsigned bits, std::uint8_t descriptor = 0) {
    return joined(tgaHeader(kUncompressed, sizeX, sizeY, bits, descriptor),
                  numbered(sizeX * sizeY * bits / 8));
}

}  // namespace keltra::test

#endif
