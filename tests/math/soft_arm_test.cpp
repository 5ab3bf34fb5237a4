// SPDX-License-Identifier: Zlib
#include "math/soft_arm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "math/fixed.h"
#include "math/float_bits.h"

namespace keltra::test {
namespace {

#if defined(KELTRA_SOFT_ARM)

constexpr int kTimes = 200000;

// Floats around the range that the kernels accept, near each other often enough for sums that cancel, and
// mantissas with many ones or zeros for results halfway between two floats.
class Operand {
   public:
    float operator()() {
        const std::uint32_t bits = random(), sign = bits & kSignBit, mantissa = bits & 0x7fffff;
        switch (random() % 6) {
            case 0:
                return floatOf(sign | mantissa | (127 + random() % 3) << 23);
            case 1:
                return floatOf(sign | (random() % 4) << 21 | (120 + random() % 12) << 23);
            case 2:
                return floatOf(sign | 0x7fffff | (100 + random() % 60) << 23);
            case 3:
                return floatOf(sign | mantissa | (77 + random() % 109) << 23);
            case 4:
                return floatOf((bits & 0x80ff0000) | 0x3f000000);
            default:
                return floatOf(bits);
        }
    }
    std::mt19937 random{1};
};

// A kernel may leave a result to the caller; what it gives is the plain one.
class Comparison {
   public:
    void add(std::uint32_t bits, float expected) {
        if (bits == 0) return;
        ++given;
        different += bits != bitsOf(expected);
    }
    ~Comparison() {
        EXPECT_EQ(different, 0);
        EXPECT_GT(given, kTimes / 4);
    }

