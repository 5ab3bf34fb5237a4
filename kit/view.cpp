// SPDX-License-Identifier: Zlib
#include <keltra/kit/view.h>

#include <keltra/camera.h>
#include <keltra/engine.h>
#include <keltra/glbridge.h>
#include <keltra/mesh.h>
#include <keltra/settings.h>

#include "kit/fault.h"
#include "kit/transform.h"

#include <cmath>

namespace {

constexpr unsigned int kDeepest = 256;

// Calls `visit(node, matrix)` with the matrix from the node to the world.
template <class Visit>
void visitPlaces(KTNODE &node, const R3XMATRIX &above, const Visit &visit, unsigned int depth = 0) {
    const R3XMATRIX matrix = keltra::kit::localMatrix(node) * above;
    visit(node, matrix);
    for (unsigned int i = 0; depth + 1 < kDeepest && i < node.getNumberOfChildren(); ++i)
        if (KTNODE *child = node.getChild(i)) visitPlaces(*child, matrix, visit, depth + 1);
}

R3XMATRIX matrixAbove(const KTNODE &node) {
    return node.getParent() ? keltra::kit::matrixTo(*node.getParent(), nullptr) : R3XMATRIX();
}

// The plane of clip space `w + sign * row >= 0`, with a normal of length 1.
R3XPLANE planeOf(const R3XMATRIX &m, int row, float sign) {
    const R3XVECTOR3D normal(m.m[3] + sign * m.m[row], m.m[7] + sign * m.m[4 + row],
                             m.m[11] + sign * m.m[8 + row]);
    const float length = normal.length(), scale = length > 0.0f ? 1.0f / length : 0.0f;
    return R3XPLANE(normal * scale, (m.m[15] + sign * m.m[12 + row]) * scale);
}

}  // namespace

KTVIEW::KTVIEW() : width(1), height(1), landscape(false) {
    // Planes that nothing is in front of.
    for (R3XPLANE &plane : planes) plane.d = -HUGE_VALF;
}

void KTVIEW::take() {
    view = *KTCAMERA::getCameraMatrix();
    KT_glGetFloatv(1, projection.m);
    both = view * projection;
    eye = view.inverse().getTranslation();
    for (int i = 0; i < 6; ++i) planes[i] = planeOf(both, i / 2, i % 2 ? -1.0f : 1.0f);
    width = KTSETTINGS::getSDLWindowX();
    height = KTSETTINGS::getSDLWindowY();
    landscape = KTSETTINGS::isSDLLandscape();
}

bool KTVIEW::toScreen(const R3XVECTOR3D &place, R3XVECTOR2D *point) const {
    const R3XVECTOR4D clip = both.transform(place);
    if (!(clip.w > 0.0f)) return false;
    const float scale = 0.5f / clip.w;
    const float x = (0.5f + clip.x * scale) * float(width), y = (0.5f - clip.y * scale) * float(height);
    if (point) *point = landscape ? R3XVECTOR2D(float(height) - y, x) : R3XVECTOR2D(x, y);
    return true;
}

// A perspective maps (x, y, -1) of eye space by the upper left 2 x 2 elements, whatever the screen's turn is.
KTRAY KTVIEW::getRay(const R3XVECTOR2D &point) const {
    const float x = landscape ? point.y : point.x, y = landscape ? float(height) - point.x : point.y;
    const float right = 2.0f * x / float(width) - 1.0f + projection.m[8];
    const float up = 1.0f - 2.0f * y / float(height) + projection.m[9];
    const float *const m = projection.m;
    const float determinant = m[0] * m[5] - m[4] * m[1];
    const float scale = determinant != 0.0f ? 1.0f / determinant : 0.0f;
    const R3XVECTOR4D way((m[5] * right - m[4] * up) * scale, (m[0] * up - m[1] * right) * scale, -1.0f,
                          0.0f);
    KTRAY ray = {eye, view.inverse().rotate(way)};
    ray.direction.normalize();
    return ray;
}

bool KTVIEW::sees(const R3XVECTOR3D &center, float radius) const {
    for (const R3XPLANE &plane : planes)
        if (plane.signedDistance(center) < -radius) return false;
    return true;
}

bool KTVIEW::sees(const KTMESH &mesh) const {
    return mesh.getRadius() < 0.0f || sees(getWorldMatrix(mesh).getTranslation(), mesh.getRadius());
}

unsigned int KTVIEW::findSeen(KTNODE *root, KTMESH **found, unsigned int most) const {
    unsigned int count = 0;
    if (!root) return 0;
    visitPlaces(*root, matrixAbove(*root), [&](KTNODE &node, const R3XMATRIX &matrix) {
        if (!node.isOfClass(KT_MESH)) return;
        KTMESH &mesh = static_cast<KTMESH &>(node);
        const float radius = mesh.getRadius();
        if (mesh.isHidden() || (radius >= 0.0f && !sees(matrix.getTranslation(), radius))) return;
        if (found && count < most) found[count] = &mesh;
        ++count;
    });
    return count;
}

unsigned int KTVIEW::findNear(KTNODE *root, const R3XVECTOR3D &center, float radius, KTNODE **found,
                              unsigned int most) {
    unsigned int count = 0;
    if (!root) return 0;
    visitPlaces(*root, matrixAbove(*root), [&](KTNODE &node, const R3XMATRIX &matrix) {
        if (!((matrix.getTranslation() - center).squaredLength() <= radius * radius)) return;
        if (found && count < most) found[count] = &node;
        ++count;
    });
    return count;
}

R3XMATRIX KTVIEW::getWorldMatrix(const KTNODE &node) { return keltra::kit::matrixTo(node, nullptr); }

bool KTVIEW::hitsSphere(const KTRAY &ray, const R3XVECTOR3D &center, float radius, float *distance) {
    const R3XVECTOR3D way = center - ray.origin;
    const float outside = way.squaredLength() - radius * radius, along = way % ray.direction;
    const float root = along * along - outside;
    if (outside > 0.0f && (along < 0.0f || root < 0.0f)) return false;
    if (distance) *distance = outside > 0.0f ? along - std::sqrt(root) : 0.0f;
    return true;
}

bool KTVIEW::hitsPlane(const KTRAY &ray, const R3XPLANE &plane, float *distance) {
    const float slope = R3XVECTOR3D(plane.a, plane.b, plane.c) % ray.direction;
    const float from = plane.signedDistance(ray.origin);
    if (slope == 0.0f || from * slope > 0.0f) return false;
    if (distance) *distance = -from / slope;
    return true;
}

unsigned int KTVIEW::pick(const R3XVECTOR2D &point) {
    const int x = static_cast<int>(std::floor(point.x)), y = static_cast<int>(std::floor(point.y));
    if (!KTSETTINGS::isSDLLandscape()) return KELTRA::select(x, y + 1);
    return KELTRA::select(KTSETTINGS::getSDLWindowY() - x, KTSETTINGS::getSDLWindowY() - y);
}

bool KTHIDDEN::hide(KTNODE *subtree) {
    const char *const call = "KTHIDDEN::hide";
    if (!subtree) return keltra::kit::failNull(call, "subtree");
    if (node || subtree->isRoot())
        return keltra::kit::fail(
            KT_FAULT_STATE, call,
            {nullptr, 0, nullptr, node ? "another is hidden" : "it has no parent", nullptr});
    KTNODE *const from = subtree->getParent();
    if (!subtree->unlink()) return false;
    node = subtree;
    parent = from;
    return true;
}

bool KTHIDDEN::show() {
    if (!node) return false;
    const bool good = node->link(parent);
    node = parent = nullptr;
    return good;
}
