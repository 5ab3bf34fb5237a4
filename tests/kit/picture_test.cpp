// SPDX-License-Identifier: Zlib
// What the kit draws.
#include <keltra/kit/kit.h>

#include <vector>

#include "tests/support/golden_fixture.h"

namespace keltra::test {
namespace {

constexpr Tolerance kTolerance = {24, 0.25};

class KitPictureTest : public GoldenTest {
   protected:
    void SetUp() override {
        GoldenTest::SetUp();
        camera.setTargetNode(&camera);
        lamp.setDiffuse(R3XVECTOR4D(1.0f, 0.95f, 0.85f, 1.0f));
        lamp.setPosition(3.0f, 6.0f, 4.0f);
        lamp.link(&world);
        KTOPENGL::setGlobalAmbientLight(0.35f, 0.35f, 0.45f, 1.0f);
        KTOPENGL::setBackgroundColor(0.62f, 0.74f, 0.86f, 1.0f);
    }
    KTMESH *add(KTMESH *mesh, KTMATERIAL *material, float x, float y, float z, KTNODE *parent = nullptr) {
        mesh->setMaterial(material);
        mesh->setPosition(x, y, z);
        mesh->link(parent ? parent : &world);
        return mesh;
    }
    // Four cells: a disc, a ring, a cross, stripes.
    static KTTEXTURE *atlas() {
        std::vector<char> pixels;
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 64; ++x) {
                const int dx = x % 32 - 16, dy = y % 32 - 16, squared = dx * dx + dy * dy;
                const bool isSet[4] = {dx * dx < 16 || dy * dy < 16, (x / 4) % 2 == 0, squared < 144,
                                       squared < 196 && squared > 64};
                const char on = isSet[y / 32 * 2 + x / 32] ? '\xf0' : '\x30';
                pixels.insert(pixels.end(), {on, on, '\x50'});
            }
        }
        KTTEXTURE *texture = new KTTEXTURE;
        texture->incReferences();
        texture->setFilter(true, false, false);
        EXPECT_TRUE(texture->create(64, 64, 3) && texture->modify(pixels.data(), false));
        return texture;
    }
    Image draw() {
        return frame3D(&camera, [this] { world.pass(); });
    }

    KTNODE world;
    KTLIGHT lamp;
    KTCAMERA camera;
};

TEST_F(KitPictureTest, Shapes) {
    KTTEXTURE *const cells = atlas();
    KTMATERIAL *const ground = KTSHAPES::makeMaterial("ground", 0.35f, 0.5f, 0.3f),
                      *const clay = KTSHAPES::makeMaterial("clay", 0.75f, 0.4f, 0.25f),
                      *const brass = KTSHAPES::makeMaterial("brass", 0.8f, 0.65f, 0.25f),
                      *const slate = KTSHAPES::makeMaterial("slate", 0.4f, 0.45f, 0.6f),
                      *const card = KTSHAPES::makeMaterial("card", 1.0f, 1.0f, 1.0f, cells);
    add(KTSHAPES::makePlane(12, 12, 12, 12), ground, 0, 0, 0);
    add(KTSHAPES::makeBox(1.2f, 1.2f, 1.2f), clay, -1.3f, 0.6f, 0.6f)->setRotation(0, 30, 0);
    add(KTSHAPES::makeSphere(0.7f, 20, 14), brass, 0.5f, 0.7f, 1.2f);
    add(KTSHAPES::makeCylinder(0.5f, 0.5f, 2.4f, 20), slate, 1.5f, 1.2f, -0.8f);
    add(KTSHAPES::makeCylinder(0.8f, 0, 1.4f, 20), clay, 1.5f, 3.1f, -0.8f);
    for (unsigned i = 0; i < 4; ++i) {
        KTMESH *quad = add(KTSHAPES::makeQuad(0.8f, 0.8f), card, -1.5f + static_cast<float>(i), 3.2f, -2);
        EXPECT_TRUE(KTSHAPES::setCell(quad, 2, 2, i));
    }
    camera.setPosition(-1.5f, 3.4f, 8.5f);
    camera.setTarget(0.1f, 1.5f, 0.0f);
    EXPECT_TRUE(matchesGolden(draw(), "kit_shapes", kTolerance));
}

TEST_F(KitPictureTest, MergedMeshesLookTheSameInOneCall) {
    KTMATERIAL *const clay = KTSHAPES::makeMaterial("clay", 0.75f, 0.4f, 0.25f);
    for (int i = 0; i < 12; ++i) {
        const float at = static_cast<float>(i);
        KTMESH *box = add(KTSHAPES::makeBox(0.6f, 0.3f + 0.1f * at, 0.6f), clay, 0.9f * (at - 5.5f), 0, 0);
        box->setRotation(10.0f * at, 15.0f * at, 5.0f * at);
    }
    camera.setPosition(0, 4, 14);
    draw();
    GlRecorder::clear();
    const Image before = draw();
    EXPECT_EQ(GlRecorder::count("glDrawElements"), 12);
    ASSERT_TRUE(KTSHAPES::merge(&world, clay)->link(&world));
    GlRecorder::clear();
    const Image after = draw();
    EXPECT_EQ(GlRecorder::count("glDrawElements"), 1);
    const Difference difference = compare(before, after);
    EXPECT_LT(difference.mean, 0.25);
}

// Half of the way from the walk to the wave, with a ball in the hand.
class KitCharacterTest : public KitPictureTest {
   protected:
    void prepare(KTSETTINGS &values) override {
        values.setKTEPath(KELTRA_EXAMPLE_DATA);
        values.setKTAPath(KELTRA_EXAMPLE_DATA);
        values.setTexturePath(KELTRA_EXAMPLE_DATA);
    }
};

TEST_F(KitCharacterTest, AFigureBetweenTwoClips) {
    KTNODE *const figure = KELTRA::load("figure.kte");
    KTCLIP walk, wave;
    ASSERT_TRUE(figure && walk.load("figure_walk.kta") && wave.load("figure_wave.kta"));
    figure->link(&world);
    KTPLAYER player;
    ASSERT_TRUE(player.bind(figure));
    player.setTranslating(true);
    player.play(&walk);
    player.update(0.3f);
    player.play(&wave, true, 1.0f);
    player.update(0.5f);
    KTMESH *const ball = KTSHAPES::makeSphere(0.2f);
    ball->setPosition(0.0f, -0.3f, 0.0f);
    ball->setMaterial(KTSHAPES::makeMaterial("ball", 0.2f, 0.7f, 0.9f));
    ASSERT_TRUE(player.attach(ball, "rightHand"));
    camera.setPosition(1.6f, 2.2f, 4.6f);
    camera.setTarget(0, 1.3f, 0);
    EXPECT_TRUE(matchesGolden(draw(), "kit_character", kTolerance));
    const KTNODE *const arm = figure->findByNameInHierarchy("rightForearm");
    ASSERT_TRUE(arm);
    const R3XVECTOR3D between = arm->getRotation();
    player.update(0.6f);
    EXPECT_GT(between.distance(arm->getRotation()), 0.5f) << "it goes on";
}

}  // namespace
}  // namespace keltra::test
