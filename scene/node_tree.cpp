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

KTNODE **newChildren(unsigned int count) {
    return static_cast<KTNODE **>(keltra::newBlock(std::size_t(count) * sizeof(KTNODE *)));
}

}  // namespace

// Makes room for `count` children, all empty, in place of the present ones. False when memory is out.
bool KTNODE::allocateChildren(unsigned int count) {
    KTNODE **block = count ? newChildren(count) : nullptr;
    if (count && !block) return false;
    std::fill_n(block, count, nullptr);
    abandonChildren();
    setChildren(block, count);
    return true;
}

// Takes over a block that this node already holds.
void KTNODE::setChildren(KTNODE **block, unsigned int count) {
    keltra::releaseBlock(children);
    children = block;
    numberOfChildren = count;
}

KTNODE *KTNODE::getChild(unsigned int index) const {
    return children && index < numberOfChildren ? children[index] : nullptr;
}

// Index of a child, or the number of children when it is not listed. Children only ever move to the front
// after they were linked, so the search goes down from there: destroying many children of one parent takes
// one look each.
unsigned int KTNODE::findChild(const KTNODE *child) const {
    if (!children) return numberOfChildren;
    unsigned int start = std::min(child->slot + 1, numberOfChildren);
    for (unsigned int i = start; i-- > 0;)
        if (children[i] == child) return i;
    for (unsigned int i = start; i < numberOfChildren; ++i)
        if (children[i] == child) return i;
    return numberOfChildren;
}

void KTNODE::leaveLister() {
    KTNODE *listing = lister();
    if (!listing) return;
    unsigned int index = listing->findChild(this);
    if (index < listing->numberOfChildren) listing->children[index] = nullptr;
}

// The children are about to be listed no more, but keep this node as their parent.
void KTNODE::abandonChildren() {
    for (unsigned int i = 0; i < numberOfChildren; ++i) {
        KTNODE *child = getChild(i);
        if (child && child->lister() == this) child->borrow(nullptr);
    }
}

bool KTNODE::link(KTNODE *newParent) {
    if (!newParent || newParent == this || parent) return false;
    unsigned int count = newParent->numberOfChildren;
    KTNODE **grown = newChildren(count + 1);
    if (!grown) return false;
    if (borrows) {
        leaveLister();
        listedBy = newParent;
    }
    for (unsigned int i = 0; i < count; ++i) grown[i] = newParent->getChild(i);
    grown[count] = this;
    newParent->setChildren(grown, count + 1);
    slot = count;
    parent = newParent;
    return true;
}

bool KTNODE::unlink() {
    KTNODE *from = parent;
    if (!from || from->numberOfChildren == 0) return false;
    unsigned int count = from->numberOfChildren;
    KTNODE **rest = nullptr;
    if (count == 1) {
        // An only child is not compared with this node: meant, a copy of it can take it from its parent.
        if (from->getChild(0) != this) from->abandonChildren();
    } else {
        unsigned int index = from->findChild(this);
        if (index == count) return false;
        rest = newChildren(count - 1);
        if (!rest) return false;
        std::copy_n(from->children, index, rest);
        std::copy(from->children + index + 1, from->children + count, rest + index);
    }
    from->setChildren(rest, count - 1);
    if (listedBy == from) listedBy = nullptr;
    parent = nullptr;
    return true;
}

// Unlinking the children replaces the array, so the old one is held while it is read.
bool KTNODE::remove() {
    if (!parent) return false;
    KTNODE *heir = parent;
    KTNODE **handed = children;
    unsigned int count = numberOfChildren;
    bool complete = true;
    keltra::retainBlock(handed);
    for (unsigned int i = 0; handed && i < count; ++i) {
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
