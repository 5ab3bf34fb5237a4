// SPDX-License-Identifier: Zlib
#include <algorithm>
#include <array>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/support/engine_fixture.h"
#include "tests/support/gl_answers.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

/// One render of a probe.
struct Draw {
    const KTNODE *node;
    std::array<float, 16> matrix;
    const KTELEMENT *element;
    KT_OPENGL_PROFILE profile;
    bool culled;
};

std::vector<Draw> draws;

std::vector<const KTNODE *> drawnNodes() {
    std::vector<const KTNODE *> nodes;
    for (const Draw &draw : draws) nodes.push_back(draw.node);
    return nodes;
}

/// A node that notes how it is rendered.
class Probe : public KTNODE {
   public:
    explicit Probe(unsigned int typeCode = KT_CUSTOM) { type = typeCode; }
    bool render(void *data) override {
        auto *element = static_cast<KTELEMENT *>(data);
        draws.push_back(
            {this, elements(*element->getMatrix()), element, KTOPENGL::getProfile(), enabled(GL_CULL_FACE)});
        return true;
    }
};

/// A light and a mesh that note the same.
template <class Base>
class Watched : public Base {
   public:
    bool render(void *data) override {
        draws.push_back({this, {}, static_cast<KTELEMENT *>(data), KTOPENGL::getProfile(), false});
        return Base::render(data);
    }
};

class FrameTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        draws.clear();
    }
    void TearDown() override {
        KTSETTINGS::forceFBO = false;
        KTSHADER::bloomFlag = KTSHADER::dofFlag = false;
        KTOPENGL::FBOFlag = false;
        EngineTest::TearDown();
    }
};

TEST_F(FrameTest, ClearClearsTheChosenBuffersInOneCall) {
    const struct {
        bool color, depth, stencil;
        GLbitfield mask;
    } cases[] = {{true, false, false, GL_COLOR_BUFFER_BIT},
                 {false, true, false, GL_DEPTH_BUFFER_BIT},
                 {false, false, true, GL_STENCIL_BUFFER_BIT},
                 {true, true, true, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT}};
    for (const auto &each : cases) {
        GlRecorder::clear();
        EXPECT_TRUE(KELTRA::clear(each.color, each.depth, each.stencil));
        EXPECT_THAT(GlRecorder::names(), ElementsAre("glClear"));
        EXPECT_EQ(GlRecorder::count("glClear", {each.mask}), 1);
        EXPECT_FALSE(KELTRA::renderingOnFbo);
    }
}

TEST_F(FrameTest, ClearWithoutBuffersStillChoosesTheTarget) {
    KTSETTINGS::forceFBO = true;
    EXPECT_TRUE(KELTRA::clear(false, false, false));
    EXPECT_TRUE(KELTRA::renderingOnFbo) << "although the table of targets is empty";
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
    KTSETTINGS::forceFBO = false;
    EXPECT_TRUE(KELTRA::clear(false, false, false));
    EXPECT_FALSE(KELTRA::renderingOnFbo);
}

TEST_F(FrameTest, EffectsRedirectRenderingOnlyWhereTheyAreSupported) {
    const struct {
        void (*on)();
        void (*off)();
        bool *supported;
    } effects[] = {{KELTRA::bloomingOn, KELTRA::bloomingOff, &KTSHADER::bloomFlag},
                   {KELTRA::DOFOn, KELTRA::DOFOff, &KTSHADER::dofFlag}};
    for (const auto &effect : effects) {
        effect.on();
        KELTRA::clear(false, false, false);
        EXPECT_FALSE(KELTRA::renderingOnFbo);
        *effect.supported = true;
        KELTRA::clear(false, false, false);
        EXPECT_TRUE(KELTRA::renderingOnFbo);
        effect.off();
        KELTRA::clear(false, false, false);
        EXPECT_FALSE(KELTRA::renderingOnFbo);
        *effect.supported = false;
    }
}

TEST_F(FrameTest, ClearBindsTheFirstTargetOfTheTable) {
    KTFBO main;
    KTOPENGL::FBOFlag = true;
    main.bindRenderBuffer(0, 64, 32);
    KTOPENGL::fbo[0] = &main;
    KTSETTINGS::forceFBO = true;
    KELTRA::clear(false, false, false);
    EXPECT_EQ(KTFBO::getCurrent(), &main);
    EXPECT_THAT(GlRecorder::last("glViewport").arguments, ElementsAre(0, 0, 64, 32));
}

