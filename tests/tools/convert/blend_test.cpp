// SPDX-License-Identifier: Zlib
// Blender's own files, by an installed Blender and without. What Blender evaluates is the reference.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>

#include "tests/tools/convert/program.h"
#include "tests/tools/convert/support/convert_fixture.h"
#include "tools/convert/blender.h"

namespace keltra::test {
namespace {

constexpr char kBlender[] = "/usr/bin/blender";

class BlendTest : public ConvertTest {
   protected:
    void SetUp() override {
        ConvertTest::SetUp();
        if (!std::filesystem::exists(kBlender))
            GTEST_SKIP() << "./run blender installs Blender and runs this too";
        const ProgramRun run =
            runProgram({kBlender, "-b", "--factory-startup", "--python-exit-code", "3", "--python",
                        KELTRA_BLEND_SCRIPT, "--", model(), folder.path("reference")});
        ASSERT_EQ(run.exit, 0) << run.err;
    }
    void TearDown() override {
        ::unsetenv("KELTRA_BLENDER");
        ConvertTest::TearDown();
    }
    std::string model() const { return folder.path("arm.blend"); }
};

TEST_F(BlendTest, BlenderHandsOverSkeletonAndActions) {
    ::setenv("KELTRA_BLENDER", kBlender, 1);
    Made made;
    made.conversion = convertFile(model());
    made.loaded = std::make_unique<Loaded>(made.conversion);
    ASSERT_NE(made.root(), nullptr);
    EXPECT_TRUE(mentions(made.report(), "read through Blender"));
    EXPECT_EQ(made.report().skins, 1u);
    ASSERT_EQ(made.report().clips.size(), 1u);
    EXPECT_EQ(made.report().clips[0].name, "wave");
    KTANIM *animation = made.loaded->animation(made.report().clips[0].file);
    ASSERT_NE(animation, nullptr);

    std::map<unsigned, std::vector<Point>> reference;
    std::ifstream file(folder.path("reference"));
    unsigned frame;
    for (Point at; file >> frame >> at.x >> at.y >> at.z;) reference[frame].push_back(at);
    ASSERT_EQ(reference.size(), 6u);
    // Blender's frame 1 is at 1/25 s.
    for (const auto &[number, points] : reference) {
        ASSERT_TRUE(animation->apply(number, made.root()));
        const std::vector<Point> corners = shapeOf(poseWithoutWindow(made.root())).corners;
        for (const Point &at : points) {
            double least = 1e9;
            for (const Point &corner : corners) least = std::min(least, length(corner - at));
            EXPECT_LT(least, 5e-3) << "frame " << number;
        }
    }
}

TEST_F(BlendTest, WithoutBlenderWhatIsLostIsNamed) {
    convert::Report report;
    convert::reportWithoutBlender(model(), report);
    EXPECT_TRUE(mentions(report, "it is read without Blender"));
    EXPECT_TRUE(mentions(report, "armatures"));
    EXPECT_TRUE(mentions(report, "actions"));
    EXPECT_EQ(report.tally().dropped, 2u);
}

// The importer knows older files only.
TEST_F(BlendTest, WhatOnlyBlenderCanReadIsRefusedWithout) {
    for (const char *program : {"", "/bin/false"}) {
        ::setenv("KELTRA_BLENDER", program, 1);
        try {
            convertFile(model());
            ADD_FAILURE() << "it is converted";
        } catch (const convert::Refusal &refusal) {
            EXPECT_NE(std::string(refusal.what()).find("only Blender itself can read it"), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace keltra::test
