// SPDX-License-Identifier: Zlib
#include "tools/convert/motion.h"

#include <assimp/scene.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace keltra::convert {
namespace {

/// One node below the root, and an animation of it.
class MotionTest : public testing::Test {
   protected:
    MotionTest() : animation(new aiAnimation) {
        scene.mRootNode = new aiNode("root");
        aiNode *node = new aiNode("arm");
        node->mTransformation.a4 = 5.0f;
        scene.mRootNode->addChildren(1, &node);
        animation->mNumChannels = 1;
        animation->mChannels = new aiNodeAnim *[1];
        channel = animation->mChannels[0] = new aiNodeAnim;
        channel->mNodeName = "arm";
        animation->mTicksPerSecond = 10.0;
        scene.mNumAnimations = 1;
        scene.mAnimations = new aiAnimation *[1];
        scene.mAnimations[0] = animation;
    }
    void setPositions(std::initializer_list<std::pair<double, float>> keys) {
        channel->mNumPositionKeys = static_cast<unsigned>(keys.size());
        channel->mPositionKeys = new aiVectorKey[keys.size()];
        unsigned i = 0;
        for (const auto &[time, x] : keys) channel->mPositionKeys[i++] = aiVectorKey(time, {x, 0, 0});
    }
    double xAt(double seconds) {
        Report report;
        const Rig rig(scene, Matrix(), report);
        std::vector<Matrix> locals;
        Motion({animation}, rig).locals(seconds, locals);
        return locals[1].a4;
    }
    double length() {
        Report report;
        const Rig rig(scene, Matrix(), report);
        return Motion({animation}, rig).seconds();
    }

    aiScene scene;
    aiAnimation *animation;  // the scene owns it
    aiNodeAnim *channel;
};

TEST_F(MotionTest, BetweenKeysPositionsAreInterpolatedAndBeyondThemTheyStay) {
    setPositions({{10.0, 1.0f}, {20.0, 3.0f}});
    EXPECT_DOUBLE_EQ(xAt(0.0), 1.0);
    EXPECT_DOUBLE_EQ(xAt(1.0), 1.0);
    EXPECT_DOUBLE_EQ(xAt(1.5), 2.0);
    EXPECT_DOUBLE_EQ(xAt(2.0), 3.0);
    EXPECT_DOUBLE_EQ(xAt(100.0), 3.0);
}

TEST_F(MotionTest, WithoutKeysTheNodeRests) { EXPECT_DOUBLE_EQ(xAt(1.0), 5.0); }

TEST_F(MotionTest, TwoKeysOfOneTimeAreAStep) {
    setPositions({{0.0, 1.0f}, {10.0, 1.0f}, {10.0, 2.0f}, {20.0, 2.0f}});
    EXPECT_DOUBLE_EQ(xAt(0.99), 1.0);
    EXPECT_DOUBLE_EQ(xAt(1.0), 2.0);
}

TEST_F(MotionTest, AKeyThatIsNoNumberLeavesTheNodeAtRest) {
    setPositions({{0.0, std::numeric_limits<float>::quiet_NaN()}});
    EXPECT_DOUBLE_EQ(xAt(0.0), 5.0);
}

TEST_F(MotionTest, AClipEndsAtItsLastKeyWhateverItsDuration) {
    setPositions({{0.0, 1.0f}, {25.0, 3.0f}});
    for (double duration : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                            std::numeric_limits<double>::infinity(), 10.0, 40.0, 1e6}) {
        animation->mDuration = duration;
        EXPECT_DOUBLE_EQ(length(), 2.5) << duration;
    }
}

TEST_F(MotionTest, WithoutARateTwentyFiveTicksAreASecond) {
    setPositions({{0.0, 1.0f}, {50.0, 3.0f}});
    animation->mTicksPerSecond = 0.0;
    EXPECT_DOUBLE_EQ(length(), 2.0);
}

TEST_F(MotionTest, ChannelsOfUnknownNodesMoveNothing) {
    setPositions({{0.0, 1.0f}});
    channel->mNodeName = "leg";
    Report report;
    const Rig rig(scene, Matrix(), report);
    EXPECT_FALSE(Motion({animation}, rig).movesNodes());
}

}  // namespace
}  // namespace keltra::convert
