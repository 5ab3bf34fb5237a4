// SPDX-License-Identifier: Zlib
#include <malloc.h>

#include "tests/support/allocations.h"
#include "tests/tools/view/viewer_fixture.h"
#include "tools/formats/kte_writer.h"

namespace fs = std::filesystem;
using keltra::support::Shot;
using keltra::test::Allocations;
using keltra::test::ViewerTest;

namespace {

constexpr double kHalfSecond = 0.5;

struct Counts {
    unsigned nodes = KTNODE::getNumberOfNodes(), materials = KTMATERIAL::getNumberOfMaterials(),
             textures = KTTEXTURE::getNumberOfTextures(), shaders = KTSHADER::getNumberOfShaders(),
             animations = KTANIM::getNumberOfAnims(), fonts = KTFONT::getNumberOfFonts();
    unsigned videoMemory = KELTRA::getUsedVideoMemory();
    unsigned freshId = freshIdentifier();

    // The lowest free identifier is given out first: a higher one means that one was leaked.
    static unsigned freshIdentifier() {
        const unsigned id = vnfNewId();
        releaseId(id);
        return id;
    }
};

void expectSame(const Counts &now, const Counts &before) {
    EXPECT_EQ(now.nodes, before.nodes);
    EXPECT_EQ(now.materials, before.materials);
    EXPECT_EQ(now.textures, before.textures);
    EXPECT_EQ(now.shaders, before.shaders);
    EXPECT_EQ(now.animations, before.animations);
    EXPECT_EQ(now.fonts, before.fonts);
    EXPECT_EQ(now.videoMemory, before.videoMemory);
    EXPECT_EQ(now.freshId, before.freshId);
}

class Reload : public ViewerTest {
   protected:
    void replace(const std::string &target, const std::string &by) {
        fs::copy_file(sample(by), target, fs::copy_options::overwrite_existing);
        // Copies made within one tick of the clock would look alike.
        fs::last_write_time(target, fs::file_time_type::clock::now() + std::chrono::seconds(++tick));
    }
    // Two polls: one sees the change, one sees that it stays.
    void poll() { frames(2, kHalfSecond); }

    int tick = 0;
};

}  // namespace

TEST_F(Reload, TakesOverAnotherStateOfTheFile) {
    const std::string file =
        copied({"figure.kte", "figure_figure_d.tga", "meadow_meadow_d.tga", "meadow_daysky_d.tga"});
    start(file);
    frames(2);
    const Shot before = shot();
    const std::size_t nodes = viewer->shown().allNodes().size();
    replace(file, "meadow.kte");
    poll();
    EXPECT_NE(viewer->shown().allNodes().size(), nodes);
    EXPECT_EQ(viewer->shownNotice(), "");
    EXPECT_GT(differing(before, shot("reloaded"), 62, 215), 1000);
    replace(file, "figure.kte");
    poll();
    EXPECT_EQ(viewer->shown().allNodes().size(), nodes);
    // Lights and sky of the scene in between are gone.
    EXPECT_EQ(KELTRA::getSkybox(), nullptr);
    frames(1);
    EXPECT_EQ(differing(before, shot(), 62, 215), 0);
}

TEST_F(Reload, ReadsTexturesAndMaterialsAnew) {
    const std::string file = copied({"figure.kte", "figure_figure_d.tga"});
    start(file);
    frames(2);
    const Shot before = shot();
    fs::copy_file(sample("scene_paving_d.tga"), folder.path("figure_figure_d.tga"),
                  fs::copy_options::overwrite_existing);
    replace(file, "figure.kte");
    poll();
    frames(1);
    EXPECT_GT(differing(before, shot("other_texture"), 62, 215), 1000);
}

