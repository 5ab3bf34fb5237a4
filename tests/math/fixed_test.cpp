// SPDX-License-Identifier: Zlib
#include "math/fixed.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace keltra::test {
namespace {

// The definition: multiplied, truncated toward zero, with one result for everything that does not fit.
std::int32_t expected(float value) {
    const double scaled = double(value) * 65536.0;
    return scaled >= -2147483648.0 && scaled < 2147483648.0 ? int(scaled) : INT32_MIN;
}

TEST(FixedTest, KnownValues) {
    EXPECT_EQ(toFixed(0.0f), 0);
    EXPECT_EQ(toFixed(-0.0f), 0);
    EXPECT_EQ(toFixed(1.0f), 65536);
    EXPECT_EQ(toFixed(-1.5f), -98304);
    EXPECT_EQ(toFixed(0.2f), 13107);
    EXPECT_EQ(toFixed(-0.2f), -13107) << "toward zero";
    EXPECT_EQ(toFixed(1.0f / 65536.0f), 1);
    EXPECT_EQ(toFixed(0.99f / 65536.0f), 0);
    EXPECT_EQ(toFixed(32767.998f), 2147483520);
    EXPECT_EQ(toFixed(-32768.0f), INT32_MIN);
}

TEST(FixedTest, WhatDoesNotFitIsTheSmallestInteger) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (float value :
         {32768.0f, -32769.0f, 1e30f, -1e30f, infinity, -infinity, std::nanf(""), -std::nanf("")}) {
        EXPECT_EQ(toFixed(value), INT32_MIN) << value;
        EXPECT_EQ(toFixedByIntegers(value), INT32_MIN) << value;
    }
}

TEST(FixedTest, BothWaysGiveTheSameForAnyBits) {
    std::mt19937 random(1);
    for (int i = 0; i < 2000000; ++i) {
        const float value = floatOf(random());
        ASSERT_EQ(toFixed(value), expected(value)) << value;
        ASSERT_EQ(toFixedByIntegers(value), expected(value)) << value;
    }
}

TEST(FixedTest, BothWaysTruncateEverythingInRange) {
    std::mt19937 random(2);
    std::uniform_real_distribution<float> inRange(-32768.0f, 32768.0f);
    for (int i = 0; i < 1000000; ++i) {
        const float value = inRange(random);
        if (value >= 32768.0f) continue;
        ASSERT_EQ(toFixed(value), int(value * 65536)) << value;
        ASSERT_EQ(toFixedByIntegers(value), int(value * 65536)) << value;
    }
}

TEST(FixedTest, EveryExponentWithTheMantissasAtItsEdges) {
    for (std::uint32_t sign : {0u, 0x80000000u})
        for (std::uint32_t exponent = 0; exponent < 256; ++exponent)
            for (std::uint32_t mantissa : {0u, 1u, 0x3fffffu, 0x400000u, 0x7fffffu}) {
                const float value = floatOf(sign | exponent << 23 | mantissa);
                ASSERT_EQ(toFixed(value), expected(value)) << value;
                ASSERT_EQ(toFixedByIntegers(value), expected(value)) << value;
            }
}

TEST(FixedTest, ArraysOfAnyLengthAndAlignment) {
    std::mt19937 random(3);
    std::vector<float> values(40);
    for (float &value : values) value = floatOf(random());
    for (std::size_t start = 0; start < 4; ++start)
        for (std::size_t count = 0; count <= 33; ++count) {
            std::vector<std::int32_t> fixed(count + 2, 77);
            toFixed(values.data() + start, fixed.data() + 1, count);
            EXPECT_EQ(fixed.front(), 77);
            EXPECT_EQ(fixed.back(), 77);
            for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(fixed[i + 1], expected(values[start + i]));
        }
}

TEST(FixedTest, LowByteIsThatOfTheTruncatedProduct) {
    std::mt19937 random(3);
    for (int i = 0; i < 3000000; ++i) {
        // Any bits, numbers as integers give them, and colours.
        float value = floatOf(random());
        if (i % 3 == 1) value = static_cast<float>(static_cast<int>(random())) * 0.00000004f;
        if (i % 3 == 2) value = static_cast<float>(random() % 4081) / 255.0f / 16.0f;
        const volatile float product = value * 255.0f;
        int byte = 0;
        if (std::fabs(product) < 9.0e18f) byte = static_cast<int>(static_cast<std::int64_t>(product) & 0xff);
        ASSERT_EQ(lowByteOf255Times(value), byte) << value;
    }
    // All mantissas of an exponent: each of them rounds in its own way.
    for (std::uint32_t bits = 126u << 23; bits < 127u << 23; ++bits) {
        const volatile float product = floatOf(bits) * 255.0f;
        ASSERT_EQ(lowByteOf255Times(floatOf(bits)), static_cast<int>(product)) << bits;
    }
}

}  // namespace
}  // namespace keltra::test
