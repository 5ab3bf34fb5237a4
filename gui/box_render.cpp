#include <keltra/box.h>

#include <GLES/gl.h>

#include <keltra/element.h>
#include <keltra/glbridge.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>
#include <keltra/shader.h>
#include <keltra/texture.h>

#include "core/gl_state.h"
#include "gui/widgets.h"
#include "gui/window_around.h"
#include "math/fixed.h"

namespace {

const unsigned int kMaxRings = 1024;

// The GL reads these arrays at each draw, so the pointers are given once a box and the values change between
// draws.
GLfixed quadVertices[8];
GLfixed quadColors[16];
GLfixed quadTexCoords[8];

struct FixedColor {
    GLfixed rgba[4];
};

// Saturated like the conversion of floats, without any: this runs for each edge of each border.
GLfixed pixelsToFixed(std::int64_t pixels) {
    return pixels >= -32768 && pixels < 32768 ? static_cast<GLfixed>(pixels * 65536) : INT32_MIN;
}

FixedColor shade(const R3XVECTOR4D &color, float factor, float alpha) {
    const float rgba[4] = {color.x * factor, color.y * factor, color.z * factor, alpha};
    FixedColor fixed;
    keltra::toFixed(rgba, fixed.rgba, 4);
    return fixed;
}

void beginQuads(const KTBOX &box) {
    keltra::toFixed(box.boxCoord.coord, quadTexCoords, 8);
    keltra::useFlatArrays();
    keltra::useTexture();
    glVertexPointer(2, GL_FIXED, 0, quadVertices);
    glColorPointer(4, GL_FIXED, 0, quadColors);
    glTexCoordPointer(2, GL_FIXED, 0, quadTexCoords);
}

void drawQuad(std::int64_t x1, std::int64_t y1, std::int64_t x2, std::int64_t y2, const FixedColor &color) {
    GLfixed left = pixelsToFixed(x1), right = pixelsToFixed(x2);
    GLfixed top = pixelsToFixed(y1), bottom = pixelsToFixed(y2);
    const GLfixed corners[8] = {left, top, right, top, left, bottom, right, bottom};
    std::copy(corners, corners + 8, quadVertices);
    for (int i = 0; i < 16; ++i) quadColors[i] = color.rgba[i % 4];
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

}  // namespace

namespace keltra {

bool clipToWindow(KTBOX &box) {
    KTWINDOW *window = asWindow(&box);
    if (!window) window = windowAround(box);
    if (window) window->enableScissor();
    return window != nullptr;
}

void loadEntryMatrix(void *entry) {
    if (entry) KT_glLoadMatrixf(static_cast<KTELEMENT *>(entry)->getMatrix()->m);
}

void drawBorder(const KTBOX &box, std::int64_t width, std::int64_t height, bool sunken) {
    if (box.thickness == 0) return;
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    KTOPENGL::blendingOn();
    const float alpha = 0.5f;
    FixedColor upper = shade(box.color, sunken ? 0.7f : 1.3f, alpha);
    FixedColor lower = shade(box.color, sunken ? 1.3f : 0.7f, alpha);
    FixedColor upperCorner = shade(box.color, sunken ? 0.4f : 1.6f, alpha);
    FixedColor lowerCorner = shade(box.color, sunken ? 1.6f : 0.4f, alpha);
    FixedColor middle = shade(box.color, 1.0f, alpha);
    std::int64_t rings = std::min(box.thickness, kMaxRings);
    std::int64_t w = width, h = height;
    beginQuads(box);
    for (std::int64_t i = 0; i < rings; ++i) {
        drawQuad(i + 1, i, w - i - 1, i + 1, upper);
        drawQuad(i, i + 1, i + 1, h - i - 1, upper);
        drawQuad(i + 1, h - i, w - i - 1, h - i - 1, lower);
        drawQuad(w - i, i + 1, w - i - 1, h - i - 1, lower);
        drawQuad(i, i, i + 1, i + 1, upperCorner);
        drawQuad(i, h - i, i + 1, h - i - 1, middle);
        drawQuad(w - i, i, w - i - 1, i + 1, middle);
        drawQuad(w - i, h - i, w - i - 1, h - i - 1, lowerCorner);
    }
}

}  // namespace keltra

bool KTBOX::render(void *data) {
    if (!displayStatus) return false;
    const keltra::Unlit unlit;
    keltra::loadEntryMatrix(data);
    if (scissorStatus && !keltra::clipToWindow(*this))
        glScissor(0, 0, KTSETTINGS::windowX, KTSETTINGS::windowY);
    if (shader)
        shader->render(data);
    else
        KTSHADER::disable();
    if (texture)
        texture->render(nullptr);
    else
        KTTEXTURE::texturingOff(KTTEXTURE::channels);
    if (isTransparent())
        KTOPENGL::blendingOn();
    else
        KTOPENGL::blendingOff();
    beginQuads(*this);
    drawQuad(0, 0, sizeX, sizeY, shade(color, clickedStatus ? 0.9f : 1.0f, color.w));
    keltra::drawBorder(*this, sizeX, sizeY, clickedStatus);
    if (scissorStatus) KTOPENGL::scissorOff();
    return true;
}
