// SPDX-License-Identifier: Zlib
#include "tools/view/model.h"

#include <cmath>

#include "tests/tools/view/scenes.h"
#include "tests/tools/view/viewer_fixture.h"

using keltra::test::triangleScene;
using keltra::test::ViewerTest;
using keltra::view::Failure;
namespace formats = keltra::formats;

namespace {

class ModelTest : public ViewerTest {
   protected:
    std::string write(const formats::Scene &scene, const std::string &name = "scene.kte") {
        return folder.write(name, formats::writeKte(scene, formats::KteVersion::k16a));
    }
    // Red pixels in the middle of the free screen.
    static int redPixels(const keltra::support::Shot &taken) {
        int count = 0;
        for (std::size_t i = 62 * 240; i < 215 * 240; ++i) {
            const unsigned char *pixel = &taken.pixels[i * 3];
            count += pixel[0] > 100 && pixel[0] > 2 * pixel[1];
        }
        return count;
    }
};

}  // namespace

TEST_F(ModelTest, IsFramedAtEverySizeAndPlace) {
    const struct {
        float size;
        formats::Vec3 place;
    } kCases[] = {{1.0f, {0.0f, 0.0f, 0.0f}},
                  {0.01f, {0.0f, 0.0f, 0.0f}},
                  {1.0f, {9000.0f, -7000.0f, 5000.0f}},
                  {5000.0f, {0.0f, 100.0f, 0.0f}},
                  {20000.0f, {5000.0f, 0.0f, 0.0f}}};
    for (const auto &item : kCases) {
        start(write(triangleScene(item.size, item.place)));
        frames(1);
        EXPECT_GT(redPixels(shot("size_" + std::to_string(item.size))), 3000) << item.size;
        viewer.reset();
    }
}

TEST_F(ModelTest, WithoutAnythingToDrawIsShownAllTheSame) {
    formats::Scene empty;
    empty.root.name = "nothing";
    start(write(empty));
    frames(2);
    EXPECT_EQ(viewer->shownFigures().drawn, 0u);
    EXPECT_EQ(viewer->shownFigures().triangles, 0u);
    for (SDLKey sym : {SDLK_w, SDLK_b, SDLK_v, SDLK_s, SDLK_l, SDLK_c}) key(sym);
    frames(2);
}

TEST_F(ModelTest, OfMeshesWithoutVerticesAreShownAllTheSame) {
    formats::Scene scene = triangleScene(1.0f, {0.0f, 0.0f, 0.0f});
    formats::MeshData &mesh = scene.root.children[0].mesh;
    mesh.vertices.clear();
    mesh.normals.clear();
    mesh.faces.clear();
    mesh.faceNormals.clear();
    start(write(scene));
    for (SDLKey sym : {SDLK_w, SDLK_b, SDLK_v}) key(sym);
    frames(2);
}

TEST_F(ModelTest, IsFoundUnderPathsTheEngineDoesNotTake) {
    std::string deep = folder.prefix();
    for (int i = 0; i < 4; ++i) deep += std::string(90, 'd') + "/";
    const std::string odd = folder.path("some.xml.d"), scene = folder.path("scene.kte");
    write(triangleScene(1.0f, {0.0f, 0.0f, 0.0f}));
    for (const std::string &place : {deep, odd + "/"}) {
        std::filesystem::create_directories(place);
        std::filesystem::copy_file(scene, place + "a.xml.kte");
        start(place + "a.xml.kte");
        frames(1);
        EXPECT_GT(redPixels(shot()), 3000);
        viewer.reset();
    }
}

TEST_F(ModelTest, CullingOffShowsTheBack) {
    start(write(triangleScene(1.0f, {0.0f, 0.0f, 0.0f})));
    frames(1);
    const keltra::support::Shot empty = [this] {
        viewer->shown().scene()->findByNameInHierarchy("triangle")->setPosition(1000.0f, 0.0f, 0.0f);
        const keltra::support::Shot taken = shot();
        viewer->shown().scene()->findByNameInHierarchy("triangle")->setPosition(0.0f, 0.0f, 0.0f);
        return taken;
    }();
    viewer->shown().scene()->findByNameInHierarchy("triangle")->setRotation(0.0f, 180.0f, 0.0f);
    EXPECT_EQ(differing(empty, shot(), 62, 215), 0);
    key(SDLK_c);
    frames(1);
    EXPECT_FALSE(viewer->shownSwitches().culling);
    EXPECT_GT(differing(empty, shot("not_culled"), 62, 215), 3000);
    key(SDLK_c);
    frames(1);
    EXPECT_EQ(differing(empty, shot(), 62, 215), 0);
}

