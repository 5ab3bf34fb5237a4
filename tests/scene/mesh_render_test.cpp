// SPDX-License-Identifier: Zlib
#include <keltra/mesh.h>

#include <algorithm>
#include <memory>

#include "tests/scene/scene_parts.h"
#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

/// Meshes are rendered by themselves, with an element each, in the state that a frame starts with.
class MeshRenderTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        if (!HasFatalFailure()) startFrame();
    }
    void TearDown() override {
        KTMESH::hideNormals();
        KTLIGHT::lightingOff();
        KTOPENGL::setProfile(KT_PROFILE_NORMAL);
        EngineTest::TearDown();
    }

    static void startFrame() {
        KELTRA::begin3D(nullptr);
        GlRecorder::clear();
    }

    KTMESH *load(const formats::Node &node) {
        KTMESH *mesh = loadMesh(folder, node);
        GlRecorder::clear();
        return mesh;
    }

    static bool render(KTMESH &mesh, unsigned slot = 0) {
        KTELEMENT element;
        element.node = &mesh;
        element.setParam1(slot);
        return mesh.render(&element);
    }

    static std::vector<std::string> drawNames() {
        std::vector<std::string> names = GlRecorder::names();
        const auto isOther = [](const std::string &name) {
            return name != "glCullFace" && name != "glDrawElements" && name != "glDrawArrays";
        };
        names.erase(std::remove_if(names.begin(), names.end(), isOther), names.end());
        return names;
    }

    static void expectColor(float r, float g, float b, float a) {
        const auto fixed = [](float value) { return static_cast<std::int64_t>(value * 65536.0f); };
        EXPECT_EQ(GlRecorder::last("glColor4x").arguments,
                  (std::vector<std::int64_t>{fixed(r), fixed(g), fixed(b), fixed(a)}));
    }

    static std::int64_t address(const void *pointer) { return reinterpret_cast<std::intptr_t>(pointer); }

    TempFolder folder;
};

TEST_F(MeshRenderTest, NeedsAnElement) {
    KTMESH mesh;
    EXPECT_FALSE(mesh.render(nullptr));
    mesh.setDisplayStatus(false);
    EXPECT_FALSE(mesh.render(nullptr));
}

TEST_F(MeshRenderTest, AHiddenMeshRendersNothingAndSucceeds) {
    KTMESH *mesh = load(stripNode("mesh"));
    ASSERT_NE(mesh, nullptr);
    mesh->setDisplayStatus(false);
    EXPECT_TRUE(render(*mesh));
    EXPECT_TRUE(GlRecorder::calls().empty());
}

TEST_F(MeshRenderTest, DrawsItsArraysInFixedPoint) {
    KTMESH *mesh = load(stripNode("mesh", 5));
    ASSERT_NE(mesh, nullptr);
    KTELEMENT element;
    element.matrix.setTranslation(1.0f, 2.0f, -3.0f);
    EXPECT_TRUE(mesh->render(&element));
    EXPECT_EQ(GlRecorder::count("glVertexPointer", {3, GL_FIXED, 0, address(mesh->vertices)}), 1);
    EXPECT_EQ(GlRecorder::count("glNormalPointer", {GL_FIXED, 0, address(mesh->vertexNormals)}), 1);
    EXPECT_EQ(GlRecorder::count("glTexCoordPointer", {2, GL_FIXED, 0, address(mesh->uvs)}), 1);
    EXPECT_EQ(GlRecorder::count("glDrawElements", {GL_TRIANGLES, 9, GL_UNSIGNED_SHORT, address(mesh->faces)}),
              1);
    EXPECT_EQ(drawNames(), std::vector<std::string>{"glDrawElements"});
    const std::vector<std::int64_t> matrix = GlRecorder::last("glLoadMatrixx").contents;
    EXPECT_EQ(std::vector<std::int64_t>(matrix.end() - 4, matrix.end()),
              (std::vector<std::int64_t>{65536, 131072, -196608, 65536}));
    EXPECT_EQ(GlRecorder::count("glEnableClientState"), 3);
}

TEST_F(MeshRenderTest, ArraysThatAreOnAreNotSwitchedOnAgain) {
    KTMESH *mesh = load(stripNode("mesh"));
    ASSERT_NE(mesh, nullptr);
    EXPECT_TRUE(render(*mesh));
    GlRecorder::clear();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glEnableClientState"), 0);
    EXPECT_EQ(GlRecorder::count("glDisableClientState"), 0);
    EXPECT_EQ(GlRecorder::count("glDrawElements"), 1);
}

