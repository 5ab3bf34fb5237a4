// SPDX-License-Identifier: Zlib
#include "math/sparse.h"

#include <gtest/gtest.h>
#include <keltra/matrix.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "tests/math/any_float.h"

namespace keltra::test {
namespace {

constexpr int kTimes = 300000;

struct Matrix {
    float m[16];
};

// Equal bits; a not-a-number may be any, on processors that do not agree about its sign.
bool isSame(const Matrix &a, const Matrix &b) {
    for (int i = 0; i < 16; ++i)
        if (bitsOf(a.m[i]) != bitsOf(b.m[i]) && !(std::isnan(a.m[i]) && std::isnan(b.m[i]))) return false;
    return true;
}

Matrix anyMatrix(AnyFloat &any, bool placement) {
    Matrix matrix;
    for (float &value : matrix.m) value = any();
    if (placement) {
        for (int i = 3; i < 15; i += 4) matrix.m[i] = 0.0f;
        matrix.m[15] = 1.0f;
    }
    return matrix;
}

Matrix plainRotation(const Rotation &turn, float x, float y, float z) {
    const float s = turn.sine, c = turn.cosine, u = 1.0f - c;
    return {{u * x * x + c, u * y * x + s * z, u * z * x - s * y, 0.0f,  //
             u * x * y - s * z, u * y * y + c, s * x + u * z * y, 0.0f,  //
             s * y + u * z * x, u * z * y - s * x, u * z * z + c, 0.0f,  //
             0.0f, 0.0f, 0.0f, 1.0f}};
}

Matrix plainlyTurned(const Matrix &rotation, Matrix matrix) {
    const float *m = rotation.m;
    float *t = matrix.m;
    for (int j = 0; j < 4; ++j) {
        const float x = t[j], y = t[4 + j], z = t[8 + j];
        t[j] = m[0] * x + m[1] * y + m[2] * z;
        t[4 + j] = m[4] * x + m[5] * y + m[6] * z;
        t[8 + j] = m[8] * x + m[9] * y + m[10] * z;
    }
    return matrix;
}

Rotation anyRotation(AnyFloat &any, int i) {
    if (i % 4) return rotationOf(any());
    return rotationOf(static_cast<float>(i % 97) * 7.5f - 360.0f);
}

TEST(SparseTest, MainAxesAreTakenByTheirBits) {
    EXPECT_EQ(mainAxis(1.0f, 0.0f, 0.0f), 0);
    EXPECT_EQ(mainAxis(0.0f, 1.0f, 0.0f), 1);
    EXPECT_EQ(mainAxis(0.0f, 0.0f, 1.0f), 2);
    EXPECT_EQ(mainAxis(1.0f, -0.0f, 0.0f), -1);
    EXPECT_EQ(mainAxis(0.5f, floatOf(0x00800000), 0.0f), -1) << "together the bits of 1";
    EXPECT_EQ(mainAxis(1.0f, 1.0f, 0.0f), -1);
    EXPECT_EQ(mainAxis(-1.0f, 0.0f, 0.0f), -1);
    EXPECT_EQ(mainAxis(0.5f, 0.0f, 0.5f), -1);
    EXPECT_EQ(mainAxis(0.0f, 0.0f, 0.0f), -1);
}

TEST(SparseTest, RotationAboutAMainAxisIsThePlainOne) {
    AnyFloat any(1);
    for (int i = 0; i < kTimes; ++i) {
        const Rotation turn = anyRotation(any, i);
        const int axis = i % 3;
        Matrix made;
        setTurn(turn, axis, made.m);
        if (!isFinite(turn.sine)) continue;
        ASSERT_TRUE(isSame(made, plainRotation(turn, axis == 0, axis == 1, axis == 2))) << turn.sine << axis;
    }
}

TEST(SparseTest, MatrixIsTurnedAsPlainly) {
    AnyFloat any(2);
    int turned = 0;
    for (int i = 0; i < kTimes; ++i) {
        const Rotation turn = anyRotation(any, i);
        const int axis = i % 3;
        const Matrix before = anyMatrix(any, i & 1);
        Matrix after = before;
        if (!turnBy(turn, axis, after.m)) {
            ASSERT_TRUE(isSame(after, before));
            continue;
        }
        ++turned;
        ASSERT_TRUE(
            isSame(after, plainlyTurned(plainRotation(turn, axis == 0, axis == 1, axis == 2), before)))
            << i;
    }
    EXPECT_GT(turned, kTimes / 4);
}

TEST(SparseTest, MatrixIsTranslatedAsPlainly) {
    AnyFloat any(3);
    for (int i = 0; i < kTimes; ++i) {
        const Matrix before = anyMatrix(any, true);
        const float x = any(), y = any(), z = any();
        Matrix expected = before, after = before;
        float *t = expected.m;
        for (int j = 0; j < 4; ++j) t[12 + j] = x * t[j] + y * t[4 + j] + z * t[8 + j] + t[12 + j];
        ASSERT_TRUE(translateBy(x, y, z, after.m));
        ASSERT_TRUE(isSame(after, expected)) << i;
    }
}

TEST(SparseTest, PlacementsAreMultipliedAsPlainly) {
    AnyFloat any(4);
    for (int i = 0; i < kTimes; ++i) {
        const Matrix a = anyMatrix(any, true), b = anyMatrix(any, true);
        Matrix product, expected;
        for (int column = 0; column < 16; column += 4)
            for (int row = 0; row < 4; ++row)
                expected.m[column + row] = a.m[column] * b.m[row] + a.m[column + 1] * b.m[4 + row] +
                                           a.m[column + 2] * b.m[8 + row] + a.m[column + 3] * b.m[12 + row];
        ASSERT_TRUE(multiplyPlacements(a.m, b.m, product.m));
        ASSERT_TRUE(isSame(product, expected)) << i;
    }
}

TEST(SparseTest, ProductWithTheIdentityIsTheMatrixItselfWhereItSaysSo) {
    AnyFloat any(6, true);
    int kept = 0;
    for (int i = 0; i < kTimes; ++i) {
        R3XMATRIX identity;
        for (int k = 0; k < 16; ++k)
            if (k % 5 != 0 && (i >> k & 1)) identity.m[k] = -0.0f;
        ASSERT_TRUE(isIdentity(identity.m));
        Matrix matrix = anyMatrix(any, i & 1), product;
        if (i & 2)
            for (float &value : matrix.m) value = bitsOf(value) == kSignBit ? 0.0f : value;
        const R3XMATRIX plain = R3XMATRIX(matrix.m) * identity;
        std::copy(plain.m, plain.m + 16, product.m);
        if (!isKeptByIdentity(matrix.m)) continue;
        ++kept;
        ASSERT_TRUE(isSame(product, matrix)) << i;
    }
    EXPECT_GT(kept, 1000);
    R3XMATRIX other;
    other.m[4] = 1e-40f;
    EXPECT_FALSE(isIdentity(other.m));
    other = R3XMATRIX();
    other.m[10] = -1.0f;
    EXPECT_FALSE(isIdentity(other.m));
}

// With a not-a-number or an infinity somewhere nothing is left out.
TEST(SparseTest, WhatIsNotFiniteIsLeftToThePlainOperations) {
    AnyFloat any(5);
    const Matrix sound = anyMatrix(any, true);
    const float infinity = INFINITY, bad[2] = {infinity, std::nanf("")};
    for (float value : bad) {
        for (int i : {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14}) {
            Matrix matrix = sound, product;
            matrix.m[i] = value;
            EXPECT_FALSE(multiplyPlacements(matrix.m, sound.m, product.m));
            EXPECT_FALSE(multiplyPlacements(sound.m, matrix.m, product.m));
            EXPECT_FALSE(translateBy(1.0f, 2.0f, 3.0f, matrix.m));
            if (i < 12) {
                EXPECT_FALSE(turnBy(rotationOf(30.0f), 1, matrix.m));
            }
        }
        Matrix matrix = sound;
        EXPECT_FALSE(translateBy(value, 0.0f, 0.0f, matrix.m));
        EXPECT_FALSE(translateBy(0.0f, value, 0.0f, matrix.m));
        EXPECT_FALSE(translateBy(0.0f, 0.0f, value, matrix.m));
    }
}

}  // namespace
}  // namespace keltra::test