TEST_F(FrameTest, Begin3DResetsOnlyWhatIsOn) {
    KTCAMERA camera;
    EXPECT_TRUE(KELTRA::begin3D(&camera));
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glLoadIdentity", "glRotatex", "glRotatex", "glRotatex",
                                                 "glRotatex", "glRotatex", "glRotatex", "glTranslatex"))
        << "the camera alone";
    KTOPENGL::blendingOn();
    KTOPENGL::twoSideOn();
    KTOPENGL::vertexArrayOn();
    KTHELPER helper;
    helper.pass();
    KTMATERIAL material;
    KTMATERIAL::currentMaterial = &material;
    KTSHADER shader;
    KTSHADER::currentShader = &shader;
    GlRecorder::clear();
    EXPECT_TRUE(KELTRA::begin3D(&camera));
    const Names names = GlRecorder::names();
    EXPECT_THAT(Names(names.begin(), names.begin() + 4),
                ElementsAre("glDisableClientState", "glDisable", "glLightModelx", "glLoadIdentity"));
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_BLEND}), 1);
    EXPECT_EQ(GlRecorder::count("glLightModelx", {GL_LIGHT_MODEL_TWO_SIDE, 0}), 1);
    EXPECT_FALSE(KTOPENGL::isBlended());
    EXPECT_FALSE(KTOPENGL::isTwoSide());
    EXPECT_EQ(KTMATERIAL::currentMaterial, nullptr);
    EXPECT_EQ(KTSHADER::currentShader, nullptr);
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 0u);
    EXPECT_EQ(KTMESH::usedSlots, 0u);
}

TEST_F(FrameTest, Begin3DUsesACameraAtTheOriginForNull) {
    KTCAMERA camera;
    camera.setPosition(1.0f, 2.0f, 3.0f);
    KELTRA::begin3D(&camera);
    EXPECT_EQ(KTCAMERA::getThisPassCamera(), &camera);
    EXPECT_EQ(mirror(0)[12], -1.0f);
    const unsigned int nodes = KTNODE::getNumberOfNodes();
    EXPECT_TRUE(KELTRA::begin3D(nullptr));
    EXPECT_EQ(mirror(0), elements(R3XMATRIX()));
    EXPECT_EQ(KTCAMERA::getThisPassCamera(), nullptr) << "it is gone again";
    EXPECT_EQ(KTNODE::getNumberOfNodes(), nodes);
}

TEST_F(FrameTest, AnEmptyEnd3DDrawsNothing) {
    KELTRA::begin3D(nullptr);
    GlRecorder::clear();
    EXPECT_TRUE(KELTRA::end3D());
    EXPECT_TRUE(KELTRA::end3D(true));
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

TEST_F(FrameTest, End3DDrawsInSortedOrderEachWithItsElement) {
    Probe first, second;
    KTHELPER helper;
    Watched<KTLIGHT> light;
    first.setPosition(1.0f, 0.0f, 0.0f);
    KELTRA::begin3D(nullptr);
    helper.pass();
    first.pass();
    second.pass();
    light.pass();
    EXPECT_TRUE(KELTRA::end3D());
    EXPECT_THAT(drawnNodes(), ElementsAre(&light, &first, &second));
    EXPECT_EQ(draws[1].element, &KTELEMENT::element[1]);
    EXPECT_EQ(draws[1].matrix[12], 1.0f);
    EXPECT_EQ(draws[1].profile, KT_PROFILE_NORMAL);
}

TEST_F(FrameTest, NodesDestroyedBeforeTheDrawingAreLeftOut) {
    Probe stays;
    KELTRA::begin3D(nullptr);
    {
        Probe goes;
        Watched<KTLIGHT> light;
        KTMESH mesh;
        light.pass();
        goes.pass();
        mesh.pass();
        stays.pass();
    }
    EXPECT_TRUE(KELTRA::end3D());
    EXPECT_THAT(drawnNodes(), ElementsAre(&stays));
    KELTRA::begin2D();
    {
        Probe goes;
        goes.pass();
        stays.pass();
    }
    EXPECT_TRUE(KELTRA::end2D());
    EXPECT_THAT(drawnNodes(), ElementsAre(&stays, &stays));
}

TEST_F(FrameTest, WireframeSwitchesCullingOffBehindItsCache) {
    Probe probe;
    KELTRA::wireframeOn();
    KELTRA::begin3D(nullptr);
    probe.pass();
    GlRecorder::clear();
    KELTRA::end3D();
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_CULL_FACE}), 1);
    EXPECT_FALSE(draws.back().culled);
    EXPECT_TRUE(KTOPENGL::isCulled()) << "the cache keeps what the application wants";

    KELTRA::begin2D();
    KELTRA::end2D();
    EXPECT_TRUE(enabled(GL_CULL_FACE)) << "the 2D pass brings it back";
}

