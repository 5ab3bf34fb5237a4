// SPDX-License-Identifier: Zlib
#ifndef KELTRA_GUI_WIDGETS_H
#define KELTRA_GUI_WIDGETS_H

// What the widgets share.

#include <keltra/box.h>
#include <keltra/light.h>

#include "foundation/fault.h"
#include "gui/geometry.h"
#include "scene/node_class.h"

#include <cstdint>

namespace keltra {

// A box of any type code: applications give the classes that they derive codes of their own.
inline KTBOX *asBox(KTNODE *node) { return as<KTBOX>(node); }

// Whether the point lies on the box, whose position counts from `origin`. Deliberate: both edges belong to
// the box, so 64 pixels react to 65 columns; applications rely on it.
inline bool isInside(const KTBOX &box, const Origin &origin, float x, float y) {
#if defined(__SOFTFP__)
    return x >= box.position.x + origin.x && y >= box.position.y + origin.y &&
           x <= static_cast<float>(box.sizeX) + box.position.x + origin.x &&
           y <= static_cast<float>(box.sizeY) + box.position.y + origin.y;
#else
    // A branch that is guessed wrong costs more than all four comparisons.
    const bool isRight = x >= box.position.x + origin.x, isBelow = y >= box.position.y + origin.y;
    const bool isLeft = x <= static_cast<float>(box.sizeX) + box.position.x + origin.x;
    const bool isAbove = y <= static_cast<float>(box.sizeY) + box.position.y + origin.y;
    return isRight & isBelow & isLeft & isAbove;
#endif
}

// Switches lighting off while it exists, so that widgets keep their colours in a lit 3D pass.
class Unlit {
   public:
    Unlit() : wasLit(KTLIGHT::getLighting()) { KTLIGHT::lightingOff(); }
    ~Unlit() {
        if (wasLit) KTLIGHT::lightingOn();
    }
    Unlit(const Unlit &) = delete;
    Unlit &operator=(const Unlit &) = delete;

   private:
    const bool wasLit;
};

// Loads the matrix of a render list entry; null keeps the current one.
void loadEntryMatrix(void *entry);

// Draws the bevelled border of a rectangle of the box's colour, `width` x `height` from the current origin.
void drawBorder(const KTBOX &box, std::int64_t width, std::int64_t height, bool sunken);

// setCaption of buttons and windows; reports faults of `call`.
void takeCaption(KTBUTTON &button, const char *text, keltra::FaultCall call);

}  // namespace keltra

#endif
