// SPDX-License-Identifier: Zlib
#include "math/quotient.h"

namespace keltra {
namespace {

std::uint32_t highProduct(std::uint32_t a, std::uint32_t b) {
    return std::uint32_t(std::uint64_t{a} * b >> 32);
}

}  // namespace

// For d in [1/2, 1), 2.9142 - 2 d is 1 / d with an error of 1/11 at most; each step of Newton's method, x (2
// - d x), squares it: 2^-28 after three. The quotient in [1, 2) is then known with 25 bits and at most 1
// wrong in the last; the remainder shows. The last bit rounds: no quotient of two floats is halfway between
// two floats.
float quotientByIntegers(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t mantissaOfB = (b & 0x7fffff) | 0x800000;
    std::uint32_t mantissa = (a & 0x7fffff) | 0x800000, exponent = (a << 1 >> 24) - (b << 1 >> 24) + 127;
    if (mantissa < mantissaOfB) {
        mantissa *= 2;
        --exponent;
    }
    const std::uint32_t d = mantissaOfB << 8;  // 2^-32
    std::uint32_t x = 0xba827999 - (d >> 1);   // 2^-30
    for (int i = 0; i < 3; ++i) x = highProduct(x, 0x80000000 - highProduct(d, x)) << 2;
    std::uint32_t result = highProduct(mantissa << 2, x);  // 2^-24
    const std::int32_t rest = std::int32_t((mantissa << 24) - result * mantissaOfB);
    if (rest < 0)
        --result;
    else if (rest >= std::int32_t(mantissaOfB))
        ++result;
    return floatOf(((a ^ b) & kSignBit) + ((exponent - 1) << 23) + ((result + 1) >> 1));
}

}  // namespace keltra
