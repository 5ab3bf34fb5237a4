// SPDX-License-Identifier: Zlib
// Pictures of the sample character: the walk's first frame, where the heel meets the ground; one with the leg
// passing; one of the other step.

#include <keltra/keltra.h>

#include <set>

#include "tests/support/golden_fixture.h"

namespace keltra::test {
namespace {

constexpr Tolerance kTolerance = {24, 0.25};

class WalkTest : public GoldenTest {
   protected:
    void SetUp() override {
        GoldenTest::SetUp();
        KELTRA::setKTEPath(KELTRA_EXAMPLE_DATA);
        KTANIM::setKTAPath(KELTRA_EXAMPLE_DATA);
        KTTEXTURE::setPath(KELTRA_EXAMPLE_DATA);
        KTOPENGL::setGlobalAmbientLight(0.30f, 0.30f, 0.34f, 1.0f);
        meadow = KELTRA::load("meadow.kte");
        figure = KELTRA::load("figure.kte");
        walk = new KTANIM;
        ASSERT_TRUE(meadow && figure && walk->load("figure_walk.kta"));
        walk->setTranslating(true);
        for (KTTEXTURE *texture = KTTEXTURE::getFirst(); texture; texture = texture->getNext())
            texture->setFilter(true, true, false);
        KTNODE *sky = meadow->findByNameInHierarchy("sky");
        ASSERT_TRUE(sky && sky->unlink());
        KELTRA::setSkybox(sky);
        camera.setTargetNode(&camera);
        camera.setTarget(0.0f, 1.5f, 0.0f);
        camera.setPosition(3.1f, 2.4f, 4.1f);
    }
    void TearDown() override {
        GoldenTest::TearDown();
        KELTRA::setKTEPath(nullptr);
        KTANIM::setKTAPath(nullptr);
        KTTEXTURE::setPath(nullptr);
    }

    Image picture(unsigned frame) {
        EXPECT_TRUE(walk->apply(frame, figure));
        return frame3D(&camera, [this] {
            meadow->pass();
            figure->pass();
        });
    }

    KTNODE *meadow = nullptr, *figure = nullptr;
    KTANIM *walk = nullptr;
    KTCAMERA camera;
};

TEST_F(WalkTest, Frame0) { EXPECT_TRUE(matchesGolden(picture(0), "walk_00", kTolerance)); }

TEST_F(WalkTest, Frame7) { EXPECT_TRUE(matchesGolden(picture(7), "walk_07", kTolerance)); }

TEST_F(WalkTest, Frame15) { EXPECT_TRUE(matchesGolden(picture(15), "walk_15", kTolerance)); }

TEST_F(WalkTest, TheFramesDiffer) {
    if (CallHash::withoutPictures()) GTEST_SKIP() << "there are no pictures";
    const Image first = picture(0), passing = picture(7), other = picture(15);
    EXPECT_GT(compare(first, passing).mean, 1.0);
    EXPECT_GT(compare(passing, other).mean, 1.0);
    EXPECT_EQ(picture(0).pixels, first.pixels) << "no frame leaves anything behind";
}

TEST_F(WalkTest, NoLightBurnsOut) {
    if (CallHash::withoutPictures()) GTEST_SKIP() << "there are no pictures";
    const Image image = picture(0);
    int burnt = 0;
    for (std::size_t i = 0; i < image.pixels.size(); i += 3)
        burnt += image.pixels[i] > 250 && image.pixels[i + 1] > 250 && image.pixels[i + 2] > 250;
    EXPECT_LT(burnt, 240 * 320 / 200);
}

// Twenty figures in rows that do not cover each other: sixteen are drawn, the last four are not.
TEST_F(WalkTest, SixteenOfTwentyAreDrawn) {
    if (CallHash::withoutPictures()) GTEST_SKIP() << "there are no pictures";
    std::vector<KTNODE *> crowd = {figure};
    while (crowd.size() < 20) {
        crowd.push_back(KELTRA::load("figure.kte"));
        ASSERT_NE(crowd.back(), nullptr);
    }
    for (std::size_t i = 0; i < crowd.size(); ++i) {
        crowd[i]->setPosition(1.5f * (static_cast<float>(i % 5) - 2.0f), 3.6f * static_cast<float>(i / 5),
                              0.0f);
        crowd[i]->findByNameInHierarchy("figureSkin")->setAuxId(static_cast<unsigned>(i + 1));
        walk->apply(static_cast<unsigned>(i) % walk->getNumberOfFrames(), crowd[i]);
    }
    KELTRA::setSkybox(nullptr);
    KTCAMERA front;
    front.setPosition(0.0f, 7.0f, 19.0f);
    // The whole picture in picking colours: a figure that is drawn has its number somewhere.
    KTOPENGL::setBackgroundColor(0.0f, 0.0f, 0.0f, 0.0f);
    KTOPENGL::setProfile(KT_PROFILE_PICKING);
    const Image image = frame3D(&front, [&crowd] {
        for (KTNODE *each : crowd) each->pass();
    });
    KTOPENGL::setProfile(KT_PROFILE_NORMAL);
    std::set<std::size_t> seen;
    for (std::size_t i = 0; i < image.pixels.size(); i += 3)
        seen.insert(KTSETTINGS::colorDepth == 16 ? image.pixels[i + 2] >> 3 : image.pixels[i]);
    for (std::size_t number = 1; number <= 20; ++number)
        EXPECT_EQ(seen.count(number), number <= 16) << number;
}

}  // namespace
}  // namespace keltra::test
