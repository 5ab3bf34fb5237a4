// SPDX-License-Identifier: Zlib
// Keys where there is little to act on, what the figures count, and what ends the viewer.

#include "tests/scene/scene_parts.h"
#include "tests/tools/convert/support/gltf_builder.h"
#include "tests/tools/view/scenes.h"
#include "tests/tools/view/viewer_fixture.h"

using keltra::support::Shot;
using keltra::test::GltfBuilder;
using keltra::test::triangleScene;
using keltra::view::Failure;
namespace formats = keltra::formats;

namespace {

class ViewerKeysTest : public keltra::test::ViewerTest {
   protected:
    std::string write(const formats::Scene &scene, const std::string &name = "scene.kte") {
        return folder.write(name, formats::writeKte(scene, formats::KteVersion::k16a));
    }
    void press(SDLKey sym) {
        key(sym);
        key(sym, false);
        frames(1);
    }
};

/// A box that a clip moves.
void addSwing(GltfBuilder &model, int box, const std::string &name, float way) {
    model.clip(name, {{box, "translation", {0.0f, 1.0f}, {0.0f, 0.0f, 0.0f, way, 0.0f, 0.0f}}});
}

}  // namespace

TEST_F(ViewerKeysTest, KeysOfClipsDoNothingWithoutOne) {
    start(write(triangleScene(1.0f, {0.0f, 0.0f, 0.0f})));
    frames(1);
    const Shot before = shot();
    for (SDLKey sym : {SDLK_n, SDLK_p, SDLK_PERIOD, SDLK_COMMA}) press(sym);
    EXPECT_EQ(viewer->clipCount(), 0u);
    EXPECT_EQ(viewer->clipClock().frames(), 0u);
    EXPECT_EQ(viewer->clipClock().frame(), 0u);
    EXPECT_EQ(viewer->shownNotice(), "");
    EXPECT_EQ(differing(before, shot(), 62, 215), 0);
}

TEST_F(ViewerKeysTest, StepsGoOnAndBackAndPause) {
    start(sample("figure.kte"), {sample("figure_walk.kta")});
    const unsigned count = viewer->clipClock().frames();
    ASSERT_GT(count, 2u);
    press(SDLK_SPACE);
    const unsigned stopped = viewer->clipClock().frame();
    press(SDLK_COMMA);
    EXPECT_EQ(viewer->clipClock().frame(), (stopped + count - 1) % count);
    press(SDLK_PERIOD);
    EXPECT_EQ(viewer->clipClock().frame(), stopped);
    press(SDLK_SPACE);
    EXPECT_TRUE(viewer->clipClock().isPlaying());
    press(SDLK_COMMA);
    EXPECT_FALSE(viewer->clipClock().isPlaying()) << "a step pauses";
}

TEST_F(ViewerKeysTest, ClipsGoRoundInBothDirections) {
    start(sample("figure.kte"));
    ASSERT_EQ(viewer->clipCount(), 2u);
    press(SDLK_p);
    EXPECT_EQ(viewer->chosenClip(), 1u);
    press(SDLK_n);
    EXPECT_EQ(viewer->chosenClip(), 0u);
    press(SDLK_n);
    EXPECT_EQ(viewer->chosenClip(), 1u);
    press(SDLK_p);
    EXPECT_EQ(viewer->chosenClip(), 0u);
}

TEST_F(ViewerKeysTest, TheSameViewComesBackByEitherKey) {
    start(sample("figure.kte"));
    const float yaw = viewer->view().yaw(), pitch = viewer->view().pitch(), away = viewer->view().distance();
    for (SDLKey reset : {SDLK_r, SDLK_HOME}) {
        for (SDLKey held : {SDLK_RIGHT, SDLK_UP, SDLK_PLUS}) key(held);
        frames(8);
        for (SDLKey held : {SDLK_RIGHT, SDLK_UP, SDLK_PLUS}) key(held, false);
        frames(1);
        EXPECT_GT(viewer->view().yaw(), yaw + 10.0f);
        EXPECT_LT(viewer->view().pitch(), pitch - 10.0f);
        EXPECT_LT(viewer->view().distance(), 0.9f * away);
        press(reset);
        EXPECT_EQ(viewer->view().yaw(), yaw);
        EXPECT_EQ(viewer->view().pitch(), pitch);
        EXPECT_EQ(viewer->view().distance(), away);
    }
}

