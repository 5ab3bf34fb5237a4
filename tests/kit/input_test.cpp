// SPDX-License-Identifier: Zlib
#include <keltra/kit/input.h>

#include <SDL.h>

#include <cstring>

#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

class KitInputTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        button.setPosition(10, 10);
        button.setSizes(60, 20);
        field.setPosition(10, 50);
        field.setSizes(100, 20);
        field.setFont(nullptr);
        field.clear();
        for (KTNODE *node : {static_cast<KTNODE *>(&button), static_cast<KTNODE *>(&field)})
            node->link(&panel);
        draw();
        SDL_Event ofTheWindow;
        while (SDL_PollEvent(&ofTheWindow)) {
        }
    }
    void draw() {
        frame2D([this] { panel.pass(); });
    }
    unsigned int dispatch() {
        draw();
        return input.dispatch();
    }
    // A press and a release, each in a frame of its own.
    unsigned int tap(int x, int y, float secondsBefore = 1.0f) {
        input.begin(secondsBefore);
        input.putPen(x, y, true);
        input.putPen(x, y, false);
        dispatch();
        input.begin(0.02f);
        return dispatch();
    }
    static void push(Uint8 type, int a, int b) {
        SDL_Event event = {};
        event.type = type;
        if (type == SDL_KEYDOWN || type == SDL_KEYUP) {
            event.key.keysym.sym = static_cast<SDLKey>(a);
            event.key.keysym.unicode = static_cast<Uint16>(b);
        } else if (type == SDL_MOUSEMOTION) {
            event.motion.x = static_cast<Uint16>(a);
            event.motion.y = static_cast<Uint16>(b);
        } else {
            event.button.button = SDL_BUTTON_LEFT;
            event.button.x = static_cast<Uint16>(a);
            event.button.y = static_cast<Uint16>(b);
        }
        ASSERT_EQ(SDL_PushEvent(&event), 0);
    }

    KTINPUT input;
    KTNODE panel;
    KTBUTTON button;
    KTTEXTFIELD field;
};

// --- whose the pen is

TEST_F(KitInputTest, APressOnAWidgetIsNotTheScenes) {
    EXPECT_EQ(tap(20, 20), button.getId());
    EXPECT_FALSE(input.hasTapped());
    EXPECT_FALSE(input.hasDropped());
    EXPECT_EQ(tap(150, 200), 0u);
    EXPECT_TRUE(input.hasTapped());
    EXPECT_TRUE(input.hasDropped());
}

TEST_F(KitInputTest, TheScenesPenStaysItsOwnOverWidgets) {
    input.putPen(150, 200, true);
    dispatch();
    EXPECT_TRUE(input.isOnScene());
    EXPECT_TRUE(input.hasTouched());
    input.putPen(20, 20, true);
    EXPECT_EQ(dispatch(), 0u);
    EXPECT_TRUE(input.isOnScene());
    EXPECT_TRUE(input.isDragging());
    input.putPen(20, 20, false);
    EXPECT_EQ(dispatch(), 0u) << "the button was not pressed";
    EXPECT_TRUE(input.hasDropped());
    EXPECT_FALSE(input.hasTapped()) << "it was a drag";
}

TEST_F(KitInputTest, ASwitchKeepsItsPressFromTheScene) {
    button.setEventType(KT_BUTTON_SWITCH);
    input.putPen(20, 20, true);
    EXPECT_EQ(dispatch(), button.getId());
    for (int i = 0; i < 3; ++i) {
        dispatch();
        EXPECT_FALSE(input.isOnScene());
    }
    input.putPen(20, 20, false);
    dispatch();
    EXPECT_FALSE(input.hasTapped());
}

TEST_F(KitInputTest, ADragTellsItsMovementFrameByFrame) {
    input.putPen(150, 200, true);
    dispatch();
    input.putPen(154, 203, true);
    dispatch();
    EXPECT_FALSE(input.isDragging()) << "a hand is not quite still";
    input.putPen(160, 200, true);
    dispatch();
    EXPECT_TRUE(input.isDragging());
    EXPECT_EQ(input.getDrag(), R3XVECTOR2D(10, 0)) << "from where it was put down";
    input.putPen(160, 190, true);
    dispatch();
    EXPECT_EQ(input.getDrag(), R3XVECTOR2D(0, -10));
    dispatch();
    EXPECT_EQ(input.getDrag(), R3XVECTOR2D(0, 0));
    EXPECT_EQ(input.getStart(), R3XVECTOR2D(150, 200));
}

