// SPDX-License-Identifier: Zlib
#include <keltra/kit/shapes.h>

#include <keltra/matrix.h>
#include <keltra/mesh.h>

#include "kit/fault.h"
#include "kit/mesh_builder.h"

#include <cmath>
#include <cstdio>
#include <initializer_list>

using keltra::kit::MeshBuilder;

namespace {

constexpr float kDegree = 180.0f / 3.14159265f;
constexpr unsigned int kFinest = 256;  // squares or slices in one direction: more vertices than a mesh takes

// Sine and cosine of `part` of a turn, as the engine computes them.
struct Direction {
    float sine, cosine;
    explicit Direction(float part) {
        R3XMATRIX turn;
        turn.setRotation(360.0f * part, 0.0f, 0.0f, 1.0f);
        cosine = turn.m[0];
        sine = turn.m[1];
    }
};

bool areSizes(const char *call, const char *names, std::initializer_list<float> sizes) {
    for (float size : sizes)
        if (!(size > 0.0f))
            return keltra::kit::fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, names, "0 or less", "above 0"});
    return true;
}

bool isCount(const char *call, const char *name, unsigned int count, unsigned int least) {
    if (count >= least && count <= kFinest) return true;
    char found[16], expected[32];
    std::snprintf(found, sizeof found, "%u", count);
    std::snprintf(expected, sizeof expected, "%u to %u", least, kFinest);
    return keltra::kit::fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, name, found, expected});
}

// A rectangle of a body: its lower left corner and its edges, seen from the front.
void addSide(MeshBuilder *mesh, const R3XVECTOR3D &corner, const R3XVECTOR3D &right, const R3XVECTOR3D &up) {
    const unsigned int first = mesh->vertexCount();
    R3XVECTOR3D normal = right ^ up;
    normal.normalize();
    mesh->vertex(corner, normal, 0.0f, 0.0f);
    mesh->vertex(corner + right, normal, 1.0f, 0.0f);
    mesh->vertex(corner + right + up, normal, 1.0f, 1.0f);
    mesh->vertex(corner + up, normal, 0.0f, 1.0f);
    mesh->square(first, first + 1, first + 2, first + 3);
}

// The closed end of a cylinder.
void addCap(MeshBuilder *mesh, float radius, float height, unsigned int slices, float up) {
    const unsigned int first = mesh->vertexCount();
    const R3XVECTOR3D normal(0.0f, up, 0.0f);
    for (unsigned int i = 0; i < slices; ++i) {
        const Direction at(static_cast<float>(i) / static_cast<float>(slices));
        mesh->vertex(R3XVECTOR3D(radius * at.sine, height, radius * at.cosine), normal, 0.5f + 0.5f * at.sine,
                     0.5f - 0.5f * up * at.cosine);
    }
    for (unsigned int i = 2; i < slices; ++i) {
        if (up > 0.0f)
            mesh->face(first, first + i - 1, first + i);
        else
            mesh->face(first, first + i, first + i - 1);
    }
}

}  // namespace

KTMESH *KTSHAPES::makePlane(float width, float depth, unsigned int columns, unsigned int rows, float repeat) {
    const char *const call = "KTSHAPES::makePlane";
    if (!areSizes(call, "width, depth", {width, depth}) || !isCount(call, "columns", columns, 1) ||
        !isCount(call, "rows", rows, 1))
        return nullptr;
    MeshBuilder mesh(call, (columns + 1) * (rows + 1), 2 * columns * rows);
    const float density = repeat / width;
    for (unsigned int row = 0; mesh.isGood() && row <= rows; ++row) {
        for (unsigned int column = 0; column <= columns; ++column) {
            const float x = width * static_cast<float>(column) / static_cast<float>(columns);
            const float z = depth * static_cast<float>(row) / static_cast<float>(rows);
            mesh.vertex(R3XVECTOR3D(x - 0.5f * width, 0.0f, z - 0.5f * depth), R3XVECTOR3D(0, 1, 0),
                        x * density, (depth - z) * density);
            if (row == 0 || column == 0) continue;
            const unsigned int here = row * (columns + 1) + column, behind = here - columns - 1;
            mesh.square(here - 1, here, behind, behind - 1);
        }
    }
    return mesh.finish();
}

KTMESH *KTSHAPES::makeQuad(float width, float height) {
    const char *const call = "KTSHAPES::makeQuad";
    if (!areSizes(call, "width, height", {width, height})) return nullptr;
    MeshBuilder mesh(call, 4, 2);
    if (mesh.isGood())
        addSide(&mesh, R3XVECTOR3D(-0.5f * width, -0.5f * height, 0.0f), R3XVECTOR3D(width, 0.0f, 0.0f),
                R3XVECTOR3D(0.0f, height, 0.0f));
    return mesh.finish();
}

