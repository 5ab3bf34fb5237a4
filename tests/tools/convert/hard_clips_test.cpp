// SPDX-License-Identifier: Zlib
// Animations beyond the limits of the engine's files, and empty ones.

#include <gtest/gtest.h>

#include <set>

#include "tests/tools/convert/support/clips.h"
#include "tests/tools/convert/support/convert_fixture.h"

namespace keltra::test {
namespace {

using nlohmann::json;

constexpr double kBound = 1e-3;  // of the model's size
constexpr unsigned kMostFrames = 1024, kMostBones = 128;

/// A box with a few clips of its own kind.
struct BoxModel {
    GltfBuilder model;
    int node;

    BoxModel() : node(model.node({{"name", "box"}, {"mesh", model.mesh(boxMesh())}})) {}
};

class HardClipsTest : public ConvertTest {
   protected:
    void expectClips(const Made &made, const std::string &fileName, unsigned clips, unsigned frames = 10,
                     double fps = 25.0) {
        const SourcePose source(folder.path(fileName));
        const std::vector<Clip> found = clipsOf(made.report(), source, fps);
        ASSERT_EQ(found.size(), clips);
        for (const Clip &clip : found) {
            const Deviation deviation = compareClip(
                source, *made.loaded, clip, made.report().scale, spreadFrames(clip, frames), kBound,
                [](KTNODE *root) { return shapeOf(poseWithoutWindow(root)); }, fps);
            EXPECT_LT(deviation.largest, kBound) << deviation.outliers;
        }
    }
};

TEST_F(HardClipsTest, FiveClipsOfOneNameBecomeFiveFiles) {
    BoxModel box;
    for (int i = 1; i <= 5; ++i) {
        const float x = static_cast<float>(i);
        box.model.clip("walk", {{box.node, "translation", {0, 1}, {0, 0, 0, x, 0, 0}}});
    }
    const Made made = make("five.gltf", box.model.text());
    ASSERT_NE(made.root(), nullptr);
    std::set<std::string> files;
    for (const convert::ClipReport &clip : made.report().clips) {
        EXPECT_EQ(clip.name, "walk");
        EXPECT_EQ(clip.frames, 26u);
        EXPECT_NEAR(clip.seconds, 1.0, 1e-6);
        EXPECT_TRUE(clip.moves);
        files.insert(clip.file);
    }
    EXPECT_EQ(files.size(), 5u);
    expectClips(made, "five.gltf", 5);
}

TEST_F(HardClipsTest, NamesThatDifferInCaseOnlyBecomeDifferentFiles) {
    BoxModel box;
    for (const char *name : {"Walk", "walk", "WALK", "a/b", "a:b", "", ""})
        box.model.clip(name, {{box.node, "translation", {0, 1}, {0, 0, 0, 1, 0, 0}}});
    const Made made = make("case.gltf", box.model.text());
    ASSERT_NE(made.root(), nullptr);
    std::set<std::string> files;
    for (const convert::ClipReport &clip : made.report().clips) {
        std::string lower = clip.file;
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
        files.insert(lower);
        EXPECT_EQ(clip.file.find_first_of("/\\: "), std::string::npos) << clip.file;
    }
    EXPECT_EQ(files.size(), 7u);
}

TEST_F(HardClipsTest, AClipOf3000FramesIsSplitIntoPartsThatCoverItAll) {
    BoxModel box;
    Floats times, places;
    for (int i = 0; i <= 120; ++i) {
        const float t = static_cast<float>(i) * 2999.0f / 3000.0f;
        times.push_back(t);
        places.insert(places.end(), {0.1f * t, std::sin(t), std::cos(t)});
    }
    box.model.clip("long", {{box.node, "translation", times, places}});
    const Made made = make("long.gltf", box.model.text());
    ASSERT_NE(made.root(), nullptr);
    unsigned frames = 0;
    for (const convert::ClipReport &clip : made.report().clips) {
        EXPECT_LE(clip.frames, kMostFrames);
        frames += clip.frames;
        ASSERT_NE(made.loaded->animation(clip.file), nullptr) << clip.file;
        EXPECT_EQ(made.loaded->animation(clip.file)->getNumberOfFrames(), clip.frames);
    }
    EXPECT_EQ(frames, 3000u);
    EXPECT_TRUE(mentions(made.report(), "split"));
    expectClips(made, "long.gltf", 1, 101);
}

TEST_F(HardClipsTest, AClipOf140NodesIsSplitIntoFilesThatMoveThemAll) {
    GltfBuilder model;
    const int mesh = model.mesh(boxMesh());
    std::vector<GltfChannel> channels;
    const int top = model.node({{"name", "top"}});
    for (int i = 0; i < 140; ++i) {
        const float x = 3.0f * static_cast<float>(i);
        const int node = model.node(
            {{"name", "box" + std::to_string(i)}, {"mesh", mesh}, {"translation", {x, 0, 0}}}, top);
        channels.push_back({node, "translation", {0, 1}, {x, 0, 0, x, 1.0f + static_cast<float>(i % 5), 0}});
    }
    model.clip("jump", channels);
    const Made made = make("crowd.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    std::multiset<std::string> moved;
    for (const convert::ClipReport &clip : made.report().clips) {
        EXPECT_LE(clip.bones, kMostBones);
        KTANIM *animation = made.loaded->animation(clip.file);
        ASSERT_NE(animation, nullptr) << clip.file;
        for (unsigned b = 0; b < animation->getNumberOfBones(); ++b) moved.insert(animation->getBoneName(b));
    }
    for (int i = 0; i < 140; ++i) EXPECT_EQ(moved.count("box" + std::to_string(i)), 1u) << i;
    EXPECT_TRUE(mentions(made.report(), "split"));
    expectClips(made, "crowd.gltf", 1);
}

TEST_F(HardClipsTest, AClipWithoutLengthIsOneFrame) {
    BoxModel box;
    box.model.clip("pose", {{box.node, "translation", {0}, {4, 5, 6}}});
    const Made made = make("pose.gltf", box.model.text());
    ASSERT_NE(made.root(), nullptr);
    ASSERT_EQ(made.report().clips.size(), 1u);
    EXPECT_EQ(made.report().clips[0].frames, 1u);
    EXPECT_EQ(made.report().clips[0].seconds, 0.0);
    expectClips(made, "pose.gltf", 1, 2);
}

TEST_F(HardClipsTest, AModelThatDoesNotSayItsTicksHas25ASecond) {
    const std::string text =
        "xof 0303txt 0032\nFrame Box { FrameTransformMatrix { "
        "1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0;; }\n"
        "Mesh { 3; 0;0;0;, 1;0;0;, 0;1;0;; 1; 3;0,1,2;; } }\n"
        "AnimationSet Slide { Animation { { Box } AnimationKey { 2; 2; 0;3;0.0,0.0,0.0;;, "
        "50;3;8.0,0.0,0.0;;; } } }\n";
    const Made made = make("ticks.x", text);
    ASSERT_NE(made.root(), nullptr);
    ASSERT_EQ(made.report().clips.size(), 1u);
    EXPECT_EQ(made.report().clips[0].frames, 51u);
    expectClips(made, "ticks.x", 1, 11);
}

TEST_F(HardClipsTest, AnotherRateGivesOtherFramesOfTheSameMotion) {
    BoxModel box;
    box.model.clip("slide", {{box.node, "translation", {0, 2}, {0, 0, 0, 8, 1, 0}}});
    for (double fps : {1.0, 10.0, 24.0, 60.0}) {
        const Made made =
            make("rate.gltf", box.model.text(), [fps](convert::Options &options) { options.fps = fps; });
        ASSERT_NE(made.root(), nullptr);
        ASSERT_EQ(made.report().clips.size(), 1u);
        EXPECT_EQ(made.report().clips[0].frames, static_cast<unsigned>(2 * fps) + 1);
        expectClips(made, "rate.gltf", 1, 7, fps);
    }
}

TEST_F(HardClipsTest, AClipThatMovesNothingIsSaid) {
    GltfBuilder model;
    model.node({{"name", "box"}, {"mesh", model.mesh(boxMesh())}});
    model.document()["animations"] = json::array();
    model.clip("empty", {});
    model.document()["animations"][0]["channels"] = json::array();
    const Made made = make("empty.gltf", model.text());
    ASSERT_NE(made.root(), nullptr);
    EXPECT_TRUE(made.report().clips.empty());
}

TEST_F(HardClipsTest, AnimatedScalesAreSaid) {
    BoxModel box;
    box.model.clip("grow", {{box.node, "scale", {0, 1}, {1, 1, 1, 2, 3, 4}}});
    const Made made = make("grow.gltf", box.model.text());
    ASSERT_NE(made.root(), nullptr);
    EXPECT_TRUE(mentions(made.report(), "scale"));
}

TEST_F(HardClipsTest, TurnsOfAnyKindAreFollowedFrameByFrame) {
    BoxModel box;
    const int arm = box.model.node(
        {{"name", "arm"}, {"mesh", box.model.mesh(boxMesh(0.2f, 2.0f, 0.1f))}, {"translation", {3, 0, 0}}},
        box.node);
    Floats times, turns;
    // Through the poles of the angles and several times round.
    for (int i = 0; i <= 24; ++i) {
        const double angle = 0.7 * i, s = std::sin(angle), c = std::cos(angle);
        times.push_back(0.25f * static_cast<float>(i));
        turns.insert(turns.end(), {static_cast<float>(0.6 * s), static_cast<float>(0.8 * s * c),
                                   static_cast<float>(0.8 * s * s), static_cast<float>(c)});
    }
    box.model.clip("tumble", {{box.node, "rotation", times, turns}, {arm, "rotation", times, turns}});
    const Made made = make("tumble.gltf", box.model.text());
    ASSERT_NE(made.root(), nullptr);
    expectClips(made, "tumble.gltf", 1, 151);
}

TEST_F(HardClipsTest, AnglesGrowSteadilySoThatFramesCanBeStepped) {
    BoxModel box;
    Floats times, turns;
    for (int i = 0; i <= 40; ++i) {
        const double angle = 0.5 * i;  // of half a turn; twenty radians
        times.push_back(0.1f * static_cast<float>(i));
        turns.insert(turns.end(), {0, static_cast<float>(std::sin(0.5 * angle)), 0,
                                   static_cast<float>(std::cos(0.5 * angle))});
    }
    box.model.clip("spin", {{box.node, "rotation", times, turns}});
    const Made made = make("spin.gltf", box.model.text());
    ASSERT_NE(made.root(), nullptr);
    ASSERT_EQ(made.report().clips.size(), 1u);
    KTANIM *animation = made.loaded->animation(made.report().clips[0].file);
    ASSERT_NE(animation, nullptr);
    const int bone = animation->findBoneByName("box");
    ASSERT_GE(bone, 0);
    for (unsigned f = 1; f < animation->getNumberOfFrames(); ++f) {
        const R3XVECTOR3D step = animation->getFrameRotation(f, static_cast<unsigned>(bone)) -
                                 animation->getFrameRotation(f - 1, static_cast<unsigned>(bone));
        EXPECT_LT(std::abs(step.x) + std::abs(step.y) + std::abs(step.z), 181.0f) << "frame " << f;
    }
}

}  // namespace
}  // namespace keltra::test
