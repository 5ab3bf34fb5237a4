// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_LIGHT_ORDER_H
#define KELTRA_SCENE_LIGHT_ORDER_H

#include <keltra/element.h>
#include <keltra/node.h>

namespace keltra {

// The lights of the render list while its entries are drawn. Each lit mesh needs its four nearest lights, in
// their order and with their distances. The order and the distances of all others are only seen by code that
// the engine does not know, so they are left for the last mesh: at the end of such a time, and before any
// such code is called, everything is as KTELEMENT::sortLights makes it. One at a time.
class LightOrder {
   public:
    LightOrder();
    ~LightOrder();
    LightOrder(const LightOrder &) = delete;
    LightOrder &operator=(const LightOrder &) = delete;

    // To be called before the node is drawn.
    void prepare(const KTNODE &node) {
        if (wanted) prepareFor(node);
    }

   private:
    static void prepareFor(const KTNODE &node);

    const bool wanted;
};

// Puts the nearest lights first on the list, as KTELEMENT::sortLights does; the others may follow later.
void sortNearestLights(const R3XVECTOR3D &position);

// Does what was left.
void settleLightOrder();

}  // namespace keltra

#endif
