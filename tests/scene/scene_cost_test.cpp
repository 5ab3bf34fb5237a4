// SPDX-License-Identifier: Zlib
// Valid small files with as many names as possible: their cost grows with their size only.

#include <cstring>

#include "tests/scene/scene_parts.h"
#include "tests/support/cpu_time.h"
#include "tests/support/emulated.h"
#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

constexpr unsigned kMany = 60000 / sampled(6);

class SceneCostTest : public SceneTest {
   protected:
    static formats::Scene manyMaterials(unsigned count, const char *texture, const char *shader) {
        formats::Scene scene = sceneOf(plainNode("root"));
        for (unsigned i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            formats::Material material;
            material.name = "m" + number;
            material.texture = *texture == '[' ? texture : texture + number;
            material.shader = *shader == '[' ? shader : shader + number;
            scene.materials.push_back(material);
        }
        return scene;
    }
    /// A chain of nodes under the root, as deep as final matrices reach.
    static formats::Node deepNode(const char *last) {
        formats::Node node = boneNode(last, {0, 1, 0});
        for (int i = 0; i < 60; ++i) node = boneNode("link", {0, 1, 0}, {node});
        return node;
    }
};

TEST_F(SceneCostTest, SixtyThousandMaterialsAndMeshesOfThem) {
    formats::Scene scene = manyMaterials(kMany, "[none]", "[none]");
    for (unsigned i = 0; i < kMany / 3; ++i) {
        formats::Node mesh = boneNode("mesh");
        mesh.mesh.material = "m" + std::to_string(kMany - 1 - i);
        scene.root.children.push_back(mesh);
    }
    const CpuTime time;
    KTNODE *root = loadScene(folder, scene);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(KTMATERIAL::getNumberOfMaterials(), kMany);
    const KTMESH *mesh = static_cast<KTMESH *>(root->getChild(3));
    EXPECT_EQ(mesh->getMaterial()->getName(), "m" + std::to_string(kMany - 4));
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

TEST_F(SceneCostTest, SixtyThousandShaders) {
    const formats::Scene scene = manyMaterials(kMany, "[none]", "s");
    const CpuTime time;
    ASSERT_NE(loadScene(folder, scene), nullptr);
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), kMany);
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

TEST_F(SceneCostTest, SixtyThousandMissingTextures) {
    const formats::Scene scene = manyMaterials(kMany, "t", "[none]");
    const CpuTime time;
    ASSERT_NE(loadScene(folder, scene), nullptr);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 0u);
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

TEST_F(SceneCostTest, TheFirstOfANameIsTakenFromFileOrProgram) {
    KTMATERIAL first, second;
    first.setName("m7");
    second.setName("m7");
    ASSERT_NE(loadScene(folder, manyMaterials(100, "[none]", "s")), nullptr);
    EXPECT_EQ(KTMATERIAL::findByName("m7"), &first);
    EXPECT_EQ(KTMATERIAL::getNumberOfMaterials(), 101u);
    // Renamed through the field between two loads.
    std::strcpy(KTMATERIAL::findByName("m50")->name, "gone");
    std::strcpy(second.name, "m50");
    ASSERT_NE(loadScene(folder, manyMaterials(100, "[none]", "s")), nullptr);
    EXPECT_EQ(KTMATERIAL::getNumberOfMaterials(), 101u);
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 100u);
}

TEST_F(SceneCostTest, ManyBonesInALargeTree) {
    std::vector<std::string> names;
    for (int i = 0; i < 65535; ++i) names.push_back(i % 2 ? "no such bone here" : "last");
    formats::Scene scene = sceneOf(plainNode("root"));
    for (int i = 0; i < 30000; ++i) scene.root.children.push_back(plainNode("n"));
    scene.root.children.push_back(deepNode("last"));
    formats::Node skin = skinNode("skin", {"last"});
    skin.mesh.boneNames = names;
    scene.root.children.push_back(skin);
    GlRecorder::clear();
    const CpuTime time;
    KTNODE *root = loadScene(folder, scene);
    ASSERT_NE(root, nullptr);
    EXPECT_LT(time.seconds(), kLongestSeconds);
    const KTMESH *mesh = static_cast<KTMESH *>(root->getChild(30001));
    ASSERT_EQ(mesh->getNumberOfBones(), 65535u);
    EXPECT_EQ(mesh->bones[65534].node, root->findByNameInHierarchy("last"));
    EXPECT_EQ(mesh->bones[65534].inverseBindMatrix.m[13], -61.0f);
    EXPECT_EQ(mesh->bones[1].node, nullptr);
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 1) << "the matrix of a node is computed once";
}

TEST_F(SceneCostTest, OneTreeIsWalkedOnceForAllItsSkins) {
    formats::Scene scene = sceneOf(plainNode("root"));
    for (int i = 0; i < 15000; ++i) scene.root.children.push_back(skinNode("skin", {"nobody"}, 3));
    const CpuTime time;
    ASSERT_NE(loadScene(folder, scene), nullptr);
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

TEST_F(SceneCostTest, BonesArePaidForByTheSizeOfTheFile) {
    formats::Scene scene = sceneOf(plainNode("root"));
    formats::Node skin = skinNode("skin", {"bone"}, 3);
    skin.mesh.boneNames.assign(65535, "");
    for (int i = 0; i < 20; ++i) scene.root.children.push_back(skin);
    EXPECT_EQ(loadScene(folder, scene), nullptr);
    EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
    scene.root.children.resize(1);
    scene.root.children[0].mesh.boneNames.assign(4000, "");
    EXPECT_NE(loadScene(folder, scene), nullptr) << "as many bones are in order in any file";
}

}  // namespace
}  // namespace keltra::test
