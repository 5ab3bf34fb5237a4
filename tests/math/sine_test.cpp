// SPDX-License-Identifier: Zlib
#include "math/sine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "math/float_bits.h"

namespace keltra::test {
namespace {

constexpr std::uint32_t kEnd = 137u << 23;  // 1,024

bool isSame(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

void expectLibraryResults(std::uint32_t bits) {
    const float angle = floatOf(bits);
    const SineCosine turn = sineCosineByIntegers(angle);
    const float sine = float(std::sin(double(angle))), cosine = float(std::cos(double(angle)));
    if (isSame(turn.sine, sine) && isSame(turn.cosine, cosine)) return;
    if (std::isnan(turn.sine) && std::isnan(sine) && std::isnan(turn.cosine) && std::isnan(cosine)) return;
    ADD_FAILURE() << std::hexfloat << angle << ": " << turn.sine << ", " << turn.cosine << " instead of "
                  << sine << ", " << cosine;
}

// Neighbours in a step of a prime number reach all exponents with all leading and last digits.
TEST(SineTest, EqualsTheLibraryForBothSigns) {
    for (std::uint32_t bits = 0; bits < kEnd + (1u << 23); bits += 1009) {
        expectLibraryResults(bits);
        expectLibraryResults(bits | kSignBit);
    }
}

TEST(SineTest, EqualsTheLibraryAtMultiplesOfAnEighthOfATurn) {
    for (int eighth = -1200; eighth <= 1200; ++eighth) {
        const std::uint32_t nearest = bitsOf(float(eighth * 0.78539816339744831));
        for (std::uint32_t bits = nearest - 40; bits != nearest + 41; ++bits) expectLibraryResults(bits);
    }
}

TEST(SineTest, EqualsTheLibraryWhereItAnswersItself) {
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) expectLibraryResults(random());
    for (std::uint32_t bits : {0x7f800000u, 0xff800000u, 0x7fc00000u, 0xffc12345u, 0x7f800001u})
        expectLibraryResults(bits);
}

TEST(SineTest, AngleInDegreesIsRememberedByItsBits) {
    std::mt19937 random(2);
    for (int i = 0; i < 100000; ++i) {
        const float degrees = i % 2 ? float(int(random() % 7200) - 3600) * 0.1f : floatOf(random());
        const SineCosine expected = sineCosine(degrees * 0.0055555557f * 3.1415927f);
        for (int again = 0; again < 2; ++again) {
            const Rotation rotation = rotationOf(degrees);
            if (std::isnan(expected.sine) && std::isnan(rotation.sine)) continue;
            ASSERT_TRUE(isSame(rotation.sine, expected.sine)) << degrees;
            ASSERT_TRUE(isSame(rotation.cosine, expected.cosine)) << degrees;
            ASSERT_TRUE(isSame(rotation.unit, (1.0f - expected.cosine) + expected.cosine)) << degrees;
        }
    }
    EXPECT_TRUE(isSame(rotationOf(0.0f).sine, 0.0f));
    EXPECT_TRUE(isSame(rotationOf(-0.0f).sine, -0.0f));
    EXPECT_TRUE(isSame(rotationOf(-0.0f).cosine, 1.0f));
}

TEST(SineTest, RadiansAreThePlainProducts) {
    std::mt19937 random(3);
    for (int i = 0; i < 1000000; ++i) {
        std::uint32_t bits = random();
        if (i % 4) bits = (bits & 0x807fffff) | ((bits >> 4 & 15) + 122) << 23;
        const float degrees = floatOf(bits);
        const volatile float first = degrees * 0.0055555557f, radians = first * 3.1415927f;
        if (std::isnan(radians)) continue;
        ASSERT_TRUE(isSame(radiansByIntegers(degrees), radians)) << std::hexfloat << degrees;
    }
    for (std::uint32_t bits : {0u, 1u, 67u << 23, (67u << 23) - 1, 187u << 23, 0x7f7fffffu, 0x7f800000u})
        for (std::uint32_t sign : {0u, kSignBit})
            EXPECT_TRUE(isSame(radiansByIntegers(floatOf(bits | sign)),
                               floatOf(bits | sign) * 0.0055555557f * 3.1415927f));
}

TEST(SineTest, UnitIsThePlainSum) {
    for (std::uint32_t bits = 0; bits <= kOneBits; bits += 509) {
        for (std::uint32_t sign : {0u, kSignBit}) {
            const float cosine = floatOf(bits | sign);
            const volatile float rest = 1.0f - cosine, unit = rest + cosine;
            ASSERT_TRUE(isSame(unitByIntegers(cosine), unit)) << std::hexfloat << cosine;
        }
    }
    EXPECT_TRUE(isSame(unitByIntegers(-1.0f), 1.0f));
    EXPECT_TRUE(std::isnan(unitByIntegers(NAN)));
}

}  // namespace
}  // namespace keltra::test