TEST_F(MeshRenderTest, AMeshWithoutFacesSetsUpItsArraysAndDrawsNothing) {
    formats::Node node = stripNode("mesh");
    node.mesh.faces.clear();
    node.mesh.faceNormals.clear();
    KTMESH *mesh = load(node);
    ASSERT_NE(mesh, nullptr);
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glVertexPointer"), 1);
    EXPECT_EQ(GlRecorder::count("glNormalPointer"), 1);
    EXPECT_EQ(GlRecorder::count("glTexCoordPointer"), 1);
    EXPECT_TRUE(drawNames().empty());
}

TEST_F(MeshRenderTest, ArraysThatAMeshLacksAreSwitchedOff) {
    formats::Node plain = stripNode("plain");
    plain.mesh.uvs.clear();
    KTMESH *full = load(stripNode("full")), *mesh = load(plain), *empty = load(boneNode("empty"));
    ASSERT_NE(empty, nullptr);
    EXPECT_TRUE(render(*full));
    GlRecorder::clear();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glDisableClientState"), 1);
    EXPECT_EQ(GlRecorder::count("glDisableClientState", {GL_TEXTURE_COORD_ARRAY}), 1);
    EXPECT_EQ(GlRecorder::count("glTexCoordPointer"), 0);
    EXPECT_TRUE(render(*empty));
    EXPECT_EQ(GlRecorder::count("glDisableClientState"), 3);
    EXPECT_EQ(GlRecorder::count("glDrawElements"), 1);
}

TEST_F(MeshRenderTest, ATransparentMeshIsDrawnTwiceBackFacesFirst) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTMATERIAL material;
    material.setTransparency(0.5f);
    mesh->setMaterial(&material);
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(drawNames(),
              (std::vector<std::string>{"glCullFace", "glDrawElements", "glCullFace", "glDrawElements"}));
    const std::vector<Call> culls = GlRecorder::all("glCullFace");
    EXPECT_EQ(culls[0].arguments[0], GL_FRONT);
    EXPECT_EQ(culls[1].arguments[0], GL_BACK);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_CULL_FACE}), 0) << "culling was on and stays on";
    EXPECT_TRUE(KTOPENGL::isCulled());
}

TEST_F(MeshRenderTest, CullingIsOffAgainAfterATransparentMesh) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTMATERIAL material;
    material.setTransparency(0.5f);
    mesh->setMaterial(&material);
    KTOPENGL::cullingOff();
    GlRecorder::clear();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_CULL_FACE}), 1);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_CULL_FACE}), 1);
    EXPECT_FALSE(KTOPENGL::isCulled());
    KTOPENGL::cullingOn();
}

TEST_F(MeshRenderTest, OnlyTransparentMaterialsAreLitOnTwoSides) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTMATERIAL glass, stone;
    glass.setTransparency(0.5f);
    mesh->setMaterial(&glass);
    EXPECT_TRUE(render(*mesh));
    EXPECT_TRUE(KTOPENGL::isTwoSide());
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glLightModelx", {GL_LIGHT_MODEL_TWO_SIDE, 65536}), 1);
    mesh->setMaterial(&stone);
    EXPECT_TRUE(render(*mesh));
    EXPECT_FALSE(KTOPENGL::isTwoSide());
    EXPECT_EQ(GlRecorder::count("glLightModelx", {GL_LIGHT_MODEL_TWO_SIDE, 0}), 1);
}

TEST_F(MeshRenderTest, NormalDrawingRendersTheMaterial) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTMATERIAL material;
    mesh->setMaterial(&material);
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(KTMATERIAL::currentMaterial, &material);
    EXPECT_EQ(GlRecorder::count("glMaterialxv"), 4);
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glMaterialxv"), 4);
}

TEST_F(MeshRenderTest, AMeshWithoutMaterialHasTheInitialOne) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTMATERIAL material;
    mesh->setMaterial(&material);
    EXPECT_TRUE(render(*mesh));
    mesh->setMaterial(nullptr);
    KTLIGHT::lightingOn();
    GlRecorder::clear();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glMaterialxv"), 4);
    GlRecorder::clear();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glMaterialxv"), 0) << "the GL holds it";
}

