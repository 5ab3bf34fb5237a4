// SPDX-License-Identifier: Zlib
// Clips that are larger than their budget keep fewer frames, within an error that the report states.

#include <gtest/gtest.h>

#include "tests/tools/convert/support/convert_fixture.h"

namespace keltra::test {
namespace {

constexpr unsigned kFrames = 101;  // of four seconds

class ClipBudgetTest : public ConvertTest {
   protected:
    /// A box that goes back and forth `turns` times, and one that stands still but has a track.
    Made makeSwing(double turns, std::uint64_t bytes, double error) {
        GltfBuilder model;
        const int box = model.node({{"name", "box"}, {"mesh", model.mesh(boxMesh())}});
        const int still = model.node({{"name", "still"}, {"mesh", model.mesh(boxMesh())}});
        Floats times, places, rests;
        for (unsigned f = 0; f < kFrames; ++f) {
            times.push_back(0.04f * static_cast<float>(f));
            places.insert(places.end(),
                          {static_cast<float>(std::sin(f / 100.0 * 2.0 * M_PI * turns)), 0.0f, 0.0f});
            rests.insert(rests.end(), {0.0f, 0.0f, 0.0f});
        }
        model.clip("swing", {{box, "translation", times, places}, {still, "translation", times, rests}});
        return make("swing.gltf", model.text(), [&](convert::Options &options) {
            options.fit = true;
            options.budget.clips = bytes;
            options.clipError = error;
        });
    }
    static std::uint64_t changed(const convert::Report &report, const std::string &what) {
        for (const convert::Dropped &entry : report.changed)
            if (entry.what == what) return entry.count;
        return 0;
    }
};

TEST_F(ClipBudgetTest, WithinTheBudgetNothingChanges) {
    const Made made = makeSwing(1.0, 1u << 20, 0.1);
    ASSERT_EQ(made.report().clips.size(), 1u);
    EXPECT_EQ(made.report().clips[0].frames, kFrames);
    EXPECT_EQ(made.report().clips[0].bones, 2u);
    EXPECT_EQ(changed(made.report(), "frames of clips"), 0u);
}

TEST_F(ClipBudgetTest, BonesThatNoClipMovesGoFirst) {
    const Made made = makeSwing(1.0, kFrames * 25 + 200, 0.1);
    EXPECT_EQ(made.report().clips[0].frames, kFrames);
    EXPECT_EQ(made.report().clips[0].bones, 1u);
    EXPECT_TRUE(made.report().over.empty());
}

TEST_F(ClipBudgetTest, FramesAreLeftOutUntilItFits) {
    const Made made = makeSwing(1.0, kFrames * 25 / 4 + 200, 0.1);
    const convert::ClipReport &clip = made.report().clips.at(0);
    EXPECT_EQ(clip.frames, 26u);
    EXPECT_NEAR(clip.seconds, 4.0, 1e-6);
    EXPECT_EQ(changed(made.report(), "frames of clips"), kFrames - 26u);
    EXPECT_TRUE(made.report().over.empty());
    KTANIM *animation = made.loaded->animation(clip.file);
    ASSERT_NE(animation, nullptr);
    for (unsigned frame : {0u, 6u, 25u}) {
        ASSERT_TRUE(animation->apply(frame, made.root()));
        const double x = made.root()->findByNameInHierarchy("box")->getPosition().x;
        EXPECT_NEAR(x, std::sin(4 * frame / 100.0 * 2.0 * M_PI), 1e-4) << frame;
    }
}

// Eight turns in a hundred frames: already every second frame loses some of the way.
TEST_F(ClipBudgetTest, NotBeyondTheErrorThatIsAllowed) {
    const Made strict = makeSwing(8.0, 100, 0.001);
    EXPECT_EQ(strict.report().clips[0].frames, kFrames);
    ASSERT_EQ(strict.report().over.size(), 1u);
    EXPECT_EQ(strict.report().over[0].what, "clips");
    const Made loose = makeSwing(8.0, 100, 0.05);
    EXPECT_LT(loose.report().clips[0].frames, kFrames);
    EXPECT_GT(loose.report().clips[0].frames, kFrames / 4);
}

}  // namespace
}  // namespace keltra::test
