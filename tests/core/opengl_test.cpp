// SPDX-License-Identifier: Zlib
#include <keltra/opengl.h>

#include <keltra/glbridge.h>

#include <array>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include "tests/support/engine_fixture.h"
#include "tests/support/gl_answers.h"

namespace keltra::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

std::int64_t fixed(float value) { return static_cast<std::int64_t>(value * 65536.0f); }

void expectColor(const R3XVECTOR4D &color, float r, float g, float b, float a) {
    EXPECT_EQ(color, R3XVECTOR4D(r, g, b, a));
}

const bool kActiveAtLoad = KTOPENGL::active;
const bool kCullingAtLoad = KTOPENGL::culling;
const KT_OPENGL_PROFILE kProfileAtLoad = KTOPENGL::currentProfile;

class OpenGlTest : public EngineTest {
   protected:
    /// Starts the engine again; the log then holds what start-up called.
    void restart() {
        ASSERT_TRUE(KELTRA::free());
        GlRecorder::clear();
        ASSERT_TRUE(KELTRA::init(&settings));
    }
};

TEST_F(OpenGlTest, HoldsItsDefaults) {
    EXPECT_FALSE(kActiveAtLoad);
    EXPECT_FALSE(kCullingAtLoad);
    EXPECT_EQ(kProfileAtLoad, 1);
    EXPECT_TRUE(KTOPENGL::isActive());
    EXPECT_EQ(KTOPENGL::getNearPlane(), 1.0f);
    EXPECT_EQ(KTOPENGL::getFarPlane(), 1024.0f);
    EXPECT_EQ(KTOPENGL::getAngleOfView(), 45.0f);
    expectColor(KTOPENGL::getBackgroundColor(), 0.2f, 0.2f, 0.6f, 1.0f);
    expectColor(KTOPENGL::getGlobalAmbientLight(), 0.2f, 0.2f, 0.2f, 1.0f);
    EXPECT_EQ(KTOPENGL::getAnisotropicLevel(), 0.0f);
    EXPECT_FALSE(KTOPENGL::useVBO() || KTOPENGL::useAnisotropic() || KTOPENGL::useFBO() ||
                 KTOPENGL::useMultitexturing() || KTOPENGL::useShaders() || KTOPENGL::useOcclusionQuery());
    EXPECT_THAT(KTOPENGL::fbo, Each(nullptr));
}

TEST_F(OpenGlTest, StartUpPutsTheGlIntoItsDefaultState) {
    restart();
    std::vector<std::string> names;
    for (const std::string &name : GlRecorder::names())
        if (name != "glGetIntegerv") names.push_back(name);
    std::vector<std::string> expected = {"glGetString",    "glClearColorx", "glLightModelxv", "glClearDepthx",
                                         "glClearStencil", "glDepthFunc",   "glEnable",       "glShadeModel",
                                         "glHint",         "glHint",        "glDisable",      "glBlendFunc",
                                         "glAlphaFuncx",   "glEnable"};
    expected.insert(expected.end(), 20, "glLightx");
    for (const char *name :
         {"glMatrixMode", "glLoadIdentity", "glViewport", "glFrustumx", "glMatrixMode", "glLoadIdentity"})
        expected.push_back(name);
    EXPECT_EQ(names, expected);

    EXPECT_THAT(GlRecorder::last("glGetString").arguments, ElementsAre(GL_EXTENSIONS));
    EXPECT_THAT(GlRecorder::last("glClearColorx").arguments,
                ElementsAre(fixed(0.2f), fixed(0.2f), fixed(0.6f), 65536));
    EXPECT_EQ(GlRecorder::last("glLightModelxv").arguments[0], GL_LIGHT_MODEL_AMBIENT);
    EXPECT_THAT(GlRecorder::last("glLightModelxv").contents,
                ElementsAre(fixed(0.2f), fixed(0.2f), fixed(0.2f), 65536));
    EXPECT_THAT(GlRecorder::last("glClearDepthx").arguments, ElementsAre(65536));
    EXPECT_THAT(GlRecorder::last("glClearStencil").arguments, ElementsAre(0));
    EXPECT_THAT(GlRecorder::last("glDepthFunc").arguments, ElementsAre(GL_LESS));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_DEPTH_TEST}), 1);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_CULL_FACE}), 1);
    EXPECT_THAT(GlRecorder::last("glShadeModel").arguments, ElementsAre(GL_SMOOTH));
    EXPECT_THAT(GlRecorder::last("glDisable").arguments, ElementsAre(GL_DITHER));
    EXPECT_THAT(GlRecorder::last("glBlendFunc").arguments, ElementsAre(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA));
    EXPECT_THAT(GlRecorder::last("glAlphaFuncx").arguments, ElementsAre(GL_GREATER, 32768));
}

