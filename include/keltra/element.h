// SPDX-License-Identifier: Zlib
#ifndef KELTRA_ELEMENT_H
#define KELTRA_ELEMENT_H

#include <keltra/matrix.h>
#include <keltra/registered.h>
#include <keltra/vector.h>

class KTMESH;
class KTNODE;

/** One entry of the render list, and as static members the list itself: one entry for each drawable node that
 * was passed between `KELTRA::begin3D` and `end3D` (or `begin2D` and `end2D`). The list is allocated once;
 * it points at nodes without owning them. */
class KT_API KTELEMENT {
   public:
    static const unsigned int maxElements = 1024;
    static const unsigned int nearestLights = 4;

    /** Without a node, with the identity. */
    KTELEMENT();

    /** The node to draw; null when it was destroyed after it was passed. */
    KTNODE *getNode() const { return node; }
    /** Model-view matrix of the pass. */
    R3XMATRIX *getMatrix() { return &matrix; }
    /** The node's `auxId` when it was passed. */
    unsigned int getAuxId() const { return auxId; }
    /** Of a light: its distance from the point that `sortLights` was given last. */
    float getDistance() const { return distance; }
    /** Light `i` of the four nearest, nearest first; null when there is none. */
    KTELEMENT *getNearestLight(unsigned int i) const { return i < nearestLights ? nearestLight[i] : nullptr; }
    void setNearestLight(unsigned int i, KTELEMENT *light);
    /** A light's GL slot; a skinned mesh's skinning slot, 16 when there was none left. */
    unsigned int getParam1() const { return param1; }
    void setParam1(unsigned int value) { param1 = value; }

    /** Allocates the list for `n` entries; 0 and more than 1024 give 1024. False when active or out of
     * memory. */
    static bool init(unsigned int n);
    /** Releases the list; false when not active. */
    static bool free();
    static bool isActive() { return active; }
    /** Empties the list. */
    static void reset();
    /** Appends `node` and its subtree with their transforms on top of the current model-view matrix. False
     * for null and when the list is full. The flag is not used. */
    static bool pass(KTNODE *node, bool flag = false);
    /** Order for drawing: by GUI layer; or lights, opaque nodes, transparent nodes from back to front. False
     * when empty. */
    static bool sort2D();
    static bool sort3D();
    /** Orders the lights (exclusive ones first, then by distance to `position` in eye space). False without
     * lights. */
    static bool sortLights(R3XVECTOR3D position);
    /** Collects the matrices of the bones of `mesh` below `bone` into the current skinning slot; false for a
     * null bone. */
    static bool passSkeleton(KTNODE *bone, KTMESH *mesh);
    /** Light `i` in drawing order; null when there is none. Valid after `sort3D`. */
    static KTELEMENT *getLight(unsigned int i);
    /** Capacity of the list, entries of this frame, and lights among them. */
    static unsigned int getNumberOfElements() { return numberOfElements; }
    static unsigned int getNumberOfPassedElements() { return numberOfPassedElements; }
    static unsigned int getNumberOfLights() { return numberOfLights; }
    /** Distance culling: meshes and helpers farther from the eye than twice their radius plus the clipping
     * radius are not passed (their children are). */
    static void clippingOn() { clipping = true; }
    static void clippingOff() { clipping = false; }
    static void setClippingRadius(float radius) { clippingRadius = radius; }
    static float getClippingRadius() { return clippingRadius; }

    /** The input of the interface: to be called once a frame after `KELTRA::end2D`, while the list of the 2D
     * pass stands. `key` is the frame's character, 0 for none; (x, y) the pointer in pixels of the window;
     * `pressed` not 0 while the pointer is down; `extra` is only remembered. Presses, drags and folds
     * widgets and moves the focus. `activatedId`, which may be null, receives the identifier of a widget
     * that was activated, otherwise 0.
     *
     * True while the pointer is over a widget or a widget holds it. False in the call in which a widget is
     * let go of, and from the second call of a press on a switch on: to tell a press on a widget from one on
     * the scene, keep the result of the call with which it begins. */
    static bool manageGUIEvents(char key, int x, int y, int pressed, int extra, unsigned int *activatedId);

    KTNODE *node;
    R3XMATRIX matrix;
    unsigned int auxId;
    float distance;
    KTELEMENT *nearestLight[nearestLights];
    unsigned int param1;

    static bool active;
    static bool clipping;
    static float clippingRadius;
    static KTELEMENT *element;
    static KTELEMENT **elementPointer;
    static unsigned int numberOfElements;
    static unsigned int numberOfPassedElements;
    static unsigned int numberOfLights;
    static unsigned int numberOfTransparencies;

   private:
    static void append(KTNODE *node);
    static void passSkin(KTMESH *mesh, KTELEMENT &entry);
    static void forget(const keltra::Gone<KTNODE> &gone);

    static const keltra::OnGone<KTNODE> onNodeGone;
};

#endif
