// SPDX-License-Identifier: Zlib
// Small models that Blender's own exporters wrote, posed by the engine, against where Blender itself puts
// their vertices: neither the importer nor the converter has a part in the reference. references/make.py
// writes both.

#include <gtest/gtest.h>

#include "tests/tools/convert/support/blender_poses.h"
#include "tests/tools/convert/support/convert_fixture.h"

namespace keltra::test {
namespace {

constexpr double kBound = 0.001;  // of the model's size
constexpr unsigned kRate = 25;

class PoseReferenceTest : public ConvertTest, public testing::WithParamInterface<const char *> {};

TEST_P(PoseReferenceTest, VerticesAreWhereBlenderPutsThem) {
    const std::string path = std::string(KELTRA_REFERENCES) + GetParam();
    Made made;
    made.conversion = convertFile(path, [](convert::Options &options) { options.fps = kRate; });
    made.loaded = std::make_unique<Loaded>(made.conversion);
    ASSERT_NE(made.root(), nullptr);
    ASSERT_EQ(made.report().clips.size(), 1u);
    std::vector<BlenderClip> clips = readBlenderPoses(path + ".json");
    ASSERT_EQ(clips.size(), 1u);
    ASSERT_EQ(clips[0].frames.size(), 6u);
    clips[0].file = made.report().clips[0].file;
    const double gap = compareWithBlender(clips[0], made.root());
    RecordProperty("share_of_size", std::to_string(gap));
    EXPECT_LT(gap, kBound);
}

INSTANTIATE_TEST_SUITE_P(, PoseReferenceTest,
                         testing::Values("chain.glb", "turned_chain.glb", "moving_chain.glb",
                                         "reaching_chain.glb", "scaled_parts.glb", "parts.glb", "chain.fbx",
                                         "turned_chain.fbx", "parts.fbx", "chain.dae"),
                         [](const auto &info) {
                             std::string name = info.param;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

}  // namespace
}  // namespace keltra::test
