#ifndef KELTRA_VIEW_INPUT_H
#define KELTRA_VIEW_INPUT_H

// Pen, mouse and keys, as SDL reports them.

#include "tools/view/actions.h"

#include <vector>

namespace keltra::view {

struct Input {
    int x = 0, y = 0;           // pixels of the window
    bool pressed = false;       // the pen, or the first button
    bool zooming = false;       // the second or third button
    int dx = 0, dy = 0;         // since the frame before
    int wheel = 0;              // steps towards the model
    float right = 0, down = 0;  // -1, 0 or 1: arrow keys that are held
    float nearer = 0;           // the same of + and -
    std::vector<Action> actions;

    // Takes what happened since the last frame. A press and a release are never taken in one frame, for the
    // interface would see neither.
    void read();
};

}  // namespace keltra::view

#endif
