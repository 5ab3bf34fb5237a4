#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <set>

#include "tools/samples/scene.h"

namespace keltra::samples {
namespace {

constexpr unsigned kLargestSide = 512;
constexpr size_t kVideoMemory = 8u << 20;
constexpr size_t kMostTriangles = 7000;
constexpr size_t kMostElements = 256;  // what scene.cfg asks for

const std::vector<SampleFile> &files() {
    static const std::vector<SampleFile> made = makeSampleFiles();
    return made;
}

const Scene &scene() {
    static const Scene made = makeScene();
    return made;
}

void visit(const Node &node, const std::function<void(const Node &)> &each) {
    each(node);
    for (const Node &child : node.children) visit(child, each);
}

// FNV-1a, 64 bits.
uint64_t checksum(const std::vector<SampleFile> &list) {
    uint64_t sum = 14695981039346656037u;
    const auto add = [&sum](uint8_t byte) { sum = (sum ^ byte) * 1099511628211u; };
    for (const SampleFile &file : list) {
        for (char c : file.name) add(static_cast<uint8_t>(c));
        for (uint8_t byte : file.bytes) add(byte);
    }
    return sum;
}

bool inRange(Vec3 v) {
    const float limit = 32767.0f;
    return std::fabs(v.x) < limit && std::fabs(v.y) < limit && std::fabs(v.z) < limit;
}

TEST(Samples, AreTheSameEveryTime) {
    const std::vector<SampleFile> again = makeSampleFiles();
    ASSERT_EQ(again.size(), files().size());
    for (size_t i = 0; i < again.size(); ++i) {
        EXPECT_EQ(again[i].name, files()[i].name);
        EXPECT_EQ(again[i].bytes, files()[i].bytes) << again[i].name;
    }
}

// A change of the scene changes this on purpose; a change of compiler or machine must not.
TEST(Samples, AreTheSameOnEveryMachine) { EXPECT_EQ(checksum(files()), 4791329678086712980u); }

TEST(Samples, EveryNamedTextureIsAmongTheFiles) {
    std::set<std::string> names;
    for (const SampleFile &file : files()) EXPECT_TRUE(names.insert(file.name).second) << file.name;
    for (const Material &material : scene().materials) {
        if (material.texture == "[none]") continue;
        EXPECT_EQ(names.count(material.texture), 1u) << material.texture;
    }
}

TEST(Samples, NoFileIsTakenForANormalMap) {
    for (const SampleFile &file : files()) EXPECT_EQ(file.name.find("_n.tga"), std::string::npos);
}

TEST(Samples, TexturesFitTheDevice) {
    size_t charged = 0;
    for (const SampleFile &file : files()) {
        if (file.name.find(".tga") == std::string::npos) continue;
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

TEST(Samples, TrianglesAndElementsFitTheDevice) {
    size_t triangles = 0, elements = 0;
    visit(scene().root, [&](const Node &node) {
        triangles += node.mesh.faces.size();
        elements += node.kind == NodeKind::kLight || (node.kind == NodeKind::kMesh && !node.mesh.hidden);
    });
    EXPECT_GT(triangles, 2000u);
    EXPECT_LE(triangles, kMostTriangles);
    EXPECT_LE(elements, kMostElements);
}

TEST(Samples, MeshesAreConsistent) {
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

TEST(Samples, CoordinatesAreWithinFixedPoint) {
    visit(scene().root, [](const Node &node) {
        EXPECT_TRUE(inRange(node.position)) << node.name;
        for (Vec3 vertex : node.mesh.vertices) EXPECT_TRUE(inRange(vertex)) << node.name;
        for (Vec3 normal : node.mesh.normals) EXPECT_NEAR(length(normal), 1.0f, 0.001f) << node.name;
        for (Vec2 uv : node.mesh.uvs) EXPECT_LT(std::fabs(uv.x) + std::fabs(uv.y), 64.0f) << node.name;
    });
}

TEST(Samples, BoundsEncloseTheVertices) {
    visit(scene().root, [](const Node &node) {
        const MeshData &mesh = node.mesh;
        for (Vec3 v : mesh.vertices) {
            EXPECT_TRUE(v.x >= mesh.minimum.x && v.y >= mesh.minimum.y && v.z >= mesh.minimum.z) << node.name;
            EXPECT_TRUE(v.x <= mesh.maximum.x && v.y <= mesh.maximum.y && v.z <= mesh.maximum.z) << node.name;
        }
    });
}

TEST(Samples, SkinsNameBonesOfTheSceneAndWeighOne) {
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

TEST(Samples, HaveMoreLightsThanTheGlAndBothKindsOfMaterial) {
    size_t lights = 0;
    visit(scene().root, [&](const Node &node) { lights += node.kind == NodeKind::kLight; });
    EXPECT_GT(lights, 8u);
    size_t transparent = 0;
    for (const Material &material : scene().materials) transparent += material.transparency != 1.0f;
    EXPECT_GT(transparent, 0u);
    EXPECT_LT(transparent, scene().materials.size());
}

TEST(Samples, PaintingsUseEveryFormOfTheFile) {
    std::set<int> forms;
    for (const SampleFile &file : files()) {
        if (file.name.find(".tga") != std::string::npos) forms.insert(file.bytes[2] * 100 + file.bytes[16]);
    }
    EXPECT_EQ(forms, (std::set<int>{224, 232, 1024, 1032}));
}

}  // namespace
}  // namespace keltra::samples