// Both hints are given, and the faster one stays.
TEST_F(OpenGlTest, GivesTheNicestHintAndThenTheFastest) {
    restart();
    const std::vector<Call> hints = GlRecorder::all("glHint");
    ASSERT_EQ(hints.size(), 2u);
    EXPECT_THAT(hints[0].arguments, ElementsAre(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST));
    EXPECT_THAT(hints[1].arguments, ElementsAre(GL_PERSPECTIVE_CORRECTION_HINT, GL_FASTEST));
}

TEST_F(OpenGlTest, ResetsFourLights) {
    restart();
    const std::vector<Call> calls = GlRecorder::all("glLightx");
    ASSERT_EQ(calls.size(), 20u);
    for (int light = 0; light < 4; ++light) {
        const Call *call = &calls[5 * light];
        EXPECT_THAT(call[0].arguments, ElementsAre(GL_LIGHT0 + light, GL_SPOT_EXPONENT, 0));
        EXPECT_THAT(call[1].arguments, ElementsAre(GL_LIGHT0 + light, GL_SPOT_CUTOFF, 180 * 65536));
        EXPECT_THAT(call[2].arguments, ElementsAre(GL_LIGHT0 + light, GL_CONSTANT_ATTENUATION, 65536));
        EXPECT_THAT(call[3].arguments, ElementsAre(GL_LIGHT0 + light, GL_LINEAR_ATTENUATION, 0));
        EXPECT_THAT(call[4].arguments, ElementsAre(GL_LIGHT0 + light, GL_QUADRATIC_ATTENUATION, 0));
    }
}

TEST_F(OpenGlTest, TheGlHoldsTheDefaults) {
    const GlRecorder::Pause pause;
    GLfixed color[4] = {};
    glGetFixedv(GL_COLOR_CLEAR_VALUE, color);
    EXPECT_NEAR(color[0], fixed(0.2f), 2);
    EXPECT_NEAR(color[1], fixed(0.2f), 2);
    EXPECT_NEAR(color[2], fixed(0.6f), 2);
    EXPECT_NEAR(color[3], 65536, 2);
    EXPECT_TRUE(enabled(GL_CULL_FACE));
    EXPECT_TRUE(enabled(GL_DEPTH_TEST));
    EXPECT_FALSE(enabled(GL_DITHER));
    EXPECT_FALSE(enabled(GL_BLEND));
    EXPECT_FALSE(enabled(GL_LIGHTING));
}

TEST_F(OpenGlTest, APortraitWindowHasTheAspectOfItsSides) {
    EXPECT_TRUE(KTOPENGL::resize(0, 0, 240, 320));
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glMatrixMode", "glLoadIdentity", "glViewport", "glFrustumx",
                                                 "glMatrixMode", "glLoadIdentity"));
    EXPECT_THAT(GlRecorder::calls()[0].arguments, ElementsAre(GL_PROJECTION));
    EXPECT_THAT(GlRecorder::last("glViewport").arguments, ElementsAre(0, 0, 240, 320));
    EXPECT_THAT(GlRecorder::last("glMatrixMode").arguments, ElementsAre(GL_MODELVIEW));
    const float top = std::tan(45.0f * 0.008726646f), right = top * 0.75f;
    EXPECT_THAT(GlRecorder::last("glFrustumx").arguments,
                ElementsAre(fixed(-right), fixed(right), fixed(-top), fixed(top), 65536, 1024 * 65536));
    EXPECT_FLOAT_EQ(mirror(1)[5], 1.0f / top);
    EXPECT_FLOAT_EQ(mirror(1)[0], 1.0f / right);
    EXPECT_EQ(mirror(0), elements(R3XMATRIX()));
}

