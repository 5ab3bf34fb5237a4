// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATH_SQUARE_ROOT_H
#define KELTRA_MATH_SQUARE_ROOT_H

#include "math/float_bits.h"
#include "math/soft_arm.h"

#include <cmath>

namespace keltra {

// The square root of a positive number that is neither denormal nor infinite, rounded as the standard says.
float squareRootByIntegers(std::uint32_t bits);

// The same float as std::sqrt. A library without a floating-point unit finds it bit by bit, in 290
// instructions instead of 50.
inline float squareRoot(float value) {
    const std::uint32_t bits = bitsOf(value);
    return kSoftFloat && bits - 0x00800000 < 0x7f000000 ? squareRootByIntegers(bits) : std::sqrt(value);
}

// v[0] v[0] + v[1] v[1] + v[2] v[2], where one of them is often zero.
inline float sumOfSquares(const float *v) {
#if defined(KELTRA_SOFT_ARM)
    if (const std::uint32_t bits = keltraSumOfSquares(v)) return floatOf(bits);
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t a = bitsOf(v[(i + 1) % 3]), b = bitsOf(v[(i + 2) % 3]);
        if (!isZero(v[i])) continue;
        if (const std::uint32_t bits = keltraDifference(a, a, b ^ kSignBit, b)) return floatOf(bits);
    }
#endif
    return v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
}

}  // namespace keltra

#endif
