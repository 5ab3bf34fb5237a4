// SPDX-License-Identifier: Zlib
#include "tools/formats/kte_reader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>

#include "tests/tools/example_data.h"

namespace keltra::formats {
namespace {

using Bytes = std::vector<std::uint8_t>;

// What a file becomes when it is read and written again; nothing when it is refused.
Bytes again(const Bytes &bytes) {
    const std::optional<KteFile> file = readKte(bytes);
    return file ? writeKte(file->scene, file->version) : Bytes();
}

float fromBits(std::uint32_t bits) {
    float value = 0.0f;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Values that no two neighbours share. Lists have the sizes that the counts of a file must have.
class RandomScene {
   public:
    explicit RandomScene(unsigned seed) : random(seed) {}

    Scene make() {
        Scene scene;
        scene.afterMagic = byte();
        for (unsigned i = upTo(3); i > 0; --i) scene.materials.push_back(material());
        scene.root = node(0);
        scene.rest = bytes(upTo(9));
        return scene;
    }

   private:
    unsigned upTo(unsigned most) { return static_cast<unsigned>(random() % (most + 1)); }
    std::uint8_t byte() { return static_cast<std::uint8_t>(random()); }
    Bytes bytes(std::size_t count) {
        Bytes list(count);
        for (std::uint8_t &value : list) value = byte();
        return list;
    }
    // Any bits: infinities and not-a-numbers with their payloads too.
    float real() { return fromBits(static_cast<std::uint32_t>(random())); }
    Vec3 vec() { return {real(), real(), real()}; }
    Color color() { return {real(), real(), real(), real()}; }
    std::string name() {
        std::string text(upTo(5) == 0 ? 255 : upTo(8), ' ');
        for (char &c : text) c = static_cast<char>(1 + upTo(254));
        return text;
    }

    Material material() {
        return {name(), name(), name(), color(), color(), color(), color(), real(), real()};
    }

    Node node(unsigned level) {
        Node n;
        n.kind = static_cast<NodeKind>(upTo(2));
        n.auxId = static_cast<std::uint32_t>(random());
        n.name = name();
        n.position = vec();
        if (n.kind != NodeKind::kLight) n.origin = vec();
        if (n.kind == NodeKind::kLight) n.light = {static_cast<LightType>(byte()), vec(), real(), vec()};
        if (n.kind == NodeKind::kMesh) n.mesh = mesh();
        for (unsigned i = level < 4 ? upTo(3) : 0; i > 0; --i) n.children.push_back(node(level + 1));
        return n;
    }

    MeshData mesh() {
        MeshData m;
        m.rotation = vec();
        m.material = name();
        m.radius = real();
        m.minimum = vec();
        m.maximum = vec();
        m.hidden = upTo(1) == 1;
        m.hiddenByte = static_cast<std::uint8_t>(1 + upTo(254));
        const unsigned vertices = upTo(5);
        for (unsigned i = 0; i < vertices; ++i) m.vertices.push_back(vec());
        for (unsigned i = 0; i < vertices; ++i) m.normals.push_back(vec());
        // More texture coordinates than vertices are accepted.
        for (unsigned i = upTo(1) * (vertices + upTo(2)); i > 0; --i) m.uvs.push_back({real(), real()});
        for (unsigned i = vertices > 0 ? upTo(4) : 0; i > 0; --i) {
            const auto index = [&] { return static_cast<std::uint16_t>(upTo(vertices - 1)); };
            m.faces.push_back({index(), index(), index()});
            m.faceNormals.push_back(vec());
        }
        m.oldVertexData = bytes(vertices * 12);
        m.oldFaceData = bytes(m.faces.size() * 16);
        if (upTo(1) == 1) skin(&m);
        return m;
    }

    void skin(MeshData *m) {
        m->influences = static_cast<std::uint16_t>(1 + upTo(3));
        for (unsigned i = 1 + upTo(3); i > 0; --i) m->boneNames.push_back(name());
        for (std::size_t i = m->vertices.size() * m->influences; i > 0; --i) {
            m->influenceBones.push_back(static_cast<std::uint8_t>(upTo(unsigned(m->boneNames.size()) - 1)));
            m->influenceWeights.push_back(real());
        }
    }

    std::mt19937 random;
};

TEST(KteReader, ExampleFilesComeBackByteForByte) {
    const std::vector<test::ExampleFile> scenes = test::exampleFiles("", ".kte");
    for (const test::ExampleFile &file : scenes) EXPECT_EQ(again(file.bytes), file.bytes) << file.name;
    EXPECT_GE(scenes.size(), 5u);
}

TEST(KteReader, ReadsWhatTheWriterWasGiven) {
    const Scene figure = test::exampleScene("figure.kte");
    const std::optional<KteFile> file = readKte(writeKte(figure, KteVersion::k16a));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->version, KteVersion::k16a);
    ASSERT_EQ(file->scene.materials.size(), figure.materials.size());
    EXPECT_EQ(file->scene.materials[0].texture, figure.materials[0].texture);
    EXPECT_EQ(file->scene.root.name, "figure");
    ASSERT_EQ(file->scene.root.children.size(), figure.root.children.size());
    EXPECT_EQ(file->scene.root.children[0].name, "HumanoidRoot");
    EXPECT_TRUE(file->scene.rest.empty());
}

TEST(KteReader, RandomTreesComeBackByteForByte) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        const Scene scene = RandomScene(seed).make();
        for (const KteVersion version : {KteVersion::k15a, KteVersion::k16a}) {
            const Bytes bytes = writeKte(scene, version);
            std::string reason;
            const std::optional<KteFile> file = readKte(bytes, &reason);
            ASSERT_TRUE(file) << seed << ": " << reason;
            EXPECT_EQ(file->version, version);
            ASSERT_EQ(writeKte(file->scene, version), bytes) << seed;
        }
    }
}

