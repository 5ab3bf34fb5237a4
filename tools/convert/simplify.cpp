// SPDX-License-Identifier: Zlib
#include "tools/convert/simplify.h"

#include <meshoptimizer.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace keltra::convert {
namespace {

using formats::MeshData;
using formats::Vec3;

using Indices = std::vector<unsigned>;

constexpr float kAnyError = 1e6f;  // the number of triangles decides

Indices indicesOf(const MeshData &mesh) {
    Indices indices;
    indices.reserve(mesh.faces.size() * 3);
    for (const formats::Face &face : mesh.faces) indices.insert(indices.end(), face.begin(), face.end());
    return indices;
}

// Vertices that differ in their normals only are one: otherwise no edge of a mesh with flat sides could be
// removed.
Indices withoutNormals(const MeshData &mesh, const Indices &indices) {
    std::vector<meshopt_Stream> streams = {{mesh.vertices.data(), sizeof(Vec3), sizeof(Vec3)}};
    if (!mesh.uvs.empty()) streams.push_back({mesh.uvs.data(), sizeof(formats::Vec2), sizeof(formats::Vec2)});
    const std::size_t count = mesh.influences;
    if (count > 0) {
        streams.push_back({mesh.influenceBones.data(), count, count});
        streams.push_back({mesh.influenceWeights.data(), count * sizeof(float), count * sizeof(float)});
    }
    Indices merged(indices.size());
    meshopt_generateShadowIndexBufferMulti(merged.data(), indices.data(), indices.size(),
                                           mesh.vertices.size(), streams.data(), streams.size());
    return merged;
}

// The vertices that indices use, numbered without gaps: the library takes vertices that are not used for
// seams.
struct Compact {
    explicit Compact(const MeshData &mesh, const Indices &used) : place(mesh.vertices.size(), -1) {
        for (const unsigned vertex : used) {
            if (place[vertex] < 0) {
                place[vertex] = static_cast<int>(original.size());
                original.push_back(vertex);
                positions.push_back(mesh.vertices[vertex]);
            }
            indices.push_back(static_cast<unsigned>(place[vertex]));
        }
    }

    Indices indices, original;
    std::vector<Vec3> positions;

   private:
    std::vector<int> place;
};

Vec3 normalOf(const MeshData &mesh, const unsigned *corners) {
    const Vec3 &origin = mesh.vertices[corners[0]];
    return formats::cross(mesh.vertices[corners[1]] - origin, mesh.vertices[corners[2]] - origin);
}

// Replaces each corner by the vertex of the same place whose normal is nearest to that of the triangle.
void chooseNormals(const MeshData &mesh, const Indices &indices, const Indices &merged, Indices &corners) {
    std::vector<Indices> alike(mesh.vertices.size());
    std::vector<bool> seen(mesh.vertices.size());
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (seen[indices[i]]) continue;
        seen[indices[i]] = true;
        alike[merged[i]].push_back(indices[i]);
    }
    for (std::size_t i = 0; i + 2 < corners.size(); i += 3) {
        const Vec3 normal = normalOf(mesh, &corners[i]);
        for (std::size_t k = i; k < i + 3; ++k) {
            const Indices &choice = alike[corners[k]];
            corners[k] = *std::max_element(choice.begin(), choice.end(), [&](unsigned a, unsigned b) {
                return formats::dot(mesh.normals[a], normal) < formats::dot(mesh.normals[b], normal);
            });
        }
    }
}

template <class T>
void keep(std::vector<T> &list, const Indices &kept, std::size_t perVertex) {
    if (list.empty()) return;
    std::vector<T> result;
    result.reserve(kept.size() * perVertex);
    for (const unsigned vertex : kept)
        for (std::size_t i = 0; i < perVertex; ++i) result.push_back(list[vertex * perVertex + i]);
    list = std::move(result);
}

// The mesh of these triangles, with the vertices that they use.
void take(MeshData &mesh, const Indices &corners) {
    std::vector<int> place(mesh.vertices.size(), -1);
    Indices kept;
    std::vector<formats::Face> faces;
    std::vector<Vec3> faceNormals;
    for (std::size_t i = 0; i + 2 < corners.size(); i += 3) {
        const Vec3 normal = normalOf(mesh, &corners[i]);
        if (!(formats::length(normal) > 0.0f)) continue;
        formats::Face face;
        for (std::size_t k = 0; k < 3; ++k) {
            int &at = place[corners[i + k]];
            if (at < 0) {
                at = static_cast<int>(kept.size());
                kept.push_back(corners[i + k]);
            }
            face[k] = static_cast<std::uint16_t>(at);
        }
        faces.push_back(face);
        faceNormals.push_back(formats::normalized(normal));
    }
    mesh.faces = std::move(faces);
    mesh.faceNormals = std::move(faceNormals);
    keep(mesh.normals, kept, 1);
    keep(mesh.uvs, kept, 1);
    keep(mesh.influenceBones, kept, mesh.influences);
    keep(mesh.influenceWeights, kept, mesh.influences);
    keep(mesh.vertices, kept, 1);
}

}  // namespace

float simplify(MeshData &mesh, double share, bool keepEdges) {
    const std::size_t target = static_cast<std::size_t>(std::floor(double(mesh.faces.size()) * share)) * 3;
    if (target >= mesh.faces.size() * 3) return 0.0f;
    // Bytes are compared: there must be one zero.
    for (Vec3 &v : mesh.vertices) v = v + Vec3{};
    const Indices indices = indicesOf(mesh);
    const Indices merged = withoutNormals(mesh, indices);
    const Compact compact(mesh, merged);
    Indices corners(indices.size());
    float error = 0.0f;
    corners.resize(meshopt_simplify(corners.data(), compact.indices.data(), compact.indices.size(),
                                    &compact.positions[0].x, compact.positions.size(), sizeof(Vec3),
                                    std::max<std::size_t>(target, 3), kAnyError,
                                    keepEdges ? meshopt_SimplifyLockBorder : 0, &error));
    for (unsigned &corner : corners) corner = compact.original[corner];
    if (corners.empty()) return 0.0f;
    chooseNormals(mesh, indices, merged, corners);
    take(mesh, corners);
    return error;
}

}  // namespace keltra::convert
