// SPDX-License-Identifier: Zlib
#include "tools/view/orbit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using keltra::view::Extent;
using keltra::view::FreeRows;
using keltra::view::Orbit;

namespace {

constexpr int kWidth = 240, kHeight = 320;

struct Pixel {
    float x, y, depth;
};

// Where a point of the model's world is drawn.
Pixel pixelOf(const Orbit &orbit, const R3XVECTOR3D &point) {
    const R3XVECTOR4D eye = orbit.view().transform(point);
    const float half = std::tan(0.5f * Orbit::kAngleOfView * 3.14159265f / 180.0f);
    const float scale = 0.5f * kHeight / (half * -eye.z);
    return {0.5f * kWidth + eye.x * scale, 0.5f * kHeight - eye.y * scale, -eye.z};
}

Extent extentOf(float radius, float girth, R3XVECTOR3D centre = R3XVECTOR3D(0.0f, 0.0f, 0.0f)) {
    Extent extent;
    extent.centre = centre;
    extent.radius = radius;
    extent.girth = girth;
    return extent;
}

// Points on the edge of the extent: of its sphere, cut by its upright cylinder.
std::vector<R3XVECTOR3D> hull(const Extent &extent) {
    std::vector<R3XVECTOR3D> points;
    const float top = std::sqrt(std::max(0.0f, extent.radius * extent.radius - extent.girth * extent.girth));
    for (int i = 0; i < 36; ++i) {
        const float angle = 10.0f * static_cast<float>(i) * 3.14159265f / 180.0f;
        const R3XVECTOR3D rim(extent.girth * std::cos(angle), 0.0f, extent.girth * std::sin(angle));
        for (float y : {-top, 0.0f, top}) points.push_back(extent.centre + rim + R3XVECTOR3D(0.0f, y, 0.0f));
    }
    return points;
}

}  // namespace

TEST(Orbit, FitsWhateverTheAnglesAre) {
    const Extent extents[] = {extentOf(1.0f, 1.0f), extentOf(2.0f, 0.4f, {3.0f, -5.0f, 7.0f}),
                              extentOf(80.0f, 80.0f)};
    for (const Extent &extent : extents) {
        for (float yaw : {0.0f, 45.0f, 130.0f, -90.0f}) {
            for (float pitch : {-80.0f, -12.0f, 0.0f, 30.0f, 88.0f}) {
                Orbit orbit(kWidth, kHeight);
                orbit.frame(extent);
                orbit.setFreeRows({44, 216});
                orbit.reset();
                orbit.look(yaw, pitch);
                for (const R3XVECTOR3D &point : hull(extent)) {
                    const Pixel pixel = pixelOf(orbit, point);
                    ASSERT_GT(pixel.x, -1.0f);
                    ASSERT_LT(pixel.x, kWidth + 1.0f);
                    // The lift off the middle of the screen distorts a little.
                    ASSERT_GT(pixel.y, 44.0f - 8.0f) << yaw << " " << pitch;
                    ASSERT_LT(pixel.y, 216.0f + 8.0f) << yaw << " " << pitch;
                    ASSERT_GT(pixel.depth, orbit.nearPlane());
                    ASSERT_LT(pixel.depth, orbit.farPlane());
                }
            }
        }
    }
}

TEST(Orbit, FillsTheFreeRows) {
    Orbit orbit(kWidth, kHeight);
    orbit.frame(extentOf(1.0f, 0.2f));
    orbit.setFreeRows({0, kHeight});
    orbit.reset();
    orbit.look(0.0f, 0.0f);
    const float height = pixelOf(orbit, {0.0f, -1.0f, 0.0f}).y - pixelOf(orbit, {0.0f, 1.0f, 0.0f}).y;
    EXPECT_GT(height, 0.8f * kHeight);
    EXPECT_LT(height, kHeight);
}

TEST(Orbit, CentresTheModelBetweenTheFreeRowsAtEveryZoom) {
    Orbit orbit(kWidth, kHeight);
    orbit.frame(extentOf(3.0f, 3.0f, {10.0f, 20.0f, -30.0f}));
    orbit.setFreeRows({40, 200});
    orbit.reset();
    for (float factor : {1.0f, 3.0f, 0.2f}) {
        orbit.zoom(factor);
        const Pixel pixel = pixelOf(orbit, {10.0f, 20.0f, -30.0f});
        EXPECT_NEAR(pixel.x, 120.0f, 0.1f);
        EXPECT_NEAR(pixel.y, 120.0f, 0.1f);
    }
}

TEST(Orbit, FoldingThePanelKeepsTheZoom) {
    Orbit orbit(kWidth, kHeight);
    orbit.frame(extentOf(1.0f, 1.0f));
    orbit.setFreeRows({40, 200});
    orbit.reset();
    const float distance = orbit.distance();
    orbit.setFreeRows({40, 300});
    EXPECT_EQ(orbit.distance(), distance);
    EXPECT_NEAR(pixelOf(orbit, {0.0f, 0.0f, 0.0f}).y, 170.0f, 0.1f);
}

