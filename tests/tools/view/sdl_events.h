// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_VIEW_SDL_EVENTS_H
#define KELTRA_TESTS_TOOLS_VIEW_SDL_EVENTS_H

// A test fixture's base that puts keys and pen into SDL's queue.

#include <SDL.h>
#include <gtest/gtest.h>

namespace keltra::test {

class SdlEvents : public ::testing::Test {
   protected:
    static void push(SDL_Event event) { ASSERT_EQ(SDL_PushEvent(&event), 0); }
    static void key(SDLKey sym, bool down = true) {
        SDL_Event event = {};
        event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
        event.key.keysym.sym = sym;
        push(event);
    }
    static void move(int x, int y) {
        SDL_Event event = {};
        event.type = SDL_MOUSEMOTION;
        event.motion.x = static_cast<Uint16>(x);
        event.motion.y = static_cast<Uint16>(y);
        push(event);
    }
    static void button(int x, int y, bool down, Uint8 which = SDL_BUTTON_LEFT) {
        SDL_Event event = {};
        event.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
        event.button.button = which;
        event.button.x = static_cast<Uint16>(x);
        event.button.y = static_cast<Uint16>(y);
        push(event);
    }
};

}  // namespace keltra::test

#endif
