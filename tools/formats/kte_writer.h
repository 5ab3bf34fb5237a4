// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_KTE_WRITER_H
#define KELTRA_FORMATS_KTE_WRITER_H

// Writes KTE scene files, versions 1.5a and 1.6a, the same bytes on every machine. The structures hold what
// goes into the file and nothing is checked: every count is the size of its own list, so lists that disagree
// make an inconsistent file, which tests of the loader need.

#include "tools/formats/vec.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace keltra::formats {

enum class KteVersion { k15a, k16a };

struct Material {
    std::string name;
    std::string texture = "[none]";
    std::string shader = "[none]";
    Color ambient = {0.2f, 0.2f, 0.2f, 1.0f};
    Color diffuse = {0.6f, 0.6f, 0.6f, 1.0f};
    Color specular = {0.2f, 0.2f, 0.2f, 1.0f};
    Color emission = {0.0f, 0.0f, 0.0f, 1.0f};
    float transparency = 1.0f;
    float shininess = 0.0f;
};

enum class NodeKind : std::uint8_t { kPlain = 0, kLight = 1, kMesh = 2 };
enum class LightType : std::uint8_t { kPoint = 0, kDirectional = 1, kSpot = 2 };

struct LightData {
    LightType type = LightType::kPoint;
    Vec3 direction;
    float cutOff = 180.0f;
    Vec3 color = {1.0f, 1.0f, 1.0f};
};

using Face = std::array<std::uint16_t, 3>;

struct MeshData {
    Vec3 rotation;  // degrees
    std::string material;
    float radius = 0.0f;
    Vec3 minimum;
    Vec3 maximum;
    bool hidden = false;
    std::vector<Vec3> vertices;
    std::vector<Vec3> normals;
    std::vector<Vec2> uvs;
    std::vector<Face> faces;
    std::vector<Vec3> faceNormals;
    std::uint16_t influences = 0;  // per vertex; the three lists below are written only if it is not 0
    std::vector<std::uint8_t> influenceBones;
    std::vector<float> influenceWeights;
    std::vector<std::string> boneNames;
    std::uint8_t hiddenByte = 1;  // the byte that marks a hidden mesh
    // Version 1.5a only, 12 bytes per vertex and 16 per face; missing bytes are written as zeros.
    std::vector<std::uint8_t> oldVertexData, oldFaceData;
};

struct Node {
    NodeKind kind = NodeKind::kPlain;
    std::uint32_t auxId = 0;  // the ignored first word of a light and of a mesh
    std::string name;
    Vec3 position;
    Vec3 origin;  // plain nodes and meshes
    LightData light;
    MeshData mesh;
    std::vector<Node> children;
};

struct Scene {
    std::vector<Material> materials;
    Node root;
    std::uint8_t afterMagic = 0;
    std::vector<std::uint8_t> rest;  // after the tree; the engine does not read it
};

// Offset and size of one field of the file. Names are "materialCount", "material[i].texture",
// "node[i].children", ..., nodes counted in file order (depth-first, the root is 0). A list has one mark.
struct Mark {
    std::string name;
    std::size_t offset = 0;
    std::size_t size = 0;
};

using Marks = std::vector<Mark>;

// The bytes of the file. The mark of every field is appended to `marks`, unless null, in file order.
std::vector<std::uint8_t> writeKte(const Scene &scene, KteVersion version, Marks *marks = nullptr);

// The mark of that name, or null.
const Mark *findMark(const Marks &marks, const std::string &name);

}  // namespace keltra::formats

#endif
