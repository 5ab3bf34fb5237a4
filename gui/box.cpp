#include <keltra/box.h>

#include <keltra/label.h>
#include <keltra/scrollbar.h>
#include <keltra/shader.h>
#include <keltra/texture.h>
#include <keltra/window.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>

#include "gui/widgets.h"
#include "scene/tree_walk.h"

long KTBOX::counter = 0;
KTBOX *KTBOX::firstBox = nullptr;

namespace {

// The movement along one axis after clamping: `at` is the box's own place, `origin` where the limits count
// from.
int clampMovement(int movement, int at, int origin, int size, int start, int end) {
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
      shader(nullptr) {
    joinBoxes();
    joinClass(KT_BOX);
    setIdentity(KT_BOX, "[box %d]");
}

KTBOX::KTBOX(const KTBOX &other) : KTNODE(other) {
    joinClass(KT_BOX);
    joinBoxes();
    copyBox(other);
}

KTBOX &KTBOX::operator=(const KTBOX &other) {
    if (this == &other) return *this;
    KTNODE::operator=(other);
    copyBox(other);
    return *this;
}

KTBOX::~KTBOX() {
    keltra::forgetInEvents(this);
    (previousBox ? previousBox->nextBox : firstBox) = nextBox;
    if (nextBox) nextBox->previousBox = previousBox;
    if (part) forgetPart();
}

void KTBOX::joinBoxes() {
    part = false;
    previousBox = nullptr;
    nextBox = firstBox;
    if (nextBox) nextBox->previousBox = this;
    firstBox = this;
}

void KTBOX::copyBox(const KTBOX &other) {
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
    shader = other.shader;
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
        if (KTBOX *box = keltra::asBox(node)) box->foremostTimeStamp = stamp;
        return node->numberOfChildren;
    });
    return true;
}

bool KTBOX::setTexture(KTTEXTURE *newTexture) {
    if (texture) texture->decReferences();
    texture = newTexture;
    if (texture) texture->incReferences();
    return true;
}

bool KTBOX::setShader(KTSHADER *newShader) {
    shader = newShader;
    return true;
}

// Both edges belong to the box: 64 pixels answer to 65 columns, which is meant.
bool KTBOX::checkBoundaries(int x, int y) {
    if (!checkStatus) return false;
    KTWINDOW *window = type == KT_WINDOW ? nullptr : keltra::windowAround(*this);
    if (window && window->getChild(0) != this && !window->checkBoundaries(x, y)) return false;
    keltra::Origin origin = keltra::originOf(*this);
    float pointX = static_cast<float>(x), pointY = static_cast<float>(y);
    return pointX >= position.x + origin.x && pointY >= position.y + origin.y &&
           pointX <= static_cast<float>(sizeX) + position.x + origin.x &&
           pointY <= static_cast<float>(sizeY) + position.y + origin.y;
}

bool KTBOX::checkLimits(int *dx, int *dy) {
    if (!dx || !dy || !limitStatus) return false;
    keltra::Origin origin = keltra::originOf(*this);
    *dx = clampMovement(*dx, keltra::toInt(position.x), keltra::toInt(origin.x), sizeX, startX, endX);
    *dy = clampMovement(*dy, keltra::toInt(position.y), keltra::toInt(origin.y), sizeY, startY, endY);
    return true;
}

void KTBOX::forgetFont(const KTFONT *gone) {
    for (KTBOX *box = firstBox; box; box = box->nextBox) {
        if (KTLABEL *label = keltra::as<KTLABEL>(box)) {
            if (label->font == gone) label->font = nullptr;
        } else if (KTBUTTON *button = keltra::as<KTBUTTON>(box)) {
            if (button->font == gone) button->font = nullptr;
        }
    }
}

void KTBOX::forgetShader(const KTSHADER *gone) {
    for (KTBOX *box = firstBox; box; box = box->nextBox)
        if (box->shader == gone) box->shader = nullptr;
}

void KTBOX::forgetTexture(const KTTEXTURE *gone) {
    for (KTBOX *box = firstBox; box; box = box->nextBox)
        if (box->texture == gone) box->texture = nullptr;
}

// Copies of windows and scroll bars point to parts that they do not own, so all of them are asked.
void KTBOX::forgetPart() {
    auto clear = [this](auto *&pointer) {
        if (pointer == this) pointer = nullptr;
    };
    for (KTBOX *box = firstBox; box; box = box->nextBox) {
        if (KTWINDOW *window = keltra::as<KTWINDOW>(box)) {
            clear(window->titleBar);
            clear(window->ownTitleBar);
            clear(window->scrollBar);
            clear(window->ownScrollBar);
        } else if (KTHSCROLLBAR *lying = keltra::as<KTHSCROLLBAR>(box)) {
            clear(lying->cursor);
            clear(lying->ownCursor);
        } else if (KTVSCROLLBAR *standing = keltra::as<KTVSCROLLBAR>(box)) {
            clear(standing->cursor);
            clear(standing->ownCursor);
        }
    }
}
