// SPDX-License-Identifier: Zlib
// What the add-on has exported, posed by the engine, against what Blender evaluates. The files are made by
// addon_test.py, which runs this program: KELTRA_EXPORTED is their folder, KELTRA_SCENE the scene's name in
// it.

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/scene/scene_parts.h"
#include "tests/tools/convert/support/blender_poses.h"

namespace keltra::test {
namespace {

constexpr double kBound = 0.001;  // of the model's size
constexpr std::size_t kFrames = 10;

class BlenderPosesTest : public SceneTest {};

TEST_F(BlenderPosesTest, EveryVertexIsWhereBlenderPutsIt) {
    const char *folder = std::getenv("KELTRA_EXPORTED"), *name = std::getenv("KELTRA_SCENE");
    ASSERT_TRUE(folder && name);
    const std::string prefix = std::string(folder) + "/";
    KELTRA::setKTEPath(prefix.c_str());
    KTANIM::setKTAPath(prefix.c_str());
    KTTEXTURE::setPath(prefix.c_str());
    KTNODE *root = KELTRA::load((std::string(name) + ".kte").c_str());
    ASSERT_NE(root, nullptr);
    for (const BlenderClip &clip : readBlenderPoses(prefix + "reference.json")) {
        ASSERT_EQ(clip.frames.size(), clip.file.empty() ? 1u : kFrames);
        const double gap = compareWithBlender(clip, root);
        std::printf("%s: %zu frames, %zu vertices, at most %.4f %% of the size away\n",
                    clip.file.empty() ? name : clip.file.c_str(), clip.frames.size(), clip.vertices[0].size(),
                    100.0 * gap);
        EXPECT_LT(gap, kBound) << clip.file;
    }
    KTANIM::cleanUp();
    KTANIM::setKTAPath(nullptr);
}

}  // namespace
}  // namespace keltra::test
