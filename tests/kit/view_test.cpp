// SPDX-License-Identifier: Zlib
#include <keltra/kit/shapes.h>
#include <keltra/kit/view.h>

#include <cmath>
#include <memory>

#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

// A small bright ball, which is looked for on the screen.
class KitViewTest : public EngineTest, public ::testing::WithParamInterface<bool> {
   protected:
    void prepare(KTSETTINGS &values) override {
        values.setLandscape(GetParam());
        KTOPENGL::setBackgroundColor(0.0f, 0.0f, 0.0f, 1.0f);
    }
    void SetUp() override {
        EngineTest::SetUp();
        KTFAULTS::clear();
        ball = KTSHAPES::makeSphere(0.1f, 16, 12);
        KTMATERIAL *glowing = KTSHAPES::makeMaterial("glowing", 0, 0, 0);
        glowing->setEmission(1, 1, 1, 1);
        ball->setMaterial(glowing);
        ball->setAuxId(77);
        camera.setTargetNode(&camera);
        camera.setPosition(3, 4, 6);
        camera.setTarget(0, 1, -1);
    }
    Image draw() {
        return frame3D(&camera, [this] {
            ball->pass();
            view.take();
        });
    }
    // The middle of what is bright, in pixels of the 2D pass.
    static R3XVECTOR2D brightPlace(const Image &picture) {
        float x = 0, y = 0, count = 0;
        for (int row = 0; row < picture.height; ++row)
            for (int column = 0; column < picture.width; ++column)
                if (picture.at(column, row)[0] > 128) x += float(column), y += float(row), ++count;
        EXPECT_GT(count, 3.0f);
        x = x / count + 0.5f, y = y / count + 0.5f;
        return GetParam() ? R3XVECTOR2D(float(picture.height) - y, x) : R3XVECTOR2D(x, y);
    }

    const R3XVECTOR3D places[4] = {{0, 1, -1}, {1, 0.5f, 2}, {-1, 3, -6}, {2, 2.2f, 1}};
    KTMESH *ball = nullptr;  // of the list of nodes
    KTCAMERA camera;
    KTVIEW view;
};

TEST_P(KitViewTest, APointOfTheWorldIsWhereItIsDrawn) {
    for (const R3XVECTOR3D &place : places) {
        ball->setPosition(place);
        const Image picture = draw();
        R3XVECTOR2D point;
        ASSERT_TRUE(view.toScreen(place, &point));
        EXPECT_LT(point.distance(brightPlace(picture)), 1.0f);
        EXPECT_TRUE(view.toScreen(place, nullptr));
    }
    R3XVECTOR2D kept(5, 6);
    EXPECT_FALSE(view.toScreen(R3XVECTOR3D(6, 7, 13), &kept)) << "behind the eye";
    EXPECT_EQ(kept, R3XVECTOR2D(5, 6));
}

TEST_P(KitViewTest, ARayLeadsBackToIt) {
    draw();
    for (const R3XVECTOR3D &place : places) {
        R3XVECTOR2D point;
        ASSERT_TRUE(view.toScreen(place, &point));
        const KTRAY ray = view.getRay(point);
        EXPECT_NEAR(ray.direction.length(), 1.0f, 1e-4f);
        EXPECT_LT(ray.origin.distance(camera.getPosition()), 1e-3f);
        float distance = 0;
        ASSERT_TRUE(KTVIEW::hitsSphere(ray, place, 0.05f, &distance));
        EXPECT_NEAR(distance, place.distance(ray.origin) - 0.05f, 0.01f);
    }
}

TEST_P(KitViewTest, PickingTakesPointsOfThePicture) {
    ball->setPosition(1, 0.5f, 2);
    draw();
    R3XVECTOR2D point;
    ASSERT_TRUE(view.toScreen(ball->getPosition(), &point));
    KELTRA::clear(true, true, false);
    KELTRA::begin3D(&camera);
    ball->pass();
    KELTRA::end3D();
    EXPECT_EQ(KTVIEW::pick(point), 77u);
    EXPECT_EQ(KTVIEW::pick(point + R3XVECTOR2D(40, 0)), 0u);
    KELTRA::begin2D();
    KELTRA::end2D();
    KELTRA::swap();
}

TEST_P(KitViewTest, OnlyWhatIsInViewIsSeen) {
    EXPECT_FALSE(view.sees(R3XVECTOR3D(0, 0, 0), 100.0f)) << "nothing before a frame";
    ball->setPosition(0, 1, -1);
    draw();
    EXPECT_TRUE(view.sees(R3XVECTOR3D(0, 1, -1), 0.0f));
    EXPECT_TRUE(view.sees(*ball));
    EXPECT_FALSE(view.sees(R3XVECTOR3D(6, 7, 13), 1.0f));
    EXPECT_TRUE(view.sees(R3XVECTOR3D(6, 7, 13), 12.0f)) << "it reaches into the picture";
    KTNODE world;
    std::unique_ptr<KTMESH> other(KTSHAPES::makeBox(1, 1, 1));
    other->setPosition(0, 0, 40);
    for (KTMESH *mesh : {ball, other.get()}) mesh->link(&world);
    KTMESH *found[2] = {};
    EXPECT_EQ(view.findSeen(&world, found, 2), 1u);
    EXPECT_EQ(found[0], ball);
    world.setPosition(500, 0, 0);
    EXPECT_EQ(view.findSeen(&world, found, 2), 0u);
    EXPECT_FALSE(view.sees(*ball));
    ball->unlink();
    ball->setDisplayStatus(false);
    EXPECT_EQ(view.findSeen(ball, nullptr, 0), 0u);
    EXPECT_EQ(view.findSeen(nullptr, nullptr, 0), 0u);
}

