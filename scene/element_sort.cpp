#include <keltra/element.h>
#include <keltra/light.h>
#include <keltra/material.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "scene/element_radius.h"
#include "scene/node_class.h"

namespace {

constexpr std::int32_t kInfinityBits = 0x7f800000;

enum Rank { kLight, kOpaque, kTransparent };

// By the transparency value, while KTELEMENT::append counts by KTMATERIAL::isTransparent: two separate tests.
// When they disagree, the back-to-front sort covers as many entries as were counted. Deliberate: applications
// rely on the drawing order.
Rank rankOf(const KTNODE *node) {
    if (!node) return kOpaque;
    if (node->type == KT_LIGHT) return kLight;
    if (node->type == KT_EMITTER || node->type == KT_HELPER) return kTransparent;
    const KTMESH *mesh = keltra::asTyped<KTMESH>(node);
    const KTMATERIAL *material = mesh ? mesh->material : nullptr;
    return material && material->getTransparency() != 1.0f ? kTransparent : kOpaque;
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

}  // namespace

// Three ranks need no comparisons: the order is written rank by rank from the list itself.
bool KTELEMENT::sort3D() {
    if (numberOfPassedElements == 0) return false;
    if (numberOfLights == 0 && numberOfTransparencies == 0) return true;
    unsigned int filled = 0;
    for (Rank rank : {kLight, kOpaque, kTransparent})
        for (unsigned int i = 0; i < numberOfPassedElements; ++i)
            if (rankOf(element[i].node) == rank) elementPointer[filled++] = &element[i];
    if (numberOfTransparencies < 2) return true;
    unsigned int tail = std::min(numberOfTransparencies, numberOfPassedElements);
    KTELEMENT **end = elementPointer + numberOfPassedElements;
    std::sort(end - tail, end, [](const KTELEMENT *a, const KTELEMENT *b) {
        std::int32_t keyA = depthKey(a), keyB = depthKey(b);
        return keyA != keyB ? keyA < keyB : a < b;
    });
    return true;
}

bool KTELEMENT::sortLights(R3XVECTOR3D position) {
    if (numberOfPassedElements == 0 || numberOfLights == 0) return false;
    unsigned int lights = std::min(numberOfLights, numberOfPassedElements);
    for (unsigned int i = 0; i < lights; ++i)
        elementPointer[i]->distance = elementPointer[i]->matrix.getTranslation().distance(position);
    std::sort(elementPointer, elementPointer + lights, [](const KTELEMENT *a, const KTELEMENT *b) {
        bool exclusiveA = isExclusive(a), exclusiveB = isExclusive(b);
        if (exclusiveA != exclusiveB) return exclusiveA;
        std::int32_t keyA = orderKey(a->distance), keyB = orderKey(b->distance);
        return keyA != keyB ? keyA < keyB : a < b;
    });
    return true;
}
