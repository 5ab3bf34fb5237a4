// SPDX-License-Identifier: Zlib
#include "tools/view/extent.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using keltra::view::Extent;
using keltra::view::extentOf;

TEST(Extent, IsThatOfASphereAroundTheMiddleOfTheBox) {
    const Extent extent = extentOf({{1.0f, 2.0f, 3.0f}, {3.0f, 6.0f, 3.0f}});
    EXPECT_FLOAT_EQ(extent.centre.x, 2.0f);
    EXPECT_FLOAT_EQ(extent.centre.y, 4.0f);
    EXPECT_FLOAT_EQ(extent.centre.z, 3.0f);
    EXPECT_FLOAT_EQ(extent.radius, std::sqrt(5.0f));
    EXPECT_FLOAT_EQ(extent.girth, 1.0f);
}

TEST(Extent, HoldsEveryPoint) {
    std::vector<R3XVECTOR3D> points;
    for (int i = 0; i < 200; ++i) {
        const float t = static_cast<float>(i);
        points.emplace_back(3.0f * std::sin(t), 0.1f * t, 2.0f * std::cos(1.7f * t));
    }
    const Extent extent = extentOf(points);
    for (const R3XVECTOR3D &point : points) {
        const R3XVECTOR3D way = point - extent.centre;
        EXPECT_LE(std::hypot(way.x, way.y, way.z), extent.radius * 1.0001f);
        EXPECT_LE(std::hypot(way.x, way.z), extent.girth * 1.0001f);
    }
}

TEST(Extent, OfNothingIsAUnitSphere) {
    const Extent extent = extentOf({});
    EXPECT_EQ(extent.radius, 1.0f);
    EXPECT_EQ(extent.girth, 1.0f);
    EXPECT_EQ(extent.centre.x, 0.0f);
}

TEST(Extent, OfOnePlaceIsAUnitSphereThere) {
    const Extent extent = extentOf({{5.0f, 6.0f, 7.0f}, {5.0f, 6.0f, 7.0f}});
    EXPECT_EQ(extent.radius, 1.0f);
    EXPECT_EQ(extent.centre.y, 6.0f);
}

TEST(Extent, PointsThatAreNoNumbersCountForNothing) {
    const float nan = std::numeric_limits<float>::quiet_NaN(),
                infinite = std::numeric_limits<float>::infinity();
    const Extent extent =
        extentOf({{nan, 0.0f, 0.0f}, {-1.0f, 0.0f, 0.0f}, {0.0f, infinite, 0.0f}, {1.0f, 0.0f, 0.0f}});
    EXPECT_FLOAT_EQ(extent.radius, 1.0f);
    EXPECT_FLOAT_EQ(extent.centre.x, 0.0f);
    EXPECT_EQ(extentOf({{nan, nan, nan}}).radius, 1.0f);
}

TEST(Extent, ARodKeepsSomeGirth) {
    EXPECT_GT(extentOf({{0.0f, -2.0f, 0.0f}, {0.0f, 2.0f, 0.0f}}).girth, 0.0f);
}

TEST(Extent, TheCoreIsWhereMostPointsAre) {
    std::vector<R3XVECTOR3D> points;
    for (int i = 0; i < 90; ++i) points.emplace_back(10.0f + 0.01f * static_cast<float>(i % 9), 2.0f, -3.0f);
    for (int i = 0; i < 10; ++i) points.emplace_back(500.0f, 300.0f, 100.0f * static_cast<float>(i));
    const Extent extent = extentOf(points);
    EXPECT_NEAR(extent.core.x, 10.0f, 0.1f);
    EXPECT_NEAR(extent.core.y, 2.0f, 1e-5f);
    EXPECT_LT(extent.coreRadius, 0.1f);
    EXPECT_GT(extent.radius, 400.0f);
}

TEST(Extent, ACoreOfOnePlaceHasTheWholeRadius) {
    std::vector<R3XVECTOR3D> points(20, R3XVECTOR3D(1.0f, 1.0f, 1.0f));
    points.emplace_back(5.0f, 1.0f, 1.0f);
    const Extent extent = extentOf(points);
    EXPECT_EQ(extent.coreRadius, extent.radius);
}
