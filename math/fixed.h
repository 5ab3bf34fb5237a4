#ifndef KELTRA_MATH_FIXED_H
#define KELTRA_MATH_FIXED_H

// Float to 16.16: the value times 65536, truncated toward zero. Outside [-32768, 32768), and for a
// not-a-number, the result is INT32_MIN, which is what the x86 conversion instruction gives; the integer path
// gives the same everywhere.

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#endif

namespace keltra {

// For processors without an FPU: no floating-point operation, which would be a library call each.
inline std::int32_t toFixedByIntegers(float value) {
    constexpr int kSmallestExponent = 111;  // below, the value is less than 1/65536
    constexpr int kLargestExponent = 141;   // above, it is 32768 or more, infinite or not a number
    constexpr int kUnitExponent = 134;      // the mantissa is the result as it stands
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    int exponent = int(bits >> 23 & 0xff);
    if (exponent < kSmallestExponent) return 0;
    if (exponent > kLargestExponent) return INT32_MIN;
    std::int32_t magnitude = std::int32_t((bits & 0x7fffff) | 0x800000);
    int shift = exponent - kUnitExponent;
    magnitude = shift < 0 ? magnitude >> -shift : magnitude << shift;
    return bits >> 31 ? -magnitude : magnitude;
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
    for (; done < count; ++done) fixed[done] = toFixed(values[done]);
}

}  // namespace keltra

#endif
