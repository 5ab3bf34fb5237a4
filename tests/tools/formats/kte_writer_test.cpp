// SPDX-License-Identifier: Zlib
#include "tools/formats/kte_writer.h"

#include <gtest/gtest.h>

#include <cstring>

namespace keltra::formats {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Expected bytes, put down piece by piece.
class Expected {
   public:
    Expected &text(const char *value) {
        written.insert(written.end(), value, value + std::strlen(value) + 1);
        return *this;
    }
    Expected &raw(std::initializer_list<int> values) {
        for (int value : values) written.push_back(static_cast<std::uint8_t>(value));
        return *this;
    }
    Expected &zeros(std::size_t count) {
        written.insert(written.end(), count, 0);
        return *this;
    }
    const Bytes &bytes() const { return written; }

   private:
    Bytes written;
};

// 1.0, 2.0, -1.0 and 0.5 as little-endian floats.
#define F1 0x00, 0x00, 0x80, 0x3F
#define F2 0x00, 0x00, 0x00, 0x40
#define FM1 0x00, 0x00, 0x80, 0xBF
#define FHALF 0x00, 0x00, 0x00, 0x3F

Node triangleMesh() {
    Node node;
    node.kind = NodeKind::kMesh;
    node.auxId = 0x04030201;
    node.name = "m";
    node.position = {1, 2, -1};
    node.origin = {0, 0, 1};
    node.mesh.rotation = {2, 0, 0};
    node.mesh.material = "stone";
    node.mesh.radius = 2;
    node.mesh.minimum = {-1, 0, 0};
    node.mesh.maximum = {1, 1, 0};
    node.mesh.hidden = true;
    node.mesh.vertices = {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}};
    node.mesh.normals = {{0, 0, 1}, {0, 0, 1}, {0, 0, 1}};
    node.mesh.uvs = {{1, 0}, {0.5f, 1}, {0, 0}};
    node.mesh.faces = {{0, 1, 0x0102}};
    node.mesh.faceNormals = {{0, 0, 1}};
    return node;
}

// The mesh's record from its type byte up to the vertices.
void putTriangleHead(Expected *e, int influences) {
    e->raw({2, 1, 2, 3, 4}).text("m").raw({F1, F2, FM1, F2}).zeros(8).zeros(8).raw({F1}).text("stone");
    e->raw({F2, FM1}).zeros(8).raw({F1, F1}).zeros(4).raw({1, 3, 0, 3, 0, 1, 0, 0, 0, influences, 0});
}

void putTriangleVectors(Expected *e) {
    e->raw({F1}).zeros(8).zeros(4).raw({F1}).zeros(4).raw({FM1}).zeros(8);
    for (int i = 0; i < 3; ++i) e->zeros(8).raw({F1});
}

void putTriangleSurface(Expected *e) {
    e->raw({F1}).zeros(4).raw({FHALF, F1}).zeros(8);
    e->raw({0, 0, 1, 0, 2, 1});
}

TEST(KteWriter, WritesAnEmptyScene) {
    Scene scene;
    scene.root.name = "root";
    scene.root.auxId = 7;
    scene.root.position = {1, 2, -1};
    scene.root.origin = {0.5f, 0, 0};

    Expected e;
    e.text("KTE file v1.6a").raw({0, 0});
    e.raw({0, 7, 0, 0, 0}).text("root").raw({F1, F2, FM1, FHALF}).zeros(8).raw({0, 0});
    EXPECT_EQ(writeKte(scene, KteVersion::k16a), e.bytes());
}

TEST(KteWriter, WritesMaterials) {
    Scene scene;
    Material stone;
    stone.name = "stone";
    stone.texture = "s.tga";
    stone.ambient = {1, 2, 0.5f, 1};
    stone.diffuse = {2, 2, 2, 2};
    stone.specular = {0, 0, 0, 0};
    stone.emission = {0, 0, 0, 1};
    stone.transparency = 0.5f;
    stone.shininess = 2;
    scene.materials = {stone};

    Expected e;
    e.text("KTE file v1.6a").raw({1, 0}).text("stone").text("s.tga").text("[none]");
    e.raw({F1, F2, FHALF, F1, F2, F2, F2, F2}).zeros(16).zeros(12).raw({F1, FHALF, F2});
    e.raw({0}).zeros(4).text("").zeros(24).raw({0, 0});
    EXPECT_EQ(writeKte(scene, KteVersion::k16a), e.bytes());
}

TEST(KteWriter, WritesALightBelowItsParent) {
    Scene scene;
    Node light;
    light.kind = NodeKind::kLight;
    light.name = "sun";
    light.position = {1, 2, -1};
    light.light.type = LightType::kSpot;
    light.light.direction = {0, -1, 0};
    light.light.cutOff = 2;
    light.light.color = {1, 0.5f, 2};
    scene.root.children = {light};

    Expected e;
    e.text("KTE file v1.6a").raw({0, 0});
    e.raw({0}).zeros(4).text("").zeros(24).raw({1, 0});
    e.raw({1}).zeros(4).raw({2}).text("sun").raw({F1, F2, FM1}).zeros(4).raw({FM1}).zeros(4);
    e.raw({F2, F1, FHALF, F2, 0, 0});
    EXPECT_EQ(writeKte(scene, KteVersion::k16a), e.bytes());
}