   private:
    int given = 0, different = 0;
};

TEST(SoftArmTest, SumsOfProductsAreThePlainOnes) {
    Operand any;
    Comparison three, squares, differences, distances;
    for (int i = 0; i < kTimes; ++i) {
        float a[3], b[13];
        for (float &value : a) value = any();
        for (float &value : b) value = any();
        if (i % 7 == 0) {
            a[1] = -a[0];
            b[4] = floatOf(bitsOf(b[0]) + any.random() % 3);
        }
        const volatile float x = a[0] * b[0], y = a[1] * b[4], z = a[2] * b[8];
        const volatile float sum = x + y, all = sum + z;
        three.add(keltraSumOfThree(a, b), all);
        const volatile float xx = a[0] * a[0], yy = a[1] * a[1], zz = a[2] * a[2], xxyy = xx + yy;
        squares.add(keltraSumOfSquares(a), xxyy + zz);
        // Zeros, and places that are the same along an axis.
        if (i % 5 == 0) a[any.random() % 3] = floatOf(any.random() & kSignBit);
        if (i % 5 == 1) b[any.random() % 3] = floatOf(any.random() & kSignBit);
        if (i % 5 == 2) b[any.random() % 3] = a[any.random() % 3];
        if (i % 10 == 3) b[1] = a[1];
        const volatile float dx = b[0] - a[0], dy = b[1] - a[1], dz = b[2] - a[2];
        const volatile float dxx = dx * dx, dyy = dy * dy, dzz = dz * dz, dxy = dxx + dyy;
        distances.add(keltraSquaredDistance(a, b), dxy + dzz);
        const volatile float ab = a[0] * b[0], cd = b[4] * a[1];
        differences.add(keltraDifference(bitsOf(a[0]), bitsOf(b[0]), bitsOf(b[4]), bitsOf(a[1])), ab - cd);
    }
}

TEST(SoftArmTest, ScaledSumsAreThePlainOnes) {
    Operand any;
    Comparison sums;
    for (int i = 0; i < kTimes; ++i) {
        const float a = any(), b = any(), c = i % 7 ? any() : -(a * b);
        const volatile float product = a * b;
        sums.add(keltraMultiplyAdd(bitsOf(a), bitsOf(b), bitsOf(c)), product + c);
    }
}

TEST(SoftArmTest, TurnedPairsAreThePlainOnes) {
    Operand any;
    Comparison first, second;
    for (int i = 0; i < kTimes; ++i) {
        const float c = any(), p = i % 5 ? any() : c, x = any();
        const float y = i % 5 ? any() : floatOf((bitsOf(x) ^ kSignBit) + any.random() % 2);
        float newX = x, newY = y;
        const bool done = keltraTurn(bitsOf(c), bitsOf(p), &newX, &newY);
        if (!done) {
            ASSERT_EQ(bitsOf(newX), bitsOf(x));
            ASSERT_EQ(bitsOf(newY), bitsOf(y));
        }
        const volatile float cx = c * x, py = p * y, cy = c * y, px = p * x;
        first.add(done ? bitsOf(newX) : 0, cx + py);
        second.add(done ? bitsOf(newY) : 0, cy - px);
    }
}

TEST(SoftArmTest, TransformedPointsAreThePlainOnes) {
    Operand any;
    std::uniform_real_distribution<float> ordinary(-40.0f, 40.0f);
    Comparison rows[3];
    for (int i = 0; i < kTimes; ++i) {
        float v[3], m[16], before[16];
        for (float &value : v) value = i % 8 ? ordinary(any.random) : any();
        for (float &value : m) value = i % 8 ? ordinary(any.random) : any();
        if (i % 11 == 0) m[12] = -(v[0] * m[0]);
        if (i % 13 == 0) {
            v[1] = -v[0];
            m[4] = m[0];
        }
        std::copy(m, m + 16, before);
        float apart[3] = {};
        const bool done = keltraTransform(v, m, i % 2 ? m + 12 : apart);
        for (int k = 0; k < 16; ++k) {
            if (!done || i % 2 == 0 || k < 12 || k == 15) {
                ASSERT_EQ(bitsOf(m[k]), bitsOf(before[k]));
            }
        }
        for (int k = 0; k < 3; ++k) {
            const volatile float x = v[0] * before[k], y = v[1] * before[4 + k], z = v[2] * before[8 + k];
            const volatile float xy = x + y, xyz = xy + z;
            rows[k].add(done ? bitsOf(i % 2 ? m[12 + k] : apart[k]) : 0, xyz + before[12 + k]);
        }
    }
}

TEST(SoftArmTest, TranslationsAreThePlainOnes) {
    Operand any;
    Comparison rows[3];
    for (int i = 0; i < kTimes; ++i) {
        float place[3], t[16] = {};
        const std::uint32_t zeros = i % 3 ? any.random() : 0;
        for (int k = 0; k < 3; ++k) place[k] = zeros >> k & 1 ? floatOf(zeros << k & kSignBit) : any();
        for (int k = 0; k < 15; ++k)
            if (k % 4 < 3) t[k] = zeros >> (8 + k) & 1 ? floatOf(zeros << k & kSignBit) : any();
        t[15] = 1.0f;
        if (i % 11 == 0) t[12] = -(place[0] * t[0]);
        if (i % 13 == 0) {
            place[1] = -place[0];
            t[4] = t[0];
        }
        if (i % 1000 == 0) t[3] = floatOf(kSignBit);
        float before[16], expected[3];
        std::copy(t, t + 16, before);
        for (int k = 0; k < 3; ++k) {
            const volatile float x = place[0] * t[k], y = place[1] * t[4 + k], z = place[2] * t[8 + k];
            const volatile float xy = x + y, xyz = xy + z;
            expected[k] = xyz + t[12 + k];
        }
        const bool done = keltraTranslate(place, t);
        ASSERT_FALSE(done && i % 1000 == 0) << "the last row is another";
        for (int k = 0; k < 16; ++k) {
            if (!done || k < 12 || k == 15) {
                ASSERT_EQ(bitsOf(t[k]), bitsOf(before[k]));
            }
        }
        // A zero is a result too, which a comparison leaves out.
        for (int k = 0; k < 3; ++k) {
            rows[k].add(done ? bitsOf(t[12 + k]) : 0, expected[k]);
            if (done && isZero(t[12 + k])) {
                ASSERT_EQ(bitsOf(t[12 + k]), bitsOf(expected[k]));
            }
        }
    }
}

TEST(SoftArmTest, ProductsOfMatricesAreThePlainOnes) {
    Operand any;
    std::uniform_real_distribution<float> ordinary(-40.0f, 40.0f);
    Comparison elements[16];
    for (int i = 0; i < kTimes / 2; ++i) {
        float a[16] = {}, b[16] = {}, result[16] = {};
        for (int k = 0; k < 15; ++k) {
            if (k % 4 == 3) continue;
            a[k] = i % 8 ? ordinary(any.random) : any();
            b[k] = i % 8 ? ordinary(any.random) : any();
            if (i % 4 == 1 && any.random() % 3 == 0) a[k] = floatOf(any.random() & kSignBit);
            if (i % 4 < 2 && any.random() % 3 == 0) b[k] = floatOf(any.random() & kSignBit);
        }
        // Sums of two and of three products that are zero, and one that the translation makes zero.
        if (i % 3 == 0) {
            a[1] = -a[0];
            b[4] = b[0];
        }
        if (i % 9 == 0) a[2] = b[12] = 0.0f;
        if (i % 27 == 1) {
            a[13] = a[14] = 0.0f;
            b[13] = -(a[12] * b[1]);
        }
        a[15] = b[15] = i % 1000 ? 1.0f : 2.0f;
        const bool done = keltraMultiply(a, b, result);
        ASSERT_FALSE(done && i % 1000 == 0) << "the last row is another";
        for (int k = 0; k < 16; ++k) {
            const float *column = a + k / 4 * 4, *row = b + k % 4;
            const volatile float x = column[0] * row[0], y = column[1] * row[4], z = column[2] * row[8];
            const volatile float xy = x + y, xyz = xy + z;
            if (done && k % 4 == 3) {
                ASSERT_EQ(result[k], k == 15 ? 1.0f : 0.0f);
            }
            const bool first = k % 4 == 3;
            elements[k].add(done ? bitsOf(first ? 1.0f : result[k]) : 0, first    ? 1.0f
                                                                         : k < 12 ? xyz
                                                                                  : xyz + row[12]);
        }
    }
}

TEST(SoftArmTest, FixedNumbersAreThePlainOnes) {
    Operand any;
    for (int i = 0; i < kTimes; ++i) {
        float values[8], copy[8] = {};
        std::int32_t fixed[8] = {};
        for (float &value : values)
            value = i % 3 ? any() : floatOf(any.random() % 5 << 31 | any.random() % 70 << 24);
        const unsigned int fours = 1 + i % 2;
        keltraToFixed(values, copy, fixed, fours);
        for (unsigned int k = 0; k < 8; ++k) {
            ASSERT_EQ(fixed[k], k < 4 * fours ? toFixedByIntegers(values[k]) : 0) << values[k];
            ASSERT_EQ(bitsOf(copy[k]), k < 4 * fours ? bitsOf(values[k]) : 0);
        }
    }
}

TEST(SoftArmTest, BytesAtAnyAddressAreTheSameFixedNumbers) {
    Operand any;
    for (int i = 0; i < kTimes; ++i) {
        float values[12];
        for (float &value : values) value = any();
        const unsigned int fours = 1 + i % 3, place = i % 4;
        std::uint32_t words[13] = {};
        std::memcpy(reinterpret_cast<char *>(words) + place, values, sizeof values);
        std::int32_t fixed[12] = {};
        keltraBytesToFixed(reinterpret_cast<char *>(words) + place, fixed, fours);
        for (unsigned int k = 0; k < 12; ++k)
            ASSERT_EQ(fixed[k], k < 4 * fours ? toFixedByIntegers(values[k]) : 0)
                << values[k] << ' ' << place;
    }
}

TEST(SoftArmTest, WordsAreComparedAndCopied) {
    std::uint32_t words[16], others[16], copy[16];
    for (unsigned int i = 0; i < 16; ++i) words[i] = others[i] = i * 0x01234567;
    EXPECT_TRUE(keltraSameWords(words, others));
    EXPECT_TRUE(keltraCopySame(words, copy, others));
    EXPECT_TRUE(std::equal(words, words + 16, copy));
    for (std::uint32_t &word : others) {
        word ^= 0x80;
        std::fill(copy, copy + 16, 0);
        EXPECT_FALSE(keltraSameWords(words, others));
        EXPECT_FALSE(keltraCopySame(words, copy, others));
        EXPECT_TRUE(std::equal(words, words + 16, copy));
        word ^= 0x80;
    }
}

#else

TEST(SoftArmTest, IsForProcessorsWithoutAFloatingPointUnit) {
    GTEST_SKIP() << "not built for this processor";
}

#endif

}  // namespace
}  // namespace keltra::test