TEST_F(Reload, AHundredTimesLeavesNothingBehind) {
    const std::string file = copied({"figure.kte", "figure_figure_d.tga"});
    fs::copy_file(sample("figure_walk.kta"), folder.path("figure_walk.kta"));
    start(file);
    std::optional<Counts> before;
    std::size_t heap = 0;
    for (int i = 0; i < 105; ++i) {
        // The first few fill what the driver keeps for later.
        if (i == 5) {
            before.emplace();
            heap = mallinfo2().uordblks;
        }
        replace(file, "figure.kte");
        poll();
        ASSERT_EQ(viewer->shownNotice(), "");
    }
    ASSERT_EQ(viewer->loads(), 106u);
    expectSame(Counts(), *before);
    // A sanitizer has a heap of its own and looks for leaks itself.
    if (Allocations::canFail()) {
        EXPECT_LT(mallinfo2().uordblks, heap + (64u << 10));
    }
}

TEST_F(Reload, OfADamagedFileKeepsTheModelAndSaysSo) {
    const std::string file = copied({"figure.kte", "figure_figure_d.tga"});
    start(file);
    frames(2);
    const Shot before = shot();
    const Counts counts;
    for (int i = 0; i < 10; ++i) {
        folder.write("figure.kte",
                     std::string("KTE file v1.6a") + std::string(static_cast<std::size_t>(i), 'x'));
        testing::internal::CaptureStderr();
        poll();
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_EQ(said.find("keltra-view: " + file + ": "), 0u) << said;
        EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1);
        EXPECT_NE(viewer->shownNotice(), "");
    }
    expectSame(Counts(), counts);
    EXPECT_EQ(differing(before, shot("notice"), 62, 215), 0);
    testing::internal::CaptureStderr();
    poll();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "it is not tried again before it changes";
    replace(file, "figure.kte");
    poll();
    EXPECT_EQ(viewer->shownNotice(), "");
}

TEST_F(Reload, WaitsForAFileThatIsAway) {
    const std::string file = copied({"figure.kte", "figure_figure_d.tga"});
    start(file);
    fs::remove(file);
    poll();
    poll();
    EXPECT_EQ(viewer->shownNotice(), "");
    EXPECT_EQ(viewer->loads(), 1u);
    replace(file, "figure.kte");
    poll();
    EXPECT_EQ(viewer->loads(), 2u);
}

TEST_F(Reload, KeepsTheViewAndTheClip) {
    const std::string file = copied({"figure.kte", "figure_figure_d.tga"});
    fs::copy_file(sample("figure_walk.kta"), folder.path("figure_walk.kta"));
    fs::copy_file(sample("figure_wave.kta"), folder.path("figure_wave.kta"));
    start(file);
    key(SDLK_n);
    key(SDLK_LEFT);
    frames(5);
    key(SDLK_LEFT, false);
    frames(1);
    const float yaw = viewer->view().yaw();
    EXPECT_EQ(viewer->chosenClip(), 1u);
    fs::copy_file(sample("figure_walk.kta"), folder.path("figure_another.kta"));
    replace(file, "figure.kte");
    poll();
    EXPECT_EQ(viewer->clipCount(), 3u);
    EXPECT_EQ(viewer->chosenClip(), 2u);
    EXPECT_EQ(viewer->view().yaw(), yaw);
}

TEST_F(Reload, AClipThatIsGoneOrDamagedIsToldOf) {
    const std::string file = copied({"figure.kte", "figure_figure_d.tga"});
    folder.write("figure_walk.kta", std::string_view("no clip"));
    testing::internal::CaptureStderr();
    start(file);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("figure_walk.kta: is not an animation"),
              std::string::npos);
    EXPECT_NE(viewer->shownNotice(), "");
    EXPECT_EQ(viewer->clipClock().frames(), 0u);
    frames(2);
}

TEST_F(Reload, AModelIsConvertedAnew) {
    const std::string file =
        folder.write("shape.obj", std::string_view("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"));
    start(file);
    frames(1);
    EXPECT_EQ(viewer->shownFigures().triangles, 1u);
    folder.write("shape.obj", std::string_view("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nf 1 2 3\nf 1 2 4\n"));
    poll();
    frames(1);
    EXPECT_EQ(viewer->loads(), 2u);
    EXPECT_EQ(viewer->shownFigures().triangles, 2u);
    folder.write("shape.obj", std::string_view("nothing"));
    testing::internal::CaptureStderr();
    poll();
    frames(1);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(viewer->shownFigures().triangles, 2u);
}
