// SPDX-License-Identifier: Zlib
#include <keltra/element.h>
#include <keltra/engine.h>
#include <keltra/glbridge.h>
#include <keltra/node.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>

#include "core/gl_state.h"

#include <algorithm>

namespace {

struct Pixel {
    unsigned char red, green, blue, alpha;
};

// A point outside the frame buffer leaves the pixel as it is here: background.
Pixel readPixel(int x, int row) {
    Pixel pixel = {0, 0, 0, 0};
    glReadPixels(x, row, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &pixel);
    return pixel;
}

unsigned int codeOf(const Pixel &pixel) {
    unsigned int red = pixel.red, green = pixel.green, blue = pixel.blue, alpha = pixel.alpha;
    if (KTSETTINGS::colorDepth == 16) return (red >> 3) << 11 | (green >> 2) << 5 | blue >> 3;
    if (KTSETTINGS::colorDepth == 24) alpha = 0;
    return red | green << 8 | blue << 16 | alpha << 24;
}

// Everything drawn leaves the colour of its code, also nodes of the application with GL calls of their own.
void renderPickable() {
    const keltra::Color color = keltra::getColor();
    bool drawn = false;
    KTOPENGL::setProfile(KT_PROFILE_PICKING);
    for (unsigned int i = 0; i < KTELEMENT::numberOfPassedElements; ++i) {
        KTELEMENT *element = KTELEMENT::elementPointer[i];
        KTNODE *node = element->getNode();
        if (!node || (node->type != KT_MESH && node->type != KT_CUSTOM)) continue;
        node->render(element);
        drawn = true;
    }
    if (drawn) keltra::setColor(color);
}

void pushMatrices() {
    KT_glMatrixMode(GL_PROJECTION);
    KT_glPushMatrix();
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glPushMatrix();
}

// Deliberate: a pixel projection is set up and at once replaced by the pops; applications rely on the
// viewport set between them.
void restoreMatrices(int savedWidth) {
    float right = static_cast<float>(std::max(KTSETTINGS::windowX, 1)),
          bottom = static_cast<float>(std::max(KTSETTINGS::windowY, 1));
    keltra::setDepthTest(false);
    KT_glMatrixMode(GL_PROJECTION);
    KT_glLoadIdentity();
    glViewport(0, 0, KTSETTINGS::windowX, KTSETTINGS::windowY);
    KT_glOrtho(0.0f, right, bottom, 0.0f, -1.0f, 1.0f);
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadIdentity();
    KT_glMatrixMode(GL_PROJECTION);
    KT_glPopMatrix();
    glViewport(0, 0, savedWidth, KTSETTINGS::windowY);
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glPopMatrix();
}

}  // namespace

unsigned int KELTRA::select(int x, int y) {
    // In 64 bits and clamped: the arguments may be any ints.
    long long height = KTSETTINGS::windowY;
    int across = KTSETTINGS::landscape ? static_cast<int>(height - y) : x;
    int row = static_cast<int>(height - (KTSETTINGS::landscape ? x : y));
    readPixel(across, row);  // some drivers deliver the frame's pixels only after a first read
    int savedWidth = KTSETTINGS::windowX;
    pushMatrices();
    R3XVECTOR4D savedColor = KTOPENGL::getBackgroundColor();
    KTOPENGL::setBackgroundColor(0.0f, 0.0f, 0.0f, 0.0f);
    glScissor(across, row, 1, 1);
    KTOPENGL::scissorOn();
    clear(true, true, false);
    glDepthFunc(GL_LEQUAL);
    renderPickable();
    KTOPENGL::setBackgroundColor(savedColor);
    KTOPENGL::setProfile(KT_PROFILE_NORMAL);
    unsigned int code = codeOf(readPixel(across, row));
    restoreMatrices(savedWidth);
    KTOPENGL::scissorOff();
    keltra::setDepthTest(true);
    glDepthFunc(GL_LESS);
    keltra::settle2DPass();
    return code;
}
