// SPDX-License-Identifier: Zlib
// Animated FBX files whose nodes have pivots, offsets, pre- and post-rotations. What the engine shows is
// compared with the format's own formula, which knows nothing of the importer's helper nodes.

#include <gtest/gtest.h>

#include "tests/tools/convert/support/clips.h"
#include "tests/tools/convert/support/convert_fixture.h"
#include "tests/tools/convert/support/fbx_builder.h"

namespace keltra::test {
namespace {

constexpr double kBound = 1e-3;  // of the model's size
constexpr double kFps = 25.0;
constexpr unsigned kFrames = 26;

/// Keys in each frame, as programs write them that bake their curves: an importer may take the shortest turn
/// between two keys.
FbxTrack turning(int node, const Point &from, const Point &to) {
    FbxTrack track{node, "Lcl Rotation", {}, {}};
    for (unsigned f = 0; f < kFrames; ++f) {
        const double t = f / double(kFrames - 1);
        track.seconds.push_back(f / kFps);
        track.values.push_back(from + (to - from) * t);
    }
    return track;
}

FbxTrack moving(int node, const Point &from, const Point &to) {
    FbxTrack track = turning(node, from, to);
    track.property = "Lcl Translation";
    return track;
}

class FbxPivotsTest : public ConvertTest {
   protected:
    /// Every vertex in every frame of every clip.
    void expectMotion(const FbxBuilder &model) {
        const Made made = make("model.fbx", model.text());
        ASSERT_NE(made.root(), nullptr);
        ASSERT_EQ(made.report().clips.size(), model.numberOfClips());
        for (unsigned clip = 0; clip < model.numberOfClips(); ++clip) expectClip(model, made, clip);
    }

    void expectClip(const FbxBuilder &model, const Made &made, unsigned clip) {
        ASSERT_EQ(made.report().clips[clip].frames, kFrames);
        KTANIM *animation = made.loaded->animation(made.report().clips[clip].file);
        ASSERT_NE(animation, nullptr);
        std::vector<std::vector<Point>> expected, actual;
        for (unsigned frame = 0; frame < kFrames; ++frame) {
            ASSERT_TRUE(animation->apply(frame, made.root()));
            expected.push_back(model.vertices(static_cast<int>(clip), frame / kFps));
            actual.push_back(shapeOf(poseWithoutWindow(made.root())).corners);
        }
        ASSERT_GT(extent(expected), 0.0);
        const Gap gap = findGap(expected, {}, actual, kBound * extent(expected));
        EXPECT_LT(gap.largest / extent(expected), kBound) << "clip " << clip;
    }

    /// An arm of three nodes, each with a box, the last with all that the format has.
    static FbxBuilder arm(FbxNode pivoted, bool isSkinned) {
        FbxBuilder model;
        pivoted.translation = {0.0, 2.0, 0.5};
        pivoted.rotation = {10.0, 20.0, 30.0};
        const std::string kind = isSkinned ? "LimbNode" : "Mesh";
        FbxNode root, hand;
        root.name = "root", hand.name = "hand", pivoted.name = "arm";
        root.kind = hand.kind = pivoted.kind = kind;
        pivoted.parent = model.node(root);
        hand.parent = model.node(pivoted);
        hand.translation = {0.3, 1.5, 0.0};
        hand.rotation = {0.0, 0.0, 25.0};
        const int last = model.node(hand);
        if (!isSkinned) {
            for (int n = 0; n <= last; ++n) model.box(n, 0.3 + 0.1 * n);
        } else {
            FbxNode body;
            body.name = "body", body.kind = "Mesh";
            model.skin(model.node(body), 1.0, {{0, 0.25}, {1, 0.25}, {2, 0.5}});
        }
        return model;
    }

    void expectArmMoves(const FbxNode &pivoted) {
        for (const bool isSkinned : {false, true}) {
            FbxBuilder model = arm(pivoted, isSkinned);
            model.clip("wave", {turning(1, {10, 20, 30}, {80, -40, 50}), turning(2, {0, 0, 25}, {0, 0, 115}),
                                moving(1, {0, 2, 0.5}, {1, 2.5, 0.5})});
            SCOPED_TRACE(isSkinned ? "skinned" : "rigid");
            expectMotion(model);
        }
    }
};

TEST_F(FbxPivotsTest, WithoutPivots) { expectArmMoves({}); }

TEST_F(FbxPivotsTest, PreRotation) {
    FbxNode node;
    node.preRotation = {0.0, 0.0, 90.0};
    expectArmMoves(node);
}

TEST_F(FbxPivotsTest, PostRotation) {
    FbxNode node;
    node.postRotation = {35.0, -20.0, 10.0};
    expectArmMoves(node);
}

TEST_F(FbxPivotsTest, RotationPivot) {
    FbxNode node;
    node.rotationPivot = {0.2, 0.7, -0.4};
    expectArmMoves(node);
}

TEST_F(FbxPivotsTest, PreRotationAndPivot) {
    FbxNode node;
    node.preRotation = {-90.0, 0.0, 30.0};
    node.rotationPivot = {0.2, 0.7, -0.4};
    expectArmMoves(node);
}

TEST_F(FbxPivotsTest, OneKindOfCurveOnly) {
    FbxNode node;
    node.preRotation = {-90.0, 0.0, 30.0};
    node.postRotation = {35.0, -20.0, 10.0};
    for (const bool isSkinned : {false, true}) {
        FbxBuilder turns = arm(node, isSkinned), moves = arm(node, isSkinned);
        turns.clip("turn", {turning(1, {10, 20, 30}, {80, -40, 50})});
        expectMotion(turns);
        moves.clip("move", {moving(1, {0, 2, 0.5}, {1, 2.5, 0.5})});
        expectMotion(moves);
    }
}

// In a clip that leaves a node alone its helper nodes place it.
TEST_F(FbxPivotsTest, ANodeThatOnlyOneOfTwoClipsMoves) {
    FbxNode node;
    node.preRotation = {-90.0, 0.0, 30.0};
    FbxBuilder model = arm(node, true);
    model.clip("arm", {turning(1, {10, 20, 30}, {80, -40, 50})});
    model.clip("hand", {turning(2, {0, 0, 25}, {0, 0, 115})});
    expectMotion(model);
}

TEST_F(FbxPivotsTest, All) {
    FbxNode node;
    node.rotationOffset = {0.1, -0.2, 0.3};
    node.rotationPivot = {0.2, 0.7, -0.4};
    node.preRotation = {-90.0, 15.0, 30.0};
    node.postRotation = {35.0, -20.0, 10.0};
    node.scalingOffset = {-0.1, 0.05, 0.2};
    node.scalingPivot = {0.3, 0.3, 0.1};
    expectArmMoves(node);
}

}  // namespace
}  // namespace keltra::test
