// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATH_FIXED_H
#define KELTRA_MATH_FIXED_H

// Float to 16.16: the value times 65536, truncated toward zero. Outside [-32768, 32768), and for a
// not-a-number, the result is INT32_MIN, which is what the x86 conversion instruction gives; the integer path
// gives the same everywhere.

#include "math/float_bits.h"
#include "math/soft_arm.h"

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#endif

namespace keltra {

// `bits` shifted by 1 to 255: from 32 on nothing is left, which ARM's instruction knows and C++ does not.
inline std::uint32_t shiftedRight(std::uint32_t bits, std::uint32_t by) {
#if defined(__arm__) && !defined(__thumb__) && defined(__GNUC__)
    std::uint32_t result;
    asm("mov %0, %1, lsr %2" : "=r"(result) : "r"(bits), "r"(by));
    return result;
#else
    return by < 32 ? bits >> by : 0;
#endif
}

// For processors without an FPU: no floating-point operation, which would be a library call each.
inline std::int32_t toFixedByIntegers(float value) {
    constexpr std::int32_t kTooLarge = 142;  // the exponent from which on it does not fit, or is not a number
    const std::uint32_t bits = bitsOf(value);
    const std::int32_t shift = kTooLarge - std::int32_t(bits << 1 >> 24);
    if (shift <= 0) return INT32_MIN;
    const std::int32_t magnitude =
        std::int32_t(shiftedRight(bits << 8 | kSignBit, static_cast<std::uint32_t>(shift)));
    return std::int32_t(bits) < 0 ? -magnitude : magnitude;
}

// The low byte of the truncated product of a float and 255, in two's complement; 0 for what is beyond any
// integer, a multiple of 256, and for what is not a number. A conversion to a 64-bit integer would compute in
// double precision. The product has 31 or 32 bits, of which the 24 of a float are kept, rounded to even.
inline std::uint8_t lowByteOf255Times(float value) {
    const std::uint32_t bits = bitsOf(value), product = ((bits & 0x7fffff) | 0x800000) * 255;
    const unsigned int excess = 7 + (product >> 31);
    const std::uint32_t half = (1u << (excess - 1)) - 1 + (product >> excess & 1);
    const std::uint32_t rounded = (product + half) >> excess;
    const int shift = 150 - int(bits << 1 >> 24) - int(excess);
    if (shift > 24 || shift <= -8) return 0;
    const std::uint32_t low = shift >= 0 ? rounded >> shift : rounded << -shift;
    return static_cast<std::uint8_t>(bits >> 31 ? 0 - low : low);
}

inline std::int32_t toFixed(float value) {
#if defined(__SSE2__) || defined(_M_X64)
    return _mm_cvttss_si32(_mm_mul_ss(_mm_set_ss(value), _mm_set_ss(65536.0f)));
#else
    return toFixedByIntegers(value);
#endif
}

inline void toFixed(const float *values, std::int32_t *fixed, std::size_t count) {
    std::size_t done = 0;
#if defined(__SSE2__) || defined(_M_X64)
    const __m128 scale = _mm_set1_ps(65536.0f);
    for (const std::size_t fours = count & ~std::size_t{3}; done < fours; done += 4) {
        __m128i four = _mm_cvttps_epi32(_mm_mul_ps(_mm_loadu_ps(values + done), scale));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(fixed + done), four);
    }
#endif
#if defined(KELTRA_SOFT_ARM)
    done = count & ~std::size_t{3};
    if (done > 0) keltraToFixed(values, fixed, fixed, done / 4);
#endif
    for (; done < count; ++done) fixed[done] = toFixed(values[done]);
}

}  // namespace keltra

#endif
