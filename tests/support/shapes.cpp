// SPDX-License-Identifier: Zlib
#include "tests/support/shapes.h"

#include <algorithm>
#include <cmath>

namespace keltra::test {
namespace {

using formats::Node;
using formats::Vec2;
using formats::Vec3;

constexpr int kSpikeSides = 5;
constexpr float kCircle = 6.28318531f;

void addTriangle(Node &node, const Vec3 (&corners)[3], const Vec2 (&uvs)[3]) {
    formats::MeshData &mesh = node.mesh;
    const auto first = static_cast<uint16_t>(mesh.vertices.size());
    const Vec3 normal = formats::normalized(formats::cross(corners[1] - corners[0], corners[2] - corners[0]));
    mesh.vertices.insert(mesh.vertices.end(), corners, corners + 3);
    mesh.normals.insert(mesh.normals.end(), 3, normal);
    mesh.uvs.insert(mesh.uvs.end(), uvs, uvs + 3);
    mesh.faces.push_back({first, static_cast<uint16_t>(first + 1), static_cast<uint16_t>(first + 2)});
    mesh.faceNormals.push_back(normal);
}

Node meshNode(const std::string &name, const std::string &material) {
    Node node;
    node.kind = formats::NodeKind::kMesh;
    node.name = name;
    node.mesh.material = material;
    return node;
}

void setBounds(formats::MeshData &mesh) {
    mesh.minimum = mesh.maximum = mesh.vertices[0];
    for (const Vec3 &v : mesh.vertices) {
        mesh.minimum = {std::min(mesh.minimum.x, v.x), std::min(mesh.minimum.y, v.y),
                        std::min(mesh.minimum.z, v.z)};
        mesh.maximum = {std::max(mesh.maximum.x, v.x), std::max(mesh.maximum.y, v.y),
                        std::max(mesh.maximum.z, v.z)};
        mesh.radius = std::max(mesh.radius, formats::length(v));
    }
}

void addSide(Node &node, Vec3 right, Vec3 up, Vec3 middle) {
    const Vec3 a = middle - right - up, b = middle + right - up, c = middle + right + up;
    const Vec3 d = middle - right + up;
    addTriangle(node, {a, b, c}, {{0, 0}, {1, 0}, {1, 1}});
    addTriangle(node, {a, c, d}, {{0, 0}, {1, 1}, {0, 1}});
}

}  // namespace

Node boxNode(const std::string &name, const std::string &material, float half) {
    // The directions right and up as seen when facing a side.
    static constexpr Vec3 kSides[6][2] = {{{1, 0, 0}, {0, 1, 0}},  {{-1, 0, 0}, {0, 1, 0}},
                                          {{0, 0, -1}, {0, 1, 0}}, {{0, 0, 1}, {0, 1, 0}},
                                          {{1, 0, 0}, {0, 0, -1}}, {{1, 0, 0}, {0, 0, 1}}};
    Node node = meshNode(name, material);
    for (const Vec3(&side)[2] : kSides) {
        const Vec3 out = formats::cross(side[0], side[1]);
        addSide(node, side[0] * half, side[1] * half, out * half);
    }
    setBounds(node.mesh);
    return node;
}

Node boardNode(const std::string &name, const std::string &material, float half) {
    Node node = meshNode(name, material);
    addSide(node, {half, 0, 0}, {0, half, 0}, {});
    setBounds(node.mesh);
    return node;
}

Node spikeNode(const std::string &name, const std::string &material, Vec3 tip, float radius) {
    const Vec3 axis = formats::normalized(tip);
    const Vec3 helper = std::fabs(axis.y) < 0.9f ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
    const Vec3 right = formats::normalized(formats::cross(helper, axis));
    const Vec3 up = formats::cross(axis, right);
    const auto rim = [&](int i) {
        const float turn = kCircle * static_cast<float>(i % kSpikeSides) / kSpikeSides;
        return right * (std::cos(turn) * radius) + up * (std::sin(turn) * radius);
    };
    Node node = meshNode(name, material);
    for (int i = 0; i < kSpikeSides; ++i)
        addTriangle(node, {rim(i), rim(i + 1), tip}, {{0, 0}, {1, 0}, {0.5f, 1}});
    setBounds(node.mesh);
    return node;
}

}  // namespace keltra::test