TEST_F(ViewerKeysTest, EverySwitchShowsInThePanel) {
    start(write(triangleScene(1.0f, {0.0f, 0.0f, 0.0f})));
    frames(1);
    const auto on = [this] {
        const keltra::view::Switches &s = viewer->shownSwitches();
        return std::vector<bool>{s.wire, s.boxes, s.normals, s.bones, s.lights, s.culling};
    };
    const std::vector<bool> first = on();
    const SDLKey keys[] = {SDLK_w, SDLK_b, SDLK_v, SDLK_s, SDLK_l, SDLK_c};
    for (std::size_t i = 0; i < std::size(keys); ++i) {
        const Shot before = shot();
        press(keys[i]);
        std::vector<bool> wanted = first;
        wanted[i] = !wanted[i];
        EXPECT_EQ(on(), wanted) << i;
        EXPECT_GT(differing(before, shot(), 280, 310), 0) << i << " has a button";
        press(keys[i]);
        EXPECT_EQ(on(), first) << i;
    }
}

TEST_F(ViewerKeysTest, SkinsBeyondThoseOfAFrameAreNotCounted) {
    formats::Scene scene;
    scene.root.name = "root";
    for (int i = 0; i < 18; ++i) {
        const std::string bone = "bone" + std::to_string(i);
        formats::Node body = keltra::test::plainNode("body" + std::to_string(i));
        body.children = {keltra::test::skinNode("skin", {bone}, 4), keltra::test::boneNode(bone)};
        scene.root.children.push_back(body);
    }
    start(write(scene));
    frames(2);
    // Bones are meshes as well, without triangles.
    EXPECT_EQ(viewer->shownFigures().drawn, 18u + KTMESH::maxSkins);
    EXPECT_EQ(viewer->shownFigures().triangles, 2u * KTMESH::maxSkins);
    EXPECT_EQ(viewer->shownFigures().nodes, 1u + 3u * 18u);
}

TEST_F(ViewerKeysTest, AnErrorOfTheGlEndsIt) {
    const std::string file = write(triangleScene(1.0f, {0.0f, 0.0f, 0.0f}));
    start(file);
    frames(1);
    try {
        viewer->frame(kStep, [] { glEnable(GL_TEXTURE_MATRIX); });
        ADD_FAILURE() << "the frame was taken for good";
    } catch (const Failure &fault) {
        EXPECT_EQ(fault.what(), file + ": the GL reports error 1280");
    }
    frames(1);
}

TEST_F(ViewerKeysTest, ClosingTheWindowEnds) {
    start(write(triangleScene(1.0f, {0.0f, 0.0f, 0.0f})));
    frames(1);
    SDL_Event event = {};
    event.type = SDL_QUIT;
    push(event);
    bool drawn = false;
    EXPECT_FALSE(viewer->frame(kStep, [&drawn] { drawn = true; }));
    EXPECT_FALSE(drawn);
}

TEST_F(ViewerKeysTest, TheClipsOfAModelArePlayed) {
    GltfBuilder model;
    const int box = model.node({{"name", "box"}, {"mesh", model.mesh(keltra::test::boxMesh())}});
    addSwing(model, box, "swing", 6.0f);
    addSwing(model, box, "other", -6.0f);
    start(folder.write("model.gltf", std::string_view(model.text())));
    ASSERT_EQ(viewer->clipCount(), 2u);
    EXPECT_EQ(viewer->clipClock().frames(), 26u);
    const Shot first = shot();
    frames(10);
    EXPECT_EQ(viewer->clipClock().frame(), 10u);
    const Shot later = shot("model_clip");
    EXPECT_GT(differing(first, later, 62, 215), 300);
    press(SDLK_n);
    frames(10);
    EXPECT_GT(differing(later, shot(), 62, 215), 300);
}
