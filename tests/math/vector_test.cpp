// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/fault.h>
#include <keltra/vector.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>

namespace {

constexpr double kPi = 3.14159265358979323846;

void expectVector(const R3XVECTOR2D &v, float x, float y) {
    EXPECT_EQ(v.x, x);
    EXPECT_EQ(v.y, y);
}
void expectVector(const R3XVECTOR3D &v, float x, float y, float z) {
    EXPECT_EQ(v.x, x);
    EXPECT_EQ(v.y, y);
    EXPECT_EQ(v.z, z);
}
void expectVector(const R3XVECTOR4D &v, float x, float y, float z, float w) {
    EXPECT_EQ(v.x, x);
    EXPECT_EQ(v.y, y);
    EXPECT_EQ(v.z, z);
    EXPECT_EQ(v.w, w);
}

TEST(VectorTest, AreValuesThatTheGlCanReadAsFloats) {
    static_assert(sizeof(R3XVECTOR2D) == 8 && sizeof(R3XVECTOR3D) == 12 && sizeof(R3XVECTOR4D) == 16,
                  "packed");
    static_assert(std::is_trivially_copyable<R3XVECTOR2D>::value, "member-wise copies");
    static_assert(std::is_trivially_copyable<R3XVECTOR3D>::value, "member-wise copies");
    static_assert(std::is_trivially_copyable<R3XVECTOR4D>::value, "member-wise copies");
    static_assert(std::is_standard_layout<R3XVECTOR4D>::value, "components in order");
    const R3XVECTOR4D v(1, 2, 3, 4);
    EXPECT_EQ((&v.x)[3], 4.0f);
}

TEST(VectorTest, DefaultsAndReset) {
    expectVector(R3XVECTOR2D(), 0, 0);
    expectVector(R3XVECTOR3D(), 0, 0, 0);
    expectVector(R3XVECTOR4D(), 0, 0, 0, 1);
    R3XVECTOR2D two(1, 2);
    R3XVECTOR3D three(1, 2, 3);
    R3XVECTOR4D four(1, 2, 3, 4);
    two.reset();
    three.reset();
    four.reset();
    expectVector(two, 0, 0);
    expectVector(three, 0, 0, 0);
    expectVector(four, 0, 0, 0, 0);
}

TEST(VectorTest, ConstructorsTakeEveryKindOfNumber) {
    const float values[] = {1.5f, 2.5f, 3.5f, 4.5f};
    expectVector(R3XVECTOR2D(1.5f, 2.5f), 1.5f, 2.5f);
    expectVector(R3XVECTOR2D(0.1, 0.2), 0.1f, 0.2f);
    expectVector(R3XVECTOR2D(1, 2), 1, 2);
    expectVector(R3XVECTOR2D(1u, 2.5f), 1, 2.5f);
    expectVector(R3XVECTOR2D(values), 1.5f, 2.5f);
    expectVector(R3XVECTOR3D(0.1, 0.2, 0.3), 0.1f, 0.2f, 0.3f);
    expectVector(R3XVECTOR3D(1, 2, 3.0f), 1, 2, 3);
    expectVector(R3XVECTOR3D(0, 0, 0), 0, 0, 0);
    expectVector(R3XVECTOR3D(values), 1.5f, 2.5f, 3.5f);
    expectVector(R3XVECTOR4D(1, 2.0, 3.0f, true), 1, 2, 3, 1);
    expectVector(R3XVECTOR4D(0, 0, 0, 5), 0, 0, 0, 5);
    expectVector(R3XVECTOR4D(values), 1.5f, 2.5f, 3.5f, 4.5f);
}

TEST(VectorTest, SetTakesEveryKindOfNumberAndReturnsACopy) {
    const float values[] = {1.5f, 2.5f, 3.5f, 4.5f};
    R3XVECTOR2D two;
    expectVector(two.set(1, 2), 1, 2);
    expectVector(two.set(0.1, 0.2), 0.1f, 0.2f);
    expectVector(two.set(1, 0.5f), 1, 0.5f);
    expectVector(two.set(values), 1.5f, 2.5f);
    expectVector(two, 1.5f, 2.5f);
    R3XVECTOR3D three;
    expectVector(three.set(1, 2, 3), 1, 2, 3);
    expectVector(three.set(1, 2, 3.5f), 1, 2, 3.5f);
    expectVector(three.set(0.1f, 0.2f, 0.3f), 0.1f, 0.2f, 0.3f);
    expectVector(three.set(values), 1.5f, 2.5f, 3.5f);
    expectVector(three, 1.5f, 2.5f, 3.5f);
    R3XVECTOR4D four;
    expectVector(four.set(1, 2, 3, 4), 1, 2, 3, 4);
    expectVector(four.set(0.1, 0.2, 0.3, 1), 0.1f, 0.2f, 0.3f, 1);
    expectVector(four.set(values), 1.5f, 2.5f, 3.5f, 4.5f);
    expectVector(four, 1.5f, 2.5f, 3.5f, 4.5f);
    static_assert(std::is_same<decltype(four.set(values)), R3XVECTOR4D>::value, "a copy");
}

TEST(VectorTest, ANullPointerCountsAsAbsent) {
    const float *absent = nullptr;
    expectVector(R3XVECTOR2D(absent), 0, 0);
    expectVector(R3XVECTOR3D(absent), 0, 0, 0);
    expectVector(R3XVECTOR4D(absent), 0, 0, 0, 1);
    R3XVECTOR3D v(1, 2, 3);
    expectVector(v.set(absent), 1, 2, 3);
}

TEST(VectorTest, SmallerVectorsAreFilledUp) {
    const R3XVECTOR2D two(1, 2);
    const R3XVECTOR3D three(1, 2, 3);
    expectVector(R3XVECTOR3D(two), 1, 2, 0);
    expectVector(R3XVECTOR4D(two), 1, 2, 0, 1);
    expectVector(R3XVECTOR4D(three), 1, 2, 3, 1);
    R3XVECTOR3D v3(9, 9, 9);
    R3XVECTOR4D v4(9, 9, 9, 9);
    expectVector(v3 = two, 1, 2, 0);
    expectVector(v4 = three, 1, 2, 3, 1);
    expectVector(v4 = two, 1, 2, 0, 1);
    expectVector(v3, 1, 2, 0);
    expectVector(v4, 1, 2, 0, 1);
}

TEST(VectorTest, OnlySameTypeAssignmentReturnsAReference) {
    R3XVECTOR4D v;
    static_assert(std::is_same<decltype(v = v), R3XVECTOR4D &>::value, "reference");
    static_assert(std::is_same<decltype(v = R3XVECTOR3D()), R3XVECTOR4D>::value, "value");
    static_assert(std::is_same<decltype(v += v), R3XVECTOR4D>::value, "value");
    static_assert(std::is_same<decltype(v -= v), R3XVECTOR4D>::value, "value");
    static_assert(std::is_same<decltype(v *= v), R3XVECTOR4D>::value, "value");
    static_assert(std::is_same<decltype(v /= 1.0f), R3XVECTOR4D>::value, "value");
    (v += R3XVECTOR4D(1, 1, 1, 1)) += R3XVECTOR4D(5, 5, 5, 5);
    expectVector(v, 1, 1, 1, 2);
}

TEST(VectorTest, IndexesReachEveryComponent) {
    R3XVECTOR2D two(1, 2);
    R3XVECTOR3D three(1, 2, 3);
    R3XVECTOR4D four(1, 2, 3, 4);
    two[1] = 7;
    three[2] = 8;
    four[3] = 9;
    expectVector(two, 1, 7);
    expectVector(three, 1, 2, 8);
    expectVector(four, 1, 2, 3, 9);
    const R3XVECTOR2D fixedTwo = two;
    const R3XVECTOR3D fixedThree = three;
    const R3XVECTOR4D fixed = four;
    for (int i = 0; i < 2; ++i) EXPECT_EQ(&fixedTwo[i], &fixedTwo.x + i);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(&fixedThree[i], &fixedThree.x + i);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(&fixed[i], &fixed.x + i);
}

TEST(VectorDeathTest, AnIndexOutOfRangeEndsTheProcess) {
    R3XVECTOR2D two;
    R3XVECTOR3D three;
    const R3XVECTOR4D four;
    EXPECT_EXIT(two[2], testing::ExitedWithCode(1), "");
    EXPECT_EXIT(two[-1], testing::ExitedWithCode(1), "");
    EXPECT_EXIT(three[3], testing::ExitedWithCode(1), "");
    EXPECT_EXIT(four[4], testing::ExitedWithCode(1), "");
    EXPECT_EXIT(four[-1], testing::ExitedWithCode(1), "");
}

void printFault(const KTFAULT *fault, void *) {
    char text[256];
    KTFAULTS::format(fault, text, sizeof text);
    std::fputs(text, stderr);
}

TEST(VectorDeathTest, AnIndexOutOfRangeIsToldBeforeTheEnd) {
    R3XVECTOR2D two;
    R3XVECTOR3D three;
    const R3XVECTOR4D four;
    KTFAULTS::setHandler(printFault, nullptr);
    EXPECT_EXIT(two[2], testing::ExitedWithCode(1),
                "R3XVECTOR2D::operator\\[\\]: `index` is 2, expected 0 to 1");
    EXPECT_EXIT(three[-1], testing::ExitedWithCode(1),
                "R3XVECTOR3D::operator\\[\\]: `index` is -1, expected 0 to 2");
    EXPECT_EXIT(four[4], testing::ExitedWithCode(1),
                "R3XVECTOR4D::operator\\[\\]: `index` is 4, expected 0 to 3");
    KTFAULTS::setHandler(nullptr, nullptr);
}

TEST(VectorTest, ArithmeticWorksComponentByComponent) {
    const R3XVECTOR2D a(6, 8), b(2, 4);
    expectVector(-a, -6, -8);
    expectVector(+a, 6, 8);
    expectVector(a + b, 8, 12);
    expectVector(a - b, 4, 4);
    expectVector(a * b, 12, 32);
    expectVector(a / b, 3, 2);
    expectVector(a + 1.0f, 7, 9);
    expectVector(a - 1.0f, 5, 7);
    expectVector(a * 2, 12, 16);
    expectVector(a / 2, 3, 4);
    const R3XVECTOR3D c(6, 8, 10), d(2, 4, 5);
    expectVector(-c, -6, -8, -10);
    expectVector(+c, 6, 8, 10);
    expectVector(c + d, 8, 12, 15);
    expectVector(c - d, 4, 4, 5);
    expectVector(c * d, 12, 32, 50);
    expectVector(c / d, 3, 2, 2);
    expectVector(c + 1.0f, 7, 9, 11);
    expectVector(c - 1.0f, 5, 7, 9);
    expectVector(c * 0.5, 3, 4, 5);
    expectVector(c / 2, 3, 4, 5);
    const R3XVECTOR4D e(6, 8, 10, 12), f(2, 4, 5, 6);
    expectVector(-e, -6, -8, -10, -12);
    expectVector(+e, 6, 8, 10, 12);
    expectVector(e + f, 8, 12, 15, 18);
    expectVector(e - f, 4, 4, 5, 6);
    expectVector(e * f, 12, 32, 50, 72);
    expectVector(e / f, 3, 2, 2, 2);
    expectVector(e + 1.0f, 7, 9, 11, 13);
    expectVector(e - 1.0f, 5, 7, 9, 11);
    expectVector(e * 0.5f, 3, 4, 5, 6);
    expectVector(e / 2, 3, 4, 5, 6);
}

TEST(VectorTest, CompoundAssignmentsWorkInPlace) {
    R3XVECTOR2D two(6, 8);
    expectVector(two += R3XVECTOR2D(2, 2), 8, 10);
    expectVector(two -= R3XVECTOR2D(2, 2), 6, 8);
    expectVector(two *= R3XVECTOR2D(2, 3), 12, 24);
    expectVector(two /= R3XVECTOR2D(2, 3), 6, 8);
    expectVector(two *= 2, 12, 16);
    expectVector(two /= 4, 3, 4);
    R3XVECTOR3D three(6, 8, 10);
    expectVector(three += R3XVECTOR3D(1, 2, 3), 7, 10, 13);
    expectVector(three -= R3XVECTOR3D(1, 2, 3), 6, 8, 10);
    expectVector(three *= R3XVECTOR3D(2, 1, 2), 12, 8, 20);
    expectVector(three /= R3XVECTOR3D(2, 1, 2), 6, 8, 10);
    expectVector(three *= 2, 12, 16, 20);
    expectVector(three /= 4, 3, 4, 5);
    R3XVECTOR4D four(6, 8, 10, 12);
    expectVector(four += R3XVECTOR4D(1, 2, 3, 4), 7, 10, 13, 16);
    expectVector(four -= R3XVECTOR4D(1, 2, 3, 4), 6, 8, 10, 12);
    expectVector(four *= R3XVECTOR4D(2, 1, 2, 1), 12, 8, 20, 12);
    expectVector(four /= R3XVECTOR4D(2, 1, 2, 1), 6, 8, 10, 12);
    expectVector(four *= 2, 12, 16, 20, 24);
    expectVector(four /= 4, 3, 4, 5, 6);
    const R3XVECTOR4D &same = four;
    four -= same;
    expectVector(four, 0, 0, 0, 0);
}

TEST(VectorTest, DivisionByANumberMultipliesByItsReciprocal) {
    std::mt19937 random(4);
    std::uniform_real_distribution<float> any(-100.0f, 100.0f);
    for (int i = 0; i < 1000; ++i) {
        const R3XVECTOR3D v(any(random), any(random), any(random));
        const float divisor = any(random), reciprocal = 1.0f / divisor;
        expectVector(v / divisor, v.x * reciprocal, v.y * reciprocal, v.z * reciprocal);
    }
    EXPECT_TRUE(std::isinf((R3XVECTOR3D(1, 1, 1) / 0.0f).x));
}

TEST(VectorTest, DotProductsSumFromTheLastComponent) {
    const float big = 1e8f;
    EXPECT_EQ(R3XVECTOR2D(1, 2) % R3XVECTOR2D(3, 4), 11.0f);
    EXPECT_EQ(R3XVECTOR3D(1, 2, 3) % R3XVECTOR3D(4, 5, 6), 32.0f);
    EXPECT_EQ(R3XVECTOR4D(1, 2, 3, 4) % R3XVECTOR4D(5, 6, 7, 8), 70.0f);
    EXPECT_EQ(R3XVECTOR3D(1.0f, -big, big) % R3XVECTOR3D(1, 1, 1), 1.0f);
    EXPECT_EQ(R3XVECTOR3D(big, -big, 1.0f) % R3XVECTOR3D(1, 1, 1), 0.0f) << "1 is lost in 1 - 1e8";
    EXPECT_EQ(R3XVECTOR4D(1.0f, 0.0f, -big, big) % R3XVECTOR4D(1, 1, 1, 1), 1.0f);
}

TEST(VectorTest, CrossProduct) {
    expectVector(R3XVECTOR3D(1, 0, 0) ^ R3XVECTOR3D(0, 1, 0), 0, 0, 1);
    expectVector(R3XVECTOR3D(1, 2, 3) ^ R3XVECTOR3D(4, 5, 6), -3, 6, -3);
}

TEST(VectorTest, ComparisonsAreExact) {
    static_assert(std::is_same<decltype(R3XVECTOR3D() == R3XVECTOR3D()), int>::value, "an int");
    EXPECT_EQ(R3XVECTOR3D(1, 2, 3) == R3XVECTOR3D(1, 2, 3), 1);
    EXPECT_EQ(R3XVECTOR3D(1, 2, 3) == R3XVECTOR3D(1, 2, 3.0000003f), 0);
    EXPECT_EQ(R3XVECTOR3D(1, 2, 3) != R3XVECTOR3D(1, 2, 3.0000003f), 1);
    EXPECT_EQ(R3XVECTOR3D(1, 2, 3) != R3XVECTOR3D(1, 2, 3), 0);
    EXPECT_EQ(R3XVECTOR2D(1, 2) == R3XVECTOR2D(1, 3), 0);
    EXPECT_EQ(R3XVECTOR2D(1, 2) != R3XVECTOR2D(0, 2), 1);
    EXPECT_EQ(R3XVECTOR4D(1, 2, 3, 4) == R3XVECTOR4D(1, 2, 3, 5), 0);
    EXPECT_EQ(R3XVECTOR4D(1, 2, 3, 4) != R3XVECTOR4D(1, 2, 3, 4), 0);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(R3XVECTOR2D(nan, 0.0f) == R3XVECTOR2D(nan, 0.0f), 0);
    EXPECT_EQ(R3XVECTOR2D(nan, 0.0f) != R3XVECTOR2D(nan, 0.0f), 1);
}

TEST(VectorTest, Lengths) {
    EXPECT_EQ(R3XVECTOR2D(3, 4).length(), 5.0f);
    EXPECT_EQ(R3XVECTOR3D(2, 3, 6).length(), 7.0f);
    EXPECT_EQ(R3XVECTOR4D(2, 4, 5, 6).length(), 9.0f);
    EXPECT_EQ(R3XVECTOR2D(3, 4).squaredLength(), 25.0f);
    EXPECT_EQ(R3XVECTOR3D(2, 3, 6).squaredLength(), 49.0f);
    EXPECT_EQ(R3XVECTOR4D(2, 4, 5, 6).squaredLength(), 81.0f);
    EXPECT_EQ(R3XVECTOR2D(1, 1).distance(R3XVECTOR2D(4, 5)), 5.0f);
    EXPECT_EQ(R3XVECTOR3D(1, 1, 1).distance(R3XVECTOR3D(3, 4, 7)), 7.0f);
}

TEST(VectorTest, TheRootIsTheDoubleOneNarrowed) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> any(-1000.0f, 1000.0f);
    for (int i = 0; i < 100000; ++i) {
        const R3XVECTOR3D v(any(random), any(random), any(random));
        ASSERT_EQ(v.length(), float(std::sqrt(double(v.squaredLength()))));
    }
}

