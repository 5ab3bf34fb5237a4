// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_BILLBOARD_H
#define KELTRA_SCENE_BILLBOARD_H

// The square of a particle: four corners and their colour.

#include <keltra/vector.h>

#include "math/fixed.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace keltra {

constexpr unsigned int kCorners = 4;
constexpr unsigned int kColorBytes = 4;

// The low byte of the truncated product. Deliberate: components beyond 1 wrap around; emitter files rely on
// it. A product beyond any integer is a multiple of 256, or not a number.
inline unsigned char colorByte(float component) {
    if (kSoftFloat) return lowByteOf255Times(component);
    const float value = component * 255.0f;
    if (!(std::fabs(value) < 9.0e18f)) return 0;
    return static_cast<unsigned char>(static_cast<std::int64_t>(value) & 0xff);
}

// `bytes` are a multiple of four from the start of an allocated block.
inline void writeColor(const R3XVECTOR4D &color, unsigned char *bytes) {
    const unsigned char rgba[kColorBytes] = {colorByte(color.x), colorByte(color.y), colorByte(color.z),
                                             colorByte(color.w)};
    std::uint32_t all;
    std::memcpy(&all, rgba, sizeof all);
    // On ARM a copy of four bytes is a call unless they are known to be aligned.
    auto *corners = static_cast<unsigned char *>(__builtin_assume_aligned(bytes, alignof(std::uint32_t)));
    for (unsigned int i = 0; i < kCorners; ++i) std::memcpy(corners + i * kColorBytes, &all, sizeof all);
}

// Deliberate: the position is scaled like the square; emitter files rely on it.
inline void writeCorners(const R3XVECTOR3D &position, float scale, R3XVECTOR3D right, R3XVECTOR3D up,
                         R3XVECTOR4D *corners) {
    const R3XVECTOR3D middle = position * scale;
    right *= scale;
    up *= scale;
    corners[0] = middle + (-right - up);
    corners[1] = middle + (right - up);
    corners[2] = middle + (right + up);
    corners[3] = middle + (-right + up);
}

}  // namespace keltra

#endif
