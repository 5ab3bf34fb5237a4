// SPDX-License-Identifier: Zlib
#include <keltra/node.h>

#include "core/holders.h"
#include "foundation/argument.h"
#include "foundation/block.h"
#include "foundation/cold.h"
#include "foundation/registry.h"

#include <cstring>

template <>
struct keltra::PublicFields<KTNODE> {
    static constexpr auto name = &KTNODE::name;
    static constexpr auto previous = &KTNODE::previousNode, next = &KTNODE::nextNode;
    static constexpr decltype(nullptr) first = nullptr;
};
template class KTREGISTERED<KTNODE>;

namespace {

constexpr unsigned int kTypeNames = 19;
const char typeNames[kTypeNames][256] = {
    "node",   "root",      "light",      "mesh",       "camera", "emitter", "skydome",
    "water",  "terrain",   "helper",     "sound",      "box",    "label",   "button",
    "window", "textfield", "hscrollbar", "vscrollbar", "custom",
};

}  // namespace

KTNODE::KTNODE()
    : auxId(0),
      timeStamp(0),
      shared(false),
      data(nullptr),
      transformMode(0),
      targetNode(nullptr),
      previousNode(nullptr),
      nextNode(nullptr),
      numberOfChildren(0),
      parent(nullptr),
      children(nullptr),
      maximized(true),
      borrows(false),
      aiming(nullptr),
      classes(0),
      slot(0),
      taken(0),
      listedBy(nullptr) {
    id = enlist();
    setIdentity(KT_NODE, "[node %d]");
}

KTNODE::KTNODE(bool) : KTNODE() {}

KELTRA_COLD KTNODE::KTNODE(const KTNODE &other)
    : KTREGISTERED<KTNODE>(other),
      KTLISTED<KTNODE>(),
      KTLISTED<KTNODE, keltra::Aiming>(),
      children(nullptr),
      maximized(true),
      borrows(false),
      aiming(nullptr),
      classes(0),
      slot(0),
      taken(0),
      listedBy(nullptr) {
    copyFields(other);
    borrow(nullptr);
}

KELTRA_COLD KTNODE &KTNODE::operator=(const KTNODE &other) {
    if (this == &other) return *this;
    KTNODE *const listing = lister();
    if (children != other.children) abandonChildren();
    copyFields(other);
    borrow(listing);
    fieldsAssigned();
    return *this;
}

// The entry in the parent's children is emptied while their number stays: a dangling one would end the next
// pass.
KTNODE::~KTNODE() {
    leaveLister();
    for (unsigned int i = 0; i < numberOfChildren; ++i) {
        KTNODE *child = getChild(i);
        if (child && child->parent == this) child->parent = nullptr;
    }
    forgetEverywhere();
    keltra::releaseBlock(children);
    delist();
}

bool KTNODE::render(void *) { return false; }

KELTRA_COLD void KTNODE::copyFields(const KTNODE &other) {
    id = other.id;
    auxId = other.auxId;
    std::memcpy(name, other.name, sizeof name);
    type = other.type;
    timeStamp = other.timeStamp;
    shared = other.shared;
    data = other.data;
    transformMode = other.transformMode;
    position = other.position;
    rotation = other.rotation;
    origin = other.origin;
    direction = other.direction;
    target = other.target;
    aimAt(other.targetNode);
    matrix = other.matrix;
    cachedMatrix = other.cachedMatrix;
    previousNode = other.previousNode;
    nextNode = other.nextNode;
    parent = other.parent;
    KTNODE **shared = static_cast<KTNODE **>(keltra::retainBlock(other.children));
    setChildren(shared, shared || !other.children ? other.numberOfChildren : 0);
    taken = other.taken;
}

KELTRA_COLD void KTNODE::setIdentity(unsigned int typeCode, const char *pattern) {
    type = typeCode;
    keltra::writeName(name, pattern, id);
    nameChanged();
}

