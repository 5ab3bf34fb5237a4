// SPDX-License-Identifier: Zlib
#include "tools/view/marks.h"

#include <algorithm>
#include <cmath>

namespace keltra::view {
namespace {

constexpr MarkColor kBoxColor = {96, 200, 216}, kSkinBoxColor = {240, 184, 88};
constexpr MarkColor kBoneColor = {255, 224, 112}, kJointColor = {255, 120, 64};
constexpr float kDegree = 3.14159265f / 180.0f;
constexpr float kOne = 65536.0f;

R3XVECTOR3D turned(const R3XMATRIX &matrix, const R3XVECTOR3D &direction) {
    return matrix.rotate(R3XVECTOR4D(direction.x, direction.y, direction.z, 0.0f));
}

R3XMATRIX rotationOf(const R3XVECTOR3D &degrees) {
    R3XMATRIX x, y, z;
    x.setRotation(degrees.x, 1.0f, 0.0f, 0.0f);
    y.setRotation(degrees.y, 0.0f, 1.0f, 0.0f);
    z.setRotation(degrees.z, 0.0f, 0.0f, 1.0f);
    return z * y * x;
}

R3XMATRIX localMatrix(const KTNODE &node) {
    if (node.transformMode == 1) return node.matrix;
    if (node.transformMode != 0) return R3XMATRIX();
    R3XMATRIX matrix = rotationOf(node.rotation);
    matrix.setTranslation(node.position + node.origin);
    return matrix;
}

template <class Visit>
void forDrawn(unsigned type, Visit visit) {
    for (unsigned i = 0; i < KTELEMENT::getNumberOfPassedElements(); ++i) {
        KTELEMENT &element = KTELEMENT::element[i];
        if (element.getNode() && element.getNode()->getType() == type) visit(element);
    }
}

// The box of a skin's present pose, which is not in the file.
void addSkinBox(MarkBatch &batch, const KTMESH &mesh, const R3XMATRIX &matrix) {
    if (!mesh.skinnedVertices || mesh.numberOfVertices == 0) return;
    std::int32_t low[3], high[3];
    std::copy_n(mesh.skinnedVertices, 3, low);
    std::copy_n(mesh.skinnedVertices, 3, high);
    for (unsigned i = 0; i < mesh.numberOfVertices * 3u; ++i) {
        low[i % 3] = std::min(low[i % 3], mesh.skinnedVertices[i]);
        high[i % 3] = std::max(high[i % 3], mesh.skinnedVertices[i]);
    }
    const auto corner = [](const std::int32_t *fixed) {
        return R3XVECTOR3D(static_cast<float>(fixed[0]) / kOne, static_cast<float>(fixed[1]) / kOne,
                           static_cast<float>(fixed[2]) / kOne);
    };
    batch.box(corner(low), corner(high), matrix, kSkinBoxColor);
}

bool isBoneOf(const KTMESH &mesh, const KTNODE *node) {
    return std::any_of(mesh.bones, mesh.bones + mesh.numberOfBones,
                       [node](const KTBONE &bone) { return bone.node == node; });
}

struct Joint {
    bool exists;
    R3XVECTOR3D place;
};

// `matrix` is from the node's parent to the eye.
void addBones(MarkBatch &batch, const KTMESH &mesh, KTNODE &node, const R3XMATRIX &matrix, Joint above) {
    const R3XMATRIX own = localMatrix(node) * matrix;
    if (node.getType() == KT_MESH && isBoneOf(mesh, &node)) {
        const R3XVECTOR3D place = own.getTranslation();
        if (above.exists) batch.line(above.place, place, kBoneColor);
        batch.point(place, kJointColor);
        above = {true, place};
    }
    for (unsigned i = 0; i < node.getNumberOfChildren(); ++i)
        if (KTNODE *child = node.getChild(i)) addBones(batch, mesh, *child, own, above);
}

MarkColor colorOf(const KTLIGHT &light) {
    const R3XVECTOR4D rgb = light.getDiffuse();
    // At full brightness, so that the mark of a dim light is visible.
    const float most = std::max({rgb.x, rgb.y, rgb.z, 0.01f});
    const auto byte = [most](float value) {
        return static_cast<unsigned char>(std::clamp(value / most, 0.25f, 1.0f) * 255.0f);
    };
    return {byte(rgb.x), byte(rgb.y), byte(rgb.z)};
}

struct Frame {
    R3XVECTOR3D along, right, up;
};

Frame frameAlong(const R3XVECTOR3D &direction) {
    Frame frame;
    frame.along = direction;
    frame.along.normalize();
    const bool upright = std::fabs(frame.along.y) > 0.9f;
    frame.right = frame.along ^ (upright ? R3XVECTOR3D(1.0f, 0.0f, 0.0f) : R3XVECTOR3D(0.0f, 1.0f, 0.0f));
    frame.right.normalize();
    frame.up = frame.right ^ frame.along;
    return frame;
}

void addStar(MarkBatch &batch, const R3XVECTOR3D &place, float size, MarkColor color) {
    for (const R3XVECTOR3D &ray :
         {R3XVECTOR3D(size, 0.0f, 0.0f), R3XVECTOR3D(0.0f, size, 0.0f), R3XVECTOR3D(0.0f, 0.0f, size),
          R3XVECTOR3D(0.7f, 0.7f, 0.0f) * size, R3XVECTOR3D(0.7f, -0.7f, 0.0f) * size}) {
        batch.line(place - ray, place + ray, color);
    }
    batch.point(place, color);
}

void addArrow(MarkBatch &batch, const R3XVECTOR3D &from, const Frame &frame, float length, MarkColor color) {
    const R3XVECTOR3D tip = from + frame.along * length, neck = from + frame.along * (0.7f * length);
    batch.line(from, tip, color);
    for (const R3XVECTOR3D &side : {frame.right, -frame.right, frame.up, -frame.up})
        batch.line(tip, neck + side * (0.15f * length), color);
}

void addCone(MarkBatch &batch, const R3XVECTOR3D &apex, const Frame &frame, float degrees, float length,
             MarkColor color) {
    constexpr unsigned kSides = 12;
    const float angle = std::clamp(degrees, 0.0f, 90.0f) * kDegree;
    R3XVECTOR3D previous;
    for (unsigned i = 0; i <= kSides; ++i) {
        const float turn = 360.0f * kDegree * static_cast<float>(i) / static_cast<float>(kSides);
        const R3XVECTOR3D out = frame.right * std::cos(turn) + frame.up * std::sin(turn);
        const R3XVECTOR3D rim =
            apex + frame.along * (length * std::cos(angle)) + out * (length * std::sin(angle));
        if (i > 0) batch.line(previous, rim, color);
        if (i > 0 && i % 3 == 0) batch.line(apex, rim, color);
        previous = rim;
    }
}

}  // namespace

void addBoxes(MarkBatch &batch) {
    forDrawn(KT_MESH, [&batch](KTELEMENT &element) {
        const KTMESH &mesh = *static_cast<KTMESH *>(element.getNode());
        if (mesh.isSkinned())
            addSkinBox(batch, mesh, *element.getMatrix());
        else
            batch.box(mesh.getMinimum(), mesh.getMaximum(), *element.getMatrix(), kBoxColor);
    });
}

void addSkeletons(MarkBatch &batch) {
    forDrawn(KT_MESH, [&batch](KTELEMENT &element) {
        KTMESH &mesh = *static_cast<KTMESH *>(element.getNode());
        if (!mesh.bones || mesh.numberOfBones == 0 || !mesh.getParent()) return;
        // The engine looks for bones below the skin's parent.
        KTNODE &parent = *mesh.getParent();
        const R3XMATRIX above = localMatrix(mesh).inverse() * *element.getMatrix();
        for (unsigned i = 0; i < parent.getNumberOfChildren(); ++i)
            if (KTNODE *child = parent.getChild(i)) addBones(batch, mesh, *child, above, {false, {}});
    });
}

void addLights(MarkBatch &batch, const R3XVECTOR3D &centre, float radius) {
    forDrawn(KT_LIGHT, [&](KTELEMENT &element) {
        const KTLIGHT &light = *static_cast<KTLIGHT *>(element.getNode());
        const MarkColor color = colorOf(light);
        // A light's rotation counts a second time for its direction.
        const Frame frame = frameAlong(
            turned(*element.getMatrix(), turned(rotationOf(light.getRotation()), light.getDirection())));
        const R3XVECTOR3D place = element.getMatrix()->getTranslation();
        if (light.getLightType() == KT_LIGHT_DIRECTIONAL) {
            addArrow(batch, centre - frame.along * (1.3f * radius), frame, 0.45f * radius, color);
            return;
        }
        addStar(batch, place, 0.06f * radius, color);
        if (light.getLightType() == KT_LIGHT_SPOT)
            addCone(batch, place, frame, light.getCutOff(), 0.4f * radius, color);
    });
}

}  // namespace keltra::view
