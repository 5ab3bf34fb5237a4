#include <keltra/box.h>

#include "gui/geometry.h"
#include "gui/window_around.h"

// Deliberate: both edges belong to the box, so 64 pixels react to 65 columns; applications rely on it.
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