TEST(VectorTest, FourDimensionalDistanceTakesZTwice) {
    EXPECT_EQ(R3XVECTOR4D(0, 0, 0, 5).distance(R3XVECTOR3D(0, 0, 0)), 5.0f);
    EXPECT_EQ(R3XVECTOR4D(0, 0, 0, 0).distance(R3XVECTOR3D(0, 0, 1)), std::sqrt(2.0f));
}

TEST(VectorTest, SetLengthAndNormalize) {
    R3XVECTOR3D v(0, 3, 4);
    expectVector(v.setLength(10), 0, 6, 8);
    expectVector(v, 0, 6, 8);
    R3XVECTOR2D two(0, 4);
    expectVector(two.normalize(), 0, 1);
    R3XVECTOR3D three(4, 0, 0);
    expectVector(three.normalize(), 1, 0, 0);
    R3XVECTOR4D four(0, 0, 0, 4);
    expectVector(four.normalize(), 0, 0, 0, 1);
    expectVector(four.setLength(2), 0, 0, 0, 2);
    expectVector(two.setLength(2), 0, 2);
}

TEST(VectorTest, ZeroVectorsStayZeroWhenNormalized) {
    R3XVECTOR2D two;
    R3XVECTOR3D three;
    R3XVECTOR4D four(0, 0, 0, 0);
    expectVector(two.normalize(), 0, 0);
    expectVector(three.normalize(), 0, 0, 0);
    expectVector(four.normalize(), 0, 0, 0, 0);
    EXPECT_TRUE(std::isnan(three.setLength(1).x));
    EXPECT_TRUE(std::isnan(three.z));
}

