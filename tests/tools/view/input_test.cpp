// SPDX-License-Identifier: Zlib
#include "tools/view/input.h"

#include <cstdlib>
#include <vector>

#include "tests/tools/view/sdl_events.h"

using keltra::view::Action;
using keltra::view::Input;

namespace {

// SDL's queue without a window.
class InputTest : public keltra::test::SdlEvents {
   protected:
    static void SetUpTestSuite() {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError();
        ASSERT_NE(SDL_SetVideoMode(240, 320, 0, 0), nullptr) << SDL_GetError();
    }
    static void TearDownTestSuite() {
        SDL_Quit();
        unsetenv("SDL_VIDEODRIVER");
    }
    void SetUp() override {
        SDL_Event event;
        while (SDL_PollEvent(&event)) continue;
    }

    std::vector<Action> read() {
        input.read();
        return input.actions;
    }

    Input input;
};

using Actions = std::vector<Action>;

TEST_F(InputTest, EveryKeyHasItsAction) {
    const struct {
        SDLKey key;
        Action action;
    } cases[] = {
        {SDLK_ESCAPE, Action::kQuit},
        {SDLK_SPACE, Action::kPlay},
        {SDLK_n, Action::kNextClip},
        {SDLK_p, Action::kPreviousClip},
        {SDLK_PERIOD, Action::kStepForward},
        {SDLK_COMMA, Action::kStepBack},
        {SDLK_w, Action::kWire},
        {SDLK_b, Action::kBoxes},
        {SDLK_v, Action::kNormals},
        {SDLK_s, Action::kBones},
        {SDLK_l, Action::kLights},
        {SDLK_c, Action::kCulling},
        {SDLK_TAB, Action::kFold},
        {SDLK_i, Action::kOverlay},
        {SDLK_HOME, Action::kResetView},
        {SDLK_r, Action::kResetView},
    };
    for (const auto &[sym, action] : cases) {
        key(sym);
        EXPECT_EQ(read(), Actions{action}) << SDL_GetKeyName(sym);
        key(sym, false);
        EXPECT_EQ(read(), Actions{}) << SDL_GetKeyName(sym) << " released";
    }
}

TEST_F(InputTest, OtherKeysHaveNone) {
    for (SDLKey sym : {SDLK_a, SDLK_RETURN, SDLK_F1, SDLK_LSHIFT, SDLK_1}) key(sym);
    EXPECT_EQ(read(), Actions{});
}

TEST_F(InputTest, ActionsKeepTheirOrderWithinAFrame) {
    key(SDLK_n);
    key(SDLK_w);
    key(SDLK_n);
    EXPECT_EQ(read(), (Actions{Action::kNextClip, Action::kWire, Action::kNextClip}));
    EXPECT_EQ(read(), Actions{}) << "they are of one frame";
}

TEST_F(InputTest, ClosingTheWindowQuits) {
    SDL_Event event = {};
    event.type = SDL_QUIT;
    push(event);
    EXPECT_EQ(read(), Actions{Action::kQuit});
}

TEST_F(InputTest, ArrowsAndZoomKeysActWhileTheyAreHeld) {
    const struct {
        SDLKey key;
        float Input::*value;
        float held;
    } cases[] = {
        {SDLK_LEFT, &Input::right, -1.0f},      {SDLK_RIGHT, &Input::right, 1.0f},
        {SDLK_UP, &Input::down, -1.0f},         {SDLK_DOWN, &Input::down, 1.0f},
        {SDLK_PLUS, &Input::nearer, 1.0f},      {SDLK_EQUALS, &Input::nearer, 1.0f},
        {SDLK_MINUS, &Input::nearer, -1.0f},    {SDLK_KP_PLUS, &Input::nearer, 1.0f},
        {SDLK_KP_MINUS, &Input::nearer, -1.0f},
    };
    for (const auto &[sym, value, held] : cases) {
        key(sym);
        for (int frame = 0; frame < 3; ++frame) {
            EXPECT_EQ(read(), Actions{});
            EXPECT_EQ(input.*value, held) << SDL_GetKeyName(sym);
        }
        key(sym, false);
        input.read();
        EXPECT_EQ(input.*value, 0.0f) << SDL_GetKeyName(sym);
    }
}

TEST_F(InputTest, MotionAddsUpOverAFrame) {
    move(10, 20);
    input.read();
    move(15, 18);
    move(30, 25);
    input.read();
    EXPECT_EQ(input.x, 30);
    EXPECT_EQ(input.y, 25);
    EXPECT_EQ(input.dx, 20);
    EXPECT_EQ(input.dy, 5);
    input.read();
    EXPECT_EQ(input.x, 30);
    EXPECT_EQ(input.dx, 0);
    EXPECT_EQ(input.dy, 0);
}

TEST_F(InputTest, APressMovesThePen) {
    button(100, 50, true);
    input.read();
    EXPECT_EQ(input.x, 100);
    EXPECT_EQ(input.y, 50);
    EXPECT_EQ(input.dx, 100);
    EXPECT_TRUE(input.pressed);
    EXPECT_FALSE(input.zooming);
}

TEST_F(InputTest, AClickTakesTwoFrames) {
    button(5, 6, true);
    button(5, 6, false);
    key(SDLK_w);
    EXPECT_EQ(read(), Actions{});
    EXPECT_TRUE(input.pressed);
    EXPECT_EQ(read(), Actions{});
    EXPECT_FALSE(input.pressed);
    EXPECT_EQ(read(), Actions{Action::kWire}) << "what came behind the click is not lost";
}

TEST_F(InputTest, TheOtherButtonsZoom) {
    for (Uint8 which : {Uint8{SDL_BUTTON_MIDDLE}, Uint8{SDL_BUTTON_RIGHT}}) {
        button(0, 0, true, which);
        input.read();
        EXPECT_TRUE(input.zooming);
        EXPECT_FALSE(input.pressed);
        input.read();
        EXPECT_TRUE(input.zooming) << "until it is released";
        button(0, 0, false, which);
        input.read();
        EXPECT_FALSE(input.zooming);
    }
}

TEST_F(InputTest, TheWheelCountsStepsOfAFrame) {
    for (int i = 0; i < 3; ++i) {
        button(0, 0, true, SDL_BUTTON_WHEELUP);
        button(0, 0, false, SDL_BUTTON_WHEELUP);
    }
    button(0, 0, true, SDL_BUTTON_WHEELDOWN);
    button(0, 0, false, SDL_BUTTON_WHEELDOWN);
    input.read();
    EXPECT_EQ(input.wheel, 2);
    EXPECT_FALSE(input.pressed);
    input.read();
    EXPECT_EQ(input.wheel, 0);
}

TEST_F(InputTest, UnknownButtonsAndEventsDoNothing) {
    button(3, 4, true, 9);
    SDL_Event event = {};
    event.type = SDL_USEREVENT;
    push(event);
    EXPECT_EQ(read(), Actions{});
    EXPECT_FALSE(input.pressed || input.zooming);
    EXPECT_EQ(input.wheel, 0);
}

}  // namespace
