// SPDX-License-Identifier: Zlib
#include <keltra/engine.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>

#include "foundation/arena.h"
#include "tests/scene/scene_parts.h"
#include "tests/support/allocations.h"
#include "tests/support/emulated.h"
#include "tests/support/same_verdict.h"
#include "tests/support/small_stack.h"
#include "tools/formats/byte_writer.h"
#include "tools/formats/tga_writer.h"

namespace keltra::test {
namespace {

using formats::KteVersion;
using Bytes = std::vector<std::uint8_t>;

constexpr KteVersion kVersions[] = {KteVersion::k15a, KteVersion::k16a};

/// A scene with all kinds of records is damaged in many ways. Before each load the engine holds objects of an
/// earlier one, which must come out of a failed load as they were.
class SceneDamageTest : public SceneTest {
   protected:
    void SetUp() override {
        folder.write("stone_d.tga", formats::writeTga(formats::Image(4, 4), {}));
        folder.write("moss_d.tga", formats::writeTga(formats::Image(4, 4), {}));
        KELTRA::setKTEPath(folder.prefix().c_str());
        formats::Scene earlier = sceneOf(stripNode("earlier", 4, "stone"));
        earlier.materials.push_back({"stone", "stone_d.tga"});
        mesh = static_cast<KTMESH *>(loadScene(folder, earlier));
        ASSERT_NE(mesh, nullptr);
        stone = mesh->getMaterial();
        counts = countAll();
    }

    static formats::Scene everything() {
        formats::Node lamp = lightNode("lamp");
        lamp.children.push_back(plainNode("shade"));
        formats::Node skin = skinNode("skin", {"hip", "knee"}, 5, "stone");
        formats::Scene scene =
            sceneOf(plainNode("root", {lamp, skin, boneNode("hip", {0, 1, 0}, {boneNode("knee")})}));
        scene.materials.push_back({"stone", "stone_d.tga", "lava"});
        scene.materials.push_back({"moss", "moss_d.tga", "slime"});
        return scene;
    }

    // A new file each time: writing over an old one makes some file systems wait for the disk.
    KTNODE *loadBytes(const Bytes &bytes) {
        std::remove(folder.path("damaged.kte").c_str());
        folder.write("damaged.kte", bytes);
        KTNODE *root = KELTRA::load("damaged.kte");
        expectSameVerdict("kte", bytes, root != nullptr);
        return root;
    }

    /// The load fails and everything is as it was.
    void expectRefused(const Bytes &bytes) {
        ASSERT_EQ(loadBytes(bytes), nullptr);
        expectUntouched();
    }
    void expectUntouched() const {
        ASSERT_EQ(countAll(), counts);
        ASSERT_EQ(KTNODE::getFirstNode(), mesh);
        ASSERT_EQ(mesh->getMaterial(), stone);
        ASSERT_EQ(mesh->vertices[6], 65536);
        ASSERT_EQ(stone->getReferences(), 1);
        ASSERT_EQ(stone->getTexture(0)->getReferences(), 1);
    }

    /// Overwrites a field of the scene and expects that it is refused.
    void expectRefusedWith(const std::string &field, unsigned value, std::size_t shift = 0) {
        for (KteVersion version : kVersions) {
            formats::Marks marks;
            Bytes bytes = formats::writeKte(everything(), version, &marks);
            const formats::Mark *mark = formats::findMark(marks, field);
            ASSERT_NE(mark, nullptr) << field;
            bytes[mark->offset + shift] = static_cast<std::uint8_t>(value);
            if (mark->size > 1 && shift == 0) bytes[mark->offset + 1] = static_cast<std::uint8_t>(value >> 8);
            SCOPED_TRACE(field + " = " + std::to_string(value));
            expectRefused(bytes);
        }
    }

    static std::vector<unsigned> countAll() {
        return {KTNODE::getNumberOfNodes(), KTMATERIAL::getNumberOfMaterials(),
                KTTEXTURE::getNumberOfTextures(), KTSHADER::getNumberOfShaders()};
    }

    static formats::Node chain(unsigned length) {
        formats::Node node = plainNode("");
        while (--length > 0) {
            formats::Node above = plainNode("");
            above.children.push_back(std::move(node));
            node = std::move(above);
        }
        return node;
    }

