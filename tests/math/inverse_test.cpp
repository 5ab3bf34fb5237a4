// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/matrix.h>

#include <cmath>
#include <iterator>
#include <random>

#include "math/float_bits.h"
#include "tests/math/any_float.h"
#include "tests/support/emulated.h"

namespace keltra::test {
namespace {

float product(float a, float b) {
    const volatile float result = a * b;
    return result;
}

float sum(float a, float b) {
    const volatile float result = a + b;
    return result;
}

float minor(float a, float d, float b, float c) { return sum(product(a, d), -product(b, c)); }

// R3XMATRIX::inverse in plain operations, each rounded by itself.
void invertPlainly(const float *m, float *R) {
    const float first = minor(m[10], m[5], m[9], m[6]), second = minor(m[10], m[4], m[8], m[6]),
                third = minor(m[9], m[4], m[8], m[5]);
    const volatile float r =
        1.0f / sum(sum(product(m[0], first), -product(m[1], second)), product(m[2], third));
    R[0] = product(first, r);
    R[1] = product(-minor(m[10], m[1], m[9], m[2]), r);
    R[2] = product(minor(m[6], m[1], m[5], m[2]), r);
    R[4] = product(-second, r);
    R[5] = product(minor(m[10], m[0], m[8], m[2]), r);
    R[6] = product(-minor(m[6], m[0], m[4], m[2]), r);
    R[8] = product(third, r);
    R[9] = product(-minor(m[9], m[0], m[8], m[1]), r);
    R[10] = product(minor(m[5], m[0], m[4], m[1]), r);
    for (int j = 0; j < 3; ++j)
        R[12 + j] = -sum(sum(product(m[14], R[8 + j]), product(m[13], R[4 + j])), product(m[12], R[j]));
    R[3] = R[7] = R[11] = 0.0f;
    R[15] = 1.0f;
}

void expectPlainInverse(const R3XMATRIX &matrix) {
    float expected[16];
    invertPlainly(matrix.m, expected);
    const R3XMATRIX inverse = matrix.inverse();
    for (int i = 0; i < 16; ++i) {
        if (std::isnan(expected[i]) && std::isnan(inverse.m[i])) continue;
        ASSERT_EQ(bitsOf(inverse.m[i]), bitsOf(expected[i]))
            << i << std::hexfloat << ": " << inverse.m[i] << " instead of " << expected[i];
    }
}

constexpr int kTimes = 100000;

TEST(InverseTest, RotationsWithScalesAreThePlainOnes) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> angle(-360.0f, 360.0f), place(-100.0f, 100.0f), one(-1.0f, 1.0f);
    const float scales[] = {1.0f, 0.01f, 0.5f, 3.0f, 39.37f, -1.0f};
    for (int i = 0; i < kTimes / sampled(4); ++i) {
        R3XVECTOR3D axis(one(random), one(random), i % 5 ? one(random) : 0.0f);
        axis.normalize();
        R3XMATRIX matrix;
        matrix.setRotation(angle(random), axis.x, axis.y, axis.z);
        const float scale = scales[random() % std::size(scales)];
        for (int k = 0; k < 12; ++k) matrix.m[k] *= scale;
        matrix.setTranslation(place(random), i % 3 ? place(random) : 0.0f, place(random));
        expectPlainInverse(matrix);
    }
}

TEST(InverseTest, AnyNumbersAreThePlainOnes) {
    AnyFloat any(2, true);
    std::mt19937 random(3);
    for (int i = 0; i < kTimes / sampled(4); ++i) {
        R3XMATRIX matrix;
        for (float &element : matrix.m)
            element =
                i % 4 ? floatOf((random() & 0x807fffff) | ((random() % (8u << i % 3)) + 124) << 23) : any();
        for (unsigned int k = random() % 3; k; --k) matrix.m[random() % 16] = any();
        expectPlainInverse(matrix);
    }
}

// Minors that are zero or nearly so, factors at both ends of what the kernels take.
TEST(InverseTest, CancellationsAreThePlainOnes) {
    std::mt19937 random(4);
    for (int i = 0; i < kTimes / sampled(4); ++i) {
        R3XMATRIX matrix;
        for (float &element : matrix.m)
            element = floatOf((random() & 0x80f00000) | (110 + random() % 36) << 23);
        const unsigned int from = random() % 3, to = (from + 1) % 3;
        for (unsigned int k = 0; k < 3; ++k)
            matrix.m[4 * to + k] = floatOf(bitsOf(matrix.m[4 * from + k]) + random() % 2);
        if (i % 2) matrix.transpose();
        expectPlainInverse(matrix);
    }
}

}  // namespace
}  // namespace keltra::test
