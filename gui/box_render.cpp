// SPDX-License-Identifier: Zlib
#include <keltra/box.h>
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
#include "math/float_bits.h"

#include <GLES/gl.h>

namespace {

constexpr unsigned int kMaxRings = 1024;
constexpr unsigned int kPixel = 65536;

// The GL reads these arrays at each draw, so the pointers are given once a box and the values change between
// draws.
struct FixedColor {
    GLfixed rgba[4];
};

GLfixed quadVertices[8];
FixedColor quadColors[4];
GLfixed quadTexCoords[8];

// Saturated like the conversion of floats, without any: this runs for each edge of each border.
GLfixed pixelsToFixed(std::int64_t pixels) {
    const bool fits = static_cast<std::uint64_t>(pixels + 32768) < 65536;
    return fits ? static_cast<GLfixed>(static_cast<std::uint32_t>(pixels) << 16) : INT32_MIN;
}

FixedColor toFixed(float r, float g, float b, float alpha) {
    const float rgba[4] = {r, g, b, alpha};
    FixedColor fixed;
    keltra::toFixed(rgba, fixed.rgba, 4);
    return fixed;
}

FixedColor shade(const R3XVECTOR4D &color, float factor, float alpha) {
    return toFixed(color.x * factor, color.y * factor, color.z * factor, alpha);
}

// Most boxes have the same coordinates, and a box has its border behind it.
std::uint32_t coordBits[8];

void beginQuads(const KTBOX &box) {
    if (keltra::updateBits<8>(coordBits, box.boxCoord.coord))
        keltra::toFixed(box.boxCoord.coord, quadTexCoords, 8);
    keltra::useFlatArrays();
    keltra::useTexture();
    glVertexPointer(2, GL_FIXED, 0, quadVertices);
    glColorPointer(4, GL_FIXED, 0, quadColors);
    glTexCoordPointer(2, GL_FIXED, 0, quadTexCoords);
}

void setQuadColor(const FixedColor &color) {
    for (FixedColor &corner : quadColors) corner = color;
}

void setColumns(GLfixed left, GLfixed right) {
    quadVertices[0] = quadVertices[4] = left;
    quadVertices[2] = quadVertices[6] = right;
}

void setRows(GLfixed top, GLfixed bottom) {
    quadVertices[1] = quadVertices[3] = top;
    quadVertices[5] = quadVertices[7] = bottom;
}

void drawQuad() { glDrawArrays(GL_TRIANGLE_STRIP, 0, 4); }

void drawQuad(GLfixed left, GLfixed top, GLfixed right, GLfixed bottom) {
    setColumns(left, right);
    setRows(top, bottom);
    drawQuad();
}

// The lines along one axis that a ring of a border lies between.
struct RingLines {
    GLfixed outer, inner, farInner, farOuter;

    RingLines(unsigned int ring, std::int64_t size) {
        static_assert(kMaxRings <= 16384, "no line of a ring is left of -32768");
        if (static_cast<std::uint64_t>(size) < 32768) {
            outer = static_cast<GLfixed>(ring * kPixel);
            inner = static_cast<GLfixed>(ring * kPixel + kPixel);
            const unsigned int far = (static_cast<unsigned int>(size) - ring) * kPixel;
            farInner = static_cast<GLfixed>(far - kPixel);
            farOuter = static_cast<GLfixed>(far);
            return;
        }
        outer = pixelsToFixed(ring);
        inner = pixelsToFixed(std::int64_t{ring} + 1);
        farInner = pixelsToFixed(size - ring - 1);
        farOuter = pixelsToFixed(size - ring);
    }
};

struct BorderColors {
    FixedColor upper, lower, upperCorner, lowerCorner, middle;
};

// Those of the last border, raised and sunken: the boxes of an interface have few colours.
struct KnownBorder {
    std::uint32_t rgb[3];
    BorderColors colors;
};
KnownBorder knownBorders[2];

const BorderColors &borderColors(const R3XVECTOR4D &color, bool sunken) {
    KnownBorder &known = knownBorders[sunken];
    BorderColors &colors = known.colors;
    const float alpha = 0.5f;
    // Alpha is 0 until they are computed first.
    if (keltra::updateBits<3>(known.rgb, &color.x) == 0 && colors.middle.rgba[3] != 0) return colors;
    colors = {shade(color, sunken ? 0.7f : 1.3f, alpha), shade(color, sunken ? 1.3f : 0.7f, alpha),
              shade(color, sunken ? 0.4f : 1.6f, alpha), shade(color, sunken ? 1.6f : 0.4f, alpha),
              shade(color, 1.0f, alpha)};
    return colors;
}

void drawRing(const RingLines &x, const RingLines &y, const BorderColors &colors) {
    setQuadColor(colors.upper);
    drawQuad(x.inner, y.outer, x.farInner, y.inner);
    drawQuad(x.outer, y.inner, x.inner, y.farInner);
    setQuadColor(colors.lower);
    drawQuad(x.inner, y.farOuter, x.farInner, y.farInner);
    setColumns(x.farOuter, x.farInner);
    setRows(y.inner, y.farInner);
    drawQuad();
    setQuadColor(colors.upperCorner);
    drawQuad(x.outer, y.outer, x.inner, y.inner);
    setQuadColor(colors.middle);
    setRows(y.farOuter, y.farInner);
    drawQuad();
    drawQuad(x.farOuter, y.outer, x.farInner, y.inner);
    setQuadColor(colors.lowerCorner);
    setRows(y.farOuter, y.farInner);
    drawQuad();
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
    const BorderColors &colors = borderColors(box.color, sunken);
    const unsigned int rings = std::min(box.thickness, kMaxRings);
    beginQuads(box);
    for (unsigned int i = 0; i < rings; ++i) drawRing(RingLines(i, width), RingLines(i, height), colors);
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
    if (keltra::bitsOf(color.w) != keltra::kOneBits)  // isTransparent() without a floating-point comparison
        KTOPENGL::blendingOn();
    else
        KTOPENGL::blendingOff();
    beginQuads(*this);
    setQuadColor(clickedStatus ? shade(color, 0.9f, color.w) : toFixed(color.x, color.y, color.z, color.w));
    drawQuad(0, 0, pixelsToFixed(sizeX), pixelsToFixed(sizeY));
    keltra::drawBorder(*this, sizeX, sizeY, clickedStatus);
    if (scissorStatus) KTOPENGL::scissorOff();
    return true;
}
