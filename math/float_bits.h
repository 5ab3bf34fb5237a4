// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATH_FLOAT_BITS_H
#define KELTRA_MATH_FLOAT_BITS_H

// Floats by their bits. Without a floating-point unit each comparison is a call, as each product and sum.

#include <cstdint>
#include <cstring>

namespace keltra {

#if defined(__SOFTFP__)
constexpr bool kSoftFloat = true;
#else
constexpr bool kSoftFloat = false;
#endif

constexpr std::uint32_t kSignBit = 0x80000000, kExponentBits = 0x7f800000, kOneBits = 0x3f800000;

inline std::uint32_t bitsOf(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

inline float floatOf(std::uint32_t bits) {
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Zeros of both signs.
inline bool isZero(float value) { return bitsOf(value) << 1 == 0; }

inline bool isFinite(float value) { return (bitsOf(value) & kExponentBits) != kExponentBits; }

// Neither a zero nor infinite nor a not-a-number.
inline bool isOrdinary(float value) { return (bitsOf(value) << 1) - 1 < 0xfeffffff; }

// Greater than zero: infinity is, a not-a-number is not.
inline bool isPositive(float value) { return bitsOf(value) - 1 < kExponentBits; }

inline bool areFinite(const float *values, int count) {
    for (int i = 0; i < count; ++i)
        if (!isFinite(values[i])) return false;
    return true;
}

// 0 when the bits kept of `count` floats are those of `values`; otherwise they are taken.
template <int count>
std::uint32_t updateBits(std::uint32_t *kept, const float *values) {
    std::uint32_t changes = 0;
    for (int i = 0; i < count; ++i) changes |= kept[i] ^ bitsOf(values[i]);
    if (changes != 0)
        for (int i = 0; i < count; ++i) kept[i] = bitsOf(values[i]);
    return changes;
}

}  // namespace keltra

#endif
