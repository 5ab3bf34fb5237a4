// SPDX-License-Identifier: Zlib
#include <keltra/box.h>

#include <keltra/shader.h>
#include <keltra/texture.h>

#include "foundation/cold.h"
#include "foundation/fault.h"
#include "gui/events.h"
#include "gui/geometry.h"
#include "scene/node_class.h"
#include "scene/tree_walk.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>

long KTBOX::counter = 0;
KTLISTED<KTBOX> *KTBOX::allBoxes = nullptr;

namespace {

// The movement along one axis after clamping: `at` is the box's own place, `origin` where the limits count
// from.
KELTRA_COLD int clampMovement(int movement, int at, int origin, int size, int start, int end) {
    std::int64_t place = std::max(std::int64_t{movement} + at + origin, std::int64_t{start} + origin);
    // Last, so the far limit wins for a box that does not fit.
    if (size + place > std::int64_t{end} + origin) place = std::int64_t{end} - size + origin;
    return keltra::toInt(place - at - origin);
}

}  // namespace

KTBOXCOORD::KTBOXCOORD() : KTBOXCOORD(1.0f, 1.0f, false) {}

KTBOXCOORD::KTBOXCOORD(float u, float v, bool flipped) {
    float top = flipped ? 0.0f : v, bottom = flipped ? v : 0.0f;
    const float corners[8] = {0.0f, top, u, top, 0.0f, bottom, u, bottom};
    std::memcpy(coord, corners, sizeof coord);
}

KTBOX::KTBOX()
    : sizeX(64),
      sizeY(64),
      startX(0),
      startY(0),
      endX(0),
      endY(0),
      thickness(3),
      color(0.5f, 0.5f, 0.5f, 1.0f),
      checkStatus(false),
      displayStatus(true),
      staticStatus(true),
      clickedStatus(false),
      limitStatus(false),
      scissorStatus(true),
      foremostTimeStamp(getNextCounter()),
      texture(nullptr),
      shader(nullptr),
      parts(nullptr),
      partOf(nullptr) {
    KTLISTED<KTBOX>::joinList(allBoxes);
    joinClass(KT_BOX);
    setIdentity(KT_BOX, "[box %d]");
}

KELTRA_COLD KTBOX::KTBOX(const KTBOX &other)
    : KTNODE(other), KTLISTED<KTBOX>(), KTLISTED<KTBOX, keltra::Part>(), parts(nullptr), partOf(nullptr) {
    joinClass(KT_BOX);
    KTLISTED<KTBOX>::joinList(allBoxes);
    copyBox(other);
}

KELTRA_COLD KTBOX &KTBOX::operator=(const KTBOX &other) {
    if (this == &other) return *this;
    KTNODE::operator=(other);
    copyBox(other);
    return *this;
}

// Deliberate: a use of the texture stays counted; applications keep textures resident this way.
KTBOX::~KTBOX() {
    keltra::forgetInEvents(this);
    KTLISTED<KTBOX>::leaveList();  // what is left of it is no window
    if (partOf) forgetPart();
}

KELTRA_COLD void KTBOX::copyBox(const KTBOX &other) {
    sizeX = other.sizeX;
    sizeY = other.sizeY;
    startX = other.startX;
    startY = other.startY;
    endX = other.endX;
    endY = other.endY;
    thickness = other.thickness;
    color = other.color;
    checkStatus = other.checkStatus;
    displayStatus = other.displayStatus;
    staticStatus = other.staticStatus;
    clickedStatus = other.clickedStatus;
    limitStatus = other.limitStatus;
    scissorStatus = other.scissorStatus;
    foremostTimeStamp = other.foremostTimeStamp;
    texture = other.texture;
    if (texture) texture->markHeld();
    setShader(other.shader);
    boxCoord = other.boxCoord;
}

void KTBOX::setSizes(int width, int height) {
    sizeX = width;
    sizeY = height;
}

void KTBOX::setLimits(int left, int top, int right, int bottom) {
    startX = left;
    startY = top;
    endX = right;
    endY = bottom;
}

long KTBOX::getNextCounter() {
    if (counter < LONG_MAX) ++counter;
    return counter;
}

// Twice for each child: once by its parent, once by itself.
bool KTBOX::setForemost(long) {
    keltra::walkTree(this, [](KTNODE *node, unsigned int depth) {
        if (depth > 0) getNextCounter();
        long stamp = getNextCounter();
        if (KTBOX *box = keltra::as<KTBOX>(node)) box->foremostTimeStamp = stamp;
        return node->numberOfChildren;
    });
    return true;
}

bool KTBOX::setTexture(KTTEXTURE *newTexture) {
    KTUSE::exchange(texture, newTexture);
    return true;
}

bool KTBOX::setShader(KTSHADER *newShader) {
    shader = newShader;
    if (shader) shader->markHeld();
    return true;
}

bool KTBOX::checkLimits(int *dx, int *dy) {
    if (!dx || !dy)
        return keltra::failNull(KT_CALL("KTBOX::checkLimits"), dx ? KT_TEXT("dy") : KT_TEXT("dx"));
    if (!limitStatus) return false;
    keltra::Origin origin = keltra::originOf(*this);
    *dx = clampMovement(*dx, keltra::toInt(position.x), keltra::toInt(origin.x), sizeX, startX, endX);
    *dy = clampMovement(*dy, keltra::toInt(position.y), keltra::toInt(origin.y), sizeY, startY, endY);
    return true;
}