TEST_F(KitInputTest, TwoTapsAtOnePlaceAreADoubleTap) {
    tap(150, 200);
    EXPECT_FALSE(input.hasDoubleTapped());
    tap(153, 198, 0.2f);
    EXPECT_TRUE(input.hasDoubleTapped());
    EXPECT_TRUE(input.hasTapped());
    tap(150, 200, 0.2f);
    EXPECT_FALSE(input.hasDoubleTapped()) << "the third is a first one";
    tap(150, 200, 0.6f);
    EXPECT_FALSE(input.hasDoubleTapped()) << "too late";
    tap(190, 200, 0.2f);
    EXPECT_FALSE(input.hasDoubleTapped()) << "elsewhere";
}

// --- the queue

TEST_F(KitInputTest, PressAndReleaseOfOneFrameAreHandedOverInTwo) {
    push(SDL_MOUSEBUTTONDOWN, 20, 20);
    push(SDL_MOUSEMOTION, 30, 22);
    push(SDL_MOUSEMOTION, 40, 24);
    push(SDL_MOUSEBUTTONUP, 150, 200);
    input.update(0.0f);
    dispatch();
    EXPECT_TRUE(button.isClicked());
    EXPECT_EQ(input.getPenX(), 20) << "a press stays where it was made";
    dispatch();
    EXPECT_EQ(input.getPenX(), 40) << "of movements the last counts";
    EXPECT_EQ(dispatch(), 0u) << "released beside it";
    EXPECT_FALSE(input.isPenDown());
}

TEST_F(KitInputTest, OfTooManyStatesTheLastCounts) {
    for (int i = 0; i < 100; ++i) input.putPen(100 + i, 200, i % 2 == 0);
    for (unsigned int i = 0; i < KTINPUT::maxWaiting; ++i) dispatch();
    EXPECT_EQ(input.getPenX(), 199);
    EXPECT_FALSE(input.isPenDown());
    dispatch();
    EXPECT_EQ(input.getPenX(), 199);
}

TEST_F(KitInputTest, OtherButtonsAreNoPen) {
    SDL_Event event = {};
    event.type = SDL_MOUSEBUTTONDOWN;
    event.button.button = SDL_BUTTON_WHEELUP;
    input.handle(&event);
    input.handle(nullptr);
    dispatch();
    EXPECT_FALSE(input.isPenDown());
}

// --- characters and focus

TEST_F(KitInputTest, CharactersReachTheFieldOneAFrame) {
    KTFONT font;
    field.setFont(&font);
    tap(20, 55);
    EXPECT_EQ(input.getFocus(), &field);
    push(SDL_KEYDOWN, SDLK_h, 'h');
    push(SDL_KEYDOWN, SDLK_i, 'i');
    input.update(0.0f);
    dispatch();
    EXPECT_STREQ(field.getCaption(), "h");
    dispatch();
    EXPECT_STREQ(field.getCaption(), "hi");
    dispatch();
    EXPECT_STREQ(field.getCaption(), "hi");
    tap(20, 20);
    dispatch();
    EXPECT_EQ(input.getFocus(), nullptr);
}

TEST_F(KitInputTest, WhatIsTypedStartsNoAction) {
    KTFONT font;
    field.setFont(&font);
    ASSERT_EQ(input.addAction("jump", SDLK_j), 8);
    tap(20, 55);
    dispatch();
    input.putKey(SDLK_j, 'j', true);
    EXPECT_FALSE(input.isHeld(8));
    input.putKey(SDLK_UP, 0, true);
    EXPECT_TRUE(input.isHeld(KT_ACTION_UP));
}

// --- actions

TEST_F(KitInputTest, AnActionIsPressedHeldAndReleased) {
    input.begin(0.02f);
    input.putKey(SDLK_LEFT, 0, true);
    EXPECT_TRUE(input.wasPressed(KT_ACTION_LEFT));
    EXPECT_TRUE(input.isHeld(KT_ACTION_LEFT));
    input.begin(0.02f);
    EXPECT_FALSE(input.wasPressed(KT_ACTION_LEFT));
    EXPECT_TRUE(input.isHeld(KT_ACTION_LEFT));
    input.putKey(SDLK_LEFT, 0, false);
    EXPECT_TRUE(input.wasReleased(KT_ACTION_LEFT));
    EXPECT_FALSE(input.isHeld(KT_ACTION_LEFT));
    EXPECT_FALSE(input.isHeld(99));
}