// Drops every pointer of a borrower to a node that is being destroyed.
void KTNODE::forget(const KTNODE *gone) {
    if (parent == gone) parent = nullptr;
    if (listedBy == gone) listedBy = nullptr;
    if (targetNode == gone) targetNode = nullptr;
    if (previousNode == gone) previousNode = nullptr;
    if (nextNode == gone) nextNode = nullptr;
    if (!children) return;
    for (unsigned int i = 0; i < numberOfChildren; ++i)
        if (children[i] == gone) children[i] = nullptr;
}

void KTNODE::forgetEverywhere() {
    using Aimer = KTLISTED<KTNODE, keltra::Aiming>;
    keltra::OnGone<KTNODE>::notify({*this, isHeld()});
    if (isHeld()) KTLISTED<KTNODE>::visitList(borrowers, ~0u, [this](KTNODE &node) { node.forget(this); });
    while (KTNODE *node = Aimer::objectAt(aiming)) {
        node->Aimer::leaveList();
        if (node->targetNode == this) node->targetNode = nullptr;
    }
}

KELTRA_COLD bool KTNODE::cleanUp() { return destroyAll(&KTNODE::release); }

unsigned int KTNODE::getNumberOfNodes() { return count(); }

KTNODE *KTNODE::getFirstNode() { return firstRegistered(); }

KTNODE *KTNODE::getNextNode() const { return isRegistered() ? registeredNext() : nextNode; }

KTNODE *KTNODE::getPreviousNode() const { return isRegistered() ? registeredPrevious() : previousNode; }

KTNODE *KTNODE::findByName(const char *wanted) { return findRegistered(wanted); }

KELTRA_COLD KTNODE *KTNODE::findById(unsigned int wanted) { return findRegistered(wanted); }

KELTRA_COLD void KTNODE::setName(const char *text) {
    if (keltra::takeName(name, text, KT_CALL("KTNODE::setName"))) nameChanged();
}

const char *KTNODE::getTypeName() const { return type < kTypeNames ? typeNames[type] : "unknown"; }

void KTNODE::setPosition(float x, float y) { setPosition(x, y, position.z); }
void KTNODE::setPosition(float x, float y, float z) { position.set(x, y, z); }
void KTNODE::setPosition(R3XVECTOR3D value) { position = value; }

void KTNODE::setRotation(float x, float y) { setRotation(x, y, rotation.z); }
void KTNODE::setRotation(float x, float y, float z) { rotation.set(x, y, z); }
void KTNODE::setRotation(R3XVECTOR3D value) { rotation = value; }

void KTNODE::setOrigin(float x, float y) { setOrigin(x, y, origin.z); }
void KTNODE::setOrigin(float x, float y, float z) { origin.set(x, y, z); }
void KTNODE::setOrigin(R3XVECTOR3D value) { origin = value; }

void KTNODE::setDirection(float x, float y) { setDirection(x, y, direction.z); }
void KTNODE::setDirection(float x, float y, float z) { direction.set(x, y, z); }
void KTNODE::setDirection(R3XVECTOR3D value) { direction = value; }

void KTNODE::setTarget(float x, float y) { setTarget(x, y, target.z); }
void KTNODE::setTarget(float x, float y, float z) { target.set(x, y, z); }
void KTNODE::setTarget(R3XVECTOR3D value) { target = value; }

// The sums leave an untouched Z as it is, a negative zero too.
void KTNODE::move(float x, float y) { setPosition(position.x + x, position.y + y); }
void KTNODE::move(float x, float y, float z) { move(R3XVECTOR3D(x, y, z)); }
void KTNODE::move(R3XVECTOR3D step) { position += step; }

void KTNODE::rotate(float x, float y) { setRotation(rotation.x + x, rotation.y + y); }
void KTNODE::rotate(float x, float y, float z) { rotate(R3XVECTOR3D(x, y, z)); }
void KTNODE::rotate(R3XVECTOR3D step) { rotation += step; }

void KTNODE::setTargetNode(KTNODE *node) { aimAt(node); }

// Aiming at itself is how a node aims at its fixed target; that pointer ends with the node.
KELTRA_COLD void KTNODE::aimAt(KTNODE *node) {
    using Aimer = KTLISTED<KTNODE, keltra::Aiming>;
    targetNode = node;
    if (node && node != this)
        Aimer::joinList(node->aiming);
    else
        Aimer::leaveList();
}