TEST_F(OpenGlTest, ALandscapeWindowIsTurnedBy90Degrees) {
    KTSETTINGS::landscape = true;
    EXPECT_TRUE(KTOPENGL::resize(0, 0, 240, 320));
    KTSETTINGS::landscape = false;
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glMatrixMode", "glLoadIdentity", "glViewport", "glRotatex",
                                                 "glFrustumx", "glMatrixMode", "glLoadIdentity"));
    EXPECT_THAT(GlRecorder::last("glRotatex").arguments, ElementsAre(90 * 65536, 0, 0, 65536));
    const std::vector<std::int64_t> frustum = GlRecorder::last("glFrustumx").arguments;
    EXPECT_NEAR(static_cast<double>(frustum[1]) / static_cast<double>(frustum[3]), 320.0 / 240.0, 0.001);
    const float right = std::tan(45.0f * 0.008726646f) * (320.0f / 240.0f);
    EXPECT_NEAR(mirror(1)[1], 1.0f / right, 1e-6f) << "x goes up the screen";
    EXPECT_NEAR(mirror(1)[0], 0.0f, 1e-6f);
}

TEST_F(OpenGlTest, TheViewportCountsFromTheBottomOfTheWindow) {
    KTOPENGL::resize(10, 20, 100, 50);
    EXPECT_THAT(GlRecorder::last("glViewport").arguments, ElementsAre(10, 320 - 20 - 50, 100, 50));
}

TEST_F(OpenGlTest, EmptyAreasAtAnyPlaceLeaveNoGlError) {
    for (int place : {0, 1, -1, INT_MAX, INT_MIN})
        for (int size : {0, 1, -1, INT_MIN, 2000}) {
            EXPECT_TRUE(KTOPENGL::resize(place, place, size, 10));
            EXPECT_TRUE(KTOPENGL::resize(place, place, 10, size));
            EXPECT_TRUE(KTOPENGL::resize(place, place, size, size));
        }
    expectNoGlError();
}

// An area too narrow for 16.16 is refused by the GL, which then keeps the identity.
TEST_F(OpenGlTest, AbsurdAreasKeepTheMirrorFinite) {
    for (int size : {INT_MAX, INT_MIN, 1}) {
        EXPECT_TRUE(KTOPENGL::resize(0, 0, INT_MAX, size));
        EXPECT_TRUE(KTOPENGL::resize(0, 0, size, INT_MAX));
        for (float element : mirror(1)) EXPECT_TRUE(std::isfinite(element));
    }
    const GlRecorder::Pause pause;
    while (glGetError() != GL_NO_ERROR) continue;
}

TEST_F(OpenGlTest, PlanesAndAngleTakeEffectAtTheNextResize) {
    KTOPENGL::setNearPlane(2.0f);
    KTOPENGL::setFarPlane(50.0f);
    KTOPENGL::setAngleOfView(90.0f);
    EXPECT_TRUE(GlRecorder::calls().empty());
    EXPECT_EQ(KTOPENGL::getNearPlane(), 2.0f);
    EXPECT_EQ(KTOPENGL::getFarPlane(), 50.0f);
    EXPECT_EQ(KTOPENGL::getAngleOfView(), 90.0f);
    KTOPENGL::resize(0, 0, 100, 100);
    const std::vector<std::int64_t> frustum = GlRecorder::last("glFrustumx").arguments;
    EXPECT_NEAR(static_cast<double>(frustum[3]), 2.0 * 65536.0, 2.0);
    EXPECT_EQ(frustum[4], 2 * 65536);
    EXPECT_EQ(frustum[5], 50 * 65536);
}

TEST_F(OpenGlTest, SetPerspectiveMultipliesTheCurrentMatrixOnly) {
    KTOPENGL::setPerspective(60.0f, 1.5f, 1.0f, 10.0f);
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glFrustumx"));
    EXPECT_NE(mirror(0), elements(R3XMATRIX()));
}