KTMESH *KTSHAPES::makeBox(float width, float height, float depth) {
    const char *const call = "KTSHAPES::makeBox";
    if (!areSizes(call, "width, height, depth", {width, height, depth})) return nullptr;
    MeshBuilder mesh(call, 24, 12);
    if (!mesh.isGood()) return nullptr;
    const R3XVECTOR3D x(width, 0.0f, 0.0f), y(0.0f, height, 0.0f), z(0.0f, 0.0f, depth);
    const R3XVECTOR3D low = (x + y + z) * -0.5f, high = (x + y + z) * 0.5f;
    addSide(&mesh, low + z, x, y);        // front
    addSide(&mesh, high - y - z, -x, y);  // back
    addSide(&mesh, low, z, y);            // left
    addSide(&mesh, high - y, -z, y);      // right
    addSide(&mesh, low + y + z, x, -z);   // top
    addSide(&mesh, low, x, z);            // bottom
    return mesh.finish();
}

KTMESH *KTSHAPES::makeSphere(float radius, unsigned int slices, unsigned int rings) {
    const char *const call = "KTSHAPES::makeSphere";
    if (!areSizes(call, "radius", {radius}) || !isCount(call, "slices", slices, 3) ||
        !isCount(call, "rings", rings, 2))
        return nullptr;
    MeshBuilder mesh(call, (slices + 1) * (rings + 1), 2 * slices * (rings - 1));
    for (unsigned int ring = 0; mesh.isGood() && ring <= rings; ++ring) {
        const float v = static_cast<float>(ring) / static_cast<float>(rings);
        const Direction down(0.5f * v);
        for (unsigned int slice = 0; slice <= slices; ++slice) {
            const float u = static_cast<float>(slice) / static_cast<float>(slices);
            const Direction around(u);
            const R3XVECTOR3D normal(down.sine * around.sine, down.cosine, down.sine * around.cosine);
            mesh.vertex(normal * radius, normal, u, 1.0f - v);
            if (ring == 0 || slice == 0) continue;
            const unsigned int here = ring * (slices + 1) + slice, above = here - slices - 1;
            if (ring < rings) mesh.face(here - 1, here, above - 1);
            if (ring > 1) mesh.face(here, above, above - 1);
        }
    }
    return mesh.finish();
}

KTMESH *KTSHAPES::makeCylinder(float bottomRadius, float topRadius, float height, unsigned int slices,
                               bool capped) {
    const char *const call = "KTSHAPES::makeCylinder";
    if (!(bottomRadius >= 0.0f) || !(topRadius >= 0.0f)) bottomRadius = topRadius = 0.0f;
    if (!areSizes(call, "radius, height", {bottomRadius + topRadius, height}) ||
        !isCount(call, "slices", slices, 3))
        return nullptr;
    const unsigned int caps = capped ? (bottomRadius > 0.0f) + (topRadius > 0.0f) : 0;
    MeshBuilder mesh(call, 2 * (slices + 1) + caps * slices, 2 * slices + caps * (slices - 2));
    const float high = 0.5f * height, slope = bottomRadius - topRadius;
    const float scale = 1.0f / std::sqrt(height * height + slope * slope);
    for (unsigned int slice = 0; mesh.isGood() && slice <= slices; ++slice) {
        const float u = static_cast<float>(slice) / static_cast<float>(slices);
        const Direction at(u);
        const R3XVECTOR3D normal(height * scale * at.sine, slope * scale, height * scale * at.cosine);
        mesh.vertex(R3XVECTOR3D(bottomRadius * at.sine, -high, bottomRadius * at.cosine), normal, u, 0.0f);
        mesh.vertex(R3XVECTOR3D(topRadius * at.sine, high, topRadius * at.cosine), normal, u, 1.0f);
        if (slice > 0) mesh.square(2 * slice - 2, 2 * slice, 2 * slice + 1, 2 * slice - 1);
    }
    if (mesh.isGood() && capped && bottomRadius > 0.0f) addCap(&mesh, bottomRadius, -high, slices, -1.0f);
    if (mesh.isGood() && capped && topRadius > 0.0f) addCap(&mesh, topRadius, high, slices, 1.0f);
    return mesh.finish();
}

void KTSHAPES::faceEye(KTNODE *node, const R3XVECTOR3D &eye, bool upright) {
    if (!node) return;
    const R3XVECTOR3D way = eye - node->getPosition();
    if (upright) return node->setRotation(0.0f, std::atan2(way.x, way.z) * kDegree, 0.0f);
    // A node is turned about y first, then about x.
    const float across = std::sqrt(way.y * way.y + way.z * way.z);
    node->setRotation(std::atan2(-way.y, way.z) * kDegree, std::atan2(way.x, across) * kDegree, 0.0f);
}
