// SPDX-License-Identifier: Zlib
#include "resources/mipmap.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace keltra {

namespace {

// The two upper pixels of a block and the two below them; at a side of one pixel both are the same.
struct Block {
    const std::uint8_t *upper, *lower;
    std::size_t right;
};

void average3(const Block &block, std::uint8_t *target) {
    for (unsigned int i = 0; i < 3; ++i) {
        const std::size_t right = block.right + i;
        target[i] = static_cast<std::uint8_t>(
            (block.upper[i] + block.upper[right] + block.lower[i] + block.lower[right]) >> 2);
    }
}

// Four channels at once, in two words of two 16-bit lanes.
void average4(const Block &block, std::uint8_t *target) {
    const std::uint32_t lanes = 0x00FF00FF;
    std::uint32_t even = 0, odd = 0;
    for (const std::uint8_t *pixel :
         {block.upper, block.upper + block.right, block.lower, block.lower + block.right}) {
        std::uint32_t value;
        std::memcpy(&value, pixel, 4);
        even += value & lanes;
        odd += value >> 8 & lanes;
    }
    const std::uint32_t mean = (even >> 2 & lanes) | (odd >> 2 & lanes) << 8;
    std::memcpy(target, &mean, 4);
}

template <unsigned int kBytes>
void halve(std::uint8_t *pixels, unsigned int sizeX, unsigned int newX, unsigned int sizeY,
           unsigned int newY) {
    const std::size_t rowBytes = std::size_t{sizeX} * kBytes;
    const std::size_t stepX = sizeX > 1 ? 2 * kBytes : kBytes;
    std::uint8_t *target = pixels;
    for (unsigned int y = 0; y < newY; ++y) {
        const std::uint8_t *upper = pixels + rowBytes * (sizeY > 1 ? 2 * y : y);
        Block block = {upper, sizeY > 1 ? upper + rowBytes : upper, sizeX > 1 ? kBytes : 0u};
        for (unsigned int x = 0; x < newX; ++x, target += kBytes) {
            kBytes == 3 ? average3(block, target) : average4(block, target);
            block.upper += stepX;
            block.lower += stepX;
        }
    }
}

}  // namespace

unsigned int mipmapLevels(unsigned int sizeX, unsigned int sizeY) {
    unsigned int levels = 0;
    for (unsigned int size = std::max(sizeX, sizeY); size > 1; size >>= 1) ++levels;
    return levels;
}

void halveImage(std::uint8_t *pixels, unsigned int &sizeX, unsigned int &sizeY, unsigned int bytesPerPixel) {
    const unsigned int newX = sizeX > 1 ? sizeX / 2 : sizeX;
    const unsigned int newY = sizeY > 1 ? sizeY / 2 : sizeY;
    if (bytesPerPixel == 3)
        halve<3>(pixels, sizeX, newX, sizeY, newY);
    else
        halve<4>(pixels, sizeX, newX, sizeY, newY);
    sizeX = newX;
    sizeY = newY;
}

}  // namespace keltra