TEST(Orbit, TheNearSideFollowsTheDrag) {
    Orbit orbit(kWidth, kHeight);
    orbit.frame(extentOf(1.0f, 1.0f));
    orbit.reset();
    orbit.look(0.0f, 0.0f);
    const R3XVECTOR3D nose(0.0f, 0.0f, 1.0f);
    const Pixel before = pixelOf(orbit, nose);
    orbit.turn(20.0f, 0.0f);
    EXPECT_GT(pixelOf(orbit, nose).x, before.x + 10.0f);
    orbit.look(0.0f, 0.0f);
    orbit.turn(0.0f, 20.0f);
    EXPECT_GT(pixelOf(orbit, nose).y, before.y + 10.0f);
}

TEST(Orbit, StopsAtThePolesAndGoesAround) {
    Orbit orbit(kWidth, kHeight);
    orbit.turn(0.0f, 1000.0f);
    EXPECT_LT(orbit.pitch(), 90.0f);
    orbit.turn(0.0f, -1000.0f);
    EXPECT_GT(orbit.pitch(), -90.0f);
    orbit.look(350.0f, 0.0f);
    EXPECT_NEAR(orbit.yaw(), -10.0f, 1e-3f);
}

TEST(Orbit, ZoomStaysInItsRange) {
    Orbit orbit(kWidth, kHeight);
    orbit.zoom(1e9f);
    EXPECT_FLOAT_EQ(orbit.zoomShare(), 0.0f);
    EXPECT_GT(orbit.distance(), 0.0f);
    orbit.zoom(1e-9f);
    EXPECT_FLOAT_EQ(orbit.zoomShare(), 1.0f);
    for (float share : {0.0f, 0.3f, 0.7f, 1.0f}) {
        orbit.setZoomShare(share);
        EXPECT_NEAR(orbit.zoomShare(), share, 1e-4f);
    }
}

TEST(Orbit, BringsEverySizeIntoTheRangeOfFixedPoint) {
    for (float radius : {1e-4f, 0.01f, 1.0f, 500.0f, 20000.0f, 56000.0f}) {
        Orbit orbit(kWidth, kHeight);
        orbit.frame(extentOf(radius, radius, {radius, -radius, radius}));
        orbit.setFreeRows({44, 216});
        orbit.reset();
        orbit.zoom(1e-9f);
        EXPECT_LT(orbit.farPlane(), 30000.0f) << radius;
        for (float element : orbit.view().m) EXPECT_LT(std::fabs(element), 32768.0f) << radius;
        orbit.zoom(1e9f);
        EXPECT_GT(orbit.nearPlane(), 1.0f / 4096.0f) << radius;
    }
}

TEST(Orbit, ModelsOfUsualSizeAreNotScaled) {
    Orbit orbit(kWidth, kHeight);
    for (float radius : {0.3f, 1.0f, 2000.0f}) {
        orbit.frame(extentOf(radius, radius));
        EXPECT_EQ(orbit.scale(), 1.0f);
    }
}

TEST(Orbit, AnotherModelKeepsAnglesAndZoom) {
    Orbit orbit(kWidth, kHeight);
    orbit.frame(extentOf(1.0f, 1.0f));
    orbit.reset();
    orbit.look(77.0f, 5.0f);
    orbit.setZoomShare(0.4f);
    orbit.frame(extentOf(10.0f, 10.0f));
    EXPECT_NEAR(orbit.yaw(), 77.0f, 1e-4f);
    EXPECT_NEAR(orbit.zoomShare(), 0.4f, 1e-5f);
}

TEST(Orbit, AModelUnderASkyIsSeenFromWithin) {
    for (float model : {20.0f, 200.0f, 390.0f, 1000.0f}) {
        Orbit orbit(kWidth, kHeight);
        orbit.frame(extentOf(model, model), 400.0f);
        orbit.reset();
        orbit.zoom(1e-9f);
        EXPECT_LT(orbit.distance(), 400.0f) << model;
        if (model < 350.0f) {
            EXPECT_LE(orbit.distance() + model, 400.0f) << model << " is hidden behind the sky";
        }
        EXPECT_LT(orbit.nearPlane(), 100.0f);
        EXPECT_GT(orbit.farPlane(), 400.0f);
        EXPECT_NEAR(orbit.zoomShare(), 1.0f, 1e-4f);
    }
}

TEST(Orbit, TheFarPlaneStaysInFixedPoint) {
    Orbit orbit(kWidth, kHeight);
    orbit.frame(extentOf(300.0f, 300.0f), 60000.0f);
    orbit.reset();
    EXPECT_LT(orbit.farPlane(), 32768.0f);
}
