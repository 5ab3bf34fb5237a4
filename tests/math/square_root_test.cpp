// SPDX-License-Identifier: Zlib
#include "math/square_root.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/math/any_float.h"

namespace keltra::test {
namespace {

// All mantissas, with an even and an odd exponent: the others repeat them.
TEST(SquareRootTest, EqualsTheStandardForEachMantissa) {
    unsigned different = 0;
    for (std::uint32_t bits = 126u << 23; bits < 128u << 23; ++bits)
        different += bitsOf(squareRootByIntegers(bits)) != bitsOf(std::sqrt(floatOf(bits)));
    EXPECT_EQ(different, 0u);
}

TEST(SquareRootTest, EqualsTheStandardForEachExponent) {
    for (std::uint32_t exponent = 1; exponent < 255; ++exponent) {
        for (std::uint32_t mantissa = 0; mantissa < 1u << 23; mantissa += 4999) {
            const std::uint32_t bits = exponent << 23 | mantissa;
            ASSERT_EQ(bitsOf(squareRootByIntegers(bits)), bitsOf(std::sqrt(floatOf(bits)))) << bits;
        }
        const std::uint32_t last = exponent << 23 | 0x7fffff;
        ASSERT_EQ(bitsOf(squareRootByIntegers(last)), bitsOf(std::sqrt(floatOf(last)))) << last;
    }
}

// On all processors, also where the integers are not used.
TEST(SquareRootTest, OfAnyNumberIsTheStandardOne) {
    AnyFloat any(1, true);
    for (int i = 0; i < 200000; ++i) {
        const float value = any();
        const float root = squareRoot(value), expected = std::sqrt(value);
        ASSERT_TRUE(bitsOf(root) == bitsOf(expected) || (std::isnan(root) && std::isnan(expected))) << value;
    }
    EXPECT_EQ(bitsOf(squareRoot(-0.0f)), kSignBit);
    EXPECT_EQ(squareRoot(std::numeric_limits<float>::infinity()), std::numeric_limits<float>::infinity());
}

}  // namespace
}  // namespace keltra::test
