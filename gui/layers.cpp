// SPDX-License-Identifier: Zlib
#include <keltra/box.h>
#include <keltra/element.h>

#include "gui/widgets.h"

#include <algorithm>

namespace {

// Higher layers are drawn later. Only GUI boxes have one.
long guiLayer(const KTELEMENT &entry) {
    const KTBOX *box = keltra::asBox(entry.node);
    return box ? box->getForemostTimeStamp() : 0;
}

// The layers of the list's entries while they are sorted, looked up once each.
long layers[KTELEMENT::maxElements];

}  // namespace

// Equal entries keep the order in which they were passed: entries lie in the list in that order.
bool KTELEMENT::sort2D() {
    if (numberOfPassedElements == 0) return false;
    for (unsigned int i = 0; i < numberOfPassedElements; ++i) layers[i] = guiLayer(element[i]);
    std::sort(elementPointer, elementPointer + numberOfPassedElements,
              [](const KTELEMENT *a, const KTELEMENT *b) {
                  long layerA = layers[a - element], layerB = layers[b - element];
                  return layerA != layerB ? layerA < layerB : a < b;
              });
    return true;
}
