// SPDX-License-Identifier: Zlib
#include <keltra/element.h>

#include <keltra/engine_state.h>
#include <keltra/foundation.h>
#include <keltra/glbridge.h>
#include <keltra/mesh.h>

#include "core/glbridge.h"
#include "core/holders.h"
#include "formats/limits.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "foundation/quiet.h"
#include "resources/transparency.h"
#include "scene/element_radius.h"
#include "scene/local_transform.h"
#include "scene/node_class.h"
#include "scene/render_list.h"
#include "scene/tree_walk.h"

#include <algorithm>
#include <cmath>
#include <new>

static_assert(KTELEMENT::maxElements == keltra::kMaxElements, "as the tools say");

const unsigned int KTELEMENT::maxElements;
const unsigned int KTELEMENT::nearestLights;
bool KTELEMENT::active = false;
bool KTELEMENT::clipping = false;
float KTELEMENT::clippingRadius = 128.0f;
KTELEMENT *KTELEMENT::element = nullptr;
KTELEMENT **KTELEMENT::elementPointer = nullptr;
unsigned int KTELEMENT::numberOfElements = 0;
unsigned int KTELEMENT::numberOfPassedElements = 0;
unsigned int KTELEMENT::numberOfLights = 0;
unsigned int KTELEMENT::numberOfTransparencies = 0;
const keltra::OnGone<KTNODE> KTELEMENT::onNodeGone(&KTELEMENT::forget);

namespace {

unsigned int starts = 0;
// An overflow repeats in every frame: reported once, until the list is restarted.
bool listReported = false, skinsReported = false;

[[gnu::noinline]] KELTRA_COLD void warnOnce(bool &reported, keltra::FaultText what, unsigned int most) {
    if (reported) return;
    reported = true;
    keltra::warnFull(KT_CALL("KTELEMENT::pass"), what, most);
}

// Always false.
[[gnu::noinline]] KELTRA_COLD bool noteFullList() {
    if (!KTELEMENT::active) return keltra::failState(KT_CALL("KTELEMENT::pass"), keltra::kInactive);
    warnOnce(listReported, KT_TEXT("render list"), KTELEMENT::numberOfElements);
    return false;
}

// Plain nodes and hidden meshes only carry their children.
bool isDrawable(const KTNODE &node) {
    if (node.type == KT_NODE) return false;
    const KTMESH *mesh = keltra::asTyped<KTMESH>(&node);
    return !mesh || !mesh->hidden;
}

bool isCulled(const KTNODE &node) {
    if (!KTELEMENT::clipping) return false;
    if (node.type != KT_MESH && node.type != KT_TERRAIN && node.type != KT_HELPER) return false;
    float m[16];
    KT_glGetFloatv(0, m);
    float distance = std::sqrt(m[12] * m[12] + m[13] * m[13] + m[14] * m[14]);
    return distance > 2.0f * keltra::boundingRadius(&node) + KTELEMENT::clippingRadius;
}

// A folded window shows its title bar, its first child, and nothing else.
unsigned int childrenToPass(const KTNODE &node) {
    const bool folded = node.type == KT_WINDOW && node.isFolded();
    return folded ? std::min(node.numberOfChildren, 1u) : node.numberOfChildren;
}

// Remembers which levels of a walk really pushed a matrix: a full stack takes no more.
class Levels {
   public:
    void push(unsigned int depth) { pushed[depth] = keltra::pushMatrix(); }
    void pop(unsigned int depth) const {
        if (pushed[depth]) keltra::popMatrix();
    }

   private:
    bool pushed[keltra::kMaxTreeDepth];
};

R3XMATRIX *currentSlot() { return KTMESH::boneMatrices + KTMESH::usedSlots * KTMESH::maxBones; }

unsigned int pooledBones(const KTMESH &mesh) {
    return std::min<unsigned int>(mesh.numberOfBones, KTMESH::maxBones);
}

void storeBone(KTNODE *bone, const KTMESH &mesh) {
    for (unsigned int i = 0; i < pooledBones(mesh); ++i) {
        if (mesh.bones[i].node != bone) continue;
        KT_glGetFloatv(0, currentSlot()[i].m);
        return;
    }
}

}  // namespace

unsigned int keltra::renderListStarts() { return starts; }

KTELEMENT::KTELEMENT() : node(nullptr), auxId(0), distance(0.0f), nearestLight(), param1(0) {}

void KTELEMENT::setNearestLight(unsigned int i, KTELEMENT *light) {
    if (i >= nearestLights)
        return void(
            keltra::failRange(KT_CALL("KTELEMENT::setNearestLight"), KT_TEXT("i"), i, nearestLights - 1));
    nearestLight[i] = light;
}

KELTRA_COLD bool KTELEMENT::init(unsigned int n) {
    if (active) return keltra::failState(KT_CALL("KTELEMENT::init"), keltra::kActive);
    unsigned int capacity = n >= 1 && n <= maxElements ? n : maxElements;
    void *entries = keltra::allocate(capacity * static_cast<unsigned int>(sizeof(KTELEMENT)));
    void *order = keltra::allocate(capacity * static_cast<unsigned int>(sizeof(KTELEMENT *)));
    if (!entries || !order) {
        if (entries) vnfFree(entries);
        if (order) vnfFree(order);
        return keltra::failMemory(KT_CALL("KTELEMENT::init"));
    }
    element = static_cast<KTELEMENT *>(entries);
    elementPointer = static_cast<KTELEMENT **>(order);
    for (unsigned int i = 0; i < capacity; ++i) elementPointer[i] = new (&element[i]) KTELEMENT;
    numberOfElements = capacity;
    ++starts;
    listReported = skinsReported = false;
    active = true;
    return true;
}