/// The file of one triangle, up to its vectors.
Expected triangleBeginning(const char *magic, unsigned influences) {
    Expected e;
    e.text(magic).raw({0, 0});
    putTriangleHead(&e, influences);
    putTriangleVectors(&e);
    return e;
}

Scene triangleScene() {
    Scene scene;
    scene.root = triangleMesh();
    return scene;
}

TEST(KteWriter, WritesAMeshOfTheNewVersion) {
    Expected e = triangleBeginning("KTE file v1.6a", 0);
    putTriangleSurface(&e);
    e.zeros(8).raw({F1});
    EXPECT_EQ(writeKte(triangleScene(), KteVersion::k16a), e.bytes());
}

TEST(KteWriter, OldVersionAddsTwoBlocks) {
    Expected e = triangleBeginning("KTE file v1.5a", 0);
    e.zeros(3 * 12);
    putTriangleSurface(&e);
    e.zeros(8).raw({F1}).zeros(16);
    EXPECT_EQ(writeKte(triangleScene(), KteVersion::k15a), e.bytes());
}

TEST(KteWriter, WritesTheSkinAfterTheFaceNormals) {
    Scene scene = triangleScene();
    scene.root.mesh.influences = 2;
    scene.root.mesh.influenceBones = {0, 1, 1, 0, 0, 0};
    scene.root.mesh.influenceWeights = {0.5f, 0.5f, 1, 0, 1, 0};
    scene.root.mesh.boneNames = {"hip", "knee"};

    Expected e = triangleBeginning("KTE file v1.6a", 2);
    putTriangleSurface(&e);
    e.zeros(8).raw({F1}).raw({0, 1, 1, 0, 0, 0});
    e.raw({FHALF, FHALF, F1}).zeros(4).raw({F1}).zeros(4).raw({2, 0}).text("hip").text("knee");
    EXPECT_EQ(writeKte(scene, KteVersion::k16a), e.bytes());
}

TEST(KteWriter, WritesNodesDepthFirst) {
    Scene scene;
    Node a, inner, b;
    a.name = "A";
    inner.name = "A1";
    b.name = "B";
    a.children = {inner};
    scene.root.children = {a, b};

    Marks marks;
    const Bytes bytes = writeKte(scene, KteVersion::k16a, &marks);
    const char *expected[] = {"", "A", "A1", "B"};
    for (std::size_t i = 0; i < 4; ++i) {
        const Mark *mark = findMark(marks, "node[" + std::to_string(i) + "].name");
        ASSERT_NE(mark, nullptr);
        EXPECT_STREQ(reinterpret_cast<const char *>(&bytes[mark->offset]), expected[i]);
    }
}

TEST(KteWriter, MarksCoverTheFileWithoutGaps) {
    for (KteVersion version : {KteVersion::k15a, KteVersion::k16a}) {
        Scene scene;
        scene.materials.resize(2);
        scene.root.children = {triangleMesh(), triangleMesh()};
        scene.root.children[1].mesh.influences = 1;
        scene.root.children[1].mesh.influenceBones = {0, 0, 0};
        scene.root.children[1].mesh.influenceWeights = {1, 1, 1};
        scene.root.children[1].mesh.boneNames = {"b"};
        Marks marks;
        const Bytes bytes = writeKte(scene, version, &marks);
        std::size_t end = 0;
        for (const Mark &mark : marks) {
            EXPECT_EQ(mark.offset, end) << mark.name;
            end = mark.offset + mark.size;
        }
        EXPECT_EQ(end, bytes.size());
    }
}

TEST(KteWriter, MarksPointAtTheirFields) {
    Scene scene;
    scene.root = triangleMesh();
    Marks marks;
    const Bytes bytes = writeKte(scene, KteVersion::k16a, &marks);
    const Mark *count = findMark(marks, "node[0].vertexCount");
    ASSERT_NE(count, nullptr);
    EXPECT_EQ(count->size, 2u);
    EXPECT_EQ(bytes[count->offset], 3);
    EXPECT_EQ(findMark(marks, "node[1].name"), nullptr);
}

TEST(KteWriter, WritesListsThatDisagreeAsTheyAre) {
    Scene scene;
    scene.root = triangleMesh();
    const std::size_t whole = writeKte(scene, KteVersion::k16a).size();
    scene.root.mesh.normals.pop_back();
    const Bytes bytes = writeKte(scene, KteVersion::k16a);
    EXPECT_EQ(bytes.size(), whole - 12);
}

}  // namespace
}  // namespace keltra::formats