// Which lighting shader the material chose shows in the shader switch: it stays on for an operative one only.
class NearestLightTest : public MeshRenderTest {
   protected:
    void SetUp() override {
        MeshRenderTest::SetUp();
        KTSETTINGS::forceShadersOn();
        KTSHADER::pplDirect->vertexReady = KTSHADER::pplDirect->pixelReady = true;
        mesh = load(stripNode("mesh"));
        mesh->setMaterial(&material);
        KTSHADER::enable();
    }
    void TearDown() override {
        KTSETTINGS::forceShadersOff();
        mesh->setMaterial(nullptr);
        MeshRenderTest::TearDown();
    }

    bool renderBy(KTNODE &light) {
        KTELEMENT lightElement, element;
        lightElement.node = &light;
        element.setNearestLight(0, &lightElement);
        return mesh->render(&element);
    }

    KTMATERIAL material;
    KTMESH *mesh = nullptr;
};

TEST_F(NearestLightTest, ItsTypeIsHandedToTheMaterial) {
    KTLIGHT light;
    light.setLightType(KT_LIGHT_DIRECTIONAL);
    KTLIGHT::lightingOn();
    EXPECT_TRUE(renderBy(light));
    EXPECT_TRUE(KTSHADER::enabled);
    light.setLightType(KT_LIGHT_POINT);
    KTMATERIAL::reset();
    EXPECT_TRUE(renderBy(light));
    EXPECT_FALSE(KTSHADER::enabled);
}

TEST_F(NearestLightTest, NoneIsHandedOnWithoutLighting) {
    KTLIGHT light;
    light.setLightType(KT_LIGHT_DIRECTIONAL);
    EXPECT_TRUE(renderBy(light));
    EXPECT_FALSE(KTSHADER::enabled);
}

TEST_F(NearestLightTest, WithoutALightShadersAreDisabled) {
    KTLIGHT::lightingOn();
    mesh->setMaterial(nullptr);
    EXPECT_TRUE(render(*mesh));
    EXPECT_FALSE(KTSHADER::enabled);
}

TEST_F(MeshRenderTest, ThePickingPassDrawsFlatInTheColourOfTheAuxiliaryId) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTMATERIAL material;
    mesh->setMaterial(&material);
    KTLIGHT::lightingOn();
    KTOPENGL::blendingOn();
    KTTEXTURE::texturingOn(0);
    KTMATERIAL::currentMaterial = &material;
    GlRecorder::clear();
    KTOPENGL::setProfile(KT_PROFILE_PICKING);
    mesh->setAuxId(0x89abcdef);
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_LIGHTING}), 1);
    EXPECT_FALSE(KTLIGHT::lighting);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_TEXTURE_2D}), 1);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_BLEND}), 1);
    EXPECT_EQ(GlRecorder::count("glMaterialxv"), 0);
    EXPECT_EQ(KTMATERIAL::currentMaterial, nullptr) << "its state was changed behind it";
    EXPECT_EQ(GlRecorder::count("glTexCoordPointer"), 0);
    EXPECT_EQ(GlRecorder::count("glColor4x"), 1);
    EXPECT_EQ(GlRecorder::count("glDrawElements"), 1);
}

TEST_F(MeshRenderTest, PickingColoursFollowTheDisplay) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTOPENGL::setProfile(KT_PROFILE_PICKING);
    const int depth = KTSETTINGS::colorDepth;
    mesh->setAuxId(21u << 11 | 42u << 5 | 7u);
    KTSETTINGS::colorDepth = 16;
    EXPECT_TRUE(render(*mesh));
    expectColor(21.0f / 31.0f, 42.0f / 63.0f, 7.0f / 31.0f, 0.0f);
    mesh->setAuxId(0x40c08010);
    KTSETTINGS::colorDepth = 24;
    EXPECT_TRUE(render(*mesh));
    expectColor(16.0f / 255.0f, 128.0f / 255.0f, 192.0f / 255.0f, 64.0f / 255.0f);
    KTSETTINGS::colorDepth = depth;
}

TEST_F(MeshRenderTest, PickingUsesTheIdWithoutAnAuxiliaryOne) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTOPENGL::setProfile(KT_PROFILE_PICKING);
    const int depth = KTSETTINGS::colorDepth;
    KTSETTINGS::colorDepth = 24;
    EXPECT_TRUE(render(*mesh));
    expectColor(static_cast<float>(mesh->getId() & 255) / 255.0f,
                static_cast<float>(mesh->getId() >> 8) / 255.0f, 0, 0);
    KTSETTINGS::colorDepth = depth;
}

