// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_TREE_WALK_H
#define KELTRA_SCENE_TREE_WALK_H

#include <keltra/node.h>

#include "formats/limits.h"

namespace keltra {

// What `enter` returns to end the whole walk; otherwise it returns how many of the node's children to visit.
constexpr unsigned int kStopWalk = ~0u;

constexpr unsigned int kMaxBorrowed = 2;
constexpr unsigned int kMostChildren = (1u << 30) - 1;  // more pointers than 32 bits address

// Visits `root` and its subtree depth first, a node before its children, children in order. `enter(node,
// depth)` comes first, `leave(node, depth)` after the node's children. Returns the node at which `enter`
// stopped the walk, or null. A node has one parent, so a cycle made by linking a node below itself leads back
// to `root` first: there it is cut. A copy shows its original's children, whose parent it is not. Such
// children within such children are the last ones: the walk of copies linked below what they show would not
// end, or take as many steps as there are orders of the children.
template <class Enter, class Leave>
KTNODE *walkTree(KTNODE *root, Enter enter, Leave leave) {
    // The path is the most of the stack that a frame takes: three words a level on the device.
    struct Step {
        KTNODE *node;
        unsigned int next;
        unsigned int end : 30;
        unsigned int borrowed : 2;  // steps to here that led to another parent's child
    };
    static_assert(kMaxBorrowed < 4, "it takes two bits");
    if (!root) return nullptr;
    Step path[kMaxTreeDepth];
    unsigned int depth = 0, borrowed = 0;
    KTNODE *node = root;
    for (;;) {
        unsigned int visits = enter(node, depth);
        if (visits == kStopWalk) return node;
        path[depth] = {node, 0, visits & kMostChildren, borrowed & 3};
        node = nullptr;
        while (!node) {
            Step &step = path[depth];
            if (step.next < step.end && step.next < step.node->numberOfChildren &&
                depth + 1 < kMaxTreeDepth) {
                node = step.node->getChild(step.next++);
                if (!node) continue;
                borrowed = step.borrowed + (node->parent != step.node);
                if (node == root || borrowed > kMaxBorrowed) node = nullptr;
            } else {
                leave(step.node, depth);
                if (depth-- == 0) return nullptr;
            }
        }
        ++depth;
    }
}

template <class Enter>
KTNODE *walkTree(KTNODE *root, Enter enter) {
    return walkTree(root, enter, [](KTNODE *, unsigned) {});
}

}  // namespace keltra

#endif