TEST_F(FrameTest, CullingComesBackOnceWireframeIsOff) {
    Probe probe;
    KELTRA::wireframeOn();
    KELTRA::begin3D(nullptr);
    KELTRA::end3D();
    KELTRA::wireframeOff();
    for (int frame = 0; frame < 3; ++frame) {
        KELTRA::begin3D(nullptr);
        probe.pass();
        KELTRA::end3D();
        EXPECT_TRUE(draws.back().culled);
    }
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_CULL_FACE}), 1);
    KTOPENGL::cullingOff();
    KELTRA::wireframeOn();
    KELTRA::end3D();
    KELTRA::wireframeOff();
    KELTRA::end3D();
    EXPECT_FALSE(enabled(GL_CULL_FACE)) << "it had been off before";
}

TEST_F(FrameTest, TheSkyboxIsDrawnFirstWithRotationOnly) {
    KTNODE skybox;
    Probe dome, second, scene;
    dome.link(&skybox);
    second.link(&skybox);
    skybox.setPosition(100.0f, 100.0f, 100.0f);
    skybox.setRotation(10.0f, 20.0f, 30.0f);
    dome.setPosition(7.0f, 7.0f, 7.0f);
    KELTRA::setSkybox(&skybox);
    KTCAMERA camera;
    camera.setPosition(5.0f, 6.0f, 7.0f);
    camera.setRotation(0.0f, 40.0f, 0.0f);
    KTLIGHT::lightingOn();
    KELTRA::begin3D(&camera);
    scene.pass();
    GlRecorder::clear();
    EXPECT_TRUE(KELTRA::end3D());

    EXPECT_THAT(GlRecorder::names(), ElementsAre("glDisable", "glColor4x", "glLoadIdentity", "glMultMatrixx",
                                                 "glRotatex", "glRotatex", "glRotatex"));
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_LIGHTING}), 1);
    EXPECT_FALSE(KTLIGHT::getLighting());
    EXPECT_THAT(GlRecorder::last("glColor4x").arguments, ElementsAre(65536, 65536, 65536, 65536));
    EXPECT_THAT(GlRecorder::calls()[4].arguments, ElementsAre(10 * 65536, 65536, 0, 0));
    EXPECT_THAT(GlRecorder::calls()[5].arguments, ElementsAre(20 * 65536, 0, 65536, 0));
    EXPECT_THAT(GlRecorder::calls()[6].arguments, ElementsAre(30 * 65536, 0, 0, 65536));

    ASSERT_THAT(drawnNodes(), ElementsAre(&dome, &scene)) << "the first child only";
    R3XMATRIX x, y, z;
    x.setRotation(10.0f, 1.0f, 0.0f, 0.0f);
    y.setRotation(20.0f, 0.0f, 1.0f, 0.0f);
    z.setRotation(30.0f, 0.0f, 0.0f, 1.0f);
    R3XMATRIX expected = z * (y * (x * *KTCAMERA::getCameraMatrix()));
    expected.setTranslation(0.0f, 0.0f, 0.0f);
    for (int i = 0; i < 16; ++i) EXPECT_FLOAT_EQ(draws[0].matrix[i], expected.m[i]) << i;
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 1u) << "it is never on the list";
}

TEST_F(FrameTest, TheSkyboxElementNamesTheSkybox) {
    KTNODE skybox;
    class Dome : public KTNODE {
       public:
        bool render(void *data) override {
            node = static_cast<KTELEMENT *>(data)->getNode();
            param1 = static_cast<KTELEMENT *>(data)->getParam1();
            return true;
        }
        const KTNODE *node = nullptr;
        unsigned int param1 = 99;
    } dome;
    dome.link(&skybox);
    KELTRA::setSkybox(&skybox);
    KELTRA::begin3D(nullptr);
    KELTRA::end3D();
    EXPECT_EQ(dome.node, &skybox);
    EXPECT_EQ(dome.param1, 0u);
}