TEST_F(MeshRenderTest, TheDepthPassSetsNoColour) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTOPENGL::setProfile(KT_PROFILE_DEPTH);
    KTSHADER::enable();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glColor4x"), 0);
    EXPECT_EQ(GlRecorder::count("glTexCoordPointer"), 1);
    EXPECT_EQ(GlRecorder::count("glDrawElements"), 1);
    EXPECT_FALSE(KTSHADER::enabled);
}

TEST_F(MeshRenderTest, SpecialPassesBindTheirShaderWhereThereIsOne) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTSHADER::passthroughFlag = true;
    for (KT_OPENGL_PROFILE profile : {KT_PROFILE_PICKING, KT_PROFILE_DEPTH}) {
        KTOPENGL::setProfile(profile);
        GlRecorder::clear();
        EXPECT_TRUE(render(*mesh));
        EXPECT_EQ(GlRecorder::count("glColor4x"), profile == KT_PROFILE_PICKING ? 1 : 0);
        EXPECT_EQ(GlRecorder::count("glDrawElements"), 1);
    }
    KTSHADER::passthroughFlag = false;
}

TEST_F(MeshRenderTest, ASkinIsDrawnFromItsSkinnedArrays) {
    KTMESH *mesh = load(skinNode("skin", {"a"}));
    ASSERT_NE(mesh, nullptr);
    EXPECT_TRUE(render(*mesh, 15));
    EXPECT_EQ(GlRecorder::count("glVertexPointer", {3, GL_FIXED, 0, address(mesh->skinnedVertices)}), 1);
    EXPECT_EQ(GlRecorder::count("glNormalPointer", {GL_FIXED, 0, address(mesh->skinnedNormals)}), 1);
    EXPECT_EQ(GlRecorder::count("glDrawElements"), 1);
}

TEST_F(MeshRenderTest, ASkinWithoutASlotIsNotDrawn) {
    KTMESH *mesh = load(skinNode("skin", {"a"}));
    ASSERT_NE(mesh, nullptr);
    EXPECT_FALSE(render(*mesh, 16));
    EXPECT_TRUE(drawNames().empty());
    EXPECT_EQ(GlRecorder::count("glVertexPointer"), 0);
}

TEST_F(MeshRenderTest, TheSkinningShaderGetsTheBindPose) {
    KTSHADER::skinningFlag = true;
    KTMESH *mesh = load(skinNode("skin", {"a", "b", "c", "d"}));
    ASSERT_NE(mesh, nullptr);
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glVertexPointer", {3, GL_FIXED, 0, address(mesh->vertices)}), 1);
    KTSHADER::skinningFlag = false;
}

TEST_F(MeshRenderTest, OfSeventeenSkinsInAFrameSixteenAreDrawn) {
    formats::Node root = plainNode("root");
    for (int i = 0; i < 17; ++i) root.children.push_back(skinNode("skin", {"hip"}));
    root.children.push_back(boneNode("hip"));
    KTNODE *scene = loadNode(folder, root);
    ASSERT_NE(scene, nullptr);
    GlRecorder::clear();
    frame3D(nullptr, [scene] { scene->pass(); });
    EXPECT_EQ(GlRecorder::count("glDrawElements"), 16);
}

TEST_F(MeshRenderTest, WireframeDrawsEachEdgeOfEachTriangle) {
    KTMESH *mesh = load(stripNode("mesh"));
    KELTRA::wireframeOn();
    EXPECT_TRUE(render(*mesh));
    ASSERT_EQ(GlRecorder::count("glDrawElements", {GL_LINES, 12, GL_UNSIGNED_SHORT}), 1);
    EXPECT_EQ(drawNames(), std::vector<std::string>{"glDrawElements"});
    const auto *lines =
        reinterpret_cast<const std::uint16_t *>(GlRecorder::last("glDrawElements").arguments[3]);
    EXPECT_EQ(std::vector<std::uint16_t>(lines, lines + 12),
              (std::vector<std::uint16_t>{0, 1, 1, 2, 2, 0, 1, 2, 2, 3, 3, 1}));
    KELTRA::wireframeOff();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glDrawElements", {GL_TRIANGLES}), 1);
}

