// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/matrix.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>

namespace {

R3XMATRIX numbered() { return R3XMATRIX(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15); }

R3XMATRIX zero() { return R3XMATRIX(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0); }

R3XMATRIX randomMatrix(std::mt19937 &random) {
    std::uniform_real_distribution<float> any(-10.0f, 10.0f);
    R3XMATRIX result;
    for (float &element : result.m) element = any(random);
    return result;
}

void expectMatrix(const R3XMATRIX &matrix, const float (&expected)[16]) {
    for (int i = 0; i < 16; ++i) EXPECT_EQ(matrix.m[i], expected[i]) << "m[" << i << "]";
}

void expectNear(const R3XMATRIX &matrix, const R3XMATRIX &expected, float tolerance) {
    for (int i = 0; i < 16; ++i) EXPECT_NEAR(matrix.m[i], expected.m[i], tolerance) << "m[" << i << "]";
}

bool sameVector(const R3XVECTOR4D &v, const R3XVECTOR4D &expected) { return v == expected; }

TEST(MatrixTest, ConstructionAndCopies) {
    static_assert(sizeof(R3XMATRIX) == 64, "handed to the GL as it is");
    static_assert(std::is_same<decltype(std::declval<R3XMATRIX &>() = R3XMATRIX()), R3XMATRIX>::value,
                  "by value");
    expectMatrix(R3XMATRIX(), {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    for (int i = 0; i < 16; ++i) EXPECT_EQ(numbered().m[i], float(i));
    const R3XMATRIX source = numbered();
    EXPECT_EQ(R3XMATRIX(source.m).m[15], 15.0f);
    EXPECT_EQ(R3XMATRIX(static_cast<const float *>(nullptr)).m[15], 1.0f);
    R3XMATRIX target;
    const R3XMATRIX returned = target = source;
    EXPECT_EQ(target.m[7], 7.0f);
    EXPECT_EQ(returned.m[7], 7.0f);
    R3XMATRIX &same = target;
    target = same;
    EXPECT_EQ(target.m[7], 7.0f);
    target.setIdentity();
    expectMatrix(target, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
}

TEST(MatrixTest, RowsAndColumns) {
    EXPECT_TRUE(sameVector(numbered().getRow(1), R3XVECTOR4D(1, 5, 9, 13)));
    EXPECT_TRUE(sameVector(numbered().getColumn(3), R3XVECTOR4D(12, 13, 14, 15)));
    for (int index : {4, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_TRUE(sameVector(numbered().getRow(index), R3XVECTOR4D(0, 0, 0, 0)));
        EXPECT_TRUE(sameVector(numbered().getColumn(index), R3XVECTOR4D(0, 0, 0, 0)));
    }
}

TEST(MatrixTest, TranslationAndScalingWriteTheirElementsOnly) {
    R3XMATRIX matrix = numbered();
    matrix.setTranslation(20, 21, 22);
    matrix.setScaling(R3XVECTOR3D(30, 31, 32));
    expectMatrix(matrix, {30, 1, 2, 3, 4, 31, 6, 7, 8, 9, 32, 11, 20, 21, 22, 15});
    EXPECT_TRUE(matrix.getTranslation() == R3XVECTOR3D(20, 21, 22));
    matrix.setTranslation(R3XVECTOR3D(1, 2, 3));
    EXPECT_TRUE(matrix.getTranslation() == R3XVECTOR3D(1, 2, 3));
}

TEST(MatrixTest, TheLeftFactorIsAppliedFirst) {
    R3XMATRIX translation, scaling;
    translation.setTranslation(1, 0, 0);
    scaling.setScaling(R3XVECTOR3D(2, 2, 2));
    EXPECT_TRUE((translation * scaling).getTranslation() == R3XVECTOR3D(2, 0, 0));
    EXPECT_TRUE((scaling * translation).getTranslation() == R3XVECTOR3D(1, 0, 0));
}

TEST(MatrixTest, ProductsSumInOrder) {
    std::mt19937 random(7);
    for (int round = 0; round < 1000; ++round) {
        const R3XMATRIX a = randomMatrix(random), b = randomMatrix(random);
        R3XMATRIX expected;
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j) {
                float sum = a.m[4 * i] * b.m[j];
                for (int k = 1; k < 4; ++k) sum += a.m[4 * i + k] * b.m[4 * k + j];
                expected.m[4 * i + j] = sum;
            }
        expectMatrix(a * b, expected.m);
        R3XMATRIX c = a;
        expectMatrix(c *= b, expected.m);
        expectMatrix(c, expected.m);
    }
}

TEST(MatrixTest, AMatrixMayMultiplyItself) {
    R3XMATRIX matrix = numbered();
    const R3XMATRIX square = numbered() * numbered();
    matrix *= matrix;
    expectMatrix(matrix, square.m);
}

TEST(MatrixTest, TransformAndRotate) {
    const R3XMATRIX m = numbered();
    EXPECT_TRUE(sameVector(m.transform(R3XVECTOR3D(1, 2, 3)), R3XVECTOR4D(44, 51, 58, 65)));
    EXPECT_TRUE(sameVector(m.transform(R3XVECTOR2D(1, 2)), R3XVECTOR4D(20, 24, 28, 32)));
    EXPECT_TRUE(sameVector(m.transform(R3XVECTOR4D(1, 2, 3, 2)), R3XVECTOR4D(56, 64, 72, 80)));
    EXPECT_TRUE(m.rotate(R3XVECTOR4D(1, 2, 3, 99)) == R3XVECTOR3D(32, 38, 44)) << "w is ignored";
    EXPECT_TRUE(m.rotate(R3XVECTOR2D(1, 2)) == R3XVECTOR3D(8, 11, 14));
}

TEST(MatrixTest, TransposeSwapsRowsAndColumns) {
    R3XMATRIX matrix = numbered();
    matrix.transpose();
    expectMatrix(matrix, {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15});
}

TEST(MatrixTest, DeterminantIsThatOfTheUpper3x3) {
    const R3XMATRIX matrix(2, 1, 0, 77, 3, 5, 1, 77, 4, 2, 6, 77, 77, 77, 77, 77);
    EXPECT_EQ(matrix.determinant(), 2 * (5 * 6 - 1 * 2) - 1 * (3 * 6 - 4 * 1) + 0);
    EXPECT_EQ(R3XMATRIX().determinant(), 1.0f);
}

TEST(MatrixTest, InverseUndoesAnAffineTransform) {
    R3XMATRIX turn, scaling, shift;
    turn.setRotation(35.0f, 0.6f, 0.0f, 0.8f);
    scaling.setScaling(R3XVECTOR3D(2.0f, 0.5f, 3.0f));
    shift.setTranslation(4, -5, 6);
    R3XMATRIX matrix = scaling * turn * shift;
    expectNear(matrix * matrix.inverse(), R3XMATRIX(), 1e-5f);
    expectNear(matrix.inverse() * matrix, R3XMATRIX(), 1e-5f);

    R3XMATRIX odd = matrix;
    odd.m[3] = odd.m[7] = odd.m[11] = odd.m[15] = 9.0f;
    expectMatrix(odd.inverse(), matrix.inverse().m);

    R3XMATRIX inverted = matrix;
    inverted.invert();
    expectMatrix(inverted, matrix.inverse().m);
}

TEST(MatrixTest, ASingularMatrixHasNoFiniteInverse) {
    const R3XMATRIX inverse = zero().inverse();
    EXPECT_FALSE(std::isfinite(inverse.m[0]));
    EXPECT_FALSE(std::isfinite(inverse.m[12]));
    EXPECT_EQ(inverse.m[15], 1.0f);
}

TEST(MatrixTest, RotationAboutAnAxis) {
    R3XMATRIX matrix = numbered();
    matrix.setRotation(90, 0, 0, 1);
    const R3XVECTOR4D turned = matrix.transform(R3XVECTOR3D(1, 0, 0));
    EXPECT_NEAR(turned.x, 0.0f, 1e-6f);
    EXPECT_NEAR(turned.y, 1.0f, 1e-6f);
    EXPECT_EQ(turned.z, 0.0f);
    EXPECT_EQ(turned.w, 1.0f);
    for (int i : {3, 7, 11, 12, 13, 14}) EXPECT_EQ(matrix.m[i], 0.0f);
    EXPECT_EQ(matrix.m[15], 1.0f);
}

TEST(MatrixTest, RotationFollowsTheFormulaWithTheAxisAsGiven) {
    std::mt19937 random(8);
    std::uniform_real_distribution<float> any(-3.0f, 3.0f), angles(-720.0f, 720.0f);
    for (int round = 0; round < 1000; ++round) {
        const float angle = round % 10 ? angles(random) : 0.0f, x = any(random), y = any(random),
                    z = any(random);
        const float t = angle * 0.0055555557f * 3.1415927f;
        const float c = float(std::cos(double(t))), s = float(std::sin(double(t))), u = 1.0f - c;
        R3XMATRIX matrix;
        matrix.setRotation(angle, x, y, z);
        expectMatrix(matrix, {u * x * x + c, u * y * x + s * z, u * z * x - s * y, 0, u * x * y - s * z,
                              u * y * y + c, s * x + u * z * y, 0, s * y + u * z * x, u * z * y - s * x,
                              u * z * z + c, 0, 0, 0, 0, 1});
    }
}

// The bits of a zero's sign must survive the shortcut that skips the library's sine.
TEST(MatrixTest, RotationByZeroKeepsTheSignOfTheZero) {
    for (float angle : {0.0f, -0.0f}) {
        const float s = float(std::sin(double(angle * 0.017453294f)));
        R3XMATRIX matrix;
        matrix.setRotationZ(angle);
        EXPECT_EQ(matrix.m[1], s);
        EXPECT_EQ(std::signbit(matrix.m[1]), std::signbit(s));
        EXPECT_EQ(matrix.m[0], 1.0f);
    }
}

TEST(MatrixTest, SingleAxisRotationsWriteTheTranslationAndKeepTheCorner) {
    const float t = 30.0f * 0.017453294f;
    const float c = float(std::cos(double(t))), s = float(std::sin(double(t)));
    R3XMATRIX x = numbered(), y = numbered(), z = numbered();
    x.setRotationX(30);
    y.setRotationY(30);
    z.setRotationZ(30);
    expectMatrix(x, {1, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 1, 0, 0, 15});
    expectMatrix(y, {c, 0, -s, 0, 0, 1, 0, 0, s, 0, c, 0, 1, 0, 0, 15});
    expectMatrix(z, {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 1, 0, 0, 15});
}

TEST(MatrixTest, SingleAxisRotationOfIdentityAndZero) {
    R3XMATRIX identity, empty = zero();
    identity.setRotationX(90);
    empty.setRotationX(90);
    EXPECT_EQ(identity.m[12], 1.0f);
    EXPECT_EQ(identity.m[15], 1.0f);
    EXPECT_EQ(empty.m[12], 1.0f);
    EXPECT_EQ(empty.m[15], 0.0f);
}

TEST(MatrixTest, FromQuaternionFollowsTheFormula) {
    R3XMATRIX matrix = numbered();
    const R3XMATRIX returned = matrix.fromQuaternion(R3XVECTOR4D(1, 2, 3, 4));
    expectMatrix(matrix, {-25, -20, 22, 0, 28, -19, 4, 0, -10, 20, -9, 0, 0, 0, 0, 1});
    expectMatrix(returned, matrix.m);
}

TEST(MatrixTest, QuaternionsOfThePositiveTraceComeBack) {
    R3XVECTOR4D q(0.1f, -0.2f, 0.3f, 0.9f);
    q.normalize();
    R3XMATRIX matrix;
    const R3XVECTOR4D back = matrix.fromQuaternion(q).toQuaterion();
    const R3XVECTOR4D velto = matrix.toQuaternionVelto();
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(back[i], q[i], 1e-6f);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(velto[i], -q[i], 1e-6f) << "the opposite handedness";
    EXPECT_NEAR(velto.w, q.w, 1e-6f);
}

// Diagonals that choose the branches of both conversions, different off-diagonal numbers for each element.
struct Branch {
    float m0, m5, m10;
};

R3XMATRIX branchMatrix(const Branch &branch) {
    return R3XMATRIX(branch.m0, 0.1f, 0.2f, 0, 0.3f, branch.m5, 0.4f, 0, 0.5f, 0.7f, branch.m10, 0, 0, 0, 0,
                     1);
}

void expectQuaternion(const R3XVECTOR4D &q, float x, float y, float z, float w) {
    EXPECT_FLOAT_EQ(q.x, x);
    EXPECT_FLOAT_EQ(q.y, y);
    EXPECT_FLOAT_EQ(q.z, z);
    EXPECT_FLOAT_EQ(q.w, w);
}

TEST(MatrixTest, ToQuaterionTakesItsFourBranches) {
    expectQuaternion(branchMatrix({1, 1, 1}).toQuaterion(), 0.3f * 0.25f, -0.3f * 0.25f, 0.2f * 0.25f, 1.0f);
    float s = 2 * std::sqrt(1.0f + 1 + 2 + 2);
    expectQuaternion(branchMatrix({1, -2, -2}).toQuaterion(), 0.25f * s, 0.4f / s, 0.7f / s, -0.3f / s);
    expectQuaternion(branchMatrix({-2, 1, -2}).toQuaterion(), 0.4f / s, 0.25f * s, 1.1f / s, -0.3f / s);
    expectQuaternion(branchMatrix({-2, -2, 1}).toQuaterion(), 0.7f / s, 1.1f / s, 0.25f * s, -0.2f / s);
    s = 2 * std::sqrt(4.5f);  // only the diagonal chooses, whatever lies beside it
    expectQuaternion(branchMatrix({1, 0.5f, -3}).toQuaterion(), 0.25f * s, 0.4f / s, 0.7f / s, -0.3f / s);
    expectQuaternion(branchMatrix({1, -3, 0.5f}).toQuaterion(), 0.25f * s, 0.4f / s, 0.7f / s, -0.3f / s);
    expectQuaternion(branchMatrix({-3, 1, 0.5f}).toQuaterion(), 0.4f / s, 0.25f * s, 1.1f / s, -0.3f / s);
}

TEST(MatrixTest, ToQuaternionVeltoTakesItsFourBranches) {
    expectQuaternion(branchMatrix({1, 1, 1}).toQuaternionVelto(), -0.3f * 0.25f, 0.3f * 0.25f, -0.2f * 0.25f,
                     1.0f);
    const float root = std::sqrt(1.0f + 4 + 1), s = 0.5f / root;
    expectQuaternion(branchMatrix({1, -2, -2}).toQuaternionVelto(), 0.5f * root, 0.4f * s, 0.7f * s,
                     -0.3f * s);
    expectQuaternion(branchMatrix({-2, 1, -2}).toQuaternionVelto(), 0.4f * s, 0.5f * root, 1.1f * s,
                     0.3f * s);
    expectQuaternion(branchMatrix({-2, -2, 1}).toQuaternionVelto(), 0.7f * s, 1.1f * s, 0.5f * root,
                     -0.2f * s);
}

TEST(MatrixTest, ToQuaternionVeltoDoesNotDivideByZero) {
    R3XMATRIX matrix = zero();
    matrix.m[0] = -1.0f;
    matrix.m[5] = matrix.m[10] = 0.0f;  // the largest element is 0, and 0 - (-1 + 0) + 1 is 2
    EXPECT_TRUE(std::isfinite(matrix.toQuaternionVelto().y));
    matrix.m[0] = matrix.m[5] = matrix.m[10] = -0.0f;
    expectQuaternion(matrix.toQuaternionVelto(), 0.5f, 0, 0, 0);
    matrix.m[0] = 1.0f;
    matrix.m[5] = 1.0f;
    matrix.m[10] = -3.0f;
    matrix.m[5] = 0.9f;
    EXPECT_TRUE(std::isfinite(matrix.toQuaternionVelto().x));
}

TEST(MatrixTest, EulersOfTheIdentityAreZero) { EXPECT_TRUE(R3XMATRIX().toEuler() == R3XVECTOR3D(0, 0, 0)); }

TEST(MatrixTest, EulersAwayFromThePoles) {
    R3XMATRIX matrix;
    matrix.m[0] = 0.5f;
    matrix.m[8] = -0.5f;
    matrix.m[5] = 0.5f;
    matrix.m[6] = 0.5f;
    matrix.m[4] = 0.5f;
    const R3XVECTOR3D angles = matrix.toEuler();
    EXPECT_NEAR(angles.x, 45.0f, 1e-3f);
    EXPECT_NEAR(angles.y, -45.0f, 1e-3f);
    EXPECT_NEAR(angles.z, 30.0f, 1e-3f);
    EXPECT_EQ(angles.z, float(std::asin(0.5) * 0.31830987732601135) * 180.0f);
}

TEST(MatrixTest, EulersAtThePolesPutTheRightAngleIntoY) {
    R3XMATRIX matrix;
    matrix.m[2] = matrix.m[10] = 1.0f;
    matrix.m[4] = 0.999f;
    EXPECT_NEAR(matrix.toEuler().x, 45.0f, 1e-3f);
    EXPECT_EQ(matrix.toEuler().y, 90.0f);
    EXPECT_EQ(matrix.toEuler().z, 0.0f);
    matrix.m[4] = -0.999f;
    EXPECT_EQ(matrix.toEuler().y, -90.0f);
    EXPECT_EQ(matrix.toEuler().z, 0.0f);
    for (float edge : {0.998f, -0.998f}) {
        matrix.m[4] = edge;
        EXPECT_NE(matrix.toEuler().z, 0.0f) << "0.998 is no pole yet";
    }
}

}  // namespace
