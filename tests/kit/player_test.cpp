// SPDX-License-Identifier: Zlib
#include <cmath>
#include <cstring>
#include <vector>

#include "tests/kit/clip_fixture.h"

namespace keltra::test {
namespace {

class KitPlayerTest : public KitClipFixture {
   protected:
    void SetUp() override {
        KitClipFixture::SetUp();
        ASSERT_TRUE(player.bind(&body, 8));
    }
    float angle() const { return bone0.rotation.x; }

    const std::unique_ptr<KTCLIP> slow = newClip(0.0f, 1.0f), fast = newClip(100.0f, 5.0f);
    KTPLAYER player;
};

// --- plain playing

void appendTree(const KTNODE &node, std::vector<float> *values) {
    for (const R3XVECTOR3D &v : {node.rotation, node.position})
        values->insert(values->end(), {v.x, v.y, v.z});
    for (unsigned i = 0; i < node.getNumberOfChildren(); ++i) appendTree(*node.getChild(i), values);
}

TEST_F(KitPlayerTest, PlainPlayingEqualsTheEnginesBitForBit) {
    KELTRA::setKTEPath(KELTRA_EXAMPLE_DATA);
    KTANIM::setKTAPath(KELTRA_EXAMPLE_DATA);
    KTNODE *one = KELTRA::load("figure.kte"), *other = KELTRA::load("figure.kte");
    ASSERT_TRUE(one && other);
    for (const char *file : {"figure_walk.kta", "figure_wave.kta"}) {
        for (bool translating : {false, true}) {
            KTCLIP clip;
            KTANIM *animation = new KTANIM;
            ASSERT_TRUE(clip.load(file) && animation->load(file));
            KTPLAYER applied;
            ASSERT_TRUE(applied.bind(one) && applied.play(&clip));
            animation->setTranslating(translating);
            applied.setTranslating(translating);
            for (unsigned frame = 0; frame < 3 * clip.getNumberOfFrames(); ++frame) {
                applied.update(frame == 0 ? 0.0f : 0.7f / 24.0f);
                ASSERT_TRUE(animation->apply(applied.getFrame(), other));
                std::vector<float> played, expected;
                appendTree(*one, &played);
                appendTree(*other, &expected);
                ASSERT_EQ(played.size(), expected.size());
                ASSERT_EQ(std::memcmp(played.data(), expected.data(), played.size() * sizeof(float)), 0)
                    << file << ", frame " << applied.getFrame();
            }
        }
    }
    KELTRA::setKTEPath(nullptr);
}

TEST_F(KitPlayerTest, OfSeveralBonesOfOneNameTheLastCounts) {
    KTANIM *animation = newAnimation(3, 1);
    animation->setBoneName(2, "bone0");
    animation->keyframes[0][0].rotation.x = 1.0f;
    animation->keyframes[0][2].rotation.x = 3.0f;
    KTCLIP clip;
    ASSERT_TRUE(clip.take(animation) && player.play(&clip));
    player.update(0.0f);
    EXPECT_EQ(angle(), 3.0f);
    animation->apply(0, &body);
    EXPECT_EQ(angle(), 3.0f);
}

TEST_F(KitPlayerTest, ALoopBeginsAnewAndAClipPlayedOnceIsHeld) {
    player.play(slow.get());
    player.update(0.95f);
    EXPECT_EQ(angle(), 9.0f);
    player.update(0.1f);
    EXPECT_EQ(angle(), 0.0f);
    player.play(slow.get(), false);
    player.update(0.95f);
    EXPECT_FALSE(player.hasEnded());
    player.update(30.0f);
    EXPECT_EQ(angle(), 9.0f);
    EXPECT_TRUE(player.hasEnded());
    player.play(fast.get());
    EXPECT_FALSE(player.hasEnded());
}

TEST_F(KitPlayerTest, RateRangeAndTime) {
    ASSERT_TRUE(player.playRange(slow.get(), 3, 5));
    player.setRate(2.0f);
    player.update(0.1f);
    EXPECT_EQ(player.getFrame(), 5u);
    player.update(0.06f);
    EXPECT_EQ(player.getFrame(), 3u);
    player.setTime(0.15f);
    EXPECT_EQ(player.getFrame(), 4u);
    player.setTime(-0.05f);
    EXPECT_EQ(player.getFrame(), 5u);
    player.setRate(-1.0f);
    player.update(9.0f);
    EXPECT_EQ(player.getFrame(), 5u);
}

TEST_F(KitPlayerTest, BetweenTwoFramesWhenSmooth) {
    player.setSmooth(true);
    player.setTranslating(true);
    player.play(slow.get());
    player.update(0.25f);
    EXPECT_NEAR(angle(), 2.5f, 1e-4f);
    EXPECT_NEAR(bone0.position.z, 5.0f, 1e-4f);
    player.play(slow.get(), false);
    player.update(7.0f);
    EXPECT_EQ(angle(), 9.0f);
}

TEST_F(KitPlayerTest, WhatCannotPlayIsRefused) {
    KTFAULTS::clear();
    KTCLIP empty;
    const std::unique_ptr<KTCLIP> wide(new KTCLIP);
    ASSERT_TRUE(wide->take(newAnimation(9, 1)));
    EXPECT_FALSE(player.play(nullptr));
    EXPECT_FALSE(player.play(&empty));
    EXPECT_FALSE(player.play(wide.get())) << "there is room for eight";
    EXPECT_FALSE(player.playRange(slow.get(), 0, 10));
    EXPECT_FALSE(player.playRange(slow.get(), 5, 4));
    EXPECT_FALSE(player.playLayer(2, slow.get(), KT_LAYER_ADD, nullptr, true, 0.0f));
    EXPECT_FALSE(player.playLayer(0, slow.get(), KT_LAYER_ADD, "no bone", true, 0.0f));
    EXPECT_FALSE(player.attach(nullptr, "bone0"));
    EXPECT_FALSE(player.attach(&body, "no bone"));
    EXPECT_FALSE(player.bind(nullptr));
    EXPECT_FALSE(player.play(slow.get())) << "it is not bound";
    EXPECT_FALSE(player.bind(&body, 129));
    EXPECT_FALSE(player.bind(&body, 0));
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 13u);
    player.update(1.0f);
    EXPECT_EQ(player.getClip(), nullptr);
}

// --- cross-fades

TEST_F(KitPlayerTest, AFadeLeadsFromOneClipToTheOther) {
    player.play(slow.get());
    player.update(0.55f);
    EXPECT_EQ(angle(), 5.0f);
    player.play(fast.get(), true, 1.0f);
    player.update(0.0f);
    EXPECT_EQ(angle(), 5.0f) << "it begins where it was";
    float before = angle();
    for (int i = 0; i < 9; ++i) {
        player.update(0.1f);
        EXPECT_GT(angle(), before);
        before = angle();
        EXPECT_TRUE(player.isFading());
    }
    player.update(0.11f);
    EXPECT_FALSE(player.isFading());
    EXPECT_EQ(angle(), 100.0f) << "the clip alone";
}

TEST_F(KitPlayerTest, AFadeThatIsInterruptedDoesNotJump) {
    player.play(slow.get());
    player.update(0.5f);
    player.play(fast.get(), true, 0.5f);
    player.update(0.2f);
    const float before = angle();
    player.play(slow.get(), true, 0.5f);
    player.update(0.0f);
    EXPECT_EQ(angle(), before);
    player.update(0.02f);
    EXPECT_NEAR(angle(), before, 1.0f);
    player.update(0.5f);
    EXPECT_EQ(angle(), 5.0f);
}

TEST_F(KitPlayerTest, AFadeTakesTheShorterWay) {
    const std::unique_ptr<KTCLIP> right = newClip(350.0f, 0.0f), left = newClip(10.0f, 0.0f);
    player.play(right.get());
    player.update(0.0f);
    player.play(left.get(), true, 1.0f);
    for (int i = 0; i < 10; ++i) {
        player.update(0.1f);
        EXPECT_LT(std::fabs(std::remainder(angle(), 360.0f)), 10.1f);
    }
}

TEST_F(KitPlayerTest, AFadeKnowsThatAnglesHaveTwoNames) {
    const auto clipOf = [](float x, float y, float z) {
        KTANIM *animation = newAnimation(1, 1);
        animation->keyframes[0][0].rotation.set(x, y, z);
        std::unique_ptr<KTCLIP> clip(new KTCLIP);
        EXPECT_TRUE(clip->take(animation));
        return clip;
    };
    // The same turn, written in two ways: nothing moves.
    const std::unique_ptr<KTCLIP> one = clipOf(10, 80, 5), same = clipOf(190, 100, 185);
    player.play(one.get());
    player.update(0.0f);
    player.play(same.get(), true, 1.0f);
    player.update(0.5f);
    EXPECT_NEAR(angle(), 10.0f, 1e-3f);
    EXPECT_NEAR(bone0.rotation.y, 80.0f, 1e-3f);
    EXPECT_NEAR(bone0.rotation.z, 5.0f, 1e-3f);
}

// --- layers

TEST_F(KitPlayerTest, ALayerReplacesAPartOfThePose) {
    player.play(slow.get());
    ASSERT_TRUE(player.playLayer(0, fast.get(), KT_LAYER_REPLACE, "bone1", true, 0.0f));
    player.update(0.25f);
    EXPECT_EQ(bone0.rotation.x, 2.0f);
    EXPECT_EQ(bone1.rotation.x, 110.0f);
    player.setLayerWeight(0, 0.5f);
    player.update(0.0f);
    EXPECT_NEAR(bone1.rotation.x, 56.0f, 1e-3f);
    player.stopLayer(0, 0.0f);
    player.update(0.0f);
    EXPECT_EQ(bone1.rotation.x, 2.0f);
}

TEST_F(KitPlayerTest, ALayerAddsWhatItDiffersFromItsFirstFrame) {
    player.play(slow.get());
    ASSERT_TRUE(player.playLayer(1, fast.get(), KT_LAYER_ADD, nullptr, true, 0.0f));
    for (int i = 0; i < 3; ++i) player.update(0.1f);
    player.update(0.05f);
    EXPECT_EQ(angle(), 3.0f + 15.0f) << "it does not add up over frames";
}

TEST_F(KitPlayerTest, ALayerAloneKeepsTheRestBelow) {
    bone0.setRotation(7.0f, 0.0f, 0.0f);
    ASSERT_TRUE(player.playLayer(0, fast.get(), KT_LAYER_ADD, nullptr, false, 0.2f));
    player.update(0.1f);
    EXPECT_GT(angle(), 7.0f);
    for (int i = 0; i < 8; ++i) player.update(0.1f);
    EXPECT_TRUE(player.isLayerPlaying(0));
    for (int i = 0; i < 3; ++i) player.update(0.1f);
    EXPECT_FALSE(player.isLayerPlaying(0)) << "played once, it is free again";
    EXPECT_EQ(angle(), 7.0f);
}

TEST_F(KitPlayerTest, ALayerFadesInAndOut) {
    player.play(slow.get());
    player.setRate(0.0f);
    ASSERT_TRUE(player.playLayer(0, fast.get(), KT_LAYER_REPLACE, nullptr, true, 0.5f));
    player.update(0.0f);
    EXPECT_TRUE(player.isLayerPlaying(0));
    float before = angle();
    EXPECT_EQ(before, 0.0f);
    for (int i = 0; i < 4; ++i) {
        player.update(0.1f);
        EXPECT_GT(angle(), before);
        before = angle();
    }
    player.update(0.1f);
    player.stopLayer(0, 0.2f);
    player.update(0.1f);
    EXPECT_LT(angle(), 100.0f);
    player.update(0.11f);
    EXPECT_EQ(angle(), 0.0f);
    EXPECT_FALSE(player.isLayerPlaying(0));
}

// --- events, root motion, attachments

TEST_F(KitPlayerTest, EventsComeAtTheirFrames) {
    ASSERT_TRUE(slow->addEvent(0, 11) && slow->addEvent(4, 44));
    player.play(slow.get());
    player.update(0.05f);
    EXPECT_EQ(player.takeEvent(), 11);
    EXPECT_EQ(player.takeEvent(), 0);
    player.update(0.5f);
    EXPECT_EQ(player.takeEvent(), 44);
    player.update(2.0f);
    for (int code : {11, 44, 11, 44, 0}) EXPECT_EQ(player.takeEvent(), code) << "two rounds";
    player.setTime(0.39f);
    EXPECT_EQ(player.takeEvent(), 0);
    player.play(slow.get(), false);
    player.update(5.0f);
    for (int code : {11, 44, 0}) EXPECT_EQ(player.takeEvent(), code);
    player.play(slow.get(), true);
    player.update(500.0f);
    for (unsigned i = 0; i < KTPLAYER::maxWaiting; ++i) EXPECT_NE(player.takeEvent(), 0);
    EXPECT_EQ(player.takeEvent(), 0);
}

TEST_F(KitPlayerTest, TheRootsMovementGoesToTheCharacter) {
    player.setTranslating(true);
    player.setRootBone("bone0");
    player.play(slow.get());  // a unit along x and two along z for each of ten frames a second
    R3XVECTOR3D place;
    for (int i = 0; i < 40; ++i) {
        player.update(0.06f);
        place += player.getStep();
        EXPECT_EQ(bone0.position, R3XVECTOR3D(0, 1, 0)) << "the pose stays, its height too";
    }
    EXPECT_NEAR(place.x, 24.0f, 1e-3f) << "over the seam as between two frames";
    EXPECT_NEAR(place.z, 48.0f, 1e-3f);
    EXPECT_EQ(place.y, 0.0f);
    body.setRotation(0.0f, 90.0f, 0.0f);
    player.update(0.1f);
    EXPECT_NEAR(player.getStep().x, 2.0f, 1e-3f);
    EXPECT_NEAR(player.getStep().z, -1.0f, 1e-3f);
    player.update(0.0f);
    EXPECT_EQ(player.getStep(), R3XVECTOR3D(0, 0, 0));
}

TEST_F(KitPlayerTest, ANodeHangsFromABone) {
    KTNODE lantern, shelf;
    lantern.link(&shelf);
    ASSERT_TRUE(player.attach(&lantern, "bone1"));
    EXPECT_EQ(lantern.getParent(), &bone1);
    EXPECT_EQ(shelf.getNumberOfChildren(), 0u);
}

TEST_F(KitPlayerTest, AFrameAllocatesNothing) {
    player.setSmooth(true);
    player.setTranslating(true);
    player.setRootBone("bone0");
    Allocations::startCounting();
    player.play(slow.get());
    player.playLayer(0, fast.get(), KT_LAYER_ADD, nullptr, true, 0.2f);
    for (int i = 0; i < 20; ++i) {
        player.update(0.05f);
        if (i == 7) player.play(fast.get(), true, 0.3f);
        if (i == 9) player.play(slow.get(), true, 0.3f);
        player.takeEvent();
    }
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

}  // namespace
}  // namespace keltra::test
