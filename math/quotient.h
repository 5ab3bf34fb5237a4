// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATH_QUOTIENT_H
#define KELTRA_MATH_QUOTIENT_H

#include "math/float_bits.h"

namespace keltra {

// a / b of bits, rounded as the standard says. Their exponents, and that of the quotient, are from 1 to 254.
float quotientByIntegers(std::uint32_t a, std::uint32_t b);

// The same float as a / b. A library without a floating-point unit finds it bit by bit, in 110 instructions
// instead of 60.
inline float quotient(float a, float b) {
    const std::uint32_t bitsOfA = bitsOf(a), bitsOfB = bitsOf(b);
    // Both from 2^-62 to 2^64.
    const auto isPlain = [](std::uint32_t bits) { return (bits << 1) - (65u << 24) < 126u << 24; };
    if (kSoftFloat && isPlain(bitsOfA) && isPlain(bitsOfB)) return quotientByIntegers(bitsOfA, bitsOfB);
    return a / b;
}

}  // namespace keltra

#endif
