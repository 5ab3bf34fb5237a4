#include <keltra/node.h>

#include <keltra/foundation.h>
#include <keltra/glbridge.h>

#include <algorithm>
#include <cstring>

#include "core/glbridge.h"
#include "foundation/block.h"
#include "scene/local_transform.h"
#include "scene/tree_walk.h"

KTNODE *KTNODE::ancestors[64];

namespace {

const unsigned int kMaxAncestors = 64;
const int kMaxIndent = 512;  // with the longest name the line still fits the log's 1,023 characters

}  // namespace

bool KTNODE::link(KTNODE *newParent) {
    if (!newParent || newParent == this || parent || !newParent->makeRoomForChild()) return false;
    if (borrows) {
        leaveLister();
        listedBy = newParent;
    }
    const unsigned int count = newParent->numberOfChildren;
    newParent->children[count] = this;
    newParent->numberOfChildren = count + 1;
    slot = newParent->taken + count;
    parent = newParent;
    return true;
}

bool KTNODE::unlink() {
    KTNODE *from = parent;
    if (!from || from->numberOfChildren == 0) return false;
    const unsigned int count = from->numberOfChildren;
    if (count == 1) {
        // An only child is not compared with this node: deliberate, a copy of it can take it from its parent.
        if (from->getChild(0) != this) from->abandonChildren();
        from->setChildren(nullptr, 0);
    } else {
        const unsigned int index = from->findChild(this);
        if (index == count || !from->takeChild(index)) return false;
    }
    if (listedBy == from) listedBy = nullptr;
    parent = nullptr;
    return true;
}

// Unlinking the children changes the array, so they are read from a copy of it.
bool KTNODE::remove() {
    if (!parent) return false;
    KTNODE *heir = parent;
    const unsigned int count = children ? numberOfChildren : 0;
    KTNODE **handed = static_cast<KTNODE **>(count ? keltra::newBlock(count * sizeof(KTNODE *)) : nullptr);
    if (count && !handed) return false;
    std::copy_n(children, count, handed);
    bool complete = true;
    for (unsigned int i = 0; i < count; ++i) {
        KTNODE *child = handed[i];
        if (!child) continue;
        child->unlink();
        if (!child->link(heir) && child != heir) complete = false;
    }
    keltra::releaseBlock(handed);
    return unlink() && complete;
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
    // On a full stack the push was ignored and the caller's own matrix gave way.
    if (pushed)
        keltra::popMatrix();
    else
        KT_glLoadMatrixf(top.m);
    return result;
}

void KTNODE::displayTreeRecursive(KTNODE *node, int indent) {
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
