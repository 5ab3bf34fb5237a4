// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/plane.h>

#include <type_traits>
#include <utility>

namespace {

// The plane y = 2 with the normal up.
R3XPLANE table() { return R3XPLANE(R3XVECTOR3D(0, 2, 0), R3XVECTOR3D(0, 2, 1), R3XVECTOR3D(1, 2, 0)); }

void expectPlane(const R3XPLANE &plane, float a, float b, float c, float d) {
    EXPECT_EQ(plane.a, a);
    EXPECT_EQ(plane.b, b);
    EXPECT_EQ(plane.c, c);
    EXPECT_EQ(plane.d, d);
}

TEST(PlaneTest, Constructors) {
    expectPlane(R3XPLANE(), 0, 0, 0, 0);
    expectPlane(R3XPLANE(1, 2, 3, 4), 1, 2, 3, 4);
    expectPlane(R3XPLANE(R3XVECTOR3D(5, 6, 7), 8), 5, 6, 7, 8);
    expectPlane(table(), 0, 1, 0, -2);
}

TEST(PlaneTest, ADegenerateTriangleGivesAZeroNormal) {
    const R3XVECTOR3D p(1, 2, 3);
    expectPlane(R3XPLANE(p, p, p), 0, 0, 0, 0);
    expectPlane(R3XPLANE(p, p * 2.0f, p * 3.0f), 0, 0, 0, 0);
}

TEST(PlaneTest, AssignmentReturnsACopy) {
    static_assert(std::is_same<decltype(std::declval<R3XPLANE &>() = R3XPLANE()), R3XPLANE>::value,
                  "by value");
    R3XPLANE plane;
    R3XPLANE returned = plane = table();
    expectPlane(plane, 0, 1, 0, -2);
    expectPlane(returned, 0, 1, 0, -2);
}

TEST(PlaneTest, DistanceIsSigned) {
    const R3XPLANE plane = table();
    EXPECT_EQ(plane.signedDistance(R3XVECTOR3D(9, 5, -9)), 3.0f);
    EXPECT_EQ(plane.distance(R3XVECTOR3D(9, 5, -9)), 3.0f);
    EXPECT_EQ(plane.distance(R3XVECTOR3D(0, -1, 0)), -3.0f) << "negative behind the plane";
    EXPECT_EQ(plane.distance(R3XVECTOR3D(4, 2, 4)), 0.0f);
}

TEST(PlaneTest, FrontFacing) {
    const R3XPLANE plane = table();
    EXPECT_TRUE(plane.isFrontFacingTo(R3XVECTOR3D(0, -1, 0)));
    EXPECT_TRUE(plane.isFrontFacingTo(R3XVECTOR3D(1, 0, 0))) << "edge-on counts";
    EXPECT_FALSE(plane.isFrontFacingTo(R3XVECTOR3D(1, 0.5, 0)));
}

}  // namespace
