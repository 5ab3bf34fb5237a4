// SPDX-License-Identifier: Zlib
#include "tools/view/viewer.h"

#include "tests/tools/view/viewer_fixture.h"

using keltra::support::Shot;
using keltra::test::ViewerTest;
using keltra::view::Failure;

namespace {

// Where the panel's widgets are on the screen.
constexpr int kPlayX = 205, kPlayY = 250, kNextX = 161, kNextY = 250, kTitleY = 226;
constexpr int kModelTop = 62, kModelBottom = 215;

}  // namespace

TEST_F(ViewerTest, ShowsAFigureThatWalks) {
    start(sample("figure.kte"));  // beside it are its clips, walk and wave
    EXPECT_EQ(viewer->clipCount(), 2u);
    const Shot first = shot("figure");
    frames(6);
    EXPECT_EQ(viewer->clipClock().frame(), 6u);
    EXPECT_GT(differing(first, shot(), kModelTop, kModelBottom), 300);
}

TEST_F(ViewerTest, EveryModelStandsBeforeTheBackdrop) {
    for (const char *name : {"figure.kte", "meadow.kte", "garden.kte"}) {
        start(sample(name));
        frames(1);
        const Shot with = shot(std::string("whole_") + name);
        ASSERT_NE(viewer->shown().scene(), nullptr);
        for (KTNODE *node : viewer->shown().allNodes())
            if (node->getType() == KT_MESH) static_cast<KTMESH *>(node)->setDisplayStatus(false);
        EXPECT_GT(differing(with, shot(), kModelTop, kModelBottom), 1500) << name;
        viewer.reset();
    }
}

TEST_F(ViewerTest, KeysSwitchWhatIsShown) {
    start(sample("figure.kte"), {sample("figure_walk.kta")});
    key(SDLK_SPACE);
    frames(1);
    Shot before = shot();
    const struct {
        SDLKey key;
        const char *name;
        int atLeast;
    } kCases[] = {
        {SDLK_w, "wire", 1000}, {SDLK_b, "boxes", 200}, {SDLK_v, "normals", 500}, {SDLK_s, "bones", 100}};
    for (const auto &item : kCases) {
        key(item.key);
        EXPECT_GT(differing(before, shot(item.name), kModelTop, kModelBottom), item.atLeast) << item.name;
        key(item.key);
        frames(1);
        EXPECT_EQ(differing(before, shot(), kModelTop, kModelBottom), 0)
            << item.name << " left something behind";
    }
}

TEST_F(ViewerTest, LandscapesAreSeenFromWithin) {
    for (const char *name : {"scene.kte", "garden.kte", "meadow.kte"}) {
        start(sample(name));
        frames(1);
        shot(std::string("within_") + name);
        EXPECT_NE(KELTRA::getSkybox(), nullptr) << name;
        EXPECT_LT(viewer->view().distance(), viewer->shown().skyRadius()) << name;
        viewer.reset();
        EXPECT_EQ(KELTRA::getSkybox(), nullptr);
    }
}

TEST_F(ViewerTest, ThePanelFoldsByKeyAndByClick) {
    start(sample("figure.kte"), {sample("figure_walk.kta")});
    key(SDLK_SPACE);
    frames(1);
    const Shot open = shot();
    key(SDLK_TAB);
    frames(2);
    EXPECT_TRUE(viewer->shownPanel().isFolded());
    EXPECT_GT(differing(open, shot("folded"), 216, 300), 5000);
    click(60, 311);
    EXPECT_FALSE(viewer->shownPanel().isFolded());
    frames(1);
    EXPECT_EQ(differing(open, shot(), kModelTop, 320), 0);
    click(60, kTitleY);
    EXPECT_TRUE(viewer->shownPanel().isFolded());
    key(SDLK_i);
    frames(1);
    shot("bare");
    EXPECT_FALSE(viewer->shownPanel().isOverlayShown());
}

TEST_F(ViewerTest, TheTitleBarStaysWhenItIsDragged) {
    start(sample("garden.kte"));
    frames(1);
    const Shot before = shot();
    button(60, kTitleY, true);
    frames(1);
    move(90, 150);
    frames(2);
    button(90, 150, false);
    frames(2);
    EXPECT_EQ(differing(before, shot(), kModelTop, 320), 0) << "neither the panel nor the model moved";
}

TEST_F(ViewerTest, ADragBesideThePanelTurns) {
    start(sample("figure.kte"));
    const float yaw = viewer->view().yaw(), pitch = viewer->view().pitch();
    frames(1);
    button(100, 120, true);
    frames(1);
    move(150, 130);
    frames(1);
    EXPECT_NEAR(viewer->view().yaw(), yaw + 30.0f, 0.5f);
    EXPECT_NEAR(viewer->view().pitch(), pitch + 6.0f, 0.5f);
    move(150, 250);  // over the panel: the model keeps the pen
    frames(1);
    EXPECT_NEAR(viewer->view().pitch(), pitch + 78.0f - 2.0f, 5.0f);
    button(150, 250, false);
    frames(1);
    move(10, 10);
    const float after = viewer->view().yaw();
    frames(1);
    EXPECT_EQ(viewer->view().yaw(), after);
}

