// SPDX-License-Identifier: Zlib
#include <keltra/element.h>
#include <keltra/light.h>
#include <keltra/material.h>

#include "math/float_bits.h"
#include "math/soft_arm.h"
#include "math/square_root.h"
#include "scene/element_radius.h"
#include "scene/node_class.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

constexpr std::int32_t kInfinityBits = 0x7f800000;

enum Rank : unsigned char { kLight, kOpaque, kTransparent, kRanks };

// By the transparency value, while KTELEMENT::append counts by KTMATERIAL::isTransparent: two separate tests.
// When they disagree, the back-to-front sort covers as many entries as were counted. Deliberate: applications
// rely on the drawing order.
Rank rankOf(const KTNODE *node) {
    if (!node) return kOpaque;
    if (node->type == KT_LIGHT) return kLight;
    if (node->type == KT_EMITTER || node->type == KT_HELPER) return kTransparent;
    const KTMESH *mesh = keltra::asTyped<KTMESH>(node);
    const KTMATERIAL *material = mesh ? mesh->material : nullptr;
    return material && keltra::bitsOf(material->getTransparency()) != keltra::kOneBits ? kTransparent
                                                                                       : kOpaque;
}

// Maps floats to integers in the same order: a total order whatever the data, and integer comparisons on a
// machine without a floating-point unit. What is not a number comes last, whatever its sign, which each
// machine's arithmetic sets in its own way.
std::int32_t orderKey(float value) {
    std::int32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    if ((bits & 0x7fffffff) > kInfinityBits) return std::numeric_limits<std::int32_t>::max();
    return bits < 0 ? bits ^ 0x7fffffff : bits;
}

std::int32_t depthKey(const KTELEMENT *entry) {
    return orderKey(entry->matrix.m[14] - keltra::boundingRadius(entry->node));
}

bool isExclusive(const KTELEMENT *entry) {
    const KTLIGHT *light = keltra::asTyped<KTLIGHT>(entry->node);
    return light && light->exclusive;
}

struct Keyed {
    std::int32_t key;
    KTELEMENT *entry;

    bool isBefore(const Keyed &other) const {
        return key != other.key ? key < other.key : entry < other.entry;
    }
};

Keyed keyed[KTELEMENT::maxElements];
Rank ranks[KTELEMENT::maxElements];

float distanceBetween(const R3XMATRIX &matrix, const R3XVECTOR3D &position) {
#if defined(KELTRA_SOFT_ARM)
    if (const std::uint32_t bits = keltraSquaredDistance(matrix.m + 12, &position.x))
        return keltra::squareRoot(keltra::floatOf(bits));
#endif
    return matrix.getTranslation().distance(position);
}

// By keys that are computed once an entry; entries of one key by their place on the list. The order is often
// that of the frame or the mesh before, or close to it: then each entry is compared once.
template <class Key>
void sortByKey(KTELEMENT **entries, unsigned int count, Key key) {
    const unsigned int kMovesAnEntry = 8;
    for (unsigned int i = 0; i < count; ++i) keyed[i] = {key(entries[i]), entries[i]};
    unsigned int moves = kMovesAnEntry * count;
    for (unsigned int i = 1; i < count; ++i) {
        const Keyed inserted = keyed[i];
        unsigned int at = i;
        for (; at > 0 && inserted.isBefore(keyed[at - 1]); --at) keyed[at] = keyed[at - 1];
        keyed[at] = inserted;
        moves -= std::min(moves, i - at);
        if (moves != 0) continue;
        std::sort(keyed, keyed + count, [](const Keyed &a, const Keyed &b) { return a.isBefore(b); });
        break;
    }
    for (unsigned int i = 0; i < count; ++i) entries[i] = keyed[i].entry;
}

}  // namespace

// Three ranks need no comparisons: they are counted, and each entry has its place.
bool KTELEMENT::sort3D() {
    if (numberOfPassedElements == 0) return false;
    if (numberOfLights == 0 && numberOfTransparencies == 0) return true;
    unsigned int places[kRanks] = {};
    for (unsigned int i = 0; i < numberOfPassedElements; ++i) ++places[ranks[i] = rankOf(element[i].node)];
    places[kTransparent] = places[kLight] + places[kOpaque];
    places[kOpaque] = places[kLight];
    places[kLight] = 0;
    for (unsigned int i = 0; i < numberOfPassedElements; ++i)
        elementPointer[places[ranks[i]]++] = &element[i];
    if (numberOfTransparencies < 2) return true;
    unsigned int tail = std::min(numberOfTransparencies, numberOfPassedElements);
    KTELEMENT **end = elementPointer + numberOfPassedElements;
    sortByKey(end - tail, tail, depthKey);
    return true;
}

bool KTELEMENT::sortLights(R3XVECTOR3D position) {
    if (numberOfPassedElements == 0 || numberOfLights == 0) return false;
    const unsigned int lights = std::min(numberOfLights, numberOfPassedElements);
    for (unsigned int i = 0; i < lights; ++i)
        elementPointer[i]->distance = distanceBetween(elementPointer[i]->matrix, position);
    // No distance is negative: below zero there is room for the exclusive ones, in the same order.
    sortByKey(elementPointer, lights, [](const KTELEMENT *entry) {
        const std::int32_t key = orderKey(entry->distance);
        return isExclusive(entry) ? key + std::numeric_limits<std::int32_t>::min() : key;
    });
    return true;
}
