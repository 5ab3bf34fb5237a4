// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

#include "tests/tools/example_data.h"

// The court that most examples show: it has to fit a handheld, and to have what the examples show.

namespace keltra::test {
namespace {

using namespace formats;

constexpr unsigned kLargestSide = 512;
constexpr size_t kVideoMemory = 8u << 20;
constexpr size_t kMostTriangles = 7000;
constexpr size_t kMostElements = 256;  // what scene.cfg asks for

const std::vector<ExampleFile> &textures() {
    static const std::vector<ExampleFile> read = exampleFiles("scene_", ".tga");
    return read;
}

const Scene &scene() {
    static const Scene read = exampleScene("scene.kte");
    return read;
}

bool inRange(Vec3 v) {
    const float limit = 32767.0f;
    return std::fabs(v.x) < limit && std::fabs(v.y) < limit && std::fabs(v.z) < limit;
}

TEST(ExampleScene, EveryNamedTextureIsAmongTheFiles) {
    std::set<std::string> names;
    for (const ExampleFile &file : textures()) names.insert(file.name);
    EXPECT_EQ(names.size(), 15u);
    for (const Material &material : scene().materials) {
        if (material.texture == "[none]") continue;
        EXPECT_EQ(names.count(material.texture), 1u) << material.texture;
    }
}

TEST(ExampleScene, NoFileIsTakenForANormalMap) { EXPECT_TRUE(exampleFiles("", "_n.tga").empty()); }

TEST(ExampleScene, TexturesFitTheDevice) {
    size_t charged = 0;
    for (const ExampleFile &file : textures()) {
        const unsigned width = file.bytes[12] + file.bytes[13] * 256u;
        const unsigned height = file.bytes[14] + file.bytes[15] * 256u;
        EXPECT_LE(width, kLargestSide) << file.name;
        EXPECT_LE(height, kLargestSide) << file.name;
        EXPECT_EQ(width & (width - 1), 0u) << file.name;
        EXPECT_EQ(height & (height - 1), 0u) << file.name;
        // A mipmapped upload is charged four times its four bytes a pixel.
        charged += size_t{width} * height * 16;
    }
    EXPECT_GT(charged, 0u);
    EXPECT_LE(charged, kVideoMemory);
}

TEST(ExampleScene, TrianglesAndElementsFitTheDevice) {
    size_t triangles = 0, elements = 0;
    visit(scene().root, [&](const Node &node) {
        triangles += node.mesh.faces.size();
        elements += node.kind == NodeKind::kLight || (node.kind == NodeKind::kMesh && !node.mesh.hidden);
    });
    EXPECT_GT(triangles, 2000u);
    EXPECT_LE(triangles, kMostTriangles);
    EXPECT_LE(elements, kMostElements);
}

TEST(ExampleScene, MeshesAreConsistent) {
    std::set<std::string> materials;
    for (const Material &material : scene().materials) EXPECT_TRUE(materials.insert(material.name).second);
    visit(scene().root, [&](const Node &node) {
        const MeshData &mesh = node.mesh;
        if (node.kind != NodeKind::kMesh || mesh.hidden) return;
        EXPECT_EQ(materials.count(mesh.material), 1u) << node.name;
        EXPECT_EQ(mesh.normals.size(), mesh.vertices.size()) << node.name;
        EXPECT_EQ(mesh.uvs.size(), mesh.vertices.size()) << node.name;
        EXPECT_EQ(mesh.faceNormals.size(), mesh.faces.size()) << node.name;
        EXPECT_LE(mesh.vertices.size(), 65535u) << node.name;
        for (const Face &face : mesh.faces) {
            for (uint16_t index : face) EXPECT_LT(index, mesh.vertices.size()) << node.name;
        }
    });
}

TEST(ExampleScene, CoordinatesAreWithinFixedPoint) {
    visit(scene().root, [](const Node &node) {
        EXPECT_TRUE(inRange(node.position)) << node.name;
        for (Vec3 vertex : node.mesh.vertices) EXPECT_TRUE(inRange(vertex)) << node.name;
        for (Vec3 normal : node.mesh.normals) EXPECT_NEAR(length(normal), 1.0f, 0.001f) << node.name;
        for (Vec2 uv : node.mesh.uvs) EXPECT_LT(std::fabs(uv.x) + std::fabs(uv.y), 64.0f) << node.name;
    });
}

TEST(ExampleScene, BoundsEncloseTheVertices) {
    visit(scene().root, [](const Node &node) {
        const MeshData &mesh = node.mesh;
        for (Vec3 v : mesh.vertices) {
            EXPECT_TRUE(v.x >= mesh.minimum.x && v.y >= mesh.minimum.y && v.z >= mesh.minimum.z) << node.name;
            EXPECT_TRUE(v.x <= mesh.maximum.x && v.y <= mesh.maximum.y && v.z <= mesh.maximum.z) << node.name;
        }
    });
}

TEST(ExampleScene, SkinsNameBonesOfTheSceneAndWeighOne) {
    std::map<std::string, int> named;
    visit(scene().root, [&](const Node &node) { ++named[node.name]; });
    int skinned = 0;
    visit(scene().root, [&](const Node &node) {
        const MeshData &mesh = node.mesh;
        if (mesh.influences == 0) return;
        ++skinned;
        for (const std::string &bone : mesh.boneNames) EXPECT_EQ(named[bone], 1) << bone;
        ASSERT_EQ(mesh.influenceBones.size(), mesh.vertices.size() * mesh.influences);
        ASSERT_EQ(mesh.influenceWeights.size(), mesh.influenceBones.size());
        for (uint8_t bone : mesh.influenceBones) EXPECT_LT(bone, mesh.boneNames.size());
        for (size_t i = 0; i < mesh.influenceWeights.size(); i += mesh.influences) {
            float sum = 0;
            for (size_t k = 0; k < mesh.influences; ++k) sum += mesh.influenceWeights[i + k];
            EXPECT_EQ(sum, 1.0f) << node.name;
        }
    });
    EXPECT_GE(skinned, 2);
}

TEST(ExampleScene, HaveMoreLightsThanTheGlAndBothKindsOfMaterial) {
    size_t lights = 0;
    visit(scene().root, [&](const Node &node) { lights += node.kind == NodeKind::kLight; });
    EXPECT_GT(lights, 8u);
    size_t transparent = 0;
    for (const Material &material : scene().materials) transparent += material.transparency != 1.0f;
    EXPECT_GT(transparent, 0u);
    EXPECT_LT(transparent, scene().materials.size());
}

// With alpha and without: what the bits of a pixel say.
TEST(ExampleScene, TexturesAreOfBothKinds) {
    std::set<int> bits;
    for (const ExampleFile &file : textures()) bits.insert(file.bytes[16]);
    EXPECT_EQ(bits, (std::set<int>{24, 32}));
}

}  // namespace
}  // namespace keltra::test
