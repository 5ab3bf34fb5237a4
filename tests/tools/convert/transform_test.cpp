// SPDX-License-Identifier: Zlib
#include "tools/convert/transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace keltra::convert {
namespace {

constexpr double kRadians = 3.14159265358979323846 / 180.0;

Matrix about(char axis, double degrees) {
    Matrix m;
    const double angle = degrees * kRadians;
    if (axis == 'x') Matrix::RotationX(angle, m);
    if (axis == 'y') Matrix::RotationY(angle, m);
    if (axis == 'z') Matrix::RotationZ(angle, m);
    return m;
}

/// As the engine turns a node: about x, then y, then z of what is turned already.
Matrix turnedBy(const Vector &angles) {
    return about('x', angles.x) * about('y', angles.y) * about('z', angles.z);
}

Matrix stretch(double x, double y, double z) {
    Matrix m;
    m.a1 = x, m.b2 = y, m.c3 = z;
    return m;
}

class RandomAngles {
   public:
    Vector next() { return Vector(spread(engine), spread(engine), spread(engine)); }

   private:
    std::mt19937 engine{7};
    std::uniform_real_distribution<double> spread{-360.0, 360.0};
};

TEST(Transform, EulerAnglesGiveTheRotationBack) {
    RandomAngles angles;
    for (int i = 0; i < 1000; ++i) {
        const Matrix rotation = turnedBy(angles.next());
        EXPECT_LT(linearDifference(turnedBy(eulerAngles(rotation)), rotation), 1e-12);
    }
}

TEST(Transform, EulerAnglesGiveTheRotationBackWhereXAndZAreOneAxis) {
    for (double y : {90.0, -90.0, 450.0, 89.9999999, -90.0000001}) {
        for (double x = -180.0; x <= 180.0; x += 15.0) {
            const Matrix rotation = turnedBy(Vector(x, y, 2.0 * x + 10.0));
            EXPECT_LT(linearDifference(turnedBy(eulerAngles(rotation)), rotation), 1e-6) << x << ' ' << y;
        }
    }
}

TEST(Transform, NearestAnglesKeepTheRotation) {
    RandomAngles angles;
    for (int i = 0; i < 1000; ++i) {
        const Vector some = angles.next(), previous = angles.next();
        const Vector near = nearestAngles(some, previous);
        EXPECT_LT(linearDifference(turnedBy(near), turnedBy(some)), 1e-12);
    }
}

TEST(Transform, WhatTurnsSteadilyGetsSteadyAngles) {
    Vector before(0.0, 0.0, 0.0);
    for (double turn = 0.0; turn <= 1440.0; turn += 30.0) {
        before = nearestAngles(eulerAngles(about('y', turn)), before);
        EXPECT_NEAR(before.y, turn, 1e-9);
        EXPECT_NEAR(before.x, 0.0, 1e-9);
        EXPECT_NEAR(before.z, 0.0, 1e-9);
    }
}

TEST(Transform, TheRigidPartOfATurnedStretchIsTheTurn) {
    RandomAngles angles;
    for (int i = 0; i < 200; ++i) {
        const Matrix rotation = turnedBy(angles.next());
        const Matrix stretched = rotation * stretch(0.001 + i, 3.0, 1000.0);
        EXPECT_LT(linearDifference(rigidPart(stretched), rotation), 1e-9);
    }
}

TEST(Transform, TheRigidPartOfAMirrorIsNoMirror) {
    RandomAngles angles;
    for (int i = 0; i < 200; ++i) {
        const Matrix rigid = rigidPart(turnedBy(angles.next()) * stretch(-2.0, 1.0, 0.5));
        EXPECT_NEAR(determinant3(rigid), 1.0, 1e-9);
        EXPECT_LT(linearDifference(rigid * Matrix(rigid).Transpose(), Matrix()), 1e-9);
    }
}

TEST(Transform, TheRigidPartKeepsThePlace) {
    Matrix m = stretch(5.0, 5.0, 5.0);
    m.a4 = 1.0, m.b4 = -2.0, m.c4 = 3.0;
    EXPECT_EQ(translationOf(rigidPart(m)), Vector(1.0, -2.0, 3.0));
}

TEST(Transform, WhatFlattensSpaceTakesTheOtherRotation) {
    const Matrix otherwise = about('z', 30.0);
    EXPECT_LT(linearDifference(rigidPart(stretch(1.0, 0.0, 1.0), otherwise), otherwise), 1e-15);
    EXPECT_LT(linearDifference(rigidPart(stretch(0.0, 0.0, 0.0), otherwise), otherwise), 1e-15);
    EXPECT_EQ(linearDifference(inverse(stretch(1.0, 0.0, 1.0)), Matrix()), 0.0);
}

TEST(Transform, NormalsStayUprightOnWhatIsStretchedAndSheared) {
    RandomAngles angles;
    for (int i = 0; i < 100; ++i) {
        const Matrix m = turnedBy(angles.next()) * stretch(3.0, i % 2 ? -0.5 : 0.5, 2.0) *
                         turnedBy(angles.next()) * stretch(1.0, 4.0, 1.0);
        const Vector along(1.0, 0.3, 0.0), across(0.0, 0.2, 1.0);
        const Vector normal = rotated(forNormals(m), across ^ along);
        EXPECT_NEAR(normal * rotated(m, along), 0.0, 1e-9 * normal.Length());
        EXPECT_NEAR(normal * rotated(m, across), 0.0, 1e-9 * normal.Length());
        // And on the side where the surface was looked at from.
        EXPECT_GT(normal * rotated(m, across ^ along), 0.0);
    }
}

TEST(Transform, MatricesThatAreNotFiniteBecomeTheIdentity) {
    aiMatrix4x4 bad;
    bad.b3 = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(linearDifference(widened(bad), Matrix()), 0.0);
}

}  // namespace
}  // namespace keltra::convert
