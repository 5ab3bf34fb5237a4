#ifndef KELTRA_SAMPLES_NOISE_H
#define KELTRA_SAMPLES_NOISE_H

// Repeating value noise in integer arithmetic, so that every machine draws
// the same pictures.

#include <cstdint>

namespace keltra::samples {

// 0 .. 65535, without visible order.
inline int hashNoise(int x, int y, unsigned seed) {
    uint32_t h =
        static_cast<uint32_t>(x) * 0x8DA6B343u ^ static_cast<uint32_t>(y) * 0xD8163841u ^ seed * 0xCB1AB31Fu;
    h ^= h >> 13;
    h *= 0x5BD1E995u;
    h ^= h >> 15;
    h *= 0x27D4EB2Du;
    h ^= h >> 16;
    return static_cast<int>(h & 0xFFFF);
}

// Smooth noise, 0 .. 65535. `cell` is the lattice step in pixels; the lattice
// repeats after periodX by periodY cells.
inline int valueNoise(int x, int y, int cell, int periodX, int periodY, unsigned seed) {
    const int cx = x / cell, cy = y / cell;
    const auto ease = [cell](int part) {  // 3t^2 - 2t^3, 0 .. 4096
        const int64_t t = static_cast<int64_t>(part) * 4096 / cell;
        return static_cast<int>((3 * t * t * 4096 - 2 * t * t * t) / (4096 * 4096));
    };
    const int ex = ease(x % cell), ey = ease(y % cell);
    const auto corner = [&](int dx, int dy) {
        return hashNoise((cx + dx) % periodX, (cy + dy) % periodY, seed);
    };
    const int top = corner(0, 0) + (corner(1, 0) - corner(0, 0)) * ex / 4096;
    const int bottom = corner(0, 1) + (corner(1, 1) - corner(0, 1)) * ex / 4096;
    return top + (bottom - top) * ey / 4096;
}

// Sum of octaves over an image of width by height that repeats at its edges;
// 0 .. 1. `cell` must divide both sides and be a power of two.
inline float cloudNoise(int x, int y, int width, int height, int cell, int octaves, unsigned seed) {
    int64_t sum = 0, weight = 0;
    int64_t share = 1 << 12;
    for (int i = 0; i < octaves && cell > 1; ++i, cell /= 2, share /= 2) {
        sum += share * valueNoise(x, y, cell, width / cell, height / cell, seed + static_cast<unsigned>(i));
        weight += share;
    }
    return static_cast<float>(sum / weight) * (1.0f / 65536.0f);
}

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_NOISE_H
