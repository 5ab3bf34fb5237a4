// SPDX-License-Identifier: Zlib
#include "tools/view/input.h"

#include <SDL.h>

namespace keltra::view {
namespace {

struct KeyAction {
    SDLKey key;
    Action action;
};
constexpr KeyAction kKeys[] = {
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

Action actionOf(SDLKey key) {
    for (const KeyAction &entry : kKeys)
        if (entry.key == key) return entry.action;
    return Action::kNone;
}

// Keys that act while they are held.
void readHeld(Input &input, SDLKey key, bool down) {
    const float held = down ? 1.0f : 0.0f;
    switch (key) {
        case SDLK_LEFT:
            input.right = -held;
            break;
        case SDLK_RIGHT:
            input.right = held;
            break;
        case SDLK_UP:
            input.down = -held;
            break;
        case SDLK_DOWN:
            input.down = held;
            break;
        case SDLK_PLUS:
        case SDLK_EQUALS:
        case SDLK_KP_PLUS:
            input.nearer = held;
            break;
        case SDLK_MINUS:
        case SDLK_KP_MINUS:
            input.nearer = -held;
            break;
        default:
            break;
    }
}

// True for a change after which the frame reads no more events.
bool readButton(Input &input, const SDL_MouseButtonEvent &event) {
    const bool down = event.type == SDL_MOUSEBUTTONDOWN;
    switch (event.button) {
        case SDL_BUTTON_LEFT:
            input.pressed = down;
            return true;
        case SDL_BUTTON_MIDDLE:
        case SDL_BUTTON_RIGHT:
            input.zooming = down;
            return true;
        case SDL_BUTTON_WHEELUP:
            input.wheel += down;
            return false;
        case SDL_BUTTON_WHEELDOWN:
            input.wheel -= down;
            return false;
        default:
            return false;
    }
}

void moveTo(Input &input, int x, int y) {
    input.dx += x - input.x;
    input.dy += y - input.y;
    input.x = x;
    input.y = y;
}

}  // namespace

void Input::read() {
    dx = dy = wheel = 0;
    actions.clear();
    SDL_Event event;
    while (SDL_PollEvent(&event)) {
        switch (event.type) {
            case SDL_QUIT:
                actions.push_back(Action::kQuit);
                break;
            case SDL_MOUSEMOTION:
                moveTo(*this, event.motion.x, event.motion.y);
                break;
            case SDL_MOUSEBUTTONDOWN:
            case SDL_MOUSEBUTTONUP:
                moveTo(*this, event.button.x, event.button.y);
                if (readButton(*this, event.button)) return;
                break;
            case SDL_KEYDOWN:
            case SDL_KEYUP:
                readHeld(*this, event.key.keysym.sym, event.type == SDL_KEYDOWN);
                if (event.type == SDL_KEYDOWN && actionOf(event.key.keysym.sym) != Action::kNone)
                    actions.push_back(actionOf(event.key.keysym.sym));
                break;
            default:
                break;
        }
    }
}

}  // namespace keltra::view
