#ifndef KELTRA_GUI_WIDGETS_H
#define KELTRA_GUI_WIDGETS_H

// What the widgets share: safe casts, sums of positions, clipping.

#include <keltra/box.h>
#include <keltra/window.h>

#include <algorithm>
#include <climits>
#include <cstdint>

#include "scene/node_class.h"
#include "scene/tree_walk.h"

namespace keltra {

// Truncates toward zero; values that an int cannot hold become the nearest that it can, not-a-number becomes
// 0.
inline int toInt(float value) {
    if (value >= 2147483648.0f) return INT_MAX;
    if (value > -2147483648.0f) return static_cast<int>(value);
    return value != value ? 0 : INT_MIN;
}

inline int toInt(std::int64_t value) {
    return static_cast<int>(std::max<std::int64_t>(INT_MIN, std::min<std::int64_t>(INT_MAX, value)));
}

// A box of any type code: applications give the classes that they derive codes of their own.
inline KTBOX *asBox(KTNODE *node) { return as<KTBOX>(node); }

// What a window does beyond other boxes, it does under the window's type code only.
inline KTWINDOW *asWindow(KTNODE *node) {
    return node && node->type == KT_WINDOW ? as<KTWINDOW>(node) : nullptr;
}

// Calls `visit(ancestor)` from the parent upward until it returns false; a parent chain that was linked into
// a ring ends.
template <class Visit>
void forAncestors(const KTNODE &node, Visit visit) {
    KTNODE *ancestor = node.parent;
    for (unsigned int i = 0; ancestor && i < kMaxTreeDepth && visit(ancestor); ++i)
        ancestor = ancestor->parent;
}

struct Origin {
    float x, y;
};

// Where a node's own position counts from.
inline Origin originOf(const KTNODE &node) {
    Origin origin = {0.0f, 0.0f};
    forAncestors(node, [&origin](const KTNODE *ancestor) {
        origin.x += ancestor->position.x;
        origin.y += ancestor->position.y;
        return true;
    });
    return origin;
}

inline KTWINDOW *windowAround(const KTNODE &node) {
    KTWINDOW *window = nullptr;
    forAncestors(node, [&window](KTNODE *ancestor) { return !(window = asWindow(ancestor)); });
    return window;
}

// Sets the scissor rectangle of the window that clips the box; false when there is none.
bool clipToWindow(KTBOX &box);

// Loads the matrix of a render list entry; null keeps the current one.
void loadEntryMatrix(void *entry);

// Draws the bevelled border of a rectangle of the box's colour, `width` x `height` from the current origin.
void drawBorder(const KTBOX &box, std::int64_t width, std::int64_t height, bool sunken);

// Clears the events' pointers to a box that is destroyed.
void forgetInEvents(const KTBOX *gone);

}  // namespace keltra

#endif
