// SPDX-License-Identifier: Zlib
#include <keltra/box.h>

#include "gui/geometry.h"
#include "gui/widgets.h"
#include "gui/window_around.h"

bool KTBOX::checkBoundaries(int x, int y) {
    if (!checkStatus) return false;
    KTWINDOW *window = type == KT_WINDOW ? nullptr : keltra::windowAround(*this);
    if (window && window->getChild(0) != this && !window->checkBoundaries(x, y)) return false;
    return keltra::isInside(*this, keltra::originOf(*this), static_cast<float>(x), static_cast<float>(y));
}