TEST(VectorTest, LerpLeavesItsEndsAlone) {
    const R3XVECTOR2D two(0, 10);
    const R3XVECTOR3D three(0, 10, 20);
    const R3XVECTOR4D four(0, 10, 20, 30);
    expectVector(two.lerp(R3XVECTOR2D(4, 20), 0.5f), 2, 15);
    expectVector(three.lerp(R3XVECTOR3D(4, 20, 40), 0.25f), 1, 12.5f, 25);
    expectVector(four.lerp(R3XVECTOR4D(4, 20, 40, 40), 2), 8, 30, 60, 50);
    expectVector(three, 0, 10, 20);
}

TEST(VectorTest, AnglesAreInRadians) {
    EXPECT_DOUBLE_EQ(R3XVECTOR3D(1, 0, 0).angle(R3XVECTOR3D(0, 2, 0)), kPi / 2);
    EXPECT_DOUBLE_EQ(R3XVECTOR2D(1, 0).angle(R3XVECTOR2D(-3, 0)), kPi);
    EXPECT_DOUBLE_EQ(R3XVECTOR4D(0, 0, 0, 1).angle(R3XVECTOR4D(0, 0, 1, 1)), kPi / 4);
}

TEST(VectorTest, AnAngleThatIsNotANumberIsZero) {
    EXPECT_EQ(R3XVECTOR3D(1, 0, 0).angle(R3XVECTOR3D(0, 0, 0)), 0.0);
    EXPECT_EQ(R3XVECTOR2D(0, 0).angle(R3XVECTOR2D(0, 0)), 0.0);
    std::mt19937 random(6);
    std::uniform_real_distribution<float> any(-1.0f, 1.0f);
    for (int i = 0; i < 10000; ++i) {
        const R3XVECTOR3D v(any(random), any(random), any(random));
        const double angle = v.angle(v * 3.0f);  // the cosine rounds to either side of 1
        ASSERT_FALSE(std::isnan(angle));
        ASSERT_NEAR(angle, 0.0, 0.001);
    }
}

