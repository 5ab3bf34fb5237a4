#include "tools/samples/shapes.h"

#include <algorithm>

namespace keltra::samples {
namespace {

Vec3 faceCross(const std::vector<Vec3> &vertices, const Face &face) {
    const Vec3 a = vertices[face[0]];
    return cross(vertices[face[1]] - a, vertices[face[2]] - a);
}

Vec3 turned(Vec3 v, float degrees) {
    const float s = sine(degrees), c = cosine(degrees);
    return {v.x * c + v.z * s, v.y, v.z * c - v.x * s};
}

}  // namespace

void MeshBuilder::closePatch(size_t first, int across, int along) {
    // Neighbours that fell together (the pole of a dome, the seam of a ring)
    // share a normal; comparing the grid coordinates finds them exactly.
    for (size_t i = first; i < vertices_.size(); ++i) {
        vertices_[i] = onGrid(vertices_[i]);
    }
    const size_t firstFace = faces_.size();
    const auto at = [=](int i, int j) {
        return static_cast<uint16_t>(first + static_cast<size_t>(j * (across + 1) + i));
    };
    const auto add = [this](uint16_t a, uint16_t b, uint16_t c) {
        const Face face = {a, b, c};
        if (dot(faceCross(vertices_, face), faceCross(vertices_, face)) > 0.0f) {
            faces_.push_back(face);
        }
    };
    for (int j = 0; j < along; ++j) {
        for (int i = 0; i < across; ++i) {
            add(at(i, j), at(i + 1, j), at(i + 1, j + 1));
            add(at(i, j), at(i + 1, j + 1), at(i, j + 1));
        }
    }
    std::vector<Vec3> sums(vertices_.size() - first);
    for (size_t f = firstFace; f < faces_.size(); ++f) {
        const Vec3 normal = faceCross(vertices_, faces_[f]);
        for (uint16_t index : faces_[f]) {
            sums[index - first] = sums[index - first] + normal;
        }
    }
    for (size_t i = 0; i < sums.size(); ++i) {
        Vec3 sum;
        for (size_t k = 0; k < sums.size(); ++k) {
            if (vertices_[first + k] == vertices_[first + i]) {
                sum = sum + sums[k];
            }
        }
        normals_.push_back(onGrid(normalized(sum)));
    }
}

void MeshBuilder::lathe(const std::vector<Vec2> &profile, bool smooth, const Turn &turn) {
    std::vector<float> v(profile.size());
    for (size_t i = 1; i < profile.size(); ++i) {
        const float dx = profile[i].x - profile[i - 1].x;
        const float dy = profile[i].y - profile[i - 1].y;
        v[i] = v[i - 1] + std::sqrt(dx * dx + dy * dy) * turn.vScale;
    }
    const auto addRings = [&](size_t first, int segments) {
        patch(
            turn.sides, segments,
            [&](int i, int j) {
                const Vec2 p = profile[first + static_cast<size_t>(j)];
                const float part = static_cast<float>(i) / static_cast<float>(turn.sides);
                return polar(mix(turn.from, turn.to, part), p.x, p.y);
            },
            [&](int i, int j) {
                const float part = static_cast<float>(i) / static_cast<float>(turn.sides);
                return Vec2{turn.repeats * part, v[first + static_cast<size_t>(j)]};
            });
    };
    const int segments = static_cast<int>(profile.size()) - 1;
    if (smooth) {
        addRings(0, segments);
        return;
    }
    for (int k = 0; k < segments; ++k) {
        addRings(static_cast<size_t>(k), 1);
    }
}

void MeshBuilder::box(Vec3 low, Vec3 high, float texel) {
    const float scale = 1.0f / texel;
    const auto side = [&](Vec3 corner, Vec3 right, Vec3 up) {
        patch(
            1, 1,
            [&](int i, int j) { return corner + right * static_cast<float>(i) + up * static_cast<float>(j); },
            [&](int i, int j) {
                return Vec2{static_cast<float>(i) * length(right) * scale,
                            static_cast<float>(j) * length(up) * scale};
            });
    };
    const Vec3 size = high - low;
    const Vec3 x = {size.x, 0, 0}, y = {0, size.y, 0}, z = {0, 0, size.z};
    side({low.x, low.y, high.z}, x, y);
    side({high.x, low.y, low.z}, x * -1.0f, y);
    side({high.x, low.y, high.z}, z * -1.0f, y);
    side({low.x, low.y, low.z}, z, y);
    side({low.x, high.y, high.z}, x, z * -1.0f);
    side({low.x, low.y, low.z}, x, z);
}

void MeshBuilder::billboard(Vec3 center, float halfWidth, float halfHeight) {
    patch(
        1, 1,
        [&](int i, int j) {
            return center + Vec3{halfWidth * static_cast<float>(2 * i - 1),
                                 halfHeight * static_cast<float>(2 * j - 1), 0.0f};
        },
        [](int i, int j) {
            return Vec2{static_cast<float>(i), static_cast<float>(j)};
        });
}

void MeshBuilder::triangle(Vec3 a, Vec3 b, Vec3 c) {
    const size_t first = vertices_.size();
    for (Vec3 v : {a, b, c}) {
        vertices_.push_back(onGrid(v));
    }
    uvs_.insert(uvs_.end(), {{0.0f, 0.0f}, {1.0f, 0.0f}, {0.5f, 1.0f}});
    const uint16_t i = static_cast<uint16_t>(first);
    faces_.push_back({i, static_cast<uint16_t>(i + 1), static_cast<uint16_t>(i + 2)});
    normals_.insert(normals_.end(), 3, onGrid(normalized(faceCross(vertices_, faces_.back()))));
}

void MeshBuilder::spike(Vec3 base, Vec3 tip, float radius, int sides) {
    const Vec3 axis = normalized(tip - base);
    const Vec3 helper = std::fabs(axis.y) < 0.9f ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
    const Vec3 right = normalized(cross(helper, axis));
    const Vec3 up = cross(axis, right);
    const auto rim = [&](int i) {
        const float turn = 360.0f * static_cast<float>(i % sides) / static_cast<float>(sides);
        return base + right * (cosine(turn) * radius) + up * (sine(turn) * radius);
    };
    for (int i = 0; i < sides; ++i) {
        triangle(rim(i), rim(i + 1), tip);
    }
}

void MeshBuilder::place(size_t first, float degrees, Vec3 offset) {
    for (size_t i = first; i < vertices_.size(); ++i) {
        vertices_[i] = onGrid(turned(vertices_[i], degrees) + offset);
        normals_[i] = onGrid(turned(normals_[i], degrees));
    }
}

Node MeshBuilder::finish(const std::string &name, const std::string &material, Vec3 center) const {
    Node node;
    node.kind = NodeKind::kMesh;
    node.name = name;
    node.position = onGrid(center);
    MeshData &mesh = node.mesh;
    mesh.material = material;
    mesh.normals = normals_;
    mesh.uvs = uvs_;
    mesh.faces = faces_;
    for (Vec3 v : vertices_) {
        const Vec3 p = v - node.position;
        if (mesh.vertices.empty()) {
            mesh.minimum = mesh.maximum = p;
        }
        mesh.minimum = {std::min(mesh.minimum.x, p.x), std::min(mesh.minimum.y, p.y),
                        std::min(mesh.minimum.z, p.z)};
        mesh.maximum = {std::max(mesh.maximum.x, p.x), std::max(mesh.maximum.y, p.y),
                        std::max(mesh.maximum.z, p.z)};
        mesh.radius = std::max(mesh.radius, length(p));
        mesh.vertices.push_back(p);
    }
    for (const Face &face : faces_) {
        mesh.faceNormals.push_back(onGrid(normalized(faceCross(vertices_, face))));
    }
    return node;
}

Node plainNode(const std::string &name, Vec3 position) {
    Node node;
    node.name = name;
    node.position = onGrid(position);
    return node;
}

Node pointLight(const std::string &name, Vec3 position, Vec3 color) {
    Node node;
    node.kind = NodeKind::kLight;
    node.name = name;
    node.position = onGrid(position);
    node.light.color = color;
    return node;
}

}  // namespace keltra::samples
