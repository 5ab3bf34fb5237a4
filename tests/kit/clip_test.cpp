// SPDX-License-Identifier: Zlib
#include <keltra/kit/clip.h>

#include <cstring>

#include "tests/kit/clip_fixture.h"

namespace keltra::test {
namespace {

using KitClipTest = KitClipFixture;

TEST_F(KitClipTest, AFileOfThirtyBonesAndSixtyFramesTakes45Kilobytes) {
    KTANIM *animation = newAnimation(30, 60);
    for (unsigned i = 0; i < 30; ++i) animation->setBoneName(i, ("leftLowerArm" + std::to_string(i)).c_str());
    KTCLIP clip;
    ASSERT_TRUE(clip.take(animation));
    EXPECT_LT(clip.getMemory(), 45u * 1024u);
    EXPECT_EQ(clip.getNumberOfBones(), 30u);
    EXPECT_EQ(clip.getNumberOfFrames(), 60u);
    EXPECT_FLOAT_EQ(clip.getLength(), 2.5f);
}

TEST_F(KitClipTest, ItHoldsWhatTheAnimationHolds) {
    KTANIM *animation = newAnimation(2, 2);
    animation->keyframes[1][1].rotation.set(1.0f, -2.0f, 3.0f);
    animation->keyframes[1][1].position.set(4.0f, 5.0f, -6.0f);
    KTCLIP clip;
    ASSERT_TRUE(clip.take(animation));
    EXPECT_STREQ(clip.getBoneName(1), "bone1");
    EXPECT_EQ(clip.getBoneName(2), nullptr);
    EXPECT_EQ(clip.findBone("bone1"), 1);
    EXPECT_EQ(clip.findBone("none"), -1);
    EXPECT_EQ(clip.findBone(nullptr), -1);
    EXPECT_EQ(clip.getRotation(1, 1), R3XVECTOR3D(1, -2, 3));
    EXPECT_EQ(clip.getPosition(1, 1), R3XVECTOR3D(4, 5, -6));
    EXPECT_EQ(clip.getRotation(2, 0), R3XVECTOR3D(0, 0, 0));
}

TEST_F(KitClipTest, WhatTheEngineRefusesIsRefused) {
    TempFolder folder;
    KTANIM::setKTAPath(folder.prefix().c_str());
    ASSERT_TRUE(newAnimation(2, 3)->save(folder.path("good.kta").c_str()));
    folder.write("bad.kta", "KTA");
    KTCLIP clip;
    ASSERT_TRUE(clip.load("good.kta"));
    KTFAULTS::clear();
    for (const char *name : {"bad.kta", "none.kta", static_cast<const char *>(nullptr)})
        EXPECT_FALSE(clip.load(name));
    EXPECT_FALSE(clip.take(nullptr));
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 4u);
    EXPECT_EQ(clip.getNumberOfFrames(), 3u) << "it keeps what it had";
    EXPECT_EQ(KTANIM::findByFilename("good.kta"), nullptr) << "the grid is not kept";
}

TEST_F(KitClipTest, EventsAreEight) {
    KTCLIP clip;
    ASSERT_TRUE(clip.take(newAnimation(1, 4)));
    EXPECT_FALSE(clip.addEvent(4, 1));
    EXPECT_FALSE(clip.addEvent(0, 0));
    for (unsigned i = 0; i < KTCLIP::maxEvents; ++i) EXPECT_TRUE(clip.addEvent(i % 4, 1));
    EXPECT_FALSE(clip.addEvent(0, 1));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FULL);
}

TEST_F(KitClipTest, WithoutMemoryItKeepsWhatItHad) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    KTANIM *animation = newAnimation(2, 2);
    KTCLIP clip;
    ASSERT_TRUE(clip.take(animation));
    Allocations::failNextFrom(100);
    EXPECT_FALSE(clip.take(animation));
    Allocations::clear();
    EXPECT_EQ(clip.getNumberOfBones(), 2u);
}

}  // namespace
}  // namespace keltra::test
