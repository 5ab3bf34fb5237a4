// SPDX-License-Identifier: Zlib
#ifndef KELTRA_GUI_GEOMETRY_H
#define KELTRA_GUI_GEOMETRY_H

// Positions in pixels.

#include <keltra/node.h>

#include "scene/tree_walk.h"

#include <algorithm>
#include <climits>
#include <cstdint>

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

// The origin of a node's own position.
inline Origin originOf(const KTNODE &node) {
    Origin origin = {0.0f, 0.0f};
    forAncestors(node, [&origin](const KTNODE *ancestor) {
        origin.x += ancestor->position.x;
        origin.y += ancestor->position.y;
        return true;
    });
    return origin;
}

}  // namespace keltra

#endif