TEST_F(OpenGlTest, SetFrustumLoadsProjectionAndModelView) {
    EXPECT_TRUE(KTOPENGL::setFrustum(-1.0f, 1.0f, -2.0f, 2.0f, 1.0f, 10.0f, true));
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glMatrixMode", "glLoadIdentity", "glFrustumx",
                                                 "glMatrixMode", "glLoadIdentity"));
    EXPECT_THAT(GlRecorder::calls()[0].arguments, ElementsAre(GL_PROJECTION));
    EXPECT_THAT(GlRecorder::last("glFrustumx").arguments,
                ElementsAre(-65536, 65536, -131072, 131072, 65536, 655360));
    EXPECT_THAT(GlRecorder::last("glMatrixMode").arguments, ElementsAre(GL_MODELVIEW));
    EXPECT_EQ(mirror(0), elements(R3XMATRIX()));
}

TEST_F(OpenGlTest, ColoursTakeEffectAtOnce) {
    KTOPENGL::setBackgroundColor(0.5f, 0.25f, 0.75f, 0.0f);
    expectColor(KTOPENGL::getBackgroundColor(), 0.5f, 0.25f, 0.75f, 0.0f);
    EXPECT_THAT(GlRecorder::last("glClearColorx").arguments, ElementsAre(32768, 16384, 49152, 0));
    KTOPENGL::setBackgroundColor(R3XVECTOR4D(1.0f, 0.0f, 1.0f, 1.0f));
    EXPECT_THAT(GlRecorder::last("glClearColorx").arguments, ElementsAre(65536, 0, 65536, 65536));
    KTOPENGL::setGlobalAmbientLight(0.5f, 0.25f, 0.75f, 1.0f);
    expectColor(KTOPENGL::getGlobalAmbientLight(), 0.5f, 0.25f, 0.75f, 1.0f);
    EXPECT_THAT(GlRecorder::last("glLightModelxv").contents, ElementsAre(32768, 16384, 49152, 65536));
    KTOPENGL::setGlobalAmbientLight(R3XVECTOR4D(0.0f, 1.0f, 0.0f, 1.0f));
    EXPECT_THAT(GlRecorder::last("glLightModelxv").contents, ElementsAre(0, 65536, 0, 65536));
}

TEST_F(OpenGlTest, ColoursAreKeptFromOneStartToTheNext) {
    KTOPENGL::setBackgroundColor(1.0f, 0.5f, 0.25f, 0.0f);
    restart();
    EXPECT_THAT(GlRecorder::last("glClearColorx").arguments, ElementsAre(65536, 32768, 16384, 0));
}

struct Switch {
    const char *name;
    void (*on)();
    void (*off)();
    const bool *cached;
    const char *enable, *disable;
    GLenum capability;
};

const Switch kSwitches[] = {
    {"culling", KTOPENGL::cullingOn, KTOPENGL::cullingOff, &KTOPENGL::culling, "glEnable", "glDisable",
     GL_CULL_FACE},
    {"blending", KTOPENGL::blendingOn, KTOPENGL::blendingOff, &KTOPENGL::blending, "glEnable", "glDisable",
     GL_BLEND},
    {"scissor", KTOPENGL::scissorOn, KTOPENGL::scissorOff, &KTOPENGL::scissor, "glEnable", "glDisable",
     GL_SCISSOR_TEST},
    {"vertices", KTOPENGL::vertexArrayOn, KTOPENGL::vertexArrayOff, &KTOPENGL::vertexArrayStatus,
     "glEnableClientState", "glDisableClientState", GL_VERTEX_ARRAY},
    {"normals", KTOPENGL::normalArrayOn, KTOPENGL::normalArrayOff, &KTOPENGL::normalArrayStatus,
     "glEnableClientState", "glDisableClientState", GL_NORMAL_ARRAY},
    {"colours", KTOPENGL::colorArrayOn, KTOPENGL::colorArrayOff, &KTOPENGL::colorArrayStatus,
     "glEnableClientState", "glDisableClientState", GL_COLOR_ARRAY},
    {"texture coordinates", KTOPENGL::textureArrayOn, KTOPENGL::textureArrayOff,
     &KTOPENGL::textureArrayStatus, "glEnableClientState", "glDisableClientState", GL_TEXTURE_COORD_ARRAY},
};