TEST(QuaternionTest, IdentityAndConjugate) {
    R3XVECTOR4D q(1, 2, 3, 4);
    expectVector(q.quaternionInverted(), -1, -2, -3, 4);
    expectVector(q, 1, 2, 3, 4);
    expectVector(q.quaternionInvert(), -1, -2, -3, 4);
    expectVector(q, -1, -2, -3, 4);
    expectVector(q.quaternionSetIdentity(), 0, 0, 0, 1);
    expectVector(q, 0, 0, 0, 1);
}

TEST(QuaternionTest, EulersFollowTheFormula) {
    const float a = 0.3f, b = -0.7f, c = 1.9f;
    const float sa = float(std::sin(a / 2.0)), ca = float(std::cos(a / 2.0)), sb = float(std::sin(b / 2.0)),
                cb = float(std::cos(b / 2.0)), sc = float(std::sin(c / 2.0)), cc = float(std::cos(c / 2.0));
    R3XVECTOR4D q;
    expectVector(q.quaternionSetEulers(a, b, c), sc * cb * sa + cc * sb * ca, cc * cb * sa - sc * sb * ca,
                 sc * cb * ca - cc * sb * sa, sc * sb * sa + cc * cb * ca);
    R3XVECTOR4D fromVector;
    EXPECT_TRUE(fromVector.quaternionSetEulers(R3XVECTOR3D(a, b, c)) == q);
    EXPECT_NEAR(q.length(), 1.0f, 1e-6f);
}

