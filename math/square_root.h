// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATH_SQUARE_ROOT_H
#define KELTRA_MATH_SQUARE_ROOT_H

#include <cmath>

#include "math/float_bits.h"

namespace keltra {

// The square root of a positive number that is neither denormal nor infinite, rounded as the standard says.
float squareRootByIntegers(std::uint32_t bits);

// The same float as std::sqrt. A library without a floating-point unit finds it bit by bit, in 290
// instructions instead of 50.
inline float squareRoot(float value) {
    const std::uint32_t bits = bitsOf(value);
    return kSoftFloat && bits - 0x00800000 < 0x7f000000 ? squareRootByIntegers(bits) : std::sqrt(value);
}

}  // namespace keltra

#endif
