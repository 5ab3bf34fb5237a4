// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_INPUT_H
#define KELTRA_VIEW_INPUT_H

// Pen, mouse and keys, as SDL reports them.

#include "tools/view/actions.h"

#include <vector>

namespace keltra::view {

struct Input {
    int x = 0, y = 0;           // pixels of the window
    bool pressed = false;       // the pen, or the left button
    bool zooming = false;       // the middle or right button
    int dx = 0, dy = 0;         // since the last frame
    int wheel = 0;              // steps towards the model
    float right = 0, down = 0;  // -1, 0 or 1: held arrow keys
    float nearer = 0;           // -1, 0 or 1: held - and + keys
    std::vector<Action> actions;

    // Reads the events since the last frame. Stops after a press or a release: the interface would miss a
    // click within one frame.
    void read();
};

}  // namespace keltra::view

#endif