TEST_F(FrameTest, ASkyboxWithoutAChildDrawsNothing) {
    Probe skybox;
    KELTRA::setSkybox(&skybox);
    KELTRA::begin3D(nullptr);
    EXPECT_TRUE(KELTRA::end3D());
    {
        Probe dome;
        dome.link(&skybox);
    }
    EXPECT_TRUE(KELTRA::end3D());
    EXPECT_THAT(drawnNodes(), IsEmpty());
}

TEST_F(FrameTest, DepthOfFieldDrawsEverythingOnceMoreBeforehand) {
    Probe probe;
    KTNODE skybox;
    Probe dome;
    dome.link(&skybox);
    KELTRA::setSkybox(&skybox);
    KTSHADER::dofFlag = true;
    KELTRA::DOFOn();
    KELTRA::begin3D(nullptr);
    probe.pass();
    GlRecorder::clear();
    EXPECT_TRUE(KELTRA::end3D());
    ASSERT_THAT(drawnNodes(), ElementsAre(&probe, &dome, &probe));
    EXPECT_EQ(draws[0].profile, KT_PROFILE_DEPTH);
    EXPECT_EQ(draws[1].profile, KT_PROFILE_NORMAL);
    EXPECT_EQ(draws[2].profile, KT_PROFILE_NORMAL);
    const std::vector<Call> clears = GlRecorder::all("glClear");
    ASSERT_EQ(clears.size(), 2u);
    EXPECT_THAT(clears[0].arguments, ElementsAre(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT));
    EXPECT_THAT(clears[1].arguments, ElementsAre(GL_DEPTH_BUFFER_BIT));
}

TEST_F(FrameTest, DepthOfFieldDrawsIntoTheSecondTargetAndReturnsToTheFirst) {
    KTFBO main, depth;
    KTOPENGL::FBOFlag = KTSHADER::dofFlag = true;
    main.bindRenderBuffer(0, 64, 32);
    depth.bindRenderBuffer(0, 16, 8);
    KTOPENGL::fbo[0] = &main;
    KTOPENGL::fbo[1] = &depth;
    KELTRA::DOFOn();
    KELTRA::clear(true, true, false);
    KELTRA::begin3D(nullptr);
    GlRecorder::clear();
    KELTRA::end3D();
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glViewport", "glClear", "glViewport", "glClear"));
    EXPECT_THAT(GlRecorder::calls()[0].arguments, ElementsAre(0, 0, 16, 8));
    EXPECT_EQ(KTFBO::getCurrent(), &main);
}

TEST_F(FrameTest, DepthOfFieldNeedsSupport) {
    Probe probe;
    KELTRA::DOFOn();
    KELTRA::begin3D(nullptr);
    probe.pass();
    KELTRA::end3D();
    EXPECT_THAT(drawnNodes(), ElementsAre(&probe));
    EXPECT_EQ(GlRecorder::count("glClear"), 0);
}

TEST_F(FrameTest, Begin2DSetsAPixelProjection) {
    EXPECT_TRUE(KELTRA::begin2D());
    EXPECT_THAT(GlRecorder::names(),
                ElementsAre("glDisable", "glDisable", "glEnableClientState", "glEnableClientState",
                            "glEnableClientState", "glMatrixMode", "glPushMatrix", "glLoadIdentity",
                            "glOrthox", "glMatrixMode", "glLoadIdentity"));
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_CULL_FACE}), 1);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_DEPTH_TEST}), 1);
    for (GLenum array : {GL_VERTEX_ARRAY, GL_COLOR_ARRAY, GL_TEXTURE_COORD_ARRAY})
        EXPECT_EQ(GlRecorder::count("glEnableClientState", {array}), 1);
    EXPECT_THAT(GlRecorder::last("glOrthox").arguments,
                ElementsAre(0, 240 * 65536, 320 * 65536, 0, 0, 65536));
    const R3XVECTOR4D corner = R3XMATRIX(mirror(1).data()).transform(R3XVECTOR3D(0.0f, 0.0f, 0.0f));
    EXPECT_FLOAT_EQ(corner.x, -1.0f);
    EXPECT_FLOAT_EQ(corner.y, 1.0f) << "the origin is the top left corner";
    EXPECT_EQ(mirror(0), elements(R3XMATRIX()));
    KELTRA::end2D();
}

TEST_F(FrameTest, Begin2DTurnsALandscapeProjection) {
    KTSETTINGS::landscape = true;
    KELTRA::begin2D();
    KTSETTINGS::landscape = false;
    EXPECT_THAT(GlRecorder::last("glRotatex").arguments, ElementsAre(90 * 65536, 0, 0, 65536));
    EXPECT_THAT(GlRecorder::last("glOrthox").arguments,
                ElementsAre(0, 320 * 65536, 240 * 65536, 0, 0, 65536));
    KELTRA::end2D();
}

