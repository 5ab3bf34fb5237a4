// SPDX-License-Identifier: Zlib
#include <keltra/kit/cameras.h>

#include <keltra/camera.h>

#include <gtest/gtest.h>

#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

void expectAt(const R3XVECTOR3D &place, float x, float y, float z) {
    EXPECT_LT(place.distance(R3XVECTOR3D(x, y, z)), 1e-3f) << place.x << ' ' << place.y << ' ' << place.z;
}

TEST(KitOrbitTest, ItCirclesItsCenter) {
    KTCAMERA camera;
    KTORBIT orbit;
    orbit.setCenter(R3XVECTOR3D(1, 2, 3));
    orbit.setElevationLimits(-85, 85);
    orbit.setAngles(0, 0);
    orbit.update(&camera);
    expectAt(camera.getPosition(), 1, 2, 13);
    EXPECT_EQ(camera.getTargetNode(), &camera);
    expectAt(camera.getTarget(), 1, 2, 3);
    orbit.setAngles(90, 0);
    orbit.update(&camera);
    expectAt(camera.getPosition(), 11, 2, 3);
    orbit.setAngles(0, 30);
    orbit.setDistance(2);
    orbit.update(&camera);
    expectAt(camera.getPosition(), 1, 3, 3 + 1.7320508f);
    orbit.update(nullptr);
}

TEST(KitOrbitTest, ItKeepsToItsLimits) {
    KTORBIT orbit;
    orbit.drag(R3XVECTOR2D(20, 1000));
    EXPECT_EQ(orbit.getAzimuth(), -10.0f);
    EXPECT_EQ(orbit.getElevation(), 85.0f);
    orbit.drag(R3XVECTOR2D(0, -1000));
    EXPECT_EQ(orbit.getElevation(), 2.0f);
    orbit.setElevationLimits(30, 20);
    EXPECT_EQ(orbit.getElevation(), 30.0f);
    orbit.setDistanceLimits(-1, 5);
    EXPECT_EQ(orbit.getDistance(), 5.0f);
    orbit.setDistance(0);
    EXPECT_EQ(orbit.getDistance(), 0.1f);
}

TEST(KitFollowTest, ItStaysBehindANodeAndCatchesUp) {
    KTCAMERA camera;
    KTNODE hero;
    KTFOLLOW follow;
    follow.update(&camera, 0.1f);
    follow.setNode(&hero);
    follow.setOffset(R3XVECTOR3D(0, 2, 4));
    follow.update(&camera, 0.1f);
    expectAt(camera.getPosition(), 0, 2, 4);
    expectAt(camera.getTarget(), 0, 1.2f, 0);
    hero.setPosition(10, 0, 0);
    hero.setRotation(0, 90, 0);
    float before = camera.getPosition().distance(R3XVECTOR3D(14, 2, 0));
    for (int i = 0; i < 20; ++i) {
        follow.update(&camera, 0.1f);
        const float left = camera.getPosition().distance(R3XVECTOR3D(14, 2, 0));
        EXPECT_LT(left, before) << "it never goes too far";
        before = left;
    }
    EXPECT_LT(before, 0.1f);
    follow.update(&camera, 1000.0f);
    EXPECT_LT(camera.getPosition().distance(R3XVECTOR3D(14, 2, 0)), 0.01f);
    hero.setPosition(0, 0, 0);
    follow.reset();
    follow.update(&camera, 0.0f);
    expectAt(camera.getPosition(), 4, 2, 0);
}

TEST(KitRailTest, ItPassesThroughItsPoints) {
    KTCAMERA camera;
    KTRAIL rail;
    rail.update(&camera, 1.0f);
    for (float x : {0.0f, 1.0f, 2.0f, 5.0f})
        ASSERT_TRUE(rail.addPoint(R3XVECTOR3D(x, x * x, 0), R3XVECTOR3D(0, 0, -x), 2));
    rail.update(&camera, 0.0f);
    expectAt(camera.getPosition(), 0, 0, 0);
    rail.update(&camera, 2.0f);
    expectAt(camera.getPosition(), 1, 1, 0);
    rail.update(&camera, 1.0f);
    EXPECT_GT(camera.getPosition().y, 1.0f);
    EXPECT_LT(camera.getPosition().y, 4.0f);
    rail.update(&camera, 1.0f);
    expectAt(camera.getPosition(), 2, 4, 0);
    EXPECT_FALSE(rail.hasEnded());
    rail.update(&camera, 50.0f);
    expectAt(camera.getPosition(), 5, 25, 0);
    expectAt(camera.getTarget(), 0, 0, -5);
    EXPECT_TRUE(rail.hasEnded());
    rail.start();
    rail.setLoop(true);
    rail.update(&camera, 6.0f);
    expectAt(camera.getPosition(), 5, 25, 0);
    EXPECT_FALSE(rail.hasEnded());
    rail.update(&camera, 2.0f);
    expectAt(camera.getPosition(), 0, 0, 0);
}

TEST(KitRailTest, ItTakes32Points) {
    KTRAIL rail;
    EXPECT_FALSE(rail.addPoint(R3XVECTOR3D(), R3XVECTOR3D(), 0));
    for (unsigned i = 0; i < KTRAIL::maxPoints; ++i)
        EXPECT_TRUE(rail.addPoint(R3XVECTOR3D(), R3XVECTOR3D(), 1));
    EXPECT_FALSE(rail.addPoint(R3XVECTOR3D(), R3XVECTOR3D(), 1));
    rail.clear();
    EXPECT_TRUE(rail.addPoint(R3XVECTOR3D(), R3XVECTOR3D(), 1));
}

TEST(KitCamerasTest, AFrameAllocatesNothing) {
    KTCAMERA camera;
    KTNODE hero;
    KTORBIT orbit;
    KTFOLLOW follow;
    KTRAIL rail;
    follow.setNode(&hero);
    rail.addPoint(R3XVECTOR3D(), R3XVECTOR3D(1, 0, 0), 1);
    Allocations::startCounting();
    for (int i = 0; i < 5; ++i) {
        orbit.update(&camera);
        follow.update(&camera, 0.1f);
        rail.update(&camera, 0.1f);
    }
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

}  // namespace
}  // namespace keltra::test
