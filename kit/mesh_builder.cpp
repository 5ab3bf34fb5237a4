// SPDX-License-Identifier: Zlib
#include "kit/mesh_builder.h"

#include <keltra/foundation.h>
#include <keltra/mesh.h>

#include "kit/fault.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace keltra {
namespace kit {
namespace {

constexpr unsigned int kMost = 65535;  // vertices, and faces, of a mesh
constexpr float kOne = 65536.0f;

R3XVECTOR3D placeOf(const KTMESH &mesh, unsigned int vertex) {
    const std::int32_t *const at = mesh.vertices + 3 * vertex;
    return R3XVECTOR3D(float(at[0]), float(at[1]), float(at[2])) * (1.0f / kOne);
}

}  // namespace

std::int32_t toFixed(float value) {
    if (!(value >= -32768.0f && value < 32768.0f)) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(value * kOne);
}

// One block holds the arrays, as those of meshes from files: the mesh releases it.
MeshBuilder::MeshBuilder(const char *call, unsigned int vertexCount, unsigned int faceCount)
    : mesh(nullptr), vertices(0), faces(0) {
    if (vertexCount > kMost || faceCount > kMost) {
        const bool few = vertexCount <= kMost;
        failRange(call, few ? "faces" : "vertices", long(few ? faceCount : vertexCount), kMost);
        return;
    }
    const std::size_t normals = vertexCount * 3 * sizeof(std::int32_t), uvs = 2 * normals;
    const std::size_t faceNormals = uvs + vertexCount * 2 * sizeof(std::int32_t);
    const std::size_t indices = faceNormals + faceCount * 3 * sizeof(float);
    const std::size_t size = indices + faceCount * 3 * sizeof(std::uint16_t);
    char *const block = static_cast<char *>(vnfMalloc(static_cast<unsigned int>(size)));
    mesh = block ? new (std::nothrow) KTMESH : nullptr;
    if (!mesh) {
        if (block) vnfFree(block);
        failMemory(call);
        return;
    }
    mesh->dataBlock = block;
    mesh->numberOfVertices = static_cast<std::uint16_t>(vertexCount);
    mesh->numberOfUVs = mesh->numberOfVertices;
    mesh->numberOfFaces = static_cast<std::uint16_t>(faceCount);
    mesh->vertices = reinterpret_cast<std::int32_t *>(block);
    mesh->vertexNormals = reinterpret_cast<std::int32_t *>(block + normals);
    mesh->uvs = reinterpret_cast<std::int32_t *>(block + uvs);
    mesh->faceNormals = reinterpret_cast<float *>(block + faceNormals);
    mesh->faces = reinterpret_cast<std::uint16_t *>(block + indices);
}

MeshBuilder::~MeshBuilder() { delete mesh; }

void MeshBuilder::vertex(const R3XVECTOR3D &place, const R3XVECTOR3D &normal, float u, float v) {
    for (int i = 0; i < 3; ++i) {
        mesh->vertices[3 * vertices + i] = toFixed(place[i]);
        mesh->vertexNormals[3 * vertices + i] = toFixed(normal[i]);
    }
    mesh->uvs[2 * vertices] = toFixed(u);
    mesh->uvs[2 * vertices + 1] = toFixed(v);
    ++vertices;
}

void MeshBuilder::face(unsigned int a, unsigned int b, unsigned int c) {
    std::uint16_t *const face = mesh->faces + 3 * faces;
    face[0] = static_cast<std::uint16_t>(a);
    face[1] = static_cast<std::uint16_t>(b);
    face[2] = static_cast<std::uint16_t>(c);
    const R3XVECTOR3D corner = placeOf(*mesh, a);
    R3XVECTOR3D normal = (placeOf(*mesh, b) - corner) ^ (placeOf(*mesh, c) - corner);
    if (normal.squaredLength() > 0.0f) normal.normalize();
    for (int i = 0; i < 3; ++i) mesh->faceNormals[3 * faces + i] = normal[i];
    ++faces;
}

void MeshBuilder::boundMesh() {
    float squared = 0.0f;
    for (unsigned int i = 0; i < vertices; ++i) {
        const R3XVECTOR3D place = placeOf(*mesh, i);
        squared = std::max(squared, place.squaredLength());
        if (i == 0) mesh->minimum = mesh->maximum = place;
        for (int axis = 0; axis < 3; ++axis) {
            mesh->minimum[axis] = std::min(mesh->minimum[axis], place[axis]);
            mesh->maximum[axis] = std::max(mesh->maximum[axis], place[axis]);
        }
    }
    mesh->radius = std::sqrt(squared);
}

KTMESH *MeshBuilder::finish(bool hasUVs) {
    if (!mesh) return nullptr;
    if (!hasUVs) mesh->numberOfUVs = 0;
    boundMesh();
    KTMESH *const made = mesh;
    mesh = nullptr;
    return made;
}

}  // namespace kit
}  // namespace keltra