    KTMESH *mesh = nullptr;
    KTMATERIAL *stone = nullptr;
    std::vector<unsigned> counts;
};

TEST_F(SceneDamageTest, TheWholeSceneLoads) {
    for (KteVersion version : kVersions)
        EXPECT_NE(loadBytes(formats::writeKte(everything(), version)), nullptr);
}

TEST_F(SceneDamageTest, EveryTruncationIsRefused) {
    for (KteVersion version : kVersions) {
        const Bytes whole = formats::writeKte(everything(), version);
        for (std::size_t size = 0; size < whole.size(); size += sampled(8)) {
            SCOPED_TRACE(size);
            expectRefused(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
            if (HasFatalFailure()) return;
        }
    }
}

TEST_F(SceneDamageTest, EveryDamagedByteIsRefusedOrGivesAWholeTree) {
    for (KteVersion version : kVersions) {
        const Bytes whole = formats::writeKte(everything(), version);
        for (std::size_t i = 0; i < whole.size(); i += sampled(31)) {
            for (int value : {0x00, 0xff, whole[i] ^ 0x01, whole[i] ^ 0x80}) {
                Bytes bytes = whole;
                bytes[i] = static_cast<std::uint8_t>(value);
                if (KTNODE *root = loadBytes(bytes)) {
                    EXPECT_NE(root->findByNameInHierarchy(root->getName()), nullptr);
                    while (KTNODE *next = mesh->getNextNode()) delete next;
                }
                ASSERT_EQ(KTNODE::getNumberOfNodes(), counts[0]);
            }
        }
    }
}

TEST_F(SceneDamageTest, CountsBeyondTheFileAreRefused) {
    for (unsigned value : {200u, 0x7fffu, 0xffffu}) expectRefusedWith("materialCount", value);
    for (const char *field : {"node[0].children", "node[1].children", "node[3].children", "node[4].children"})
        for (unsigned value : {4u, 0xffffu}) expectRefusedWith(field, value);
    for (const char *field : {"vertexCount", "uvCount", "faceCount", "influenceCount"})
        expectRefusedWith(std::string("node[3].") + field, 0xffff);
    expectRefusedWith("node[3].boneCount", 0xffff);
}

TEST_F(SceneDamageTest, BonesThatAreNotThereAreRefused) {
    expectRefusedWith("node[3].boneCount", 0);
    expectRefusedWith("node[3].boneCount", 1);
    for (unsigned index : {2u, 99u, 100u, 255u}) expectRefusedWith("node[3].influenceBones", index, 9);
}

TEST_F(SceneDamageTest, BoneIndicesEndAt99HoweverManyBonesThereAre) {
    std::vector<std::string> names(120, "bone");
    formats::Node skin = skinNode("skin", {"bone"});
    skin.mesh.boneNames = names;
    skin.mesh.influenceBones[3] = 99;
    KTNODE *root = loadBytes(formats::writeKte(sceneOf(skin), KteVersion::k16a));
    EXPECT_NE(root, nullptr);
    delete root;
    skin.mesh.influenceBones[3] = 100;
    expectRefused(formats::writeKte(sceneOf(skin), KteVersion::k16a));
}

TEST_F(SceneDamageTest, InfluencesThatDoNotCountMayNameAnyBone) {
    formats::Node skin = skinNode("skin", {"bone", "other"});
    std::vector<float> &weights = skin.mesh.influenceWeights;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    skin.mesh.influenceBones[3] = 2;
    for (float weight : {0.0f, -0.0f, -1.0f, 1.0f / 65537.0f, -40000.0f, nan}) {
        weights[3] = weight;
        for (unsigned bone : {2u, 100u, 255u}) {
            skin.mesh.influenceBones[3] = static_cast<std::uint8_t>(bone);
            auto *mesh = static_cast<KTMESH *>(loadBytes(formats::writeKte(sceneOf(skin), KteVersion::k16a)));
            ASSERT_NE(mesh, nullptr) << weight << ' ' << bone;
            EXPECT_EQ(mesh->influenceBones[3], bone);
            EXPECT_EQ(mesh->influenceBonesFloat[3], bone < 100 ? static_cast<float>(bone) : 0.0f);
            EXPECT_TRUE(mesh->animate(0));
            delete mesh;
        }
    }
    for (float weight : {1.0f, 1.0f / 65536.0f}) {
        weights[3] = weight;
        expectRefused(formats::writeKte(sceneOf(skin), KteVersion::k16a));
    }
}

TEST_F(SceneDamageTest, FacesReachOnlyTheVertices) {
    formats::Node strip = stripNode("strip", 5);
    for (std::uint16_t index : {5, 6, 0x7fff, 0xffff}) {
        strip.mesh.faces[2][1] = index;
        for (KteVersion version : kVersions) expectRefused(formats::writeKte(sceneOf(strip), version));
    }
    formats::Node empty = boneNode("empty");
    empty.mesh.faces.push_back({0, 0, 0});
    empty.mesh.faceNormals.push_back({});
    expectRefused(formats::writeKte(sceneOf(empty), KteVersion::k16a));
}

TEST_F(SceneDamageTest, TextureCoordinatesAreForAllVerticesOrForNone) {
    formats::Node strip = stripNode("strip", 5);
    for (unsigned count = 1; count < 5; ++count) {
        strip.mesh.uvs.resize(count);
        for (KteVersion version : kVersions) expectRefused(formats::writeKte(sceneOf(strip), version));
    }
    for (unsigned count : {0u, 5u, 6u}) {
        strip.mesh.uvs.resize(count);
        EXPECT_NE(loadBytes(formats::writeKte(sceneOf(strip), KteVersion::k16a)), nullptr);
    }
}

TEST_F(SceneDamageTest, UnknownNodeTypesAreRefused) {
    for (unsigned type : {3u, 4u, 9u, 128u, 255u})
        for (const char *field : {"node[0].type", "node[2].type", "node[5].type"})
            expectRefusedWith(field, type);
}

TEST_F(SceneDamageTest, NamesAreShorterThan256Bytes) {
    // Each of them in turn.
    const std::vector<std::function<std::string &(formats::Scene &)>> names = {
        [](formats::Scene &s) -> std::string & { return s.materials[1].name; },
        [](formats::Scene &s) -> std::string & { return s.materials[1].texture; },
        [](formats::Scene &s) -> std::string & { return s.materials[1].shader; },
        [](formats::Scene &s) -> std::string & { return s.root.name; },
        [](formats::Scene &s) -> std::string & { return s.root.children[0].name; },
        [](formats::Scene &s) -> std::string & { return s.root.children[1].name; },
        [](formats::Scene &s) -> std::string & { return s.root.children[1].mesh.material; },
        [](formats::Scene &s) -> std::string & { return s.root.children[1].mesh.boneNames[1]; },
    };
    for (const auto &nameOf : names) {
        for (std::size_t length : {256u, 257u, 5000u}) {
            formats::Scene scene = everything();
            nameOf(scene) = std::string(length, 'n');
            expectRefused(formats::writeKte(scene, KteVersion::k16a));
        }
    }
    formats::Scene longest = everything();
    for (const auto &nameOf : names) nameOf(longest) = std::string(255, 'n');
    KTNODE *root = loadBytes(formats::writeKte(longest, KteVersion::k16a));
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(std::strlen(root->getName()), 255u);
    EXPECT_NE(KTSHADER::findByName(std::string(255, 'n').c_str()), nullptr);
}

TEST_F(SceneDamageTest, TreesNest256Deep) {
    KTNODE *root = loadBytes(formats::writeKte(sceneOf(chain(256)), KteVersion::k16a));
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), counts[0] + 256);
    while (KTNODE *next = mesh->getNextNode()) delete next;
    expectRefused(formats::writeKte(sceneOf(chain(257)), KteVersion::k16a));
}

// A chain of that length as bytes: the writer itself would recurse.
Bytes endlessChain(unsigned length) {
    formats::ByteWriter writer;
    writer.string("KTE file v1.6a");
    writer.u16(0);
    for (unsigned i = 0; i < length; ++i) {
        writer.u8(0);
        writer.u32(0);
        writer.u8(0);
        writer.zeros(24);
        writer.u16(i + 1 < length ? 1 : 0);
    }
    return writer.take();
}

TEST_F(SceneDamageTest, AnEndlessChainIsRefusedOnTheDevicesStack) {
    const Bytes bytes = endlessChain(100000);
    folder.write("damaged.kte", bytes);
    KTNODE *root = mesh, *subtree = mesh;
    ASSERT_TRUE(runOnSmallStack([&] {
        root = KELTRA::load("damaged.kte");
        long cursor = 17;
        subtree = KELTRA::recursiveLoad(reinterpret_cast<const char *>(bytes.data()), &cursor, nullptr);
    }));
    EXPECT_EQ(root, nullptr);
    EXPECT_EQ(subtree, nullptr);
    expectSameVerdict("kte", bytes, false);
    expectUntouched();
}

TEST_F(SceneDamageTest, DamageIsRefusedOnTheDevicesStack) {
    const Bytes whole = formats::writeKte(everything(), KteVersion::k16a);
    ASSERT_TRUE(runOnSmallStack([&] {
        for (std::size_t size = 0; size < whole.size(); size += 7)
            expectRefused(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    }));
}

TEST_F(SceneDamageTest, WithoutMemoryNothingIsLeftBehind) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    const GlRecorder::Pause pause;  // it takes memory of such sizes too
    const Bytes bytes = formats::writeKte(everything(), KteVersion::k16a);
    const std::size_t sizes[] = {
        bytes.size(),
        Arena::kChunkSize,
        sizeof(KTNODE),
        sizeof(KTLIGHT),
        sizeof(KTMESH),
        sizeof(KTMATERIAL),
        3 * sizeof(KTNODE *),
        5 * 32 + 3 * 20,  // geometry of five vertices and three faces: 18 bytes a face, padded
        10,
        40,
        2 * sizeof(KTBONE),
        60,
    };
    for (std::size_t size : sizes) {
        for (int nth = 1; nth <= 2; ++nth) {
            folder.write("damaged.kte", bytes);
            Allocations::failNext(size, nth);
            KTNODE *root = KELTRA::load("damaged.kte");
            Allocations::clear();
            if (root) {
                // The load made fewer allocations of that size: it succeeded, and is undone.
                while (KTNODE *next = mesh->getNextNode()) delete next;
                KTMATERIAL *moss = KTMATERIAL::findByName("moss");
                moss->setTexture(0, nullptr);
                delete moss;
                delete KTTEXTURE::findByFilename("moss_d.tga");
                delete KTSHADER::findByName("lava");
                delete KTSHADER::findByName("slime");
            }
            SCOPED_TRACE(size);
            expectUntouched();
        }
    }
}

}  // namespace
}  // namespace keltra::test
