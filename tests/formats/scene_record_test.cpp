// SPDX-License-Identifier: Zlib
#include "formats/scene_record.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/same_verdict.h"
#include "tests/support/small_stack.h"
#include "tools/formats/kte_writer.h"

namespace keltra::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

formats::Node meshOf(unsigned vertices) {
    formats::Node node;
    node.kind = formats::NodeKind::kMesh;
    node.mesh.vertices.resize(vertices);
    node.mesh.normals.resize(vertices);
    node.mesh.uvs.resize(vertices);
    node.mesh.faces = {{0, 1, 2}};
    node.mesh.faceNormals.resize(1);
    node.mesh.influences = 1;
    node.mesh.influenceBones.resize(vertices);
    node.mesh.influenceWeights.resize(vertices, 1.0f);
    node.mesh.boneNames = {"bone"};
    return node;
}

formats::Scene smallScene() {
    formats::Scene scene;
    scene.materials.push_back({"stone"});
    scene.root.name = "root";
    scene.root.children.push_back(meshOf(3));
    scene.root.children.emplace_back();
    scene.root.children[1].kind = formats::NodeKind::kLight;
    return scene;
}

class SceneRecordTest : public testing::Test {
   protected:
    SceneRecordTest() : bytes(formats::writeKte(smallScene(), formats::KteVersion::k16a, &marks)) {}

    std::size_t offsetOf(const std::string &field) const {
        const formats::Mark *mark = formats::findMark(marks, field);
        return mark ? mark->offset : ~std::size_t{0};
    }

    void expectFault(std::size_t offset, const char *field, const char *reason) {
        SceneFault fault = {};
        EXPECT_FALSE(checkScene(bytes.data(), bytes.size(), fault));
        EXPECT_EQ(fault.offset, offset);
        EXPECT_STREQ(toPublic(fault).field, kFaultTexts ? field : "");
        EXPECT_STREQ(toPublic(fault).expected, kFaultTexts ? reason : "");
        expectSameVerdict("kte", bytes, false);
    }

    formats::Marks marks;
    Bytes bytes;
};

TEST_F(SceneRecordTest, AWholeSceneHasNoFault) {
    SceneFault fault = {};
    EXPECT_TRUE(checkScene(bytes.data(), bytes.size(), fault));
    EXPECT_EQ(fault.code, KT_FAULT_NONE);
}

TEST_F(SceneRecordTest, WhatFollowsTheTreeIsNotLookedAt) {
    bytes.resize(bytes.size() + 100, 0xff);
    SceneFault fault = {};
    EXPECT_TRUE(checkScene(bytes.data(), bytes.size(), fault));
}

TEST_F(SceneRecordTest, AFaultNamesTheFieldThatEndsEarly) {
    bytes.resize(offsetOf("node[1].maximum") + 5);
    expectFault(offsetOf("node[1].maximum"), "maximum", "ends early or is too long");
    bytes.resize(offsetOf("materialCount") + 1);
    expectFault(15, "material count", "ends early or is too long");
    bytes.clear();
    expectFault(0, "magic", "ends early or is too long");
}

TEST_F(SceneRecordTest, AFaultNamesTheFieldThatIsWrong) {
    const Bytes whole = bytes;
    bytes[0] = 'k';
    expectFault(0, "magic", "not a scene file of version 1.5a or 1.6a");
    bytes = whole;
    bytes[16] = 1;
    expectFault(15, "material count", "more than the rest of the file can hold");
    bytes = whole;
    bytes[offsetOf("node[2].type")] = 7;
    expectFault(offsetOf("node[2].type"), "type", "unknown node type");
    bytes = whole;
    bytes[offsetOf("node[0].children") + 1] = 1;
    expectFault(offsetOf("node[0].children"), "children", "more than the rest of the file can hold");
    bytes = whole;
    bytes[offsetOf("node[1].uvCount")] = 2;
    expectFault(offsetOf("node[1].uvCount"), "texture coordinate count", "neither 0 nor one for each vertex");
    bytes = whole;
    bytes[offsetOf("node[1].faces") + 4] = 3;
    expectFault(offsetOf("node[1].faces"), "faces", "vertex index out of range");
    bytes = whole;
    bytes[offsetOf("node[1].influenceBones") + 2] = 1;
    expectFault(offsetOf("node[1].influenceBones"), "bone indices", "bone index out of range");
}

TEST_F(SceneRecordTest, AFaultNamesTheNodeThatIsTooDeep) {
    formats::Node node;
    for (int i = 0; i < 256; ++i) {
        formats::Node above;
        above.children.push_back(std::move(node));
        node = std::move(above);
    }
    formats::Scene scene;
    scene.root = std::move(node);
    marks.clear();
    bytes = formats::writeKte(scene, formats::KteVersion::k16a, &marks);
    expectFault(offsetOf("node[256].type"), "type", "nodes nest too deep");
}

TEST_F(SceneRecordTest, ChecksWithoutAllocationAndOnTheDevicesStack) {
    SceneFault fault = {};
    Allocations::startCounting();
    const bool good = checkScene(bytes.data(), bytes.size(), fault);
    EXPECT_EQ(Allocations::stopCounting(), 0);
    EXPECT_TRUE(good);
    bool goodThere = false;
    ASSERT_TRUE(runOnSmallStack([&] { goodThere = checkScene(bytes.data(), bytes.size(), fault); }));
    EXPECT_TRUE(goodThere);
}

TEST_F(SceneRecordTest, ArraysStayInTheFile) {
    FieldReader reader(bytes.data(), bytes.size());
    const std::size_t offset = offsetOf("node[1].type") + 1;
    ASSERT_NE(reader.array({}, offset, 1), nullptr);
    MeshRecord record;
    ASSERT_TRUE(readMesh(reader, false, record));
    EXPECT_EQ(record.vertices, bytes.data() + offsetOf("node[1].vertices"));
    EXPECT_EQ(record.influenceWeights, bytes.data() + offsetOf("node[1].influenceWeights"));
    EXPECT_STREQ(record.boneNames, "bone");
    EXPECT_EQ(reader.position(), offsetOf("node[2].type"));
}

TEST_F(SceneRecordTest, NothingIsNoScene) {
    SceneFault fault = {};
    EXPECT_FALSE(checkScene(nullptr, 0, fault));
    EXPECT_FALSE(checkScene(nullptr, 1000, fault));
    EXPECT_STREQ(toPublic(fault).field, kFaultTexts ? "magic" : "");
}

}  // namespace
}  // namespace keltra::test
