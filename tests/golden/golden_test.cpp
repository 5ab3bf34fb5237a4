// SPDX-License-Identifier: Zlib
// Whole pictures of the real driver, from scene files to the frame buffer.

#include "tests/scene/scene_parts.h"
#include "tests/support/golden_fixture.h"
#include "tests/support/shapes.h"
#include "tests/support/temp_file.h"
#include "tools/formats/tga_writer.h"

namespace {

using keltra::formats::KteVersion;
using keltra::test::Image;
using keltra::test::matchesGolden;

// The software driver gives the same pixels on every machine, except for the last bit of an interpolated
// colour, which is 8 steps in a channel of five bits.
constexpr keltra::test::Tolerance kTolerance = {8, 0.05};

class Golden : public keltra::test::GoldenTest {
   protected:
    void prepare(KTSETTINGS &values) override {
        values.setKTEPath(folder.prefix().c_str());
        values.setTexturePath(folder.prefix().c_str());
    }

    KTNODE *loadSampleScene() {
        KELTRA::setKTEPath(KELTRA_EXAMPLE_DATA);
        KTTEXTURE::setPath(KELTRA_EXAMPLE_DATA);
        camera.setPosition(-8.0f, 5.8f, 19.4f);
        camera.setTargetNode(&camera);
        camera.setTarget(0.0f, 5.4f, 0.0f);
        return KELTRA::load("scene.kte");
    }

    KTNODE *load(const keltra::formats::Scene &scene, KteVersion version) {
        folder.write("test.kte", keltra::formats::writeKte(scene, version));
        return KELTRA::load("test.kte");
    }

    Image picture(KTNODE *scene) {
        return frame3D(&camera, [&] { scene->pass(); });
    }

    keltra::test::TempFolder folder;
    KTCAMERA camera;
};

class GoldenLandscape : public Golden {
    void prepare(KTSETTINGS &values) override {
        Golden::prepare(values);
        values.setLandscape(true);
    }
};

keltra::formats::Material material(const char *name, keltra::formats::Color diffuse, float transparency) {
    keltra::formats::Material result;
    result.name = name;
    result.ambient = diffuse;
    result.diffuse = diffuse;
    result.transparency = transparency;
    return result;
}

keltra::formats::Node boxMesh(const char *name, const char *materialName, keltra::formats::Vec3 center) {
    keltra::formats::Node node = keltra::test::boxNode(name, materialName);
    node.position = center;
    node.mesh.rotation = {25.0f, 35.0f, 10.0f};
    return node;
}

// Three boxes one behind the other, the first two transparent and written in front-to-back order, under six
// lights.
keltra::formats::Scene boxes() {
    keltra::formats::Scene scene;
    scene.materials = {material("red", {0.9f, 0.2f, 0.1f, 1.0f}, 0.5f),
                       material("green", {0.1f, 0.8f, 0.2f, 1.0f}, 0.6f),
                       material("stone", {0.7f, 0.7f, 0.8f, 1.0f}, 1.0f)};
    scene.materials[2].texture = "checker.tga";
    scene.root = keltra::test::plainNode("root");
    scene.root.children = {boxMesh("near", "red", {-0.6f, 0.0f, -7.0f}),
                           boxMesh("middle", "green", {0.6f, 0.6f, -10.0f}),
                           boxMesh("far", "stone", {0.0f, -0.8f, -14.0f})};
    for (int i = 0; i < 6; ++i) {
        float x = static_cast<float>(i * 4 - 10);
        keltra::formats::Node light = keltra::test::lightNode("light" + std::to_string(i));
        light.position = {x, 4.0f - x * 0.5f, -4.0f};
        light.light.color = {i % 2 ? 0.5f : 0.2f, 0.3f, i % 2 ? 0.1f : 0.5f};
        scene.root.children.push_back(light);
    }
    return scene;
}

keltra::formats::Image checker() {
    keltra::formats::Image image(16, 16);
    for (unsigned y = 0; y < 16; ++y) {
        for (unsigned x = 0; x < 16; ++x) {
            std::uint8_t shade = (x / 4 + y / 4) % 2 ? 255 : 90;
            image.at(x, y) = {shade, shade, static_cast<std::uint8_t>(255 - x * 8), 255};
        }
    }
    return image;
}

TEST_F(Golden, EmptyFrameShowsTheBackground) {
    EXPECT_TRUE(matchesGolden(frame3D(nullptr, nullptr), "background", {0, 0.0}));
}

TEST_F(Golden, SampleScene) {
    KTNODE *scene = loadSampleScene();
    ASSERT_NE(scene, nullptr);
    EXPECT_TRUE(matchesGolden(picture(scene), "scene", kTolerance));
}

TEST_F(Golden, SampleSceneInWireframe) {
    KTNODE *scene = loadSampleScene();
    ASSERT_NE(scene, nullptr);
    KELTRA::wireframeOn();
    EXPECT_TRUE(matchesGolden(picture(scene), "wireframe", kTolerance));
}

TEST_F(Golden, ASkyboxTurnsWithTheCameraButStaysAroundIt) {
    KTNODE *scene = loadSampleScene();
    ASSERT_NE(scene, nullptr);
    KTNODE *sky = scene->findByNameInHierarchy("sky");
    ASSERT_TRUE(sky && sky->unlink());
    KELTRA::setSkybox(sky);
    camera.setPosition(200.0f, 5.0f, 500.0f);
    camera.setTarget(200.0f, 40.0f, 400.0f);
    EXPECT_TRUE(matchesGolden(frame3D(&camera, nullptr), "skybox", kTolerance));
}

TEST_F(GoldenLandscape, SampleSceneIsTurned) {
    KTNODE *scene = loadSampleScene();
    ASSERT_NE(scene, nullptr);
    EXPECT_TRUE(matchesGolden(picture(scene), "landscape", kTolerance));
}

TEST_F(Golden, BothFileVersionsShowTheSameBoxesUnderSixLights) {
    folder.write("checker.tga", keltra::formats::writeTga(checker(), {}));
    for (KteVersion version : {KteVersion::k15a, KteVersion::k16a}) {
        KTNODE *scene = load(boxes(), version);
        ASSERT_NE(scene, nullptr);
        EXPECT_TRUE(matchesGolden(picture(scene), "boxes", kTolerance));
    }
}

TEST_F(Golden, NormalsStandOnTheVertices) {
    folder.write("checker.tga", keltra::formats::writeTga(checker(), {}));
    KTNODE *scene = load(boxes(), KteVersion::k16a);
    ASSERT_NE(scene, nullptr);
    KTMESH::showNormals();
    Image shown = picture(scene);
    KTMESH::hideNormals();
    EXPECT_TRUE(matchesGolden(shown, "normals", kTolerance));
}

}  // namespace
