// SPDX-License-Identifier: Zlib
#include "formats/scene_contents.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/lifecycle.h"
#include "tests/support/allocations.h"
#include "tests/support/small_stack.h"
#include "tools/formats/kte_writer.h"

namespace keltra::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

formats::Node nodeOf(formats::NodeKind kind, const char *name, std::vector<formats::Node> children = {}) {
    formats::Node node;
    node.kind = kind;
    node.name = name;
    node.children = std::move(children);
    return node;
}

/// Two materials; a tree of all kinds, two levels deep.
formats::Scene smallScene() {
    using formats::NodeKind;
    formats::Scene scene;
    scene.materials.push_back({"stone", "stone_d.tga"});
    scene.materials.push_back({"moss"});
    formats::Node mesh = nodeOf(NodeKind::kMesh, "mesh", {nodeOf(NodeKind::kPlain, "below")});
    mesh.mesh.material = "moss";
    mesh.mesh.vertices.resize(3);
    mesh.mesh.normals.resize(3);
    mesh.mesh.faces = {{0, 1, 2}};
    mesh.mesh.faceNormals.resize(1);
    scene.root = nodeOf(NodeKind::kPlain, "root", {mesh, nodeOf(NodeKind::kLight, "lamp")});
    return scene;
}

Bytes bytesOf(const formats::Scene &scene) { return formats::writeKte(scene, formats::KteVersion::k16a); }

/// "kind:name:children" of each node in its order.
std::vector<std::string> nodesOf(const SceneContents &contents) {
    std::vector<std::string> list;
    for (const SceneNode *node = contents.firstNode(); node; node = node->next) {
        EXPECT_EQ((node->plain != nullptr) + (node->light != nullptr) + (node->mesh != nullptr), 1);
        if (node->plain)
            list.push_back("plain:" + std::string(node->plain->name) + std::to_string(node->plain->children));
        if (node->light)
            list.push_back("light:" + std::string(node->light->name) + std::to_string(node->light->children));
        if (node->mesh)
            list.push_back("mesh:" + std::string(node->mesh->name) + std::to_string(node->mesh->children));
    }
    return list;
}

TEST(SceneContentsTest, HoldsTheRecordsInFileOrder) {
    for (formats::KteVersion version : {formats::KteVersion::k15a, formats::KteVersion::k16a}) {
        const Bytes bytes = formats::writeKte(smallScene(), version);
        SceneContents contents;
        SceneFault fault;
        ASSERT_TRUE(contents.read(bytes.data(), bytes.size(), fault));
        const SceneMaterial *stone = contents.firstMaterial();
        ASSERT_TRUE(stone && stone->next);
        EXPECT_STREQ(stone->record.name, "stone");
        EXPECT_STREQ(stone->record.texture, "stone_d.tga");
        EXPECT_STREQ(stone->next->record.name, "moss");
        EXPECT_EQ(stone->next->next, nullptr);
        EXPECT_EQ(nodesOf(contents),
                  (std::vector<std::string>{"plain:root2", "mesh:mesh1", "plain:below0", "light:lamp0"}));
        const MeshRecord &mesh = *contents.firstNode()->next->mesh;
        EXPECT_STREQ(mesh.material, "moss");
        EXPECT_EQ(mesh.vertexCount, 3u);
        EXPECT_EQ(mesh.faceCount, 1u);
    }
}

TEST(SceneContentsTest, KeepsAsManyRecordsAsThereAre) {
    formats::Scene scene = smallScene();
    for (int i = 0; i < 2000; ++i)
        scene.root.children.push_back(nodeOf(formats::NodeKind::kMesh, std::to_string(i).c_str()));
    const Bytes bytes = bytesOf(scene);
    const std::uint32_t live = memoryCounters().live;
    {
        SceneContents contents;
        SceneFault fault;
        bool good = false;
        ASSERT_TRUE(runOnSmallStack([&] { good = contents.read(bytes.data(), bytes.size(), fault); }));
        ASSERT_TRUE(good);
        const std::vector<std::string> nodes = nodesOf(contents);
        ASSERT_EQ(nodes.size(), 2004u);
        EXPECT_EQ(nodes.back(), "mesh:19990");
    }
    EXPECT_EQ(memoryCounters().live, live);
}

TEST(SceneContentsTest, RefusesWhatTheCheckRefuses) {
    const Bytes bytes = bytesOf(smallScene());
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        SceneContents contents;
        SceneFault fault = {}, wanted = {};
        EXPECT_FALSE(contents.read(bytes.data(), size, fault)) << size;
        EXPECT_FALSE(checkScene(bytes.data(), size, wanted));
        EXPECT_EQ(fault.offset, wanted.offset);
        EXPECT_EQ(fault.field, wanted.field);
        EXPECT_EQ(fault.reason, wanted.reason);
    }
    SceneContents contents;
    SceneFault fault;
    EXPECT_FALSE(contents.read(nullptr, 0, fault));
}

TEST(SceneContentsTest, TellsThatItIsOutOfMemory) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    formats::Scene scene = smallScene();
    for (int i = 0; i < 200; ++i) scene.root.children.push_back(nodeOf(formats::NodeKind::kMesh, "more"));
    const Bytes bytes = bytesOf(scene);
    const std::uint32_t live = memoryCounters().live;
    for (int nth : {1, 2, 3}) {
        SceneContents contents;
        SceneFault fault = {};
        Allocations::failNext(Arena::kChunkSize, nth);
        EXPECT_FALSE(contents.read(bytes.data(), bytes.size(), fault));
        Allocations::clear();
        EXPECT_STREQ(toPublic(fault).expected, kFaultTexts ? "out of memory" : "");
    }
    // A failed vnfMalloc counts as an allocation that is held.
    EXPECT_EQ(memoryCounters().live, live + 3);
}

}  // namespace
}  // namespace keltra::test