TEST_F(KitInputTest, TwoKeysOfAnActionAreOne) {
    EXPECT_TRUE(input.bind(KT_ACTION_UP, 1, SDLK_w));
    input.putKey(SDLK_w, 'w', true);
    input.begin(0.02f);
    input.putKey(SDLK_UP, 0, true);
    EXPECT_FALSE(input.wasPressed(KT_ACTION_UP)) << "it was held already";
    input.putKey(SDLK_w, 'w', false);
    EXPECT_FALSE(input.wasReleased(KT_ACTION_UP));
    EXPECT_TRUE(input.isHeld(KT_ACTION_UP));
    EXPECT_FALSE(input.bind(KT_ACTION_UP, 2, SDLK_w));
    EXPECT_FALSE(input.bind(20, 0, SDLK_w));
}

TEST_F(KitInputTest, NamesOfActionsAreNewOnes) {
    KTFAULTS::clear();
    EXPECT_EQ(input.addAction("up", SDLK_a), -1);
    EXPECT_EQ(input.addAction(nullptr, SDLK_a), -1);
    EXPECT_EQ(input.addAction("", SDLK_a), -1);
    EXPECT_EQ(input.addAction("a name of 24 characters!", SDLK_a), -1);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 4u);
    for (unsigned int i = input.getNumberOfActions(); i < KTINPUT::maxActions; ++i)
        EXPECT_EQ(input.addAction(std::to_string(i).c_str(), 0), static_cast<int>(i));
    EXPECT_EQ(input.addAction("one more", SDLK_a), -1);
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FULL);
    EXPECT_STREQ(input.getActionName(KT_ACTION_EXIT), "exit");
    EXPECT_EQ(input.getActionName(KTINPUT::maxActions), nullptr);
}

TEST_F(KitInputTest, BindingsComeFromTheSettingsFile) {
    TempFolder folder;
    folder.write("user.cfg",
                 "KELTRA_windowX = 240\n"
                 "action_up = \"w | up\"   # a letter\n"
                 "action_third = \"left ctrl\"\naction_second = \"\"\n"
                 "action_fly = \"f\"\naction_left = \"no such key|a\"\naction_right = d\n");
    KTFAULTS::clear();
    EXPECT_TRUE(input.loadBindings(folder.path("user.cfg").c_str()));
    EXPECT_EQ(input.getKey(KT_ACTION_UP, 0), SDLK_w);
    EXPECT_EQ(input.getKey(KT_ACTION_UP, 1), SDLK_UP);
    EXPECT_EQ(input.getKey(KT_ACTION_THIRD, 0), SDLK_LCTRL);
    EXPECT_EQ(input.getKey(KT_ACTION_SECOND, 0), 0);
    EXPECT_EQ(input.getKey(KT_ACTION_LEFT, 0), SDLK_a);
    EXPECT_EQ(input.getKey(KT_ACTION_RIGHT, 0), SDLK_RIGHT) << "the line cannot be read";
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 3u);
    EXPECT_EQ(KTFAULTS::getLast()->severity, KT_FAULT_WARNING);
    EXPECT_EQ(KTFAULTS::getLast()->line, 7u);
    EXPECT_FALSE(input.loadBindings(folder.path("none.cfg").c_str()));
    EXPECT_FALSE(input.loadBindings(nullptr));
}

TEST_F(KitInputTest, ExitAndTheClosedWindowQuit) {
    EXPECT_FALSE(input.hasQuit());
    push(SDL_KEYDOWN, SDLK_ESCAPE, 27);
    input.update(0.02f);
    EXPECT_TRUE(input.hasQuit());
    KTINPUT other;
    other.bind(KT_ACTION_EXIT, 0, 0);
    other.putKey(SDLK_ESCAPE, 27, true);
    EXPECT_FALSE(other.hasQuit());
    push(SDL_QUIT, 0, 0);
    other.update(0.02f);
    EXPECT_TRUE(other.hasQuit());
}

TEST_F(KitInputTest, AFrameAllocatesNothing) {
    tap(20, 55);
    Allocations::startCounting();
    for (int i = 0; i < 10; ++i) {
        input.begin(0.02f);
        input.putPen(100 + i, 200, i % 2 == 0);
        input.putKey(SDLK_a, 'a', true);
        input.dispatch();
    }
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

class KitInputLandscapeTest : public KitInputTest {
   protected:
    void prepare(KTSETTINGS &values) override { values.setLandscape(true); }
};

TEST_F(KitInputLandscapeTest, ThePenIsTurnedWithThePicture) {
    // Of the window of 240 x 320 the 2D pass's (20, 20) is the pixel (20, 300).
    EXPECT_EQ(tap(20, 300), button.getId());
    EXPECT_EQ(input.getPoint(), R3XVECTOR2D(20, 20));
    input.putPen(150, 200, true);
    dispatch();
    input.putPen(150, 180, true);
    dispatch();
    EXPECT_EQ(input.getDrag(), R3XVECTOR2D(20, 0)) << "up in the window is to the right";
}

}  // namespace
}  // namespace keltra::test
