// SPDX-License-Identifier: Zlib
#include <keltra/foundation.h>
#include <keltra/glbridge.h>
#include <keltra/node.h>

#include "core/glbridge.h"
#include "foundation/block.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "scene/local_transform.h"
#include "scene/tree_walk.h"

#include <algorithm>
#include <cstring>

KTNODE *KTNODE::ancestors[64];

namespace {

constexpr unsigned int kMaxAncestors = 64;
constexpr keltra::FaultText kNotListed = KT_TEXT("the parent does not list the node");
constexpr int kMaxIndent = 512;  // with the longest name the line still fits the log's 1,023 characters

}  // namespace

bool KTNODE::link(KTNODE *newParent) {
    constexpr keltra::FaultCall call = KT_CALL("KTNODE::link");
    if (!newParent) return keltra::failNull(call, KT_TEXT("parent"));
    if (newParent == this || parent)
        return keltra::failState(
            call, parent ? KT_TEXT("the node has a parent already") : KT_TEXT("the node is its own parent"));
    if (!newParent->makeRoomForChild()) return keltra::failMemory(call);
    if (borrows) {
        leaveLister();
        listedBy = newParent;
        newParent->markHeld();
    }
    if (newParent->borrows) markHeld();
    const unsigned int count = newParent->numberOfChildren;
    newParent->children[count] = this;
    newParent->numberOfChildren = count + 1;
    slot = newParent->taken + count;
    parent = newParent;
    return true;
}

bool KTNODE::unlink() {
    KTNODE *from = parent;
    constexpr keltra::FaultCall call = KT_CALL("KTNODE::unlink");
    if (!from) return keltra::failState(call, KT_TEXT("the node has no parent"));
    if (from->numberOfChildren == 0) return keltra::failState(call, kNotListed);
    const unsigned int count = from->numberOfChildren;
    if (count == 1) {
        // An only child is not compared with this node: deliberate, a copy of it can take it from its parent.
        if (from->getChild(0) != this) from->abandonChildren();
        from->setChildren(nullptr, 0);
    } else {
        const unsigned int index = from->findChild(this);
        if (index == count) return keltra::failState(call, kNotListed);
        if (!from->takeChild(index)) return keltra::failMemory(call);
    }
    if (listedBy == from) listedBy = nullptr;
    parent = nullptr;
    return true;
}

// Unlinking the children changes the array, so they are read from a copy of it.
KELTRA_COLD bool KTNODE::remove() {
    if (!parent) return keltra::failState(KT_CALL("KTNODE::remove"), KT_TEXT("the node has no parent"));
    KTNODE *heir = parent;
    const unsigned int count = children ? numberOfChildren : 0;
    KTNODE **handed = static_cast<KTNODE **>(count ? keltra::newBlock(count * sizeof(KTNODE *)) : nullptr);
    if (count && !handed) return keltra::failMemory(KT_CALL("KTNODE::remove"));
    std::copy_n(children, count, handed);
    bool complete = true;
    {
        const keltra::FaultSilence silence;  // reported once below, however many fail
        for (unsigned int i = 0; i < count; ++i) {
            KTNODE *child = handed[i];
            if (!child) continue;
            child->unlink();
            if (!child->link(heir) && child != heir) complete = false;
        }
        complete = unlink() && complete;
    }
    keltra::releaseBlock(handed);
    return complete || keltra::failState(KT_CALL("KTNODE::remove"), KT_TEXT("not everything could be moved"));
}

R3XMATRIX KTNODE::getFinalMatrix(const char *stopName) {
    unsigned int count = 0;
    for (KTNODE *node = parent; node; node = node->parent) {
        ancestors[count++] = node;
        if (count == kMaxAncestors) return R3XMATRIX();
        if (stopName && std::strcmp(node->name, stopName) == 0) break;
    }
    R3XMATRIX result, top;
    bool pushed = keltra::pushMatrix();
    if (!pushed) KT_glGetFloatv(0, top.m);
    KT_glLoadIdentity();
    while (count > 0) keltra::applyLocalTransform(*ancestors[--count]);
    keltra::applyLocalTransform(*this);
    KT_glGetFloatv(0, result.m);
    // On a full stack the push was ignored and the caller's own matrix was overwritten.
    if (pushed)
        keltra::popMatrix();
    else
        KT_glLoadMatrixf(top.m);
    return result;
}

KELTRA_COLD void KTNODE::displayTreeRecursive(KTNODE *node, int indent) {
    if (!node) return void(keltra::failNull(KT_CALL("KTNODE::displayTreeRecursive"), KT_TEXT("node")));
    char blanks[kMaxIndent + 1];
    std::memset(blanks, ' ', kMaxIndent);
    blanks[kMaxIndent] = '\0';
    keltra::walkTree(node, [&](KTNODE *shown, unsigned int depth) {
        // A negative indent shows as none, and the levels below count on from it.
        int width = std::clamp(std::min(indent, kMaxIndent) + 2 * static_cast<int>(depth), 0, kMaxIndent);
        vnfLog("%s+ %s [id: %d]\n", blanks + kMaxIndent - width, shown->name, static_cast<int>(shown->id));
        return shown->numberOfChildren;
    });
}