TEST_P(KitViewTest, WhatIsNearIsFound) {
    KTNODE world, hill, tree;
    hill.link(&world);
    tree.link(&hill);
    hill.setPosition(10, 0, 0);
    hill.setRotation(0, 90, 0);
    tree.setPosition(0, 0, 5);
    EXPECT_LT(KTVIEW::getWorldMatrix(tree).getTranslation().distance(R3XVECTOR3D(15, 0, 0)), 1e-3f);
    KTNODE *found[3] = {};
    EXPECT_EQ(KTVIEW::findNear(&world, R3XVECTOR3D(14, 0, 0), 2.0f, found, 3), 1u);
    EXPECT_EQ(found[0], &tree);
    EXPECT_EQ(KTVIEW::findNear(&world, R3XVECTOR3D(14, 0, 0), 5.0f, found, 1), 2u) << "there are more";
    EXPECT_EQ(found[0], &hill);
    EXPECT_EQ(KTVIEW::findNear(&world, R3XVECTOR3D(14, 0, 0), NAN, found, 3), 0u);
}

TEST_P(KitViewTest, RaysHitPlanesFromBothSides) {
    const KTRAY down = {{0, 5, 0}, {0, -1, 0}}, up = {{0, -2, 0}, {0, 1, 0}}, along = {{0, 5, 0}, {1, 0, 0}};
    const R3XPLANE ground(0, 1, 0, 0);
    float distance = 0;
    EXPECT_TRUE(KTVIEW::hitsPlane(down, ground, &distance));
    EXPECT_FLOAT_EQ(distance, 5.0f);
    EXPECT_TRUE(KTVIEW::hitsPlane(up, ground, nullptr));
    EXPECT_FALSE(KTVIEW::hitsPlane(along, ground, &distance));
    EXPECT_FALSE(KTVIEW::hitsPlane({{0, 5, 0}, {0, 1, 0}}, ground, &distance)) << "away from it";
    EXPECT_FALSE(KTVIEW::hitsSphere(down, R3XVECTOR3D(0, 9, 0), 1.0f, &distance)) << "behind it";
    EXPECT_FALSE(KTVIEW::hitsSphere(down, R3XVECTOR3D(3, 0, 0), 1.0f, &distance)) << "beside it";
    EXPECT_TRUE(KTVIEW::hitsSphere(down, R3XVECTOR3D(0, 5.5f, 0), 1.0f, &distance)) << "it starts inside";
    EXPECT_EQ(distance, 0.0f);
}

TEST_P(KitViewTest, AScreenshotIsATextureOfWhatWasDrawn) {
    TempFolder folder;
    const std::string path = folder.path("shot.tga");
    ball->setPosition(1, 0.5f, 2);
    KELTRA::clear(true, true, false);
    KELTRA::begin3D(&camera);
    ball->pass();
    KELTRA::end3D();
    EXPECT_TRUE(KTVIEW::saveScreenshot(path.c_str()));
    const Image picture = captureFrame(KTSETTINGS::windowX, KTSETTINGS::windowY);
    KELTRA::swap();
    KTTEXTURE shot;
    KTTEXTURE::setPath(nullptr);
    ASSERT_TRUE(shot.load(path.c_str()));
    ASSERT_EQ(shot.getSizeX(), static_cast<unsigned>(picture.width));
    ASSERT_EQ(shot.getSizeY(), static_cast<unsigned>(picture.height));
    int differing = 0;
    for (int y = 0; y < picture.height; ++y) {
        const unsigned char *row = shot.getBitmap() + 3 * picture.width * (picture.height - 1 - y);
        for (int x = 0; x < picture.width; ++x)
            for (int c = 0; c < 3; ++c) differing += row[3 * x + c] != picture.at(x, y)[c];
    }
    EXPECT_EQ(differing, 0);
    EXPECT_FALSE(KTVIEW::saveScreenshot(folder.path("none/shot.tga").c_str()));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_WRITE);
    EXPECT_FALSE(KTVIEW::saveScreenshot(nullptr));
    ASSERT_TRUE(KELTRA::free());
    EXPECT_FALSE(KTVIEW::saveScreenshot(path.c_str()));
}

TEST_P(KitViewTest, ASubtreeIsHiddenAndShown) {
    KTNODE world, lamp, other;
    for (KTNODE *node : {&lamp, &other}) node->link(&world);
    ball->setPosition(0, 1, -1);
    ball->link(&lamp);
    const auto seen = [&] { return KTVIEW::findNear(&world, R3XVECTOR3D(0, 1, -1), 0.1f, nullptr, 0); };
    KTHIDDEN hidden;
    EXPECT_EQ(seen(), 1u);
    ASSERT_TRUE(hidden.hide(&lamp));
    EXPECT_EQ(seen(), 0u);
    EXPECT_EQ(hidden.getNode(), &lamp);
    EXPECT_FALSE(hidden.hide(&other)) << "one at a time";
    EXPECT_TRUE(hidden.show());
    EXPECT_EQ(seen(), 1u);
    EXPECT_FALSE(hidden.show());
    EXPECT_FALSE(hidden.hide(&world)) << "it has no parent";
    EXPECT_FALSE(hidden.hide(nullptr));
}

TEST_P(KitViewTest, AFrameAllocatesNothing) {
    draw();
    KTNODE world;
    ball->link(&world);
    KTMESH *found[4];
    Allocations::startCounting();
    view.take();
    view.getRay(R3XVECTOR2D(20, 20));
    view.findSeen(&world, found, 4);
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

INSTANTIATE_TEST_SUITE_P(, KitViewTest, ::testing::Bool(),
                         [](const auto &info) { return info.param ? "Landscape" : "Portrait"; });

}  // namespace
}  // namespace keltra::test
