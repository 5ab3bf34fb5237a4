// SPDX-License-Identifier: Zlib
#include "tools/view/marks.h"

#include <algorithm>
#include <cmath>

namespace keltra::view {
namespace {

constexpr GLfixed kOne = 65536;
constexpr GLfixed kPointSize = 4 * kOne, kLineWidth = kOne;

GLfixed toFixed(float value) {
    return static_cast<GLfixed>(std::clamp(value, -32767.0f, 32767.0f) * static_cast<float>(kOne));
}

R3XVECTOR3D placed(const R3XMATRIX &matrix, float x, float y, float z) {
    const R3XVECTOR4D point = matrix.transform(R3XVECTOR3D(x, y, z));
    return R3XVECTOR3D(point.x, point.y, point.z);
}

bool isPlace(const R3XVECTOR3D &place) {
    return std::isfinite(place.x) && std::isfinite(place.y) && std::isfinite(place.z);
}

}  // namespace

void MarkBatch::Vertices::add(const R3XVECTOR3D &place, MarkColor color) {
    places.insert(places.end(), {toFixed(place.x), toFixed(place.y), toFixed(place.z)});
    colors.insert(colors.end(), {color.r, color.g, color.b, 255});
}

void MarkBatch::Vertices::draw(GLenum primitive) const {
    if (places.empty()) return;
    glVertexPointer(3, GL_FIXED, 0, places.data());
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, colors.data());
    glDrawArrays(primitive, 0, static_cast<GLsizei>(places.size() / 3));
}

// The arrays keep their capacity for the next frame.
void MarkBatch::clear() {
    for (Vertices *vertices : {&lineEnds, &dots}) {
        vertices->places.clear();
        vertices->colors.clear();
    }
}

void MarkBatch::line(const R3XVECTOR3D &from, const R3XVECTOR3D &to, MarkColor color) {
    if (!isPlace(from) || !isPlace(to)) return;
    lineEnds.add(from, color);
    lineEnds.add(to, color);
}

void MarkBatch::point(const R3XVECTOR3D &place, MarkColor color) {
    if (isPlace(place)) dots.add(place, color);
}

void MarkBatch::box(const R3XVECTOR3D &low, const R3XVECTOR3D &high, const R3XMATRIX &matrix,
                    MarkColor color) {
    R3XVECTOR3D corners[8];
    for (unsigned i = 0; i < 8; ++i)
        corners[i] = placed(matrix, i & 1 ? high.x : low.x, i & 2 ? high.y : low.y, i & 4 ? high.z : low.z);
    for (unsigned i = 0; i < 8; ++i)
        for (unsigned side : {1u, 2u, 4u})
            if (!(i & side)) line(corners[i], corners[i | side], color);
}

// Leaves client arrays to `begin2D`, which sets all of them.
void MarkBatch::draw(bool throughModel) const {
    if (lineEnds.places.empty() && dots.places.empty()) return;
    KTLIGHT::lightingOff();
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    KTOPENGL::blendingOff();
    KTMATERIAL::reset();
    KTOPENGL::vertexArrayOn();
    KTOPENGL::colorArrayOn();
    KTOPENGL::normalArrayOff();
    KTOPENGL::textureArrayOff();
    KT_glLoadIdentity();
    if (throughModel) glDisable(GL_DEPTH_TEST);
    glLineWidthx(kLineWidth);
    glPointSizex(kPointSize);
    lineEnds.draw(GL_LINES);
    dots.draw(GL_POINTS);
    glPointSizex(kOne);
    if (throughModel) glEnable(GL_DEPTH_TEST);
    KTOPENGL::colorArrayOff();
}

}  // namespace keltra::view
