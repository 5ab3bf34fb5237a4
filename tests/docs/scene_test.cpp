// SPDX-License-Identifier: Zlib
// docs/oddities.md: bones that are no meshes, the alpha of textures on meshes.

#include "tests/scene/scene_parts.h"
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;

class SceneClaims : public EngineTest {
   protected:
    void TearDown() override {
        EngineTest::TearDown();
        KELTRA::setKTEPath(nullptr);
        KTTEXTURE::setPath(nullptr);
    }
    static std::vector<float> skinned(const KTMESH &mesh, int vertex) {
        std::vector<float> place;
        for (int i = 0; i < 3; ++i)
            place.push_back(static_cast<float>(mesh.skinnedVertices[3 * vertex + i]) / 65536.0f);
        return place;
    }

    TempFolder folder;
};

TEST_F(SceneClaims, OnlyMeshNodesMoveASkin) {
    formats::Node other = plainNode("plain");
    other.position = {4, 5, 6};
    formats::Node skin = skinNode("skin", {"mesh", "plain", "missing"}, 3);
    skin.mesh.influences = 1;
    skin.mesh.influenceBones = {0, 1, 2};
    skin.mesh.influenceWeights = {1, 1, 1};
    skin.mesh.vertices = {{10, 20, 30}, {10, 20, 30}, {10, 20, 30}};
    KTNODE *figure = loadNode(
        folder, plainNode("figure", {plainNode("HumanoidRoot", {boneNode("mesh", {1, 2, 3}), other, skin})}));
    ASSERT_TRUE(figure);
    const KTMESH &mesh = *static_cast<KTMESH *>(figure->findByNameInHierarchy("skin"));
    frame3D(nullptr, [&] { figure->pass(); });
    EXPECT_THAT(skinned(mesh, 0), ElementsAre(10, 20, 30));
    EXPECT_THAT(skinned(mesh, 1), ElementsAre(10 - 4, 20 - 5, 30 - 6)) << "as if the bone were at the parent";
    EXPECT_THAT(skinned(mesh, 2), ElementsAre(10, 20, 30)) << "the bind pose";
    figure->findByNameInHierarchy("mesh")->move(100, 0, 0);
    figure->findByNameInHierarchy("plain")->move(100, 0, 0);
    frame3D(nullptr, [&] { figure->pass(); });
    EXPECT_THAT(skinned(mesh, 0), ElementsAre(110, 20, 30));
    EXPECT_THAT(skinned(mesh, 1), ElementsAre(6, 15, 24));
}

TEST_F(SceneClaims, ATexturesAlphaShowsOnATransparentMaterialOnly) {
    formats::Scene scene = sceneOf(stripNode("strip", 4, "glass"));
    scene.root.position = {0, 0, -4};
    scene.materials.emplace_back();
    scene.materials[0].name = "glass";
    KTMESH *mesh = static_cast<KTMESH *>(loadScene(folder, scene));
    ASSERT_TRUE(mesh);
    KTTEXTURE *clear = new KTTEXTURE;
    clear->setFilter(false, false, true);
    clear->create(1, 1, 4);
    const unsigned char pixel[] = {255, 0, 0, 0};
    clear->modify(reinterpret_cast<const char *>(pixel), true);
    mesh->getMaterial()->setTexture(0, clear);
    const auto middle = [&] {
        const Image picture = frame3D(nullptr, [&] { mesh->pass(); });
        return picture.at(180, 98) == picture.at(10, 10);
    };
    EXPECT_FALSE(middle()) << "opaque: the texture covers the background";
    mesh->getMaterial()->setTransparency(0.999f);
    EXPECT_TRUE(middle());
}

}  // namespace
}  // namespace keltra::test
