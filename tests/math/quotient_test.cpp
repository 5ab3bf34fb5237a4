// SPDX-License-Identifier: Zlib
#include "math/quotient.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/math/any_float.h"

namespace keltra::test {
namespace {

// From 2^-62 to 2^64.
std::uint32_t withPlainExponent(std::uint32_t bits) {
    return (bits & 0x807fffff) | (65 + (bits << 1 >> 24) % 126) << 23;
}

void expectPlain(std::uint32_t a, std::uint32_t b) {
    const volatile float x = floatOf(a), y = floatOf(b);
    ASSERT_EQ(bitsOf(quotientByIntegers(a, b)), bitsOf(x / y)) << a << " " << b;
}

TEST(QuotientTest, EqualsTheDivision) {
    std::mt19937 random(5);
    for (int i = 0; i < 4000000; ++i) {
        std::uint32_t a = withPlainExponent(random()), b = withPlainExponent(random());
        // Few bits, all bits, and mantissas close to each other.
        if (i % 8 == 1) b &= 0xff8000ff;
        if (i % 8 == 2) b |= 0x7fff00;
        if (i % 8 == 3) a &= 0xff800003;
        if (i % 8 == 4) a = (a & 0xff800000) | ((b + random() % 5 - 2) & 0x7fffff);
        expectPlain(a, b);
    }
}

// The reciprocal is the step that all of a quotient's precision depends on.
TEST(QuotientTest, EqualsTheDivisionForEachDivisor) {
    for (std::uint32_t mantissa = 0; mantissa < 1u << 23; mantissa += 3) {
        expectPlain(kOneBits, kOneBits | mantissa);
        expectPlain(kOneBits | 0x7fffff, kOneBits | mantissa);
    }
}

// On all processors, also where the integers are not used.
TEST(QuotientTest, OfAnyNumbersIsTheStandardOne) {
    AnyFloat any(2, true);
    for (int i = 0; i < 400000; ++i) {
        const volatile float a = any(), b = any();
        const float result = quotient(a, b), expected = a / b;
        ASSERT_TRUE(bitsOf(result) == bitsOf(expected) || (std::isnan(result) && std::isnan(expected)))
            << a << " / " << b;
    }
}

}  // namespace
}  // namespace keltra::test
