// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_PEN_H
#define KELTRA_EXAMPLES_PEN_H

// Pen and keyboard, as the interface takes them each frame: from SDL, or from a script where a run must
// repeat exactly.

#include <SDL.h>

struct Pen {
    int x = 0, y = 0;  // pixels of the window
    int pressed = 0;
    char key = 0;  // of this frame; 0 for none
};

// Takes what happened since the last frame. One key a frame: the others wait. False once the program is to
// end.
inline bool readPen(Pen *pen) {
    SDL_EnableUNICODE(1);
    pen->key = 0;
    SDL_Event event;
    while (pen->key == 0 && SDL_PollEvent(&event)) {
        switch (event.type) {
            case SDL_QUIT:
                return false;
            case SDL_MOUSEMOTION:
                pen->x = event.motion.x;
                pen->y = event.motion.y;
                break;
            case SDL_MOUSEBUTTONDOWN:
            case SDL_MOUSEBUTTONUP:
                pen->x = event.button.x;
                pen->y = event.button.y;
                pen->pressed = event.type == SDL_MOUSEBUTTONDOWN;
                // A press and a release in one frame are two: neither may be lost.
                return true;
            case SDL_KEYDOWN:
                if (event.key.keysym.sym == SDLK_ESCAPE) return false;
                if (event.key.keysym.unicode < 128) pen->key = static_cast<char>(event.key.keysym.unicode);
                break;
        }
    }
    return true;
}

// The pen of a run with a given number of frames: scrolls the guide, lights the lanterns, turns the view,
// types a name.
inline void playPen(int frame, Pen *pen) {
    struct Step {
        int frame, x, y, pressed;
        char key;
    };
    static const Step kSteps[] = {
        {2, 186, 46, 1, 0},     {3, 186, 56, 1, 0},     {4, 186, 56, 0, 0},  // the guide's scroll bar
        {6, 200, 284, 1, 0},    {7, 200, 284, 0, 0},                         // lanterns
        {9, 120, 306, 1, 0},    {10, 150, 306, 1, 0},   {11, 160, 306, 1, 0},
        {12, 160, 306, 0, 0},                                                  // orbit
        {14, 228, 195, 1, 0},   {15, 228, 186, 1, 0},   {16, 228, 186, 0, 0},  // height
        {18, 100, 256, 1, 0},   {19, 100, 256, 0, 0},                          // the field
        {20, 100, 256, 0, 'V'}, {21, 100, 256, 0, 'e'}, {22, 100, 256, 0, 's'},
        {23, 100, 256, 0, 'p'}, {24, 100, 256, 0, 'e'}, {25, 100, 256, 0, 'r'},
        {26, 120, 284, 1, 0},   {27, 120, 284, 0, 0},  // the flash
    };
    pen->key = 0;
    for (const Step &step : kSteps) {
        if (step.frame == frame) *pen = {step.x, step.y, step.pressed, step.key};
    }
}

#endif