TEST_F(ModelTest, LightsAreMarkedByTheirKinds) {
    formats::Scene scene = triangleScene(1.0f, {0.0f, 0.0f, 0.0f});
    scene.root.children.push_back(
        keltra::test::light("lamp", formats::LightType::kPoint, {-1.0f, 0.9f, 0.6f}, {}));
    start(write(scene));
    int before = 0;
    for (formats::LightType type :
         {formats::LightType::kPoint, formats::LightType::kSpot, formats::LightType::kDirectional}) {
        viewer.reset();
        scene.root.children[1] = keltra::test::light("lamp", type, {-0.6f, 0.5f, 0.6f}, {0.5f, -0.4f, -0.5f});
        start(write(scene));
        frames(1);
        const keltra::support::Shot unmarked = shot();
        key(SDLK_l);
        const int pixels =
            differing(unmarked, shot("light" + std::to_string(static_cast<int>(type))), 62, 215);
        EXPECT_GT(pixels, 10);
        EXPECT_NE(pixels, before) << "each kind has a mark of its own";
        before = pixels;
        key(SDLK_l);
        frames(1);
        EXPECT_EQ(differing(unmarked, shot(), 62, 215), 0);
    }
}

TEST_F(ModelTest, LampsComeOnlyWhereThereAreNoLights) {
    start(write(triangleScene(1.0f, {0.0f, 0.0f, 0.0f})));
    frames(1);
    EXPECT_FALSE(viewer->shown().hasLights());
    viewer.reset();
    formats::Scene lit = triangleScene(1.0f, {0.0f, 0.0f, 0.0f});
    lit.root.children.push_back(
        keltra::test::light("black", formats::LightType::kPoint, {}, {}, {0.0f, 0.0f, 0.0f}));
    start(write(lit));
    frames(1);
    EXPECT_TRUE(viewer->shown().hasLights());
    EXPECT_EQ(redPixels(shot()), 0) << "a black light lights nothing, and nothing else is lit";
}

TEST_F(ModelTest, OfTheSameNamesAsThePanelsTakesNothingFromIt) {
    formats::Scene scene = triangleScene(1.0f, {0.0f, 0.0f, 0.0f});
    scene.materials[0].texture = "font.tga";
    scene.root.children[0].mesh.uvs.assign(3, {0.5f, 0.5f});
    std::filesystem::copy_file(sample("scene_paving_d.tga"), folder.path("font.tga"));
    start(write(scene));
    frames(2);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 3u) << "backdrop, font, and the model's own";
}

TEST_F(ModelTest, MoreTexturesThanTheBudgetLeaveThePanelReadable) {
    start(sample("garden.kte"));
    frames(2);
    const keltra::support::Shot before = shot();
    KTTEXTURE::garbageCollect(0);  // everything is evicted
    frames(1);
    EXPECT_EQ(differing(before, shot(), 62, 320), 0);
}

TEST_F(ModelTest, DamagedFilesAreFailuresWithAReason) {
    const std::vector<std::uint8_t> whole =
        formats::writeKte(triangleScene(1.0f, {0.0f, 0.0f, 0.0f}), formats::KteVersion::k16a);
    for (std::size_t size :
         {std::size_t(0), std::size_t(14), std::size_t(17), whole.size() / 2, whole.size() - 1}) {
        const std::string file = folder.write("cut.kte", whole.data(), size);
        try {
            start(file);
            ADD_FAILURE() << size << " bytes were taken for a scene";
        } catch (const Failure &fault) {
            EXPECT_EQ(std::string(fault.what()).find(file + ": "), 0u) << fault.what();
        }
        EXPECT_FALSE(KELTRA::isActive());
    }
}