TEST_F(MeshRenderTest, WireframeListsAreMadeOnceAndSharedByLaterCopies) {
    KTMESH *mesh = load(stripNode("mesh"));
    KELTRA::wireframeOn();
    EXPECT_TRUE(render(*mesh));
    const std::int64_t lines = GlRecorder::last("glDrawElements").arguments[3];
    auto copy = std::make_unique<KTMESH>(*mesh);
    delete mesh;
    EXPECT_TRUE(render(*copy));
    EXPECT_EQ(GlRecorder::last("glDrawElements").arguments[3], lines);
}

TEST_F(MeshRenderTest, WireframeDrawsATransparentMeshOnce) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTMATERIAL material;
    material.setTransparency(0.5f);
    mesh->setMaterial(&material);
    KELTRA::wireframeOn();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(drawNames(), std::vector<std::string>{"glDrawElements"}) << "lines have no faces to cull";
}

TEST_F(MeshRenderTest, NormalsAreDrawnAsLines) {
    KTMESH *mesh = load(stripNode("mesh"));
    mesh->radius = 8.0f;
    KTMESH::showNormals();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(drawNames(), (std::vector<std::string>{"glDrawElements", "glDrawArrays"}));
    EXPECT_EQ(GlRecorder::count("glDrawArrays", {GL_LINES, 0, 8}), 1);
    const auto *lines =
        reinterpret_cast<const std::int32_t *>(GlRecorder::last("glVertexPointer").arguments[3]);
    // The third vertex is (1, 0, -0.5), its normal (0, 0.25, 1) is drawn a sixteenth of the radius long.
    EXPECT_EQ(std::vector<std::int32_t>(lines + 12, lines + 18),
              (std::vector<std::int32_t>{65536, 0, -32768, 65536, 8192, 0}));
    KTMESH::hideNormals();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glDrawArrays"), 1);
}

TEST_F(MeshRenderTest, NormalsOfASkinFollowItsPose) {
    KTMESH *mesh = load(skinNode("skin", {"a"}));
    KTMESH::showNormals();
    EXPECT_TRUE(render(*mesh));
    KTMESH::boneMatrices[0].setTranslation(0.0f, 3.0f, 0.0f);
    EXPECT_TRUE(render(*mesh));
    const auto *lines =
        reinterpret_cast<const std::int32_t *>(GlRecorder::last("glVertexPointer").arguments[3]);
    EXPECT_EQ(lines[1], 3 * 65536);
}

TEST_F(MeshRenderTest, SpecialPassesShowNeitherLinesNorNormals) {
    KTMESH *mesh = load(stripNode("mesh"));
    KTMESH::showNormals();
    KELTRA::wireframeOn();
    for (KT_OPENGL_PROFILE profile : {KT_PROFILE_PICKING, KT_PROFILE_DEPTH}) {
        KTOPENGL::setProfile(profile);
        GlRecorder::clear();
        EXPECT_TRUE(render(*mesh));
        EXPECT_EQ(GlRecorder::count("glDrawElements", {GL_TRIANGLES}), 1);
        EXPECT_EQ(GlRecorder::count("glDrawArrays"), 0);
    }
}

TEST_F(MeshRenderTest, ALaterFrameAllocatesNothing) {
    KTMESH *mesh = load(skinNode("skin", {"a", "b"}, 40));
    KTMATERIAL material;
    material.setTransparency(0.5f);
    mesh->setMaterial(&material);
    KTMESH::showNormals();
    const GlRecorder::Stub stub;
    const GlRecorder::Pause pause;
    KTELEMENT element;
    for (int wireframe = 0; wireframe < 2; ++wireframe) {
        if (wireframe) KELTRA::wireframeOn();
        EXPECT_TRUE(mesh->render(&element));
        Allocations::startCounting();
        mesh->render(&element);
        EXPECT_EQ(Allocations::stopCounting(), 0);
    }
}

TEST_F(MeshRenderTest, WithoutMemoryForTheLinesTheTrianglesAreDrawn) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    KTMESH *mesh = load(stripNode("mesh", 503));
    KELTRA::wireframeOn();
    KTMESH::showNormals();
    Allocations::failNext(501 * 6 * 2);
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glDrawElements", {GL_TRIANGLES}), 1);
    Allocations::clear();
    EXPECT_TRUE(render(*mesh));
    EXPECT_EQ(GlRecorder::count("glDrawElements", {GL_LINES}), 1);
}

}  // namespace
}  // namespace keltra::test