TEST(QuaternionTest, TheAnglesGoToTheAxesThatTheyName) {
    const float half = float(std::sin(0.5));
    R3XVECTOR4D q;
    EXPECT_FLOAT_EQ(q.quaternionSetEulers(1, 0, 0).y, half);
    EXPECT_FLOAT_EQ(q.quaternionSetEulers(0, 1, 0).x, half);
    EXPECT_FLOAT_EQ(q.quaternionSetEulers(0, 0, 1).z, half);
}

TEST(QuaternionTest, GetEulersReturnsTheVectorPart) {
    expectVector(R3XVECTOR4D(0.1f, 0.2f, 0.3f, 0.9f).quaternionGetEulers(), 0.1f, 0.2f, 0.3f);
}

TEST(QuaternionTest, AxisAndAngle) {
    expectVector(R3XVECTOR4D().quaternionGetAxisAngles(), 0, 1, 0, 0);
    const float half = float(std::sqrt(0.5));
    const R3XVECTOR4D quarter = R3XVECTOR4D(0.0f, 0.0f, half, half).quaternionGetAxisAngles();
    EXPECT_NEAR(quarter.w, kPi / 2, 1e-6);
    EXPECT_NEAR(quarter.z, 1.0f, 1e-6f);
    EXPECT_EQ(quarter.x, 0.0f);
    EXPECT_TRUE(std::isnan(R3XVECTOR4D(0, 0, 0, 2).quaternionGetAxisAngles().w)) << "no cosine is 2";
}

TEST(QuaternionTest, MultiplyIsTheHamiltonProduct) {
    const R3XVECTOR4D i(1, 0, 0, 0), j(0, 1, 0, 0), k(0, 0, 1, 0);
    EXPECT_TRUE(i.quaternionMultiply(j) == k);
    EXPECT_TRUE(j.quaternionMultiply(k) == i);
    EXPECT_TRUE(k.quaternionMultiply(i) == j);
    EXPECT_TRUE(j.quaternionMultiply(i) == -k);
    expectVector(R3XVECTOR4D(1, 2, 3, 4).quaternionMultiply(R3XVECTOR4D(5, 6, 7, 8)), 24, 48, 48, -6);
}

}  // namespace