TEST(KteReader, KeepsWhatTheEngineSkips) {
    Scene scene;
    scene.afterMagic = 26;
    scene.rest = {1, 2, 3};
    scene.root.kind = NodeKind::kMesh;
    scene.root.auxId = 0xCAFEBABE;
    MeshData &mesh = scene.root.mesh;
    mesh.hidden = true;
    mesh.hiddenByte = 200;
    mesh.radius = fromBits(0x7F800001);  // a signalling not-a-number
    mesh.vertices = mesh.normals = {{1, 2, 3}};
    mesh.faces = {{0, 0, 0}};
    mesh.faceNormals = {{0, 0, 1}};
    mesh.oldVertexData = Bytes(12, 7);
    mesh.oldFaceData = Bytes(16, 9);
    const Bytes bytes = writeKte(scene, KteVersion::k15a);

    const std::optional<KteFile> file = readKte(bytes);

    ASSERT_TRUE(file);
    EXPECT_EQ(file->version, KteVersion::k15a);
    EXPECT_EQ(file->scene.afterMagic, 26);
    EXPECT_EQ(file->scene.rest, scene.rest);
    EXPECT_EQ(file->scene.root.auxId, 0xCAFEBABE);
    EXPECT_EQ(file->scene.root.mesh.hiddenByte, 200);
    EXPECT_EQ(file->scene.root.mesh.oldVertexData, mesh.oldVertexData);
    EXPECT_EQ(file->scene.root.mesh.oldFaceData, mesh.oldFaceData);
    EXPECT_EQ(again(bytes), bytes);
}

TEST(KteReader, ReadsTheDeepestTreeAndRefusesOneLevelMore) {
    Scene scene;
    for (int level = 1; level < 256; ++level) {
        Node above;
        above.children.push_back(std::move(scene.root));
        scene.root = std::move(above);
    }
    const Bytes bytes = writeKte(scene, KteVersion::k16a);
    EXPECT_EQ(again(bytes), bytes);
    Node above;
    above.children.push_back(std::move(scene.root));
    scene.root = std::move(above);
    EXPECT_FALSE(readKte(writeKte(scene, KteVersion::k16a)));
}

Bytes smallScene(KteVersion version) {
    Scene scene;
    scene.materials.resize(1);
    scene.materials[0].name = "cloth";
    Node mesh;
    mesh.kind = NodeKind::kMesh;
    mesh.name = "skin";
    mesh.mesh.vertices = mesh.mesh.normals = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    mesh.mesh.faces = {{0, 1, 2}};
    mesh.mesh.faceNormals = {{0, 0, 1}};
    mesh.mesh.influences = 1;
    mesh.mesh.influenceBones = {0, 1, 0};
    mesh.mesh.influenceWeights = {1, 1, 1};
    mesh.mesh.boneNames = {"hip", "knee"};
    Node light;
    light.kind = NodeKind::kLight;
    scene.root.children = {mesh, light};
    return writeKte(scene, version);
}

TEST(KteReader, RefusesEveryTruncation) {
    for (const KteVersion version : {KteVersion::k15a, KteVersion::k16a}) {
        const Bytes whole = smallScene(version);
        ASSERT_EQ(again(whole), whole);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            std::string reason;
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_FALSE(readKte(cut, &reason)) << size;
            EXPECT_FALSE(reason.empty()) << size;
        }
    }
}

TEST(KteReader, WhateverItAcceptsComesBackByteForByte) {
    std::size_t accepted = 0, refused = 0;
    for (const KteVersion version : {KteVersion::k15a, KteVersion::k16a}) {
        const Bytes whole = smallScene(version);
        for (std::size_t at = 0; at < whole.size(); ++at) {
            for (unsigned flip = 1; flip < 256; ++flip) {
                Bytes bytes = whole;
                bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ flip);
                const std::optional<KteFile> file = readKte(bytes);
                ++(file ? accepted : refused);
                if (file) {
                    ASSERT_EQ(writeKte(file->scene, file->version), bytes) << at << " " << flip;
                }
            }
        }
    }
    EXPECT_GT(accepted, 10000u);
    EXPECT_GT(refused, 1000u);
}

TEST(KteReader, SaysWhereAndWhy) {
    Bytes bytes = smallScene(KteVersion::k16a);
    bytes[0] = 'X';
    std::string reason;
    EXPECT_FALSE(readKte(bytes, &reason));
    EXPECT_EQ(reason, "byte 0, magic: not a scene file of version 1.5a or 1.6a");
}

}  // namespace
}  // namespace keltra::formats
