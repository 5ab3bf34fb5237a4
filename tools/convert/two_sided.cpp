// SPDX-License-Identifier: Zlib
#include "tools/convert/two_sided.h"

#include "formats/limits.h"

#include <array>
#include <cstdint>
#include <map>
#include <utility>

namespace keltra::convert {
namespace {

using formats::MeshData;
using formats::Vec3;

Vec3 reversed(const Vec3 &v) { return {-v.x + 0.0f, -v.y + 0.0f, -v.z + 0.0f}; }

void turn(MeshData &mesh) {
    for (formats::Face &face : mesh.faces) std::swap(face[1], face[2]);
    for (Vec3 &normal : mesh.normals) normal = reversed(normal);
    for (Vec3 &normal : mesh.faceNormals) normal = reversed(normal);
}

template <class T>
void append(std::vector<T> &list, const std::vector<T> &more) {
    list.insert(list.end(), more.begin(), more.end());
}

// Each vertex's number among the places that differ.
std::vector<unsigned> placesOf(const MeshData &mesh) {
    std::map<std::array<float, 3>, unsigned> known;
    std::vector<unsigned> places;
    places.reserve(mesh.vertices.size());
    for (const Vec3 &v : mesh.vertices) {
        const std::array<float, 3> key = {v.x + 0.0f, v.y + 0.0f, v.z + 0.0f};
        places.push_back(known.emplace(key, static_cast<unsigned>(known.size())).first->second);
    }
    return places;
}

}  // namespace

bool isClosed(const MeshData &mesh) {
    const std::vector<unsigned> places = placesOf(mesh);
    std::map<std::pair<unsigned, unsigned>, int> edges;  // with the smaller place first
    for (const formats::Face &face : mesh.faces) {
        for (unsigned i = 0; i < 3; ++i) {
            const unsigned a = places[face[i]], b = places[face[(i + 1) % 3]];
            edges[{a < b ? a : b, a < b ? b : a}] += a < b ? 1 : -1;
        }
    }
    for (const auto &edge : edges)
        if (edge.second != 0) return false;
    return true;
}

void addBackSides(std::vector<MeshData> &meshes, std::size_t index) {
    MeshData back = meshes[index];
    turn(back);
    MeshData &front = meshes[index];
    const std::size_t count = front.vertices.size();
    if (count * 2 > kMaxCount || front.faces.size() * 2 > kMaxCount) {
        meshes.insert(meshes.begin() + static_cast<std::ptrdiff_t>(index) + 1, std::move(back));
        return;
    }
    for (formats::Face &face : back.faces)
        for (std::uint16_t &corner : face) corner = static_cast<std::uint16_t>(corner + count);
    append(front.vertices, back.vertices);
    append(front.normals, back.normals);
    append(front.uvs, back.uvs);
    append(front.faces, back.faces);
    append(front.faceNormals, back.faceNormals);
    append(front.influenceBones, back.influenceBones);
    append(front.influenceWeights, back.influenceWeights);
}

}  // namespace keltra::convert
