// SPDX-License-Identifier: Zlib
#include <keltra/node.h>

#include "foundation/block.h"
#include "foundation/pointer_array.h"

#include <algorithm>
#include <cstdint>

KTLISTED<KTNODE> *KTNODE::borrowers = nullptr;

namespace {

// An array of fewer children is as long as their number; a longer one grows by half its length and has room.
constexpr unsigned int kFirstRoom = 64;

KTNODE **newChildren(unsigned int count, unsigned int room = 0) {
    const std::size_t bytes = std::max(count, room) * sizeof(KTNODE *);
    return static_cast<KTNODE **>(room > count ? keltra::newRoomyBlock(bytes) : keltra::newBlock(bytes));
}

}  // namespace

// Joins the borrowers; `listingNode` is the node that lists this one among its children.
void KTNODE::borrow(KTNODE *listingNode) {
    listedBy = listingNode;
    borrows = true;
    KTLISTED<KTNODE>::joinList(borrowers);
    for (KTNODE *shown : {parent, listedBy, previousNode, nextNode, targetNode})
        if (shown) shown->markHeld();
    for (unsigned int i = 0; i < numberOfChildren; ++i)
        if (KTNODE *child = getChild(i)) child->markHeld();
}

// Makes room for `count` children, all empty, in place of the present ones. False when out of memory.
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

// Index of a child, or the number of children when it is not listed. Destroying many children of one parent,
// or unlinking them from either end, takes one comparison each. When others between were unlinked, the child
// is about as far from the first and the last one as its slot is from theirs; the search goes outward.
unsigned int KTNODE::findChild(const KTNODE *child) const {
    if (!children || numberOfChildren == 0) return numberOfChildren;
    const std::int64_t last = std::int64_t{numberOfChildren} - 1;
    std::int64_t before = std::clamp<std::int64_t>(static_cast<std::int32_t>(child->slot - taken), 0, last);
    if (children[before] != child && last >= kFirstRoom && children[0] && children[last]) {
        const unsigned int span = children[last]->slot - children[0]->slot;
        const unsigned int place = child->slot - children[0]->slot;
        if (place < span) before = static_cast<std::int64_t>(std::uint64_t{place} * last / span);
    }
    return static_cast<unsigned int>(
        keltra::findNear(children, numberOfChildren, static_cast<std::size_t>(before), child));
}

void KTNODE::leaveLister() {
    KTNODE *listing = lister();
    if (!listing) return;
    unsigned int index = listing->findChild(this);
    if (index < listing->numberOfChildren) listing->children[index] = nullptr;
}

// Called before the children leave the list; they keep this node as their parent.
void KTNODE::abandonChildren() {
    for (unsigned int i = 0; i < numberOfChildren; ++i) {
        KTNODE *child = getChild(i);
        if (child && child->lister() == this) child->borrow(nullptr);
    }
}

// Makes the entry behind the last child one that may be written. The array may be a block of the
// application's, or one that copies show: neither has room to be used.
bool KTNODE::makeRoomForChild() {
    const unsigned int needed = numberOfChildren + 1;
    const std::size_t room = keltra::roomOf(children);
    if (room / sizeof(KTNODE *) >= needed && room != keltra::kShared) return true;
    KTNODE **grown = newChildren(needed, needed < kFirstRoom ? 0 : needed + needed / 2);
    if (!grown) return false;
    for (unsigned int i = 0; i < numberOfChildren; ++i) grown[i] = getChild(i);
    setChildren(grown, numberOfChildren);
    return true;
}

// Closes the gap from the nearer end. Copies that show the same array keep it as it is.
bool KTNODE::takeChild(unsigned int index) {
    const unsigned int rest = numberOfChildren - 1;
    const bool front = index < numberOfChildren / 2;
    const std::size_t room = keltra::roomOf(children);
    const bool shared = room == keltra::kShared;
    KTNODE **left = nullptr;
    if (shared || room / sizeof(KTNODE *) / 4 > rest)
        left = newChildren(rest, rest < kFirstRoom ? 0 : rest + rest / 2);
    if (shared && !left) return false;
    if (left) {
        std::copy_n(children, index, left);
        std::copy(children + index + 1, children + numberOfChildren, left + index);
        setChildren(left, rest);
    } else if (front && room > 0) {
        keltra::closeGapFromFront(children, index);
        children = static_cast<KTNODE **>(keltra::dropFront(children, sizeof(KTNODE *)));
        numberOfChildren = rest;
    } else {
        keltra::closeGapFromBehind(children + index, rest - index);
        numberOfChildren = rest;
    }
    if (front) ++taken;
    return true;
}
