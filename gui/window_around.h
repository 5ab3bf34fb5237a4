// SPDX-License-Identifier: Zlib
#ifndef KELTRA_GUI_WINDOW_AROUND_H
#define KELTRA_GUI_WINDOW_AROUND_H

// The window that a widget lies in.

#include <keltra/window.h>

#include "gui/geometry.h"
#include "scene/node_class.h"

namespace keltra {

// A window acts as one only under the window's type code.
inline KTWINDOW *asWindow(KTNODE *node) {
    return node && node->type == KT_WINDOW ? as<KTWINDOW>(node) : nullptr;
}

inline KTWINDOW *windowAround(const KTNODE &node) {
    KTWINDOW *window = nullptr;
    forAncestors(node, [&window](KTNODE *ancestor) { return !(window = asWindow(ancestor)); });
    return window;
}

// Sets the scissor rectangle of the window that clips the box; false when there is none.
bool clipToWindow(KTBOX &box);

}  // namespace keltra

#endif
