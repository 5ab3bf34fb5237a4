// SPDX-License-Identifier: Zlib
#include <keltra/anim.h>

#include <random>

#include "tests/scene/anim_fixture.h"

namespace keltra::test {
namespace {

class InterpolationTest : public AnimTest {
   protected:
    /// The rule, computed step by step for the `angles` of one bone and one component.
    static void interpolateSlowly(std::vector<float> *angles, const std::vector<bool> &set, unsigned first,
                                  unsigned last) {
        for (unsigned k = first; k < last;) {
            unsigned goal = last;
            for (unsigned i = last - 1; i > k; --i)
                if (set[i]) goal = i;
            const float step = ((*angles)[goal] - (*angles)[k]) / static_cast<float>(goal - k);
            float running = (*angles)[k];
            for (unsigned i = k; i < goal; ++i)
                if (!set[i]) (*angles)[i] = running = running + step;
            k = goal;
        }
    }
};

TEST_F(InterpolationTest, FillsTheFramesBetweenSetOnes) {
    KTANIM *anim = newAnim(1, 6);
    anim->setFrame(0, 0, 0.0f, 0.0f, 0.0f);
    anim->setFrame(4, 0, 40.0f, -4.0f, 0.5f);
    EXPECT_TRUE(anim->createKeyframes(0, 5));
    for (unsigned frame = 0; frame <= 4; ++frame) {
        const float part = static_cast<float>(frame);
        EXPECT_EQ(anim->getFrameRotation(frame, 0), R3XVECTOR3D(10.0f * part, -part, 0.125f * part));
    }
    EXPECT_EQ(anim->getFrameRotation(5, 0), kZero);
    for (unsigned frame = 1; frame < 4; ++frame)
        EXPECT_FALSE(anim->getKeyframe(frame, 0)->set) << "still not set";
}

TEST_F(InterpolationTest, TheEndIsTheGoalWhetherSetOrNot) {
    KTANIM *anim = newAnim(1, 4);
    anim->setFrame(0, 0, 8.0f, 0.0f, 0.0f);
    EXPECT_TRUE(anim->createKeyframes(0, 4));
    EXPECT_EQ(angle(anim, 1), 6.0f) << "towards the empty frame one past the last";
    EXPECT_EQ(angle(anim, 3), 2.0f);
    anim->setFrame(4, 0, 16.0f, 0.0f, 0.0f);
    EXPECT_TRUE(anim->createKeyframes(0, 4));
    EXPECT_EQ(angle(anim, 3), 14.0f);
    EXPECT_EQ(angle(anim, 4), 16.0f);
}

TEST_F(InterpolationTest, AnUnsetFirstFrameIsSteppedToo) {
    KTANIM *anim = newAnim(1, 5);
    anim->setFrame(4, 0, 40.0f, 0.0f, 0.0f);
    EXPECT_TRUE(anim->createKeyframes(0, 4));
    for (unsigned frame = 0; frame < 4; ++frame)
        EXPECT_EQ(angle(anim, frame), 10.0f * static_cast<float>(frame + 1));
    EXPECT_EQ(angle(anim, 4), 40.0f);
}

TEST_F(InterpolationTest, AnglesDoNotWrap) {
    KTANIM *anim = newAnim(1, 3);
    anim->setFrame(0, 0, 350.0f, 0.0f, 0.0f);
    anim->setFrame(2, 0, 10.0f, 0.0f, 0.0f);
    EXPECT_TRUE(anim->createKeyframes(0, 2));
    EXPECT_EQ(angle(anim, 1), 180.0f);
}

TEST_F(InterpolationTest, PositionsAreLeftAlone) {
    KTANIM *anim = newAnim(1, 3);
    anim->setFrame(0, 0, 1.0f, 1.0f, 1.0f);
    anim->getKeyframe(0, 0)->position.set(1.0f, 1.0f, 1.0f);
    anim->getKeyframe(1, 0)->position.set(9.0f, 9.0f, 9.0f);
    EXPECT_TRUE(anim->createKeyframes(0, 3));
    EXPECT_EQ(anim->getKeyframe(1, 0)->position, R3XVECTOR3D(9.0f, 9.0f, 9.0f));
    EXPECT_EQ(anim->getKeyframe(2, 0)->position, kZero);
}

TEST_F(InterpolationTest, RefusesRangesOutsideTheFrames) {
    KTANIM *anim = newAnim(1, 5);
    EXPECT_TRUE(anim->createKeyframes(4, 5));
    EXPECT_FALSE(anim->createKeyframes(5, 5));
    EXPECT_FALSE(anim->createKeyframes(0, 6));
    EXPECT_FALSE(anim->createKeyframes(3, 3));
    EXPECT_FALSE(anim->createKeyframes(3, 2));
    EXPECT_FALSE(anim->createKeyframes(~0u, ~0u));
    anim->setNumberOfBones(0);
    EXPECT_TRUE(anim->createKeyframes(0, 5));
    EXPECT_FALSE(anim->createKeyframes(0, 6)) << "the range is looked at first";
    anim->setNumberOfFrames(0);
    EXPECT_FALSE(anim->createKeyframes(0, 0));
}

TEST_F(InterpolationTest, AFullGridReachesItsSpareFrame) {
    KTANIM *anim = newAnim(128, 1024);
    anim->setFrame(0, 127, 0.0f, 0.0f, 0.0f);
    anim->setFrame(1024, 127, 1024.0f, 0.0f, 0.0f);
    EXPECT_TRUE(anim->createKeyframes(0, 1024));
    EXPECT_EQ(angle(anim, 1, 127), 1.0f);
    EXPECT_EQ(angle(anim, 1023, 127), 1023.0f);
}

TEST_F(InterpolationTest, FollowsTheRuleForAnyPattern) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const unsigned frames = 2 + random() % 40, first = random() % frames;
        const unsigned last = first + 1 + random() % (frames - first);
        KTANIM *anim = newAnim(2, frames);
        std::vector<float> angles;
        std::vector<bool> set;
        for (unsigned frame = 0; frame <= frames; ++frame) {
            angles.push_back(static_cast<float>(random() % 7200) * 0.1f - 360.0f);
            set.push_back(random() % 4 == 0);
            anim->getKeyframe(frame, 1)->rotation.set(angles.back(), 0.0f, -angles.back());
            anim->getKeyframe(frame, 1)->set = set.back();
        }
        ASSERT_TRUE(anim->createKeyframes(first, last));
        interpolateSlowly(&angles, set, first, last);
        for (unsigned frame = 0; frame <= frames; ++frame) {
            ASSERT_EQ(anim->getFrameRotation(frame, 1), R3XVECTOR3D(angles[frame], 0.0f, -angles[frame]))
                << frame;
            ASSERT_EQ(anim->getKeyframe(frame, 1)->set, set[frame]);
        }
        delete anim;
    }
}

}  // namespace
}  // namespace keltra::test