TEST_F(ViewerTest, WheelSecondButtonAndKeysZoom) {
    start(sample("figure.kte"));
    const float fit = viewer->view().distance();
    button(100, 100, true, SDL_BUTTON_WHEELUP);
    button(100, 100, false, SDL_BUTTON_WHEELUP);
    frames(1);
    EXPECT_LT(viewer->view().distance(), 0.95f * fit);
    button(100, 100, true, SDL_BUTTON_WHEELDOWN);
    frames(1);
    EXPECT_NEAR(viewer->view().distance(), fit, 0.01f * fit);
    button(100, 100, true, SDL_BUTTON_RIGHT);
    frames(1);
    move(100, 160);
    frames(1);
    EXPECT_LT(viewer->view().distance(), 0.7f * fit);
    button(100, 160, false, SDL_BUTTON_RIGHT);
    key(SDLK_HOME);
    frames(2);
    EXPECT_NEAR(viewer->view().distance(), fit, 0.01f * fit);
    key(SDLK_MINUS);
    frames(10);
    key(SDLK_MINUS, false);
    EXPECT_GT(viewer->view().distance(), 1.2f * fit);
}

TEST_F(ViewerTest, TheStripAtTheRightZooms) {
    start(sample("figure.kte"));
    const float fit = viewer->view().distance();
    // The cursor stands where the zoom is.
    const int y = 74 + static_cast<int>(118.0f * viewer->view().zoomShare());
    frames(2);
    button(231, y, true);
    frames(2);
    move(231, 90);
    frames(2);
    button(231, 90, false);
    frames(2);
    EXPECT_LT(viewer->view().distance(), 0.5f * fit);
}

TEST_F(ViewerTest, ThePanelPlaysPausesAndChooses) {
    start(sample("figure.kte"));
    click(kPlayX, kPlayY);
    EXPECT_FALSE(viewer->clipClock().isPlaying());
    const unsigned frame = viewer->clipClock().frame();
    frames(3);
    EXPECT_EQ(viewer->clipClock().frame(), frame);
    click(kNextX, kNextY);
    EXPECT_EQ(viewer->chosenClip(), 1u);
    click(kNextX, kNextY);
    EXPECT_EQ(viewer->chosenClip(), 0u);
    key(SDLK_p);
    frames(1);
    EXPECT_EQ(viewer->chosenClip(), 1u);
    click(40, 290);
    EXPECT_TRUE(viewer->shownSwitches().wire);
}

TEST_F(ViewerTest, TheSliderScrubsThroughTheClip) {
    start(sample("figure.kte"), {sample("figure_walk.kta")});
    key(SDLK_SPACE);
    frames(2);
    button(14, 271, true);
    frames(2);
    move(14 + 75, 271);
    frames(2);
    const unsigned middle = viewer->clipClock().frame();
    EXPECT_NEAR(static_cast<double>(middle), 11.5, 1.5);
    button(14 + 75, 271, false);
    frames(3);
    EXPECT_EQ(viewer->clipClock().frame(), middle);
    EXPECT_FALSE(viewer->clipClock().isPlaying());
    key(SDLK_PERIOD);
    frames(1);
    EXPECT_EQ(viewer->clipClock().frame(), middle + 1);
    shot("scrubbed");
}

TEST_F(ViewerTest, CountsWhatItDraws) {
    start(sample("figure.kte"));
    frames(2);
    EXPECT_EQ(viewer->shownFigures().nodes, viewer->shown().allNodes().size());
    EXPECT_EQ(viewer->shownFigures().drawn, 1u);
    EXPECT_EQ(viewer->shownFigures().triangles, 2192u);
    EXPECT_GT(viewer->shownFigures().textureBytes, 65536u);
    EXPECT_EQ(viewer->shownFigures().textureBudget, 8388608u);
}

TEST_F(ViewerTest, PortraitsAreAllDifferentAndWithoutAPanel) {
    start(sample("figure.kte"), {sample("figure_walk.kta")});
    std::vector<Shot> shots;
    for (int i = 0; i < 4; ++i)
        viewer->portrait(90.0f * static_cast<float>(i),
                         [&] { shots.push_back(keltra::support::takeShot()); });
    EXPECT_EQ(viewer->clipClock().frame(), 12u);
    for (std::size_t i = 0; i < shots.size(); ++i) {
        keep(shots[i], "portrait" + std::to_string(i));
        for (std::size_t j = 0; j < i; ++j) EXPECT_GT(differing(shots[i], shots[j]), 2000);
    }
    EXPECT_LT(differing(shots[0], shots[2], 305, 320), 200) << "the backdrop alone is there";
}

TEST_F(ViewerTest, EscapeEnds) {
    start(sample("figure.kte"));
    frames(1);
    key(SDLK_ESCAPE);
    EXPECT_FALSE(viewer->frame(kStep));
}

TEST_F(ViewerTest, ADamagedPanelIsAFailure) {
    keltra::view::ViewerSettings settings;
    settings.file = sample("figure.kte");
    settings.data = KELTRA_VIEW_DATA;
    for (const char *text : {"no xml", "<root><window><name value=\"panel\"/></window></root>", ""}) {
        settings.panel = folder.write("panel.xml", std::string_view(text));
        EXPECT_THROW(keltra::view::Viewer{settings}, Failure) << text;
        EXPECT_FALSE(KELTRA::isActive());
    }
    settings.panel = settings.data + "panel.xml";
    settings.data = folder.prefix();
    EXPECT_THROW(keltra::view::Viewer{settings}, Failure) << "without a font";
}