KELTRA_COLD bool KTELEMENT::free() {
    if (!active) return keltra::failState(KT_CALL("KTELEMENT::free"), keltra::kInactive);
    vnfFree(element);
    vnfFree(elementPointer);
    element = nullptr;
    elementPointer = nullptr;
    numberOfElements = 0;
    reset();
    active = false;
    return true;
}

void KTELEMENT::reset() { numberOfPassedElements = numberOfLights = numberOfTransparencies = 0; }

bool KTNODE::pass(bool flag) {
    timeStamp = static_cast<unsigned int>(KTENGINESTATE::timeStamp);
    KTELEMENT::pass(this, flag);
    return true;
}

// Children go through the same steps as KTNODE::pass, which stamps a node before it is queued here.
bool KTELEMENT::pass(KTNODE *root, bool) {
    if (!root) return keltra::failNull(KT_CALL("KTELEMENT::pass"), KT_TEXT("node"));
    if (numberOfPassedElements >= numberOfElements) return noteFullList();
    Levels levels;
    // Did not fit on the list: it has no level, and its children are not passed.
    const KTNODE *refused = nullptr;
    auto enter = [&](KTNODE *node, unsigned int depth) -> unsigned int {
        if (depth > 0) node->timeStamp = static_cast<unsigned int>(KTENGINESTATE::timeStamp);
        if (numberOfPassedElements >= numberOfElements) {
            refused = node;
            noteFullList();
            return 0;
        }
        levels.push(depth);
        keltra::applyLocalTransform(*node);
        if (isDrawable(*node) && !isCulled(*node)) append(node);
        return childrenToPass(*node);
    };
    auto leave = [&](KTNODE *node, unsigned int depth) {
        if (node == refused)
            refused = nullptr;
        else
            levels.pop(depth);
    };
    keltra::walkTree(root, enter, leave);
    return true;
}

void KTELEMENT::append(KTNODE *node) {
    KTELEMENT &entry = element[numberOfPassedElements];
    elementPointer[numberOfPassedElements] = &entry;
    entry.node = node;
    entry.auxId = node->auxId;
    entry.distance = 0.0f;
    entry.param1 = 0;
    // One by one: a loop becomes a call on ARM.
    entry.nearestLight[0] = entry.nearestLight[1] = entry.nearestLight[2] = entry.nearestLight[3] = nullptr;
    keltra::copyModelView(entry.matrix.m, node->cachedMatrix.m);
    bool transparent = node->type == KT_EMITTER || node->type == KT_HELPER;
    if (KTMESH *mesh = keltra::asTyped<KTMESH>(node)) {
        if (mesh->numberOfBones && mesh->bones) passSkin(mesh, entry);
        transparent = keltra::isTransparent(mesh->material);
    }
    ++numberOfPassedElements;
    if (node->type == KT_LIGHT) ++numberOfLights;
    if (transparent) ++numberOfTransparencies;
}

// Bone matrices are relative to the frame of the mesh's parent; bones are collected from its whole subtree.
void KTELEMENT::passSkin(KTMESH *mesh, KTELEMENT &entry) {
    if (KTMESH::usedSlots >= KTMESH::maxSkins || !KTMESH::boneMatrices) {
        entry.param1 = KTMESH::maxSkins;
        warnOnce(skinsReported, KT_TEXT("skinned meshes of a frame"), KTMESH::maxSkins);
        return;
    }
    bool pushed = keltra::pushMatrix();
    KT_glLoadIdentity();
    // Bones outside of the walk get the identity instead of the matrices that an earlier frame left in the
    // slot.
    std::fill_n(currentSlot(), pooledBones(*mesh), R3XMATRIX());
    if (mesh->parent) passSkeleton(mesh->parent, mesh);
    KTMESH::slotMesh[KTMESH::usedSlots] = mesh;
    entry.param1 = KTMESH::usedSlots++;
    if (pushed)
        keltra::popMatrix();
    else
        KT_glLoadMatrixf(entry.matrix.m);
}

bool KTELEMENT::passSkeleton(KTNODE *bone, KTMESH *mesh) {
    if (!bone) return keltra::failNull(KT_CALL("KTELEMENT::passSkeleton"), KT_TEXT("bone"));
    if (!mesh || !mesh->bones || !KTMESH::boneMatrices || KTMESH::usedSlots >= KTMESH::maxSkins) return true;
    Levels levels;
    auto enter = [&](KTNODE *node, unsigned int depth) {
        levels.push(depth);
        keltra::applyLocalTransform(*node);
        if (node->type == KT_MESH) storeBone(node, *mesh);
        return node->numberOfChildren;
    };
    keltra::walkTree(bone, enter, [&](KTNODE *, unsigned int depth) { levels.pop(depth); });
    return true;
}

KTELEMENT *KTELEMENT::getLight(unsigned int i) { return i < numberOfLights ? elementPointer[i] : nullptr; }

// Deliberate: also what is not held; the list is short, and a pass does not mark what it appends.
void KTELEMENT::forget(const keltra::Gone<KTNODE> &gone) {
    const keltra::Gone<KTNODE> nodes = gone;  // in registers
    for (KTELEMENT *entry = element, *end = element + numberOfPassedElements; entry != end; ++entry)
        nodes.clear(entry->node);
}