TEST_F(OpenGlTest, EachSwitchCallsTheGlOnlyOnAChange) {
    for (const Switch &each : kSwitches) {
        SCOPED_TRACE(each.name);
        each.off();
        GlRecorder::clear();
        each.on();
        each.on();
        EXPECT_TRUE(*each.cached);
        EXPECT_TRUE(enabled(each.capability));
        EXPECT_EQ(GlRecorder::calls().size(), 1u);
        EXPECT_EQ(GlRecorder::count(each.enable, {each.capability}), 1);
        each.off();
        each.off();
        EXPECT_FALSE(*each.cached);
        EXPECT_FALSE(enabled(each.capability));
        EXPECT_EQ(GlRecorder::calls().size(), 2u);
        EXPECT_EQ(GlRecorder::count(each.disable, {each.capability}), 1);
    }
}

TEST_F(OpenGlTest, TwoSidedLightingIsSwitchedThroughTheLightModel) {
    KTOPENGL::twoSideOn();
    KTOPENGL::twoSideOn();
    EXPECT_TRUE(KTOPENGL::isTwoSide());
    KTOPENGL::twoSideOff();
    KTOPENGL::twoSideOff();
    EXPECT_FALSE(KTOPENGL::isTwoSide());
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glLightModelx", "glLightModelx"));
    EXPECT_THAT(GlRecorder::calls()[0].arguments, ElementsAre(GL_LIGHT_MODEL_TWO_SIDE, 65536));
    EXPECT_THAT(GlRecorder::calls()[1].arguments, ElementsAre(GL_LIGHT_MODEL_TWO_SIDE, 0));
}

TEST_F(OpenGlTest, SwitchesOfAnEarlierContextAreForgotten) {
    for (const Switch &each : kSwitches) each.on();
    KTOPENGL::twoSideOn();
    ASSERT_TRUE(KELTRA::free());
    EXPECT_TRUE(KTOPENGL::isBlended()) << "kept until the next start";
    ASSERT_TRUE(KELTRA::init(&settings));
    for (const Switch &each : kSwitches) EXPECT_EQ(*each.cached, enabled(each.capability)) << each.name;
    EXPECT_FALSE(KTOPENGL::isTwoSide());
    GlRecorder::clear();
    KTOPENGL::blendingOn();
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_BLEND}), 1);
}

TEST_F(OpenGlTest, TheTableOfTargetsIsEmptyInsideAndOutsideItsBounds) {
    for (int index : {0, 1, 13, 14, 15, 20, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(KTOPENGL::getFbo(index), nullptr) << index;
    KTFBO target;
    KTOPENGL::fbo[13] = &target;
    EXPECT_EQ(KTOPENGL::getFbo(13), &target);
    KTOPENGL::fbo[13] = nullptr;
}

TEST_F(OpenGlTest, TheProfileIsStored) {
    for (KT_OPENGL_PROFILE profile : {KT_PROFILE_PICKING, KT_PROFILE_DEPTH, KT_PROFILE_NORMAL}) {
        KTOPENGL::setProfile(profile);
        EXPECT_EQ(KTOPENGL::getProfile(), profile);
    }
    EXPECT_EQ(KT_PROFILE_NORMAL, 1);
    EXPECT_EQ(KT_PROFILE_PICKING, 2);
    EXPECT_EQ(KT_PROFILE_DEPTH, 3);
}

TEST_F(OpenGlTest, ResizingTheWindowSetsTheRunningSize) {
    EXPECT_TRUE(KTSETTINGS::resize(0, 0, 100, 200));
    EXPECT_EQ(KTSETTINGS::getSDLWindowX(), 100);
    EXPECT_EQ(KTSETTINGS::getSDLWindowY(), 200);
    EXPECT_THAT(GlRecorder::last("glViewport").arguments, ElementsAre(0, 0, 100, 200));
    EXPECT_TRUE(KTSETTINGS::resize(0, 0, 240, 320));
}

TEST_F(OpenGlTest, StoppingMakesItInactiveWithoutAGlCall) {
    ASSERT_TRUE(KELTRA::free());
    EXPECT_FALSE(KTOPENGL::isActive());
    EXPECT_TRUE(GlRecorder::calls().empty());
}

}  // namespace
}  // namespace keltra::test