TEST_F(FrameTest, Begin2DProjectsToOnePixelAtLeast) {
    const int x = KTSETTINGS::windowX, y = KTSETTINGS::windowY;
    KTSETTINGS::windowX = 1;
    KTSETTINGS::windowY = 0;
    KELTRA::begin2D();
    KTSETTINGS::windowX = x;
    KTSETTINGS::windowY = y;
    EXPECT_THAT(GlRecorder::last("glOrthox").arguments, ElementsAre(0, 65536, 65536, 0, 0, 65536));
    KELTRA::end2D();
}

TEST_F(FrameTest, Begin2DSwitchesOffWhatWasOnAndCallsForNothingElse) {
    KTOPENGL::blendingOn();
    KTOPENGL::twoSideOn();
    KTOPENGL::normalArrayOn();
    KTOPENGL::vertexArrayOn();
    KTLIGHT::lightingOn();
    KTHELPER helper;
    helper.pass();
    GlRecorder::clear();
    KELTRA::begin2D();
    for (GLenum capability : {GL_BLEND, GL_LIGHTING, GL_CULL_FACE, GL_DEPTH_TEST})
        EXPECT_EQ(GlRecorder::count("glDisable", {capability}), 1);
    EXPECT_EQ(GlRecorder::count("glDisableClientState", {GL_NORMAL_ARRAY}), 1);
    EXPECT_EQ(GlRecorder::count("glEnableClientState", {GL_VERTEX_ARRAY}), 0) << "it was on already";
    EXPECT_EQ(GlRecorder::count("glLightModelx", {GL_LIGHT_MODEL_TWO_SIDE, 0}), 1);
    EXPECT_FALSE(KTLIGHT::getLighting());
    EXPECT_TRUE(KTOPENGL::isCulled()) << "the cache keeps what the application wants";
    EXPECT_EQ(KTELEMENT::getNumberOfPassedElements(), 0u);
    KELTRA::end2D();
}

TEST_F(FrameTest, End2DDrawsAllButLightsAndMeshes) {
    Probe first, second;
    Watched<KTLIGHT> light;
    Watched<KTMESH> mesh;
    KELTRA::begin2D();
    first.pass();
    light.pass();
    mesh.pass();
    second.pass();
    EXPECT_TRUE(KELTRA::end2D());
    EXPECT_THAT(drawnNodes(), ElementsAre(&first, &second));
}

TEST_F(FrameTest, End2DBringsProjectionDepthTestAndCullingBack) {
    const std::array<float, 16> projection = mirror(1);
    KELTRA::begin2D();
    GlRecorder::clear();
    EXPECT_TRUE(KELTRA::end2D());
    EXPECT_THAT(GlRecorder::names(),
                ElementsAre("glMatrixMode", "glPopMatrix", "glMatrixMode", "glEnable", "glEnable"));
    EXPECT_TRUE(enabled(GL_DEPTH_TEST));
    EXPECT_TRUE(enabled(GL_CULL_FACE));
    EXPECT_EQ(mirror(1), projection);
    KTOPENGL::cullingOff();
    KELTRA::begin2D();
    KELTRA::end2D();
    EXPECT_TRUE(enabled(GL_DEPTH_TEST));
    EXPECT_FALSE(enabled(GL_CULL_FACE)) << "it had been off before";
}

TEST_F(FrameTest, SwapFinishesTheFrameAndReportsTheSwap) {
    EXPECT_TRUE(KELTRA::swap());
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glFlush", "glFinish"));
    EXPECT_EQ(StartupFaults::count("eglSwapBuffers"), 1);
    EXPECT_EQ(reinterpret_cast<void *>(StartupFaults::last("eglSwapBuffers").arguments[1]),
              KTSETTINGS::glesSurface);
    StartupFaults::fail("eglSwapBuffers");
    EXPECT_FALSE(KELTRA::swap());
}

TEST_F(FrameTest, AWholeFrameLeavesTheStacksAsTheyWere) {
    KTCAMERA camera;
    KTHELPER root;
    Probe child;
    child.link(&root);
    frame(
        &camera, [&] { root.pass(); }, [&] { child.pass(); });
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 4);
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 4);
    EXPECT_THAT(drawnNodes(), ElementsAre(&child, &child));
}

}  // namespace
}  // namespace keltra::test
